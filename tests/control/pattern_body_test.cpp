// Tests of the pattern block read as part of whole control files: instrument, cycle and global
// lines, data and checks.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "control/run_block.h"
#include "io/file_set.h"
#include "run/defaults.h"
#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

bool ReadWhole(ScratchDir& dir, CapturedJob& job, const std::string& pcr) {
  return testing::ReadControlText(dir, job, pcr, false);
}

struct Parts {
  std::string job = "2 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0";
  std::string output = "0 0 1 0 1 0 0 0 0 1 0 0 0 0 0 0 0";
  std::string instrument = "1.5406 1.5444 0.5 40.0 8.0 0.8 0.0 30.0 0.0";
  std::string cycle = "1 0.1 1 1 1 1 10.0 0.5 20.0 0 0";
  std::string points;
  std::string maxs = "0";
  std::string globals = "0.0 0.0 0.0 0.0 0.0 0.0 0.0 0.0 0";
  std::string background = "100 0 0 0 0 0\n0 0 0 0 0 0";
  std::string phase =
      "Phase\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0\nP 1\n"
      "1.0 0.0 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n"
      "0.01 -0.01 0.01 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0 0\n"
      "4.0 4.0 4.0 90 90 90\n0 0 0 0 0 0\n"
      "0 0 0 0 0 0\n0 0 0 0 0 0";
  std::string Text() const {
    std::string t = "Title\n" + job + "\n" + output + "\n";
    if (!instrument.empty()) t += instrument + "\n";
    t += cycle + "\n" + points + maxs + "\n";
    if (!globals.empty()) t += globals + "\n";
    if (!background.empty()) t += background + "\n";
    return t + phase + "\n";
  }
};

TEST(PatternBody, CalculatedPatternReadsToThePhases) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
  const Pattern& p = job->patterns[1];
  EXPECT_EQ(p.NPTS, 21);
  EXPECT_FLOAT_EQ(p.X[21], 20.0f);
  EXPECT_FLOAT_EQ(p.Backg[1], 100.0f);
  EXPECT_FLOAT_EQ(p.LAMBDA[2], 1.5444f);
  const std::string out = dir.Read("x.out");
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Wavelengths:    1.54060   1.54440"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Alpha2/Alpha1 ratio:   0.5000"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Cos(Monochromator angle)=   0.8000"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Base of peaks: 2.0*HW*  8.00"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Number of cycles:     1"));
  EXPECT_TRUE(
      testing::HasNormalisedLine(out, " => Number of Least-Squares parameters varied:     0"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, " =>------->  PATTERN number:   1"));
}

TEST(PatternBody, IntegratedIntensitiesHaveNoInstrumentOrGlobalLines) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.job = "1 5 1 0 0 0 0 0 0 0 0 0 0 0 1 0 0";
  parts.instrument.clear();
  parts.globals.clear();
  parts.background.clear();
  parts.phase.replace(parts.phase.find("2 0 0 0 0 0.0"), 13, "0 4 0 0 0 0.0");
  ReadWhole(dir, job, parts.Text());
  EXPECT_FLOAT_EQ(job->patterns[1].RATIO[1], 1.0f);
  EXPECT_FLOAT_EQ(job->patterns[1].RATIO[2], 0.0f);
  EXPECT_EQ(job->run.NCY, 1);
  const std::string out = dir.Read("x.out");
  EXPECT_FALSE(testing::HasNormalisedLine(out, " =>------->  PATTERN number:   1"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Relaxation factors ==>"));
  EXPECT_FALSE(testing::HasNormalisedLine(out, " => for halfwidth/strain/size parameters:   1.00"));
}

TEST(PatternBody, PolynomialBackgroundReadsTwoLinesAndKeepsTheFileScale) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.background = "100 2 3 4 5 6\n0 0 0 0 0 0";
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
  const Pattern& p = job->patterns[1];
  EXPECT_FLOAT_EQ(p.GLB[7], 6.0f);
  EXPECT_FLOAT_EQ(p.GLB[22], 1.0f);
  EXPECT_FLOAT_EQ(p.GLB[23], 0.0f);
}

