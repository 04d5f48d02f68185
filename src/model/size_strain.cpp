// Size and strain broadening and the hkl-dependent shift of a reflection, with their derivatives.
#include "model/size_strain.h"

#include <cmath>
#include <cstdlib>

#include "records/profile_slots.h"

namespace corvinet {

namespace {

namespace Slot = ProfileSlot;

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegree = kPi / 180.0;
// (180/pi sqrt(8 ln 2) 1e-3)²: a standard deviation of strain in units of
// 1e-3 to the squared FWHM in degrees of 2theta.
constexpr double kTwoThetaP2 = 0.018203745;
constexpr double kInversePi = 0.3183099;

using Mat3 = std::array<std::array<double, 3>, 3>;
using Vec3 = std::array<double, 3>;

double Par(const BroadeningModel& m, int s) {
  return (*m.PAR)[s];
}

double Sq(double x) {
  return x * x;
}

// The direct metric of the cell and its inverse, the reciprocal metric.
struct Metrics {
  Mat3 G{};
  Mat3 Gs{};
};

Metrics MetricsOf(const Table1<float, 6>& cell) {
  const double a = cell[1], b = cell[2], c = cell[3];
  const double ca = std::cos(cell[4] * kDegree), cb = std::cos(cell[5] * kDegree),
               cg = std::cos(cell[6] * kDegree);
  Metrics m;
  m.G = {{{a * a, a * b * cg, a * c * cb},
          {a * b * cg, b * b, b * c * ca},
          {a * c * cb, b * c * ca, c * c}}};
  const Mat3& g = m.G;
  const double det = g[0][0] * (g[1][1] * g[2][2] - g[1][2] * g[2][1]) -
                     g[0][1] * (g[1][0] * g[2][2] - g[1][2] * g[2][0]) +
                     g[0][2] * (g[1][0] * g[2][1] - g[1][1] * g[2][0]);
  if (det == 0.0) return m;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      const int i1 = (j + 1) % 3, i2 = (j + 2) % 3, j1 = (i + 1) % 3, j2 = (i + 2) % 3;
      m.Gs[i][j] = (g[i1][j1] * g[i2][j2] - g[i1][j2] * g[i2][j1]) / det;
    }
  }
  return m;
}

Vec3 Times(const Mat3& g, const Vec3& v) {
  Vec3 out{};
  for (int i = 0; i < 3; ++i) out[i] = g[i][0] * v[0] + g[i][1] * v[1] + g[i][2] * v[2];
  return out;
}

