// Tests of the amplitudes of form-factor objects: their limits, their cut-off branches, their
// values against forms worked out independently here, and their slopes against finite differences.
#include "model/object_amplitude.h"

#include <gtest/gtest.h>

#include <cmath>

namespace corvinet {
namespace {

constexpr double kPi = 3.14159265358979;

using Slots = Table1<float, DimensionLimits::NAT_P>;

// q = 4 pi sin(theta)/lambda of s2.
double QOf(float s2) {
  return 4.0 * kPi * std::sqrt(static_cast<double>(s2));
}

// The unit vector of polar angle t and azimuth p (radians).
std::array<float, 3> Along(double t, double p) {
  return {static_cast<float>(std::sin(t) * std::cos(p)),
          static_cast<float>(std::sin(t) * std::sin(p)), static_cast<float>(std::cos(t))};
}

Slots Params(std::initializer_list<float> values) {
  Slots p;
  int s = kFirstObjectSlot;
  for (float v : values) p[s++] = v;
  return p;
}

TEST(ObjectAmplitude, AtZeroQEveryFormTakesItsGuardedLimit) {
  const std::array<float, 3> z{0.0f, 0.0f, 1.0f};
  EXPECT_FLOAT_EQ(ObjectAmplitude(ObjectShape::ThinShell, Params({3.0f, 2.0f}), 0.0f, z, true).O,
                  2.0f);
  EXPECT_FLOAT_EQ(ObjectAmplitude(ObjectShape::Sphere, Params({3.0f, 1.5f, 1.0f}), 0.0f, z, true).O,
                  1.5f);
  EXPECT_FLOAT_EQ(ObjectAmplitude(ObjectShape::Sphere, Params({3.0f, 1.5f, 2.0f}), 0.0f, z, true).O,
                  1.5f);
  EXPECT_FLOAT_EQ(ObjectAmplitude(ObjectShape::Ellipsoids,
                                  Params({3.0f, 2.0f, 1.0f, 0.5f, 1.0f, 2.0f, 3.0f}), 0.0f, z, true)
                      .O,
                  6.0f);
  // Cylinder: pi L (w1 R1^2 + w2 R2^2); boxes: 8 a b c w per box.
  EXPECT_NEAR(
      ObjectAmplitude(ObjectShape::Cylinder, Params({2.0f, 1.0f, 3.0f, 1.0f, 0.5f}), 0.0f, z, true)
          .O,
      kPi * 3.0 * (4.0 + 0.5), 1e-4);
  EXPECT_NEAR(
      ObjectAmplitude(ObjectShape::Parallelepipeds,
                      Params({1.0f, 2.0f, 3.0f, 1.0f, 1.0f, 1.0f, 1.0f, 0.5f}), 0.0f, z, true)
          .O,
      8.0 * 6.0 + 0.5 * 8.0, 1e-4);
}

TEST(ObjectAmplitude, AParallelepipedWithAnEdgeBelowTheCutoffHasAmplitudeOne) {
  const Slots p = Params({1.0f, 0.0f, 3.0f, 5e-9f, 1.0f, 1.0f, 1.0f, 0.0f});
  const float O = ObjectAmplitude(ObjectShape::Parallelepipeds, p, 0.05f, Along(0.7, 0.4), true).O;
  EXPECT_FLOAT_EQ(O, 1.0f);
}

TEST(ObjectAmplitude, AParallelepipedAlongACellAxisTakesTheLimitBranch) {
  // Along z, sin(Theta) = 0 and D vanishes: only c q cos(Theta) is left, 8 a b sin(cq)/q.
  const float s2 = 0.03f;
  const double q = QOf(s2);
  const Slots p = Params({1.0f, 2.0f, 1.5f, 1.0f, 1.0f, 1.0f, 1.0f, 0.0f});
  const float alongZ = ObjectAmplitude(ObjectShape::Parallelepipeds, p, s2, {0, 0, 1}, false).O;
  EXPECT_TRUE(std::isfinite(alongZ));
  EXPECT_NEAR(alongZ, 8.0 * 1.0 * 2.0 * std::sin(1.5 * q) / q, 1e-4);
  // Along x: 8 b c sin(a q)/q.
  const float alongX = ObjectAmplitude(ObjectShape::Parallelepipeds, p, s2, {1, 0, 0}, false).O;
  EXPECT_NEAR(alongX, 8.0 * 2.0 * 1.5 * std::sin(1.0 * q) / q, 1e-4);
  // Off every axis the general branch gives the product of three sin(X)/X.
  const double t = 0.8, f = 0.3;
  const double A = q * std::sin(t) * std::cos(f), B = 2 * q * std::sin(t) * std::sin(f),
               C = 1.5 * q * std::cos(t);
  const double expected = 8.0 * 3.0 * std::sin(A) / A * std::sin(B) / B * std::sin(C) / C;
  EXPECT_NEAR(ObjectAmplitude(ObjectShape::Parallelepipeds, p, s2, Along(t, f), false).O, expected,
              1e-4 * std::fabs(expected) + 1e-6);
}

TEST(ObjectAmplitude, ToreBehavesAsTheEllipsoidsSinceTheLabelSelectsNoOtherShape) {
  EXPECT_EQ(ObjectShapeOf("TORE"), ObjectShape::Ellipsoids);
  EXPECT_EQ(ObjectShapeOf("SASH"), ObjectShape::Ellipsoids);
  EXPECT_EQ(ObjectShapeOf("FUD3"), ObjectShape::Ellipsoids);
  EXPECT_EQ(ObjectShapeOf("ELLI"), ObjectShape::Ellipsoids);
  EXPECT_EQ(ObjectShapeOf("PARA"), ObjectShape::Parallelepipeds);
  const Slots p = Params({3.0f, 2.0f, 1.0f, 0.6f, 1.0f, 0.5f, 0.3f});
  const auto d = Along(0.9, 0.35);
  const ObjectAmplitudeValue tore = ObjectAmplitude(ObjectShapeOf("TORE"), p, 0.02f, d, true);
  const ObjectAmplitudeValue elli = ObjectAmplitude(ObjectShapeOf("ELLI"), p, 0.02f, d, true);
  EXPECT_EQ(tore.O, elli.O);
  EXPECT_EQ(tore.d, elli.d);
}

// The uniform sphere and the thin shell against their closed forms; the
// parabolic sphere against a numerical radial integral of (1 - r^2/R^2) sin(qr)/(qr) r^2.
TEST(ObjectAmplitude, SpheresAndShellsMatchTheirRadialIntegrals) {
  const float s2 = 0.02f;
  const double q = QOf(s2), R = 6.0;
  const double x = q * R;
  const std::array<float, 3> z{0, 0, 1};
  EXPECT_NEAR(ObjectAmplitude(ObjectShape::ThinShell, Params({6.0f, 1.0f}), s2, z, false).O,
              std::sin(x) / x, 1e-6);
  EXPECT_NEAR(ObjectAmplitude(ObjectShape::Sphere, Params({6.0f, 1.0f, 1.0f}), s2, z, false).O,
              3.0 * (std::sin(x) - x * std::cos(x)) / (x * x * x), 1e-6);
  double num = 0.0, den = 0.0;
  const int n = 20000;
  for (int i = 0; i < n; ++i) {
    const double r = (i + 0.5) * R / n;
    const double rho = 1.0 - r * r / (R * R);
    num += rho * std::sin(q * r) / (q * r) * r * r;
    den += rho * r * r;
  }
  EXPECT_NEAR(ObjectAmplitude(ObjectShape::Sphere, Params({6.0f, 1.0f, 2.0f}), s2, z, false).O,
              num / den, 1e-5);
}

TEST(ObjectAmplitude, TheCylinderMatchesItsAnalyticForm) {
  // (4 pi/q^2) sin(q L cos T)/sin(2T) (w1 R1 J1(x1) + w2 R2 J1(x2)), x = q R sin T.
  const float s2 = 0.015f;
  const double q = QOf(s2), t = 0.6;
  const Slots p = Params({2.0f, 3.5f, 4.0f, 1.0f, -0.4f});
  const double y = q * 4.0 * std::cos(t);
  double sum = 0.0;
  const double R[2] = {2.0, 3.5}, w[2] = {1.0, -0.4};
  for (int b = 0; b < 2; ++b) sum += w[b] * R[b] * std::cyl_bessel_j(1.0, q * R[b] * std::sin(t));
  const double expected = 4.0 * kPi / (q * q) * std::sin(y) / std::sin(2.0 * t) * sum;
  EXPECT_NEAR(ObjectAmplitude(ObjectShape::Cylinder, p, s2, Along(t, 1.1), false).O, expected,
              1e-5 * std::fabs(expected) + 1e-6);
}

TEST(ObjectAmplitude, EllipsoidsOfRevolutionMatchTheSphereFormOfTheirEffectiveRadius) {
  const float s2 = 0.01f;
  const double q = QOf(s2), t = 1.0, nu = 0.6;
  const Slots p = Params({5.0f, 3.0f, 1.0f, 0.6f, 1.0f, 0.5f, 0.25f});
  const double S = std::sqrt(std::sin(t) * std::sin(t) + nu * nu * std::cos(t) * std::cos(t));
  double expected = 0.0;
  const double R[3] = {5, 3, 1}, w[3] = {1, 0.5, 0.25};
  for (int b = 0; b < 3; ++b) {
    const double x = q * R[b] * S;
    expected += w[b] * 3.0 * (std::sin(x) - x * std::cos(x)) / (x * x * x);
  }
  EXPECT_NEAR(ObjectAmplitude(ObjectShape::Ellipsoids, p, s2, Along(t, 0.2), false).O, expected,
              1e-5);
}

// Every slope of every shape against central differences of the amplitude.
void ExpectSlopesMatch(ObjectShape shape, Slots p, int used, float s2,
                       const std::array<float, 3>& d) {
  const ObjectAmplitudeValue v = ObjectAmplitude(shape, p, s2, d, true);
  for (int k = 0; k < used; ++k) {
    float& x = p[kFirstObjectSlot + k];
    const float x0 = x;
    const float h = 1e-3f * std::max(1.0f, std::fabs(x0));
    x = x0 + h;
    const double up = ObjectAmplitude(shape, p, s2, d, false).O;
    x = x0 - h;
    const double down = ObjectAmplitude(shape, p, s2, d, false).O;
    x = x0;
    const double numeric = (up - down) / (2.0 * h);
    EXPECT_NEAR(v.d[static_cast<std::size_t>(k)], numeric, 2e-3 * std::fabs(numeric) + 2e-4)
        << "shape " << static_cast<int>(shape) << " slot " << kFirstObjectSlot + k;
  }
}

TEST(ObjectAmplitude, SlopesOfEveryShapeMatchFiniteDifferences) {
  const auto d = Along(0.9, 0.35);
  ExpectSlopesMatch(ObjectShape::ThinShell, Params({4.0f, 1.5f}), 2, 0.02f, d);
  ExpectSlopesMatch(ObjectShape::Sphere, Params({4.0f, 1.5f, 1.0f}), 2, 0.02f, d);
  ExpectSlopesMatch(ObjectShape::Sphere, Params({4.0f, 1.5f, 2.0f}), 2, 0.02f, d);
  ExpectSlopesMatch(ObjectShape::Cylinder, Params({2.0f, 3.0f, 2.5f, 1.0f, 0.5f}), 5, 0.02f, d);
  ExpectSlopesMatch(ObjectShape::Parallelepipeds,
                    Params({1.0f, 2.0f, 1.5f, 0.5f, 0.8f, 1.2f, 1.0f, 0.7f}), 8, 0.02f, d);
  ExpectSlopesMatch(ObjectShape::Ellipsoids, Params({3.0f, 2.0f, 1.0f, 0.6f, 1.0f, 0.5f, 0.3f}), 7,
                    0.02f, d);
}

}  // namespace
}  // namespace corvinet