TEST(PatternBody, CalculationClearsRefinedCountAndCycles) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.cycle = "20 0.1 1 1 1 1 10.0 0.5 20.0 0 0";
  parts.maxs = "25";
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
  EXPECT_EQ(job->run.NCY, 1);
  EXPECT_EQ(job->run.MAXS, 0);
  // No hole check ran: 25 parameters would all be missing.
  EXPECT_EQ(job.Console().find("Hole in the matrix"), std::string::npos);
}

TEST(PatternBody, RatioZeroLeavesOneWavelength) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.instrument = "1.5406 0.0 0.0 40.0 8.0 0.8 0.0 30.0 0.0";
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
  EXPECT_FLOAT_EQ(job->patterns[1].RATIO[2], 0.0f);
  EXPECT_FALSE(job->patterns[1].separateUVW2);
}

TEST(PatternBody, NegativeRatioAsksForWidthsOfTheSecondWavelength) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.instrument = "1.5406 1.5444 -0.5 40.0 8.0 0.8 0.0 30.0 0.0";
  parts.phase += "\n0.02 0.0 0.02\n0 0 0";
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
  EXPECT_TRUE(job->patterns[1].separateUVW2);
  EXPECT_FLOAT_EQ(job->patterns[1].RATIO[2], 0.5f);
  EXPECT_FLOAT_EQ(job->phases[1].pat[1].PAR[45], 0.02f);
  EXPECT_TRUE(testing::HasNormalisedLine(
      dir.Read("x.out"), " => Different U,V,W parameters for Lambda(2) will be read"));
}

TEST(PatternBody, TwentyThousandPointsPassAndOneMoreStops) {
  {
    ScratchDir dir;
    CapturedJob job;
    Parts parts;
    parts.cycle = "1 0.1 1 1 1 1 0.0 0.005 99.995 0 0";
    ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
    EXPECT_EQ(job->patterns[1].NPTS, 20000);
  }
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.cycle = "1 0.1 1 1 1 1 0.0 0.005 100.0 0 0";
  EXPECT_FALSE(ReadWhole(dir, job, parts.Text()));
  EXPECT_NE(job.Console().find(" Too many data points NPTS>IDSZ!"), std::string::npos);
  EXPECT_NE(job.Console().find(" Too many data points"), std::string::npos);
  const std::string out = dir.Read("x.out");
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Program can handle only 20000 points"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, "  => A number of    20001 points were input"));
}

TEST(PatternBody, TwentyThousandAndOnePointsPassInALargeRun) {
  ScratchDir dir;
  CapturedJob job;
  job->dimensions = LargeDimensionLimits();
  Parts parts;
  parts.cycle = "1 0.1 1 1 1 1 0.0 0.005 100.0 0 0";
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text())) << job.Console();
  const Pattern& p = job->patterns[1];
  ASSERT_EQ(p.NPTS, 20001);
  EXPECT_GE(p.X.size(), 20001);
  EXPECT_NEAR(p.X[20001], 100.0f, 1.0e-3f);
  EXPECT_FLOAT_EQ(p.Backg[20001], 100.0f);
  EXPECT_GE(job->refinement.first.size(), 20001);
}

TEST(PatternBody, TwoHundredThousandPointsPassInALargeRunAndOneMoreStops) {
  {
    ScratchDir dir;
    CapturedJob job;
    job->dimensions = LargeDimensionLimits();
    Parts parts;
    parts.cycle = "1 0.1 1 1 1 1 0.0 0.0005 99.9995 0 0";
    ASSERT_TRUE(ReadWhole(dir, job, parts.Text())) << job.Console();
    EXPECT_EQ(job->patterns[1].NPTS, 200000);
  }
  ScratchDir dir;
  CapturedJob job;
  job->dimensions = LargeDimensionLimits();
  Parts parts;
  parts.cycle = "1 0.1 1 1 1 1 0.0 0.0005 100.0 0 0";
  EXPECT_FALSE(ReadWhole(dir, job, parts.Text()));
  const std::string out = dir.Read("x.out");
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Program can handle only 200000 points"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, "  => A number of   200001 points were input"));
}

