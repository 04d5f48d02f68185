// The cell of a phase rebuilt from its six refined metric coefficients, with standard deviations
// and volume.
#include "refine/cell_update.h"

#include <cmath>

#include "crystal/metric.h"
#include "format/fortran_format.h"
#include "records/profile_slots.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr double kRadianToDegree = 57.29577951308232;
using Matrix3 = std::array<std::array<double, 3>, 3>;

// Inverse of a 3x3 matrix by cofactors; false when the determinant vanishes.
bool Invert3(const Matrix3& m, Matrix3& inv) {
  const double det = m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
                     m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
                     m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
  if (!(std::fabs(det) > 1.0e-20)) return false;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      const int r1 = (j + 1) % 3, r2 = (j + 2) % 3, c1 = (i + 1) % 3, c2 = (i + 2) % 3;
      inv[i][j] = (m[r1][c1] * m[r2][c2] - m[r1][c2] * m[r2][c1]) / det;
    }
  }
  return true;
}

// G* of 1/d^2 = Ah^2 + Bk^2 + Cl^2 + Dkl + Ehl + Fhk.
Matrix3 ReciprocalMetric(const Table1<float, 6>& k) {
  Matrix3 g{};
  g[0][0] = k[1];
  g[1][1] = k[2];
  g[2][2] = k[3];
  g[1][2] = g[2][1] = 0.5 * k[4];
  g[0][2] = g[2][0] = 0.5 * k[5];
  g[0][1] = g[1][0] = 0.5 * k[6];
  return g;
}

// dG*/dk for coefficient k = 0..5 (A, B, C, D, E, F).
Matrix3 ReciprocalMetricDerivative(int k) {
  Matrix3 d{};
  static constexpr int kRow[6] = {0, 1, 2, 1, 0, 0};
  static constexpr int kCol[6] = {0, 1, 2, 2, 2, 1};
  const int r = kRow[k], c = kCol[k];
  if (r == c) {
    d[r][c] = 1.0;
  } else {
    d[r][c] = d[c][r] = 0.5;
  }
  return d;
}

// -G dG* G: the change of the direct metric.
Matrix3 DirectMetricDerivative(const Matrix3& g, const Matrix3& dStar) {
  Matrix3 t{}, out{};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j)
      for (int m = 0; m < 3; ++m) t[i][j] += g[i][m] * dStar[m][j];
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j)
      for (int m = 0; m < 3; ++m) out[i][j] -= t[i][m] * g[m][j];
  return out;
}

// Holds the six coefficients to the relations of the Laue class (a = b,
// gamma = 120 and so on), whatever the codes moved; true when they had to
// move. Rounding of the 32-bit coefficients is not counted as a break.
bool HoldLaueRelations(const SpaceGroup& group, Table1<float, 6>& coefficients) {
  const Table1<float, 6> cell = CellFromCoefficients(coefficients);
  Table1<float, 6> forced = cell;
  ForceCellToLaueClass(forced, group.LAUE, group.UniqueAxis);
  bool broken = false;
  for (int i = 1; i <= 3; ++i)
    broken = broken || std::fabs(forced[i] - cell[i]) > 1.0e-5f * cell[i];
  for (int i = 4; i <= 6; ++i) broken = broken || std::fabs(forced[i] - cell[i]) > 1.0e-4f;
  if (!broken) return false;
  CellMetric metric;
  if (!BuildCellMetric(forced, metric)) return false;
  coefficients = ReciprocalCoefficients(metric);
  return true;
}

// Says once per phase and run that its cell was held to its Laue class.
void WarnCellHeld(Job& job, int phase) {
  Phase& ph = job.phases[phase];
  if (ph.cellHeldWarned) return;
  ph.cellHeldWarned = true;
  const std::string line = Fmt("(A,I2,A,A,A)", " => Phase ", phase,
                               ": the cell codes break the relations of its Laue class ",
                               LaueClassName(ph.group.LAUE), "; the cell is held to them");
  ConsoleLine(job, line);
  WriteLine(job, Unit::Out, line);
}

}  // namespace

CoefficientCovariance CoefficientCovarianceOf(const Job& job, const PhasePattern& pp) {
  CoefficientCovariance v{};
  for (int i = 0; i < 6; ++i) {
    const Codeword& wi = pp.PAC[ProfileSlot::FirstCell + i];
    for (int j = 0; j < 6; ++j) {
      const Codeword& wj = pp.PAC[ProfileSlot::FirstCell + j];
      if (wi.parameterNumber <= 0 || wj.parameterNumber <= 0) continue;
      v[i][j] = static_cast<double>(wi.multiplier) * wj.multiplier *
                job.refinement.normal.A(wi.parameterNumber, wj.parameterNumber);
    }
  }
  return v;
}

