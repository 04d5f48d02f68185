// The stop of a reflection that could not take its slot: its lines on the report and the console.
#pragma once

#include "crystal/reflection_slots.h"
#include "records/job.h"

namespace corvinet {

// A negative width writes " Square of FWHM <0 at 2theta/TOF/E(KeV): " with
// the position and " For pattern number: " with ip on the report and the
// console, and stops with " Square of FWHM <0 ". A full table writes the
// capacity with "  Too many reflections" on the report, " Too many
// reflections" with the capacity and the pattern number on the console, and
// stops with " Too many reflections ".
[[noreturn]] void StopOnSlotError(Job& job, int ip, const SlotError& error);

}  // namespace corvinet
