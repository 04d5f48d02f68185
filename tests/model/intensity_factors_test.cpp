// Tests of the intensity factors: texture, surface roughness, Corr and their derivatives.
#include "model/intensity_factors.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>

#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;

constexpr double kPi = std::numbers::pi;

Table2<double, 3, 3> CubicGstar(double a) {
  Table2<double, 3, 3> g;
  g.Fill(0.0);
  for (int i = 1; i <= 3; ++i) g(i, i) = 1.0 / (a * a);
  return g;
}

// Reciprocal metric of a hexagonal cell: a*² = 4/(3a²), a*·b* = 2/(3a²), c*² = 1/c².
Table2<double, 3, 3> HexagonalGstar(double a, double c) {
  Table2<double, 3, 3> g;
  g.Fill(0.0);
  g(1, 1) = g(2, 2) = 4.0 / (3.0 * a * a);
  g(1, 2) = g(2, 1) = 2.0 / (3.0 * a * a);
  g(3, 3) = 1.0 / (c * c);
  return g;
}

double QuadraticForm(const std::array<double, 3>& h, const Table2<double, 3, 3>& g) {
  double q = 0.0;
  for (int i = 1; i <= 3; ++i) {
    for (int j = 1; j <= 3; ++j) q += h[i - 1] * g(i, j) * h[j - 1];
  }
  return q;
}

// A reflection h of a cell with metric g at wavelength lambda, with F² = 150.
CorrectionInput InputFor(const std::array<double, 3>& h, const Table2<double, 3, 3>& g,
                         double lambda = 1.5406, int w = 1) {
  CorrectionInput in;
  in.wavelengthIndex = w;
  in.h = h;
  const double q = QuadraticForm(h, g);
  in.Q = static_cast<float>(q);
  in.s2 = static_cast<float>(q / 4.0);
  in.sin2Theta = static_cast<float>(lambda * lambda * q / 4.0);
  in.F2 = 150.0f;
  return in;
}

PhasePattern& Contribution(Job& job) {
  return job.phases[1].pat[1];
}

void SetPreferredOrientation(Job& job, int nori, float pref1, float pref2, float px, float py,
                             float pz) {
  job.patterns[1].NORI = nori;
  PhasePattern& c = Contribution(job);
  c.PAR[12] = pref1;
  c.PAR[13] = pref2;
  c.PREF[1] = px;
  c.PREF[2] = py;
  c.PREF[3] = pz;
}

// Central difference of the corrected intensity with respect to `slot`, in the job.
double CentralDifference(Job& job, float& slot, double step,
                         const std::function<float(Job&)>& intensity) {
  const float kept = slot;
  slot = static_cast<float>(kept + step);
  const double up = intensity(job);
  slot = static_cast<float>(kept - step);
  const double down = intensity(job);
  const double realStep = 0.5 * (static_cast<double>(static_cast<float>(kept + step)) -
                                 static_cast<double>(static_cast<float>(kept - step)));
  slot = kept;
  return (up - down) / (2.0 * realStep);
}

void ExpectRelative(double got, double want, double tolerance) {
  EXPECT_NEAR(got, want, tolerance * std::fabs(want)) << "got " << got << " want " << want;
}

// --- The angle to the texture axis -----------------------------------------------

TEST(OrientationCos2, ReflectionPerpendicularToTheAxisIsExactlyZero) {
  Table1<float, 3> pref;
  pref[1] = 0.0f;
  pref[2] = 0.0f;
  pref[3] = 1.0f;
  const Table2<double, 3, 3> g = CubicGstar(5.43);
  EXPECT_EQ(OrientationCos2({1, 0, 0}, pref, g, static_cast<float>(1.0 / (5.43 * 5.43))), 0.0f);
  const Table2<double, 3, 3> hex = HexagonalGstar(3.2, 5.2);
  EXPECT_EQ(
      OrientationCos2({1, 1, 0}, pref, hex, static_cast<float>(QuadraticForm({1, 1, 0}, hex))),
      0.0f);
}