CellJacobian CellDerivatives(const Table1<float, 6>& coefficients) {
  CellJacobian jac{};
  Matrix3 g{};
  if (!Invert3(ReciprocalMetric(coefficients), g)) return jac;
  const double len[3] = {std::sqrt(g[0][0]), std::sqrt(g[1][1]), std::sqrt(g[2][2])};
  // The angle opposite axis n lies between axes p and q, cyclically.
  static constexpr int kP[3] = {1, 0, 0};
  static constexpr int kQ[3] = {2, 2, 1};
  for (int k = 0; k < 6; ++k) {
    const Matrix3 dg = DirectMetricDerivative(g, ReciprocalMetricDerivative(k));
    double dLen[3];
    for (int n = 0; n < 3; ++n) {
      dLen[n] = dg[n][n] / (2.0 * len[n]);
      jac[n][k] = dLen[n];
    }
    for (int n = 0; n < 3; ++n) {
      const int p = kP[n], q = kQ[n];
      const double product = len[p] * len[q];
      const double cosine = g[p][q] / product;
      const double dCos = dg[p][q] / product - cosine * (dLen[p] / len[p] + dLen[q] / len[q]);
      const double sine = std::sqrt(std::fmax(1.0 - cosine * cosine, 0.0));
      jac[3 + n][k] = sine > 0.0 ? -dCos / sine * kRadianToDegree : 0.0;
    }
  }
  return jac;
}

CellWithSigma CellAndSigmaFromCoefficients(const Table1<float, 6>& coefficients,
                                           const CoefficientCovariance& covariance) {
  CellWithSigma out;
  out.cell = CellFromCoefficients(coefficients);
  const CellJacobian jac = CellDerivatives(coefficients);
  for (int i = 0; i < 6; ++i) {
    double variance = 0.0;
    for (int k = 0; k < 6; ++k)
      for (int m = 0; m < 6; ++m) variance += jac[i][k] * covariance[k][m] * jac[i][m];
    out.sigma[i + 1] = static_cast<float>(std::sqrt(std::fabs(variance)));
  }
  return out;
}

void SnapSpecialAngles(Table1<float, 6>& cell) {
  for (int i = 4; i <= 6; ++i) {
    if (std::fabs(cell[i] - 90.0f) < 0.0001f) cell[i] = 90.0f;
    if (std::fabs(cell[i] - 120.0f) < 0.0001f) cell[i] = 120.0f;
  }
}

float VolumeSigma(const Table1<float, 6>& cell, const Table1<float, 6>& sigma, double volume) {
  double relative = 0.0;
  for (int i = 1; i <= 3; ++i) {
    const double r = static_cast<double>(sigma[i]) / cell[i];
    relative += r * r;
  }
  return static_cast<float>(std::sqrt(volume * volume * relative));
}

void UpdateCell(Job& job, int phase, int ip) {
  PhasePattern& pp = job.phases[phase].pat[ip];
  CellStatistics& stats = job.limits.cells(phase, ip);
  Table1<float, 6> coefficients;
  for (int i = 1; i <= 6; ++i) coefficients[i] = pp.PAR[ProfileSlot::FirstCell - 1 + i];
  if (HoldLaueRelations(job.phases[phase].group, coefficients)) {
    for (int i = 1; i <= 6; ++i) pp.PAR[ProfileSlot::FirstCell - 1 + i] = coefficients[i];
    WarnCellHeld(job, phase);
  }
  const CellWithSigma result =
      CellAndSigmaFromCoefficients(coefficients, CoefficientCovarianceOf(job, pp));
  Table1<float, 6> cell = result.cell;
  SnapSpecialAngles(cell);
  for (int i = 1; i <= 6; ++i) stats.shift[i] = cell[i] - pp.CellConstants[i];
  pp.CellConstants = cell;
  stats.sigma = result.sigma;
  pp.cellVolume = CellVolume(cell);
  stats.volumeSigma = VolumeSigma(cell, result.sigma, pp.cellVolume);
  const int scaleParameter = pp.PAC[ProfileSlot::Scale].parameterNumber;
  stats.scaleVariance = scaleParameter > 0
                            ? std::fabs(job.refinement.normal.A(scaleParameter, scaleParameter))
                            : 0.0f;
  if (!BuildCellMetric(pp.CellConstants, pp.metric)) StopBox(job, "Bad cell parameters!");
}

}  // namespace corvinet
