// The reading of a control file in its order: the text of each block with the files it brings in,
// the data of each pattern and the reflections of each phase.
#pragma once

#include "control/run_block.h"
#include "records/job.h"

namespace corvinet {

// The steps of the head that ask the console or open files, as a run takes them.
HeadSteps RunHeadSteps();

// Reads the head of the control file (title to output lines) with the steps of a run.
void ReadControlHead(Job& job);

// Reads the whole control file on unit 1: the head, then the pattern block,
// the data of each pattern, the phases with their reflections, the closing
// lines and the end lines. Unit 1 must be open at its start and the defaults set.
void ReadControlFile(Job& job);

// The same with the head's steps given (a reading that must not ask or open output files).
void ReadControlFile(Job& job, const HeadSteps& steps);

}  // namespace corvinet
