// Tests of the fixed scattering tables: sizes, key orders, the rows whose numbers are known, and
// a cross-check of every row against the reference tables of the shared folder.
#include "model/scattering_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace corvinet {
namespace {

const ScatteringTables& T() {
  return FixedScatteringTables();
}

std::vector<std::string> Words(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> words;
  for (std::string w; in >> w;) words.push_back(w);
  return words;
}

// The neutron rows as listed in the rules, "KEY value;" in row order.
const char* kNeutronList =
    "H -0.3739; HE 0.3260; LI -0.1900; BE 0.7790; B 0.6650; C 0.6646; N 0.9360; O 0.5803; F "
    "0.5650; NE 0.4566; NA 0.3630; MG 0.5375; AL 0.3449; SI 0.4149; P 0.5130; S 0.2847; CL 0.9577; "
    "AR 0.1909; K 0.3670; CA 0.4700; SC 1.2300; TI -0.3438; V -0.0382; CR 0.3635; MN -0.3730; FE "
    "0.9450; CO 0.2490; NI 1.0300; CU 0.7718; ZN 0.5680; GA 0.7288; GE 0.8190; AS 0.6580; SE "
    "0.7970; BR 0.6800; KR 0.7810; RB 0.7090; SR 0.7020; Y 0.7750; ZR 0.7160; NB 0.7054; MO "
    "0.6720; "
    "TC 0.6800; RU 0.7030; RH 0.5880; PD 0.5910; AG 0.5922; CD 0.4870; IN 0.4070; SN 0.6225; SB "
    "0.5570; TE 0.5800; I 0.5280; XE 0.4920; CS 0.5420; BA 0.5070; LA 0.8240; CE 0.4840; PR "
    "0.4580; "
    "ND 0.7690; EU 0.7220; GD 0.6500; TB 0.7380; DY 1.6900; HO 0.8010; ER 0.7790; TM 0.7070; YB "
    "1.2430; LU 0.7210; HF 0.7800; TA 0.6910; W 0.4860; RE 0.9200; OS 1.0700; IR 1.0600; PT "
    "0.9600; "
    "AU 0.7630; HG 1.2690; TL 0.8776; PB 0.9405; BI 0.8532; TH 1.0310; U 0.8417; NP 1.0600; PU "
    "0.7700; D 0.6671; PM 1.2600; SM 0.8000; RA 1.0000; PA 0.9100; AM 0.8300; CM 0.9500";

const char* kXrayKeys =
    "h h h-1 he li li+1 be be+2 b c cval n o o-1 f f-1 ne na na+1 mg mg+2 al al+3 si siv si+4 s p "
    "cl cl-1 ar k k+1 ca ca+2 sc sc+3 ti ti+2 ti+3 ti+4 v v+2 v+3 v+5 cr cr+2 cr+3 mn mn+2 mn+3 "
    "mn+4 fe fe+2 fe+3 co co+2 co+3 ni ni+2 ni+3 cu cu+1 cu+2 zn zn+2 ga ga+3 ge ge+4 as se br "
    "br-1 "
    "kr rb rb+1 sr sr+2 y y+3 zr zr+4 nb nb+3 nb+5 mo mo+3 mo+5 mo+6 tc ru ru+3 ru+4 rh rh+3 rh+4 "
    "pd pd+2 pd+4 ag ag+1 ag+2 cd cd+2 in in+3 sn sn+2 sn+4 sb sb+3 sb+5 te i i-1 xe cs cs+1 ba "
    "ba+2 la la+3 ce ce+3 ce+4 pr pr+3 pr+4 nd nd+3 pm pm+3 sm sm+3 eu eu+2 eu+3 gd gd+3 tb tb+3 "
    "dy dy+3 ho ho+3 er er+3 tm tm+3 yb yb+2 yb+3 lu lu+3 hf hf+4 ta ta+5 w w+6 re os os+4 ir ir+3 "
    "ir+4 pt pt+2 pt+4 au au+1 au+3 hg hg+1 hg+2 tl tl+1 tl+3 pb pb+2 pb+4 bi bi+3 bi+5 po at rn "
    "fr "
    "ra ra+2 ac ac+3 th th+4 pa u u+3 u+4 u+6 np np+3 np+4 np+6 pu pu+3 pu+4 pu+6 am cm bk cf o-2";

const char* kMagneticKeys =
    "MSC0 MSC1 MSC2 MTI0 MTI1 MTI2 MTI3 MV0 MV1 MV2 MV3 MV4 MCR0 MCR1 MCR2 MCR3 MCR4 MMN0 MMN1 "
    "MMN2 MMN3 MMN4 MFE0 MFE1 MFE2 MFE3 MFE4 MCO0 MCO1 MCO2 MCO3 MCO4 MNI0 MNI1 MNI2 MNI3 MNI4 "
    "MCU0 MCU1 MCU2 MCU3 MCU4 MY0 MZR0 MZR1 MNB0 MNB1 MMO0 MMO1 MTC0 MTC1 MRU0 MRU1 MRH0 MRH1 "
    "MPD0 MPD1 MCE2 MND2 MND3 MSM2 MSM3 MEU2 MEU3 MGD2 MGD3 MTB2 MTB3 MDY2 MDY3 MHO2 MHO3 MER2 "
    "MER3 MTM2 MTM3 MYB2 MYB3 MU3 MU4 MU5 MNP3 MNP4 MNP5 MNP6 MPU3 MPU4 MPU5 MPU6 MAM2 MAM3 MAM4 "
    "MAM5 MAM6 MAM7 MPR3 JCE2 JCE2 JPR3 JND2 JND3 JGD3 JTB2 JTB3 JDY2 JDY3 JHO2 JHO2 JHO3 JER2 "
    "JER3 JTM2 JTM3 JYB3";

void ExpectRow(const float* got, const std::vector<float>& want) {
  for (std::size_t i = 0; i < want.size(); ++i) {
    EXPECT_EQ(got[i], want[i]) << "element " << i + 1;
  }
}

TEST(ScatteringTables, SizesOfTheFourTables) {
  EXPECT_EQ(T().neutron.size(), 92);
  EXPECT_EQ(T().xray.size(), 213);
  EXPECT_EQ(T().anomalous.rows(), 97);
  EXPECT_EQ(T().anomalous.cols(), 10);
  EXPECT_EQ(T().magnetic.size(), 114);
  EXPECT_EQ(T().referenceWavelengths.size(), 5);
}

TEST(ScatteringTables, NeutronRowsInTheirOrderWithTheirLengths) {
  std::string list = kNeutronList;
  for (char& c : list) {
    if (c == ';') c = ' ';
  }
  const std::vector<std::string> w = Words(list);
  ASSERT_EQ(w.size(), 2u * 92u);
  for (int i = 1; i <= 92; ++i) {
    EXPECT_EQ(std::string(T().neutron[i].key), w[2 * (i - 1)]) << "row " << i;
    EXPECT_EQ(T().neutron[i].b, std::stof(w[2 * (i - 1) + 1])) << "row " << i;
  }
  EXPECT_EQ(std::string(T().neutron[86].key), "D");
  EXPECT_EQ(std::string(T().neutron[87].key), "PM");
  EXPECT_EQ(std::string(T().neutron[92].key), "CM");
}

TEST(ScatteringTables, XrayKeysInTheirOrder) {
  const std::vector<std::string> keys = Words(kXrayKeys);
  ASSERT_EQ(keys.size(), 213u);
  for (int i = 1; i <= 213; ++i) EXPECT_EQ(std::string(T().xray[i].key), keys[i - 1]) << i;
}

TEST(ScatteringTables, MagneticKeysInTheirOrder) {
  const std::vector<std::string> keys = Words(kMagneticKeys);
  ASSERT_EQ(keys.size(), 114u);
  for (int i = 1; i <= 114; ++i) EXPECT_EQ(std::string(T().magnetic[i].key), keys[i - 1]) << i;
}

TEST(ScatteringTables, TwoHydrogenRowsOfWhichTheFirstIsFound) {
  ExpectRow(T().xray[1].v, {0.493f, 10.5109f, 0.3229f, 26.1257f, 0.1402f, 3.1424f, 0.0408f,
                            57.7997f, 0.003f, 1.0f});
  ExpectRow(T().xray[2].v, {0.4899f, 20.6593f, 0.262f, 7.7404f, 0.1968f, 49.5519f, 0.0499f, 2.2016f,
                            0.0013f, 1.0f});
  EXPECT_EQ(FindXrayRow("h"), 1);
}

TEST(ScatteringTables, OxideIonIsAThreeTermLastRow) {
  ExpectRow(T().xray[213].v, {4.758f, 7.831f, 3.637f, 30.05f, 0, 0, 0, 0, 1.594f, 7.0f});
  EXPECT_EQ(FindXrayRow("o-2"), 213);
}

TEST(ScatteringTables, XrayRowsPointToTheirAnomalousRows) {
  auto r = [](const char* key) { return T().xray[FindXrayRow(key)].v[9]; };
  EXPECT_EQ(r("h"), 1.0f);
  EXPECT_EQ(r("he"), 1.0f);
  EXPECT_EQ(r("li"), 2.0f);
  EXPECT_EQ(r("pu"), 93.0f);
  EXPECT_EQ(r("cf"), 97.0f);
  EXPECT_EQ(r("o-2"), 7.0f);
}

TEST(ScatteringTables, ReferenceWavelengthsDescend) {
  const std::vector<float> want = {2.28962f, 1.93597f, 1.54051f, 0.70926f, 0.556363f};
  for (int i = 1; i <= 5; ++i) EXPECT_EQ(T().referenceWavelengths[i], want[i - 1]);
}

void ExpectAnomalousRow(int row, const std::vector<float>& want) {
  for (int j = 1; j <= 10; ++j) EXPECT_EQ(T().anomalous(row, j), want[j - 1]) << row << "," << j;
}

TEST(ScatteringTables, AnomalousTellingRows) {
  ExpectAnomalousRow(1, std::vector<float>(10, 0.0f));
  ExpectAnomalousRow(
      5, {0.035f, 0.026f, 0.017f, 0.002f, 0.000f, 0.021f, 0.015f, 0.009f, 0.002f, 0.001f});
  ExpectAnomalousRow(
      26, {-1.124f, -1.623f, -2.464f, 0.299f, 0.256f, 0.893f, 0.662f, 3.608f, 0.973f, 0.630f});
  ExpectAnomalousRow(97, {-16.272f, -11.641f, -6.798f, -7.683f, -7.638f, 27.898f, 22.785f, 16.930f,
                          5.107f, 8.246f});
}

TEST(ScatteringTables, MagneticTellingRows) {
  ExpectRow(T().magnetic[FindMagneticRow("MSC0")].v,
            {0.2512f, 90.0296f, 0.3290f, 39.4021f, 0.4235f, 14.3222f, -0.0043f});
  ExpectRow(T().magnetic[FindMagneticRow("MFE3")].v,
            {0.3972f, 13.2442f, 0.6295f, 4.9034f, -0.0314f, 0.3496f, 0.0044f});
  ExpectRow(T().magnetic[FindMagneticRow("MCE2")].v,
            {0.2953f, 17.6846f, 0.2923f, 6.7329f, 0.4313f, 5.3827f, -0.0194f});
}

TEST(ScatteringTables, OddMagneticRowMPR3IsStoredAsItStands) {
  ExpectRow(T().magnetic[FindMagneticRow("MPR3")].v, {1.211f, 1.559f, -0.211f, 0.9f, 0, 0, 0});
}

TEST(ScatteringTables, OnlyTheFirstOfTwoJCE2RowsIsFound) {
  EXPECT_EQ(FindMagneticRow("JCE2"), 97);
  ExpectRow(T().magnetic[97].v, {0.0320f, 8.9262f, 0.2658f, 7.6785f, 0.6822f, 2.3298f, 0.0206f});
  EXPECT_EQ(std::string(T().magnetic[98].key), "JCE2");
  ExpectRow(T().magnetic[98].v, {0.0512f, 6.1154f, 0.2777f, 7.9525f, 0.6541f, 2.2870f, 0.0164f});
}

TEST(ScatteringTables, TwoEqualJHO2Rows) {
  const int first = FindMagneticRow("JHO2");
  ASSERT_GT(first, 0);
  EXPECT_EQ(std::string(T().magnetic[first + 1].key), "JHO2");
  for (int j = 0; j < 7; ++j) EXPECT_EQ(T().magnetic[first].v[j], T().magnetic[first + 1].v[j]);
}

TEST(ScatteringTables, KeysCompareAsPaddedFieldsWithoutFolding) {
  EXPECT_EQ(FindNeutronRow("FE  "), FindNeutronRow("FE"));
  EXPECT_EQ(FindNeutronRow("Fe"), 0);
  EXPECT_EQ(FindXrayRow("FE"), 0);
  EXPECT_EQ(FindMagneticRow("mfe3"), 0);
  EXPECT_EQ(FindNeutronRow("SM"), 0);  // beyond the searched rows
  EXPECT_EQ(FindNeutronRow("SM", 92), 88);
}

// ---- Cross-check against the reference tables of the shared folder. ----

std::filesystem::path TablesDir() {
  return std::filesystem::path(CORVINET_SHARED_DIR) / "tables";
}

#define TABLES_OR_SKIP()                                   \
  if (!std::filesystem::exists(TablesDir() / "README.md")) \
  GTEST_SKIP() << "shared tables absent: " << TablesDir()

std::vector<std::vector<std::string>> Records(const std::string& name) {
  std::ifstream in(TablesDir() / name);
  std::vector<std::vector<std::string>> rows;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    rows.push_back(Words(line));
  }
  return rows;
}