TEST(OrientationCos2, CubicAngleBetweenIndicesAndAxis) {
  Table1<float, 3> pref;
  pref[1] = 1.0f;
  pref[2] = 1.0f;
  pref[3] = 0.0f;
  const Table2<double, 3, 3> g = CubicGstar(4.0);
  // (1,2,3)·(1,1,0) = 3, |h|² = 14, |p|² = 2.
  EXPECT_NEAR(OrientationCos2({1, 2, 3}, pref, g, static_cast<float>(14.0 / 16.0)), 9.0 / 28.0,
              1e-6);
  EXPECT_NEAR(OrientationCos2({2, 2, 0}, pref, g, static_cast<float>(8.0 / 16.0)), 1.0, 1e-6);
}

TEST(OrientationCos2, HexagonalAngleUsesTheReciprocalMetric) {
  Table1<float, 3> pref;
  pref[1] = 1.0f;
  pref[2] = 0.0f;
  pref[3] = 0.0f;
  const Table2<double, 3, 3> g = HexagonalGstar(3.0, 5.0);
  // a* + b* makes 30 degrees with a*.
  const double q = QuadraticForm({1, 1, 0}, g);
  EXPECT_NEAR(OrientationCos2({1, 1, 0}, pref, g, static_cast<float>(q)), 0.75, 1e-6);
}

// --- Preferred orientation factors -------------------------------------------------

TEST(PreferredOrientation, PerpendicularReflectionTakesTheRightAngleInRietveldToraya) {
  CapturedJob job;
  SetPreferredOrientation(*job, 0, -0.35f, 0.2f, 0.0f, 0.0f, 1.0f);
  const Table2<double, 3, 3> g = CubicGstar(5.0);
  const IntensityCorrections r = IntensityFactors(*job, 1, 1, InputFor({2, 1, 0}, g), g, false);
  const double halfPi2 = (kPi / 2.0) * (kPi / 2.0);
  EXPECT_NEAR(r.P, 0.2 + 0.8 * std::exp(-0.35 * halfPi2), 1e-6);
}

TEST(PreferredOrientation, RietveldTorayaAtAGeneralAngle) {
  CapturedJob job;
  const double c = 9.0 / 28.0;  // (1,2,3) against (1,1,0)
  const double alpha = std::acos(std::sqrt(c));
  const PreferredOrientation po =
      PreferredOrientationFactor(*job, 0, 0.4f, 0.1f, static_cast<float>(c));
  EXPECT_NEAR(po.P, 0.1 + 0.9 * std::exp(0.4 * alpha * alpha), 2e-6);
}

TEST(PreferredOrientation, ReflectionAlongTheAxis) {
  CapturedJob job;
  // Rietveld-Toraya: the angle is 0, so there is no correction.
  EXPECT_NEAR(PreferredOrientationFactor(*job, 0, 0.7f, 0.25f, 1.0f).P, 1.0, 1e-6);
  // March-Dollase: t = Pref1², so P = Pref2 + (1 - Pref2)/Pref1³.
  EXPECT_NEAR(PreferredOrientationFactor(*job, 1, 0.7f, 0.25f, 1.0f).P,
              0.25 + 0.75 / (0.7 * 0.7 * 0.7), 3e-6);
}

TEST(PreferredOrientation, MarchDollaseAtSeveralAngles) {
  CapturedJob job;
  for (double c : {0.0, 0.2, 0.6, 0.95}) {
    const double r = 0.8;
    const double t = (1.0 - c) / r + r * r * c;
    const PreferredOrientation po =
        PreferredOrientationFactor(*job, 1, 0.8f, 0.15f, static_cast<float>(c));
    EXPECT_NEAR(po.P, 0.15 + 0.85 * std::pow(t, -1.5), 3e-6) << c;
  }
}

TEST(PreferredOrientation, MarchDollaseWithPref1OneIsNoTexture) {
  CapturedJob job;
  for (float c : {0.0f, 0.3f, 0.77f, 1.0f}) {
    const PreferredOrientation po = PreferredOrientationFactor(*job, 1, 1.0f, 0.4f, c);
    EXPECT_NEAR(po.t, 1.0, 1e-6) << c;
    EXPECT_NEAR(po.P, 1.0, 1e-6) << c;
  }
}

