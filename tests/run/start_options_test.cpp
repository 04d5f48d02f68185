// Tests of the start-up options: `--large`, CORVINET_LIMITS and the refusal of unknown options.
#include "run/start_options.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "run/run_driver.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

TEST(StartOptions, WithoutOptionsTheDefaultCapacitiesHold) {
  const StartOptions o = ReadStartOptions({"abc", "def"}, std::nullopt);
  EXPECT_TRUE(o.error.empty());
  EXPECT_EQ(o.dimensions.IDSZ, 20000);
  EXPECT_EQ(o.dimensions.IRS, 6000);
  EXPECT_EQ(o.dimensions.MSZ, 300);
  EXPECT_EQ(o.arguments, (std::vector<std::string>{"abc", "def"}));
}

TEST(StartOptions, LargeOptionRaisesPointsReflectionsAndParameters) {
  const StartOptions o = ReadStartOptions({"--large", "abc"}, std::nullopt);
  EXPECT_TRUE(o.error.empty());
  EXPECT_EQ(o.dimensions.IDSZ, 200000);
  EXPECT_EQ(o.dimensions.IRS, 60000);
  EXPECT_EQ(o.dimensions.MSZ, 2000);
  // The fixed capacities stay.
  EXPECT_EQ(DimensionLimits::NOV, 1536);
  // The option is not a code of the job.
  EXPECT_EQ(o.arguments, (std::vector<std::string>{"abc"}));
}

TEST(StartOptions, LargeOptionMayFollowTheCodes) {
  const StartOptions o = ReadStartOptions({"abc", "def", "--large"}, std::nullopt);
  EXPECT_TRUE(o.error.empty());
  EXPECT_EQ(o.dimensions.IDSZ, 200000);
  EXPECT_EQ(o.arguments, (std::vector<std::string>{"abc", "def"}));
}

TEST(StartOptions, EnvironmentLargeRaisesTheCapacities) {
  const StartOptions o = ReadStartOptions({"abc"}, std::string("large"));
  EXPECT_TRUE(o.error.empty());
  EXPECT_EQ(o.dimensions.IDSZ, 200000);
  EXPECT_EQ(o.dimensions.IRS, 60000);
  EXPECT_EQ(o.dimensions.MSZ, 2000);
}

TEST(StartOptions, EnvironmentDefaultOrEmptyKeepsTheDefaults) {
  for (const char* value : {"default", ""}) {
    const StartOptions o = ReadStartOptions({"abc"}, std::string(value));
    EXPECT_TRUE(o.error.empty()) << value;
    EXPECT_EQ(o.dimensions.IDSZ, 20000) << value;
    EXPECT_EQ(o.dimensions.MSZ, 300) << value;
  }
}

TEST(StartOptions, UnknownOptionIsRefusedByName) {
  const StartOptions o = ReadStartOptions({"--larger", "abc"}, std::nullopt);
  EXPECT_EQ(o.error, " => Unknown option: --larger (the option known is --large)");
}

TEST(StartOptions, UnknownEnvironmentValueIsRefused) {
  const StartOptions o = ReadStartOptions({"abc"}, std::string("huge"));
  EXPECT_EQ(o.error, " => CORVINET_LIMITS must be large or default, not: huge");
}

TEST(StartOptions, MainStopsWithStatusTwoOnAnUnknownOption) {
  ScratchDir dir;
  dir.Write("abc.pcr", testing::TestData("head/calc.pcr"));
  CapturedJob job;
  EXPECT_EQ(Main(*job, {"--bogus", "abc"}), 2);
  EXPECT_NE(job.Console().find(" => Unknown option: --bogus (the option known is --large)"),
            std::string::npos);
  // No job was started.
  EXPECT_FALSE(dir.Exists("abc.out"));
}

TEST(StartOptions, MainTakesTheLargeCapacitiesIntoTheJob) {
  ScratchDir dir;
  dir.Write("abc.pcr", testing::TestData("head/calc.pcr"));
  CapturedJob job;
  Main(*job, {"--large", "abc"});
  EXPECT_EQ(job->driver.PcrCode, "abc");
  EXPECT_EQ(job->dimensions.IDSZ, 200000);
  EXPECT_EQ(job->dimensions.MSZ, 2000);
  // The reset before the run keeps them.
  EXPECT_EQ(job->patterns[1].reflections.capacity, 60000);
}

}  // namespace
}  // namespace corvinet
