// Tests of f' and f'' at a photon energy: the rows of the energy table, interpolation in log E,
// the edges, the ends of the table and the choice between the energy table and the reference
// columns.
#include "model/anomalous_energy.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace corvinet {
namespace {

constexpr double kLambdaNac = 0.4139;  // A, the synchrotron wavelength of the NAC standard

// Ca, Al, Na and F at 0.4139 A (29.9551 keV), by hand from the rows 29.6191 and 30.2348 keV of
// each element, t = ln(29.9551/29.6191)/ln(30.2348/29.6191) = 0.5483:
//   Ca f' 0.0965 -> 0.0927, f'' 0.1093 -> 0.1048: 0.09442, 0.10683
//   Al f' 0.0207 -> 0.0196, f'' 0.0172 -> 0.0165: 0.02010, 0.01682
//   Na f' 0.0101 -> 0.0094, f'' 0.0082 -> 0.0078: 0.00972, 0.00798
//   F  f' 0.0038 -> 0.0034, f'' 0.0033 -> 0.0032: 0.00358, 0.00325
struct HandValue {
  int Z;
  float fp;
  float fpp;
};

TEST(AnomalousEnergy, NacElementsAtTheSynchrotronWavelengthMatchTheHandValues) {
  const double e = kKeVAngstrom / kLambdaNac;
  for (const HandValue& h : {HandValue{20, 0.09442f, 0.10683f}, HandValue{13, 0.02010f, 0.01682f},
                             HandValue{11, 0.00972f, 0.00798f}, HandValue{9, 0.00358f, 0.00325f}}) {
    const auto terms = AnomalousAtEnergy(h.Z, e);
    ASSERT_TRUE(terms.has_value()) << h.Z;
    EXPECT_NEAR(terms->fp, h.fp, 2e-5) << h.Z;
    EXPECT_NEAR(terms->fpp, h.fpp, 2e-5) << h.Z;
  }
}

// The shared table read here, row by row, and interpolated by this test's own loop.
std::map<int, std::vector<std::vector<double>>> SharedRows() {
  std::map<int, std::vector<std::vector<double>>> rows;
  std::ifstream in(std::filesystem::path(CORVINET_SHARED_DIR) / "tables" / "anomalous_energy.txt");
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream words(line);
    int z = 0;
    std::string symbol;
    double e = 0, fp = 0, fpp = 0;
    words >> z >> symbol >> e >> fp >> fpp;
    rows[z].push_back({e, fp, fpp});
  }
  return rows;
}

TEST(AnomalousEnergy, EveryElementAtTheSynchrotronWavelengthMatchesTheSharedTable) {
  const auto rows = SharedRows();
  if (rows.empty()) GTEST_SKIP() << "no shared tables";
  ASSERT_EQ(rows.size(), 98u);
  const double e = kKeVAngstrom / kLambdaNac;
  for (const auto& [z, r] : rows) {
    for (std::size_t i = 0; i + 1 < r.size(); ++i) {
      if (!(r[i][0] <= e && e < r[i + 1][0])) continue;
      const double t = std::log(e / r[i][0]) / std::log(r[i + 1][0] / r[i][0]);
      const auto terms = AnomalousAtEnergy(z, e);
      ASSERT_TRUE(terms.has_value());
      EXPECT_NEAR(terms->fp, r[i][1] + t * (r[i + 1][1] - r[i][1]), 1e-4) << z;
      EXPECT_NEAR(terms->fpp, r[i][2] + t * (r[i + 1][2] - r[i][2]), 1e-4) << z;
    }
  }
}

// The Ca K edge stands as the rows 4.0371 keV (below: f' -5.1142, f'' 3.1354) and 4.0391 keV
// (above: -5.0748, 3.1915).
TEST(AnomalousEnergy, NeverInterpolatesAcrossAnEdge) {
  const auto below = AnomalousAtEnergy(20, 4.0375);
  const auto above = AnomalousAtEnergy(20, 4.0387);
  ASSERT_TRUE(below && above);
  EXPECT_FLOAT_EQ(below->fp, -5.1142f);
  EXPECT_FLOAT_EQ(below->fpp, 3.1354f);
  EXPECT_FLOAT_EQ(above->fp, -5.0748f);
  EXPECT_FLOAT_EQ(above->fpp, 3.1915f);
}

// Between the row above the edge (4.0391 keV) and the next (4.1093 keV: -3.5718, 3.8245), at
// 4.0740 keV: t = ln(4.0740/4.0391)/ln(4.1093/4.0391) = 0.4993, f' -4.3243, f'' 3.5076.
TEST(AnomalousEnergy, InterpolatesInLogEnergyAboveAnEdge) {
  const auto terms = AnomalousAtEnergy(20, 4.0740);
  ASSERT_TRUE(terms);
  EXPECT_NEAR(terms->fp, -4.3243f, 2e-4);
  EXPECT_NEAR(terms->fpp, 3.5076f, 2e-4);
}

TEST(AnomalousEnergy, OutsideTheTableTakesTheEndRows) {
  const auto low = AnomalousAtEnergy(1, 1.0);
  ASSERT_TRUE(low);
  EXPECT_FLOAT_EQ(low->fp, 0.0001f);  // H at 2 keV
  const auto high = AnomalousAtEnergy(98, 500.0);
  const auto last = AnomalousAtEnergy(98, 120.0);
  ASSERT_TRUE(high && last);
  EXPECT_EQ(high->fp, last->fp);
  EXPECT_EQ(high->fpp, last->fpp);
}

TEST(AnomalousEnergy, ElementOutsideTheTableHasNoTerms) {
  EXPECT_FALSE(AnomalousAtEnergy(0, 10.0).has_value());
  EXPECT_FALSE(AnomalousAtEnergy(99, 10.0).has_value());
}

TEST(AnomalousEnergy, ReferenceWavelengthsWithinFiveThousandthsKeepTheirColumns) {
  EXPECT_FALSE(AnomalousFromEnergy(1.5406f));    // Cu K-alpha1
  EXPECT_FALSE(AnomalousFromEnergy(1.5418f));    // Cu K-alpha mean
  EXPECT_FALSE(AnomalousFromEnergy(0.7136f));    // 0.0043 from Mo
  EXPECT_FALSE(AnomalousFromEnergy(0.556363f));  // Ag
  EXPECT_TRUE(AnomalousFromEnergy(0.7150f));     // 0.0057 from Mo
  EXPECT_TRUE(AnomalousFromEnergy(0.4139f));     // synchrotron
  EXPECT_TRUE(AnomalousFromEnergy(1.78897f));    // Co K-alpha1: no column of its own
}

}  // namespace
}  // namespace corvinet
