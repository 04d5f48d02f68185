// Tests of the atom lines of every kind of phase, their echo, the decoding of their codes and the
// helical rules.
#include "control/atom_lines.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "io/file_set.h"
#include "run/defaults.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::HasLine;
using testing::ScratchDir;

// A job positioned at the atom lines of phase 1 of the given kind.
struct AtomJob {
  ScratchDir dir;
  CapturedJob job;
  AtomJob(const std::string& lines, int Jbt, int nat, int hel = 0) {
    testing::OpenControlText(dir, *job, lines);
    job->run.NPATT = 1;
    job->run.NPHASE = 1;
    Phase& ph = job->phases[1];
    ph.Jbt = Jbt;
    ph.Nat = nat;
    ph.Hel = hel;
    ph.pat[1].CellConstants = {5.0f, 5.0f, 5.0f, 90.0f, 90.0f, 90.0f};
  }
  bool Read() {
    return testing::RunsWithoutStop(*job, [](Job& j) {
      ReadAtoms(j, 1);
      DecodeAtomCodes(j, 1);
    });
  }
  AtomSite& Atom(int i) { return job->atoms[i]; }
  std::string Out() { return testing::FlushedReport(dir, *job); }
};

TEST(AtomLines, CrystalAtomReadsValuesOperatorRangeAndKind) {
  AtomJob run("Fe1  FE   0.125 0.25 0.375 0.45 0.5 3 5 0\n11.0 0.0 21.0 31.0 1.0\n", 0, 1);
  ASSERT_TRUE(run.Read()) << run.job.Console();
  const AtomSite& a = run.Atom(1);
  EXPECT_EQ(a.label, "Fe1");
  EXPECT_EQ(a.species, "FE");
  EXPECT_FLOAT_EQ(a.ATP[1], 0.125f);
  EXPECT_FLOAT_EQ(a.ATP[3], 0.375f);
  EXPECT_FLOAT_EQ(a.ATP[5], 0.5f);
  EXPECT_EQ(a.In, 3);
  EXPECT_EQ(a.Fin, 5);
  EXPECT_EQ(a.N_t, 0);
  EXPECT_EQ(a.ATC[1].parameterNumber, 1);
  EXPECT_EQ(a.ATC[3].parameterNumber, 2);
  EXPECT_EQ(a.ATC[4].parameterNumber, 3);
  EXPECT_EQ(run.job->phases[1].phaseAtomKind, 0);
}

TEST(AtomLines, EchoShowsTheHeadTheLinesAndTheCodes) {
  AtomJob run("O1   O    0.1 0.2 0.3 0.5 1.0 0 0 0\n11.0 0.0 0.0 0.0 0.0\n", 0, 1);
  ASSERT_TRUE(run.Read()) << run.job.Console();
  const std::string out = run.Out();
  EXPECT_TRUE(HasLine(out, " => Initial parameters ==>")) << out;
  EXPECT_TRUE(HasLine(
      out, " Atom  Ntyp                  X         Y         Z         B         occ.      O"));
  EXPECT_TRUE(HasLine(out, "O1   O    0.1 0.2 0.3 0.5 1.0 0 0 0"));
  EXPECT_TRUE(HasLine(out, "Codes: 11.0 0.0 0.0 0.0 0.0"));
}

TEST(AtomLines, AnisotropicAtomReadsItsBetasAndMarksThePhase) {
  AtomJob run(
      "Cu   CU   0 0 0 0.0 1.0 0 0 2\n0 0 0 0 0\n0.01 0.02 0.03 0.001 0.002 0.003\n"
      "11 21 31 0 0 0\n",
      0, 1);
  ASSERT_TRUE(run.Read()) << run.job.Console();
  const AtomSite& a = run.Atom(1);
  EXPECT_FLOAT_EQ(a.ATP[13], 0.01f);
  EXPECT_FLOAT_EQ(a.ATP[18], 0.003f);
  EXPECT_EQ(a.ATC[15].parameterNumber, 3);
  EXPECT_EQ(run.job->phases[1].phaseAtomKind, 1);
}

TEST(AtomLines, FormFactorAtomReadsFourMoreLines) {
  AtomJob run(
      "Ob1  SPHE 0 0 0 0.0 1.0 0 0 4\n0 0 0 0 0\n1 2 3 4 5 6 7\n0 0 0 0 0 0 11\n"
      "8 9 10 11 12 13 14\n0 0 0 0 0 0 0\n",
      0, 1);
  ASSERT_TRUE(run.Read()) << run.job.Console();
  const AtomSite& a = run.Atom(1);
  EXPECT_FLOAT_EQ(a.ATP[19], 1.0f);
  EXPECT_FLOAT_EQ(a.ATP[25], 7.0f);
  EXPECT_FLOAT_EQ(a.ATP[26], 8.0f);
  EXPECT_FLOAT_EQ(a.ATP[32], 14.0f);
  EXPECT_EQ(a.ATC[25].parameterNumber, 1);
  EXPECT_EQ(run.job->phases[1].phaseAtomKind, 3);
}

