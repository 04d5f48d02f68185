// The same refinement with structure run on 1, 2 and 4 threads of the point loop writes the same
// files, byte for byte once dates and times are normalised.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::NormaliseLines;
using testing::ScratchDir;
using testing::SplitLines;
using testing::TestData;

// Every file the run leaves in its folder, by name, with normalised dates and times.
using RunFiles = std::map<std::string, std::string>;

// Simulates the two-phase pattern, refines it with CORVINET_THREADS=threads
// and reads back every file of the folder; the console goes in as "console".
RunFiles RefineOnThreads(int threads) {
  ScratchDir dir;
  dir.Write("sim.pcr", TestData("report/two_phase_sim.pcr"));
  dir.Write("sim.dat", "");
  EXPECT_EQ(testing::RunBinary(dir.path, "sim").exitCode, 0);
  dir.Write("two.dat", dir.Read("sim.sim"));
  dir.Write("two.pcr", TestData("threads/two_phase_structure.pcr"));
  const auto run =
      testing::RunBinary(dir.path, "two", "", "CORVINET_THREADS=" + std::to_string(threads));
  EXPECT_EQ(run.exitCode, 0) << threads << " threads";
  RunFiles files;
  for (const auto& entry : std::filesystem::directory_iterator(dir.path)) {
    const std::string name = entry.path().filename().string();
    std::string text;
    for (const std::string& line : NormaliseLines(SplitLines(dir.Read(name)))) text += line + "\n";
    files[name] = text;
  }
  std::string console;
  for (const std::string& line : NormaliseLines(SplitLines(run.output))) console += line + "\n";
  files["console"] = console;
  return files;
}

TEST(PointThreads, RefinementWritesTheSameFilesOnOneTwoAndFourThreads) {
  const RunFiles one = RefineOnThreads(1);
  // The run refined something and wrote its reports and profile.
  ASSERT_TRUE(one.count("two.sum") && one.count("two.out") && one.count("two.prf"));
  EXPECT_NE(one.at("two.sum").find("RESULTS OF REFINEMENT"), std::string::npos);
  for (int threads : {2, 4}) {
    const RunFiles other = RefineOnThreads(threads);
    ASSERT_EQ(other.size(), one.size()) << threads << " threads";
    for (const auto& [name, text] : one) {
      ASSERT_TRUE(other.count(name)) << name;
      EXPECT_TRUE(other.at(name) == text) << name << " differs on " << threads << " threads";
    }
  }
}

TEST(PointThreads, ThreadCountThatIsNotANumberStopsTheRun) {
  ScratchDir dir;
  dir.Write("sim.pcr", TestData("report/two_phase_sim.pcr"));
  dir.Write("sim.dat", "");
  ASSERT_EQ(testing::RunBinary(dir.path, "sim").exitCode, 0);
  dir.Write("two.dat", dir.Read("sim.sim"));
  dir.Write("two.pcr", TestData("threads/two_phase_structure.pcr"));
  const auto run = testing::RunBinary(dir.path, "two", "", "CORVINET_THREADS=two");
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_NE(run.output.find("CORVINET_THREADS is not a whole number"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
