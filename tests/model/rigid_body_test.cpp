// Tests of the placement of rigid-body groups: positions against rotations written out here by
// hand for each option, distances that no origin or orientation changes, and the TLS
// displacements against the component formulas of rigid libration and translation.
#include "model/rigid_body.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "crystal/metric.h"

namespace corvinet {
namespace {

constexpr double kDeg = 3.14159265358979 / 180.0;

CellMetric Metric(float a, float b, float c, float alpha, float beta, float gamma) {
  Table1<float, 6> cell;
  cell[1] = a, cell[2] = b, cell[3] = c, cell[4] = alpha, cell[5] = beta, cell[6] = gamma;
  CellMetric m;
  EXPECT_TRUE(BuildCellMetric(cell, m));
  return m;
}

// Rz(chi) Ry(phi) Rx(theta), element by element.
Matrix3 HandRotation(double t, double p, double c) {
  const double ct = std::cos(t * kDeg), st = std::sin(t * kDeg);
  const double cp = std::cos(p * kDeg), sp = std::sin(p * kDeg);
  const double cc = std::cos(c * kDeg), sc = std::sin(c * kDeg);
  return {{{cc * cp, cc * sp * st - sc * ct, cc * sp * ct + sc * st},
           {sc * cp, sc * sp * st + cc * ct, sc * sp * ct - cc * st},
           {-sp, cp * st, cp * ct}}};
}

TEST(RigidBody, GroupRotationIsThetaAboutXThenPhiAboutYThenChiAboutZ) {
  const Matrix3 x = GroupRotation(30, 0, 0);
  EXPECT_NEAR(x[1][1], std::cos(30 * kDeg), 1e-12);
  EXPECT_NEAR(x[1][2], -std::sin(30 * kDeg), 1e-12);
  EXPECT_NEAR(x[2][1], std::sin(30 * kDeg), 1e-12);
  EXPECT_NEAR(x[0][0], 1.0, 1e-12);
  const Matrix3 y = GroupRotation(0, 40, 0);
  EXPECT_NEAR(y[0][2], std::sin(40 * kDeg), 1e-12);
  EXPECT_NEAR(y[2][0], -std::sin(40 * kDeg), 1e-12);
  const Matrix3 z = GroupRotation(0, 0, 50);
  EXPECT_NEAR(z[0][1], -std::sin(50 * kDeg), 1e-12);
  EXPECT_NEAR(z[1][0], std::sin(50 * kDeg), 1e-12);
  const Matrix3 all = GroupRotation(17, -33, 71);
  const Matrix3 hand = HandRotation(17, -33, 71);
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) EXPECT_NEAR(all[i][j], hand[i][j], 1e-12) << i << j;
  }
}

AtomSite LineOf(const char* label, const char* species, std::vector<float> p) {
  AtomSite a;
  a.label = label;
  a.species = species;
  a.nuclearSpecies = 1;
  for (std::size_t i = 0; i < p.size(); ++i) a.ATP[static_cast<int>(i) + 1] = p[i];
  return a;
}

// A group line: origin, number, reference, option, angles.
AtomSite GroupLine(int number, int reference, int option, std::array<float, 3> o,
                   std::array<float, 3> angles) {
  return LineOf("G", "RBG",
                {o[0], o[1], o[2], static_cast<float>(number), static_cast<float>(reference),
                 static_cast<float>(option), angles[0], angles[1], angles[2]});
}

AtomSite Member(int group, std::array<float, 3> p, float occ = 1.0f) {
  return LineOf("G", "O", {p[0], p[1], p[2], 0.5f, occ, static_cast<float>(group)});
}

RigidModel OneGroup(int option, const std::vector<AtomSite>& lines) {
  RigidModel m;
  RigidGroup g;
  g.number = 1;
  g.option = static_cast<RigidOption>(option);
  g.line = 1;
  g.label = "G";
  for (int r = 2; r <= static_cast<int>(lines.size()); ++r) g.atoms.push_back(r);
  m.groups.push_back(g);
  return m;
}

