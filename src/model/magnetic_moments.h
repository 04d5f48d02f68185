// The Fourier component of an atom's moment for one reflection, from its moment slots in the
// Cartesian, spherical or conical form, with the derivatives with respect to those slots.
#pragma once

#include <array>
#include <complex>

#include "records/phase.h"
#include "records/table1.h"

namespace corvinet {

using Complex = std::complex<double>;
using ComplexVector = std::array<Complex, 3>;
using RealVector = std::array<double, 3>;

// The cell as the moments see it: moment components are taken along the unit
// vectors of the cell axes.
struct MagneticCell {
  RealVector length{};                          // a, b, c
  std::array<RealVector, 3> cosine{};           // cos of the angle between axes i and j
  std::array<RealVector, 3> cartesianToAxes{};  // Cartesian (a along x, b in xy) to axes
};

// From a, b, c, alpha, beta, gamma in degrees.
MagneticCell MagneticCellOf(const Table1<float, 6>& cellConstants);

// How the moment slots 6..12 of the atoms of a phase are read.
enum class MomentForm {
  Cartesian,  // Jbt 1, 10: Rx Ry Rz, Ix Iy Iz along the axes, MagPh in cycles
  Spherical,  // Jbt -1, -10: Rm Rphi Rtheta, Im Iphi Itheta in degrees, MagPh in cycles
  Conical,    // Jbt 5: moment, cone half-angle, phase in degrees; the cone axis of the first atom
};

MomentForm MomentFormOf(int Jbt);

// What one reflection asks of the moments.
struct MomentRequest {
  MomentForm form = MomentForm::Cartesian;
  double fact = 1.0;       // 0.5 for a vector not equivalent to its negative
  bool satellite = false;  // the reflection has a propagation vector
  bool conjugate = false;  // the reflection is of -k: the component is the conjugate one
};

// The number of moment slots, 6 to 12.
constexpr int kMomentSlots = 7;
constexpr int kFirstMomentSlot = 6;

// The component S (along the unit axis vectors) and the phase (in cycles) of
// an atom, and their derivatives with respect to slots 6..12: of the atom
// itself, except that the cone axis of a conical phase (slots 9 and 10) is
// that of the first atom of the phase.
struct MomentComponent {
  ComplexVector S{};
  double phase = 0.0;
  std::array<ComplexVector, kMomentSlots> dS{};
  std::array<double, kMomentSlots> dPhase{};
};

// `first` is the first atom of the phase, which holds the cone axis of a conical phase.
MomentComponent MomentComponentOf(const AtomSite& atom, const AtomSite& first,
                                  const MagneticCell& cell, const MomentRequest& q);

}  // namespace corvinet
