// Tests of the run driver: the choice of the cyclic mode and the codes of a command line.
#include "run/run_driver.h"

#include <gtest/gtest.h>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

TEST(RunDriver, CyclicCodesAreThreeSpellingsOnly) {
  ScratchDir dir;
  for (const char* code : {"cyc", "CYC", "Cyc"}) {
    CapturedJob job;
    Main(*job, {code});
    EXPECT_EQ(job->driver.cyclicMode, 1) << code;
  }
  CapturedJob job;
  Main(*job, {"cYc"});
  EXPECT_EQ(job->driver.cyclicMode, 0);
}

TEST(RunDriver, CommandLineWithoutSecondWordLeavesDataCodeToTheControlCode) {
  ScratchDir dir;
  dir.Write("abc.pcr", testing::TestData("head/calc.pcr"));
  CapturedJob job;
  Main(*job, {"abc"});
  EXPECT_EQ(job->driver.PcrCode, "abc");
  EXPECT_EQ(job->driver.DatCode, "abc");
  EXPECT_EQ(job->patterns[1].DatCode, "abc");
}

}  // namespace
}  // namespace corvinet
