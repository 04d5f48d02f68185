// The report of the atoms that rigid-body groups place: their positions and displacements with
// the standard deviations that the refined group parameters give them.
#pragma once

#include <string>
#include <vector>

#include "records/job.h"

namespace corvinet {

// The standard deviation of field `field` (0..10) of placed atom `atom` (from
// 1) of phase k: the slopes of the field in the refined slots through the
// covariance matrix held in the normal matrix after the solution.
double PlacedFieldSigma(const Job& job, int k, int atom, int field);

// The lines of the placed atoms of every group of phase k: label, species,
// x, y, z and Biso with their sigmas, and for TLS groups the six betas.
std::vector<std::string> RigidAtomLines(const Job& job, int k);

// The principal axes of T and L of every TLS group of phase k: their
// eigenvalues (100 x A^2, degrees^2) and unit eigenvectors in the Cartesian
// frame of the cell; no line when the phase has no TLS group.
std::vector<std::string> DiagonaliseTl(const Job& job, int k);

}  // namespace corvinet
