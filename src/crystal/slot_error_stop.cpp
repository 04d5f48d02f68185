// The stop of a reflection that could not take its slot: its lines on the report and the console.
#include "crystal/slot_error_stop.h"

#include <string>

#include "format/fortran_format.h"
#include "surface/console.h"

namespace corvinet {
namespace {

[[noreturn]] void StopNegativeWidth(Job& job, int ip, float position) {
  const std::string where = Fmt("(A,F12.4)", " Square of FWHM <0 at 2theta/TOF/E(KeV): ", position);
  const std::string pattern = Fmt("(A,I2)", " For pattern number: ", ip);
  WriteLine(job, Unit::Out, where);
  WriteLine(job, Unit::Out, pattern);
  ConsoleLine(job, where);
  ConsoleLine(job, pattern);
  StopBox(job, " Square of FWHM <0 ");
}

[[noreturn]] void StopTooManyReflections(Job& job, int ip) {
  const int capacity = job.patterns[ip].reflections.capacity;
  WriteLine(job, Unit::Out, Fmt("(I6,A)", capacity, "  Too many reflections"));
  ConsoleLine(job, Fmt("(A,I6)", " Too many reflections", capacity));
  ConsoleLine(job, Fmt("(A,I2)", " For pattern number: ", ip));
  StopBox(job, " Too many reflections ");
}

}  // namespace

void StopOnSlotError(Job& job, int ip, const SlotError& error) {
  if (error.failure == SlotFailure::NegativeWidth) StopNegativeWidth(job, ip, error.position);
  StopTooManyReflections(job, ip);
}

}  // namespace corvinet
