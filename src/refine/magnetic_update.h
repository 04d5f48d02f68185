// The update of the moment slots of a magnetic phase: angles brought back into range, the norm of
// each moment.
#pragma once

#include "records/job.h"
#include "records/phase.h"
#include "refine/update_pass.h"

namespace corvinet {

// Moments given as modulus and two angles: Jbt -1 or -10.
bool UsesSphericalMoments(const Phase& phase);

// Angles of the moment slots back into one turn (value - 360 trunc(value/360)):
// slots 7, 8, 10, 11 of a spherical phase, slots 7 and 9 to 12 with Jbt 5;
// the magnetic phase of slot 12 (Jbt not 5) loses its integer part.
void ReduceMomentAngles(const Phase& phase, AtomSite& atom);

// The norm of a moment of components m along the cell axes, with the cell
// angles of `cell`: M^2 = sum m_i m_j cos(angle_ij); its sigma from the
// quadratic form of (m_i sigma_i). A square at or below 0 or a negative
// variance is reported by `warned`; then both are taken in absolute value.
// The square is kept at 1.0E-10 at least.
struct MomentNorm {
  float moment = 0.0f;
  float sigma = 0.0f;
  bool warned = false;
};
MomentNorm MomentNormOf(const float (&m)[3], const float (&sigma)[3], const Table1<float, 6>& cell);

// The moment slots 6 to 12 of every atom of a magnetic phase, with R_at;
// the angles reduced, the norms printed.
void UpdateMagneticMoments(Job& job, int phase, const UpdatePass& pass);

}  // namespace corvinet