TEST(PreferredOrientation, MarchDollaseWithPref1ZeroIsNotGuarded) {
  CapturedJob job;
  const PreferredOrientation po = PreferredOrientationFactor(*job, 1, 0.0f, 0.3f, 0.4f);
  EXPECT_TRUE(std::isinf(po.t));
  EXPECT_FLOAT_EQ(po.P, 0.3f);
  EXPECT_EQ(job.Console(), "");
}

TEST(PreferredOrientation, UnusedWithoutValuesOrCodes) {
  CapturedJob job;
  job->patterns[1].NORI = 7;  // not looked at when there is no texture
  const Table2<double, 3, 3> g = CubicGstar(5.0);
  IntensityCorrections r;
  ASSERT_NO_THROW(r = IntensityFactors(*job, 1, 1, InputFor({1, 1, 1}, g), g, false));
  EXPECT_EQ(r.P, 1.0f);
  EXPECT_EQ(job.Console(), "");
}

TEST(PreferredOrientation, AnyNonZeroCodeSwitchesItOn) {
  CapturedJob job;
  SetPreferredOrientation(*job, 1, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f);
  const Table2<double, 3, 3> g = CubicGstar(5.0);
  EXPECT_EQ(IntensityFactors(*job, 1, 1, InputFor({1, 1, 1}, g), g, false).P, 1.0f);
  Contribution(*job).PACtyped[13] = 81.0f;
  // March-Dollase with Pref1 = 0: t is infinite, so P is Pref2 = 0.
  EXPECT_EQ(IntensityFactors(*job, 1, 1, InputFor({1, 1, 1}, g), g, false).P, 0.0f);
}

// --- Stops ----------------------------------------------------------------------------

TEST(PreferredOrientation, PecharskiiModelStops) {
  CapturedJob job;
  SetPreferredOrientation(*job, 2, 0.5f, 0.0f, 0.0f, 0.0f, 1.0f);
  const Table2<double, 3, 3> g = CubicGstar(5.0);
  EXPECT_THROW(IntensityFactors(*job, 1, 1, InputFor({1, 1, 1}, g), g, false), ProcessStop);
  EXPECT_EQ(job.Console(), "=== Stop/Warning Box ===\n P.Orient. Model not available\n");
}

TEST(PreferredOrientation, UnknownModelStops) {
  for (int nori : {3, -1}) {
    CapturedJob job;
    SetPreferredOrientation(*job, nori, 0.5f, 0.0f, 0.0f, 0.0f, 1.0f);
    const Table2<double, 3, 3> g = CubicGstar(5.0);
    EXPECT_THROW(IntensityFactors(*job, 1, 1, InputFor({1, 1, 1}, g), g, false), ProcessStop);
    EXPECT_EQ(job.Console(), "=== Stop/Warning Box ===\n Illegal value of NORI\n") << nori;
  }
}

TEST(PreferredOrientation, PecharskiiModelStopsAtTheDerivativesEvenWithoutTexture) {
  const Table2<double, 3, 3> g = CubicGstar(5.0);
  {
    CapturedJob job;
    job->patterns[1].NORI = 2;
    EXPECT_NO_THROW(IntensityFactors(*job, 1, 1, InputFor({1, 1, 1}, g), g, false));
    EXPECT_EQ(job.Console(), "");
  }
  {
    CapturedJob job;
    job->patterns[1].NORI = 2;
    EXPECT_THROW(IntensityFactors(*job, 1, 1, InputFor({1, 1, 1}, g), g, true), ProcessStop);
    EXPECT_EQ(job.Console(), "=== Stop/Warning Box ===\n P.Orient. Model not available\n");
  }
}

TEST(PreferredOrientation, EnergyFormStopsAsTheAngleForm) {
  CapturedJob job;
  SetPreferredOrientation(*job, 4, 0.5f, 0.0f, 0.0f, 0.0f, 1.0f);
  const Table2<double, 3, 3> g = CubicGstar(5.0);
  EXPECT_THROW(EnergyIntensityFactors(*job, 1, 1, InputFor({1, 1, 1}, g), g, false), ProcessStop);
  EXPECT_EQ(job.Console(), "=== Stop/Warning Box ===\n Illegal value of NORI\n");
}