TEST(PatternBody, MoreThanThreeHundredParametersAreRefusedByDefault) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.maxs = "301";
  EXPECT_FALSE(ReadWhole(dir, job, parts.Text()));
  EXPECT_NE(job.Console().find(" => MAXS = 301 is outside its range: 0 to 300"), std::string::npos);
}

TEST(PatternBody, MoreThanThreeHundredParametersAreAcceptedInALargeRun) {
  ScratchDir dir;
  CapturedJob job;
  job->dimensions = LargeDimensionLimits();
  Parts parts;
  parts.maxs = "2000";
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text())) << job.Console();
  // The tables of parameters were widened to the count read.
  EXPECT_EQ(job->refinement.normal.A.rows(), 2000);
  EXPECT_EQ(job->refinement.DerivativeRing.cols(), 2000);
  EXPECT_EQ(job->limits.low.size(), 2000);
}

TEST(PatternBody, ZeroOriginOfThePolynomialIsRefused) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.instrument = "1.5406 1.5444 0.5 0.0 8.0 0.8 0.0 30.0 0.0";
  EXPECT_FALSE(ReadWhole(dir, job, parts.Text()));
  EXPECT_NE(job.Console().find("Bkpos"), std::string::npos);
}

TEST(PatternBody, ScatteringLengthsAndTablesAreRead) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.job = "3 5 1 0 0 2 0 0 0 0 0 0 0 0 0 0 0";
  parts.points = "O 0.5803 0.0 0\nFE 0.945 0.0 0\n";
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
  const Pattern& p = job->patterns[1];
  EXPECT_EQ(p.scattering[2].NAM, "FE");
  EXPECT_FLOAT_EQ(p.scattering[1].Fprime, 0.5803f);
  const std::string out = dir.Read("x.out");
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Scattering lengths ==>"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, "    O      0.58030"));
}

TEST(PatternBody, FormFactorTableEndsAtTheMark) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.job = "2 5 1 0 0 -1 0 0 0 0 0 0 0 0 0 0 0";
  parts.points = "Xx 0.1 0.2 1\n0.0 10.0\n0.5 6.0\n1.0 3.0\n-100.0 0.0\n";
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
  const ScatteringEntry& e = job->patterns[1].scattering[1];
  EXPECT_EQ(e.tablePoints, 3);
  EXPECT_FLOAT_EQ(e.tableY[2], 6.0f);
  const std::string out = dir.Read("x.out");
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Scattering factors ==>"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, "     *(Tables for Linear Interpolation)*"));
}

TEST(PatternBody, FormFactorCoefficientsAndTooManyPoints) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.job = "2 5 1 0 0 1 0 0 0 0 0 0 0 0 0 0 0";
  parts.points = "Xx 0.1 0.2 1\n1 2 3 4 5 6 7 8 9\n";
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
  EXPECT_FLOAT_EQ(job->patterns[1].scattering[1].coef[9], 9.0f);
  ScratchDir other;
  CapturedJob again;
  std::string many = "Xx 0.1 0.2 1\n";
  for (int i = 0; i < 60; ++i) many += std::to_string(i) + ".0 1.0 0.0 0 0 0 0 0 0\n";
  parts.points = many;
  EXPECT_FALSE(ReadWhole(other, again, parts.Text()));
  EXPECT_NE(again.Console().find(" Too many scattering factor entries"), std::string::npos);
}