double Dot(const Vec3& a, const Vec3& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vec3 AxisOf(const Table1<float, 3>& axis) {
  return {axis[1], axis[2], axis[3]};
}

// cos² of the angle between the reciprocal vectors h and v, with the whole
// quadratic form of the metric for both lengths.
double CosSquared(const Metrics& mt, const Vec3& h, const Vec3& v) {
  const Vec3 gv = Times(mt.Gs, v);
  const double hv = Dot(h, gv);
  const double v2 = Dot(v, gv);
  const double q = Dot(h, Times(mt.Gs, h));
  if (!(v2 > 0.0) || !(q > 0.0)) return 0.0;
  return hv * hv / (q * v2);
}

// ---- Strain with Str 0, by Strain-Model -------------------------------------

// deltaU = P² t² with t = Str1 f: the models with one parameter.
void SquaredOne(double P2, double str1, double f, BroadeningTerms& t) {
  const double v = str1 * f;
  t.deltaU = P2 * v * v;
  t.dU[0] = 2.0 * P2 * v * f;
}

// deltaU = P² (S1² x4 + S2² y4 + 2 S1 S2 S3 x2y2)/Q² (models 5 and 8).
void TwoAxes(double P2, double s1, double s2, double s3, double x2, double y2, double Q,
             double factor, BroadeningTerms& t) {
  const double k = factor * P2 / (Q * Q);
  t.deltaU = k * (s1 * s1 * x2 * x2 + s2 * s2 * y2 * y2 + 2.0 * s1 * s2 * s3 * x2 * y2);
  t.dU[0] = k * (2.0 * s1 * x2 * x2 + 2.0 * s2 * s3 * x2 * y2);
  t.dU[1] = k * (2.0 * s2 * y2 * y2 + 2.0 * s1 * s3 * x2 * y2);
  t.dU[2] = k * 2.0 * s1 * s2 * x2 * y2;
}

// Models 10 and 11: orthogonal and monoclinic forms with correlation terms.
void OrthogonalStrain(const BroadeningModel& m, const Vec3& hv, double Q, bool monoclinic,
                      BroadeningTerms& t) {
  const double S1 = Par(m, Slot::Str1), S2 = Par(m, Slot::Str2), S3 = Par(m, Slot::Str3);
  const double C4 = Par(m, Slot::Str4), C5 = Par(m, Slot::Str5), C6 = Par(m, Slot::Str6);
  const double h2 = hv[0] * hv[0], k2 = hv[1] * hv[1], l2 = hv[2] * hv[2];
  const double k = m.P2 / (Q * Q);
  double sum = S1 * S1 * h2 * h2 + S2 * S2 * k2 * k2 + S3 * S3 * l2 * l2 +
               2.0 * S1 * S2 * C4 * h2 * k2 + 2.0 * S1 * S3 * C5 * h2 * l2 +
               2.0 * S2 * S3 * C6 * k2 * l2;
  t.dU[0] = k * (2.0 * S1 * h2 * h2 + 2.0 * S2 * C4 * h2 * k2 + 2.0 * S3 * C5 * h2 * l2);
  t.dU[1] = k * (2.0 * S2 * k2 * k2 + 2.0 * S1 * C4 * h2 * k2 + 2.0 * S3 * C6 * k2 * l2);
  t.dU[2] = k * (2.0 * S3 * l2 * l2 + 2.0 * S1 * C5 * h2 * l2 + 2.0 * S2 * C6 * k2 * l2);
  t.dU[3] = k * 2.0 * S1 * S2 * h2 * k2;
  t.dU[4] = k * 2.0 * S1 * S3 * h2 * l2;
  t.dU[5] = k * 2.0 * S2 * S3 * k2 * l2;
  if (monoclinic) {
    const double S4 = Par(m, Slot::Str7), C8 = Par(m, Slot::Str8);
    const double hk = hv[0] * hv[1];
    sum += S4 * S4 * hk * hk + 2.0 * S3 * S4 * C8 * hk * l2;
    t.dU[2] += k * 2.0 * S4 * C8 * hk * l2;
    t.dU[6] = k * (2.0 * S4 * hk * hk + 2.0 * S3 * C8 * hk * l2);
    t.dU[7] = k * 2.0 * S3 * S4 * hk * l2;
  }
  t.deltaU = k * sum;
}

void ModelStrain(const BroadeningModel& m, const Metrics& mt, const Vec3& hv, double Q,
                 BroadeningTerms& t) {
  const double h = hv[0], k = hv[1], l = hv[2];
  const double a = m.cell[1], b = m.cell[2], c = m.cell[3];
  const double s1 = Par(m, Slot::Str1), s2 = Par(m, Slot::Str2), s3 = Par(m, Slot::Str3);
  const double halfGamma = 0.5 * m.cell[6] * kDegree;
  switch (m.strainModel) {
    case 1:
      SquaredOne(m.P2, s1, 2.0 * std::fabs(h * h - k * k) / (a * a * Q), t);
      return;
    case 2:
      SquaredOne(m.P2, s1, 2.0 * h * h / (a * a * Q), t);
      return;
    case 3:
      SquaredOne(m.P2, s1, Sq(std::fabs(h + k) / (a * std::cos(halfGamma))) / (2.0 * Q), t);
      return;
    case 4: {
      const double f1 = Sq(Sq(std::fabs(h + k) / (a * std::cos(halfGamma)))) / (16.0 * Q * Q);
      const double f2 = Sq(Sq(std::fabs(h - k) / (b * std::sin(halfGamma)))) / (16.0 * Q * Q);
      t.deltaU = m.P2 * (s1 * s1 * f1 + s2 * s2 * f2);
      t.dU[0] = m.P2 * 2.0 * s1 * f1;
      t.dU[1] = m.P2 * 2.0 * s2 * f2;
      return;
    }
    case 5:
      TwoAxes(m.P2, s1, s2, s3, Sq(h / a), Sq(k / b), Q, 4.0, t);
      return;
    case 6: {
      const double x2 = Sq(h / a), y2 = Sq(k / b), z2 = Sq(l / c);
      const double f = 4.0 * m.P2 / (Q * Q);
      t.deltaU = f * (s1 * s1 * x2 * x2 + s2 * s2 * y2 * y2 + s3 * s3 * z2 * z2 -
                      2.0 * s1 * s2 * x2 * y2 + 2.0 * s1 * s3 * x2 * z2);
      t.dU[0] = f * (2.0 * s1 * x2 * x2 - 2.0 * s2 * x2 * y2 + 2.0 * s3 * x2 * z2);
      t.dU[1] = f * (2.0 * s2 * y2 * y2 - 2.0 * s1 * x2 * y2);
      t.dU[2] = f * (2.0 * s3 * z2 * z2 + 2.0 * s1 * x2 * z2);
      return;
    }
    case 7:
      SquaredOne(m.P2, s1, CosSquared(mt, hv, AxisOf(m.strainAxis)), t);
      return;
    case 8:
      TwoAxes(m.P2, s1, s2, s3, h * h + h * k + k * k, l * l, Q, 1.0, t);
      return;
    case 9: {
      const double D2 = Sq(h * h + k * k + l * l);
      if (D2 == 0.0) return;
      const double f[4] = {1.0, Sq(l * l) / D2, (h * h * k * k + k * k * l * l) / D2,
                           h * h * k * k / D2};
      for (int i = 0; i < 4; ++i) {
        t.dU[static_cast<std::size_t>(i)] = f[i];
        t.deltaU += Par(m, Slot::Str1 + i) * f[i];
      }
      return;
    }
    case 10:
    case 11:
      OrthogonalStrain(m, hv, Q, m.strainModel == 11, t);
      return;
    default:
      return;
  }
}

// ---- Generalized strain, Str 1 and 3 -----------------------------------------

// deltaU = P²/Q² (sum s_i² d_i² + 2 sum_{i<j} s_i s_j sin(phi_ij) d_i d_j), the
// correlation angles in degrees; n parameters s, then the angles of the pairs
// (1,2), (1,3), ... in order, starting at dU[n].
void CorrelatedStrain(double P2, double Q, const double* d, const double* s, const double* phi,
                      int n, BroadeningTerms& t) {
  const double k = P2 / (Q * Q);
  double sum = 0.0;
  for (int i = 0; i < n; ++i) {
    sum += s[i] * s[i] * d[i] * d[i];
    t.dU[static_cast<std::size_t>(i)] += k * 2.0 * s[i] * d[i] * d[i];
  }
  int pair = 0;
  for (int i = 0; i < n; ++i) {
    for (int j = i + 1; j < n; ++j, ++pair) {
      const double sn = std::sin(phi[pair] * kDegree), cs = std::cos(phi[pair] * kDegree);
      const double dd = d[i] * d[j];
      sum += 2.0 * s[i] * s[j] * sn * dd;
      t.dU[static_cast<std::size_t>(i)] += k * 2.0 * s[j] * sn * dd;
      t.dU[static_cast<std::size_t>(j)] += k * 2.0 * s[i] * sn * dd;
      t.dU[static_cast<std::size_t>(n + pair)] = k * 2.0 * s[i] * s[j] * cs * kDegree * dd;
    }
  }
  t.deltaU = k * sum;
}

// The hexagonal indices and cell of a lattice given on rhombohedral axes
// (obverse setting): H = h - k, K = k - l, L = h + k + l.
void HexagonalSetting(const Table1<float, 6>& cell, const Vec3& h, Vec3& H, double& a, double& c) {
  const double ar = cell[1], alpha = cell[4] * kDegree;
  H = {h[0] - h[1], h[1] - h[2], h[0] + h[1] + h[2]};
  a = 2.0 * ar * std::sin(0.5 * alpha);
  c = ar * std::sqrt(3.0 * (1.0 + 2.0 * std::cos(alpha)));
}

void GeneralizedStrain(const BroadeningModel& m, const Metrics& mt, const Vec3& hv, double Q,
                       BroadeningTerms& t) {
  double s[4], phi[6];
  for (int i = 0; i < 4; ++i) s[i] = Par(m, Slot::Str1 + i);
  if (m.laue >= 6 && m.laue <= 12) {
    Vec3 H = hv;
    double a = m.cell[1], c = m.cell[3];
    if (m.laue <= 7) HexagonalSetting(m.cell, hv, H, a, c);
    const double d[2] = {-8.0 * (H[0] * H[0] + H[1] * H[1] + H[0] * H[1]) / (3.0 * a * a * a),
                         -2.0 * H[2] * H[2] / (c * c * c)};
    const double sigma[2] = {s[0], s[1]};
    phi[0] = Par(m, Slot::Str3);
    CorrelatedStrain(m.P2, Q, d, sigma, phi, 2, t);
    return;
  }
  for (int i = 0; i < 6; ++i) phi[i] = Par(m, Slot::Str5 + i);
  // dQ/dp = -x^T (dG/dp) x with x = G* h, for p = a, b, c and beta (per degree).
  const Vec3 x = Times(mt.Gs, hv);
  const double a = m.cell[1], b = m.cell[2], c = m.cell[3];
  const double ca = std::cos(m.cell[4] * kDegree), cb = std::cos(m.cell[5] * kDegree),
               cg = std::cos(m.cell[6] * kDegree), sb = std::sin(m.cell[5] * kDegree);
  const double d[4] = {
      -(2.0 * a * x[0] * x[0] + 2.0 * b * cg * x[0] * x[1] + 2.0 * c * cb * x[0] * x[2]),
      -(2.0 * b * x[1] * x[1] + 2.0 * a * cg * x[0] * x[1] + 2.0 * c * ca * x[1] * x[2]),
      -(2.0 * c * x[2] * x[2] + 2.0 * a * cb * x[0] * x[2] + 2.0 * b * ca * x[1] * x[2]),
      2.0 * a * c * sb * kDegree * x[0] * x[2]};
  CorrelatedStrain(m.P2, Q, d, s, phi, 4, t);
}

// ---- Size --------------------------------------------------------------------

bool Zero(double v) {
  return std::fabs(v) < 1.0e-6;
}

bool Odd(double v) {
  return static_cast<long>(v) % 2 != 0;
}

// Whether a reflection meets the rule of size models 2 to 14.
bool MeetsSizeRule(int model, const BroadeningReflection& r) {
  const double h = r.h[0], k = r.h[1], l = r.h[2];
  switch (model) {
    case 2:
      return Zero(h) && Zero(k);
    case 3:
      return Zero(h) && Zero(l);
    case 4:
      return Zero(k) && Zero(l);
    case 5:
      return Zero(l);
    case 6:
      return Zero(k);
    case 7:
      return Zero(h);
    case 8:
      return r.satellite;
    case 9:
      return Odd(h) && Odd(k);
    case 10:
      return Zero(k) && !Odd(static_cast<double>(static_cast<long>(h) + static_cast<long>(l)));
    case 11:
      return !Zero(h - k);
    case 12:
      return Odd(h);
    case 13:
      return !Odd(h) && Odd(k);
    case 14:
      return (Odd(h) || Odd(k)) && Odd(l);
    default:
      return false;
  }
}

// The nine factors of the monoclinic harmonics (b unique).
void MonoclinicHarmonics(const Metrics& mt, const Vec3& h, double Q, double* y) {
  const Mat3& g = mt.Gs;
  const double sq = std::sqrt(Q), s33 = std::sqrt(g[2][2]);
  const double z = h[1] * std::sqrt(g[1][1]) / sq;
  const double u = (h[2] * g[2][2] + h[0] * g[0][2]) / (s33 * sq);
  const double v = h[0] * std::sqrt(std::fabs(g[0][0] * g[2][2] - g[0][2] * g[0][2])) / (s33 * sq);
  const double z2 = z * z, u2 = u * u, v2 = v * v;
  y[0] = 1.0;
  y[1] = u2 - v2;
  y[2] = 2.0 * u * v;
  y[3] = 0.5 * (3.0 * z2 - 1.0);
  // Real part of (u + iv)^4, the partner of the imaginary part in y[5].
  y[4] = u2 * u2 - 6.0 * u2 * v2 + v2 * v2;
  y[5] = 2.0 * (2.0 * u * v) * (u2 - v2);
  y[6] = 0.77778 * (7.0 * z2 - 1.0) * (u2 - v2);
  y[7] = 0.77778 * (7.0 * z2 - 1.0) * 2.0 * u * v;
  y[8] = (35.0 * z2 * z2 - 30.0 * z2 + 3.0) / 8.0;
}

// The seven factors of the trigonal harmonics (hexagonal setting).
void TrigonalHarmonics(const Metrics& mt, const Vec3& h, double Q, double* y) {
  const Mat3& g = mt.Gs;
  const double sq = std::sqrt(Q);
  const double z = h[2] * std::sqrt(g[2][2]) / sq;
  const double u = (h[0] + 0.5 * h[1]) * std::sqrt(g[0][0]) / sq;
  const double v = 0.5 * std::sqrt(3.0) * h[1] * std::sqrt(g[1][1]) / sq;
  const double z2 = z * z, u2 = u * u, v2 = v * v;
  const double cubic = v * (3.0 * u2 - v2);
  y[0] = 1.0;
  y[1] = 0.5 * (3.0 * z2 - 1.0);
  y[2] = (35.0 * z2 * z2 - 30.0 * z2 + 3.0) / 8.0;
  y[3] = 3.0792 * z * cubic;
  y[4] = (231.0 * z2 * z2 * z2 - 315.0 * z2 * z2 + 105.0 * z2 - 5.0) / 16.0;
  y[5] = 1.41685 * (11.0 * z2 - 3.0) * z * cubic;
  y[6] = (u2 - v2) * (u2 * u2 - 14.0 * u2 * v2 + v2 * v2);
}

void ModelSize(const BroadeningModel& m, const Metrics& mt, const BroadeningReflection& r, double Q,
               BroadeningTerms& t) {
  const int model = m.sizeModel;
  const int magnitude = std::abs(model);
  if (magnitude == 15 || magnitude == 16) {
    double y[9] = {};
    const int n = magnitude == 15 ? 9 : 7;
    if (magnitude == 15) {
      MonoclinicHarmonics(mt, r.h, Q, y);
    } else {
      TrigonalHarmonics(mt, r.h, Q, y);
    }
    for (int i = 0; i < n; ++i) {
      t.dYHarmonic[static_cast<std::size_t>(i)] = y[i];
      t.deltaY += Par(m, Slot::SizeSH1 + i) * y[i];
    }
    return;
  }
  double factor = 0.0;
  if (magnitude == 1) {
    const double c2 = CosSquared(mt, r.h, AxisOf(m.sizeAxis));
    factor = model > 0 ? std::sqrt(c2) : std::sqrt(std::fabs(1.0 - c2));
  } else {
    factor = MeetsSizeRule(model, r) ? 1.0 : 0.0;
  }
  t.dY[0] = factor;
  t.deltaY = Par(m, Slot::LorSiz) * factor;
}

// Str 2 and 3: an ellipsoid, the quadratic form of the six terms.
void EllipsoidSize(const BroadeningModel& m, const Vec3& hv, double Q, BroadeningTerms& t) {
  const double h = hv[0], k = hv[1], l = hv[2];
  const double terms[6] = {h * h, k * k, l * l, 2.0 * h * k, 2.0 * h * l, 2.0 * k * l};
  const double f = m.sizeScale / Q * kInversePi;
  for (int i = 0; i < 6; ++i) {
    t.dY[static_cast<std::size_t>(i)] = terms[i] * f;
    t.deltaY += Par(m, Slot::LorSiz + i) * terms[i] * f;
  }
}

// ---- Shift -------------------------------------------------------------------

void BraggShift(const BroadeningModel& m, const Metrics& mt, const BroadeningReflection& r,
                BroadeningTerms& t) {
  switch (m.ModS) {
    case 1:
      t.dShift = std::sqrt(CosSquared(mt, r.h, AxisOf(m.shiftAxis)));
      break;
    case -1:
      t.dShift = std::sqrt(std::fabs(1.0 - CosSquared(mt, r.h, AxisOf(m.shiftAxis))));
      break;
    case 2:
    case -2:
      t.dShift = r.tanTheta * r.fileCoefficient;
      break;
    default:
      return;
  }
  t.shift = t.dShift * Par(m, Slot::Shift1);
}

bool GeneralizedStrainRuns(int Str) {
  return Str == 1 || Str == 3;
}

bool EllipsoidRuns(int Str) {
  return Str == 2 || Str == 3;
}

}  // namespace

