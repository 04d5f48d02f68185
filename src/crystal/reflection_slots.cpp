// Placement of one reflection in the table: positions, capacity and the width check.
#include "crystal/reflection_slots.h"

#include <cmath>
#include <cstdlib>

#include "crystal/metric.h"
#include "records/profile_slots.h"
#include "records/reflection.h"

namespace corvinet {
namespace {

constexpr double kHalfDegreeInRadians = 0.008726646;

// The square of the Caglioti width at a two-theta reflection: W + t(V + tU).
double SquaredWidth(const MarginWidths& w, double tanTheta) {
  return w.W + tanTheta * (w.V + tanTheta * w.U);
}

void CheckWidth(const Pattern& p, const SlotContext& c, const ReflectionPlace& place) {
  if (p.IXUNIT != AbscissaUnit::kTwoTheta || p.IRESO != 0) return;
  if (SquaredWidth(c.widths, place.tanTheta) < 0.0) {
    throw SlotError{SlotFailure::NegativeWidth, static_cast<float>(place.position)};
  }
}

// How far beyond THMAX a two-theta peak still reaches the range: Wdt full
// widths at half maximum of a peak at THMAX. 0 when the peaks are not followed
// there (a resolution file, another unit, no margin, no real width).
float TailReach(const Pattern& p, const MarginWidths& widths, bool keepTails) {
  if (!keepTails || p.IXUNIT != AbscissaUnit::kTwoTheta || p.IRESO != 0) return 0.0f;
  const double h2 = SquaredWidth(widths, std::tan(p.THMAX * kHalfDegreeInRadians));
  return h2 > 0.0 ? static_cast<float>(p.Wdt * std::sqrt(h2)) : 0.0f;
}

// Whether a reflection placed at `place` serves the pattern: its position lies
// inside the limits or no further above THMAX than the tail reach, with a
// real width. A peak just beyond THMAX still adds its tail to the last points;
// when the cell refines smaller its peaks move out of the range, and a later
// run from the refined values must keep them as this one did.
bool ServesPattern(const Pattern& p, const SlotContext& c, const ReflectionPlace& place) {
  const float position = static_cast<float>(place.position);
  if (InsidePattern(p, position)) return true;
  if (!(position > p.THMAX && position <= p.THMAX + c.tailReach)) return false;
  return SquaredWidth(c.widths, place.tanTheta) > 0.0;
}

Reflection& TakeSlot(ReflectionTable& table) {
  if (table.total >= table.LastUsable()) throw SlotError{SlotFailure::TableFull, 0.0f};
  ++table.total;
  table.slot.MakeRoomFor(table.total);
  Reflection& slot = table.slot[table.total];
  slot = Reflection{};
  return slot;
}

}  // namespace

SlotContext MakeSlotContext(const Job& job, int k, int ip, LorentzFactor lorentz,
                            const HklShift& shift) {
  const Phase& ph = job.phases[k];
  const PhasePattern& c = ph.pat[ip];
  const Pattern& p = job.patterns[ip];
  SlotContext context;
  context.phase = k;
  context.ip = ip;
  for (int i = 1; i <= 6; ++i) context.coefficients[i] = c.PAR[ProfileSlot::FirstCell - 1 + i];
  context.widths =
      MarginWidths{c.PAR[ProfileSlot::U], c.PAR[ProfileSlot::V], c.PAR[ProfileSlot::W]};
  const bool keepTails = std::abs(ph.Jbt) != 2;
  context.range = RangeOfPattern(p, context.widths, !keepTails);
  context.tailReach = TailReach(p, context.widths, keepTails);
  context.wavelengths = WavelengthCount(p);
  context.shift = shift;
  context.lorentz = lorentz;
  context.multiplicityFactor = ph.group.multiplicityFactor;
  return context;
}

bool InsideRange(const SlotContext& context, double q) {
  const double s = q / 4.0;
  return s <= context.range.sHigh && s >= context.range.sLow;
}

int StoreReflection(const Pattern& p, ReflectionTable& table, const SlotContext& c,
                    const ReflectionSource& source) {
  const double q = InverseDSquared(c.coefficients, source.real);
  const double shift = c.shift ? c.shift(source.real, q) : 0.0;
  int taken = 0;
  for (int w = 1; w <= c.wavelengths; ++w) {
    const ReflectionPlace place = PlaceReflection(p, q, w, shift);
    if (!place.valid || !ServesPattern(p, c, place)) continue;
    CheckWidth(p, c, place);
    Reflection& slot = TakeSlot(table);
    slot.key = ReflectionKey(w, c.phase, source.h, source.k, source.l);
    slot.multiplicity = source.multiplicity;
    slot.satelliteIndex = source.satelliteIndex;
    slot.position = static_cast<float>(place.position);
    slot.tanTheta = static_cast<float>(place.tanTheta);
    // The constant part of the intensity: phase multiplicity factor times
    // multiplicity times the Lorentz-polarisation factor at this position.
    slot.LpM = static_cast<float>(c.multiplicityFactor * source.multiplicity) *
               c.lorentz(p, q, w, slot.position);
    slot.fileValue1 = source.fileValue1;
    slot.fileValue2 = source.fileValue2;
    ++taken;
  }
  return taken;
}

}  // namespace corvinet
