// Amplitude of a finite scattering object (shell, sphere, cylinder, boxes, ellipsoids) standing at
// an atom site, with its derivatives in the object's parameters (atom slots 19 to 32).
#pragma once

#include <array>
#include <string_view>

#include "records/dimension_limits.h"
#include "records/table1.h"

namespace corvinet {

// The bodies an object label selects. SASH, TORE and FUD2..FUD4 have no body of their own and
// take the ellipsoids.
enum class ObjectShape {
  ThinShell,        // SPHS
  Sphere,           // SPHE
  Cylinder,         // CYLI
  Parallelepipeds,  // PARA
  Ellipsoids,       // ELLI and the rest
};

// The shape of one of the ten object labels (any other label gives the ellipsoids, as the last
// branch of the amplitude does).
ObjectShape ObjectShapeOf(std::string_view label4);

// Number of object parameters: slots 19 to 32 of the atom.
inline constexpr int kObjectParameters = 14;
inline constexpr int kFirstObjectSlot = 19;

// Denominators below this are replaced by the limit of their form.
inline constexpr double kObjectCutoff = 1.0e-8;

// O and dO/d(slot 19 + k) for k = 0..13.
struct ObjectAmplitudeValue {
  float O = 1.0f;
  std::array<float, kObjectParameters> d{};
};

// The amplitude of an object with parameters `ATP` (slots 19..32 read) at
// s2 = (sin(theta)/lambda)^2, for a scattering vector whose unit direction in
// the object's frame is `direction` (the Cartesian frame of the cell: x along
// a, y in the ab plane, z along c*). The derivatives are filled when
// `needDerivatives`.
ObjectAmplitudeValue ObjectAmplitude(ObjectShape shape,
                                     const Table1<float, DimensionLimits::NAT_P>& ATP, float s2,
                                     const std::array<float, 3>& direction, bool needDerivatives);

// 3(sin x - x cos x)/x^3, the amplitude of a uniform sphere, 1 at x = 0.
double SphereAmplitude(double x);

}  // namespace corvinet