double StrainP2(const Pattern& pattern) {
  switch (pattern.IXUNIT) {
    case AbscissaUnit::kTimeOfFlight:
      return 1.0e-6 * Sq(pattern.GLB[8]);
    case AbscissaUnit::kEnergy:
      // The energy width is E times the relative width of d: the same strain
      // as on a 2theta pattern, without the degrees and the factor 2 tan(theta).
      return kTwoThetaP2 * kDegree * kDegree / 4.0;
    default:
      return kTwoThetaP2;
  }
}

BroadeningModel BroadeningModelOf(const Phase& ph, const PhasePattern& c, const Pattern& p, int w) {
  BroadeningModel m;
  m.Str = ph.Str;
  m.strainModel = c.StrainModel;
  m.sizeModel = c.SizeModel;
  m.ModS = ph.ModS;
  m.laue = ph.group.LAUE;
  m.PAR = &c.PAR;
  m.cell = c.CellConstants;
  m.strainAxis = ph.StrainAxis;
  m.sizeAxis = ph.SizeAxis;
  m.shiftAxis = ph.ShiftAxis;
  m.P2 = StrainP2(p);
  const bool energy = p.IXUNIT == AbscissaUnit::kEnergy;
  const int wave = w == 2 ? 2 : 1;
  m.sizeScale = energy ? p.GLB[8] : 57.29578 * p.LAMBDA[wave];
  return m;
}