TEST(PatternBody, ExcludedRegionsAndBackgroundPointsAreListed) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.job = "2 5 1 3 1 0 0 0 0 0 0 0 0 0 0 0 0";
  parts.points = "10.0 50.0\n15.0 60.0\n20.0 55.0\n0.0 11.0\n";
  parts.background.clear();
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
  const Pattern& p = job->patterns[1];
  EXPECT_FLOAT_EQ(p.BackInt[2], 60.0f);
  EXPECT_FLOAT_EQ(p.ExclHigh[1], 11.0f);
  const std::string out = dir.Read("x.out");
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Background ==> "));
  EXPECT_TRUE(testing::HasNormalisedLine(out, "    Position   Intensity"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, "       15.000       60.000"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Excluded regions for Pattern#  1"));
  EXPECT_NEAR(p.Backg[11], 60.0f, 1e-4);
}

// The refined wavelength replaces the first and moves the second of the
// doublet (1.5406, 1.5444) at its ratio.
TEST(PatternBody, RefinedWavelengthMovesBothAtTheirRatio) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.globals = "0.0 0.0 0.0 0.0 0.0 0.0 1.54 11.0 0";
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
  EXPECT_FLOAT_EQ(job->patterns[1].LAMBDA[1], 1.54f);
  EXPECT_FLOAT_EQ(job->patterns[1].LAMBDA[2], static_cast<float>(1.54 * 1.5444 / 1.5406));
  const std::string out = dir.Read("x.out");
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Wavelength is refined"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Refined Wavelength:    1.54000"));
}

TEST(PatternBody, MicroabsorptionLineFollowsMore) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.globals = "0.0 0.0 0.0 0.0 0.0 0.0 0.0 0.0 1\n0.1 0.0 0.2 0.0 0.3 0.0";
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
  EXPECT_FLOAT_EQ(job->patterns[1].GLB[29], 0.3f);
  EXPECT_TRUE(testing::HasNormalisedLine(dir.Read("x.out"), " => Microabsorption is refined"));
}

TEST(PatternBody, DebyeDistancesOfZeroBecomeOne) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.job = "2 5 1 -1 0 0 0 0 0 0 0 0 0 0 0 0 0";
  parts.background =
      "100 0 0 0 0 0\n0 0 0 0 0 0\n1 0 0 0 0 0\n0 0 0 0 0 0\n2.5 0 0 0 0 0\n0 0 0 0 0 0";
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
  EXPECT_FLOAT_EQ(job->patterns[1].GLB[16], 2.5f);
  EXPECT_FLOAT_EQ(job->patterns[1].GLB[17], 1.0f);
  const std::string out = dir.Read("x.out");
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Background Bc(i) parameters and codes ==>"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Background D(i) parameters and codes ==>"));
}

TEST(PatternBody, FourierWindowIsRead) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.job = "2 5 1 -2 0 0 0 0 0 0 0 0 0 0 0 0 0";
  parts.background = "12.5";
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
  EXPECT_FLOAT_EQ(job->patterns[1].FourierWindow, 12.5f);
  EXPECT_TRUE(testing::HasNormalisedLine(dir.Read("x.out"),
                                         " => Window for Fourier filtering :    12.500"));
}

TEST(PatternBody, TimeOfFlightConstantsComeFromTheGlobals) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.job = "-3 9 1 0 0 0 0 0 0 0 0 0 0 0 0 1 0";
  parts.instrument = "5000.0 6.0 1";
  parts.cycle = "1 0.1 1 1 1 1 2000.0 100.0 3000.0 0 0";
  parts.globals = "0.0 0.0 5000.0 0.0 -1.0 0.0 1.2 31.0 0";
  parts.background = "1 0 0 0 0 0\n0 0 0 0 0 0";
  parts.phase.insert(parts.phase.find("4.0 4.0"), "0 0 0 0 0\n0 0 0 0 0\n");
  parts.phase += "\n0 0 0 0";
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
  const Pattern& p = job->patterns[1];
  EXPECT_FLOAT_EQ(p.Dtt1, 5000.0f);
  EXPECT_FLOAT_EQ(p.Dtt2, -1.0f);
  EXPECT_FLOAT_EQ(p.TwoSinTh, 1.2f);
  EXPECT_FLOAT_EQ(p.GLBcode[26], 0.0f);
  const std::string out = dir.Read("x.out");
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Absorption correction type:  1"));
  EXPECT_TRUE(testing::HasNormalisedLine(
      out, " => D-spacing to T.O.F. coefficient 1 and code:  5000.000000      0.00"));
}