TEST(AtomLines, CodesZeroAndOneRefineNothingAndTenGivesAZeroMultiplier) {
  AtomJob run("A    C    0 0 0 0 1 0 0 0\n0.00 1.00 11.00 10.00 -10.5\n", 0, 1);
  ASSERT_TRUE(run.Read()) << run.job.Console();
  const AtomSite& a = run.Atom(1);
  EXPECT_EQ(a.ATC[1].parameterNumber, 0);
  EXPECT_EQ(a.ATC[2].parameterNumber, 0);
  EXPECT_FLOAT_EQ(a.ATC[2].multiplier, 1.0f);
  EXPECT_EQ(a.ATC[3].parameterNumber, 1);
  EXPECT_FLOAT_EQ(a.ATC[3].multiplier, 1.0f);
  EXPECT_EQ(a.ATC[4].parameterNumber, 1);
  EXPECT_FLOAT_EQ(a.ATC[4].multiplier, 0.0f);
  EXPECT_EQ(a.ATC[5].parameterNumber, 1);
  EXPECT_FLOAT_EQ(a.ATC[5].multiplier, -0.5f);
}

TEST(AtomLines, CodeThreeThousandIsTheLastParameter) {
  AtomJob run("A    C    0 0 0 0 1 0 0 0\n3000.0 0 0 0 0\n", 0, 1);
  ASSERT_TRUE(run.Read()) << run.job.Console();
  EXPECT_EQ(run.Atom(1).ATC[1].parameterNumber, 300);
  EXPECT_FLOAT_EQ(run.Atom(1).ATC[1].multiplier, 0.0f);
}

TEST(AtomLines, CodeBeyondTheLastParameterStopsAndRepeatsTheNumber) {
  AtomJob run("A    C    0 0 0 0 1 0 0 0\n0 3010.0 0 0 0\n", 0, 1);
  EXPECT_FALSE(run.Read());
  const std::string console = run.job.Console();
  EXPECT_NE(console.find("                        Error in a code:      3010.00"),
            std::string::npos)
      << console;
  EXPECT_NE(console.find("    The maximum number of parameters is:  300"), std::string::npos);
  EXPECT_NE(console.find("=== Stop/Warning Box ===\n Error in a code"), std::string::npos);
}

TEST(AtomLines, CodeBeyondThreeHundredIsTakenInALargeRun) {
  AtomJob run("A    C    0 0 0 0 1 0 0 0\n0 3010.0 20001.0 0 0\n", 0, 1);
  run.job->dimensions = LargeDimensionLimits();
  ASSERT_TRUE(run.Read()) << run.job.Console();
  EXPECT_EQ(run.Atom(1).ATC[2].parameterNumber, 301);
  EXPECT_EQ(run.Atom(1).ATC[3].parameterNumber, 2000);
  // The tables of parameters reach the largest number coded.
  EXPECT_EQ(run.job->refinement.normal.A.rows(), 2000);
  EXPECT_EQ(run.job->limits.limited.size(), 2000);
}

TEST(AtomLines, CodeBeyondTwoThousandStopsInALargeRun) {
  AtomJob run("A    C    0 0 0 0 1 0 0 0\n0 20010.0 0 0 0\n", 0, 1);
  run.job->dimensions = LargeDimensionLimits();
  EXPECT_FALSE(run.Read());
  EXPECT_NE(run.job.Console().find("    The maximum number of parameters is: 2000"),
            std::string::npos);
}

TEST(AtomLines, TwoAtomsWithOppositeCodesMoveOppositely) {
  AtomJob run(
      "A    C    0.1 0 0 0 1 0 0 0\n11.0 0 0 0 0\nB    C    0.9 0 0 0 1 0 0 0\n"
      "-11.0 0 0 0 0\n",
      0, 2);
  ASSERT_TRUE(run.Read()) << run.job.Console();
  EXPECT_EQ(run.Atom(1).ATC[1].parameterNumber, 1);
  EXPECT_EQ(run.Atom(2).ATC[1].parameterNumber, 1);
  EXPECT_FLOAT_EQ(run.Atom(1).ATC[1].multiplier, 1.0f);
  EXPECT_FLOAT_EQ(run.Atom(2).ATC[1].multiplier, -1.0f);
}