TEST(ScatteringTablesReference, NeutronLengthsEqualTheProgramColumn) {
  TABLES_OR_SKIP();
  const auto rows = Records("neutron_b.txt");
  ASSERT_EQ(rows.size(), 92u);
  for (int i = 1; i <= 92; ++i) {
    const auto& r = rows[i - 1];
    EXPECT_EQ(std::stoi(r[0]), i);
    EXPECT_EQ(std::string(T().neutron[i].key), r[1]);
    EXPECT_EQ(T().neutron[i].b, std::stof(r[2])) << r[1];
  }
}

TEST(ScatteringTablesReference, XrayRowsWithinTheirPrecision) {
  TABLES_OR_SKIP();
  const auto rows = Records("xray_ff.txt");
  ASSERT_EQ(rows.size(), 213u);
  for (int i = 1; i <= 213; ++i) {
    const auto& r = rows[i - 1];
    EXPECT_EQ(std::string(T().xray[i].key), r[1]);
    for (int j = 0; j < 10; ++j) {
      const float want = std::stof(r[2 + j]);
      EXPECT_NEAR(T().xray[i].v[j], want, 1e-4f * std::max(1.0f, std::fabs(want)))
          << r[1] << " element " << j + 1;
    }
  }
}

TEST(ScatteringTablesReference, AnomalousRowsToThreeDecimals) {
  TABLES_OR_SKIP();
  const auto rows = Records("anomalous.txt");
  ASSERT_EQ(rows.size(), 97u);
  for (int i = 1; i <= 97; ++i) {
    const auto& r = rows[i - 1];
    EXPECT_EQ(std::stoi(r[0]), i);
    if (i > 1) {
      EXPECT_EQ(std::stoi(r[1]), i + 1);  // row n is the element n+1
    }
    for (int j = 1; j <= 10; ++j) {
      EXPECT_NEAR(T().anomalous(i, j), std::stof(r[2 + j]), 5e-4f) << r[2] << " column " << j;
    }
  }
}

