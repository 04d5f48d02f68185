// The structure exports of a run, on the binary: the Schakal file, the SHELX file, the map
// template, the Fourier reflections and the collected results of a PbSO4 calculation. The
// expected lines are worked out by hand from the atom lines and the operators of P n m a.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::RunBinary;
using testing::ScratchDir;
using testing::SplitLines;
using testing::TestData;

// Runs the export job with the Fourier option `fou` on the output-flags line.
ScratchDir RunExports(int fou) {
  ScratchDir dir;
  std::string pcr = TestData("results/pbso4_exports.pcr");
  const std::string flags = "   0   0   0   0   0   0   0   0   0   0   0   2   0   0   2   1   0";
  std::string with = flags;
  with[59] = static_cast<char>('0' + fou);
  pcr.replace(pcr.find(flags), flags.size(), with);
  dir.Write("pbso4_exports.pcr", pcr);
  dir.Write("pbso4_exports.dat", "");
  EXPECT_EQ(RunBinary(dir.path, "pbso4_exports").exitCode, 0);
  return dir;
}

// Pb, S, O1, O2 on the mirror (x, 1/4, z), O3 general; B of S is 0. The operators of P n m a
// other than the identity, in the reduced list: -x+1/2,-y,z+1/2; -x,y+1/2,-z;
// x+1/2,-y+1/2,-z+1/2; the inversion at the origin completes the group.
TEST(StructureExportsEndToEnd, SchakalFileHoldsCellAtomsOperatorsAndTheCentre) {
  ScratchDir dir = RunExports(2);
  const std::vector<std::string> expected = {
      "TITL PbSO4",
      "Remark: P n m a",
      "CELL    8.48000   5.39800   6.95800   90.0000   90.0000   90.0000",
      "ATOM Pb      0.18820   0.25000   0.16700",
      "ATOM S       0.06300   0.25000   0.68600",
      "ATOM O1     -0.09500   0.25000   0.60000",
      "ATOM O2      0.18100   0.25000   0.54300",
      "ATOM O3      0.08500   0.02600   0.80600",
      "SYMM     0.500000  -1   0   0    0.000000   0  -1   0    0.500000   0   0   1",
      "SYMM     0.000000  -1   0   0    0.500000   0   1   0    0.000000   0   0  -1",
      "SYMM     0.500000   1   0   0    0.500000   0  -1   0    0.500000   0   0  -1",
      "DUPL  1-X,1-Y,1-Z",
      "BOX    0.05  0.05  0.05",
      "ADD",
      "END"};
  EXPECT_EQ(SplitLines(dir.Read("pbso4_exports1.sch")), expected);
}

// U = B / (8 pi^2): Pb 0.80 -> 0.010132, O1 1.20 -> 0.015198; S has B 0, so its last field is
// 10 exactly. O1 x = -0.095 is written 1 - 0.095 + 10. UNIT counts Occ x 8 of each species:
// Pb 4, S 4, O 4 + 4 + 8.
TEST(StructureExportsEndToEnd, ShelxFileMarksFixedValuesAndBringsCoordinatesIntoTheCell) {
  ScratchDir dir = RunExports(2);
  const std::vector<std::string> lines = SplitLines(dir.Read("pbso4_exports.ins"));
  const std::vector<std::string> expected = {
      "TITL PbSO4",
      "CELL   1.9090    8.4800    5.3980    6.9580   90.0000   90.0000   90.0000",
      "ZERR    1    0.0010    0.0010    0.0010    0.0000    0.0000    0.0000",
      "LATT   1",
      "SYMM -X+1/2, -Y, Z+1/2                  ",
      "SYMM -X, Y+1/2, -Z                      ",
      "SYMM X+1/2, -Y+1/2, -Z+1/2              "};
  ASSERT_GE(lines.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(lines[i], expected[i]);
  const auto has = [&](const std::string& line) {
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  };
  EXPECT_TRUE(has("UNIT     4     4    16"));
  EXPECT_TRUE(has("Pb    1     10.18820    10.25000    10.16700    10.50000    10.01013"));
  EXPECT_TRUE(has("S     2     10.06300    10.25000    10.68600    10.50000    10.00000"));
  EXPECT_TRUE(has("O1    3     10.90500    10.25000    10.60000    10.50000    10.01520"));
  EXPECT_TRUE(has("O3    3     10.08500    10.02600    10.80600    11.00000    10.01266"));
  EXPECT_EQ(lines.back(), "END  ");
}

// F of (1 0 1) over the reduced operator set: the shared oracle gives 16.3701 fm^2 for the
// reduced-set |F|^2 of this structure (B of S 0), so F = sqrt(0.163701) = 0.40 in 1e-12 cm.
TEST(StructureExportsEndToEnd, FourierFileListsEveryReflectionInTheShelxLayout) {
  ScratchDir dir = RunExports(2);
  const std::vector<std::string> lines = SplitLines(dir.Read("pbso4_exports.fou"));
  ASSERT_GT(lines.size(), 100u);
  EXPECT_EQ(lines[0].substr(0, 20), "   1   0   1    0.40");
}

TEST(StructureExportsEndToEnd, MapTemplateNamesTheFourierFileAndItsLayout) {
  ScratchDir dir = RunExports(3);
  const std::vector<std::string> lines = SplitLines(dir.Read("pbso4_exports.inp"));
  const auto has = [&](const std::string& line) {
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  };
  EXPECT_EQ(lines.front(), "  ! Template file to be used with the program SYNTHMAP");
  EXPECT_TRUE(has("Titl PbSO4"));
  EXPECT_TRUE(has("Spgr P n m a"));
  EXPECT_TRUE(has("File  fou pbso4_exports.fou"));
  EXPECT_TRUE(has("Form    h k l fo fc phase"));
  EXPECT_TRUE(has("File   bin pbso4_exports.bin"));
  EXPECT_TRUE(has("Scan  5"));
  EXPECT_EQ(lines.back(), "End ");
  // A centrosymmetric structure has phases 0 or 180 degrees.
  for (const std::string& row : SplitLines(dir.Read("pbso4_exports.fou"))) {
    const std::string phase = row.substr(row.size() - 9);
    EXPECT_TRUE(phase == "     0.00" || phase == "   180.00") << row;
  }
}

TEST(StructureExportsEndToEnd, CollectedResultsGrowByOneRecordARun) {
  ScratchDir dir = RunExports(2);
  const std::vector<std::string> first = SplitLines(dir.Read("pbso4_exports.sav"));
  ASSERT_EQ(first.size(), 2u);
  EXPECT_EQ(first[0].substr(0, 5), "RUN  ");
  EXPECT_EQ(first[1].substr(0, 12), "PHAS   1  RB");
  EXPECT_NE(first[1].find("cell:    8.48000    5.39800    6.95800"), std::string::npos);
  ASSERT_EQ(RunBinary(dir.path, "pbso4_exports").exitCode, 0);
  EXPECT_EQ(SplitLines(dir.Read("pbso4_exports.sav")).size(), 4u);
}

}  // namespace
}  // namespace corvinet
