// Tests of the reading of the control-file head and of the words it writes on the reports.
#include "control/run_block.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "io/file_set.h"
#include "run/defaults.h"
#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

bool ReadHead(ScratchDir& dir, CapturedJob& job, const std::string& pcr) {
  return testing::ReadHeadOnly(dir, job, pcr);
}

std::string SingleHead(const std::string& jobLine, const std::string& title = "Title") {
  return title + "\n" + jobLine + "\n" +
         "   0   0   1   0   1   0   0   0   0   1   0   0   0   0   0   0   0\n";
}

// True when the text holds the line (trailing blanks are not compared).
bool Has(const std::string& text, const std::string& line) {
  const auto lines = testing::NormaliseLines(testing::SplitLines(text));
  return std::find(lines.begin(), lines.end(), testing::NormaliseLine(line)) != lines.end();
}

TEST(RunBlock, FileWithoutNpattHasOnePatternOfWeightOne) {
  ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(ReadHead(dir, job, SingleHead("0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0")));
  EXPECT_EQ(job->run.NPATT, 1);
  EXPECT_FLOAT_EQ(job->patterns[1].W_PAT, 1.0f);
  EXPECT_TRUE(Has(dir.Read("x.out"), " => DAT file code: x -> Relative contribution:   1.00000"));
}

TEST(RunBlock, WeightThatIsNotAFiniteNumberOrNegativeIsRefused) {
  for (const std::string weights : {"W_PAT 1 nan", "W_PAT 1 inf", "W_PAT 1 1e39", "W_PAT 1 -3"}) {
    ScratchDir dir;
    CapturedJob job;
    EXPECT_FALSE(ReadHead(dir, job, "T\nNPATT 2\n" + weights + "\n1 0 0 0 0\n")) << weights;
    const std::string console = job.Console();
    EXPECT_NE(console.find(" => Please check your input file at line: 3 !"), std::string::npos)
        << console;
  }
  ScratchDir dir;
  CapturedJob job;
  EXPECT_FALSE(ReadHead(dir, job, "T\nNPATT 2\nW_PAT 1 -3\n1 0 0 0 0\n"));
  EXPECT_NE(job.Console().find(" => The weights W_PAT must be finite numbers, 0 or above"),
            std::string::npos)
      << job.Console();
}

TEST(RunBlock, WeightsThatAddUpToNothingAreRefused) {
  ScratchDir dir;
  CapturedJob job;
  EXPECT_FALSE(ReadHead(dir, job, "T\nNPATT 2\nW_PAT 0 0\n1 0 0 0 0\n"));
  EXPECT_NE(job.Console().find(" => The weights W_PAT of the patterns add up to no weight at all"),
            std::string::npos);
}

TEST(RunBlock, WeightsAreNormalised) {
  ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(ReadHead(dir, job,
                       "T\nNPATT 2\nW_PAT 1 3\n1 0 0 0 0\n0 5 0 0 0 0 0 0 0 0 0 0 0\n"
                       "0 5 0 0 0 0 0 0 0 0 0 0 0\nd1\nd2\n0 1 0 0 0 0\n"
                       "0 0 0 0 0 0 1 0 0 0 0\n0 0 0 0 0 0 1 0 0 0 0\n"));
  EXPECT_EQ(job->run.NPATT, 2);
  EXPECT_FLOAT_EQ(job->patterns[1].W_PAT, 0.25f);
  EXPECT_FLOAT_EQ(job->patterns[2].W_PAT, 0.75f);
  EXPECT_EQ(job->patterns[1].DatCode, "d1");
  EXPECT_EQ(job->patterns[2].DatCode, "d2");
  EXPECT_TRUE(job->files.multiPattern);
}

TEST(RunBlock, CommentBetweenNpattAndWeightsIsTakenForTheWeights) {
  ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(ReadHead(dir, job,
                       "T\nnpatt 2\n!     2.0  6.0\n1 0 0 0 0\n0 5 0 0 0 0 0 0 0 0 0 0 0\n"
                       "0 5 0 0 0 0 0 0 0 0 0 0 0\nd1\nd2\n0 1 0 0 0 0\n"
                       "0 0 0 0 0 0 1 0 0 0 0\n0 0 0 0 0 0 1 0 0 0 0\n"));
  EXPECT_FLOAT_EQ(job->patterns[1].W_PAT, 0.25f);
  EXPECT_FLOAT_EQ(job->patterns[2].W_PAT, 0.75f);
}

