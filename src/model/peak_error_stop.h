// The stop of a peak whose width or shape could not be set up: its lines and the box.
#pragma once

#include "model/peak_error.h"
#include "records/channels.h"

namespace corvinet {

// NegativeWidth writes " => Square of FWHM <0 at 2theta/TOF/E(KeV):" with
// the position and the phase on the report, " Square of FWHM <0 at
// 2theta/TOF/E(KeV):" with the position on the console, and stops with
// " Square of FWHM <0 ". PearsonExponent writes " => Unacceptable M value in
// calculating Pearson VII function2" with m on the console and the report and
// stops with " Pearson VII M-value unacceptable!". UnknownCode stops with
// " Illegal profile function request".
[[noreturn]] void StopOnPeakError(Channels& channels, const PeakError& error);

}  // namespace corvinet