TEST(PatternBody, LowAngleScaleCorrectionIsAnnouncedForXrays) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.cycle = "1 0.1 1 1 1 1 10.0 0.5 20.0 0 12.0";
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
  EXPECT_FLOAT_EQ(job->patterns[1].Sent0, 12.0f);
  EXPECT_TRUE(testing::HasNormalisedLine(
      dir.Read("x.out"),
      " => Low angle scale factor multiplied by sin(theta)/sin(t0), where t0=  12.000"));
}

TEST(PatternBody, LowAngleScaleCorrectionIsSilentForOtherLorentzFactors) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.job = "2 5 1 0 0 0 0 0 0 1 0 0 0 0 0 0 0";
  parts.cycle = "1 0.1 1 1 1 1 10.0 0.5 20.0 0 12.0";
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
  EXPECT_EQ(dir.Read("x.out").find(" => Low angle scale factor"), std::string::npos);
}

TEST(PatternBody, PolarizationIsWrittenForTheSynchrotronFormat) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.output = "0 0 1 0 1 0 0 0 0 1 4 0 0 0 0 0 0";
  parts.instrument = "1.5406 1.5444 0.5 40.0 8.0 0.8 0.0 30.0 0.95";
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
  EXPECT_EQ(job->patterns[1].INSTR, 4);
  EXPECT_TRUE(testing::HasNormalisedLine(dir.Read("x.out"), " => Polarization=   0.9500"));
}

TEST(PatternBody, PolarizationIsNotWrittenForOtherFormats) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.instrument = "1.5406 1.5444 0.5 40.0 8.0 0.8 0.0 30.0 0.95";
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
  EXPECT_EQ(dir.Read("x.out").find(" => Polarization="), std::string::npos);
}

TEST(PatternBody, EnergyDispersiveShiftWordsNameTheEnergyCoefficients) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.job = "2 5 1 0 0 0 0 0 0 0 0 0 0 0 0 2 0";
  parts.instrument = "40.0 8.0 0";
  parts.cycle = "1 0.1 1 1 1 1 10.0 0.5 20.0 0 0";
  parts.globals = "0.0 0.0 30.0 0.0 0.5 0.0 8.0 0.0 0";
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text())) << job.Console();
  const std::string out = dir.Read("x.out");
  EXPECT_TRUE(testing::HasNormalisedLine(
      out, " =>    s=1/d to Energy(Kev) coefficient 1 and code:    30.000000      0.00"))
      << out;
  EXPECT_TRUE(testing::HasNormalisedLine(
      out, " =>    s=1/d to Energy(Kev) coefficient 2 and code:     0.500000      0.00"));
  EXPECT_TRUE(testing::HasNormalisedLine(
      out, " => X-rays Energy Dispersive 2theta detector angle:     8.000000      0.00"));
}

