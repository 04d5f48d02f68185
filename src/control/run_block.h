// Reading of the head of the control file: title, form, job lines, file names and output lines.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "records/job.h"

namespace corvinet {

// What reading the head asks of its caller: the answer the text may leave
// out and the files the head brings in. The reader itself only reads the text
// of unit 1 and writes what it read on the reports.
struct HeadSteps {
  // The data code of a single-pattern file when none was given; empty for the control code.
  std::function<std::string(Job&)> askDataCode;
  // The multi-pattern form names the files of each pattern with its number.
  std::function<void(Job&)> multiPatternNames;
  // The shape and correction files of pattern ip (NPROF 8, ICORR not 0), read before
  // the rest of its settings.
  std::function<void(Job&, int ip)> readSideFiles;
  // The symmetry and parameter-record files the output lines ask for (JSY, JCIL).
  std::function<void(Job&)> openOutputFiles;
};

// Reads the head of the control file (title to output lines) on unit 1 and
// writes the conditions of the run on the report and the summary.
void ReadRunBlock(Job& job, const HeadSteps& steps);

// Reads the next record of the control file that is not a comment ('!' in
// column 1), counting every record read in LINE; false at the end of the file.
bool ReadNonCommentRecord(Job& job, std::string& record, std::size_t length = 132);

}  // namespace corvinet
