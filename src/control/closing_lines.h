// Reading of the closing lines of the control file: hard limits, the Monte Carlo line and the end
// lines.
#pragma once

#include "records/job.h"

namespace corvinet {

// Closing lines: the hard limits of NRELL parameters and the Monte Carlo line.
void ReadHardLimits(Job& job);
void ReadMonteCarloLine(Job& job);

// Lines at the end of the file, kept for the final report: the line-printer
// scales of patterns with IPL 1 and the .rpa range when JCIL is 2.
void ReadEndLines(Job& job);

}  // namespace corvinet
