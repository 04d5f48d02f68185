// The results of the distance and moment restraints of a phase in the report of a cycle.
#pragma once

#include <string>
#include <vector>

#include "records/job.h"
#include "refine/update_pass.h"

namespace corvinet {

// The lines of the distance restraints of phase k: wanted, obtained, their
// difference in sigmas and the sigma of each, then the sums. Empty for a
// phase without distance restraints.
std::vector<std::string> DistanceRestraintLines(const Job& job, int k);

// The same for the moment restraints: one row per atom a restraint applied to.
std::vector<std::string> MomentRestraintLines(const Job& job, int k);

// Writes the lines of the distances or of the moments on the reports of the pass.
void ReportDistanceRestraints(Job& job, int k, const UpdatePass& pass);
void ReportMomentRestraints(Job& job, int k, const UpdatePass& pass);

}  // namespace corvinet
