// Tests of the Lorentz-polarisation factor: geometries, job types, instruments, units, .cor term.
#include "model/lorentz_polarisation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace corvinet {
namespace {

// One Bragg angle in double, with the float arguments the factor is given.
struct Bragg {
  double twoTheta;  // degrees
  double s2;        // sin²θ
  double c;         // cosθ
  double cos2Sq;    // cos²2θ
};

Bragg At(double twoTheta) {
  const double theta = 0.5 * twoTheta * std::numbers::pi / 180.0;
  const double cos2 = std::cos(2.0 * theta);
  return {twoTheta, std::sin(theta) * std::sin(theta), std::cos(theta), cos2 * cos2};
}

float Lp(const Pattern& p, const Bragg& b) {
  return LorentzPolarisation(p, static_cast<float>(b.s2), static_cast<float>(b.c),
                             static_cast<float>(b.twoTheta));
}

// The Lorentz factor 1/(sin²θ cosθ) of the reflection geometries, halved as the program keeps it.
double Lorentz(const Bragg& b) {
  return 1.0 / (2.0 * b.s2 * b.c);
}

Pattern Xray(int ilor) {
  Pattern p;
  p.JOBTYP = 0;
  p.ILOR = ilor;
  return p;
}

void ExpectRelative(double got, double want, double tolerance = 2e-6) {
  EXPECT_NEAR(got / want, 1.0, tolerance) << "got " << got << " want " << want;
}

// --- Constant wavelength, X-rays -----------------------------------------------

TEST(LorentzPolarisation, BraggBrentanoWithMonochromatorTerm) {
  Pattern p = Xray(0);
  p.Cthm = 0.7998f;
  for (double tt : {12.0, 47.3, 95.0, 151.0}) {
    const Bragg b = At(tt);
    ExpectRelative(Lp(p, b), Lorentz(b) * (1.0 + 0.7998 * b.cos2Sq));
  }
}

TEST(LorentzPolarisation, MonochromatorTermZeroGivesNoPolarisationFactorAtAll) {
  Pattern p = Xray(0);
  p.Cthm = 0.0f;
  p.Rpolarz = 0.5f;  // not read in this geometry
  for (double tt : {20.0, 88.0, 140.0}) {
    const Bragg b = At(tt);
    ExpectRelative(Lp(p, b), Lorentz(b));
  }
}

TEST(LorentzPolarisation, UnpolarisedBeamGivesTheClassicalFactor) {
  Pattern p = Xray(0);
  p.Cthm = 1.0f;
  const Bragg b = At(38.4);
  ExpectRelative(Lp(p, b), (1.0 + b.cos2Sq) / (2.0 * b.s2 * b.c));
}

TEST(LorentzPolarisation, PatternCalculationOfXraysTakesTheXrayForm) {
  Pattern fit = Xray(0);
  fit.Cthm = 0.8f;
  Pattern calc = fit;
  calc.JOBTYP = 2;
  const Bragg b = At(63.0);
  EXPECT_EQ(Lp(calc, b), Lp(fit, b));
}

TEST(LorentzPolarisation, BraggBrentanoAbsorption) {
  Pattern p = Xray(0);
  p.Cthm = 0.8f;
  p.muR = 0.6f;
  for (double tt : {25.0, 110.0}) {
    const Bragg b = At(tt);
    const double mu = 0.6;
    const double a = std::exp(-(1.7133 - 0.0368 * b.s2) * mu + (0.0927 + 0.375 * b.s2) * mu * mu);
    ExpectRelative(Lp(p, b), a * Lorentz(b) * (1.0 + 0.8 * b.cos2Sq));
  }
}

TEST(LorentzPolarisation, AbsorptionBelowItsThresholdIsIgnored) {
  Pattern p = Xray(0);
  p.muR = 0.9e-06f;
  const Bragg b = At(30.0);
  ExpectRelative(Lp(p, b), Lorentz(b));
  p.muR = -0.5f;  // a negative value is below the threshold as well
  ExpectRelative(Lp(p, b), Lorentz(b));
}

TEST(LorentzPolarisation, FlatPlateWithPositionSensitiveDetector) {
  Pattern p = Xray(1);
  p.Cthm = 0.9f;
  p.PSD = 15.0f;
  p.muR = 0.4f;  // ILOR 1 has no absorption term
  const double rad = std::numbers::pi / 180.0;
  for (double tt : {30.0, 70.0, 120.0}) {
    const Bragg b = At(tt);
    const double f2 = 1.0 + std::sin(15.0 * rad) / std::sin((tt - 15.0) * rad);
    ExpectRelative(Lp(p, b), (1.0 + 0.9 * b.cos2Sq) / (2.0 * b.s2 * b.c * f2), 5e-6);
  }
}

TEST(LorentzPolarisation, XrayTransmissionWithAbsorptionAndPartialPolarisation) {
  Pattern p = Xray(2);
  p.Cthm = 0.64f;
  p.Rpolarz = 0.3f;
  p.muR = 0.35f;
  for (double tt : {18.0, 75.0, 130.0}) {
    const Bragg b = At(tt);
    const double a = std::exp(-0.35 / b.c) / b.c;
    const double k = 0.8;  // sqrt(0.64)
    const double pol =
        0.3 * (1.0 + 0.64 * b.cos2Sq) / 1.64 + 0.7 * (1.0 + k * b.cos2Sq) / (1.0 + k);
    const double sinTheta = std::sqrt(b.s2);
    ExpectRelative(Lp(p, b), a / (2.0 * sinTheta * b.c) * pol, 5e-6);
  }
}

TEST(LorentzPolarisation, SynchrotronGeometryTakesTheBeamPolarisation) {
  Pattern p = Xray(3);
  p.Cthm = 0.5f;  // not read: the beam polarisation replaces the monochromator term
  p.Rpolarz = 0.05f;
  for (double tt : {10.0, 90.0, 160.0}) {
    const Bragg b = At(tt);
    ExpectRelative(Lp(p, b), Lorentz(b) * (1.0 - 0.05 + 0.05 * b.cos2Sq));
  }
}

TEST(LorentzPolarisation, InstrumentFourUsesThePolarisationWhateverTheGeometry) {
  const Bragg b = At(55.0);
  for (int ilor : {0, 1, 3}) {
    Pattern p = Xray(ilor);
    p.INSTR = 4;
    p.Cthm = 0.8f;
    p.Rpolarz = 0.9f;
    p.PSD = 0.0f;  // the detector term of ILOR 1 is 1 with PSD 0
    ExpectRelative(Lp(p, b), Lorentz(b) * (1.0 - 0.9 + 0.9 * b.cos2Sq));
  }
  Pattern t = Xray(2);
  t.INSTR = 4;
  t.Rpolarz = 0.9f;
  ExpectRelative(Lp(t, b), 1.0 / (2.0 * std::sqrt(b.s2) * b.c) * (1.0 - 0.9 + 0.9 * b.cos2Sq));
}

// --- Neutrons --------------------------------------------------------------------

TEST(LorentzPolarisation, NeutronsHaveNoPolarisationSoRpolarzIsIgnored) {
  const Bragg b = At(72.0);
  for (int jobtyp : {1, -1, 3, -3}) {
    for (int ilor : {0, 3}) {
      Pattern p;
      p.JOBTYP = jobtyp;
      p.ILOR = ilor;
      p.Cthm = 0.8f;
      p.Rpolarz = 0.7f;
      p.INSTR = 4;
      ExpectRelative(Lp(p, b), Lorentz(b));
    }
  }
}

TEST(LorentzPolarisation, NeutronTransmissionKeepsTheReflectionLorentzFactor) {
  Pattern p;
  p.JOBTYP = 1;
  p.ILOR = 2;
  p.muR = 0.25f;
  const Bragg b = At(40.0);
  const double a = std::exp(-0.25 / b.c) / b.c;
  ExpectRelative(Lp(p, b), a * Lorentz(b));
}

// --- Low-angle scale ----------------------------------------------------------------

TEST(LorentzPolarisation, LowAngleScaleBelowSent0InBraggBrentano) {
  Pattern p = Xray(0);
  p.Sent0 = 20.0f;
  const double g = std::sin(10.0 * std::numbers::pi / 180.0);
  const Bragg low = At(12.0);
  ExpectRelative(Lp(p, low), Lorentz(low) * std::sqrt(low.s2) / g);
  const Bragg high = At(25.0);
  ExpectRelative(Lp(p, high), Lorentz(high));
}

TEST(LorentzPolarisation, LowAngleScaleOnlyForXraysInReflectionGeometry) {
  const Bragg low = At(12.0);
  Pattern neutron;
  neutron.JOBTYP = 1;
  neutron.Sent0 = 20.0f;
  ExpectRelative(Lp(neutron, low), Lorentz(low));
  Pattern transmission = Xray(2);
  transmission.Sent0 = 20.0f;
  ExpectRelative(Lp(transmission, low), 1.0 / (2.0 * std::sqrt(low.s2) * low.c));
  Pattern psd = Xray(1);
  psd.Sent0 = 20.0f;
  psd.PSD = 0.0f;
  ExpectRelative(Lp(psd, low), Lorentz(low));
}

TEST(LorentzPolarisation, SynchrotronGeometryPolarisationCarriesNoLowAngleScale) {
  // The ILOR 3 polarisation term is 1 - Rpolarz + c2 Rpolarz alone.
  Pattern p = Xray(3);
  p.Sent0 = 20.0f;
  p.Rpolarz = 0.1f;
  const Bragg low = At(12.0);
  ExpectRelative(Lp(p, low), Lorentz(low) * (0.9 + 0.1 * low.cos2Sq));
}

TEST(LorentzPolarisation, LowAngleScaleOffWhenSent0IsNotPositive) {
  Pattern p = Xray(0);
  p.Sent0 = -20.0f;
  const Bragg low = At(12.0);
  ExpectRelative(Lp(p, low), Lorentz(low));
}

// --- Correction of the .cor file --------------------------------------------------------

Pattern WithTable() {
  Pattern p = Xray(0);
  p.ICORR = 1;
  p.corrCount = 4;
  const float x[] = {10.0f, 40.0f, 80.0f, 120.0f};
  const float y[] = {1.2f, 1.0f, 0.9f, 0.5f};
  for (int j = 1; j <= 4; ++j) {
    p.corrX[j] = x[j - 1];
    p.corrY[j] = y[j - 1];
  }
  return p;
}

TEST(IntensityCorrection, TableIsInterpolatedLinearlyInsideItsRange) {
  const Pattern p = WithTable();
  EXPECT_NEAR(IntensityCorrection(p, 25.0f), 1.1, 1e-6);
  EXPECT_NEAR(IntensityCorrection(p, 70.0f), 0.925, 1e-6);
  EXPECT_NEAR(IntensityCorrection(p, 110.0f), 0.6, 1e-6);
  EXPECT_NEAR(IntensityCorrection(p, 40.0f), 1.0, 1e-6);
  EXPECT_NEAR(IntensityCorrection(p, 120.0f), 0.5, 1e-6);
}

TEST(IntensityCorrection, BelowTheTableTheFirstIntervalIsExtended) {
  const Pattern p = WithTable();
  // Slope of the first interval: -0.2/30.
  EXPECT_NEAR(IntensityCorrection(p, 4.0f), 1.2 + 6.0 * 0.2 / 30.0, 1e-6);
}

TEST(IntensityCorrection, AboveTheTableTheLastIntervalIsExtended) {
  const Pattern p = WithTable();
  EXPECT_NEAR(IntensityCorrection(p, 130.0f), 0.5 - 10.0 * 0.4 / 40.0, 1e-6);
}

TEST(IntensityCorrection, OtherCodesUseThePolynomial) {
  Pattern p = Xray(0);
  p.ICORR = 2;
  p.corrCount = 3;
  p.corrY[1] = 0.9f;
  p.corrY[2] = 0.002f;
  p.corrY[3] = -1.0e-5f;
  const double x = 57.0;
  EXPECT_NEAR(IntensityCorrection(p, 57.0f), 0.9 + 0.002 * x - 1.0e-5 * x * x, 1e-6);
}

TEST(LorentzPolarisation, TableCorrectionMultipliesTheFactorAtThePosition) {
  const Pattern p = WithTable();
  Pattern plain = p;
  plain.ICORR = 0;
  const Bragg b = At(70.0);
  ExpectRelative(Lp(p, b), Lp(plain, b) * 0.925);
}

TEST(LorentzPolarisation, NeutronFactorTakesTheCorrectionToo) {
  Pattern p = WithTable();
  p.JOBTYP = 1;
  const Bragg b = At(25.0);
  ExpectRelative(Lp(p, b), Lorentz(b) * 1.1);
}

// --- Time of flight and energy -------------------------------------------------------

TEST(LorentzPolarisation, TimeOfFlightIsHalfTwoSinThetaTimesDToTheFourth) {
  Pattern p;
  p.JOBTYP = -1;
  p.IXUNIT = AbscissaUnit::kTimeOfFlight;
  p.TwoSinTh = 1.8126f;
  p.ILOR = 2;  // geometry, absorption and polarisation do not enter
  p.muR = 0.5f;
  p.Cthm = 0.3f;
  const double d = 2.3456;
  ExpectRelative(LorentzPolarisation(p, static_cast<float>(d), 0.0f, 9000.0f),
                 0.5 * 1.8126 * std::pow(d, 4));
}

TEST(LorentzPolarisation, TimeOfFlightCorrectionIsTakenAtTheTimeOfFlight) {
  Pattern p;
  p.IXUNIT = AbscissaUnit::kTimeOfFlight;
  p.TwoSinTh = 2.0f;
  p.ICORR = 2;
  p.corrCount = 2;
  p.corrY[1] = 1.0f;
  p.corrY[2] = 1.0e-4f;
  const double d = 1.5;
  ExpectRelative(LorentzPolarisation(p, static_cast<float>(d), 0.0f, 5000.0f),
                 std::pow(d, 4) * (1.0 + 1.0e-4 * 5000.0));
}

TEST(LorentzPolarisation, EnergyDispersiveIsDSquared) {
  Pattern p;
  p.IXUNIT = AbscissaUnit::kEnergy;
  p.JOBTYP = 0;
  p.Cthm = 0.9f;
  p.Sent0 = 50.0f;
  const double d = 3.1357;
  ExpectRelative(LorentzPolarisation(p, static_cast<float>(d), 0.0f, 25.0f), d * d);
}

// --- The factor of a reflection at generation --------------------------------------------

TEST(ReflectionLorentzPolarisation, TwoThetaFactorFromTheWavelengthOfTheReflection) {
  Pattern p = Xray(0);
  p.Cthm = 1.0f;
  p.LAMBDA[1] = 1.5406f;
  p.LAMBDA[2] = 1.5444f;
  const double d = 2.0;
  for (int w : {1, 2}) {
    const double lambda = w == 1 ? 1.5406 : 1.5444;
    const double theta = std::asin(static_cast<double>(static_cast<float>(lambda)) / (2.0 * d));
    const Bragg b = At(2.0 * theta * 180.0 / std::numbers::pi);
    const float lp = ReflectionLorentzPolarisation(p, 1.0 / (d * d), w, 45.0f);
    ExpectRelative(lp, (1.0 + b.cos2Sq) / (2.0 * b.s2 * b.c), 5e-6);
  }
}

TEST(ReflectionLorentzPolarisation, TimeOfFlightAndEnergyTakeTheSpacing) {
  Pattern tof;
  tof.IXUNIT = AbscissaUnit::kTimeOfFlight;
  tof.TwoSinTh = 1.5f;
  const double q = 0.16;  // d = 2.5
  ExpectRelative(ReflectionLorentzPolarisation(tof, q, 1, 12000.0f), 0.5 * 1.5 * std::pow(2.5, 4));
  Pattern energy;
  energy.IXUNIT = AbscissaUnit::kEnergy;
  ExpectRelative(ReflectionLorentzPolarisation(energy, q, 1, 30.0f), 6.25);
}

TEST(ReflectionLorentzPolarisation, NoBraggAngleGivesZero) {
  Pattern p = Xray(0);
  p.LAMBDA[1] = 1.5f;
  EXPECT_EQ(ReflectionLorentzPolarisation(p, 4.0 / (1.5 * 1.5) * 1.01, 1, 170.0f), 0.0f);
}

}  // namespace
}  // namespace corvinet