TEST(AtomLines, MagneticAtomWithSixNumbersOnItsThirdLineReadsMagPhAsZero) {
  AtomJob run(
      "Fe   MFE3 1 1 0 0 0 0.5 1.0 2.0 0.0 1.0\n0 0 0 0 0 0 0 0\n"
      "0.5 0.0 0.0 0.0 0.0 0.0\n0 0 0 0 0 0 0\n",
      1, 1);
  ASSERT_TRUE(run.Read()) << run.job.Console();
  const AtomSite& a = run.Atom(1);
  EXPECT_EQ(a.Mag, 1);
  EXPECT_EQ(a.Vek, 1);
  EXPECT_FLOAT_EQ(a.ATP[6], 2.0f);
  EXPECT_FLOAT_EQ(a.ATP[9], 0.5f);
  EXPECT_FLOAT_EQ(a.ATP[12], 0.0f);
  EXPECT_EQ(a.N_t, 1);
  EXPECT_TRUE(HasLine(run.Out(), " Imm-> 0.5 0.0 0.0 0.0 0.0 0.0"));
  EXPECT_EQ(run.job->phases[1].phaseAtomKind, 2);
}

TEST(AtomLines, MagneticPhaseThirdLineKeepsMagPhInItsOwnSlot) {
  AtomJob run(
      "Fe   MFE3 1 1 0 0 0 0.5 1.0 2.0 0.0 1.0\n0 0 0 0 0 0 0 0\n"
      "0.0 0.0 0.0 0.01 0.02 0.03 0.25\n0 0 0 0 0 0 11.0\n",
      1, 1);
  ASSERT_TRUE(run.Read()) << run.job.Console();
  const AtomSite& a = run.Atom(1);
  EXPECT_FLOAT_EQ(a.ATP[13], 0.01f);
  EXPECT_FLOAT_EQ(a.ATP[15], 0.03f);
  EXPECT_FLOAT_EQ(a.ATP[12], 0.25f);
  EXPECT_EQ(a.ATC[12].parameterNumber, 1);
  EXPECT_EQ(run.job->phases[1].phaseAtomKind, 0);
}

TEST(AtomLines, CombinedPhaseAtomOfKindZeroHasTwoLinesOnly) {
  AtomJob run(
      "O1   O    0 0 0.1 0.2 0.3 0.5 1.0 0\n0 0 0 0 0\n"
      "Fe   MFE3 1 1 0 0 0 0.5 1.0 1\n0 0 0 0 0\n1 2 3 0 0 0 0\n0 0 0 0 0 0 0\n",
      10, 2);
  ASSERT_TRUE(run.Read()) << run.job.Console();
  EXPECT_EQ(run.Atom(1).N_t, 0);
  EXPECT_FLOAT_EQ(run.Atom(1).ATP[3], 0.3f);
  EXPECT_EQ(run.Atom(2).label, "Fe");
  EXPECT_EQ(run.Atom(2).N_t, 1);
  EXPECT_FLOAT_EQ(run.Atom(2).ATP[8], 3.0f);
}

TEST(AtomLines, ModelPhaseCannotCodeItsSixteenthParameter) {
  AtomJob run(
      "G1   C    1 2 3 4 5 6 7 8\n11 0 0 0 0 0 0 0\n9 10 11 12 13 14 15 16\n"
      "0 0 0 0 0 0 21\n",
      4, 1);
  ASSERT_TRUE(run.Read()) << run.job.Console();
  const AtomSite& a = run.Atom(1);
  EXPECT_FLOAT_EQ(a.ATP[16], 16.0f);
  EXPECT_EQ(a.ATC[15].parameterNumber, 2);
  EXPECT_EQ(a.ATC[16].parameterNumber, 0);
  EXPECT_EQ(a.N_t, 0);
  EXPECT_EQ(run.job->phases[1].phaseAtomKind, 1);
}

TEST(AtomLines, PhaseWithoutAtomsCountsAsAnisotropic) {
  AtomJob run("", 0, 0);
  ASSERT_TRUE(run.Read()) << run.job.Console();
  EXPECT_EQ(run.job->phases[1].phaseAtomKind, 1);
}

TEST(AtomLines, HelixFixesTheThirdImaginaryComponentPerpendicular) {
  // Cubic cell: R.I = 0 gives I3 = -(R1 I1 + R2 I2)/R3.
  AtomJob run(
      "Fe   MFE3 1 1 0 0 0 0.5 1.0 1.0 2.0 4.0\n0 0 0 0 0 0 0 11.0\n"
      "3.0 1.0 9.0 0 0 0 0\n0 0 21.0 0 0 0 0\n",
      1, 1, 1);
  ASSERT_TRUE(run.Read()) << run.job.Console();
  const AtomSite& a = run.Atom(1);
  EXPECT_FLOAT_EQ(a.ATP[11], -(1.0f * 3.0f + 2.0f * 1.0f) / 4.0f);
  EXPECT_EQ(a.ATC[11].parameterNumber, 0);
}