BroadeningTerms SizeStrainBroadening(const BroadeningModel& m, const BroadeningReflection& r) {
  BroadeningTerms t;
  // Most phases select no model: nothing to compute.
  if (m.Str == 0 && m.strainModel == 0 && m.sizeModel == 0 && m.ModS == 0) return t;
  const Metrics mt = MetricsOf(m.cell);
  const double Q = Dot(r.h, Times(mt.Gs, r.h));
  if (!(Q > 0.0)) return t;
  if (GeneralizedStrainRuns(m.Str)) {
    GeneralizedStrain(m, mt, r.h, Q, t);
  } else if (m.Str == 0) {
    ModelStrain(m, mt, r.h, Q, t);
  }
  if (EllipsoidRuns(m.Str)) {
    EllipsoidSize(m, r.h, Q, t);
  } else if (m.Str < 2) {
    ModelSize(m, mt, r, Q, t);
  }
  BraggShift(m, mt, r, t);
  return t;
}

double StrainSlotDerivative(const BroadeningTerms& t, int s) {
  if (s >= Slot::Str1 && s <= Slot::Str10) return t.dU[static_cast<std::size_t>(s - Slot::Str1)];
  return 0.0;
}

double SizeSlotDerivative(const BroadeningTerms& t, int s) {
  if (s >= Slot::LorSiz && s <= Slot::Size6)
    return t.dY[static_cast<std::size_t>(s - Slot::LorSiz)];
  if (s >= Slot::SizeSH1 && s <= Slot::SizeSH9) {
    return t.dYHarmonic[static_cast<std::size_t>(s - Slot::SizeSH1)];
  }
  return 0.0;
}

