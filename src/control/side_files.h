// Reading of the side files of a pattern: numerical peak shapes and the intensity-correction table.
#pragma once

#include "records/job.h"

namespace corvinet {

// Reads the numerical peak shapes of the open shape file (unit 24).
void ReadShapeFile(Job& job);

// Reads the intensity-correction table of pattern `ip` from the open unit 25.
void ReadCorrectionFile(Job& job, int ip);

}  // namespace corvinet