TEST(RunBlock, MorePatternsThanTheTablesHoldAreRefused) {
  ScratchDir dir;
  CapturedJob job;
  EXPECT_FALSE(ReadHead(dir, job, "T\nNPATT 6\nW_PAT 1 1 1 1 1 1\n"));
  EXPECT_NE(job.Console().find(" => Too many patterns in the control file!"), std::string::npos);
}

TEST(RunBlock, NegativePhaseCountChoosesOlderAsymmetryForPatternOne) {
  ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(ReadHead(dir, job,
                       "T\nNPATT 2\nW_PAT 1 1\n-2 0 0 0 0\n0 5 0 0 0 0 0 0 0 0 0 0 0\n"
                       "0 5 0 0 0 0 0 0 0 0 0 0 0\nd1\nd2\n0 1 0 0 0 0\n"
                       "0 0 0 0 0 0 1 0 0 0 0\n0 0 0 0 0 0 1 0 0 0 0\n"));
  EXPECT_EQ(job->run.NPHASE, 2);
  EXPECT_EQ(job->patterns[1].IASYM, 1);
  EXPECT_EQ(job->patterns[2].IASYM, 0);
}

TEST(RunBlock, ProfileTypedTenIsStoredAsTen) {
  ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(ReadHead(dir, job, SingleHead("-1 10 1 0 0 0 0 0 0 0 0 0 0 0 0 1 0")));
  EXPECT_EQ(job->patterns[1].NPROF, 10);
}

TEST(RunBlock, AbscissaUnitAndProfileAreReadFromTheirNumbers) {
  ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(ReadHead(dir, job, SingleHead("-1 11 1 0 0 0 0 0 0 0 0 0 0 0 0 1 0")));
  EXPECT_EQ(job->patterns[1].IXUNIT, AbscissaUnit::kTimeOfFlight);
  EXPECT_EQ(ProfileCodeOf(job->patterns[1].NPROF), ProfileCode::kSplitPseudoVoigt);
}

TEST(RunBlock, AbscissaUnitOutsideTheListIsKeptAsTyped) {
  ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(ReadHead(dir, job, SingleHead("0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 7 0")));
  EXPECT_EQ(ControlNumber(job->patterns[1].IXUNIT), 7);
  EXPECT_EQ(ProfileCodeOf(job->patterns[1].NPROF), ProfileCode::kPseudoVoigt);
}

TEST(RunBlock, ProfileTypedEightReadsTheShapeFile) {
  ScratchDir dir;
  dir.Write("global.shp",
            "shapes\n3 2 20.0 80.0\n-0.1 0.5 0.01 0.4 0.02\n0.0 1.0 0.01 0.9 0.02\n"
            "0.1 0.5 0.01 0.4 0.02\n");
  CapturedJob job;
  ASSERT_TRUE(ReadHead(dir, job, SingleHead("0 8 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0")));
  const NumericalProfile& s = job->numericalProfile;
  EXPECT_EQ(job->patterns[1].NPROF, 9);
  EXPECT_EQ(s.shapePoints, 3);
  EXPECT_EQ(s.shapeCount, 2);
  EXPECT_FLOAT_EQ(s.shapeAngle[2], 80.0f);
  EXPECT_FLOAT_EQ(s.shapeX[1], -0.1f);
  EXPECT_FLOAT_EQ(s.shapeY(2, 1), 1.0f);
  EXPECT_FLOAT_EQ(s.shapeDy(2, 2), 0.02f);
  EXPECT_TRUE(Has(dir.Read("x.out"), " => Numerical profile provided by user in file GLOBAL.SHP"));
}

TEST(RunBlock, ShapeFileOfTheCodeComesBeforeTheGlobalOne) {
  ScratchDir dir;
  dir.Write("x.shp", "own\n1 1 30.0\n0.0 1.0 0.0\n");
  dir.Write("global.shp", "global\n1 1 40.0\n0.0 2.0 0.0\n");
  CapturedJob job;
  ASSERT_TRUE(ReadHead(dir, job, SingleHead("0 8 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0")));
  EXPECT_FLOAT_EQ(job->numericalProfile.shapeAngle[1], 30.0f);
}

TEST(RunBlock, TooManyShapePointsStop) {
  ScratchDir dir;
  dir.Write("x.shp", "own\n151 1 30.0\n");
  CapturedJob job;
  EXPECT_FALSE(ReadHead(dir, job, SingleHead("0 8 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0")));
  EXPECT_NE(job.Console().find(" => Too many points in numerical profile!"), std::string::npos);
}

