// The top of the program: choice of the job, the loop of runs, the cyclic mode and the run itself.
#pragma once

#include <string>
#include <vector>

#include "records/job.h"

namespace corvinet {

// The entry: runs jobs until the user stops; returns the exit code of the process.
int Main(Job& job, const std::vector<std::string>& arguments);

// One run: defaults, control file, engine, report.
void RunOneJob(Job& job);

// One control file over a numbered series of data files.
void RunCyclic(Job& job);

// The two continue dialogs; sets job.driver.answer to 's', 'a' or 'k'.
void AskContinue(Job& job);

// Splits a path at its last '/': the directory with the '/', and the file name.
void SplitPath(const std::string& path, std::string& directoryOut, std::string& fileOut);

// Mode 1 records the start of the CPU clock; mode 2 records the end and, with
// `print`, writes the CPU time on the console, the report and the summary.
void CpuTimer(Job& job, int mode, bool print);

// The data code of number n in the cyclic mode: the stem and n without blanks.
std::string NumberedCode(const std::string& stem, int n);

}  // namespace corvinet
