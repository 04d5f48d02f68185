// Tests of the exports of a pattern: which files are written, for which pattern.
#include "results/pattern_exports.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::CountLines;
using testing::ScratchDir;
using testing::SplitLines;

// --- Exports of a pattern ---

TEST(PatternExports, StructurePlotFileOnlyForTheFirstPattern) {
  ScratchDir dir;
  CapturedJob job;
  job->driver.PcrCode = "x";
  OpenUnit(job->files.units[Unit::Out], "x.out", OpenStatus::Unknown);
  job->run.NPATT = 2;
  job->run.NPHASE = 1;
  job->phases[1].More = 1;
  job->phases[1].Jvi = 1;
  job->phases[1].PhaseTitle = "Phase one";
  WritePatternExports(*job, 1);
  job->phases[1].Jvi = 2;  // a STRUPLO file would start with TITLE
  WritePatternExports(*job, 2);
  CloseUnit(job->files.units[Unit::Out]);
  ASSERT_TRUE(dir.Exists("x1.sch"));
  EXPECT_EQ(SplitLines(dir.Read("x1.sch")).front(), "TITL Phase one");
  EXPECT_EQ(dir.Read("x.out").find("does not write"), std::string::npos);
}

TEST(PatternExports, FourierShelxTemplateAndCollectedResultsFilesAreWritten) {
  ScratchDir dir;
  CapturedJob job;
  job->driver.PcrCode = "x";
  OpenUnit(job->files.units[Unit::Out], "x.out", OpenStatus::Unknown);
  job->run.NPHASE = 1;
  job->run.JCIL = 2;
  job->patterns[1].JFOU = -2;
  WritePatternExports(*job, 1);
  CloseUnit(job->files.units[Unit::Fourier]);
  job->patterns[1].JFOU = 3;
  job->run.JCIL = 1;
  WritePatternExports(*job, 1);
  CloseUnit(job->files.units[Unit::Fourier]);
  CloseUnit(job->files.units[Unit::Out]);
  EXPECT_TRUE(dir.Exists("x.fou"));
  EXPECT_TRUE(dir.Exists("x.ins"));
  EXPECT_TRUE(dir.Exists("x.inp"));
  ASSERT_TRUE(dir.Exists("x.sav"));
  EXPECT_EQ(SplitLines(dir.Read("x.sav")).size(), 1u);  // JCIL 2 once; no phase contributes
  EXPECT_EQ(dir.Read("x.out").find("does not write"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
