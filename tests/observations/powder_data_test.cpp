// Tests of ReadPattern as a whole: the INSTR check, the opening of the file and what a stop leaves.
#include "observations/powder_data.h"

#include <gtest/gtest.h>

#include <string>

#include "data_file_case.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::DataFileCase;
using testing::ScratchDir;

TEST(ReadPattern, UnknownInstrStops) {
  for (int instr : {15, -1, -5, 99, 112, 1300, -213}) {
    DataFileCase c(instr, "10 1 20\n1 2 3 4 5 6 7 8 9 10 11\n");
    EXPECT_NE(c.ReadExpectingStop().find(" Invalid INSTR parameter"), std::string::npos) << instr;
  }
}

TEST(ReadPattern, MissingDataFileStopsWithTheOpenMessage) {
  ScratchDir dir;
  CapturedJob job;
  job->patterns[1].DatCode = "absent";
  job->patterns[1].INSTR = 0;
  EXPECT_THROW(ReadPattern(*job, 1), ProcessStop);
  EXPECT_NE(job.Console().find("CODEFIL=absent"), std::string::npos);
}

TEST(ReadPattern, UxdExtensionIsFoundWhenNoDatExists) {
  ScratchDir dir;
  CapturedJob job;
  dir.Write("scan.uxd", "_STEPSIZE=0.5\n_START=10\n_COUNTS\n7 8 9\n");
  job->patterns[1].DatCode = "scan";
  job->patterns[1].INSTR = 9;
  ReadPattern(*job, 1);
  EXPECT_EQ(job->patterns[1].NPTS, 3);
  EXPECT_FLOAT_EQ(job->patterns[1].Ytotal[3], 9.0f);
}

TEST(ReadPattern, CountNormIsOneBeyondThePointsRead) {
  DataFileCase c(1, "0 1 1\n 2   100 3   300\n");
  c.pattern().CountNorm[3] = 7.0f;
  c.pattern().CountNorm[20000] = 7.0f;
  c.Read();
  EXPECT_EQ(c.pattern().CountNorm[1], 2.0f);
  EXPECT_EQ(c.pattern().CountNorm[2], 3.0f);
  EXPECT_EQ(c.pattern().CountNorm[3], 1.0f);
  EXPECT_EQ(c.pattern().CountNorm[20000], 1.0f);
}

TEST(ReadPattern, CnormIsOneWhenTheFormatDoesNotComputeIt) {
  DataFileCase c(8, "t\nt\n0 1 1\n   100.0   200.0\n    20.0    30.0\n");
  c.pattern().Cnorm = 5.0f;
  c.Read();
  EXPECT_FLOAT_EQ(c.pattern().Cnorm, 1.0f);
}

TEST(ReadPattern, StopLeavesThePatternAsItWas) {
  DataFileCase c(7, "    3 1000. D4\n  10.00    100.0  2.5   10.50    abc.0  3.0\n");
  Pattern& p = c.pattern();
  p.NPTS = 2;
  p.THMIN = 1.0f;
  p.X[1] = 1.0f;
  p.Ytotal[1] = 11.0f;
  p.Variance[1] = 12.0f;
  c.ReadExpectingStop();
  EXPECT_EQ(p.NPTS, 2);
  EXPECT_EQ(p.THMIN, 1.0f);
  EXPECT_EQ(p.X[1], 1.0f);
  EXPECT_EQ(p.Ytotal[1], 11.0f);
  EXPECT_EQ(p.Variance[1], 12.0f);
  EXPECT_FALSE(c.DataUnitOpen());
}

TEST(ReadPattern, SecondPatternReadsItsOwnFile) {
  ScratchDir dir;
  CapturedJob job;
  dir.Write("one.dat", "0 1 3\n1 2 3 4\n");
  dir.Write("two.dat", "5 1 8\n10 20 30 40\n");
  job->patterns[1].DatCode = "one";
  job->patterns[2].DatCode = "two";
  ReadPattern(*job, 1);
  ReadPattern(*job, 2);
  EXPECT_FLOAT_EQ(job->patterns[1].Ytotal[4], 4.0f);
  EXPECT_FLOAT_EQ(job->patterns[2].Ytotal[4], 40.0f);
  EXPECT_FLOAT_EQ(job->patterns[2].X[1], 5.0f);
}

}  // namespace
}  // namespace corvinet
