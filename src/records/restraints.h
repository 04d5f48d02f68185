// Soft restraints of a phase: wanted distances between atoms and wanted moments, each with a sigma.
#pragma once

#include <string>

#include "records/dimension_limits.h"
#include "records/table1.h"

namespace corvinet {

// A wanted distance between atom Atom1 and an image of atom Atom2.
struct DistanceRestraint {
  std::string Atom1;   // label of the first atom, 4 characters
  std::string Atom2;   // label of the second atom, 4 characters
  int ITnum = 1;       // rotation of IROT applied to the second atom; negative: with inversion
  Table1<float, 3> T;  // translation added after the rotation
  float Dist = 0.0f;   // wanted distance in angstroms
  float Sigma = 0.0f;  // its standard error
  float Dcalc = 0.0f;  // distance of the last cycle
};

// A wanted moment of the magnetic atoms whose labels begin with MomentAtom.
struct MomentRestraint {
  std::string MomentAtom;    // first two letters of the atom labels
  float Moment = 0.0f;       // wanted moment in Bohr magnetons
  float MomentSigma = 0.0f;  // its standard error
};

// The sums of one kind of restraint of a phase after a cycle.
struct RestraintSums {
  int count = 0;        // restraints applied
  float SumD2 = 0.0f;   // after the cycle: root mean square of wanted - obtained
  float SumWD2 = 0.0f;  // after the cycle: mean of w (wanted - obtained)^2
};

// The obtained moment of one atom under a moment restraint, for the report.
struct MomentRestraintResult {
  int atom = 0;           // atom number in the table of all phases
  int restraint = 0;      // moment restraint applied to it
  float obtained = 0.0f;  // moment of the last cycle
};

// The restraints of one phase, as read, and their state after the last cycle.
struct PhaseRestraints {
  Table1<DistanceRestraint, DimensionLimits::NCONST> distances;          // 1..Dis
  Table1<MomentRestraint, DimensionLimits::NCONST> moments;              // 1..Mom
  RestraintSums distanceSums;                                            // of the distances
  RestraintSums momentSums;                                              // of the moments
  Table1<MomentRestraintResult, DimensionLimits::NCONST> momentResults;  // 1..momentSums.count
};

}  // namespace corvinet
