// Tests of the exports of a pattern and the lines naming what is not written.
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

TEST(PatternExports, SchakalLineOnlyForTheFirstPattern) {
  ScratchDir dir;
  CapturedJob job;
  job->driver.PcrCode = "x";
  OpenUnit(job->files.units[Unit::Out], "x.out", OpenStatus::Unknown);
  job->run.NPATT = 2;
  job->run.NPHASE = 1;
  job->phases[1].More = 1;
  job->phases[1].Jvi = 1;
  WritePatternExports(*job, 1);
  WritePatternExports(*job, 2);
  job->phases[1].Jvi = 2;
  WritePatternExports(*job, 2);
  CloseUnit(job->files.units[Unit::Out]);
  EXPECT_EQ(CountLines(dir.Read("x.out"),
                       " => This version of Corvinet does not write the Schakal/STRUPLO file "
                       "(.sch) of phase 1"),
            1);
}

TEST(PatternExports, FourierShelxAndSavFilesAreNamedAsNotWritten) {
  ScratchDir dir;
  CapturedJob job;
  job->driver.PcrCode = "x";
  OpenUnit(job->files.units[Unit::Out], "x.out", OpenStatus::Unknown);
  job->run.NPHASE = 1;
  job->run.JCIL = 2;
  job->patterns[1].JFOU = -2;
  WritePatternExports(*job, 1);
  job->patterns[1].JFOU = 3;
  job->run.JCIL = 1;
  WritePatternExports(*job, 1);
  CloseUnit(job->files.units[Unit::Out]);
  const std::string out = dir.Read("x.out");
  const std::string prefix = " => This version of Corvinet does not write ";
  EXPECT_EQ(CountLines(out, prefix + "the Fourier file (.fou) of pattern 1"), 2);
  EXPECT_EQ(CountLines(out, prefix + "the SHELX file (.ins)"), 1);
  EXPECT_EQ(CountLines(out, prefix + "the Fourier template (.inp)"), 1);
  EXPECT_EQ(CountLines(out, prefix + "the collected results file (.sav)"), 1);
  EXPECT_FALSE(dir.Exists("x.fou"));
}

}  // namespace
}  // namespace corvinet
