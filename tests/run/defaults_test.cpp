// Tests of the defaults pass and of the report of the table capacities.
#include "run/defaults.h"

#include <gtest/gtest.h>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;

TEST(Defaults, SetTheTableOfDefaults) {
  CapturedJob job;
  ResetDefaults(*job);
  const Job& j = *job;
  EXPECT_EQ(j.run.NPHASE, 1);
  EXPECT_EQ(j.run.NCY, 1);
  EXPECT_FLOAT_EQ(j.run.EPS, 0.2f);
  EXPECT_EQ(j.run.IPL1, 1);
  EXPECT_EQ(j.run.NXT, 1);
  EXPECT_EQ(j.run.commentedOutput, 1);
  EXPECT_EQ(j.run.firstFurtherParameter, 59);
  for (int k = 1; k <= 5; ++k) EXPECT_FLOAT_EQ(j.run.relaxationFactor[k], 1.0f);
  for (const Pattern& p : j.patterns) {
    EXPECT_EQ(p.NPROF, 6);
    EXPECT_EQ(p.IPC, 1);
    EXPECT_EQ(p.IPL2, 1);
    EXPECT_EQ(p.Iabscor, 2);
    EXPECT_FLOAT_EQ(p.W_PAT, 1.0f);
    EXPECT_FLOAT_EQ(p.Temperature, 293.0f);
    EXPECT_FLOAT_EQ(p.Cnorm, 1.0f);
    EXPECT_EQ(p.corrMode, 1);
    EXPECT_EQ(p.corrForm, 1);
    EXPECT_FLOAT_EQ(p.corrX[1], 1.0f);
    EXPECT_FLOAT_EQ(p.corrY[DimensionLimits::NPRC], 1.0f);
    EXPECT_EQ(p.JOBTYP, 0);
    ASSERT_EQ(p.Ytotal.size(), DimensionLimits::kDefaultIDSZ);
    EXPECT_FLOAT_EQ(p.Ytotal[DimensionLimits::kDefaultIDSZ], 0.0f);
  }
}

TEST(Defaults, ClearTextsAndTables) {
  CapturedJob job;
  job->run.Title = "old title";
  job->phases[3].PhaseTitle = "phase";
  job->phases[3].SpaceGroupSymbol = "P m 3 m";
  job->atoms[530].label = "Fe1";
  job->atoms[530].species = "FE";
  job->atoms[530].ATP[32] = 4.0f;
  ResetDefaults(*job);
  EXPECT_EQ(job->run.Title, "");
  EXPECT_EQ(job->phases[3].PhaseTitle, "");
  EXPECT_EQ(job->phases[3].SpaceGroupSymbol, "");
  EXPECT_EQ(job->atoms[530].label, "");
  EXPECT_EQ(job->atoms[530].species, "");
  EXPECT_FLOAT_EQ(job->atoms[530].ATP[32], 0.0f);
}

TEST(Defaults, RunWithThreePatternsLeavesNoTraceInTheNext) {
  CapturedJob job;
  ResetDefaults(*job);
  job->run.NPATT = 3;
  for (int ip = 2; ip <= 3; ++ip) {
    job->patterns[ip].DatCode = "d" + std::to_string(ip);
    job->patterns[ip].JOBTYP = 1;
    job->patterns[ip].NPROF = 8;
    job->patterns[ip].W_PAT = 0.3f;
    job->patterns[ip].X[10] = 5.0f;
    job->patterns[ip].NPTS = 10;
  }
  ResetDefaults(*job);
  EXPECT_EQ(job->run.NPATT, 1);
  for (int ip = 2; ip <= 3; ++ip) {
    EXPECT_EQ(job->patterns[ip].DatCode, "");
    EXPECT_EQ(job->patterns[ip].JOBTYP, 0);
    EXPECT_EQ(job->patterns[ip].NPROF, 6);
    EXPECT_FLOAT_EQ(job->patterns[ip].W_PAT, 1.0f);
    EXPECT_FLOAT_EQ(job->patterns[ip].X[10], 0.0f);
    EXPECT_EQ(job->patterns[ip].NPTS, 0);
  }
}

TEST(Defaults, KeepTheStateOfTheProcess) {
  CapturedJob job;
  job->driver.PcrCode = "abc";
  job->files.multiPattern = true;
  job->console.ConsoleUnit = Unit::CyclicLog;
  ResetDefaults(*job);
  EXPECT_EQ(job->driver.PcrCode, "abc");
  EXPECT_TRUE(job->files.multiPattern);
  EXPECT_EQ(job->console.ConsoleUnit, Unit::CyclicLog);
}

TEST(Defaults, AreIdempotent) {
  CapturedJob job;
  ResetDefaults(*job);
  ResetDefaults(*job);
  EXPECT_EQ(job->patterns[5].NPROF, 6);
  EXPECT_FLOAT_EQ(job->patterns[5].corrY[1], 1.0f);
}

}  // namespace
}  // namespace corvinet
