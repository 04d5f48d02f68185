// Refined values keep six significant digits in the new control file: a synchrotron-narrow width
// W of about 4e-5, refined, is written so that the next run reads back the value it refined.
#include <gtest/gtest.h>

#include <cmath>
#include <regex>
#include <string>
#include <vector>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::RunBinary;
using testing::ScratchDir;
using testing::SplitLines;
using testing::TestData;

// The value of the last row `name` of the final parameter tables of .out.
double ReportedValue(const std::string& out, const std::string& name) {
  double value = NAN;
  for (const std::string& line : SplitLines(out)) {
    const std::size_t at = line.find_first_not_of(' ');
    if (at == std::string::npos || line.compare(at, name.size() + 1, name + " ") != 0) continue;
    const auto numbers = testing::NumbersIn(line.substr(at + name.size()));
    if (numbers.size() == 3) value = numbers[0];
  }
  return value;
}

TEST(PrecisionEndToEnd, RefinedSynchrotronWidthReadsBackToSixSignificantDigits) {
  ScratchDir dir;
  dir.Write("narrow_sim.pcr", TestData("precision/narrow_sim.pcr"));
  dir.Write("narrow_sim.dat", "");
  ASSERT_EQ(RunBinary(dir.path, "narrow_sim").exitCode, 0);
  dir.Write("narrow.dat", dir.Read("narrow_sim.sim"));
  dir.Write("narrow.pcr", TestData("precision/narrow.pcr"));

  const auto first = RunBinary(dir.path, "narrow");
  ASSERT_EQ(first.exitCode, 0) << first.output;
  // The simulation's W is 4.1234e-5; the refinement from 5e-5 comes back near it.
  const double refined = ReportedValue(dir.Read("narrow.out"), "W");
  ASSERT_NEAR(refined, 4.1234e-5, 0.1e-5);

  const std::string written = dir.Read("narrow.pcr");
  const auto widths =
      testing::NumbersIn(testing::LineAfter(written, "!      U        V         W"));
  ASSERT_GE(widths.size(), 3u) << written;
  // The report gives six significant digits: the file must hold at least as many.
  EXPECT_NEAR(widths[2], refined, 1.0e-5 * refined) << written;

  // The next run reads the file and refines on from the value it holds.
  const auto second = RunBinary(dir.path, "narrow");
  ASSERT_EQ(second.exitCode, 0) << second.output;
  EXPECT_NEAR(ReportedValue(dir.Read("narrow.out"), "W"), refined, 1.0e-3 * refined);
}

}  // namespace
}  // namespace corvinet
