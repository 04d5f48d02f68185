// Reading of the pattern block and the body of the control file, with the checks that close it.
#pragma once

#include "records/job.h"

namespace corvinet {

// Instrument lines, cycle lines, background points, excluded regions and
// scattering entries of every pattern; then the body.
void ReadInstrumentLines(Job& job);

// Scattering entries of pattern ip (lines after the excluded regions).
void ReadScatteringEntries(Job& job, int ip);

// The number of refined parameters, the global parameters and data of every
// pattern, the phases, and the closing lines.
void ReadBody(Job& job);

// Global-parameter lines of pattern ip (codes typed beside the values).
void ReadGlobalParameters(Job& job, int ip);

// The background code as typed in the control file, sign included.
int TypedBackground(const Pattern& pattern);

// After the phase blocks: closes the symmetry file, decodes the global codes,
// reads the closing lines and, for refinements, runs the hole and zero-count checks.
void ReadClosingLinesAndCheck(Job& job);

// Closing lines: the hard limits of NRELL parameters and the Monte Carlo line.
void ReadHardLimits(Job& job);
void ReadMonteCarloLine(Job& job);

// Lines read at the end of the file by the final report: the line-printer
// scales of patterns with IPL 1 and the .rpa range when JCIL is 2.
void ReadEndLines(Job& job);

// Decodes the codes of the 40 global slots of all patterns.
void DecodeGlobalCodes(Job& job);

// Every parameter number from 1 to MAXS must be used by some code; stops otherwise.
void CheckParameterHoles(Job& job);

// Points of zero variance get intensity 1 and variance 1E6, with a message.
void FixZeroCounts(Job& job);

// Points and reflections share storage; stops when they would not fit.
void CheckPointCapacity(Job& job, int ip, int reflections, int extraReflections);

// Divides the data of a pattern by the correction table of its .cor file.
void ApplyIntensityCorrection(Pattern& pattern);

}  // namespace corvinet
