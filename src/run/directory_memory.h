// The directory memory: the file corvinet.dir that keeps the start directory and the last control
// code between processes.
#pragma once

#include "records/job.h"

namespace corvinet {

// Finds the directory-memory file (corvinet.dir here, or in the directory of
// the CORVINET variable), opens it and reads the start directory from it.
void OpenDirectoryMemory(Job& job);

// Writes the start directory and the control code back on the open memory file.
void RememberDirectory(Job& job);

}  // namespace corvinet
