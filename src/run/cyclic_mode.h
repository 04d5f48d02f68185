// The cyclic mode: one control file run over a numbered series of data files, with its log.
#pragma once

#include <string>

#include "records/job.h"

namespace corvinet {

// One control file over a numbered series of data files.
void RunCyclic(Job& job);

// The data code of number n in the cyclic mode: the stem and n without blanks.
std::string NumberedCode(const std::string& stem, int n);

}  // namespace corvinet
