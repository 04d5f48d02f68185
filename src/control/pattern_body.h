// Reading of the pieces of the body of the control file: the refined-parameter count, the blocks
// of the phases and the closing lines.
#pragma once

#include "records/job.h"

namespace corvinet {

// True when some pattern is calculated rather than refined (|JOBTYP| > 1).
bool AnyCalculatedPattern(const Job& job);

// The number of refined parameters (MAXS); 0 when some pattern is calculated.
void ReadRefinedCount(Job& job);

// The block of phase k: phase lines, atoms (structure phases), profile lines,
// the decoding of their codes and the restraint lines. Always true: a block
// that cannot be read stops the run.
bool ReadPhaseBlock(Job& job, int k);

// After the phase blocks: the decoding of the global codes, the hard limits
// (NRELL not 0) and the Monte Carlo line (ICRYG 2).
void ReadClosingLines(Job& job);

}  // namespace corvinet
