// The reading and checking of the rigid-body groups of a user-model phase, and their report.
#pragma once

#include "records/job.h"

namespace corvinet {

// Gathers the groups of phase k (|Jbt| 4) from its lines: a group line
// (species RBG) opens each group, a TLS line adds its L and S, and an atom
// line joins the group its slot 6 names. Checks the option, the satellites,
// the labels and the chains, writes the report of the groups (options, masses,
// centres of mass, chain coordinates) and places the atoms. Stops with the
// words of the failing check.
void BuildRigidBodyGroups(Job& job, int k);

}  // namespace corvinet
