// The capacities of the program's tables: most are fixed, three are chosen at start-up.
#pragma once

namespace corvinet {

// The capacities of a process. Points, reflections and refined parameters are
// those of the run, read at start-up (the defaults, or the large set asked
// for by `--large` or CORVINET_LIMITS=large); the tables they bound are sized
// by what the run needs. The other capacities are fixed.
struct DimensionLimits {
  static constexpr int kDefaultIDSZ = 20000;  // points of a pattern by default
  static constexpr int kDefaultIRS = 6000;    // reflections of a pattern by default
  static constexpr int kDefaultMSZ = 300;     // refined parameters by default
  static constexpr int kLargeIDSZ = 200000;   // points of a pattern in a large run
  static constexpr int kLargeIRS = 60000;     // reflections of a pattern in a large run
  static constexpr int kLargeMSZ = 2000;      // refined parameters in a large run

  int IDSZ = kDefaultIDSZ;  // points (+ integrated intensities) per pattern
  int IRS = kDefaultIRS;    // reflections per pattern
  int MSZ = kDefaultMSZ;    // refinable parameters

  static constexpr int NPATT = 5;     // powder diffraction patterns
  static constexpr int NATS = 530;    // atoms in the asymmetric unit, all phases
  static constexpr int MPAR = 150;    // non-atomic parameters per phase
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

// The capacities of a large run: points, reflections and parameters raised.
constexpr DimensionLimits LargeDimensionLimits() {
  DimensionLimits limits;
  limits.IDSZ = DimensionLimits::kLargeIDSZ;
  limits.IRS = DimensionLimits::kLargeIRS;
  limits.MSZ = DimensionLimits::kLargeMSZ;
  return limits;
}

// True when the capacities are those of a large run.
constexpr bool IsLarge(const DimensionLimits& limits) {
  return limits.IDSZ > DimensionLimits::kDefaultIDSZ;
}

}  // namespace corvinet
