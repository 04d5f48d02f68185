// Fixed-length text helpers.
#include "format/text.h"

namespace corvinet {

std::string_view TrimRight(std::string_view text) {
  std::size_t n = text.find_last_not_of(" \t");
  return n == std::string_view::npos ? std::string_view() : text.substr(0, n + 1);
}

std::string_view Trim(std::string_view text) {
  text = TrimRight(text);
  std::size_t n = text.find_first_not_of(" \t");
  return n == std::string_view::npos ? std::string_view() : text.substr(n);
}

std::string TrimmedCopy(std::string_view text) {
  return std::string(Trim(text));
}

std::string FixedText(std::string_view text, std::size_t n) {
  std::string out(text.substr(0, std::min(text.size(), n)));
  out.resize(n, ' ');
  return out;
}

std::string CutText(std::string_view text, std::size_t n) {
  return std::string(TrimRight(text.substr(0, std::min(text.size(), n))));
}

std::string LeftJustified(std::string_view text) {
  std::size_t n = text.find_first_not_of(" \t");
  return n == std::string_view::npos ? std::string() : std::string(text.substr(n));
}

std::string PrintableText(std::string_view text) {
  std::string printable(text);
  for (char& c : printable) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte > 0x7e) c = ' ';
  }
  return std::string(TrimRight(printable));
}

}  // namespace corvinet