// --- Derivatives of the texture against central differences ---------------------------

void CheckTextureDerivatives(int nori, float pref1, float pref2) {
  CapturedJob job;
  SetPreferredOrientation(*job, nori, pref1, pref2, 1.0f, 1.0f, 0.0f);
  Contribution(*job).PAR[2] = 0.6f;  // Bov
  const Table2<double, 3, 3> g = CubicGstar(5.0);
  for (const std::array<double, 3>& h :
       {std::array<double, 3>{1, 2, 3}, std::array<double, 3>{0, 0, 2},
        std::array<double, 3>{3, 1, 0}}) {
    const CorrectionInput in = InputFor(h, g);
    const IntensityCorrections r = IntensityFactors(*job, 1, 1, in, g, true);
    const auto intensity = [&](Job& j) {
      return IntensityFactors(j, 1, 1, in, g, false).intensity;
    };
    PhasePattern& c = Contribution(*job);
    ExpectRelative(r.dPref1, CentralDifference(*job, c.PAR[12], 1e-2, intensity), 1e-3);
    ExpectRelative(r.dPref2, CentralDifference(*job, c.PAR[13], 1e-2, intensity), 1e-3);
    ExpectRelative(r.dBov, CentralDifference(*job, c.PAR[2], 1e-2, intensity), 1e-3);
  }
}

TEST(IntensityFactors, RietveldTorayaDerivativesMatchCentralDifferences) {
  CheckTextureDerivatives(0, -0.3f, 0.25f);
  CheckTextureDerivatives(0, 0.2f, -0.1f);
}

TEST(IntensityFactors, MarchDollaseDerivativesMatchCentralDifferences) {
  CheckTextureDerivatives(1, 0.75f, 0.2f);
  CheckTextureDerivatives(1, 1.3f, 0.0f);
}

TEST(IntensityFactors, NoDerivativesWhenNothingIsRefined) {
  CapturedJob job;
  SetPreferredOrientation(*job, 0, 0.3f, 0.1f, 0.0f, 0.0f, 1.0f);
  job->patterns[1].MORE = 1;
  job->patterns[1].GLB[29] = 0.1f;
  Contribution(*job).PAR[2] = 0.5f;
  const Table2<double, 3, 3> g = CubicGstar(5.0);
  const IntensityCorrections r = IntensityFactors(*job, 1, 1, InputFor({1, 2, 3}, g), g, false);
  EXPECT_EQ(r.dBov, 0.0f);
  EXPECT_EQ(r.dPref1, 0.0f);
  EXPECT_EQ(r.dPref2, 0.0f);
  EXPECT_EQ(r.dP0, 0.0f);
  EXPECT_EQ(r.dCp, 0.0f);
  EXPECT_EQ(r.dTau, 0.0f);
  EXPECT_NE(r.Corr, 1.0f);
}

// --- Surface roughness -------------------------------------------------------------

void SetRoughness(Job& job, float p0, float cp, float tau) {
  Pattern& p = job.patterns[1];
  p.MORE = 1;
  p.GLB[27] = p0;
  p.GLB[28] = cp;
  p.GLB[29] = tau;
}

TEST(SurfaceRoughness, ValueAtAnAngle) {
  Pattern p;
  p.MORE = 1;
  p.GLB[27] = 0.05f;
  p.GLB[28] = 0.3f;
  p.GLB[29] = 0.2f;
  const SurfaceRoughness sr = SurfaceRoughnessFactor(p, 0.4f);
  EXPECT_NEAR(sr.t, 0.5, 1e-7);
  EXPECT_NEAR(sr.SR, 1.0 - 0.05 - 0.3 * 0.5 * 0.5, 1e-6);
  const SurfaceRoughness low = SurfaceRoughnessFactor(p, 0.1f);  // t = 2
  EXPECT_NEAR(low.SR, 1.0 - 0.05 - 0.3 * 2.0 * (1.0 - 2.0), 1e-6);
}

