// Helpers for the fixed-length texts of the records: trimming, padding, case.
#pragma once

#include <string>
#include <string_view>

namespace corvinet {

std::string_view TrimRight(std::string_view text);
std::string_view Trim(std::string_view text);
std::string TrimmedCopy(std::string_view text);

// The text as a field of exactly n characters: cut, or filled with blanks on the right.
std::string FixedText(std::string_view text, std::size_t n);

// The text cut to at most n characters, trailing blanks removed.
std::string CutText(std::string_view text, std::size_t n);

// Left-justifies: removes leading blanks and tabs.
std::string LeftJustified(std::string_view text);

// The text with every byte that is not a printable character replaced by a
// blank, trailing blanks removed: headings of data files are echoed this way.
std::string PrintableText(std::string_view text);

}  // namespace corvinet
