// The metric of a cell: forcing to the Laue class, tensors, reciprocal coefficients and volume.
#include "crystal/metric.h"

#include <cmath>

namespace corvinet {

namespace {

constexpr double kDegree = 0.017453292519943295;

// Inverse of a symmetric 3x3 matrix; false when singular.
bool Invert(const Table2<double, 3, 3>& m, Table2<double, 3, 3>& inverse) {
  const double c11 = m(2, 2) * m(3, 3) - m(2, 3) * m(3, 2);
  const double c12 = m(2, 3) * m(3, 1) - m(2, 1) * m(3, 3);
  const double c13 = m(2, 1) * m(3, 2) - m(2, 2) * m(3, 1);
  const double det = m(1, 1) * c11 + m(1, 2) * c12 + m(1, 3) * c13;
  if (!(std::fabs(det) > 1.0e-30)) return false;
  inverse(1, 1) = c11 / det;
  inverse(2, 1) = c12 / det;
  inverse(3, 1) = c13 / det;
  inverse(1, 2) = (m(1, 3) * m(3, 2) - m(1, 2) * m(3, 3)) / det;
  inverse(2, 2) = (m(1, 1) * m(3, 3) - m(1, 3) * m(3, 1)) / det;
  inverse(3, 2) = (m(1, 2) * m(3, 1) - m(1, 1) * m(3, 2)) / det;
  inverse(1, 3) = (m(1, 2) * m(2, 3) - m(1, 3) * m(2, 2)) / det;
  inverse(2, 3) = (m(1, 3) * m(2, 1) - m(1, 1) * m(2, 3)) / det;
  inverse(3, 3) = (m(1, 1) * m(2, 2) - m(1, 2) * m(2, 1)) / det;
  return true;
}

}  // namespace

void ForceCellToLaueClass(Table1<float, 6>& cell, int laue, int uniqueAxis) {
  float& a = cell[1];
  float& b = cell[2];
  float& c = cell[3];
  float& alpha = cell[4];
  float& beta = cell[5];
  float& gamma = cell[6];
  switch (laue) {
    case 2:
      if (uniqueAxis == 0) return;
      if (uniqueAxis != 1) alpha = 90.0f;
      if (uniqueAxis != 2) beta = 90.0f;
      if (uniqueAxis != 3) gamma = 90.0f;
      return;
    case 3:
      alpha = beta = gamma = 90.0f;
      return;
    case 4:
    case 5:
      b = a;
      alpha = beta = gamma = 90.0f;
      return;
    case 6:
    case 7:
      b = c = a;
      beta = gamma = alpha;
      return;
    case 8:
    case 9:
    case 10:
    case 11:
    case 12:
      b = a;
      alpha = beta = 90.0f;
      gamma = 120.0f;
      return;
    case 13:
    case 14:
      b = c = a;
      alpha = beta = gamma = 90.0f;
      return;
    default:
      return;
  }
}

double CellVolume(const Table1<float, 6>& cell) {
  const double ca = std::cos(cell[4] * kDegree);
  const double cb = std::cos(cell[5] * kDegree);
  const double cg = std::cos(cell[6] * kDegree);
  const double root = 1.0 - ca * ca - cb * cb - cg * cg + 2.0 * ca * cb * cg;
  return static_cast<double>(cell[1]) * cell[2] * cell[3] * std::sqrt(std::max(root, 0.0));
}

bool BuildCellMetric(const Table1<float, 6>& cell, CellMetric& m) {
  const double a = cell[1], b = cell[2], c = cell[3];
  const double ca = std::cos(cell[4] * kDegree);
  const double cb = std::cos(cell[5] * kDegree);
  const double cg = std::cos(cell[6] * kDegree);
  const double sg = std::sin(cell[6] * kDegree);
  m.G(1, 1) = a * a;
  m.G(2, 2) = b * b;
  m.G(3, 3) = c * c;
  m.G(1, 2) = m.G(2, 1) = a * b * cg;
  m.G(1, 3) = m.G(3, 1) = a * c * cb;
  m.G(2, 3) = m.G(3, 2) = b * c * ca;
  m.volume = CellVolume(cell);
  // A cell whose volume is lost in rounding (angles that close up) is singular.
  if (!(m.volume > 1.0e-6 * std::fabs(a * b * c)) || !Invert(m.G, m.Gstar)) return false;
  // Cartesian frame: a along x, b in the xy plane.
  m.orthonormal.Fill(0.0);
  m.orthonormal(1, 1) = a;
  m.orthonormal(1, 2) = b * cg;
  m.orthonormal(2, 2) = b * sg;
  m.orthonormal(1, 3) = c * cb;
  m.orthonormal(2, 3) = c * (ca - cb * cg) / sg;
  m.orthonormal(3, 3) = m.volume / (a * b * sg);
  Table2<double, 3, 3> full = m.orthonormal;
  Table2<double, 3, 3> inverse;
  // The frame matrix is triangular, not symmetric; invert it by its cofactors.
  const double det = full(1, 1) * full(2, 2) * full(3, 3);
  if (!(std::fabs(det) > 1.0e-30)) return false;
  inverse.Fill(0.0);
  inverse(1, 1) = 1.0 / full(1, 1);
  inverse(2, 2) = 1.0 / full(2, 2);
  inverse(3, 3) = 1.0 / full(3, 3);
  inverse(1, 2) = -full(1, 2) / (full(1, 1) * full(2, 2));
  inverse(2, 3) = -full(2, 3) / (full(2, 2) * full(3, 3));
  inverse(1, 3) = (full(1, 2) * full(2, 3) - full(1, 3) * full(2, 2)) / det;
  m.fractional = inverse;
  return true;
}

Table1<float, 6> ReciprocalCoefficients(const CellMetric& m) {
  Table1<float, 6> k;
  k[1] = static_cast<float>(m.Gstar(1, 1));
  k[2] = static_cast<float>(m.Gstar(2, 2));
  k[3] = static_cast<float>(m.Gstar(3, 3));
  k[4] = static_cast<float>(2.0 * m.Gstar(2, 3));
  k[5] = static_cast<float>(2.0 * m.Gstar(1, 3));
  k[6] = static_cast<float>(2.0 * m.Gstar(1, 2));
  return k;
}

Table2<double, 3, 3> ReciprocalTensor(const Table1<float, 6>& k) {
  Table2<double, 3, 3> gstar;
  gstar(1, 1) = k[1];
  gstar(2, 2) = k[2];
  gstar(3, 3) = k[3];
  gstar(2, 3) = gstar(3, 2) = 0.5 * k[4];
  gstar(1, 3) = gstar(3, 1) = 0.5 * k[5];
  gstar(1, 2) = gstar(2, 1) = 0.5 * k[6];
  return gstar;
}

double InverseDSquared(const Table1<float, 6>& c, const std::array<double, 3>& v) {
  const double h = v[0], k = v[1], l = v[2];
  return c[1] * h * h + c[2] * k * k + c[3] * l * l + c[4] * k * l + c[5] * h * l + c[6] * h * k;
}

Table1<float, 6> CellFromCoefficients(const Table1<float, 6>& k) {
  const Table2<double, 3, 3> gstar = ReciprocalTensor(k);
  Table2<double, 3, 3> g;
  Table1<float, 6> cell;
  if (!Invert(gstar, g)) return cell;
  const double a = std::sqrt(g(1, 1)), b = std::sqrt(g(2, 2)), c = std::sqrt(g(3, 3));
  cell[1] = static_cast<float>(a);
  cell[2] = static_cast<float>(b);
  cell[3] = static_cast<float>(c);
  cell[4] = static_cast<float>(std::acos(g(2, 3) / (b * c)) / kDegree);
  cell[5] = static_cast<float>(std::acos(g(1, 3) / (a * c)) / kDegree);
  cell[6] = static_cast<float>(std::acos(g(1, 2) / (a * b)) / kDegree);
  return cell;
}

const char* LaueClassName(int laue) {
  static constexpr const char* kNames[] = {"-1", "2/m",  "mmm",  "4/m", "4/mmm", "-3 R", "-3m R",
                                           "-3", "-3m1", "-31m", "6/m", "6/mmm", "m3",   "m3m"};
  if (laue < 1 || laue > 14) return "?";
  return kNames[laue - 1];
}

}  // namespace corvinet
