// Phase and atom records of the control file, with the codewords that tie parameters to refinement.
#pragma once

#include <cstdlib>
#include <string>

#include "records/cell_metric.h"
#include "records/chemical_species.h"
#include "records/codeword.h"
#include "records/dimension_limits.h"
#include "records/profile_code.h"
#include "records/restraints.h"
#include "records/space_group.h"
#include "records/table1.h"

namespace corvinet {

// What a phase is in one pattern: its contribution, profile parameters and cell.
struct PhasePattern {
  int Contribution = 0;   // 0 or 1
  int Irf = 0;            // source of the reflection list
  int Npr = 0;            // profile function: as typed while read, then its ProfileCode number
  int Jtyp = 0;           // job of the phase in this pattern
  Table1<float, 3> PREF;  // preferred orientation axis
  float Brind = 1.0f;     // Brindley term
  float Rmua = 0.0f;  // first R-mu term of the flags, kept as read; 1 for |Irf| 4 when not typed
  float Rmub = 0.0f;  // second R-mu term, kept as read
  float Rmuc = 0.0f;  // third R-mu term, kept as read
  int magneticPattern = 0;                        // the phase is magnetic in this pattern
  Table1<float, DimensionLimits::MPAR> PAR;       // profile parameters
  Table1<float, DimensionLimits::MPAR> PACtyped;  // their codes as typed
  Table1<Codeword, DimensionLimits::MPAR> PAC;    // decoded codes
  Table1<float, 6> CellConstants;                 // a, b, c, alpha, beta, gamma
  double cellVolume = 0.0;                        // volume of the cell
  int StrainModel = 0;                            // Strain-Model
  int SizeModel = 0;                              // Size-Model
  float prefLength2 = 0.0f;                       // quadratic form of PREF with the metric
  int laueWidthFlag = 0;                          // 1 or 2 by the Laue class of a generated list
  CellMetric metric;                              // metric of the cell as read
  // Species of the phase in this pattern; numbers continue those of earlier phases.
  Table1<ChemicalSpecies, DimensionLimits::N_SPE> species;  // species 1..speciesCount
  int speciesCount = 0;  // species in use, counted from the first of the pattern
  int objectCount = 0;   // species that are form-factor objects
};

// The profile function of a phase in a pattern, once the phase is read.
inline ProfileCode ProfileOf(const PhasePattern& c) {
  return ProfileCodeOf(c.Npr);
}

// A propagation vector with its codes.
struct PropagationVector {
  Table1<float, 3> KVEC;        // components of the vector
  Table1<float, 3> KCODEtyped;  // their codes as typed
  Table1<Codeword, 3> KCODE;    // decoded codes
  int halfVector = 0;           // 1 when 2K is integral
};

struct Phase {
  std::string PhaseTitle;        // at most 70 characters
  int Nat = 0;                   // number of atoms
  int Dis = 0;                   // distance restraints
  int Mom = 0;                   // moment restraints
  int Jbt = 0;                   // type of phase
  int Isy = 0;                   // 0: operators from the symbol
  int Str = 0;                   // generalized size and strain block
  int Furth = 0;                 // further parameters
  float ATZ = 0.0f;              // weight term of the phase
  int Nvk = 0;                   // propagation vectors
  char addMinusK = 'N';          // 'Y' when Nvk was typed negative
  int More = 0;                  // the further flags line follows
  int Jvi = 0;                   // structure-view output: 1 Schakal, 2 Struplo, 11 overlap clusters
  int Jdi = 0;                   // distance output and the atom-coordinate file
  int Hel = 0;                   // helical magnetic structure
  int Sol = 0;                   // hkl-dependent asymmetry and shift line follows
  int MomOut = 0;                // moment output (Mom)
  int Ter = 0;                   // output flag Ter of the phase, kept and written back
  std::string SpaceGroupSymbol;  // at most 20 characters
  std::string SpaceGroupRemark;  // text behind the symbol, at most 10 characters
  int magneticSymmetry = 0;      // "Mag" in the remark of a |Jbt| 10 phase
  int refinedAtomParameters = 0;  // parameter numbers found among the atom codes
  bool cellHeldWarned = false;    // the cell was held to its Laue class and that was said
  int atomOffset = 0;             // atoms of the phases before this one
  int phaseAtomKind = 0;          // 0 plain, 1 anisotropic, 2 imaginary moments, 3 form factors
  Table1<PhasePattern, DimensionLimits::NPATT> pat;  // the phase in each pattern
  SpaceGroup group;                                  // symmetry of the phase
  int hasSymbol = 0;                                 // the group was built from SpaceGroupSymbol

