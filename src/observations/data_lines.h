// Words and numbers of the free lines of the newer data files, and the stop for a malformed line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "observations/powder_data_common.h"

namespace corvinet {

// The words of a line, separated by blanks, tabs or commas.
std::vector<std::string_view> LineWords(std::string_view line);

// The value of a word that is a whole number text (as 12, -3.5, 1.2E+03);
// false for anything else, including nan and inf.
bool WordNumber(std::string_view word, double& value);

// True when the first word of the line is a number.
bool StartsWithNumber(std::string_view line);

// The numbers of the first `count` words of the line; false when the line has
// fewer words or one of them is not a finite number.
bool LineNumbers(std::string_view line, int count, double* values);

// " => Malformed line N of data file NAME: " with the line (cut to 60
// characters) and what it should hold, on the .out file and in the stop box.
[[noreturn]] void StopMalformedLine(DataFile& file, int line, std::string_view text,
                                    std::string_view expected);

}  // namespace corvinet
