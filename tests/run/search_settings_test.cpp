// The seed and thread count of a search from the environment: their reading and their effect on a
// run.
#include "run/search_settings.h"

#include <gtest/gtest.h>

#include <string>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::ScratchDir;

TEST(SearchSettings, SeedsReadInDecimalAndHexadecimal) {
  EXPECT_EQ(ParseSearchSeed("12345"), std::optional<std::uint64_t>(12345u));
  EXPECT_EQ(ParseSearchSeed("0x1F"), std::optional<std::uint64_t>(31u));
  EXPECT_EQ(ParseSearchSeed("18446744073709551615"),
            std::optional<std::uint64_t>(18446744073709551615ull));
}

TEST(SearchSettings, ASeedThatIsNotAWholeNumberIsRefused) {
  EXPECT_FALSE(ParseSearchSeed(""));
  EXPECT_FALSE(ParseSearchSeed("-3"));
  EXPECT_FALSE(ParseSearchSeed("12a"));
  EXPECT_FALSE(ParseSearchSeed("0x"));
  EXPECT_FALSE(ParseSearchSeed("18446744073709551616"));
}

TEST(SearchSettings, ThreadCountsFromZeroTo1024) {
  EXPECT_EQ(ParseSearchThreads("0"), std::optional<int>(0));
  EXPECT_EQ(ParseSearchThreads("4"), std::optional<int>(4));
  EXPECT_EQ(ParseSearchThreads("1024"), std::optional<int>(1024));
  EXPECT_FALSE(ParseSearchThreads("1025"));
  EXPECT_FALSE(ParseSearchThreads("-1"));
  EXPECT_FALSE(ParseSearchThreads("two"));
}

// The solution file and the trial numbers of the .out file of a search run.
struct SearchFiles {
  int exitCode = -1;
  std::string solution;
  std::string trials;
};

SearchFiles SearchWith(const std::string& environment) {
  ScratchDir dir;
  dir.Write("pbmc.pcr", testing::TestData("intensities/pbmc.pcr"));
  dir.Write("pbmc1.hkl", testing::TestData("intensities/pbsc1.hkl"));
  const auto run = testing::RunBinary(dir.path, "pbmc", "n\nn\n", environment);
  SearchFiles f;
  f.exitCode = run.exitCode;
  if (dir.Exists("pbmc1.so")) f.solution = dir.Read("pbmc1.so");
  for (const std::string& line : testing::SplitLines(dir.Read("pbmc.out"))) {
    if (line.find("   trial:") != std::string::npos) f.trials += line + "\n";
  }
  return f;
}

TEST(SearchSettings, TheSeedOfTheEnvironmentDecidesTheTrialsWhateverTheThreads) {
  const SearchFiles one = SearchWith("CORVINET_SEARCH_SEED=7 CORVINET_SEARCH_THREADS=1");
  const SearchFiles two = SearchWith("CORVINET_SEARCH_SEED=7 CORVINET_SEARCH_THREADS=2");
  const SearchFiles other = SearchWith("CORVINET_SEARCH_SEED=8 CORVINET_SEARCH_THREADS=2");
  ASSERT_EQ(one.exitCode, 0);
  ASSERT_EQ(two.exitCode, 0);
  ASSERT_EQ(other.exitCode, 0);
  ASSERT_FALSE(one.trials.empty());
  EXPECT_EQ(one.trials, two.trials);
  EXPECT_EQ(one.solution, two.solution);
  EXPECT_NE(one.trials, other.trials);
}

TEST(SearchSettings, ABadSeedInTheEnvironmentStopsTheRun) {
  const SearchFiles bad = SearchWith("CORVINET_SEARCH_SEED=seven");
  EXPECT_EQ(bad.exitCode, 2);
  EXPECT_TRUE(bad.solution.empty());
}

}  // namespace
}  // namespace corvinet