// Orthorhombic cell: fractional = origin + R local / (a, b, c).
void ExpectPlacedAt(const RigidModel& m, int i, const std::array<double, 3>& origin,
                    const Matrix3& R, const std::array<double, 3>& local,
                    const std::array<double, 3>& abc) {
  for (int c = 0; c < 3; ++c) {
    const double x =
        origin[c] + (R[c][0] * local[0] + R[c][1] * local[1] + R[c][2] * local[2]) / abc[c];
    EXPECT_NEAR(m.effective[static_cast<std::size_t>(i)].ATP[c + 1], x, 2e-6) << i << " " << c;
  }
}

TEST(RigidBody, CartesianAndTlsCartesianGroupsPlaceTheirAtomsByTheRotationAndOrigin) {
  const CellMetric metric = Metric(8.0f, 6.0f, 7.0f, 90, 90, 90);
  for (int option : {1, 4}) {
    std::vector<AtomSite> lines = {GroupLine(1, 0, option, {0.1f, 0.2f, 0.3f}, {20, -35, 50}),
                                   Member(1, {1.2f, -0.4f, 0.7f}), Member(1, {0.0f, 0.0f, 1.5f})};
    RigidModel m = OneGroup(option, lines);
    RigidGroupCoordinates(m, lines, metric);
    ASSERT_EQ(m.effective.size(), 2u);
    const Matrix3 R = HandRotation(20, -35, 50);
    ExpectPlacedAt(m, 0, {0.1, 0.2, 0.3}, R, {1.2, -0.4, 0.7}, {8, 6, 7});
    ExpectPlacedAt(m, 1, {0.1, 0.2, 0.3}, R, {0.0, 0.0, 1.5}, {8, 6, 7});
  }
}

TEST(RigidBody, PolarGroupsPlaceTheirAtomsFromDistanceAndTwoAngles) {
  const CellMetric metric = Metric(8.0f, 6.0f, 7.0f, 90, 90, 90);
  for (int option : {2, 5}) {
    std::vector<AtomSite> lines = {GroupLine(1, 0, option, {0.5f, 0.0f, 0.25f}, {-10, 25, 80}),
                                   Member(1, {1.5f, 60.0f, 30.0f})};
    RigidModel m = OneGroup(option, lines);
    RigidGroupCoordinates(m, lines, metric);
    const double a = 60 * kDeg, b = 30 * kDeg;
    const std::array<double, 3> local{1.5 * std::sin(a) * std::cos(b),
                                      1.5 * std::sin(a) * std::sin(b), 1.5 * std::cos(a)};
    ExpectPlacedAt(m, 0, {0.5, 0.0, 0.25}, HandRotation(-10, 25, 80), local, {8, 6, 7});
  }
}

TEST(RigidBody, ChainGroupsPlaceTheirAtomsByTheFrameCoordinatesFixedAtInput) {
  const CellMetric metric = Metric(8.0f, 6.0f, 7.0f, 90, 90, 90);
  std::vector<AtomSite> lines = {GroupLine(1, 0, 3, {0.2f, 0.3f, 0.4f}, {0, 0, 90}),
                                 Member(1, {0.0f, 0.0f, 0.0f})};
  RigidModel m = OneGroup(3, lines);
  m.groups[0].chain = {{1.0, 0.5, -0.25}};
  RigidGroupCoordinates(m, lines, metric);
  ExpectPlacedAt(m, 0, {0.2, 0.3, 0.4}, HandRotation(0, 0, 90), {1.0, 0.5, -0.25}, {8, 6, 7});
}

TEST(RigidBody, ASatelliteHangsFromItsMainGroupFrame) {
  const CellMetric metric = Metric(8.0f, 6.0f, 7.0f, 90, 90, 90);
  std::vector<AtomSite> lines = {
      GroupLine(1, 0, 1, {0.1f, 0.1f, 0.1f}, {0, 0, 90}), Member(1, {1.0f, 0.0f, 0.0f}),
      GroupLine(2, 1, 1, {2.0f, 0.0f, 0.0f}, {90, 0, 0}), Member(2, {0.0f, 1.0f, 0.0f})};
  lines[2].label = lines[3].label = "H";
  RigidModel m = OneGroup(1, {lines[0], lines[1]});
  RigidGroup s;
  s.number = 2;
  s.line = 3;
  s.reference = 0;
  s.atoms = {4};
  m.groups.push_back(s);
  RigidGroupCoordinates(m, lines, metric);
  // Main frame: x -> y. Satellite origin: main origin + Rmain (2, 0, 0) = (0, 2, 0) A.
  // Its frame Rmain Rx(90): local y -> z, so the atom is 1 A along z from there.
  EXPECT_NEAR(m.effective[1].ATP[1], 0.1, 1e-6);
  EXPECT_NEAR(m.effective[1].ATP[2], 0.1 + 2.0 / 6.0, 1e-6);
  EXPECT_NEAR(m.effective[1].ATP[3], 0.1 + 1.0 / 7.0, 1e-6);
}

