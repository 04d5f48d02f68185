// Reading of the side files of a pattern: numerical peak shapes, the intensity-correction table and
// the instrument resolution file.
#pragma once

#include "records/job.h"

namespace corvinet {

// Reads the numerical peak shapes of the open shape file (unit 24).
void ReadShapeFile(Job& job);

// Reads the intensity-correction table of pattern `ip` from the open unit 25.
void ReadCorrectionFile(Job& job, int ip);

// Opens, reads, reports and closes the resolution file of pattern `ip` (IRESO not 0): its law
// (IRESOL = |IRESO|, 1 to 4) with the terms of both wavelengths, or its table of at most 30
// rows. Patterns above the fifth, an unknown law and a table of no rows or too many stop.
void ReadResolutionFile(Job& job, int ip);

}  // namespace corvinet