TEST(SurfaceRoughness, OnlyForXraysInReflectionGeometryWithTheMicroabsorptionLine) {
  Pattern p;
  p.GLB[27] = 0.05f;
  p.GLB[28] = 0.3f;
  p.GLB[29] = 0.2f;
  EXPECT_EQ(SurfaceRoughnessFactor(p, 0.4f).SR, 1.0f);  // MORE 0
  p.MORE = 1;
  for (int ilor : {0, 3}) {
    for (int jobtyp : {0, 2}) {
      p.ILOR = ilor;
      p.JOBTYP = jobtyp;
      EXPECT_NE(SurfaceRoughnessFactor(p, 0.4f).SR, 1.0f) << ilor << " " << jobtyp;
    }
  }
  p.JOBTYP = 0;
  for (int ilor : {1, 2}) {
    p.ILOR = ilor;
    EXPECT_EQ(SurfaceRoughnessFactor(p, 0.4f).SR, 1.0f) << ilor;
  }
  p.ILOR = 0;
  for (int jobtyp : {1, -1, 3}) {
    p.JOBTYP = jobtyp;
    EXPECT_EQ(SurfaceRoughnessFactor(p, 0.4f).SR, 1.0f) << jobtyp;
  }
}

TEST(IntensityFactors, RoughnessDerivativesMatchCentralDifferences) {
  const Table2<double, 3, 3> g = CubicGstar(5.43);
  for (const std::array<double, 3>& h :
       {std::array<double, 3>{1, 1, 1}, std::array<double, 3>{2, 2, 0},
        std::array<double, 3>{3, 3, 1}}) {
    CapturedJob job;
    SetRoughness(*job, 0.04f, 0.35f, 0.12f);
    const CorrectionInput in = InputFor(h, g);
    const IntensityCorrections r = IntensityFactors(*job, 1, 1, in, g, true);
    const auto intensity = [&](Job& j) {
      return IntensityFactors(j, 1, 1, in, g, false).intensity;
    };
    Pattern& p = job->patterns[1];
    ExpectRelative(r.dP0, CentralDifference(*job, p.GLB[27], 1e-2, intensity), 1e-3);
    ExpectRelative(r.dCp, CentralDifference(*job, p.GLB[28], 1e-2, intensity), 1e-3);
    ExpectRelative(r.dTau, CentralDifference(*job, p.GLB[29], 1e-3, intensity), 1e-3);
  }
}

TEST(IntensityFactors, NoRoughnessDerivativesWhenTheGeometryDoesNotTakeIt) {
  CapturedJob job;
  SetRoughness(*job, 0.04f, 0.35f, 0.12f);
  job->patterns[1].ILOR = 2;
  const Table2<double, 3, 3> g = CubicGstar(5.43);
  const IntensityCorrections r = IntensityFactors(*job, 1, 1, InputFor({1, 1, 1}, g), g, true);
  EXPECT_EQ(r.SR, 1.0f);
  EXPECT_EQ(r.dP0, 0.0f);
  EXPECT_EQ(r.dCp, 0.0f);
  EXPECT_EQ(r.dTau, 0.0f);
}

// --- Composition of Corr ---------------------------------------------------------------

TEST(IntensityFactors, CorrIsDisplacementTimesTextureTimesRoughness) {
  CapturedJob job;
  SetPreferredOrientation(*job, 1, 0.9f, 0.05f, 0.0f, 0.0f, 1.0f);
  SetRoughness(*job, 0.02f, 0.25f, 0.1f);
  Contribution(*job).PAR[2] = 0.8f;
  const Table2<double, 3, 3> g = CubicGstar(4.2);
  const std::array<double, 3> h{1, 0, 2};
  const CorrectionInput in = InputFor(h, g);
  const IntensityCorrections r = IntensityFactors(*job, 1, 1, in, g, false);
  const double q = 5.0 / (4.2 * 4.2);
  const double s2 = q / 4.0;
  const double c = 4.0 / 5.0;  // (1,0,2) against (0,0,1)
  const double t = (1.0 - c) / 0.9 + 0.81 * c;
  const double P = 0.05 + 0.95 * std::pow(t, -1.5);
  const double sinTheta = 1.5406 * std::sqrt(s2);
  const double tt = 0.1 / sinTheta;
  const double SR = 1.0 - 0.02 - 0.25 * tt * (1.0 - tt);
  const double corr = std::exp(-2.0 * 0.8 * s2) * P * SR;
  EXPECT_NEAR(r.P, P, 2e-6);
  EXPECT_NEAR(r.SR, SR, 2e-6);
  ExpectRelative(r.Corr, corr, 5e-6);
  ExpectRelative(r.intensity, 150.0 * corr, 5e-6);
}

