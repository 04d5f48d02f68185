// The record of how the head of a control file was understood: conditions, output options, .rpa
// head.
#pragma once

#include "records/job.h"

namespace corvinet {

// " ==> CONDITIONS OF THIS RUN FOR PATTERN No.:" and the words of pattern ip.
void WritePatternConditions(Job& job, int ip);

// The output options of all patterns, then the data format and lists.
void WriteOutputOptions(Job& job);

// The head of the collection of refined parameters (.rpa, unit 2).
void WriteRpaHead(Job& job);

}  // namespace corvinet