TEST(RunBlock, ResolutionFunctionNeedsProfileSeven) {
  ScratchDir dir;
  CapturedJob job;
  EXPECT_FALSE(ReadHead(dir, job, SingleHead("0 6 1 0 0 0 0 0 0 0 0 1 0 0 0 0 0")));
  const std::string console = job.Console();
  EXPECT_NE(console.find(" Illegal use of resolution function for pattern:   1"),
            std::string::npos);
  EXPECT_NE(console.find(" ===>>> Illegal use of resolution function!!"), std::string::npos);
  EXPECT_NE(console.find("        NPROF must be equal to 7!"), std::string::npos);
}

TEST(RunBlock, ResolutionFunctionWithProfileSevenReadsTheFileName) {
  ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(ReadHead(dir, job,
                       "T\n0 7 1 0 0 0 0 0 0 0 0 1 0 0 0 0 0\n! resolution\nmy_res.irf\n"
                       "0 0 1 0 1 0 0 0 0 1 0 0 0 0 0 0 0\n"));
  EXPECT_EQ(job->patterns[1].ResolutionFile, "my_res.irf");
  EXPECT_EQ(job->patterns[1].NPROF, 8);
}

TEST(RunBlock, IntegratedIntensitiesIgnoreProfileFields) {
  ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(ReadHead(dir, job, SingleHead("1 6 1 -200 50 0 1 2 1 0 0 0 3 0 1 0 0")));
  const Pattern& p = job->patterns[1];
  EXPECT_EQ(p.NBCKGD, 0);
  EXPECT_EQ(p.NEXCRG, 0);
  EXPECT_EQ(p.ISTEP, 0);
  EXPECT_EQ(p.NPROF, 1);
  EXPECT_EQ(job->run.IDUM, 0);
  const std::string out = dir.Read("x.out");
  EXPECT_TRUE(Has(out, " => Refinement of Neutron integrated intensity data"));
  // The pattern words stop after the job block.
  EXPECT_FALSE(Has(out, " => Title:Title"));
  EXPECT_EQ(out.find("March model"), std::string::npos);
}

TEST(RunBlock, HundredSplineBackgroundPointsAreAllowed) {
  ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(ReadHead(dir, job, SingleHead("0 5 1 -100 0 0 0 0 0 0 0 0 0 0 0 0 0")));
  EXPECT_EQ(job->patterns[1].NBCKGD, 100);
  EXPECT_EQ(job->patterns[1].backgroundSign, -1);
  EXPECT_TRUE(Has(dir.Read("x.out"),
                  " => Background interpolated by cubic splines between the  100 points given"));
}

TEST(RunBlock, TooManyBackgroundPointsStop) {
  ScratchDir dir;
  CapturedJob job;
  EXPECT_FALSE(ReadHead(dir, job, SingleHead("0 5 1 -101 0 0 0 0 0 0 0 0 0 0 0 0 0")));
  const std::string console = job.Console();
  EXPECT_NE(console.find("         Number of backg. points/pattern:   101"), std::string::npos);
  EXPECT_NE(console.find(" Maximum Number of backg. points/pattern:   100"), std::string::npos);
  EXPECT_NE(console.find(" Too many background points"), std::string::npos);
}

TEST(RunBlock, TooManyExcludedRegionsStop) {
  ScratchDir dir;
  CapturedJob job;
  EXPECT_FALSE(ReadHead(dir, job, SingleHead("0 5 1 0 31 0 0 0 0 0 0 0 0 0 0 0 0")));
  const std::string console = job.Console();
  EXPECT_NE(console.find("          Number of excl. regions/pattern:     31"), std::string::npos);
  EXPECT_NE(console.find("  Maximum number of excl. regions/pattern:     30"), std::string::npos);
  EXPECT_NE(console.find(" Too many excluded regions"), std::string::npos);
}

TEST(RunBlock, InvalidJobTypeStops) {
  ScratchDir dir;
  CapturedJob job;
  EXPECT_FALSE(ReadHead(dir, job, SingleHead("4 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0")));
  EXPECT_NE(job.Console().find(" Invalid JOBTYP"), std::string::npos);
}

TEST(RunBlock, LowerCaseFreeStaysInTheTitle) {
  ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(ReadHead(dir, job, SingleHead("0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0", "free form")));
  EXPECT_EQ(job->run.Title, "free form");
  CapturedJob other;
  ASSERT_TRUE(ReadHead(dir, other, SingleHead("0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0", "FREE form")));
  EXPECT_EQ(other->run.Title, "form");
}

TEST(RunBlock, EmptyControlFileStopsAtTheFirstLine) {
  ScratchDir dir;
  CapturedJob job;
  EXPECT_FALSE(ReadHead(dir, job, ""));
  EXPECT_NE(job.Console().find("  Error reading the *.PCR at the first line"), std::string::npos);
}

