// Squared magnetic structure factor of a reflection: the moments summed over the atoms and the
// magnetic operators, projected on the plane normal to the scattering vector, with derivatives.
#pragma once

#include <span>

#include "model/magnetic_moments.h"
#include "records/chemical_species.h"
#include "records/dimension_limits.h"
#include "records/phase.h"
#include "records/space_group.h"
#include "records/table1.h"

namespace corvinet {

// Magnetic scattering amplitude of one Bohr magneton, gamma_n r_e / 2, in 1E-12 cm.
constexpr double kMagneticAmplitude = 0.26954;

// What the evaluation reads of the phase in one pattern.
struct MagneticInputs {
  const SpaceGroup& group;          // operators and their magnetic matrices
  std::span<const AtomSite> atoms;  // the atoms of the phase, in order
  const Table1<ChemicalSpecies, DimensionLimits::N_SPE>& species;  // of the phase in the pattern
  int NSCAT = 0;  // of the pattern: -n when its first n species are tables
  const MagneticCell& cell;
};

// What one evaluation needs of the reflection.
struct MagneticRequest {
  int nSym = 1;           // operators used
  bool acentric = true;   // no inversion at the origin among the implied operators
  int inversionSign = 1;  // centric phases: -1 when the implied inversion reverses moments
  RealVector H{};         // h + k (or h - k) of the reflection
  double s2 = 0.0;        // (sin(theta)/lambda)^2 of H
  int vector = 0;         // |vector number| of the reflection, 0 for none
  MomentRequest moment;   // form of the moments, Fact, and which of k and -k
  RealVector dS2dH{};     // d s2 / d H, for the slopes in H
};

// Per-operator terms and per-atom sums, held by the caller.
struct MagneticOperatorTerms {
  RealVector hp{};               // H R
  std::array<double, 6> quad{};  // products of hp for the anisotropic factor
  double ht = 0.0;               // H.t
};
struct MagneticAtomSums {
  bool bears = false;                        // the atom contributes to this reflection
  double w = 0.0;                            // p Fm Occ exp(-B s2)
  MomentComponent moment;                    // its component for this reflection
  ComplexVector F{};                         // its contribution w sum tau M S
  std::array<ComplexVector, 3> C{};          // sum tau M, column by column
  std::array<ComplexVector, 3> dPosition{};  // d F / d x_c
  ComplexVector dPhase{};                    // d F / d (phase in cycles)
  std::array<ComplexVector, 6> dBeta{};      // d F / d beta_q
  std::array<ComplexVector, 3> dH{};         // d F / d H_i through the phases and betas
};
struct MagneticScratch {
  Table1<MagneticOperatorTerms, DimensionLimits::NEQV> operators;
  // The moment matrix of each set and operator, (set, operator).
  Table2<std::array<RealVector, 3>, DimensionLimits::NMAGM, DimensionLimits::NEQV> matrices;
  Table1<MagneticAtomSums, DimensionLimits::NATS> atoms;
};

// The moment matrix of operator n for an atom that uses matrix set m: the
// magnetic rotation of the operator, or the identity when the phase has no
// magnetic matrices.
std::array<RealVector, 3> MomentMatrix(const SpaceGroup& g, int m, int n);

// F2 of the interaction vector: |F|^2 - |e.F|^2, with F summed in components
// along the unit axis vectors, in double precision. When `dF2` is not null
// the derivatives of F2 are added to dF2[0..fitted-1] by the atoms' codes;
// when `dF2dH` is not null it receives dF2/dH, the slope of F2 in the
// vector h + k (phases, displacements, form factors and projection alike),
// which is its slope in the components of k.
double EvaluateMagneticStructureFactor(const MagneticInputs& in, const MagneticRequest& q,
                                       MagneticScratch& scratch, float* dF2, int fitted,
                                       RealVector* dF2dH = nullptr);

// The magnetic form factor of a species at s2: A exp(-a s2) + B exp(-b s2) +
// C exp(-c s2) + D, or its table when the pattern gives it as one.
double MagneticFormFactor(int NSCAT, const ChemicalSpecies& sp, int number, double s2);

}  // namespace corvinet
