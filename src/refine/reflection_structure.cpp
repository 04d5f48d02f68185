// The structure factor of a reflection: the nuclear and magnetic parts that its phase gives it,
// their derivatives, and the intensity slopes of a magnetic satellite in its vector.
#include "refine/reflection_structure.h"

#include <cmath>
#include <cstdlib>
#include <span>

#include "crystal/metric.h"
#include "model/structure_factor.h"
#include "records/profile_slots.h"
#include "surface/console.h"

namespace corvinet {

namespace {

// The reciprocal coefficients A..F of the phase in this pattern, PAR[6..11].
Table1<float, 6> CellCoefficients(const PhasePattern& c) {
  Table1<float, 6> coefficients;
  for (int i = 1; i <= 6; ++i) coefficients[i] = c.PAR[ProfileSlot::FirstCell - 1 + i];
  return coefficients;
}

// F^2 of a reflection of a crystal phase from its atoms; its derivatives go
// to dF2[0..fitted) when parameters are refined.
StructureFactorValue CrystalStructureFactor(const Job& job, StructureScratch& scratch, float* dF2,
                                            int ip, int phase, const RealVector& h, Reflection& r,
                                            int fitted) {
  const Phase& ph = job.phases[phase];
  const Pattern& p = job.patterns[ip];
  const PhasePattern& c = ph.pat[ip];
  StructureFactorInputs in{
      ph.group,
      std::span<const AtomSite>(job.atoms.ptr() + ph.atomOffset, static_cast<std::size_t>(ph.Nat)),
      c.species,
      p.NSCAT,
      c.Irf,
      p.JFOU};
  CellMetric metric;
  in.fractional = ObjectFrameOf(c, metric);
  StructureFactorRequest q;
  q.nSym = ph.group.NSYM;
  q.acentric = ph.group.ICENT == 1 ? 1 : 2;
  for (int i = 0; i < 3; ++i) q.h[i] = static_cast<float>(h[i]);
  q.s2 = static_cast<float>(0.25 * InverseDSquared(CellCoefficients(c), h));
  if (fitted > 0) {
    for (int L = 0; L < fitted; ++L) dF2[L] = 0.0f;
  }
  float* d = fitted > 0 ? dF2 : nullptr;
  if (ph.Jbt != 4) return EvaluateStructureFactor(in, q, r, scratch.structure, d, fitted);
  return EvaluateRigidBodyStructureFactor(job.rigid[phase], in.atoms, in, q, r, scratch.structure,
                                          scratch.rigid, d, fitted);
}

// What the magnetic evaluation needs of reflection r of phase ph at working vector h.
MagneticRequest MagneticRequestOf(const Phase& ph, const Reflection& r,
                                  const std::array<double, 3>& h, double s2) {
  MagneticRequest q;
  const SpaceGroup& group = ph.group;
  q.nSym = group.NSYM;
  q.acentric = group.ICENT == 1;
  // A centric magnetic structure keeps the moments under the implied inversion.
  const bool signed_ = std::abs(ph.Jbt) == 10 && ph.magneticSymmetry == 1;
  q.inversionSign = signed_ && group.magneticSign[group.NSYM + 1] < 0 ? -1 : 1;
  q.H = h;
  q.s2 = s2;
  const int n = std::abs(r.satelliteIndex);
  q.vector = n <= ph.Nvk ? n : 0;
  q.moment.form = MomentFormOf(ph.Jbt);
  q.moment.satellite = q.vector != 0;
  q.moment.fact = q.vector != 0 && ph.vectors[q.vector].halfVector == 0 ? 0.5 : 1.0;
  // The component of -k: a satellite at h - k, or a vector that the list of
  // vectors holds as the negative of an earlier one.
  const bool added = ph.addMinusK == 'Y' && q.vector > ph.Nvk / 2;
  q.moment.conjugate = (r.satelliteIndex < 0) != added;
  return q;
}

// F^2 of the moments of a magnetic phase for reflection r; its derivatives
// are added to dF2 when it is given.
double MagneticF2(const Job& job, MagneticScratch& scratch, int ip, int phase, const Reflection& r,
                  const std::array<double, 3>& h, float* dF2, int fitted,
                  RealVector* dF2dH = nullptr) {
  const Phase& ph = job.phases[phase];
  const PhasePattern& c = ph.pat[ip];
  const MagneticCell cell = MagneticCellOf(c.CellConstants);
  const MagneticInputs in{
      ph.group,
      std::span<const AtomSite>(job.atoms.ptr() + ph.atomOffset, static_cast<std::size_t>(ph.Nat)),
      c.species, job.patterns[ip].NSCAT, cell};
  const Table1<float, 6> k = CellCoefficients(c);
  MagneticRequest q = MagneticRequestOf(ph, r, h, 0.25 * InverseDSquared(k, h));
  // s2 = Q/4 with Q = A h² + B k² + C l² + D kl + E hl + F hk.
  q.dS2dH = {0.25 * (2.0 * k[1] * h[0] + k[5] * h[2] + k[6] * h[1]),
             0.25 * (2.0 * k[2] * h[1] + k[4] * h[2] + k[6] * h[0]),
             0.25 * (2.0 * k[3] * h[2] + k[4] * h[1] + k[5] * h[0])};
  return EvaluateMagneticStructureFactor(in, q, scratch, dF2, fitted, dF2dH);
}

}  // namespace

const Table2<double, 3, 3>* ObjectFrameOf(const PhasePattern& c, CellMetric& metric) {
  if (c.objectCount == 0) return nullptr;
  if (!BuildCellMetric(CellFromCoefficients(CellCoefficients(c)), metric)) return nullptr;
  return &metric.fractional;
}

StructureParts PartsOf(const Phase& ph, const Reflection& r) {
  const int kind = std::abs(ph.Jbt);
  if (ph.Jbt == 0 || ph.Jbt == 4) return {true, false};
  if (kind == 1 || kind == 5) return {false, true};
  if (kind != 10) return {false, false};
  if (r.satelliteIndex != 0) return {false, true};
  return {true, ph.group.NMAGM > 0 && ph.Nvk == 0};
}

namespace {

// A magnetic satellite whose vector has a refined component.
bool HasRefinedVector(const Phase& ph, const Reflection& r, int fitted) {
  const int n = std::abs(r.satelliteIndex);
  if (n == 0 || n > ph.Nvk || !PartsOf(ph, r).magnetic) return false;
  for (const Codeword& w : ph.vectors[n].KCODE) {
    if (w.parameterNumber >= 1 && w.parameterNumber <= fitted) return true;
  }
  return false;
}

}  // namespace

void VectorIntensitySlopes(const Phase& ph, const Reflection& r, const RealVector& dF2dH,
                           int fitted, RingEntry& entry) {
  entry.intensityTermCount = 0;
  if (!HasRefinedVector(ph, r, fitted) || !(r.F2 > 0.0f)) return;
  const int n = std::abs(r.satelliteIndex);
  const double sign = r.satelliteIndex > 0 ? 1.0 : -1.0;
  for (int i = 1; i <= 3; ++i) {
    const Codeword& w = ph.vectors[n].KCODE[i];
    if (w.parameterNumber < 1 || w.parameterNumber > fitted) continue;
    const int t = entry.intensityTermCount++;
    entry.intensityParameter[t] = w.parameterNumber;
    entry.intensitySlope[t] =
        static_cast<float>(w.multiplier * sign * dF2dH[static_cast<std::size_t>(i - 1)] / r.F2);
  }
}

bool StructureF2Into(const Job& job, StructureScratch& scratch, float* dF2, int ip, int phase,
                     const RealVector& h, Reflection& r, int fitted, RealVector& dF2dH, float& F2) {
  const StructureParts parts = PartsOf(job.phases[phase], r);
  float sum = 0.0f;
  if (parts.nuclear) {
    sum = CrystalStructureFactor(job, scratch, dF2, ip, phase, h, r, fitted).F2;
  }
  if (parts.magnetic) {
    if (fitted > 0 && !parts.nuclear) {
      for (int L = 0; L < fitted; ++L) dF2[L] = 0.0f;
    }
    RealVector* slopes = HasRefinedVector(job.phases[phase], r, fitted) ? &dF2dH : nullptr;
    sum += static_cast<float>(MagneticF2(job, scratch.magnetic, ip, phase, r, h,
                                         fitted > 0 ? dF2 : nullptr, fitted, slopes));
  }
  F2 = sum;
  return true;
}

float ReflectionStructureF2(Job& job, CycleWork& work, int ip, int phase, const RealVector& h,
                            Reflection& r, int fitted, RealVector& dF2dH) {
  float F2 = 0.0f;
  StructureF2Into(job, work.scratch, &work.dF2[1], ip, phase, h, r, fitted, dF2dH, F2);
  return F2;
}

}  // namespace corvinet
