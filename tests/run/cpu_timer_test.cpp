// Tests of the CPU timer of a run.
#include "run/cpu_timer.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

TEST(CpuTimer, CpuTimerPrintsSecondsAndMinutes) {
  ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(OpenUnit(job->files.units[Unit::Out], "r.out", OpenStatus::Unknown));
  ASSERT_TRUE(OpenUnit(job->files.units[Unit::Sum], "r.sum", OpenStatus::Unknown));
  CpuTimer(*job, CpuTimerMode::kStart, false);
  CpuTimer(*job, CpuTimerMode::kEnd, true);
  CloseUnit(job->files.units[Unit::Out]);
  CloseUnit(job->files.units[Unit::Sum]);
  const std::regex seconds(R"(          \s{4}CPU Time:\s*\d+\.\d{3} seconds)");
  const std::regex minutes(R"( {23}\s*\d+\.\d{3} minutes)");
  for (const std::string& text : {dir.Read("r.out"), dir.Read("r.sum"), job.Console()}) {
    const auto lines = testing::SplitLines(text);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_TRUE(std::regex_match(lines[0], seconds)) << lines[0];
    EXPECT_TRUE(std::regex_match(lines[1], minutes)) << lines[1];
    EXPECT_EQ(lines[0].size(), 10u + 13u + 10u + 8u);
  }
}

}  // namespace
}  // namespace corvinet
