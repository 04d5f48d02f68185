// Soft restraints as extra observations of the normal equations: wanted distances between atoms and
// wanted magnetic moments, weighted by the global chi-square of the cycle.
#pragma once

#include <array>

#include "records/job.h"
#include "records/restraints.h"

namespace corvinet {

using Vector3 = std::array<double, 3>;

// A distance and the gradients of half its square with respect to the
// fractional coordinates of the two atoms.
struct DistanceGradient {
  double D = 0.0;   // distance in angstroms
  Vector3 gradA{};  // d(D^2/2)/d(xA)
  Vector3 gradB{};  // d(D^2/2)/d(xB), through the rotation
};

// The distance between xA and the image sign * IROT(|ITnum|) * xB + T of xB in
// the cell a, b, c, alpha, beta, gamma (degrees), with D^2 = Delta' G Delta,
// G the metric tensor and Delta = xA - image.
DistanceGradient DistanceAndGradient(const Vector3& xA, const Vector3& xB,
                                     const Table1<float, 6>& cell, int ITnum,
                                     const Table1<float, 3>& T);

// A moment and the gradient of the moment with respect to its three slots:
// Cartesian components along the unit cell axes (Jbt 1 and 10), or the
// modulus itself in slot 6 for the other magnetic kinds.
struct MomentGradient {
  double M = 0.0;  // moment in Bohr magnetons
  Vector3 dM{};    // dM/d(slot 6, 7, 8)
};
MomentGradient MomentAndGradient(const AtomSite& atom, int Jbt, const Table1<float, 6>& cell);

// True when some phase has distance or moment restraints.
bool HasRestraints(const Job& job);

// Adds the rows of every restraint of every phase to the sums of the normal
// equations (upper triangle), with the weight chi2 / sigma^2, and keeps the
// obtained values and the sums of each phase for the report.
void SlackConstraints(Job& job, float chi2);

// The cell of phase k used by its restraints: that of the first pattern it contributes to.
const Table1<float, 6>& RestraintCell(const Job& job, int k);

}  // namespace corvinet
