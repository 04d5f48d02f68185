// Reading of the distance (Dis) and moment (Mom) restraint lines that close the block of a phase.
#pragma once

#include <string>

#include "records/job.h"

namespace corvinet {

// Reads the Dis distance lines and the Mom moment lines of phase k and echoes
// them on the reports in crystallographic words. A sigma below 1.0E-8 (a
// negative one too) becomes 0.001.
void ReadRestraints(Job& job, int k);

// The echo line of the operation applied to the second atom of a distance:
// the row of the rotation table, its text and the translation.
std::string RestraintOperationLine(int ITnum, const Table1<float, 3>& T);

// The sigma a restraint keeps: values below 1.0E-8 become 0.001.
float RestraintSigma(float typed);

}  // namespace corvinet
