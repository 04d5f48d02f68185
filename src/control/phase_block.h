// Reading of the block that opens each phase: title, flags, per-pattern contributions and the
// space-group line.
#pragma once

#include "records/job.h"

namespace corvinet {

// Reads the title, flag lines and space-group line of phase k, normalises the
// flags and writes how the phase contributes to each pattern.
void ReadPhase(Job& job, int k);

// Writes the words of the phase type (on .sum with the phase number).
void WritePhaseTypeWords(Job& job, int k);

// The word of a phase type, or empty.
const char* PhaseTypeWord(int Jbt);

}  // namespace corvinet
