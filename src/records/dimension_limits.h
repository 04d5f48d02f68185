// The fixed capacities of the program's tables.
#pragma once

namespace corvinet {

struct DimensionLimits {
  static constexpr int NPATT = 5;     // powder diffraction patterns
  static constexpr int IDSZ = 20000;  // points (+ integrated intensities) per pattern
  static constexpr int IRS = 6000;    // reflections per pattern
  static constexpr int NATS = 530;    // atoms in the asymmetric unit, all phases
  static constexpr int MPAR = 150;    // non-atomic parameters per phase
  static constexpr int MSZ = 300;     // refinable parameters
  static constexpr int NOV = 1536;    // overlapping reflections
  static constexpr int IEXCL = 30;    // excluded regions
  static constexpr int IBACP = 100;   // background points for interpolation
  static constexpr int NPHT = 8;      // phases
  static constexpr int NMAGM = 8;     // rotation-matrix sets of magnetic structures
  static constexpr int NATM = 96;     // magnetic atoms
  static constexpr int NEQV = 48;     // user-supplied operators / propagation vectors
  static constexpr int NGL = 40;      // global parameters per pattern
  static constexpr int NAT_P = 32;    // atomic parameters per atom
  static constexpr int NCONST = 64;   // slack constraints per phase
  static constexpr int N_SPE = 16;    // different chemical species
  static constexpr int N_FORM = 60;   // scattering factor values in a table
  static constexpr int NPR = 150;     // points defining a numerical profile
  static constexpr int INPR = 4;      // different numerical peak shapes
  static constexpr int NPRC = 150;    // terms in the table for correcting intensities
  static constexpr int NSOL = 10;     // solutions stored in Monte Carlo searches
  static constexpr int MAXCYC = 999;  // refinement cycles of one run (three columns when written)
};

}  // namespace corvinet