double Distance(const CellMetric& m, const AtomSite& a, const AtomSite& b) {
  double d2 = 0.0;
  for (int i = 1; i <= 3; ++i) {
    double c = 0.0;
    for (int j = 1; j <= 3; ++j) c += m.orthonormal(i, j) * (a.ATP[j] - b.ATP[j]);
    d2 += c * c;
  }
  return std::sqrt(d2);
}

TEST(RigidBody, DistancesInsideAGroupDoNotChangeWithItsOriginAndOrientation) {
  const CellMetric metric = Metric(7.3f, 9.1f, 5.6f, 90, 104.5f, 90);
  std::vector<AtomSite> lines = {GroupLine(1, 0, 1, {0.0f, 0.0f, 0.0f}, {0, 0, 0}),
                                 Member(1, {0.0f, 0.0f, 0.0f}), Member(1, {1.47f, 0.1f, -0.2f}),
                                 Member(1, {-0.5f, 1.3f, 0.4f}), Member(1, {0.3f, -0.6f, 1.35f})};
  RigidModel m = OneGroup(1, lines);
  RigidGroupCoordinates(m, lines, metric);
  std::vector<double> reference;
  for (std::size_t i = 0; i < 4; ++i) {
    for (std::size_t j = i + 1; j < 4; ++j)
      reference.push_back(Distance(metric, m.effective[i], m.effective[j]));
  }
  const float moves[3][6] = {{0.3f, -0.2f, 0.7f, 45, 10, -80},
                             {-0.1f, 0.5f, 0.05f, 170, -60, 33},
                             {0.9f, 0.9f, 0.9f, -5, 89, 250}};
  for (const auto& mv : moves) {
    for (int s = 0; s < 3; ++s) lines[0].ATP[1 + s] = mv[s];
    for (int s = 0; s < 3; ++s) lines[0].ATP[7 + s] = mv[3 + s];
    RigidGroupCoordinates(m, lines, metric);
    std::size_t n = 0;
    for (std::size_t i = 0; i < 4; ++i) {
      for (std::size_t j = i + 1; j < 4; ++j)
        EXPECT_NEAR(Distance(metric, m.effective[i], m.effective[j]), reference[n++], 1e-5);
    }
  }
}

// U of rigid libration and translation, component by component (A^2, L in
// rad^2 and S in rad A), as the hand expansion of <u u> with u = t + l x r.
std::array<double, 6> HandU(const std::array<double, 6>& T, const std::array<double, 6>& L,
                            const std::array<double, 9>& S, double x, double y, double z) {
  const double L11 = L[0], L22 = L[1], L33 = L[2], L12 = L[3], L13 = L[4], L23 = L[5];
  const double S11 = S[0], S12 = S[1], S13 = S[2], S21 = S[3], S22 = S[4], S23 = S[5], S31 = S[6],
               S32 = S[7], S33 = S[8];
  return {T[0] + L22 * z * z + L33 * y * y - 2 * L23 * y * z + 2 * S21 * z - 2 * S31 * y,
          T[1] + L11 * z * z + L33 * x * x - 2 * L13 * x * z - 2 * S12 * z + 2 * S32 * x,
          T[2] + L11 * y * y + L22 * x * x - 2 * L12 * x * y + 2 * S13 * y - 2 * S23 * x,
          T[3] - L33 * x * y - L12 * z * z + L13 * y * z + L23 * x * z + z * (S22 - S11) - y * S32 +
              x * S31,
          T[4] + y * z * L12 - x * z * L22 - y * y * L13 + x * y * L23 + z * S23 - y * S33 +
              y * S11 - x * S21,
          T[5] - y * z * L11 + x * z * L12 + x * y * L13 - x * x * L23 - z * S13 + x * S33 +
              y * S12 - x * S22};
}

