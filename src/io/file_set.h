// The file set: every file of a run named from the control and data codes and opened on its unit.
#pragma once

#include <string>

#include "records/job.h"

namespace corvinet {

// Opens the file of option `nopf` (pattern `index`, phase `phase`) on its unit.
// A file that cannot be opened stops the run with its message.
void OpenFiles(Job& job, int nopf, int index, int phase);

// "_" and the pattern number in a multi-pattern run, otherwise empty.
std::string PatternSuffix(const Job& job, int index);

// A blank for phase 0, the digit of phases 1 to 8.
char PhaseDigit(int phase);

// True when the code's last eight characters are "starting".
bool IsStartingCode(const std::string& code);

}  // namespace corvinet