  // Profile models of the phase (the last contribution read wins).
  int ModA = 0;                    // model of the hkl-dependent asymmetry
  int ModS = 0;                    // model of the hkl-dependent shift
  Table1<float, 3> ShiftAxis;      // axis of the shift model
  Table1<float, 3> SizeAxis;       // platelet or needle axis of the size model
  Table1<float, 3> StrainAxis;     // axis of the microstrain model
  float shiftAxisLength2 = 0.0f;   // quadratic form of ShiftAxis with the metric
  float sizeAxisLength2 = 0.0f;    // quadratic form of SizeAxis with the metric
  float strainAxisLength2 = 0.0f;  // quadratic form of StrainAxis with the metric
  Table1<PropagationVector, DimensionLimits::NEQV> vectors;  // vectors 1..Nvk
  Table1<std::string, DimensionLimits::MPAR> FurtherName;    // names of the further parameters
  PhaseRestraints restraints;  // distance and moment restraints (Dis, Mom lines)
};

// A phase whose intensities come from a structure: not a profile-matching
// phase (|Jbt| 2 or 3), whose intensities are fitted or kept as stored.
inline bool HasStructure(const Phase& phase) {
  return std::abs(phase.Jbt) != 2 && std::abs(phase.Jbt) != 3;
}

// A phase of magnetic kind alone (|Jbt| 1 or 5): one Bragg factor, and no
// weight in the phase fractions.
inline bool IsMagneticKind(int jbt) {
  return std::abs(jbt) == 1 || std::abs(jbt) == 5;
}

// A phase whose atoms carry moments: the magnetic kinds and the nuclear and
// magnetic phase, |Jbt| 10.
inline bool IsMagneticPhase(const Phase& phase) {
  return IsMagneticKind(phase.Jbt) || std::abs(phase.Jbt) == 10;
}

struct AtomSite {
  std::string label;                          // atom label (Atom)
  std::string species;                        // scattering species label (Typ)
  int Mag = 0;                                // magnetic flag, or the form-factor set
  int Vek = 0;                                // propagation vector of the atom
  int In = 0, Fin = 0;                        // first and last operator of the structure factor
  int N_t = 0;                                // kind of atom: anisotropic, magnetic, form factor
  int nuclearSpecies = 0;                     // species number (negative: a form-factor object)
  int magneticSpecies = 0;                    // species number of the magnetic form factor
  Table1<float, DimensionLimits::NAT_P> ATP;  // atom parameters: x, y, z, B, occupancy...
  Table1<float, DimensionLimits::NAT_P> ATCtyped;  // codes as typed
  Table1<Codeword, DimensionLimits::NAT_P> ATC;    // decoded codes
};

// An atom line that carries a moment (N_t 1 or 3), with the magnetic slots 6 to 12.
inline bool BearsMoment(const AtomSite& atom) {
  return atom.N_t == 1 || atom.N_t == 3;
}

// An atom line that carries the six betas (N_t 2 or 3), in slots 13 to 18.
inline bool BearsBetas(const AtomSite& atom) {
  return atom.N_t == 2 || atom.N_t == 3;
}

}  // namespace corvinet
