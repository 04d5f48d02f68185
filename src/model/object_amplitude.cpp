// Amplitude of a finite scattering object (shell, sphere, cylinder, boxes, ellipsoids) standing at
// an atom site, with its derivatives in the object's parameters (atom slots 19 to 32).
#include "model/object_amplitude.h"

#include <algorithm>
#include <cmath>

namespace corvinet {

namespace {

constexpr double kFourPi = 12.56637;

// Index of slot s among the object parameters.
constexpr int P(int slot) {
  return slot - kFirstObjectSlot;
}

// The angles of the scattering direction in the object's frame.
struct Direction {
  double sinT = 0.0, cosT = 1.0;  // polar angle from z
  double sinP = 0.0, cosP = 1.0;  // azimuth from x
};

Direction DirectionOf(const std::array<float, 3>& d) {
  Direction a;
  const double r = std::sqrt(static_cast<double>(d[0]) * d[0] + static_cast<double>(d[1]) * d[1]);
  const double n = std::sqrt(r * r + static_cast<double>(d[2]) * d[2]);
  if (n < kObjectCutoff) return a;
  a.sinT = r / n;
  a.cosT = d[2] / n;
  if (r >= kObjectCutoff) {
    a.cosP = d[0] / r;
    a.sinP = d[1] / r;
  }
  return a;
}

// sin(x)/x, 1 at x = 0.
double Sinc(double x) {
  return std::fabs(x) < kObjectCutoff ? 1.0 : std::sin(x) / x;
}

// 3 j1(x)/x and its slope -3 j2(x)/x.
double SphereSlope(double x) {
  if (std::fabs(x) < kObjectCutoff) return 0.0;
  return -3.0 * std::sph_bessel(2u, std::fabs(x)) / x;
}

// The sphere whose density falls as 1 - (r/R)^2: 15 j2(x)/x^2, and its slope -15 j3(x)/x^2.
double ParabolicSphere(double x) {
  if (std::fabs(x) < kObjectCutoff) return 1.0;
  return 15.0 * std::sph_bessel(2u, std::fabs(x)) / (x * x);
}

double ParabolicSphereSlope(double x) {
  if (std::fabs(x) < kObjectCutoff) return 0.0;
  return -15.0 * std::sph_bessel(3u, std::fabs(x)) / (x * x) * (x < 0.0 ? -1.0 : 1.0);
}

ObjectAmplitudeValue ThinShell(const Table1<float, DimensionLimits::NAT_P>& p, double q,
                               bool derive) {
  const double R = p[19], w = p[20];
  const double x = q * R;
  ObjectAmplitudeValue v;
  v.O = static_cast<float>(w * Sinc(x));
  if (!derive) return v;
  // d(sin x/x)/dx = -j1(x).
  const double slope = std::fabs(x) < kObjectCutoff ? 0.0 : -std::sph_bessel(1u, std::fabs(x));
  v.d[P(19)] = static_cast<float>(w * slope * q * (x < 0.0 ? -1.0 : 1.0));
  v.d[P(20)] = static_cast<float>(Sinc(x));
  return v;
}

// Order 2 is the sphere of parabolic density; every other order the uniform sphere.
ObjectAmplitudeValue SphereFamily(const Table1<float, DimensionLimits::NAT_P>& p, double q,
                                  bool derive) {
  const double R = p[19], w = p[20];
  const long order = std::lround(p[21]);
  const double x = q * R;
  const bool parabolic = order == 2;
  const double E = parabolic ? ParabolicSphere(x) : SphereAmplitude(x);
  ObjectAmplitudeValue v;
  v.O = static_cast<float>(w * E);
  if (!derive) return v;
  const double slope = parabolic ? ParabolicSphereSlope(x) : SphereSlope(x);
  v.d[P(19)] = static_cast<float>(w * slope * q);
  v.d[P(20)] = static_cast<float>(E);
  return v;
}

// 2 J1(x)/x and its slope -2 J2(x)/x.
double DiscAmplitude(double x) {
  if (std::fabs(x) < kObjectCutoff) return 1.0;
  return 2.0 * std::cyl_bessel_j(1.0, std::fabs(x)) / std::fabs(x);
}

double DiscSlope(double x) {
  if (std::fabs(x) < kObjectCutoff) return 0.0;
  return -2.0 * std::cyl_bessel_j(2.0, std::fabs(x)) / x;
}

// pi L (w1 R1^2 g(x1) + w2 R2^2 g(x2)) sin(y)/y, with g = 2 J1(x)/x,
// x = q R sin(Theta) and y = q L cos(Theta): the form (4 pi/q^2) sin(y)/sin(2 Theta)
// (w1 R1 J1(x1) + w2 R2 J1(x2)) written so that it holds its limit where q or
// sin(2 Theta) vanishes.
ObjectAmplitudeValue Cylinder(const Table1<float, DimensionLimits::NAT_P>& p, double q,
                              const Direction& a, bool derive) {
  constexpr double kPi = kFourPi / 4.0;
  const double R[2] = {p[19], p[20]}, L = p[21], w[2] = {p[22], p[23]};
  const double y = q * L * a.cosT;
  const double axial = Sinc(y);
  ObjectAmplitudeValue v;
  double sum = 0.0;
  for (int b = 0; b < 2; ++b) {
    const double x = q * R[b] * a.sinT;
    const double g = DiscAmplitude(x);
    sum += w[b] * R[b] * R[b] * g;
    if (!derive) continue;
    v.d[P(19) + b] = static_cast<float>(kPi * L * axial * w[b] *
                                        (2.0 * R[b] * g + R[b] * R[b] * DiscSlope(x) * q * a.sinT));
    v.d[P(22) + b] = static_cast<float>(kPi * L * axial * R[b] * R[b] * g);
  }
  v.O = static_cast<float>(kPi * L * axial * sum);
  // d(L sin(y)/y)/dL = cos(y).
  if (derive) v.d[P(21)] = static_cast<float>(kPi * std::cos(y) * sum);
  return v;
}

// One box of half-edges e[0..2]: 16 sinA sinB sinC / D, with A = a q sinT cosP,
// B = b q sinT sinP, C = c q cosT and D = sinT^2 q^3 cosT sin(2P); where D
// vanishes, 8abc times the product of sin(X)/X, each 1 where its X vanishes.
// The slopes in the three edges go to `slope`.
double BoxAmplitude(const double e[3], double q, const Direction& a, double slope[3]) {
  slope[0] = slope[1] = slope[2] = 0.0;
  for (int i = 0; i < 3; ++i) {
    if (std::fabs(e[i]) < kObjectCutoff) return 1.0;
  }
  const double u[3] = {q * a.sinT * a.cosP, q * a.sinT * a.sinP, q * a.cosT};
  double X[3], s[3];
  for (int i = 0; i < 3; ++i) {
    X[i] = e[i] * u[i];
    s[i] = Sinc(X[i]);
  }
  // d(e sin(X)/X)/de = cos(X) for X = e u.
  slope[0] = 8.0 * e[1] * e[2] * std::cos(X[0]) * s[1] * s[2];
  slope[1] = 8.0 * e[0] * e[2] * s[0] * std::cos(X[1]) * s[2];
  slope[2] = 8.0 * e[0] * e[1] * s[0] * s[1] * std::cos(X[2]);
  const double D = a.sinT * a.sinT * q * q * q * a.cosT * 2.0 * a.sinP * a.cosP;
  if (std::fabs(D) >= kObjectCutoff) {
    return 16.0 * std::sin(X[0]) * std::sin(X[1]) * std::sin(X[2]) / D;
  }
  return 8.0 * e[0] * e[1] * e[2] * s[0] * s[1] * s[2];
}

ObjectAmplitudeValue Parallelepipeds(const Table1<float, DimensionLimits::NAT_P>& p, double q,
                                     const Direction& a, bool derive) {
  ObjectAmplitudeValue v;
  double sum = 0.0;
  for (int b = 0; b < 2; ++b) {
    const double e[3] = {p[19 + 3 * b], p[20 + 3 * b], p[21 + 3 * b]};
    const double w = p[25 + b];
    double slope[3];
    const double box = BoxAmplitude(e, q, a, slope);
    sum += w * box;
    if (!derive) continue;
    for (int i = 0; i < 3; ++i) v.d[P(19) + 3 * b + i] = static_cast<float>(w * slope[i]);
    v.d[P(25) + b] = static_cast<float>(box);
  }
  v.O = static_cast<float>(sum);
  return v;
}

// Three ellipsoids of revolution about z with semi-axes R and nu R:
// x = q R sqrt(sin^2 Theta + (nu cos Theta)^2).
ObjectAmplitudeValue Ellipsoids(const Table1<float, DimensionLimits::NAT_P>& p, double q,
                                const Direction& a, bool derive) {
  const double nu = p[22];
  const double S = std::sqrt(a.sinT * a.sinT + nu * nu * a.cosT * a.cosT);
  ObjectAmplitudeValue v;
  double sum = 0.0, dNu = 0.0;
  for (int b = 0; b < 3; ++b) {
    const double R = p[19 + b], w = p[23 + b];
    const double x = q * R * S;
    const double E = SphereAmplitude(x);
    sum += w * E;
    if (!derive) continue;
    const double slope = SphereSlope(x);
    v.d[P(19) + b] = static_cast<float>(w * slope * q * S);
    v.d[P(23) + b] = static_cast<float>(E);
    if (S >= kObjectCutoff) dNu += w * slope * q * R * nu * a.cosT * a.cosT / S;
  }
  v.O = static_cast<float>(sum);
  if (derive) v.d[P(22)] = static_cast<float>(dNu);
  return v;
}

}  // namespace

double SphereAmplitude(double x) {
  if (std::fabs(x) < kObjectCutoff) return 1.0;
  return 3.0 * std::sph_bessel(1u, std::fabs(x)) / std::fabs(x);
}

ObjectShape ObjectShapeOf(std::string_view label4) {
  if (label4 == "SPHS") return ObjectShape::ThinShell;
  if (label4 == "SPHE") return ObjectShape::Sphere;
  if (label4 == "CYLI") return ObjectShape::Cylinder;
  if (label4 == "PARA") return ObjectShape::Parallelepipeds;
  return ObjectShape::Ellipsoids;
}

ObjectAmplitudeValue ObjectAmplitude(ObjectShape shape,
                                     const Table1<float, DimensionLimits::NAT_P>& ATP, float s2,
                                     const std::array<float, 3>& direction, bool needDerivatives) {
  const double q = kFourPi * std::sqrt(std::max(0.0f, s2));
  switch (shape) {
    case ObjectShape::ThinShell:
      return ThinShell(ATP, q, needDerivatives);
    case ObjectShape::Sphere:
      return SphereFamily(ATP, q, needDerivatives);
    case ObjectShape::Cylinder:
      return Cylinder(ATP, q, DirectionOf(direction), needDerivatives);
    case ObjectShape::Parallelepipeds:
      return Parallelepipeds(ATP, q, DirectionOf(direction), needDerivatives);
    case ObjectShape::Ellipsoids:
      break;
  }
  return Ellipsoids(ATP, q, DirectionOf(direction), needDerivatives);
}

}  // namespace corvinet