TEST(RigidBody, TlsDisplacementsFollowTheComponentFormulasOfLibrationAndTranslation) {
  TlsTensors tls;
  tls.T = {1.2, 0.9, 1.5, 0.1, -0.2, 0.05};                     // 100 x A^2
  tls.L = {9.0, 4.0, 16.0, 1.0, -2.0, 0.5};                     // degrees^2
  tls.S = {0.3, -0.2, 0.1, 0.4, -0.1, 0.25, -0.3, 0.15, -0.2};  // degrees x A
  std::array<double, 6> T, L;
  std::array<double, 9> S;
  for (int i = 0; i < 6; ++i) T[i] = tls.T[i] / 100.0, L[i] = tls.L[i] * kDeg * kDeg;
  for (int i = 0; i < 9; ++i) S[i] = tls.S[i] * kDeg;
  const std::array<double, 3> r{1.1, -0.7, 1.9};
  const Matrix3 U = TlsDisplacement(tls, r);
  const std::array<double, 6> hand = HandU(T, L, S, r[0], r[1], r[2]);
  const int ij[6][2] = {{0, 0}, {1, 1}, {2, 2}, {0, 1}, {0, 2}, {1, 2}};
  for (int n = 0; n < 6; ++n) {
    EXPECT_NEAR(U[ij[n][0]][ij[n][1]], hand[n], 1e-12) << n;
    EXPECT_NEAR(U[ij[n][1]][ij[n][0]], hand[n], 1e-12) << n;
  }
}

TEST(RigidBody, APureTGivesEveryAtomTheSameBetas) {
  const CellMetric metric = Metric(8.0f, 6.0f, 7.0f, 90, 90, 90);
  std::vector<AtomSite> lines = {GroupLine(1, 0, 4, {0.1f, 0.2f, 0.3f}, {20, -35, 50}),
                                 Member(1, {1.2f, -0.4f, 0.7f}), Member(1, {0.0f, 0.0f, 1.5f}),
                                 Member(1, {-1.0f, 0.8f, 0.0f})};
  for (int i = 0; i < 3; ++i) lines[0].ATP[GroupSlot::T + i] = 1.0f + 0.5f * static_cast<float>(i);
  RigidModel m = OneGroup(4, lines);
  RigidGroupCoordinates(m, lines, metric);
  // beta_ii = 2 pi^2 U_ii / a_i^2 in an orthorhombic cell, U = T/100.
  const double abc[3] = {8, 6, 7};
  for (const AtomSite& a : m.effective) {
    for (int i = 0; i < 3; ++i) {
      const double U = (1.0 + 0.5 * i) / 100.0;
      EXPECT_NEAR(a.ATP[13 + i], 2.0 * 9.8696044 * U / (abc[i] * abc[i]), 1e-8);
    }
    for (int i = 16; i <= 18; ++i) EXPECT_NEAR(a.ATP[i], 0.0, 1e-12);
    EXPECT_EQ(a.ATP[4], 0.0f);  // the tensors hold all the displacement
    EXPECT_FLOAT_EQ(a.ATP[13], m.effective[0].ATP[13]);
  }
}

TEST(RigidBody, FreeAtomsKeepTheirTypedFractionalCoordinates) {
  const CellMetric metric = Metric(8.0f, 6.0f, 7.0f, 90, 90, 90);
  std::vector<AtomSite> lines = {GroupLine(1, 0, 1, {0.1f, 0.2f, 0.3f}, {0, 0, 0}),
                                 Member(1, {1.0f, 0.0f, 0.0f}),
                                 LineOf("Pb", "PB", {0.19f, 0.25f, 0.17f, 1.1f, 0.5f, 0.0f})};
  RigidModel m = OneGroup(1, {lines[0], lines[1]});
  RigidGroupCoordinates(m, lines, metric);
  ASSERT_EQ(m.effective.size(), 2u);
  EXPECT_EQ(m.source[1], 3);
  EXPECT_FLOAT_EQ(m.effective[1].ATP[1], 0.19f);
  EXPECT_FLOAT_EQ(m.effective[1].ATP[4], 1.1f);
  EXPECT_FLOAT_EQ(m.effective[1].ATP[5], 0.5f);
}

}  // namespace
}  // namespace corvinet
