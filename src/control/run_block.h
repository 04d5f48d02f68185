// Reading of the head of the control file: title, form, job lines, file names and output lines.
#pragma once

#include <cstddef>
#include <string>

#include "records/job.h"

namespace corvinet {

// Reads the whole control file on unit 1: the head, then the pattern block
// and the body. Unit 1 must be open at its start and the defaults set.
void ReadControlFile(Job& job);

// Reads the head of the control file (title to output lines) and writes the
// conditions of the run on the report and the summary.
void ReadControlHead(Job& job);

// Reads the next record of the control file that is not a comment ('!' in
// column 1), counting every record read in LINE; false at the end of the file.
bool ReadNonCommentRecord(Job& job, std::string& record, std::size_t length = 132);

// Reads the numerical peak shapes of the open shape file (unit 24).
void ReadShapeFile(Job& job);

// Reads the intensity-correction table of pattern `ip` from the open unit 25.
void ReadCorrectionFile(Job& job, int ip);

}  // namespace corvinet
