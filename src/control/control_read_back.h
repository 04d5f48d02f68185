// The check that a control file about to replace the old one reads back with the program's own
// readers and gives the values written.
#pragma once

#include <string>

#include "control/control_writer.h"
#include "records/job.h"

namespace corvinet {

// Reads the control text written to `path` (the records `lines`, with the end
// values `ends`) as the next run would, into a scratch run record: the same
// data files and side files, no prompt, no output file. The text reads back
// when the reading ends normally and the file written again from what was
// read holds, line by line, the same words and the same numbers to six
// significant digits (comment lines aside).
ReadBackResult CheckControlReadsBack(const Job& job, const std::string& path,
                                     const ControlLines& lines, const ControlEndValues& ends);

// True when two records hold the same words and the same numbers to six significant digits.
bool SameRecordValues(const std::string& written, const std::string& again);

}  // namespace corvinet
