// Tests of the simulated pattern of a calculation job.
#include "results/simulated_pattern.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "format/fortran_format.h"
#include "observations/poisson.h"
#include "observations/powder_data.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;
using testing::SplitLines;

// --- Simulated pattern ---

TEST(SimulatedPattern, CountsAreRoundedHalfAwayFromZero) {
  EXPECT_EQ(RoundedCount(2.5f), 3);
  EXPECT_EQ(RoundedCount(2.49f), 2);
  EXPECT_EQ(RoundedCount(-2.5f), -3);
  EXPECT_EQ(RoundedCount(-0.4f), 0);
}

void ThreePoints(Job& job, int jobtyp, int idum) {
  job.run.Title = "Three points";
  job.run.IDUM = idum;
  Pattern& p = job.patterns[1];
  p.JOBTYP = jobtyp;
  p.NPTS = 3;
  p.THMIN = 10.0f;
  p.STEP = 0.5f;
  p.THMAX = 11.0f;
  p.Ytotal[1] = 10.4f;
  p.Ytotal[2] = 2000.5f;
  p.Ytotal[3] = -3.5f;
}

TEST(SimulatedPattern, CalculationJobWritesTheCalculatedCounts) {
  ScratchDir dir;
  CapturedJob job;
  job->driver.PcrCode = "x";
  ThreePoints(*job, 2, 1);
  WriteSimulatedPattern(*job, 1);
  EXPECT_EQ(dir.Read("x.sim"),
            "     10.0000      0.5000     11.0000  Three points\n"
            "      10    2001      -4\n");
}

TEST(SimulatedPattern, NegativeIdumDrawsPoissonCounts) {
  ScratchDir dir;
  CapturedJob job;
  CapturedJob twin;
  job->driver.PcrCode = "x";
  ThreePoints(*job, 2, -1);
  ThreePoints(*twin, 2, -1);
  WriteSimulatedPattern(*job, 1);
  const float expected[] = {PoissonDeviate(*twin, 10.4f), PoissonDeviate(*twin, 2000.5f),
                            PoissonDeviate(*twin, -3.5f)};
  const auto lines = SplitLines(dir.Read("x.sim"));
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[1], Fmt("(3I8)", RoundedCount(expected[0]), RoundedCount(expected[1]),
                          RoundedCount(expected[2])));
  EXPECT_EQ(job->patterns[1].Ytotal[2], expected[1]);
  EXPECT_NE(lines[1], "      10    2001      -4");
}

TEST(SimulatedPattern, RefinementOrIdumZeroWritesNoFile) {
  ScratchDir dir;
  for (auto [jobtyp, idum] : {std::pair{0, 1}, std::pair{1, 1}, std::pair{2, 0}}) {
    CapturedJob job;
    job->driver.PcrCode = "x";
    ThreePoints(*job, jobtyp, idum);
    WriteSimulatedPattern(*job, 1);
    EXPECT_FALSE(dir.Exists("x.sim")) << jobtyp << " " << idum;
  }
}

// Counts of eight digits used to fill their I8 fields whole, so that two
// counts ran together and the file no longer read back as data.
TEST(SimulatedPattern, LargeCountsKeepABlankBetweenThemAndReadBackAsData) {
  ScratchDir dir;
  CapturedJob job;
  job->driver.PcrCode = "x";
  ThreePoints(*job, 2, 1);
  // Five points: the free-format reader wants four at least.
  Pattern& sim = job->patterns[1];
  sim.NPTS = 5;
  sim.THMAX = 12.0f;
  const float values[] = {12345678.0f, 15000000.0f, -4000000.0f, 99999999.0f, 7.0f};
  for (int i = 1; i <= 5; ++i) sim.Ytotal[i] = values[i - 1];
  WriteSimulatedPattern(*job, 1);
  EXPECT_EQ(dir.Read("x.sim"),
            "     10.0000      0.5000     12.0000  Three points\n"
            "  12345678  15000000  -4000000 100000000         7\n");

  dir.Write("back.dat", dir.Read("x.sim"));
  CapturedJob reader;
  reader->patterns[1].DatCode = "back";
  reader->patterns[1].INSTR = 0;
  ReadPattern(*reader, 1);
  const Pattern& p = reader->patterns[1];
  ASSERT_EQ(p.NPTS, 5);
  EXPECT_EQ(p.Ytotal[1], 12345678.0f);
  EXPECT_EQ(p.Ytotal[2], 15000000.0f);
  EXPECT_EQ(p.Ytotal[3], -4000000.0f);
  EXPECT_EQ(p.Ytotal[4], 100000000.0f);
  EXPECT_EQ(p.Ytotal[5], 7.0f);
}

TEST(SimulatedPattern, ANineDigitCountWidensEveryField) {
  ScratchDir dir;
  CapturedJob job;
  job->driver.PcrCode = "x";
  ThreePoints(*job, 2, 1);
  job->patterns[1].Ytotal[2] = 123456792.0f;
  WriteSimulatedPattern(*job, 1);
  EXPECT_EQ(SplitLines(dir.Read("x.sim"))[1], "        10 123456792        -4");
}

TEST(SimulatedPattern, CountsBeyondTheIntegerRangeAreHeld) {
  EXPECT_EQ(RoundedCount(3.0e9f), 3000000000LL);
  EXPECT_EQ(RoundedCount(1.0e30f), 1000000000000000000LL);
  EXPECT_EQ(RoundedCount(-1.0e30f), -1000000000000000000LL);
}

}  // namespace
}  // namespace corvinet
