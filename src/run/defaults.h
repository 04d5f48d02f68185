// The defaults pass that opens every run.
#pragma once

#include "records/job.h"

namespace corvinet {

// Clears every table of the run and sets the defaults the readers rely on.
// The driver, console and file-set state of the process are kept.
void ResetDefaults(Job& job);

}  // namespace corvinet
