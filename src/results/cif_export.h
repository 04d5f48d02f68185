// The CIF of a refined phase: cell, symmetry, atoms with standard uncertainties, the
// reliability of the fit, and the powder data (profile points and reflections).
#pragma once

#include <vector>

#include "records/job.h"

namespace corvinet {

// One reflection of the powder block.
struct CifReflection {
  int h = 0, k = 0, l = 0;
  int multiplicity = 0;
  float d = 0.0f;         // spacing (A)
  float position = 0.0f;  // in the abscissa unit of the pattern
  float Iobs = 0.0f, Icalc = 0.0f;
  float F2calc = 0.0f;  // |F|^2 of the whole cell
};

// The Bragg factors of the phase, as the final report gives them (%).
struct CifPhaseFactors {
  float RB = 0.0f;
  float RF = 0.0f;
};

// Writes <job>_<phase>.cif (with the pattern suffix in a multi-pattern run) for phase f in
// pattern ip, with the values after the last shift.
void WritePhaseCif(Job& job, int ip, int f, const CifPhaseFactors& factors,
                   const std::vector<CifReflection>& reflections);

// Whether the final report writes a CIF of phase f in pattern ip: a phase with a structure
// in a pattern with observations.
bool WritesPhaseCif(const Job& job, int ip, int f);

}  // namespace corvinet
