// Tests of the printed tables of the parameter update: headings, rows and slot names.
#include <gtest/gtest.h>

#include "refine/parameter_report.h"

#include <string>
#include <vector>

namespace corvinet {
namespace {

TEST(ParameterReport, AParameterRowHasNameValueShiftAndSigma) {
  EXPECT_EQ(ParameterLine("Scale", {0.75f, 0.25f, 0.5f}),
            std::string(16, ' ') + "Scale   0.750000       0.250000       0.500000    ");
  EXPECT_EQ(ParameterColumns(), std::string(12, ' ') + "Parameter" + std::string(10, ' ') +
                                    "Value" + std::string(10, ' ') + "Shift" +
                                    std::string(10, ' ') + "Sigma");
}

TEST(ParameterReport, AnAtomRowHasFiveGroupsOfValueShiftAndSigma) {
  // Sigma in a field of seven with six decimals: below 1 it drops its leading zero.
  const ReportedValue slots[5] = {{0.125f, 0.001f, 0.0005f},
                                  {0.25f, -0.002f, 0.00025f},
                                  {0.5f, 0.0f, 0.0f},
                                  {1.5f, 0.25f, 0.125f},
                                  {1.0f, 0.0f, 0.0f}};
  EXPECT_EQ(AtomPositionLine("Si1", slots),
            "  Si1  0.12500 0.00100 .000500  0.25000-0.00200 .000250  0.50000 0.00000 .000000"
            "  1.50000 0.25000 .125000  1.00000 0.00000 .000000");
  EXPECT_EQ(AtomPositionColumns(false).substr(0, 30), " Atom        x      dx      sx");
}

TEST(ParameterReport, ASigmaOfOneOrMoreDoesNotFitTheAtomRow) {
  const ReportedValue slots[5] = {{0.0f, 0.0f, 1.0f}, {}, {}, {}, {}};
  EXPECT_EQ(AtomPositionLine("O", slots).substr(0, 30), "    O  0.00000 0.00000 *******");
}

TEST(ParameterReport, BlocksShowSevenColumnsAtATime) {
  std::vector<std::string> names;
  std::vector<ReportedValue> values;
  for (int i = 1; i <= 9; ++i) {
    names.push_back("P" + std::to_string(i));
    values.push_back({static_cast<float>(i), 0.5f, 0.25f});
  }
  const std::vector<std::string> lines = ParameterBlockLines("Fe", names, values);
  ASSERT_EQ(lines.size(), 8u);
  EXPECT_EQ(lines[0].substr(0, 24), "   Fe" + std::string(17, ' ') + "P1");
  EXPECT_EQ(lines[1].substr(0, 36), "      Value:    1.000000    2.000000");
  EXPECT_EQ(lines[2].substr(0, 24), "      Shift:    0.500000");
  EXPECT_EQ(lines[3].substr(0, 24), "      Sigma:    0.250000");
  EXPECT_EQ(lines[1].size(), 12u + 7u * 12u);
  EXPECT_EQ(lines[4], std::string(22, ' ') + "P8" + std::string(10, ' ') + "P9");
  EXPECT_EQ(lines[5], "      Value:    8.000000    9.000000");
}

TEST(ParameterReport, HeadingsNameCyclePhaseAndPattern) {
  EXPECT_EQ(CycleHeading(12), " => CYCLE No.:   12");
  EXPECT_EQ(PhaseHeading(2, "Corundum"), " => Phase No.  2  Corundum");
  EXPECT_EQ(PeakHeading(2, 3), " => Profile parameters of phase  2 in pattern  3");
  EXPECT_EQ(GlobalHeading(1), " => Global parameters of pattern  1");
  EXPECT_EQ(CellVolumeLine(253.5, 0.0125f), " => Cell volume:    253.5000 (    0.0125)");
  EXPECT_EQ(MomentLine("Fe1", "Real", 4.25f, 0.05f), "  Fe1 Real moment:   4.25000 (  0.05000)");
}

TEST(ParameterReport, PeakSlotNamesFollowThePhaseKindAndUnit) {
  EXPECT_EQ(PeakSlotName(1, 0, AbscissaUnit::kTwoTheta, ""), "Scale");
  EXPECT_EQ(PeakSlotName(15, 0, AbscissaUnit::kTwoTheta, ""), "X");
  EXPECT_EQ(PeakSlotName(15, 0, AbscissaUnit::kTimeOfFlight, ""), "Xt");
  EXPECT_EQ(PeakSlotName(17, 0, AbscissaUnit::kTimeOfFlight, ""), "Extinc");
  EXPECT_EQ(PeakSlotName(3, 0, AbscissaUnit::kTimeOfFlight, ""), "Sig-2");
  EXPECT_EQ(PeakSlotName(18, 0, AbscissaUnit::kTwoTheta, ""), "Str1");
  EXPECT_EQ(PeakSlotName(27, 0, AbscissaUnit::kTwoTheta, ""), "Str10");
  EXPECT_EQ(PeakSlotName(12, 4, AbscissaUnit::kTwoTheta, ""), "Sc6");
  EXPECT_EQ(PeakSlotName(15, -4, AbscissaUnit::kTwoTheta, ""), "Ext3");
  EXPECT_EQ(PeakSlotName(61, 0, AbscissaUnit::kTwoTheta, "Biso"), "Biso");
  EXPECT_EQ(PeakSlotName(61, 0, AbscissaUnit::kTwoTheta, ""), "Par061");
}

TEST(ParameterReport, GlobalSlotNamesFollowTheUnit) {
  EXPECT_EQ(GlobalSlotName(1, AbscissaUnit::kTwoTheta), "Zero");
  EXPECT_EQ(GlobalSlotName(2, AbscissaUnit::kTwoTheta), "Bck0");
  EXPECT_EQ(GlobalSlotName(35, AbscissaUnit::kTwoTheta), "Bck11");
  EXPECT_EQ(GlobalSlotName(8, AbscissaUnit::kTwoTheta), "Sycos");
  EXPECT_EQ(GlobalSlotName(8, AbscissaUnit::kTimeOfFlight), "Dtt1");
  EXPECT_EQ(GlobalSlotName(26, AbscissaUnit::kTwoTheta), "Lambda");
  EXPECT_EQ(GlobalSlotName(26, AbscissaUnit::kEnergy), "2Theta");
  EXPECT_EQ(GlobalSlotName(24, AbscissaUnit::kTwoTheta), "Bk_c");
  EXPECT_EQ(GlobalSlotName(29, AbscissaUnit::kTwoTheta), "Tau");
  EXPECT_EQ(GlobalSlotName(40, AbscissaUnit::kTwoTheta), "Glb40");
  EXPECT_STREQ(CellConstantName(5), "beta");
}

}  // namespace
}  // namespace corvinet
