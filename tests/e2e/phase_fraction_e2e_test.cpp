// Weight fractions of phases whose ATZ is left 0: the weight term is taken from the atoms, said
// on the report, and written into the new control file. The expected fractions come from the
// chemical formulae with IUPAC atomic weights, not from the program.
#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::RunBinary;
using testing::ScratchDir;
using testing::SplitLines;
using testing::TestData;

// Z x formula weight: PbSO4 (Z 4) and CaF2 (Z 4), with IUPAC standard atomic weights.
constexpr double kPbSO4 = 4 * (207.2 + 32.06 + 4 * 15.999);
constexpr double kCaF2 = 4 * (40.078 + 2 * 18.998);
// Cell volumes (A^3) of the two phases of the job.
constexpr double kVolumePbSO4 = 8.4788 * 5.3971 * 6.9585;
constexpr double kVolumeCaF2 = 5.4631 * 5.4631 * 5.4631;
// The scales of the simulation.
constexpr double kScalePbSO4 = 4.0;
constexpr double kScaleCaF2 = 9.0;

// The Fract(%) values of the report, in phase order.
std::vector<double> Fractions(const std::string& out) {
  std::vector<double> found;
  const std::regex fract(R"(Fract\(%\):\s+([0-9.]+)\()");
  for (const std::string& line : SplitLines(out)) {
    std::smatch m;
    if (std::regex_search(line, m, fract)) found.push_back(std::stod(m[1]));
  }
  return found;
}

// The ATZ field of each phase header line of a control file.
std::vector<double> WrittenAtz(const std::string& pcr) {
  std::vector<double> found;
  const auto lines = SplitLines(pcr);
  for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
    if (lines[i].rfind("!Nat Dis Mom Pr1", 0) != 0) continue;
    std::istringstream in(lines[i + 1]);
    std::string word;
    for (int field = 1; field <= 12 && in >> word; ++field) {
      if (field == 12) found.push_back(std::stod(word));
    }
  }
  return found;
}

TEST(PhaseFractionEndToEnd, AtzLeftZeroIsComputedFromTheAtomsAndGivesTheFractions) {
  ScratchDir dir;
  ASSERT_EQ(testing::SimulateThenRefine(dir, "report/two_phase_sim.pcr",
                                        "report/two_phase_fractions.pcr", "two_phase_fractions"),
            0);

  const std::string out = dir.Read("two_phase_fractions.out");
  EXPECT_TRUE(testing::HasLine(out,
                               " => ATZ computed from the atoms:    1213.050 (Z x formula "
                               "weight, from the occupancies of the atom lines)"));
  const double w1 = kScalePbSO4 * kVolumePbSO4 * kPbSO4;
  const double w2 = kScaleCaF2 * kVolumeCaF2 * kCaF2;
  const std::vector<double> fractions = Fractions(out);
  ASSERT_EQ(fractions.size(), 2u);
  EXPECT_NEAR(fractions[0], 100.0 * w1 / (w1 + w2), 0.02);
  EXPECT_NEAR(fractions[1], 100.0 * w2 / (w1 + w2), 0.02);

  const std::vector<double> atz = WrittenAtz(dir.Read("two_phase_fractions.pcr"));
  ASSERT_EQ(atz.size(), 2u);
  EXPECT_NEAR(atz[0], kPbSO4, 0.05);
  EXPECT_NEAR(atz[1], kCaF2, 0.05);  // the occupancies 0.02083 and 0.04167 round 1/48 and 1/24
}

TEST(PhaseFractionEndToEnd, AtomTypeThatNamesNoElementLeavesAtzZeroAndSaysWhy) {
  ScratchDir dir;
  std::string pcr = TestData("report/two_phase_sim.pcr");
  // A form-factor object in place of the calcium atom.
  const std::string ca = "Ca   CA   0.00000";
  pcr.replace(pcr.find(ca), ca.size(), "Ca   SPHS 0.00000");
  dir.Write("two_phase_sim.pcr", pcr);
  dir.Write("two_phase_sim.dat", "");
  RunBinary(dir.path, "two_phase_sim");
  EXPECT_TRUE(testing::HasLine(dir.Read("two_phase_sim.out"),
                               " => ATZ is 0 and the atom type SPHS names no element: ATZ stays "
                               "0, and so does the fraction of the phase"));
}

}  // namespace
}  // namespace corvinet
