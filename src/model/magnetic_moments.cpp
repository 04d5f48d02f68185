// The Fourier component of an atom's moment for one reflection, from its moment slots in the
// Cartesian, spherical or conical form, with the derivatives with respect to those slots.
#include "model/magnetic_moments.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace corvinet {

namespace {

constexpr double kDegree = 3.14159265358979323846 / 180.0;

// Slot s of the moment block as an index 0..6.
constexpr int Slot(int s) {
  return s - kFirstMomentSlot;
}

RealVector Apply(const std::array<RealVector, 3>& m, const RealVector& v) {
  RealVector out{};
  for (int i = 0; i < 3; ++i) out[i] = m[i][0] * v[0] + m[i][1] * v[1] + m[i][2] * v[2];
  return out;
}

// fact (u + i sigma v) with u and v real vectors.
ComplexVector Combine(double fact, const RealVector& u, double sigma, const RealVector& v) {
  ComplexVector out{};
  for (int i = 0; i < 3; ++i) out[i] = fact * Complex(u[i], sigma * v[i]);
  return out;
}

ComplexVector Real(double fact, const RealVector& u) {
  return Combine(fact, u, 0.0, RealVector{});
}

std::array<RealVector, 3> Inverse(const std::array<RealVector, 3>& m) {
  const double det = m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
                     m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
                     m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
  std::array<RealVector, 3> inv{};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      const int r1 = (j + 1) % 3, r2 = (j + 2) % 3, c1 = (i + 1) % 3, c2 = (i + 2) % 3;
      inv[i][j] = (m[r1][c1] * m[r2][c2] - m[r1][c2] * m[r2][c1]) / det;
    }
  }
  return inv;
}

// The unit vector of polar angle theta from z and azimuth phi from x, and its
// two derivatives, all in Cartesian axes.
struct Direction {
  RealVector unit{};
  RealVector dPhi{};
  RealVector dTheta{};
};

Direction DirectionOf(double phiDegrees, double thetaDegrees) {
  const double ph = phiDegrees * kDegree, th = thetaDegrees * kDegree;
  const double sp = std::sin(ph), cp = std::cos(ph), st = std::sin(th), ct = std::cos(th);
  return {{st * cp, st * sp, ct}, {-st * sp, st * cp, 0.0}, {ct * cp, ct * sp, -st}};
}

RealVector Scaled(double f, const RealVector& v) {
  return {f * v[0], f * v[1], f * v[2]};
}

// Slots 6..11 as two moments of a modulus and two angles each.
void SphericalPart(const MagneticCell& cell, const AtomSite& a, int firstSlot, double fact,
                   double sigma, MomentComponent& out) {
  const double m = a.ATP[firstSlot];
  const Direction d = DirectionOf(a.ATP[firstSlot + 1], a.ATP[firstSlot + 2]);
  const RealVector unit = Apply(cell.cartesianToAxes, d.unit);
  const RealVector dPhi = Apply(cell.cartesianToAxes, Scaled(m * kDegree, d.dPhi));
  const RealVector dTheta = Apply(cell.cartesianToAxes, Scaled(m * kDegree, d.dTheta));
  // The real part takes sigma 0, the imaginary part takes sigma on its own.
  const bool imaginary = firstSlot != kFirstMomentSlot;
  auto put = [&](const RealVector& v) {
    return imaginary ? Combine(fact, RealVector{}, sigma, v) : Real(fact, v);
  };
  const ComplexVector part = put(Scaled(m, unit));
  for (int i = 0; i < 3; ++i) out.S[i] += part[i];
  out.dS[Slot(firstSlot)] = put(unit);
  out.dS[Slot(firstSlot + 1)] = put(dPhi);
  out.dS[Slot(firstSlot + 2)] = put(dTheta);
}

void CartesianComponent(const AtomSite& a, double fact, double sigma, MomentComponent& out) {
  const RealVector R = {a.ATP[6], a.ATP[7], a.ATP[8]};
  const RealVector I = {a.ATP[9], a.ATP[10], a.ATP[11]};
  out.S = Combine(fact, R, sigma, I);
  for (int c = 0; c < 3; ++c) {
    out.dS[Slot(6 + c)][c] = Complex(fact, 0.0);
    out.dS[Slot(9 + c)][c] = Complex(0.0, fact * sigma);
  }
}

