// Text of the reliability report lines of one point set, apart from the units they go to.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "records/job.h"
#include "records/reliability_state.h"

namespace corvinet {

// The .out block of one set of pattern ip (braggSet: the points with Bragg
// contributions); the N-sigma line closes it in the last pass.
std::vector<std::string> ReliabilityOutLines(int ip, const ReliabilityFactors& f, bool braggSet,
                                             float condition, bool lastPass);

// The .sum block of one set, written in the last pass.
std::vector<std::string> ReliabilitySumLines(int ip, const ReliabilityFactors& f, bool braggSet,
                                             int cycle, int maxCycle, std::string_view methodLabel);

// The console lines of a cycle for one set.
std::vector<std::string> ReliabilityConsoleLines(int ip, const ReliabilityFactors& f);

// The tagged rows of the parameter record file for one set.
std::vector<std::string> ReliabilityRecordLines(const ReliabilityFactors& f, bool braggSet);

// Scor on the .out file, and its .sum line.
std::vector<std::string> ScorOutLines(float scor);
std::string ScorSumLine(float scor);

// Writes the Scor lines on the .out and .sum files.
void WriteScorLines(Job& job, float scor);

}  // namespace corvinet