double ShiftSlotDerivative(const BroadeningTerms& t, int s) {
  return s == Slot::Shift1 ? t.dShift : 0.0;
}

namespace {

// The number of strain slots, from Str1, that the strain model reads.
int StrainSlotCount(const BroadeningModel& m) {
  if (GeneralizedStrainRuns(m.Str)) return m.laue >= 6 && m.laue <= 12 ? 3 : 10;
  if (m.Str != 0) return 0;
  switch (m.strainModel) {
    case 1:
    case 2:
    case 3:
    case 7:
      return 1;
    case 4:
      return 2;
    case 5:
    case 6:
    case 8:
      return 3;
    case 9:
      return 4;
    case 10:
      return 6;
    case 11:
      return 8;
    default:
      return 0;
  }
}

bool SizeUsesSlot(const BroadeningModel& m, int s) {
  if (EllipsoidRuns(m.Str)) return s >= Slot::LorSiz && s <= Slot::Size6;
  if (m.Str >= 2) return false;
  const int magnitude = std::abs(m.sizeModel);
  if (magnitude == 15) return s >= Slot::SizeSH1 && s <= Slot::SizeSH9;
  if (magnitude == 16) return s >= Slot::SizeSH1 && s <= Slot::SizeSH7;
  return magnitude >= 1 && magnitude <= 14 && s == Slot::LorSiz;
}

}  // namespace