TEST(RunBlock, ShortJobLineLeavesZerosNotDefaults) {
  ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(ReadHead(dir, job, SingleHead("0")));
  // NPROF was not on the line: it reads 0 (stored 1), not the default 6 (stored 7).
  EXPECT_EQ(job->patterns[1].NPROF, 1);
  EXPECT_EQ(job->run.NPHASE, 1);
}

TEST(RunBlock, MonteCarloSearchOfNoParameterStops) {
  ScratchDir dir;
  CapturedJob job;
  EXPECT_FALSE(ReadHead(dir, job, SingleHead("0 5 1 0 0 0 0 0 0 0 0 0 0 0 2 0 0")));
  EXPECT_NE(job.Console().find("Montecarlo search for 0 parameters???"), std::string::npos);
}

TEST(RunBlock, MonteCarloSearchClearsTheListOutputs) {
  ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(ReadHead(dir, job,
                       "T\n0 5 1 0 0 0 0 0 0 0 0 0 0 3 2 0 0\n"
                       "1 1 1 1 1 1 1 1 0 1 0 0 0 1 0 1 1\n"));
  const Pattern& p = job->patterns[1];
  EXPECT_EQ(p.IOT + p.IPL + p.IPC + p.LST1 + p.LST2 + p.LST3 + p.JLKH + p.IANALY, 0);
  EXPECT_EQ(job->run.MAT, 0);
  EXPECT_EQ(job->run.ISHOR, 0);
  EXPECT_EQ(p.IPL2, 1);
  EXPECT_TRUE(Has(dir.Read("x.sum"), " => Montecarlo search for a number of    3 parameters"));
}

TEST(RunBlock, CyclicModeForcesTheOutputOptions) {
  ScratchDir dir;
  CapturedJob job;
  job->driver.cyclicMode = 1;
  ASSERT_TRUE(ReadHead(dir, job,
                       "T\n0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n"
                       "1 1 1 1 0 1 1 1 1 1 0 0 1 1 1 0 1\n"));
  const Pattern& p = job->patterns[1];
  EXPECT_EQ(job->run.JCIL, 1);
  EXPECT_EQ(job->run.JSY + job->run.MAT + job->run.IPL1, 0);
  EXPECT_EQ(job->run.NXT, 1);
  EXPECT_EQ(job->run.ISHOR, 1);
  EXPECT_EQ(p.IOT + p.IPL + p.IPC + p.LST1 + p.LST2 + p.LST3 + p.IPL2 + p.JLKH + p.JFOU + p.IANALY,
            0);
  EXPECT_TRUE(dir.Exists("x.rpa"));
}

TEST(RunBlock, FourierFilteredBackgroundWritesTheBackgroundFile) {
  ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(ReadHead(dir, job, SingleHead("0 5 1 -2 0 0 0 0 0 0 0 0 0 0 0 0 0")));
  EXPECT_EQ(job->patterns[1].IPL, 2);
  EXPECT_EQ(job->patterns[1].noBackgroundPoints, 1);
  EXPECT_TRUE(Has(dir.Read("x.out"), " => Background adjusted by Fourier filtering"));
}

TEST(RunBlock, CorrectionTableOfPairsIsRead) {
  ScratchDir dir;
  dir.Write("x.cor", "corrections\n10.0 1.1\n20.0 1.2\n30.0 1.3\n");
  CapturedJob job;
  ASSERT_TRUE(ReadHead(dir, job, SingleHead("0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 1")));
  const Pattern& p = job->patterns[1];
  EXPECT_EQ(p.corrCount, 3);
  EXPECT_FLOAT_EQ(p.corrX[3], 30.0f);
  EXPECT_FLOAT_EQ(p.corrY[2], 1.2f);
  EXPECT_TRUE(Has(dir.Read("x.out"), " => Intensities corrections in file *.cor"));
}

TEST(RunBlock, CorrectionCoefficientsWithTheirSigmasAreRead) {
  ScratchDir dir;
  dir.Write("cor.cor", "corrections\n2 1 3\n1.0 0.1 0.5\n0.05 -0.2 0.01\n");
  CapturedJob job;
  ASSERT_TRUE(ReadHead(dir, job, SingleHead("0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 2")));
  const Pattern& p = job->patterns[1];
  EXPECT_EQ(p.corrMode, 2);
  EXPECT_EQ(p.corrForm, 1);
  EXPECT_EQ(p.corrCount, 3);
  EXPECT_FLOAT_EQ(p.corrY[1], 1.0f);
  EXPECT_FLOAT_EQ(p.corrX[1], 0.1f);
  EXPECT_FLOAT_EQ(p.corrY[2], 0.5f);
  EXPECT_FLOAT_EQ(p.corrX[2], 0.05f);
  EXPECT_FLOAT_EQ(p.corrY[3], -0.2f);
  EXPECT_FLOAT_EQ(p.corrX[3], 0.01f);
}