TEST(IntensityFactors, SecondWavelengthIsWeightedByTheRatio) {
  CapturedJob job;
  job->patterns[1].RATIO[1] = 1.0f;
  job->patterns[1].RATIO[2] = 0.4976f;
  Contribution(*job).PAR[2] = 0.3f;
  const Table2<double, 3, 3> g = CubicGstar(5.0);
  const IntensityCorrections first =
      IntensityFactors(*job, 1, 1, InputFor({2, 2, 0}, g, 1.5406, 1), g, false);
  const IntensityCorrections second =
      IntensityFactors(*job, 1, 1, InputFor({2, 2, 0}, g, 1.5444, 2), g, false);
  const double displacement = std::exp(-2.0 * 0.3 * 8.0 / 100.0);
  ExpectRelative(first.Corr, displacement, 2e-6);
  ExpectRelative(second.Corr, 0.4976 * displacement, 2e-6);
}

// --- Energy-dispersive form ----------------------------------------------------------------

TEST(EnergyIntensityFactors, DisplacementAndTextureOnlyWithQuarterQ) {
  CapturedJob job;
  SetPreferredOrientation(*job, 0, 0.5f, 0.3f, 0.0f, 0.0f, 1.0f);
  SetRoughness(*job, 0.2f, 0.5f, 0.3f);  // no roughness in this form
  job->patterns[1].RATIO[2] = 0.5f;      // nor a wavelength weight
  Contribution(*job).PAR[2] = 1.1f;
  const Table2<double, 3, 3> g = CubicGstar(3.5);
  CorrectionInput in = InputFor({1, 1, 0}, g, 1.0, 2);
  in.s2 = 99.0f;  // the form takes s² from Q
  const IntensityCorrections r = EnergyIntensityFactors(*job, 1, 1, in, g, false);
  const double halfPi2 = (kPi / 2.0) * (kPi / 2.0);
  const double P = 0.3 + 0.7 * std::exp(0.5 * halfPi2);
  const double corr = std::exp(-2.0 * 1.1 * (2.0 / (3.5 * 3.5)) / 4.0) * P;
  EXPECT_EQ(r.SR, 1.0f);
  ExpectRelative(r.Corr, corr, 5e-6);
}

TEST(EnergyIntensityFactors, DerivativesMatchCentralDifferences) {
  CapturedJob job;
  SetPreferredOrientation(*job, 1, 0.85f, 0.1f, 1.0f, 0.0f, 1.0f);
  Contribution(*job).PAR[2] = 0.4f;
  const Table2<double, 3, 3> g = CubicGstar(3.9);
  const CorrectionInput in = InputFor({2, 1, 1}, g, 1.0);
  const IntensityCorrections r = EnergyIntensityFactors(*job, 1, 1, in, g, true);
  const auto intensity = [&](Job& j) {
    return EnergyIntensityFactors(j, 1, 1, in, g, false).intensity;
  };
  PhasePattern& c = Contribution(*job);
  ExpectRelative(r.dBov, CentralDifference(*job, c.PAR[2], 1e-2, intensity), 1e-3);
  ExpectRelative(r.dPref1, CentralDifference(*job, c.PAR[12], 1e-2, intensity), 1e-3);
  ExpectRelative(r.dPref2, CentralDifference(*job, c.PAR[13], 1e-2, intensity), 1e-3);
  EXPECT_EQ(r.dP0, 0.0f);
  EXPECT_EQ(r.dCp, 0.0f);
  EXPECT_EQ(r.dTau, 0.0f);
}

}  // namespace
}  // namespace corvinet
