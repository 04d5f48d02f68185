// Working store of the refinement cycles that goes with the derivative ring: the peak of each
// reflection in flight.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "model/asymmetry_factor.h"
#include "model/axial_divergence.h"
#include "model/magnetic_structure_factor.h"
#include "model/peak_shape.h"
#include "model/rigid_body.h"
#include "model/structure_factor.h"
#include "model/tof_profile.h"
#include "observations/background_terms.h"
#include "records/dimension_limits.h"
#include "records/run_table.h"
#include "records/table1.h"

namespace corvinet {

// What the point loop needs of a reflection besides its derivative row.
struct RingEntry {
  PeakShape shape;
  float intensity = 0.0f;  // Scale LpM F2 Corr: the integrated intensity before Omega and asymmetry
  float tan2Theta = 0.0f;  // of the asymmetry; tan(theta) is the shape's
  int asymmetric = 0;      // the peak lies below the asymmetry limit
  AsymmetryParameters asy;  // Asy1..Asy4 of the phase in the pattern
  // Parameters rowBegin+1..rowEnd hold every non-zero derivative of the row.
  int rowBegin = 0;
  int rowEnd = 0;
  float dlnLpdT = 0.0f;        // slope of ln(LpM) with the position when the Bragg angle moves
  float invGaussWidth = 0.0f;  // 1/HG of the TCH profile, 1/H of the others
  int phase = 0;
  AxialReach axialReach;  // how far the axial-divergence tail widens the base (Npr 12)
  // Parameters that move the peak and its intensity too: the components of
  // the propagation vector of a magnetic satellite. Beside its position
  // family, each has d ln(intensity)/dp here.
  int intensityTermCount = 0;
  int intensityParameter[3] = {};  // parameter numbers, from 1
  float intensitySlope[3] = {};    // d ln(F2)/dp
  bool active = false;             // false when the phase does not contribute or sin(theta) >= 1
  // Time of flight: the peak's shape, the slopes of eta in sigma^2 and gamma,
  // of ln(absorption x extinction) with the position (through the wavelength),
  // of sigma^2, gamma, alpha and beta with the position when the cell moves it,
  // and the reach of its base before and after the position.
  TofPeakShape tof;
  float tofHSigma2 = 0.0f, tofHGamma = 0.0f;  // dH/dsigma^2, dH/dgamma
  float tofEtaSigma2 = 0.0f;
  float tofEtaGamma = 0.0f;
  float tofCorrSlope = 0.0f;
  float tofSigma2dT = 0.0f, tofGammadT = 0.0f, tofAlphadT = 0.0f, tofBetadT = 0.0f;
  float tofLeft = 0.0f;
  float tofRight = 0.0f;
};

// The working store of the structure factors of one reflection.
struct StructureScratch {
  StructureFactorScratch structure;
  MagneticScratch magnetic;
  RigidBodyScratch rigid;
};

// The structure factor of the reflection of a ring slot, computed ahead of
// the reflection on another thread; its derivatives are in the slot's row
// of CycleWork::aheadRows.
struct StructureAhead {
  int pattern = 0;  // the reflection it was computed for
  int reflection = 0;
  int pass = 0;        // in pass number ...
  bool ready = false;  // computed and not yet used
  float F2 = 0.0f;
  RealVector dF2dH{};
};

// The ring entry of a reflection as the last pass over the points computed it.
struct KeptEntry {
  RingEntry entry;
  bool kept = false;  // the pass computed the reflection
};

// Parameters begin+1..end (numbers from 1) that share one family.
struct FamilyRun {
  int begin = 0;
  int end = 0;
  std::uint8_t family = 0;
};

// Held for the length of one run of the cycles; the ring slot of reflection
// k is (k mod NOV) + 1, as for the derivative rows.
struct CycleWork {
  Table1<RingEntry, DimensionLimits::NOV> ring;
  // Which reflection of which pattern each ring slot holds now.
  Table1<int, DimensionLimits::NOV> computedPattern;
  Table1<int, DimensionLimits::NOV> computedReflection;
  // Structure factors: per-atom sums and the derivatives of F^2 of one reflection.
  StructureScratch scratch;
  RunTable1<float> dF2{DimensionLimits::kDefaultMSZ};  // grown to the parameters before the cycles
  // Structure factors computed side by side ahead of their reflections: by
  // ring slot, their derivative rows, the working store of each thread, and
  // the number of the pass.
  std::vector<StructureAhead> ahead;
  std::vector<float> aheadRows;
  std::vector<std::unique_ptr<StructureScratch>> threadScratch;
  int pass = 0;
  // The point loop: threads (0: CORVINET_THREADS, else one per core), the
  // parameters by family, and the end of the written part of each row of the
  // 32-bit block of the normal matrix.
  int threads = 0;
  std::vector<FamilyRun> familyRuns;
  std::vector<int> touched;
  // Rows of the points of one chunk: derivatives, weights, residuals, the end
  // of the non-zero part of each row, and the rows of each thread.
  std::vector<float> rows;
  std::vector<float> weight;
  std::vector<float> residual;
  std::vector<int> rowEnd;
  std::vector<int> points;
  std::vector<DerivativeVector> threadRows;
  // The entries of the reflections of each pattern in the last pass, by
  // reflection number (from 1).
  std::vector<std::vector<KeptEntry>> passEntries;
};

inline int RingSlot(int k) {
  return k % DimensionLimits::NOV + 1;
}

}  // namespace corvinet
