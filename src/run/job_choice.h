// The choice of a job: the codes from the command line or the file dialogs, and the continue
// dialogs after a run.
#pragma once

#include <string>

#include "records/job.h"

namespace corvinet {

// Takes the control and data codes from the command line, or from the file dialogs.
void ChooseJob(Job& job);

// "cyc", "CYC" or "Cyc": the control code that asks for the cyclic mode.
bool IsCyclicCode(const std::string& code);

// The two continue dialogs; sets job.driver.answer to the same data, other data or stop.
void AskContinue(Job& job);

// Splits a path at its last '/': the directory with the '/', and the file name.
void SplitPath(const std::string& path, std::string& directoryOut, std::string& fileOut);

}  // namespace corvinet