TEST(ScatteringTablesReference, MagneticIonRowsEqualTheReference) {
  TABLES_OR_SKIP();
  const auto rows = Records("magnetic_j0.txt");
  ASSERT_EQ(rows.size(), 114u);
  for (int i = 1; i <= 114; ++i) {
    const auto& r = rows[i - 1];
    EXPECT_EQ(std::string(T().magnetic[i].key), r[1]);
    if (r[1][0] != 'M') continue;  // J rows are fits: checked as curves below
    for (int j = 0; j < 7; ++j) EXPECT_EQ(T().magnetic[i].v[j], std::stof(r[2 + j])) << r[1];
  }
}

// <j0> or <j2>/s^2 of seven coefficients at s.
double SevenTerm(const std::vector<double>& c, double s) {
  const double q = s * s;
  return c[0] * std::exp(-c[1] * q) + c[2] * std::exp(-c[3] * q) + c[4] * std::exp(-c[5] * q) +
         c[6];
}

double Fraction(const std::string& text) {
  const auto slash = text.find('/');
  if (slash == std::string::npos) return std::stod(text);
  return std::stod(text.substr(0, slash)) / std::stod(text.substr(slash + 1));
}

// The rare-earth rows against the dipole form factor <j0> + (2/gJ - 1) <j2>
// of the free ion, from the ion coefficients of the source file.
TEST(ScatteringTablesReference, RareEarthRowsFollowTheDipoleFormFactor) {
  TABLES_OR_SKIP();
  std::map<std::string, std::pair<std::vector<double>, std::vector<double>>> ions;
  for (const auto& r : Records("sources/mag_brown2003.txt")) {
    if (r.size() < 16) continue;
    std::vector<double> j0, j2;
    for (int j = 0; j < 7; ++j) j0.push_back(std::stod(r[2 + j]));
    for (int j = 0; j < 7; ++j) j2.push_back(std::stod(r[9 + j]));
    std::string key = r[0];
    for (char& c : key) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    ions[key] = {j0, j2};
  }
  std::map<std::string, double> factor = {{"JCE2", 1.5}};  // Ce2+ 3H4, gJ 4/5
  std::ifstream checks(TablesDir() / "scat_checks.txt");
  for (std::string line; std::getline(checks, line);) {
    const auto at = line.find("C2=2/gJ-1=");
    if (at == std::string::npos || line.rfind("  J", 0) != 0) continue;
    const std::string value = Words(line.substr(at + 10))[0];
    factor[Words(line)[0]] = Fraction(value);
  }
  int checked = 0;
  for (int i = 1; i <= 114; ++i) {
    const std::string key = T().magnetic[i].key;
    if (key[0] != 'J') continue;
    ASSERT_TRUE(factor.count(key)) << key;
    const auto& ion = ions.at(key.substr(1));
    const std::vector<double> row(T().magnetic[i].v, T().magnetic[i].v + 7);
    for (int k = 0; k <= 150; ++k) {
      const double s = 0.01 * k;
      const double exact = SevenTerm(ion.first, s) + factor[key] * s * s * SevenTerm(ion.second, s);
      EXPECT_NEAR(SevenTerm(row, s), exact, 0.01) << key << " row " << i << " s " << s;
    }
    ++checked;
  }
  EXPECT_EQ(checked, 18);
}

}  // namespace
}  // namespace corvinet
