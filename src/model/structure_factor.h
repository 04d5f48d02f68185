// Squared structure factor of a reflection from the atoms of a crystal phase, with its derivatives.
#pragma once

#include <array>

#include "records/dimension_limits.h"
#include "records/job.h"

namespace corvinet {

// Per-atom sums kept between the operator loop and the derivative stage.
struct AtomSums {
  float w = 0.0f;                // f Occ E
  float wpp = 0.0f;              // f'' Occ E
  float A = 0.0f;                // sum of T cos(phi) over the operators
  float B = 0.0f;                // sum of T sin(phi)
  std::array<float, 3> posS{};   // sum of h'_j T sin(phi)
  std::array<float, 3> posC{};   // sum of h'_j T cos(phi)
  std::array<float, 6> betaC{};  // sums of h'_a h'_b T cos(phi): 11 22 33 12 13 23
  std::array<float, 6> betaS{};  // the same with sin(phi)
};

// The reflection as seen by one operator: h' = hR, the products of its
// components for the anisotropic factor (11 22 33 12 13 23), and h.t.
struct OperatorTerms {
  std::array<float, 3> hp{};
  std::array<float, 6> quad{};
  float ht = 0.0f;
};

// Scratch of the evaluation, one row per operator and per atom of the run;
// held by the caller so that nothing is allocated per reflection.
struct StructureFactorScratch {
  Table1<OperatorTerms, DimensionLimits::NEQV> operators;
  Table1<AtomSums, DimensionLimits::NATS> atoms;
};

// What one evaluation needs besides the atoms.
struct StructureFactorRequest {
  int pattern = 1;
  int phase = 1;
  int nSym = 1;              // operators used: no centre, no centring translations
  int nAtoms = 0;            // atoms of the phase
  int atomOffset = 0;        // atoms of the phases before it
  int acentric = 1;          // 1 when the phase has no inversion at the origin
  std::array<float, 3> h{};  // indices, shifted by the propagation vector if any
  float s2 = 0.0f;           // (sin(theta)/lambda)^2
};

// F^2 = A^2 + B^2 + A''^2 + B''^2 of the reflection; stores A' and B' (or
// adds the stored partial ones for lists that carry them) and, when the
// pattern writes Fourier files, the phase angle. When `dF2` is not null the
// derivatives of F^2 are added to dF2[1..fitted] by the atoms' codes.
float EvaluateStructureFactor(Job& job, const StructureFactorRequest& q, Reflection& r,
                              StructureFactorScratch& scratch, float* dF2, int fitted);

}  // namespace corvinet