TEST(AtomLines, HelixWithAZeroDenominatorGoesOnWithAnInfiniteComponent) {
  // R3 = -cos(beta) R1 makes the denominator exactly zero.
  char rz[32];
  std::snprintf(rz, sizeof rz, "%.9g", -std::cos(90.0f * 0.017453292f));
  AtomJob run(std::string("Fe   MFE3 1 1 0 0 0 0.5 1.0 1.0 0.0 ") + rz +
                  "\n0 0 0 0 0 0 0 11.0\n1.0 0.0 0.0 0 0 0 0\n0 0 0 0 0 0 0\n",
              1, 1, 1);
  ASSERT_TRUE(run.Read()) << run.job.Console();
  EXPECT_TRUE(std::isinf(run.Atom(1).ATP[11]));
}

TEST(AtomLines, SphericalHelixSetsTheImaginaryAzimuth) {
  // theta 60, theta_i 45: p = cot60 cot45, azimuth = phi + acos(-p).
  AtomJob run(
      "Fe   MFE3 1 1 0 0 0 0.5 1.0 2.0 30.0 60.0\n0 0 0 0 0 0 11.0 0\n"
      "1.0 0.0 45.0 0 0 0 0\n0 21.0 0 0 0 0 0\n",
      -1, 1, 1);
  ASSERT_TRUE(run.Read()) << run.job.Console();
  const double p = 1.0 / std::tan(60.0 * M_PI / 180.0);
  EXPECT_NEAR(run.Atom(1).ATP[10], 30.0 + std::acos(-p) * 180.0 / M_PI, 1e-3);
  EXPECT_EQ(run.Atom(1).ATC[10].parameterNumber, 0);
}

TEST(AtomLines, SphericalHelixFarFromTheImaginaryPolarAngleTurnsIt) {
  AtomJob run(
      "Fe   MFE3 1 1 0 0 0 0.5 1.0 2.0 30.0 150.0\n0 0 0 0 0 0 11.0 0\n"
      "1.0 0.0 10.0 0 0 0 0\n0 0 0 0 0 0 0\n",
      -1, 1, 1);
  ASSERT_TRUE(run.Read()) << run.job.Console();
  EXPECT_FLOAT_EQ(run.Atom(1).ATP[11], 240.0f);
  EXPECT_FLOAT_EQ(run.Atom(1).ATP[10], 30.0f);
}

TEST(AtomLines, MoreAtomsThanTheTableHoldsAreRefused) {
  AtomJob run("", 0, DimensionLimits::NATS + 1);
  EXPECT_FALSE(run.Read());
  EXPECT_NE(run.job.Console().find("\n Too many atoms"), std::string::npos) << run.job.Console();
}

TEST(AtomLines, MoreMagneticAtomsThanTheTableHoldsAreRefused) {
  AtomJob run("", 1, DimensionLimits::NATM + 1);
  EXPECT_FALSE(run.Read());
  EXPECT_NE(run.job.Console().find("\n Too many magnetic atoms"), std::string::npos)
      << run.job.Console();
}

// A structure phase with two atoms whose x coordinates follow one parameter
// with opposite signs: the whole control file reads and its hole check passes.
TEST(AtomLines, OppositeCodesOfOneParameterPassTheHoleCheck) {
  ScratchDir dir;
  CapturedJob job;
  std::string data = "20.0 0.02 60.0\n";
  for (int i = 1; i <= 2001; ++i) data += i % 10 == 0 ? "100\n" : "100 ";
  dir.Write("x.dat", data + "\n");
  const std::string pcr =
      "Atoms\n0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n0 0 1 0 0 0 0 0 0 1 0 0 0 0 0 1 0\n"
      "1.5406 0.0 0.0 40.0 10.0 0.8 0.0 10.0 0.0\n"
      "3 0.1 1 1 1 1 20.0 0.02 60.0 0 0\n1\n0.0 0.0 0 0 0 0 0 0 0\n100 0 0 0 0 0\n"
      "0 0 0 0 0 0\nPhase\n2 0 0 0.0 0.0 1.0 0 0 0 0 0 0.0 0 0 0\nP m 3 m\n"
      "A    SI   0.1 0 0 0.5 1.0 0 0 0\n11.0 0 0 0 0\n"
      "B    SI   0.9 0 0 0.5 1.0 0 0 0\n-11.0 0 0 0 0\n"
      "1.0 0.0 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n0.01 -0.005 0.008 0.0 0.0 0.0 0.0 0\n"
      "0 0 0 0 0 0 0\n4.05 4.05 4.05 90 90 90\n0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n";
  EXPECT_TRUE(testing::ReadControlText(dir, job, pcr, false)) << job.Console();
  EXPECT_EQ(job->atoms[2].ATC[1].parameterNumber, 1);
  EXPECT_FLOAT_EQ(job->atoms[2].ATC[1].multiplier, -1.0f);
  EXPECT_EQ(job->phases[1].refinedAtomParameters, 1);
}

}  // namespace
}  // namespace corvinet
