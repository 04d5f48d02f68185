// The Monte Carlo search: draws, the kept list, determinism over seeds and threads, a known answer.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <string>

#include "search/search_run.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

SearchSolution Solution(float rf2, std::int64_t trial) {
  SearchSolution s;
  s.RF2 = rf2;
  s.trial = trial;
  return s;
}

TEST(SearchKeep, OneSolutionKeepsOnlyTheBest) {
  std::vector<SearchSolution> list;
  EXPECT_EQ(KeepSolution(list, 1, Solution(5.0f, 1)), 1);
  EXPECT_EQ(KeepSolution(list, 1, Solution(7.0f, 2)), 0);
  EXPECT_EQ(KeepSolution(list, 1, Solution(3.0f, 3)), 1);
  ASSERT_EQ(list.size(), 1u);
  EXPECT_EQ(list[0].trial, 3);
}

TEST(SearchKeep, EqualRF2NeverReplacesAKeptSolution) {
  std::vector<SearchSolution> list;
  KeepSolution(list, 2, Solution(4.0f, 1));
  KeepSolution(list, 2, Solution(4.0f, 2));
  EXPECT_EQ(KeepSolution(list, 2, Solution(4.0f, 3)), 0);
  EXPECT_EQ(list[0].trial, 1);
  EXPECT_EQ(list[1].trial, 2);
}

TEST(SearchKeep, AnInfiniteRF2HasNoPlace) {
  std::vector<SearchSolution> list;
  EXPECT_EQ(KeepSolution(list, 3, Solution(std::numeric_limits<float>::infinity(), 1)), 0);
  EXPECT_TRUE(list.empty());
}

// The search job of the test data: S (x, z) and O2 (x, z) of anglesite
// searched against F² of the independent script.
struct SearchJob {
  ScratchDir dir;
  CapturedJob job;
  bool read = false;
  explicit SearchJob(const std::string& pcr = testing::TestData("intensities/pbmc.pcr")) {
    dir.Write("x1.hkl", testing::TestData("intensities/pbsc1.hkl"));
    read = testing::ReadControlText(dir, job, pcr, false);
  }
  SearchSetup Setup(std::uint64_t seed) { return MakeSearchSetup(*job, 1, 1, seed); }
};

TEST(SearchTrials, AZeroCalculatedSumGivesTheTrialNoPlace) {
  SearchJob j;
  ASSERT_TRUE(j.read) << j.job.Console();
  SearchSetup s = j.Setup(1);
  for (float& o : s.start.occ) o = 0.0f;
  TrialWork w = MakeTrialWork(s);
  float scale = 0.0f;
  // Occupancies 0 everywhere: every F² is 0, the fitted scale infinite.
  const float rf2 = TrialRF2(s, w, scale);
  EXPECT_TRUE(std::isinf(rf2));
  std::vector<SearchSolution> list;
  EXPECT_EQ(KeepSolution(list, 3, Solution(rf2, 1)), 0);
}

TEST(SearchTrials, ASharedCodeMovesAnAtomAndAScaleWithTheFirstSlotDrawn) {
  SearchJob j;
  ASSERT_TRUE(j.read) << j.job.Console();
  SearchSetup s = j.Setup(7);
  // Code 1 (x of S) also on Sc1 with multiplier -2.
  s.slots.push_back({1, -2.0f, -1, 0});
  TrialWork w = MakeTrialWork(s);
  DrawTrial(s, 5, w);
  const float change = w.values.x[1] - s.start.x[1];
  EXPECT_GE(w.values.x[1], 0.0f);
  EXPECT_LE(w.values.x[1], 0.15f);
  EXPECT_FLOAT_EQ(w.drawn[1], w.values.x[1]);
  EXPECT_NEAR(w.values.scale[0], s.start.scale[0] - 2.0f * change, 1e-6f);
}

std::vector<std::int64_t> Trials(const TrialsOutcome& o) {
  std::vector<std::int64_t> t;
  for (const SearchSolution& s : o.best) t.push_back(s.trial);
  return t;
}

TEST(SearchTrials, SameSeedSameTrialsAnyThreadsDifferentSeedOtherTrials) {
  SearchJob j;
  ASSERT_TRUE(j.read) << j.job.Console();
  InterruptFlag flag;
  const SearchSetup s = j.Setup(11);
  const TrialsOutcome one = RunTrials(s, 3000, 5, 1, flag, false, {});
  const TrialsOutcome again = RunTrials(s, 3000, 5, 1, flag, false, {});
  const TrialsOutcome four = RunTrials(s, 3000, 5, 4, flag, false, {});
  EXPECT_EQ(one.trials, 3000);
  EXPECT_EQ(Trials(one), Trials(again));
  EXPECT_EQ(Trials(one), Trials(four));
  for (std::size_t n = 0; n < one.best.size(); ++n) {
    EXPECT_EQ(one.best[n].RF2, four.best[n].RF2);
    EXPECT_EQ(one.best[n].values, four.best[n].values);
  }
  TrialWork a = MakeTrialWork(s), b = MakeTrialWork(j.Setup(12));
  DrawTrial(s, 1, a);
  DrawTrial(j.Setup(12), 1, b);
  EXPECT_NE(a.drawn, b.drawn);
}

