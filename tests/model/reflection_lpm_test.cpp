// Generated reflection lists carry LpM: phase multiplicity factor, multiplicity and Lp.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "crystal/reflection_case.h"
#include "crystal/reflection_generation.h"
#include "model/lorentz_polarisation.h"

namespace corvinet {
namespace {

using testing::Cell;
using testing::ReflectionCase;

constexpr double kSiliconA = 5.4309;

const Reflection* Find(const std::vector<Reflection>& slots, int h, int k, int l, int w = 1) {
  for (const Reflection& r : slots) {
    if (KeyH(r.key) == h && KeyK(r.key) == k && KeyL(r.key) == l && KeyWavelength(r.key) == w) {
      return &r;
    }
  }
  return nullptr;
}

// Silicon in a Cu Kα1 X-ray Bragg-Brentano pattern from 20 to 60 degrees.
struct Silicon : ReflectionCase {
  Silicon() : ReflectionCase("F d 3 m", Cell(5.4309f, 5.4309f, 5.4309f), 0) {
    P().JOBTYP = 0;
    P().ILOR = 0;
    P().LAMBDA[1] = P().LAMBDA[2] = 1.540560f;
    P().THMIN = 20.0f;
    P().THMAX = 60.0f;
    P().STEP = 0.02f;
  }
};

// sin²θ and cosθ of reflection (h k l) of silicon at wavelength lambda, in double.
struct Angle {
  double s2, c, cos2Sq;
};
Angle SiliconAngle(int h, int k, int l, double lambda) {
  const double d = kSiliconA / std::sqrt(static_cast<double>(h * h + k * k + l * l));
  const double sinTheta = lambda / (2.0 * d);
  const double s2 = sinTheta * sinTheta;
  const double cos2 = 1.0 - 2.0 * s2;
  return {s2, std::sqrt(1.0 - s2), cos2 * cos2};
}

TEST(ReflectionLpM, SiliconPhaseHasTheFactorOfAnFCentredCentrosymmetricGroup) {
  Silicon si;
  EXPECT_EQ(si.Ph().group.multiplicityFactor, 64);
}

TEST(ReflectionLpM, Silicon111WithoutMonochromatorIsTheBareLorentzFactor) {
  Silicon si;
  si.P().Cthm = 0.0f;
  ASSERT_TRUE(
      si.Runs([](Job& job) { GenerateReflections(job, 1, 1, ReflectionLorentzPolarisation); }));
  const std::vector<Reflection> slots = si.Slots();
  const Reflection* r = Find(slots, 1, 1, 1);
  ASSERT_NE(r, nullptr);
  EXPECT_EQ(r->multiplicity, 8);
  const Angle a = SiliconAngle(1, 1, 1, 1.540560);
  const double expected = 64.0 * 8.0 / (2.0 * a.s2 * a.c);
  EXPECT_NEAR(r->LpM / expected, 1.0, 1e-5);
  EXPECT_NEAR(r->tanTheta, std::sqrt(a.s2) / a.c, 1e-6);
}

TEST(ReflectionLpM, Silicon111UnpolarisedBeamTakesOnePlusCosSquaredTwoTheta) {
  Silicon si;
  si.P().Cthm = 1.0f;
  ASSERT_TRUE(
      si.Runs([](Job& job) { GenerateReflections(job, 1, 1, ReflectionLorentzPolarisation); }));
  const std::vector<Reflection> slots = si.Slots();
  const Reflection* r = Find(slots, 1, 1, 1);
  ASSERT_NE(r, nullptr);
  const Angle a = SiliconAngle(1, 1, 1, 1.540560);
  const double expected = 64.0 * 8.0 * (1.0 + a.cos2Sq) / (2.0 * a.s2 * a.c);
  EXPECT_NEAR(r->LpM / expected, 1.0, 1e-5);
}

TEST(ReflectionLpM, EveryReflectionOfTheListCarriesItsOwnFactor) {
  Silicon si;
  si.P().Cthm = 0.8f;
  ASSERT_TRUE(
      si.Runs([](Job& job) { GenerateReflections(job, 1, 1, ReflectionLorentzPolarisation); }));
  const std::vector<Reflection> slots = si.Slots();
  ASSERT_GE(slots.size(), 3u);  // 111, 220 and 311 lie between 20 and 60 degrees
  for (const Reflection& r : slots) {
    const int h = KeyH(r.key), k = KeyK(r.key), l = KeyL(r.key);
    const Angle a = SiliconAngle(h, k, l, 1.540560);
    const double expected = 64.0 * r.multiplicity * (1.0 + 0.8 * a.cos2Sq) / (2.0 * a.s2 * a.c);
    EXPECT_NEAR(r.LpM / expected, 1.0, 1e-5) << h << k << l;
  }
}

TEST(ReflectionLpM, SecondWavelengthUsesItsOwnAngle) {
  Silicon si;
  si.P().Cthm = 1.0f;
  si.P().LAMBDA[2] = 1.544390f;
  si.P().RATIO[2] = 0.5f;
  ASSERT_TRUE(
      si.Runs([](Job& job) { GenerateReflections(job, 1, 1, ReflectionLorentzPolarisation); }));
  const std::vector<Reflection> slots = si.Slots();
  const Reflection* r = Find(slots, 1, 1, 1, 2);
  ASSERT_NE(r, nullptr);
  const Angle a = SiliconAngle(1, 1, 1, static_cast<double>(1.544390f));
  const double expected = 64.0 * 8.0 * (1.0 + a.cos2Sq) / (2.0 * a.s2 * a.c);
  EXPECT_NEAR(r->LpM / expected, 1.0, 1e-5);
}

TEST(ReflectionLpM, NeutronTimeOfFlightListTakesTheSpacingForm) {
  ReflectionCase c("P m 3 m", Cell(4, 4, 4), 1);
  c.P().JOBTYP = -1;
  c.P().Dtt1 = 5000.0f;
  c.P().TwoSinTh = 1.7f;
  c.P().THMIN = 3000.0f;
  c.P().THMAX = 21000.0f;
  ASSERT_EQ(c.Ph().group.multiplicityFactor, 4);  // primitive and centrosymmetric: (1*2)^2
  ASSERT_TRUE(
      c.Runs([](Job& job) { GenerateReflections(job, 1, 1, ReflectionLorentzPolarisation); }));
  const std::vector<Reflection> slots = c.Slots();
  ASSERT_FALSE(slots.empty());
  for (const Reflection& r : slots) {
    const int h = KeyH(r.key), k = KeyK(r.key), l = KeyL(r.key);
    const double d = 4.0 / std::sqrt(static_cast<double>(h * h + k * k + l * l));
    const double expected = 4.0 * r.multiplicity * 0.5 * 1.7 * std::pow(d, 4);
    EXPECT_NEAR(r.LpM / expected, 1.0, 1e-5) << h << k << l;
  }
}

}  // namespace
}  // namespace corvinet
