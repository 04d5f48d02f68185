// Squared structure factor of a reflection from the atoms of a crystal phase, with its derivatives.
#pragma once

#include <array>
#include <span>

#include "model/object_amplitude.h"
#include "records/chemical_species.h"
#include "records/dimension_limits.h"
#include "records/phase.h"
#include "records/reflection.h"
#include "records/space_group.h"

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
  // Form-factor objects: sums of dO/dp_k T cos(phi) and T sin(phi) for slots 19..32.
  std::array<float, kObjectParameters> objectC{};
  std::array<float, kObjectParameters> objectS{};
};

// The reflection as seen by one operator: h' = hR, the products of its
// components for the anisotropic factor (11 22 33 12 13 23), and h.t.
struct OperatorTerms {
  std::array<float, 3> hp{};
  std::array<float, 6> quad{};
  float ht = 0.0f;
  std::array<float, 3> direction{};  // unit vector of h' in the Cartesian frame of the cell
};

// Scratch of the evaluation, one row per operator and per atom of the run;
// held by the caller so that nothing is allocated per reflection.
struct StructureFactorScratch {
  Table1<OperatorTerms, DimensionLimits::NEQV> operators;
  Table1<AtomSums, DimensionLimits::NATS> atoms;
};

// What the evaluation reads of the phase in one pattern.
struct StructureFactorInputs {
  const SpaceGroup& group;          // operators of the phase
  std::span<const AtomSite> atoms;  // the atoms of the phase, in order
  const Table1<ChemicalSpecies, DimensionLimits::N_SPE>& species;  // of the phase in the pattern
  int NSCAT = 0;  // of the pattern: -n when its first n species are given as tables
  int Irf = 0;    // of the phase in the pattern: 3 and -4 lists carry partial A' and B'
  int JFOU = 0;   // of the pattern: non-zero when Fourier files are written
  // Cartesian to fractional matrix of the cell, for objects that have a
  // direction; null when the phase has none.
  const Table2<double, 3, 3>* fractional = nullptr;
};

// What one evaluation needs of the reflection.
struct StructureFactorRequest {
  int nSym = 1;              // operators used: no centre, no centring translations
  int acentric = 1;          // 1 when the phase has no inversion at the origin
  std::array<float, 3> h{};  // indices, shifted by the propagation vector if any
  float s2 = 0.0f;           // (sin(theta)/lambda)^2
};

// How an evaluation ended.
enum class StructureFactorStatus {
  Evaluated,
};

struct StructureFactorValue {
  StructureFactorStatus status = StructureFactorStatus::Evaluated;
  float F2 = 0.0f;
};

// Form factor f (with f') and f'' of species `sp`, number `number` of the
// phase, at s2 = (sin(theta)/lambda)^2: from its table of points when the
// pattern gives tables (NSCAT < 0), otherwise from its coefficients.
void SpeciesFormFactor(int NSCAT, const ChemicalSpecies& sp, int number, float s2, float& f,
                       float& fpp);

// F^2 = A^2 + B^2 + A''^2 + B''^2 of the reflection; stores A' and B' (or
// adds the stored partial ones for lists that carry them) and, when the
// pattern writes Fourier files, the phase angle. When `dF2` is not null the
// derivatives of F^2 are added to dF2[1..fitted] by the atoms' codes. An atom
// whose species is a form-factor object (a negative number) scatters with the
// object's amplitude in place of a form factor.
StructureFactorValue EvaluateStructureFactor(const StructureFactorInputs& in,
                                             const StructureFactorRequest& q, Reflection& r,
                                             StructureFactorScratch& scratch, float* dF2,
                                             int fitted);

}  // namespace corvinet
