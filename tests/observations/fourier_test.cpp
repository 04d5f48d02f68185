// Tests of the transforms against a direct DFT, of the smoothing and of the Fourier filter.
#include "observations/fourier.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <random>
#include <vector>

#include "background_test_support.h"
#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::SetGrid;
using testing::SetTypedBackground;

constexpr double kTwoPi = 6.283185307179586;

std::vector<float> RandomValues(int count, unsigned seed) {
  std::mt19937 engine(seed);
  std::uniform_real_distribution<float> value(-1.0f, 1.0f);
  std::vector<float> v(static_cast<std::size_t>(count));
  for (float& x : v) x = value(engine);
  return v;
}

// F[k] = sum over j of f[j] exp(sign 2 pi i j k / n), in double.
std::vector<std::complex<double>> DirectDft(const std::vector<std::complex<double>>& f, int sign) {
  const int n = static_cast<int>(f.size());
  std::vector<std::complex<double>> out(f.size());
  for (int k = 0; k < n; ++k) {
    std::complex<double> sum = 0.0;
    for (int j = 0; j < n; ++j) {
      sum += f[j] * std::polar(1.0, sign * kTwoPi * j * k / n);
    }
    out[k] = sum;
  }
  return out;
}

TEST(ComplexTransform, MatchesTheDirectTransformInBothDirections) {
  for (int n : {1, 2, 8, 64}) {
    for (int sign : {1, -1}) {
      std::vector<float> data = RandomValues(2 * n, 7u + n);
      std::vector<std::complex<double>> f(n);
      for (int j = 0; j < n; ++j) f[j] = {data[2 * j], data[2 * j + 1]};
      const auto expected = DirectDft(f, sign);
      ComplexTransform(data, n, sign);
      for (int k = 0; k < n; ++k) {
        EXPECT_NEAR(data[2 * k], expected[k].real(), 2e-6 * n) << "n " << n << " k " << k;
        EXPECT_NEAR(data[2 * k + 1], expected[k].imag(), 2e-6 * n) << "n " << n << " k " << k;
      }
    }
  }
}

TEST(RealTransform, ForwardGivesTheDirectTransformOfTheRealValuesInPackedForm) {
  for (int n : {1, 4, 32}) {
    std::vector<float> data = RandomValues(2 * n, 11u + n);
    std::vector<std::complex<double>> f(2 * n);
    for (int j = 0; j < 2 * n; ++j) f[j] = data[j];
    const auto expected = DirectDft(f, 1);
    RealTransform(data, n, 1);
    EXPECT_NEAR(data[0], expected[0].real(), 4e-6 * n);
    EXPECT_NEAR(data[1], expected[n].real(), 4e-6 * n);
    for (int k = 1; k < n; ++k) {
      EXPECT_NEAR(data[2 * k], expected[k].real(), 4e-6 * n) << "n " << n << " k " << k;
      EXPECT_NEAR(data[2 * k + 1], expected[k].imag(), 4e-6 * n) << "n " << n << " k " << k;
    }
  }
}

TEST(RealTransform, InverseGivesBackNTimesTheValues) {
  const int n = 16;
  const std::vector<float> original = RandomValues(2 * n, 5u);
  std::vector<float> data = original;
  RealTransform(data, n, 1);
  RealTransform(data, n, -1);
  for (int j = 0; j < 2 * n; ++j) EXPECT_NEAR(data[j], n * original[j], 2e-5 * n) << j;
}

TEST(Smooth, AConstantStaysConstant) {
  CapturedJob job;
  std::vector<float> y(256, 5.0f);
  Smooth(*job, y, 256, 12.0f);
  for (float v : y) ASSERT_NEAR(v, 5.0f, 2e-5f);
}

TEST(Smooth, HighFrequenciesAreRemovedAndLowOnesDampedByOneMinusTheSquaredWindowRatio) {
  CapturedJob job;
  const int m = 256;
  const double window = 4.0;
  std::vector<float> y(m);
  auto wave = [&](int j, int i) { return std::sin(kTwoPi * j * i / m); };
  for (int i = 0; i < m; ++i) {
    const double nyquist = i % 2 == 0 ? 0.25 : -0.25;
    y[i] =
        static_cast<float>(3.0 + wave(2, i) + 0.5 * wave(100, i) + 0.25 * wave(127, i) + nyquist);
  }
  Smooth(*job, y, m, static_cast<float>(window));
  const double damping = 1.0 - (window * 2.0 / m) * (window * 2.0 / m);
  for (int i = 0; i < m; ++i) {
    ASSERT_NEAR(y[i], 3.0 + damping * wave(2, i), 2e-5) << i;
  }
}

TEST(Smooth, TheNyquistTermTakesTheDampingOfTheHighestPair) {
  // m = 16, window 0.5: the pairs j = 1..7 keep 1 - (j/32)^2, and the
  // alternating term at frequency 8 the factor of j = 7.
  CapturedJob job;
  std::vector<float> y(16);
  for (int i = 0; i < 16; ++i) y[i] = i % 2 == 0 ? 1.0f : -1.0f;
  Smooth(*job, y, 16, 0.5f);
  const double last = 1.0 - (7.0 / 32.0) * (7.0 / 32.0);
  for (int i = 0; i < 16; ++i) ASSERT_NEAR(y[i], (i % 2 == 0 ? 1.0 : -1.0) * last, 1e-6) << i;
}