TEST(SearchTrials, ARaisedInterruptEndsTheTrialsEarly) {
  SearchJob j;
  ASSERT_TRUE(j.read) << j.job.Console();
  InterruptFlag flag;
  flag.raised = true;
  const TrialsOutcome o = RunTrials(j.Setup(1), 100000, 3, 2, flag, false, {});
  EXPECT_TRUE(o.interrupted);
  EXPECT_LT(o.trials, 100000);
}

// x z of the atom line that begins with `label`.
std::vector<double> Position(const std::string& text, const std::string& label) {
  std::vector<double> v = testing::AtomLineValues(text, label);
  if (v.size() > 3) v.resize(3);
  return v;
}

TEST(SearchProgress, EveryFourthBetterSolutionRepeatsTheHeadLineOfThePhase) {
  SearchProgressLines shown;
  shown.head = " => Phase:  1 searched on    100 reflections";
  const float bests[] = {50.0f, 40.0f, 40.0f, 30.0f, 20.0f, 10.0f, 9.0f, 8.0f, 7.0f};
  std::vector<int> heads;
  int rf2Lines = 0;
  for (int call = 0; call < 9; ++call) {
    const auto lines = shown.Next(100 * (call + 1), bests[call]);
    EXPECT_EQ(lines[0].rfind(" => Trials done:", 0), 0u);
    for (const std::string& line : lines) {
      if (line == shown.head) heads.push_back(call);
      rf2Lines += line.rfind(" => RF2-Factor for the best  1th solution: ", 0) == 0;
    }
  }
  // Eight improvements (the repeated 40 is none): the head before the 4th and the 8th.
  EXPECT_EQ(rf2Lines, 8);
  EXPECT_EQ(heads, (std::vector<int>{4, 8}));
}

int CountLinesContaining(const std::string& text, const std::string& words) {
  int n = 0;
  for (const std::string& line : testing::SplitLines(text))
    n += line.find(words) != std::string::npos;
  return n;
}

TEST(SearchRun, TheFirstSolutionLiesNearTheKnownStructureAndRefinesAsItIs) {
  ScratchDir dir;
  dir.Write("pbmc.pcr", testing::TestData("intensities/pbmc.pcr"));
  dir.Write("pbmc1.hkl", testing::TestData("intensities/pbsc1.hkl"));
  const auto run = testing::RunBinary(dir.path, "pbmc", "n\nn\n");
  ASSERT_EQ(run.exitCode, 0) << run.output;
  EXPECT_NE(run.output.find(" **** MONTECARLO SEARCH FOR STARTING CONFIGURATION ****"),
            std::string::npos);
  EXPECT_NE(run.output.find(" => Trials done:"), std::string::npos);
  ASSERT_TRUE(dir.Exists("pbmc1.so"));
  ASSERT_TRUE(dir.Exists("pbmc3.so"));
  const std::string first = dir.Read("pbmc1.so");
  const std::vector<double> S = Position(first, "S"), O2 = Position(first, "O2");
  ASSERT_EQ(S.size(), 3u);
  ASSERT_EQ(O2.size(), 3u);
  EXPECT_NEAR(S[0], 0.0654, 0.02);
  EXPECT_NEAR(S[2], 0.6841, 0.02);
  EXPECT_NEAR(O2[0], 0.1935, 0.02);
  EXPECT_NEAR(O2[2], 0.5433, 0.02);
  // One line names the phase, with the RF2 of the solution.
  EXPECT_EQ(CountLinesContaining(first, "Current R_Bragg"), 1);
  EXPECT_NE(first.find("!  Data for PHASE number:   1  ==> Current R_Bragg: "), std::string::npos);
  // The solution file is a control file: it refines on the intensities as it is.
  dir.Write("sol.pcr", first);
  dir.Write("sol1.hkl", testing::TestData("intensities/pbsc1.hkl"));
  const auto refined = testing::RunBinary(dir.path, "sol", "n\nn\n");
  ASSERT_EQ(refined.exitCode, 0) << refined.output;
  const std::vector<double> S2 = Position(dir.Read("sol.new"), "S");
  ASSERT_EQ(S2.size(), 3u);
  EXPECT_NEAR(S2[0], 0.0654, 0.002);
  EXPECT_NEAR(S2[2], 0.6841, 0.002);
}

}  // namespace
}  // namespace corvinet
