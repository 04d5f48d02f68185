// Writing the model back as a control file, in the layout that the readers read back unchanged.
#pragma once

#include <string>
#include <vector>

#include "records/codeword.h"
#include "records/job.h"

namespace corvinet {

// The values of the end lines of the file: the line-printer scales of the
// patterns with IPL 1 and the angular range of the .rpa statistics.
struct ControlEndValues {
  int Iscale = 0;
  int Idif = 0;
  float twoTh1 = 0.0f;
  float twoTh2 = 0.0f;
};

// Lines of a control file being written; each entry is one record.
using ControlLines = std::vector<std::string>;

// Writes the control file of the job: over the control file itself (the file
// of unit 1, which is closed) when NXT is 1, otherwise as the .new file. The
// file is replaced whole through a temporary file beside it, so that a failed
// or killed run leaves the old one. Phases with Jdi not 0 also get their
// atom-coordinate file (.atm, unit 22). A write failure stops the run.
void WriteControlFile(Job& job, int Iscale, int Idif, float twoTh1, float twoTh2);

// All records of the control file, in order.
ControlLines ControlFileLines(const Job& job, const ControlEndValues& ends);

// The typed form of a code: sign(multiplier) * (|multiplier| + 10 * parameterNumber).
float ComposeCode(const Codeword& word);

// The pieces of the file, each appending its records.
void AppendRunBlock(const Job& job, ControlLines& lines);          // title to output lines
void AppendPatternBlock(const Job& job, ControlLines& lines);      // instrument to globals
void AppendPhaseHead(const Job& job, int k, ControlLines& lines);  // rule to symmetry lines
void AppendAtomLines(const Job& job, int k, ControlLines& lines);  // atoms of phase k
void AppendProfileLines(const Job& job, int k, int ip, ControlLines& lines);  // one pattern
void AppendClosingLines(const Job& job, const ControlEndValues& ends, ControlLines& lines);

// Records of the atom-coordinate file of phase k.
ControlLines AtomCoordinateLines(const Job& job, int k);

// Shared helpers of the writer's files.
namespace control_writer {
// Appends a text that may hold several records separated by '\n'.
void Put(ControlLines& lines, const std::string& text);
// Appends a header line, only in the commented form.
void Head(const Job& job, ControlLines& lines, const std::string& text);
bool Commented(const Job& job);
}  // namespace control_writer

}  // namespace corvinet
