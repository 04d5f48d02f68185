// The squared structure factors of a search trial: per-reflection terms computed once, atoms in
// contiguous arrays.
#pragma once

#include <vector>

#include "records/job.h"

namespace corvinet {

// The free values of a trial: x, y, z, Biso and Occ of each atom of the phase
// (five contiguous arrays) and the six group scales.
struct TrialValues {
  std::vector<float> x, y, z, B, occ;
  float scale[6] = {1.0f, 1.0f, 1.0f, 1.0f, 1.0f, 1.0f};
};

// What does not change between trials, for the first `count` observations
// of a phase: the operator terms h'R and h.t of each reflection, its s², the
// form factors of each atom, and the factor LpM Corr of each observation.
struct TrialKernel {
  int reflections = 0;
  int operators = 0;
  int atoms = 0;
  bool acentric = true;
  std::vector<float> hp;            // [(r*operators + n)*3 + j]
  std::vector<float> ht;            // [r*operators + n]
  std::vector<float> s2;            // [r]
  std::vector<float> f, fpp;        // [r*atoms + a]: f + f' and f''
  std::vector<unsigned char> uses;  // [a*operators + n]: operator n enters the sum of atom a
};

// The kernel of phase k in pattern ip for its first `count` observations.
TrialKernel BuildTrialKernel(const Job& job, int ip, int k, int count);

// The atom values of phase k as they stand.
TrialValues CurrentTrialValues(const Job& job, int ip, int k);

// F² of each reflection of the kernel for the values of a trial, into F2[0..reflections).
void TrialStructureFactors(const TrialKernel& kernel, const TrialValues& values, float* F2);

}  // namespace corvinet
