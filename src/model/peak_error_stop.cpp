// The stop of a peak whose width or shape could not be set up: its lines and the box.
#include "model/peak_error_stop.h"

#include <string>

#include "format/fortran_format.h"
#include "surface/console.h"

namespace corvinet {
namespace {

[[noreturn]] void StopOnNegativeSquare(Channels& channels, float position, int phase) {
  WriteLine(channels, Unit::Out,
            Fmt("(A,F12.4,A,I3)", " => Square of FWHM <0 at 2theta/TOF/E(KeV):", position,
                "  Phase:", phase));
  ConsoleLine(channels, Fmt("(A,F12.4)", " Square of FWHM <0 at 2theta/TOF/E(KeV):", position));
  StopBox(channels, " Square of FWHM <0 ");
}

[[noreturn]] void RefuseExponent(Channels& channels, float m) {
  const std::string line =
      Fmt("(A,F12.5)", " => Unacceptable M value in calculating Pearson VII function2", m);
  ConsoleLine(channels, line);
  WriteLine(channels, Unit::Out, line);
  StopBox(channels, " Pearson VII M-value unacceptable!");
}

}  // namespace

void StopOnPeakError(Channels& channels, const PeakError& error) {
  switch (error.failure) {
    case PeakFailure::NegativeWidth:
      StopOnNegativeSquare(channels, error.value, error.phase);
    case PeakFailure::PearsonExponent:
      RefuseExponent(channels, error.value);
    case PeakFailure::UnknownCode:
      break;
  }
  StopBox(channels, " Illegal profile function request");
}

}  // namespace corvinet