TEST(RunBlock, BadFieldOfTheJobLineIsReportedWithItsLine) {
  ScratchDir dir;
  CapturedJob job;
  EXPECT_FALSE(ReadHead(dir, job, "T\n! comment\n0 5 1.0 0\n"));
  const std::string console = job.Console();
  EXPECT_NE(console.find("FindFMT: integer field found real !"), std::string::npos);
  EXPECT_NE(console.find("\"0 5 1.0 0\""), std::string::npos);
  EXPECT_NE(console.find(" => Please check your input file at line: 3 !"), std::string::npos);
}

// The head read from a text in memory through the reader alone: no file is
// opened, nothing is asked on the console, and the steps a run would take
// (prompt, side files, output files) are only recorded.
TEST(RunBlock, ReaderAloneFillsTheRecordsFromATextInMemory) {
  ScratchDir dir;
  CapturedJob job;
  ResetDefaults(*job);
  job->driver.PcrCode = "x";
  std::string text =
      "COMM Reader alone\n"
      "! Job Npr Nph Nba Nex Nsc Nor Dum Iwg Ilo Ias Res Ste Nre Cry Uni Cor\n"
      "   0   8   2   4   1   0   0   1   0   0   0   0   0   0   0   0   1\n"
      "! Ipr Ppl Ioc Mat Pcr Ls1 Ls2 Ls3 Syo Prf Ins Rpa Sym Hkl Fou Sho Ana\n"
      "   1   0   1   2   1   0   0   0   0   1   0   1   1   0   0   0   0\n";
  TextUnit& control = job->files.units[Unit::Control];
  control.file = ::fmemopen(text.data(), text.size(), "r");
  ASSERT_NE(control.file, nullptr);
  std::vector<std::string> calls;
  HeadSteps steps;
  steps.askDataCode = [&](Job&) {
    calls.emplace_back("ask");
    return std::string("data7");
  };
  steps.multiPatternNames = [&](Job&) { calls.emplace_back("names"); };
  steps.readSideFiles = [&](Job& j, int ip) {
    calls.push_back("side " + std::to_string(ip) + " " + std::to_string(j.patterns[ip].NPROF));
  };
  steps.openOutputFiles = [&](Job& j) {
    calls.push_back("output " + std::to_string(j.run.JSY) + " " + std::to_string(j.run.JCIL));
  };
  ASSERT_TRUE(testing::RunsWithoutStop(*job, [&](Job& j) { ReadRunBlock(j, steps); }))
      << job.Console();
  CloseUnit(control);

  EXPECT_EQ(calls, (std::vector<std::string>{"ask", "side 1 8", "output 1 1"}));
  EXPECT_EQ(job->run.Title, "Reader alone");
  EXPECT_EQ(job->run.commentedOutput, 1);
  EXPECT_TRUE(job->run.singlePatternForm);
  EXPECT_EQ(job->run.NPATT, 1);
  EXPECT_EQ(job->run.NPHASE, 2);
  EXPECT_EQ(job->run.IDUM, 1);
  EXPECT_EQ(job->run.MAT, 2);
  EXPECT_EQ(job->run.NXT, 1);
  EXPECT_EQ(job->run.JCIL, 1);
  EXPECT_EQ(job->run.JSY, 1);
  const Pattern& p = job->patterns[1];
  EXPECT_EQ(job->driver.DatCode, "data7");
  EXPECT_EQ(p.DatCode, "data7");
  EXPECT_EQ(p.NPROF, 9);  // stored one above the typed number
  EXPECT_EQ(p.NBCKGD, 4);
  EXPECT_EQ(p.NEXCRG, 1);
  EXPECT_EQ(p.ICORR, 1);
  EXPECT_EQ(p.IOT, 1);
  EXPECT_EQ(p.IPC, 1);
  EXPECT_EQ(p.IPL2, 1);
  EXPECT_EQ(p.W_PAT, 1.0f);
  EXPECT_EQ(job->LINE, 5);
  EXPECT_EQ(job.Console().find("Give the name of data file"), std::string::npos);
  EXPECT_TRUE(std::filesystem::is_empty(dir.path));
}

}  // namespace
}  // namespace corvinet
