// Writing the model back as a control file, in the layout that the readers read back unchanged.
#pragma once

#include <functional>
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

// Whether a written control text reads back (control/control_read_back.h).
struct ReadBackResult {
  bool readsBack = false;  // the text reads and gives the values written
  std::string report;      // otherwise, what went wrong: the reader's last words or the line
};

// The check a written text (at `path`, the records `lines`) passes before it
// replaces the old control file.
using ControlTextCheck =
    std::function<ReadBackResult(const Job& job, const std::string& path, const ControlLines& lines,
                                 const ControlEndValues& ends)>;

// Writes the control file of the job: over the control file itself (the file
// of unit 1, which is closed) when NXT is 1, otherwise as the .new file. The
// file is replaced whole through a temporary file beside it, and only when
// that file reads back with the program's own readers and gives the values
// written (CheckControlReadsBack): a failed or killed run, or a text that would
// not read back, leaves the old one, the last with a warning that says why.
// A value that is not a finite number stops the run as diverged, and a write
// failure stops it too. Phases with Jdi not 0 also get their atom-coordinate
// file (.atm, unit 22).
void WriteControlFile(Job& job, int Iscale, int Idif, float twoTh1, float twoTh2);

// The same with the check of the written text given.
void WriteControlFile(Job& job, const ControlEndValues& ends, const ControlTextCheck& check);

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
