// End-to-end runs of profile-matching refinements of a simulated cubic pattern: the cycle reports
// of the .out file and the results of the .sum file, compared line by line with expected files
// whose numbers are recalculated independently by tests/data/cycle/check_cycle_numbers.py.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::NormaliseLines;
using testing::ScratchDir;
using testing::SplitLines;
using testing::TestData;

// The lines from the first one that starts with one of `starts` to the end.
std::vector<std::string> TailFrom(const std::string& text, const std::vector<std::string>& starts) {
  const auto lines = NormaliseLines(SplitLines(text));
  for (std::size_t i = 0; i < lines.size(); ++i) {
    for (const auto& s : starts) {
      if (lines[i].rfind(s, 0) == 0) return {lines.begin() + static_cast<long>(i), lines.end()};
    }
  }
  return {};
}

// The expected lines open the actual ones; the final report follows them.
void ExpectSameLines(const std::vector<std::string>& actual, const std::string& expected) {
  const auto e = NormaliseLines(SplitLines(expected));
  for (std::size_t i = 0; i < std::min(actual.size(), e.size()); ++i) {
    EXPECT_EQ(actual[i], e[i]) << "at line " << i + 1;
  }
  EXPECT_GE(actual.size(), e.size());
}

// Runs job `name` of tests/data/cycle on the common simulated data and
// compares the cycle block of the report and the results of the summary, up
// to the start of the final report.
void ExpectCycleReports(const std::string& name) {
  ScratchDir dir;
  dir.Write(name + ".pcr", TestData("cycle/" + name + ".pcr"));
  dir.Write(name + ".dat", TestData("cycle/cycle.dat"));
  const auto run = testing::RunBinary(dir.path, name);
  EXPECT_EQ(run.exitCode, 0);
  const auto out = TailFrom(dir.Read(name + ".out"),
                            {" => CYCLE No.:", "   Standard deviations have to be multiplied by:"});
  ASSERT_FALSE(out.empty());
  ExpectSameLines(out, TestData("cycle/" + name + ".out.cycles"));
  const auto sum = TailFrom(dir.Read(name + ".sum"), {" => Scor:", " ==> RESULTS OF REFINEMENT:"});
  ASSERT_FALSE(sum.empty());
  ExpectSameLines(sum, TestData("cycle/" + name + ".sum.results"));
}

// One cycle: the calculated pattern uses the unit intensities that profile
// matching starts from, and the shifts of the three background terms.
TEST(CycleEndToEnd, OneCycleReportsShiftsReliabilityAndBraggFactors) {
  ExpectCycleReports("cycle1");
}

// Three cycles: the second and third use the intensities extracted by the
// Rietveld partition of the cycle before and the shifted background.
TEST(CycleEndToEnd, ThreeCyclesCarryExtractedIntensitiesAndShifts) {
  ExpectCycleReports("cycle3");
}

// Profile matching with the divergence test: the run stops after the first
// cycle with a results pass that reports convergence and zero shifts, and
// extracts the intensities once more.
TEST(CycleEndToEnd, DivergenceTestEndsProfileMatchingWithAConvergedPass) {
  ExpectCycleReports("stop");
}

}  // namespace
}  // namespace corvinet
