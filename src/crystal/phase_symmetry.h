// Symmetry of a phase at reading: symbol decoded, operator lines read, report written.
#pragma once

#include <string_view>

#include "records/job.h"
#include "records/space_group.h"

namespace corvinet {

// Shows the console lines of a symmetry operation and, when it failed, its
// stop box.
void ShowSymmetryMessages(Job& job, const SymmetryMessages& messages);

// Reads what follows the space-group line of phase k in the control file:
// with Isy non-zero the line "!Nsym Cen Laue MagMat" (NSYM, ICENT, LAUE,
// NMAGM) and the operators, numeric (Isy > 0) or as text (Isy < 0), each with
// its magnetic matrices; with Isy 0, for a |Jbt| 10 phase with magnetic
// symmetry, the line of time-reversal signs. Bad input stops the run.
void ReadOperatorLines(Job& job, int k);

// Writes the symmetry report of phase k on .out, headed by `banner` (the
// line of the symbol) when the operators come from the symbol; and the
// operator listing on .sym when the run asks for it (JSY 1).
void SymmetryReport(Job& job, int k, std::string_view banner);

// The symmetry of phase k as the phase block builds it: the symbol decoded
// when Isy is 0, the operator lines and the report for |Jbt| other than 2 and
// 3, and the symbol decoded after operator lines as well when a contribution
// generates its reflections (Irf <= 0 and not -4).
void BuildPhaseSymmetry(Job& job, int k);

}  // namespace corvinet