bool BroadeningUsesSlot(const BroadeningModel& m, int s) {
  if (s >= Slot::Str1 && s < Slot::Str1 + StrainSlotCount(m)) return true;
  if (SizeUsesSlot(m, s)) return true;
  const int shift = std::abs(m.ModS);
  return s == Slot::Shift1 && (shift == 1 || shift == 2);
}

const char* StrainModelText(int model) {
  static constexpr const char* kTexts[] = {
      "",
      " => Orth. strain in a tetragonal lattice ",
      " => Strain along a-axis ",
      " => Strain along [110] in a monoclinic P112/m lattice ",
      " => Strain along [1,1,0] and [1,-1,0] in a P112/m lattice ",
      " => Strain along a and/or b in an orthorrombic lattice ",
      " => Strain along a, b and c in an orthorrombic lattice ",
      " => Uniaxial strain along a direction [S1,S2,S3] ",
      " => Strain adapted for hexagonal lattices ",
      " => Strain adapted for compounds LaNi5-like. Formula by:  ",
      " => Strain adapted for Orthogonal lattices ",
      " => Strain in Monoclinic lattices (001-> 2-fold axis)"};
  return model >= 1 && model <= 11 ? kTexts[model] : "";
}

const char* SizeModelText(int model) {
  static constexpr const char* kTexts[] = {
      "",
      " => Platelet-like size effect: Lorentzian FWHM",
      " => Only 00L reflections are broadened by size",
      " => Only 0K0 reflections are broadened by size",
      " => Only H00 reflections are broadened by size",
      " => Only HK0 reflections are broadened by size",
      " => Only H0L reflections are broadened by size",
      " => Only 0KL reflections are broadened by size",
      " => Only satellites are broadened by size effects",
      " => Only h=2n+1,k=2m+1 are broadened by size effects",
      " => Only (H0L) wiht H+L=2n are broadened by size effects",
      " => Only (HKL) with H<>K are broadened by size effects",
      " => Only (HKL) with h=2n+1 are broadened by size effects",
      " => Only (HKL) with h=2n, k=2n+1 are broadened by size effects",
      " => Only (HKL) with h=2n+1 or k=2m+1 and l=2n+1 are broadened by size effects",
      " => Lorentzian broadening for Monoclinic with b-axis up to",
      " => Trigonal Anisotropic Broadening using Spherical Harmonics up"};
  if (model == -1) return " => Needle-like size effect: Lorentzian FWHM";
  return model >= 1 && model <= 16 ? kTexts[model] : "";
}

const char* ShiftModelText(int model) {
  if (std::abs(model) == 1) return " => Uniaxial shifts along a direction [S1,S2,S3] ";
  if (std::abs(model) == 2) return "";
  return " ==> Sorry, no shift model available! ";
}

const char* ShiftFormulaText(int model) {
  if (model == 1) return " Shv = Shift1 * cos(Phi) ";
  if (model == -1) return " Shv = Shift1 * sin(Phi) ";
  return "";
}

}  // namespace corvinet