// A conical moment: m cos(beta) along the cone axis for a reflection without
// a vector; 0.5 m sin(beta) (e1 + i sigma e2) turning about it for a
// satellite, with the phase P8 in degrees. The axis (P9 = Phi, P10 = Theta)
// is that of the first atom: e = (Phi, Theta), e1 = de/dTheta, e2 = e x e1.
void ConicalComponent(const AtomSite& a, const AtomSite& first, const MagneticCell& cell,
                      const MomentRequest& q, double sigma, double phaseSign,
                      MomentComponent& out) {
  const double m = a.ATP[6];
  const double beta = a.ATP[7] * kDegree;
  const Direction axis = DirectionOf(first.ATP[9], first.ATP[10]);
  const auto& A = cell.cartesianToAxes;
  if (!q.satellite) {
    const RealVector e = Apply(A, axis.unit);
    out.S = Real(m * std::cos(beta), e);
    out.dS[Slot(6)] = Real(std::cos(beta), e);
    out.dS[Slot(7)] = Real(-m * std::sin(beta) * kDegree, e);
    out.dS[Slot(9)] = Real(m * std::cos(beta) * kDegree, Apply(A, axis.dPhi));
    out.dS[Slot(10)] = Real(m * std::cos(beta) * kDegree, Apply(A, axis.dTheta));
    return;
  }
  const double ph = first.ATP[9] * kDegree, th = first.ATP[10] * kDegree;
  const RealVector e1 = Apply(A, axis.dTheta);
  const RealVector e2 = Apply(A, {-std::sin(ph), std::cos(ph), 0.0});
  const RealVector de1dPhi = Scaled(std::cos(th), e2);
  const RealVector de2dPhi = Apply(A, {-std::cos(ph), -std::sin(ph), 0.0});
  const RealVector de1dTheta = Scaled(-1.0, Apply(A, axis.unit));
  const double amplitude = 0.5 * m * std::sin(beta);
  out.S = Combine(amplitude, e1, sigma, e2);
  out.dS[Slot(6)] = Combine(0.5 * std::sin(beta), e1, sigma, e2);
  out.dS[Slot(7)] = Combine(0.5 * m * std::cos(beta) * kDegree, e1, sigma, e2);
  out.dS[Slot(9)] = Combine(amplitude * kDegree, de1dPhi, sigma, de2dPhi);
  out.dS[Slot(10)] = Combine(amplitude * kDegree, de1dTheta, sigma, RealVector{});
  out.phase = phaseSign * a.ATP[8] / 360.0;
  out.dPhase[Slot(8)] = phaseSign / 360.0;
}

}  // namespace

MagneticCell MagneticCellOf(const Table1<float, 6>& c) {
  MagneticCell cell;
  const double ca = std::cos(c[4] * kDegree), cb = std::cos(c[5] * kDegree);
  const double cg = std::cos(c[6] * kDegree), sg = std::sin(c[6] * kDegree);
  cell.length = {c[1], c[2], c[3]};
  cell.cosine = {RealVector{1.0, cg, cb}, RealVector{cg, 1.0, ca}, RealVector{cb, ca, 1.0}};
  const double cy = (ca - cb * cg) / sg;
  const double cz = std::sqrt(std::max(0.0, 1.0 - cb * cb - cy * cy));
  // Columns: the unit vectors of a, b and c in Cartesian axes.
  const std::array<RealVector, 3> units = {RealVector{1.0, cg, cb}, RealVector{0.0, sg, cy},
                                           RealVector{0.0, 0.0, cz}};
  cell.cartesianToAxes = Inverse(units);
  return cell;
}

MomentForm MomentFormOf(int Jbt) {
  if (std::abs(Jbt) == 5) return MomentForm::Conical;
  return Jbt < 0 ? MomentForm::Spherical : MomentForm::Cartesian;
}

MomentComponent MomentComponentOf(const AtomSite& atom, const AtomSite& first,
                                  const MagneticCell& cell, const MomentRequest& q) {
  MomentComponent out;
  // The component of -k is the conjugate of that of k, phases included.
  const double sigma = q.conjugate ? 1.0 : -1.0;
  const double phaseSign = q.conjugate ? -1.0 : 1.0;
  switch (q.form) {
    case MomentForm::Conical:
      ConicalComponent(atom, first, cell, q, sigma, phaseSign, out);
      return out;
    case MomentForm::Spherical:
      SphericalPart(cell, atom, 6, q.fact, sigma, out);
      SphericalPart(cell, atom, 9, q.fact, sigma, out);
      break;
    case MomentForm::Cartesian:
      CartesianComponent(atom, q.fact, sigma, out);
      break;
  }
  out.phase = phaseSign * atom.ATP[12];
  out.dPhase[Slot(12)] = phaseSign;
  return out;
}

}  // namespace corvinet