TEST(PatternBody, BackgroundFromFileShowsItsTransform) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.job = "2 5 1 1 0 0 0 0 0 0 0 0 0 0 0 0 0";
  parts.background = "2.0 5.0 0.1 -0.5\n0.0 0.0 0.0 0.0";
  // A title, then one point for each of the 21 points of the pattern.
  std::string bac = "Simulated flat background\n";
  for (int i = 0; i <= 20; ++i) bac += std::to_string(10.0 + 0.5 * i) + " 100.0\n";
  dir.Write("x.bac", bac);
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text())) << job.Console();
  const std::string out = dir.Read("x.out");
  EXPECT_TRUE(testing::HasNormalisedLine(
      out, " => Background read from file and transformed according to:"))
      << out;
  EXPECT_TRUE(testing::HasNormalisedLine(out, "    Back(2q) = a * BackRead[ (1+c)*2q+d ] + b"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Background coefficients a,b,c,d and codes ==>"));
  EXPECT_TRUE(
      testing::HasNormalisedLine(out, "       2.00000       5.00000       0.10000      -0.50000"));
  EXPECT_TRUE(
      testing::HasNormalisedLine(out, "       0.00000       0.00000       0.00000       0.00000"));
  EXPECT_FLOAT_EQ(job->patterns[1].Backg[1], 2.0f * 100.0f + 5.0f);
}

TEST(PatternBody, MissingResolutionFileNameStops) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.job = "2 7 1 0 0 0 0 0 0 0 0 1 0 0 0 0 0";
  EXPECT_FALSE(ReadWhole(dir, job, "Title\n" + parts.job + "\n! no name follows\n"));
  EXPECT_NE(job.Console().find(" Error reading the name of resolution file"), std::string::npos)
      << job.Console();
}

TEST(PatternBody, ReflectionListIsWrittenWhenAsked) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.output = "0 0 1 0 1 1 0 0 0 1 0 0 0 0 0 0 0";
  parts.instrument = "1.5406 0.0 0.0 40.0 8.0 0.8 0.0 30.0 0.0";
  parts.cycle = "1 0.1 1 1 1 1 10.0 0.05 60.0 0 0";
  parts.phase.replace(parts.phase.find("P 1"), 3, "P m 3 m");
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
  const ReflectionTable& table = job->patterns[1].reflections;
  // 100, 110, 111, 200, 210 and 211 of a 4 A cube lie between 10 and 60 degrees.
  EXPECT_EQ(table.total, 6);
  EXPECT_EQ(job->phases[1].pat[1].laueWidthFlag, 2);
  const auto lines = testing::SplitLines(dir.Read("x.out"));
  const auto head = std::find(lines.begin(), lines.end(),
                              "1No.  Code    H   K   L   Mult       Hw     2theta/TOF       "
                              "L-factor        HWL        HWG        ETA");
  ASSERT_NE(head, lines.end());
  ASSERT_LT(head + 6, lines.end());
  // The second reflection is the form {110}, listed as 011 of the cubic
  // wedge, with multiplicity 12 at 2theta = 2 asin(lambda/(2d)).
  const std::string& row = *(head + 2);
  EXPECT_EQ(row.substr(0, 29), "   2     1   0   1   1     12");
  const double twoTheta = 2.0 * std::asin(1.5406 / (2.0 * 4.0 / std::sqrt(2.0))) * 180.0 / M_PI;
  EXPECT_NEAR(std::stod(row.substr(38, 15)), twoTheta, 1e-3);
}

TEST(PatternBody, HexagonalListsGetWidthFlagOne) {
  ScratchDir dir;
  CapturedJob job;
  Parts parts;
  parts.cycle = "1 0.1 1 1 1 1 10.0 0.05 60.0 0 0";
  parts.phase.replace(parts.phase.find("P 1"), 3, "P 6/m m m");
  parts.phase.replace(parts.phase.find("4.0 4.0 4.0 90 90 90"), 20, "3.0 3.0 5.0 90 90 120");
  ASSERT_TRUE(ReadWhole(dir, job, parts.Text()));
  EXPECT_EQ(job->phases[1].pat[1].laueWidthFlag, 1);
  EXPECT_GT(job->patterns[1].reflections.total, 0);
}

}  // namespace
}  // namespace corvinet
