// Taking slots of the reflection table: range test, positions per wavelength, checks.
#pragma once

#include <array>
#include <functional>

#include "crystal/reflection_range.h"
#include "records/job.h"

namespace corvinet {

// The position shift that depends on the indices of a reflection (the Bragg
// shift of the size and strain models), in the unit of the pattern; it is
// given the real indices and 1/d². An empty function means no shift.
using HklShift = std::function<float(const std::array<double, 3>& hkl, double q)>;

// The Lorentz-polarisation factor of a reflection of 1/d² = q at wavelength w
// placed at `position`. The intensity model gives it, so that placing
// reflections needs nothing of the model.
using LorentzFactor = float (*)(const Pattern& p, double q, int w, float position);

// One reflection to be stored, before its positions are known.
struct ReflectionSource {
  int h = 0, k = 0, l = 0;  // the integer indices of the key
  int satelliteIndex = 0;
  std::array<double, 3> real{};  // h, k, l plus the propagation vector
  int multiplicity = 0;
  float fileValue1 = 0.0f;
  float fileValue2 = 0.0f;
};

// What the placement of the reflections of one phase in one pattern needs.
struct SlotContext {
  int phase = 1;
  int ip = 1;
  Table1<float, 6> coefficients;  // A..F of 1/d² = Ah² + Bk² + Cl² + Dkl + Ehl + Fhk
  MarginWidths widths;            // U, V, W of the phase in the pattern
  ReflectionRange range;
  float tailReach = 0.0f;  // how far above THMAX a peak still reaches the range
  int wavelengths = 1;
  HklShift shift;
  LorentzFactor lorentz = nullptr;  // Lp of a placed reflection
  int multiplicityFactor = 1;       // of the phase's group, a factor of every intensity
};

// Why a reflection could not take its slot.
enum class SlotFailure {
  NegativeWidth,  // the square of its Caglioti width is below 0
  TableFull,      // the table already holds its last usable slot
};

// Thrown by StoreReflection; the generation turns it into its stop.
struct SlotError {
  SlotFailure failure = SlotFailure::TableFull;
  float position = 0.0f;  // for NegativeWidth: where the reflection falls
};

// The context of phase k in pattern ip: coefficients PAR[6..11], widths
// PAR[3..5], the range with its margin, the wavelengths and the
// multiplicity factor of the group.
SlotContext MakeSlotContext(const Job& job, int k, int ip, LorentzFactor lorentz,
                            const HklShift& shift);

// Whether 1/d² = q lies inside the range of the context.
bool InsideRange(const SlotContext& context, double q);

// Stores the reflection of pattern `p` in `table` (the pattern's own) once
// per wavelength whose position lies inside the pattern, and returns how many
// slots it took. A two-theta pattern without a resolution file refuses a
// negative square of the width at the position, and a full table refuses any
// further reflection: both throw SlotError, the slots taken before kept.
int StoreReflection(const Pattern& p, ReflectionTable& table, const SlotContext& context,
                    const ReflectionSource& source);

}  // namespace corvinet
