// The update of the peak slots of a phase in a pattern, their clamps, the cell and the propagation
// vectors.
#include "refine/peak_update.h"

#include <cstdlib>

#include "format/fortran_format.h"
#include "records/profile_slots.h"
#include "refine/apply_shift.h"
#include "refine/cell_update.h"

namespace corvinet {

namespace {

namespace Slot = ProfileSlot;
constexpr int kExtinction = ProfileSlot::Shape1;  // Shape1 holds the extinction with time of flight

constexpr float kSmallestScale = 1.0e-15f;
constexpr float kSmallestWidth = 0.0001f;
constexpr float kClampedSigma = 1.0f;

bool IsIntegratedPhase(const PhasePattern& pp) {
  return std::abs(pp.Irf) == 4;
}

void ClampWidth(Job& job, const UpdatePass& pass, PeakSlots& slots, PhasePattern& pp, int slot,
                const char* message) {
  if (!slots.plainPath[slot] || !(pp.PAR[slot] < 0.0f)) return;
  pp.PAR[slot] = kSmallestWidth;
  slots.shown[slot].sigma = kClampedSigma;
  WriteClampWarning(job, pass, message);
}

void ClampScales(Job& job, int phase, const UpdatePass& pass, PhasePattern& pp) {
  if (IsIntegratedPhase(pp)) {
    for (int i = IntegratedSlot::Sc1; i <= IntegratedSlot::Sc5; ++i) {
      if (!(pp.PAR[i] < 0.0f)) continue;
      pp.PAR[i] = kSmallestScale;
      WriteClampWarning(job, pass, Fmt("(A,I3)", " WARNING, Negative Scale factor number:", i));
      WriteClampWarning(job, pass, " Program is fixing SCALE to 1.E-15 ");
    }
    if (pp.PAR[IntegratedSlot::Sc6] < 0.0f) {
      pp.PAR[IntegratedSlot::Sc6] = kSmallestScale;
      WriteClampWarning(job, pass, Fmt("(A,I3)", " WARNING, Negative Scale factor number:", 6));
    }
    return;
  }
  if (pp.PAR[Slot::Scale] < 0.0f) {
    pp.PAR[Slot::Scale] = kSmallestScale;
    WriteClampWarning(job, pass,
                      Fmt("(A,I3)", " WARNING, Negative Scale factor for phase:", phase));
    WriteClampWarning(job, pass, " Program is fixing SCALE to 1.E-15 ");
  }
}

void ClampOrientation(const Pattern& pattern, PhasePattern& pp) {
  if (IsIntegratedPhase(pp)) return;
  float& pref2 = pp.PAR[Slot::Pref2];
  if (pref2 < 0.0f) pref2 = 0.0f;
  if (pref2 > 1.0f) pref2 = 1.0f;
  if (pattern.NORI == 1 && pp.PAR[Slot::Pref1] < 0.0f) pp.PAR[Slot::Pref1] = 1.0f;
}

void ReportPeakParameters(Job& job, int phase, int ip, const UpdatePass& pass,
                          const PeakSlots& slots) {
  const Phase& ph = job.phases[phase];
  const PhasePattern& pp = ph.pat[ip];
  const AbscissaUnit ixunit = job.patterns[ip].IXUNIT;
  WritePassLine(job, pass, PeakHeading(phase, ip));
  WritePassLine(job, pass, ParameterColumns());
  for (int s = 1; s <= DimensionLimits::MPAR; ++s) {
    if (s >= Slot::FirstCell && s <= Slot::LastCell) continue;
    if (pp.PAR[s] == 0.0f && pp.PAC[s].parameterNumber == 0) continue;
    const int further = s - job.run.firstFurtherParameter;
    const std::string furtherName =
        further >= 1 && further <= ph.Furth ? ph.FurtherName[further] : std::string();
    ReportedValue v = slots.shown[s];
    v.value = pp.PAR[s];
    WritePassLine(job, pass, ParameterLine(PeakSlotName(s, pp.Irf, ixunit, furtherName), v));
  }
  const CellStatistics& stats = job.limits.cells(phase, ip);
  for (int i = 1; i <= 6; ++i) {
    WritePassLine(
        job, pass,
        ParameterLine(CellConstantName(i), {pp.CellConstants[i], stats.shift[i], stats.sigma[i]}));
  }
  WritePassLine(job, pass, CellVolumeLine(pp.cellVolume, stats.volumeSigma));
}

}  // namespace

PeakSlots ShiftPeakSlots(Job& job, int phase, int ip) {
  PeakSlots slots;
  PhasePattern& pp = job.phases[phase].pat[ip];
  const float relaxation = RelaxationFactor(job, Relaxation::kProfile);
  for (int s = 1; s <= DimensionLimits::MPAR; ++s) {
    const ValueShift r = ShiftValue(job, pp.PAR[s], pp.PAC[s], relaxation);
    slots.shown[s] = {pp.PAR[s], r.shift, r.sigma};
    slots.plainPath[s] = pp.PAC[s].parameterNumber > 0 && !r.limited;
  }
  return slots;
}

void ClampPeakParameters(Job& job, int phase, int ip, const UpdatePass& pass, PeakSlots& slots) {
  PhasePattern& pp = job.phases[phase].pat[ip];
  const Pattern& pattern = job.patterns[ip];
  const ProfileCode code = ProfileOf(pp);
  if (code == ProfileCode::kTripledPseudoVoigt || code == ProfileCode::kTchPseudoVoigt) {
    ClampWidth(job, pass, slots, pp, Slot::X, " WARNING, parameter X < 0, fixed to 0.0001");
    ClampWidth(job, pass, slots, pp, Slot::Y, " WARNING, parameter Y < 0, fixed to 0.0001");
  }
  ClampScales(job, phase, pass, pp);
  if (pattern.IXUNIT == AbscissaUnit::kTimeOfFlight && pp.PAR[kExtinction] < 0.0f) {
    pp.PAR[kExtinction] = kSmallestWidth;
    WriteClampWarning(job, pass, Fmt("(A,I3)", " WARNING, Negative Extinction for phase:", phase));
    WriteClampWarning(job, pass, " Program is fixing Extinction to 0.0001 ");
  }
  ClampOrientation(pattern, pp);
}

void UpdatePeakParameters(Job& job, int phase, int ip, const UpdatePass& pass) {
  PeakSlots slots = ShiftPeakSlots(job, phase, ip);
  ClampPeakParameters(job, phase, ip, pass, slots);
  UpdateCell(job, phase, ip);
  ReportPeakParameters(job, phase, ip, pass, slots);
}

void UpdatePropagationVectors(Job& job, int phase, const UpdatePass& pass) {
  Phase& ph = job.phases[phase];
  const float relaxation = RelaxationFactor(job, Relaxation::kProfile);
  for (int n = 1; n <= ph.Nvk; ++n) {
    PropagationVector& k = ph.vectors[n];
    for (int c = 1; c <= 3; ++c) {
      const ValueShift r = ShiftValue(job, k.KVEC[c], k.KCODE[c], relaxation);
      static constexpr const char* kAxis[] = {"x", "y", "z"};
      WritePassLine(job, pass,
                    ParameterLine(Fmt("(A,I0,2A)", "Kvec", n, "_", kAxis[c - 1]),
                                  {k.KVEC[c], r.shift, r.sigma}));
    }
  }
}

}  // namespace corvinet
