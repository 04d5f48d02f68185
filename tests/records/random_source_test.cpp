// Tests of the run's random source against its recurrence computed exactly in the test.
#include "records/random_source.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>

#include "records/job.h"
#include "run/defaults.h"

namespace corvinet {
namespace {

using u128 = unsigned __int128;

int BitLength(u128 v) {
  int bits = 0;
  while (v != 0) {
    v >>= 1;
    ++bits;
  }
  return bits;
}

// One step of the recurrence in double precision, emulated with integers: the
// product of the 53-bit significand of x and 13967501 is exact in 128 bits, is
// rounded to 53 significant bits (to nearest, ties to even) as a double
// multiplication does, and its fraction is taken exactly.
double NextByIntegers(double x) {
  int e = 0;
  const double m = std::frexp(x, &e);  // x = m 2^e, 0.5 <= m < 1
  const std::uint64_t significand = static_cast<std::uint64_t>(std::ldexp(m, 53));
  u128 p = static_cast<u128>(significand) * 13967501u;  // x * 13967501 = p 2^(e - 53)
  int scale = e - 53;
  const int drop = BitLength(p) - 53;
  if (drop > 0) {
    const u128 mask = (static_cast<u128>(1) << drop) - 1;
    const u128 rest = p & mask;
    const u128 half = static_cast<u128>(1) << (drop - 1);
    p >>= drop;
    if (rest > half || (rest == half && (p & 1) != 0)) ++p;
    scale += drop;
  }
  // p 2^scale with scale < 0: the fraction is the low -scale bits.
  const int shift = -scale;
  const u128 fraction = shift >= 128 ? p : (p & ((static_cast<u128>(1) << shift) - 1));
  return std::ldexp(static_cast<double>(fraction), scale);
}

TEST(RandomSource, FirstValueIsTheFractionOfTheStartTimesTheMultiplier) {
  RandomSource source;
  RandomSeed(source);
  const long double start = 1.2703368156508077e-05L;
  const long double product = start * 13967501.0L;
  const long double fraction = product - std::floor(product);
  const float first = UniformDeviate(source);
  EXPECT_NEAR(static_cast<long double>(source.x), fraction, 1e-12L);
  EXPECT_EQ(first, static_cast<float>(source.x));
  EXPECT_EQ(source.last, first);
}

TEST(RandomSource, SequenceFollowsTheDoublePrecisionRecurrenceFromItsStart) {
  RandomSource source;
  RandomSeed(source);
  double x = 1.2703368156508077e-05;
  for (int k = 1; k <= 5000; ++k) {
    x = NextByIntegers(x);
    const float value = UniformDeviate(source);
    ASSERT_EQ(source.x, x) << "step " << k;
    ASSERT_EQ(value, static_cast<float>(x)) << "step " << k;
    ASSERT_EQ(source.last, value) << "step " << k;
  }
}

TEST(RandomSource, SeedingReceivesTenAndTenAndKeepsTheStart) {
  RandomSource source;
  RandomSeed(source);
  EXPECT_EQ(source.seedA, 10);
  EXPECT_EQ(source.seedB, 10);
  EXPECT_EQ(source.x, 1.2703368156508077e-05);
}

TEST(RandomSource, EachRunStartsTheSequenceAgain) {
  auto job = std::make_unique<Job>();
  const float first = UniformDeviate(job->random);
  UniformDeviate(job->random);
  ResetDefaults(*job);
  EXPECT_EQ(UniformDeviate(job->random), first);
}

TEST(RandomSource, ValuesAreSpreadOverTheUnitInterval) {
  RandomSource source;
  int counts[10] = {};
  constexpr int kDraws = 100000;
  for (int k = 0; k < kDraws; ++k) {
    const float v = UniformDeviate(source);
    ASSERT_GE(v, 0.0f);
    ASSERT_LE(v, 1.0f);
    ++counts[std::min(9, static_cast<int>(v * 10.0f))];
  }
  // Each tenth holds 10000 draws, with a binomial standard deviation of 95.
  for (int c : counts) EXPECT_NEAR(c, kDraws / 10, 5 * 95);
}

}  // namespace
}  // namespace corvinet
