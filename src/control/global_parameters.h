// Reading of the global-parameter lines of a pattern and the decoding of their codes.
#pragma once

#include "records/job.h"

namespace corvinet {

// Global-parameter lines of pattern ip (codes typed beside the values).
void ReadGlobalParameters(Job& job, int ip);

// The background code as typed in the control file, sign included.
int TypedBackground(const Pattern& pattern);

// Decodes the codes of the 40 global slots of all patterns.
void DecodeGlobalCodes(Job& job);

}  // namespace corvinet