TEST(Smooth, ZeroWindowLeavesTheValuesAsTheyWere) {
  CapturedJob job;
  const std::vector<float> original = RandomValues(100, 3u);
  std::vector<float> y(128, 0.0f);
  std::copy(original.begin(), original.end(), y.begin());
  Smooth(*job, y, 100, 0.0f);
  for (int i = 0; i < 100; ++i) ASSERT_NEAR(y[i], original[i], 2e-6) << i;
  for (int i = 100; i < 128; ++i) ASSERT_NEAR(y[i], 0.0f, 2e-6) << i;
}

TEST(Smooth, AWorkArrayShorterThanThePowerOfTwoStops) {
  CapturedJob job;
  std::vector<float> y(100, 1.0f);
  EXPECT_THROW(Smooth(*job, y, 100, 5.0f), ProcessStop);
  EXPECT_NE(job.Console().find("=> Too many points for Fourier filtering!"), std::string::npos);
}

// A flat pattern of 10 counts with 3 of them calculated, on a background of 1.
void SetFilterPattern(Pattern& p, int npts) {
  SetGrid(p, 10.0f, 0.05f, npts);
  SetTypedBackground(p, -2);
  for (int i = 1; i <= npts; ++i) {
    p.Ytotal[i] = 10.0f;
    p.Backg[i] = 1.0f;
    p.Ycalc[i] = 3.0f;
  }
}

TEST(FourierFilter, WithWindowZeroAddsTwiceTheResidualOutsideExcludedRegions) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetFilterPattern(p, 200);
  p.FourierWindow = 0.3f;  // rounds to a window of 0
  p.NEXCRG = 2;
  p.ExclLow[1] = 0.0f;     // below THMIN: from point 1
  p.ExclHigh[1] = 10.52f;  // to the point at or below 10.52: 11 (10.50)
  p.ExclLow[2] = 14.01f;   // from the point at or below: 81 (14.00)
  p.ExclHigh[2] = 14.52f;  // to point 91 (14.50)
  FourierFilter(*job, 1, p.Ycalc.ptr());
  for (int i = 1; i <= 200; ++i) {
    const bool excluded = i <= 11 || (i >= 81 && i <= 91);
    ASSERT_NEAR(p.Backg[i], excluded ? 1.0f : 1.0f + 2.0f * 6.0f, 1e-4) << i;
  }
}

TEST(FourierFilter, VariableStepFindsTheExcludedPointsByBisection) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetFilterPattern(p, 50);
  p.equalStep = 0;
  for (int i = 1; i <= 50; ++i) p.X[i] = 10.0f + 0.01f * static_cast<float>(i * i);
  p.FourierWindow = -0.2f;  // rounds to 0
  p.NEXCRG = 1;
  p.ExclLow[1] = 10.5f;             // X[7] = 10.49, X[8] = 10.64: from point 7
  p.ExclHigh[1] = 11.05f;           // X[10] = 11.00, X[11] = 11.21: to point 10
  FourierFilter(*job, 1, nullptr);  // no calculated intensity: the residual is 9
  for (int i = 1; i <= 50; ++i) {
    const bool excluded = i >= 7 && i <= 10;
    ASSERT_NEAR(p.Backg[i], excluded ? 1.0f : 19.0f, 1e-4) << i;
  }
}

TEST(FourierFilter, ExcludedRegionsOverTheWholeDataGiveAFlatBackground) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetFilterPattern(p, 300);
  for (int i = 1; i <= 300; ++i) p.Ytotal[i] = 10.0f + 5.0f * std::sin(0.3f * i);
  p.FourierWindow = 20.0f;
  p.NEXCRG = 1;
  p.ExclLow[1] = 0.0f;
  p.ExclHigh[1] = 100.0f;
  FourierFilter(*job, 1, p.Ycalc.ptr());
  for (int i = 1; i <= 300; ++i) ASSERT_FLOAT_EQ(p.Backg[i], 1.0f) << i;
}

TEST(FourierFilter, ASmoothResidualIsAddedTwiceInTheMiddleOfThePattern) {
  // A residual of 6 over the points and 0 in the padding: away from the ends
  // the filter keeps the level, and twice of it is added.
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetFilterPattern(p, 1000);
  p.FourierWindow = 8.0f;
  FourierFilter(*job, 1, p.Ycalc.ptr());
  for (int i = 300; i <= 700; ++i) ASSERT_NEAR(p.Backg[i], 13.0f, 0.05f) << i;
}

TEST(FourierFilter, TwiceTheCapacityOfPointsIsAllowed) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetFilterPattern(p, 10000);  // 2 NPTS = 20000
  p.FourierWindow = 50.0f;
  EXPECT_NO_THROW(FourierFilter(*job, 1, p.Ycalc.ptr()));
  EXPECT_NEAR(p.Backg[5000], 13.0f, 0.05f);
}

TEST(FourierFilter, MoreThanHalfTheCapacityOfPointsStops) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetFilterPattern(p, 10001);
  EXPECT_THROW(FourierFilter(*job, 1, p.Ycalc.ptr()), ProcessStop);
  EXPECT_NE(job.Console().find(" Too many points for Fourier filtering"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
