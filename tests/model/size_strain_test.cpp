// The size, strain and shift models of a reflection against independent values, their edge cases,
// and their parameter derivatives against central differences of the model.
#include "model/size_strain.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <utility>

#include "records/profile_slots.h"

namespace corvinet {
namespace {

namespace Slot = ProfileSlot;

// The three cells of tests/data/model/size_strain_reference.py.
constexpr float kMono[6] = {5.1f, 6.3f, 7.2f, 90.0f, 103.5f, 90.0f};
constexpr float kOrth[6] = {4.05f, 4.30f, 3.90f, 90.0f, 90.0f, 90.0f};
constexpr float kHex[6] = {4.7f, 4.7f, 7.9f, 90.0f, 90.0f, 120.0f};
// P² of 2theta data, (180/pi sqrt(8 ln 2) 1e-3)².
constexpr double kP2 = 0.018203745;

struct ModelCase {
  Table1<float, DimensionLimits::MPAR> par;
  BroadeningModel m;
  ModelCase(const float (&cell)[6], int laue) {
    for (int i = 1; i <= 6; ++i) m.cell[i] = cell[i - 1];
    m.laue = laue;
    m.PAR = &par;
    m.P2 = kP2;
    m.sizeScale = 57.29578 * 1.5406;
  }
  void Set(int first, std::initializer_list<float> values) {
    int s = first;
    for (float v : values) par[s++] = v;
  }
  BroadeningTerms At(double h, double k, double l, double tanTheta = 0.5) const {
    BroadeningReflection r;
    r.h = {h, k, l};
    r.tanTheta = tanTheta;
    return SizeStrainBroadening(m, r);
  }
};

void ExpectRelative(double value, double expected, const char* what) {
  EXPECT_NEAR(value, expected, 2e-6 * std::fabs(expected) + 1e-12) << what;
}

// Values from tests/data/model/size_strain_reference.py, which builds the
// reciprocal vectors in Cartesian space and differentiates 1/d² numerically.
TEST(SizeStrainModels, StrainModelsMatchTheIndependentValues) {
  ModelCase orth(kOrth, 3);
  orth.m.strainModel = 2;
  orth.Set(Slot::Str1, {1.5f, 0.5f, 0.25f});
  ExpectRelative(orth.At(1, 2, 3).deltaU, 8.0635844464e-04, "model 2");
  orth.m.strainModel = 5;
  ExpectRelative(orth.At(1, 2, 3).deltaU, 2.4113505647e-03, "model 5");
  orth.m.strainModel = 10;
  orth.Set(Slot::Str1, {1.5f, 0.5f, 0.25f, 0.75f, -0.5f, 0.125f});
  ExpectRelative(orth.At(2, -1, 1).deltaU, 5.4145497372e+00, "model 10");
  ModelCase mono(kMono, 2);
  mono.m.strainModel = 7;
  mono.m.strainAxis[1] = 1.0f;
  mono.m.strainAxis[2] = 1.0f;
  mono.m.strainAxis[3] = 0.5f;
  mono.Set(Slot::Str1, {1.5f});
  ExpectRelative(mono.At(1, 2, 3).deltaU, 2.2588849615e-02, "model 7");
}

TEST(SizeStrainModels, GeneralizedStrainMatchesTheIndependentValues) {
  ModelCase mono(kMono, 2);
  mono.m.Str = 1;
  mono.Set(Slot::Str1, {1.5f, 0.5f, 0.25f, 2.0f, 30.0f, -20.0f, 10.0f, 45.0f, -5.0f, 15.0f});
  // The independent value holds a numerical derivative: 1e-5 relative.
  EXPECT_NEAR(mono.At(1, 2, 3).deltaU, 3.0188924892e-04, 1e-5 * 3.0188924892e-04);
  ModelCase hex(kHex, 12);
  hex.m.Str = 1;
  hex.Set(Slot::Str1, {1.5f, 0.5f, 30.0f});
  EXPECT_NEAR(hex.At(1, 2, 3).deltaU, 4.4203129962e-03, 1e-5 * 4.4203129962e-03);
}

TEST(SizeStrainModels, SizeModelsMatchTheIndependentValues) {
  ModelCase mono(kMono, 2);
  mono.m.sizeModel = 1;
  mono.m.sizeAxis[2] = 1.0f;
  mono.Set(Slot::LorSiz, {0.2f});
  ExpectRelative(mono.At(1, 2, 3).deltaY, 1.0503459666e-01, "platelet");
  mono.m.sizeModel = -1;
  ExpectRelative(mono.At(1, 2, 3).deltaY, 1.7019909960e-01, "needle");
  mono.m.sizeModel = 0;
  mono.m.Str = 2;
  mono.Set(Slot::LorSiz, {0.01f, 0.02f, 0.005f, 0.002f, -0.003f, 0.001f});
  ExpectRelative(mono.At(1, 2, 3).deltaY, 1.0534382436e+01, "ellipsoid");
  ModelCase harmonic(kMono, 2);
  harmonic.m.sizeModel = 15;
  harmonic.Set(Slot::SizeSH1,
               {0.05f, 0.01f, -0.02f, 0.03f, 0.015f, -0.01f, 0.02f, 0.005f, -0.015f});
  ExpectRelative(harmonic.At(1, 2, 3).deltaY, 5.1329979023e-02, "monoclinic harmonics");
  ModelCase trigonal(kHex, 9);
  trigonal.m.sizeModel = 16;
  trigonal.Set(Slot::SizeSH1, {0.05f, 0.01f, -0.02f, 0.03f, 0.015f, -0.01f, 0.02f});
  ExpectRelative(trigonal.At(1, 2, 3).deltaY, 8.2114488859e-02, "trigonal harmonics");
}

TEST(SizeStrainModels, ShiftModelsMatchTheIndependentValues) {
  ModelCase mono(kMono, 2);
  mono.m.shiftAxis[1] = 1.0f;
  mono.Set(Slot::Shift1, {0.04f});
  mono.m.ModS = 1;
  ExpectRelative(mono.At(1, 2, 3).shift, 1.9962896257e-02, "cos");
  mono.m.ModS = -1;
  ExpectRelative(mono.At(1, 2, 3).shift, 3.4662411529e-02, "sin");
  mono.m.ModS = 2;
  BroadeningReflection r;
  r.h = {1, 2, 3};
  r.tanTheta = 0.7;
  r.fileCoefficient = 1.5f;
  EXPECT_NEAR(SizeStrainBroadening(mono.m, r).shift, 0.7 * 1.5 * 0.04, 1e-8);
  mono.m.ModS = 3;
  EXPECT_EQ(mono.At(1, 2, 3).shift, 0.0);
}

// ---- Edge cases --------------------------------------------------------------

TEST(SizeStrainModels, ModelOneGivesNoStrainWhenHSquaredEqualsKSquared) {
  ModelCase c(kOrth, 3);
  c.m.strainModel = 1;
  c.Set(Slot::Str1, {2.0f});
  EXPECT_EQ(c.At(2, 2, 1).deltaU, 0.0);
  EXPECT_EQ(c.At(2, -2, 3).deltaU, 0.0);
  EXPECT_GT(c.At(2, 1, 1).deltaU, 0.0);
}

TEST(SizeStrainModels, SizeRulesBroadenNoReflectionThatFailsThemAndGiveItNoDerivative) {
  // Model: a reflection that meets the rule, one that fails it.
  const std::pair<std::array<double, 3>, std::array<double, 3>> cases[] = {
      {{0, 0, 2}, {1, 0, 2}},  // 2: 00L
      {{0, 3, 0}, {0, 3, 1}},  // 3: 0K0
      {{2, 0, 0}, {2, 1, 0}},  // 4: H00
      {{1, 2, 0}, {1, 2, 1}},  // 5: HK0
      {{1, 0, 2}, {1, 1, 2}},  // 6: H0L
      {{0, 1, 2}, {1, 1, 2}},  // 7: 0KL
  };
  for (int model = 2; model <= 7; ++model) {
    ModelCase c(kOrth, 3);
    c.m.sizeModel = model;
    c.Set(Slot::LorSiz, {0.3f});
    const auto& [meets, fails] = cases[model - 2];
    const BroadeningTerms yes = c.At(meets[0], meets[1], meets[2]);
    const BroadeningTerms no = c.At(fails[0], fails[1], fails[2]);
    EXPECT_FLOAT_EQ(yes.deltaY, 0.3) << model;
    EXPECT_EQ(SizeSlotDerivative(yes, Slot::LorSiz), 1.0) << model;
    EXPECT_EQ(no.deltaY, 0.0) << model;
    EXPECT_EQ(SizeSlotDerivative(no, Slot::LorSiz), 0.0) << model;
  }
}

TEST(SizeStrainModels, ParityRulesUseTruncatedIndicesAndZeroTestsTheRealOnes) {
  ModelCase c(kOrth, 3);
  c.Set(Slot::LorSiz, {0.3f});
  c.m.sizeModel = 12;  // h odd
  EXPECT_GT(c.At(3, 0, 0).deltaY, 0.0);
  EXPECT_GT(c.At(-3, 0, 0).deltaY, 0.0);
  EXPECT_GT(c.At(1.4, 0, 0).deltaY, 0.0);  // a satellite of 1 0 0
  EXPECT_EQ(c.At(2, 1, 0).deltaY, 0.0);
  c.m.sizeModel = 4;  // H00: a satellite with k = 0.3 is not H00
  EXPECT_EQ(c.At(1, 0.3, 0).deltaY, 0.0);
  c.m.sizeModel = 8;  // satellites only
  BroadeningReflection r;
  r.h = {1, 0.3, 0};
  r.satellite = true;
  EXPECT_FLOAT_EQ(SizeStrainBroadening(c.m, r).deltaY, 0.3);
  EXPECT_EQ(c.At(1, 0, 0).deltaY, 0.0);
}

// Model 9 holds no P²: its terms are in the units of U whatever P² is.
TEST(SizeStrainModels, ModelNineAddsToUWithoutPSquared) {
  ModelCase c(kOrth, 3);
  c.m.strainModel = 9;
  c.Set(Slot::Str1, {0.01f, 0.02f, 0.03f, 0.04f});
  const double big = c.At(1, 2, 3).deltaU;
  c.m.P2 = 1.0e-12;
  const double small = c.At(1, 2, 3).deltaU;
  EXPECT_EQ(big, small);
  // D = 14: 0.01 + 0.02 81/196 + 0.03 (4 + 36)/196 + 0.04 4/196.
  EXPECT_NEAR(small, 0.01 + 0.02 * 81.0 / 196.0 + 0.03 * 40.0 / 196.0 + 0.04 * 4.0 / 196.0, 1e-9);
}

TEST(SizeStrainModels, StrTwoRunsNoStrainModel) {
  ModelCase c(kOrth, 3);
  c.m.Str = 2;
  c.m.strainModel = 2;
  c.Set(Slot::Str1, {1.5f});
  c.Set(Slot::LorSiz, {0.01f, 0.01f, 0.01f, 0.0f, 0.0f, 0.0f});
  const BroadeningTerms t = c.At(1, 2, 3);
  EXPECT_EQ(t.deltaU, 0.0);
  EXPECT_EQ(StrainSlotDerivative(t, Slot::Str1), 0.0);
  EXPECT_GT(t.deltaY, 0.0);
}

// The relative width of d that a strain gives is the same on an energy
// pattern as on a 2theta pattern, whatever the energy constant Dtt1: the
// energy FWHM is E times it, and U multiplies E². With Dtt1 to the first
// power, as the legacy rule had it, the same strain would broaden the peaks
// of two detectors differently.
TEST(SizeStrainModels, EnergyPSquaredGivesTheStrainOfTheAnglePatternWhateverDtt1) {
  Pattern angle;
  angle.IXUNIT = AbscissaUnit::kTwoTheta;
  EXPECT_DOUBLE_EQ(StrainP2(angle), kP2);
  for (float dtt1 : {10.0f, 100.0f, 250.0f}) {
    Pattern energy;
    energy.IXUNIT = AbscissaUnit::kEnergy;
    energy.GLB[8] = dtt1;
    // 2theta: FWHM(rad) = 2 tan(theta) eps, so eps = sqrt(dU) (pi/180)/2.
    // Energy: FWHM = E eps, so eps = sqrt(dU).
    const double epsAngle = std::sqrt(StrainP2(angle)) * (M_PI / 180.0) / 2.0;
    EXPECT_NEAR(std::sqrt(StrainP2(energy)), epsAngle, 1e-9 * epsAngle) << dtt1;
  }
  Pattern tof;
  tof.IXUNIT = AbscissaUnit::kTimeOfFlight;
  tof.GLB[8] = 5000.0f;
  EXPECT_DOUBLE_EQ(StrainP2(tof), 1.0e-6 * 5000.0 * 5000.0);
}

// ---- Corrections ---------------------------------------------------------------

// The length of an axis is the whole quadratic form: a reflection along the
// axis makes an angle 0 with it in any cell, so shift model 1 gives Shift1
// and model -1 nothing.
TEST(SizeStrainModels, AxisAnglesUseTheWholeQuadraticForm) {
  ModelCase c(kMono, 2);
  c.Set(Slot::Shift1, {0.04f});
  c.m.shiftAxis[1] = 1.0f;
  c.m.shiftAxis[3] = 1.0f;
  c.m.ModS = 1;
  EXPECT_NEAR(c.At(2, 0, 2).shift, 0.04, 1e-9);
  c.m.ModS = -1;
  EXPECT_NEAR(c.At(2, 0, 2).shift, 0.0, 1e-6);
}

// Y44+ is the real part of the fourth harmonic: it vanishes along the b
// axis, where every harmonic with m = 4 does.
TEST(SizeStrainModels, FourthHarmonicVanishesAlongTheUniqueAxis) {
  ModelCase c(kMono, 2);
  c.m.sizeModel = 15;
  c.Set(Slot::SizeSH5, {1.0f});
  EXPECT_NEAR(c.At(0, 3, 0).deltaY, 0.0, 1e-12);
  c.Set(Slot::SizeSH5, {0.0f, 1.0f});
  EXPECT_NEAR(c.At(0, 3, 0).deltaY, 0.0, 1e-12);
}

// The hexagonal form of the generalized strain on rhombohedral axes works in
// the hexagonal setting of the same lattice: the same reflection gives the
// same broadening in either description.
TEST(SizeStrainModels, GeneralizedStrainOnRhombohedralAxesUsesTheHexagonalSetting) {
  const double ah = 4.7, ch = 12.4;
  const double ar = std::sqrt(3.0 * ah * ah + ch * ch) / 3.0;
  const double alpha = 2.0 * std::asin(ah / (2.0 * ar)) * 180.0 / M_PI;
  const float rh[6] = {static_cast<float>(ar),    static_cast<float>(ar),
                       static_cast<float>(ar),    static_cast<float>(alpha),
                       static_cast<float>(alpha), static_cast<float>(alpha)};
  const float hx[6] = {
      static_cast<float>(ah), static_cast<float>(ah), static_cast<float>(ch), 90.0f, 90.0f, 120.0f};
  ModelCase r(rh, 7);
  ModelCase h(hx, 12);
  for (ModelCase* c : {&r, &h}) {
    c->m.Str = 1;
    c->Set(Slot::Str1, {1.5f, 0.5f, 30.0f});
  }
  // Rhombohedral (1 1 0) is hexagonal (0 1 2); (2 1 1) is (1 0 4).
  EXPECT_NEAR(r.At(1, 1, 0).deltaU, h.At(0, 1, 2).deltaU, 2e-5 * h.At(0, 1, 2).deltaU);
  EXPECT_NEAR(r.At(2, 1, 1).deltaU, h.At(1, 0, 4).deltaU, 2e-5 * h.At(1, 0, 4).deltaU);
}

// ---- Derivatives ---------------------------------------------------------------

// Every parameter derivative of a model against a central difference of the model.
void CheckDerivatives(ModelCase& c, int first, int count, double (*value)(const BroadeningTerms&),
                      double (*slot)(const BroadeningTerms&, int), const char* what) {
  for (const auto& h : {std::array<double, 3>{1, 2, 3}, std::array<double, 3>{2, -1, 1},
                        std::array<double, 3>{3, 0, 2}, std::array<double, 3>{1, 1, 0}}) {
    const BroadeningTerms t = c.At(h[0], h[1], h[2]);
    for (int s = first; s < first + count; ++s) {
      const float saved = c.par[s];
      // A step relative to the value, wide against the rounding of a 32-bit
      // parameter (correlation angles are tens of degrees).
      const double step = 1e-3 * std::max(1.0f, std::fabs(saved));
      c.par[s] = static_cast<float>(saved + step);
      const double up = value(c.At(h[0], h[1], h[2]));
      c.par[s] = static_cast<float>(saved - step);
      const double down = value(c.At(h[0], h[1], h[2]));
      c.par[s] = saved;
      const double numeric = (up - down) / (2.0 * step);
      EXPECT_NEAR(slot(t, s), numeric, 1e-4 * std::fabs(numeric) + 1e-10)
          << what << " slot " << s << " at " << h[0] << " " << h[1] << " " << h[2];
    }
  }
}

double U(const BroadeningTerms& t) {
  return t.deltaU;
}
double Y(const BroadeningTerms& t) {
  return t.deltaY;
}
double Shift(const BroadeningTerms& t) {
  return t.shift;
}

TEST(SizeStrainModels, StrainDerivativesFollowTheModel) {
  for (int model = 1; model <= 11; ++model) {
    const bool mono = model == 3 || model == 4 || model == 11;
    ModelCase c(mono ? kMono : kOrth, mono ? 2 : 3);
    c.m.strainModel = model;
    c.m.strainAxis[1] = 1.0f;
    c.m.strainAxis[2] = 0.5f;
    c.Set(Slot::Str1, {1.5f, 0.5f, 0.25f, 0.75f, -0.5f, 0.125f, 0.8f, 0.3f});
    CheckDerivatives(c, Slot::Str1, 8, U, StrainSlotDerivative, "strain model");
  }
  ModelCase mono(kMono, 2);
  mono.m.Str = 1;
  mono.Set(Slot::Str1, {1.5f, 0.5f, 0.25f, 2.0f, 30.0f, -20.0f, 10.0f, 45.0f, -5.0f, 15.0f});
  CheckDerivatives(mono, Slot::Str1, 10, U, StrainSlotDerivative, "generalized monoclinic");
  ModelCase hex(kHex, 12);
  hex.m.Str = 1;
  hex.Set(Slot::Str1, {1.5f, 0.5f, 30.0f});
  CheckDerivatives(hex, Slot::Str1, 3, U, StrainSlotDerivative, "generalized hexagonal");
}

TEST(SizeStrainModels, SizeAndShiftDerivativesFollowTheModel) {
  ModelCase c(kMono, 2);
  c.m.Str = 2;
  c.Set(Slot::LorSiz, {0.01f, 0.02f, 0.005f, 0.002f, -0.003f, 0.001f});
  CheckDerivatives(c, Slot::LorSiz, 6, Y, SizeSlotDerivative, "ellipsoid");
  ModelCase h(kMono, 2);
  h.m.sizeModel = 15;
  h.Set(Slot::SizeSH1, {0.05f, 0.01f, -0.02f, 0.03f, 0.015f, -0.01f, 0.02f, 0.005f, -0.015f});
  CheckDerivatives(h, Slot::SizeSH1, 9, Y, SizeSlotDerivative, "harmonics");
  ModelCase s(kMono, 2);
  s.m.ModS = -1;
  s.m.shiftAxis[1] = 1.0f;
  s.Set(Slot::Shift1, {0.04f});
  CheckDerivatives(s, Slot::Shift1, 1, Shift, ShiftSlotDerivative, "shift");
}

}  // namespace
}  // namespace corvinet
