// The form a space-group symbol is written in: the program's own, an alias, or none.
#include "crystal/symbol_forms.h"

#include <algorithm>
#include <cctype>

#include "crystal/space_group_aliases.h"

namespace corvinet {
namespace {

constexpr std::string_view kLattices = "PABCIFRpabcifr";
constexpr std::string_view kPlanes = "mabcndMABCND";

char Upper(char c) {
  return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}

// A cursor over the typed text for the notation check.
struct Scan {
  std::string_view text;
  std::size_t at = 0;
  bool Has(std::string_view set) const {
    return at < text.size() && set.find(text[at]) != std::string_view::npos;
  }
  bool Take(std::string_view set) {
    if (!Has(set)) return false;
    ++at;
    return true;
  }
  int Blanks() {
    int n = 0;
    while (Take(" ")) ++n;
    return n;
  }
};

// The screw digits allowed after a rotation of order `order`.
std::string_view ScrewDigits(char order) {
  switch (order) {
    case '2':
      return "1";
    case '3':
      return "12";
    case '4':
      return "123";
    case '6':
      return "12345";
    default:
      return "";
  }
}

// One symmetry field: a bar rotation, a rotation with its screw and plane, or a plane.
bool TakeField(Scan& s) {
  if (s.Take("-")) return s.Take("1346");
  if (s.Take(kPlanes)) return true;
  if (!s.Has("12346")) return false;
  const char order = s.text[s.at++];
  s.Take(ScrewDigits(order));
  if (s.Take("/")) return s.Take(kPlanes);
  return true;
}

// The longest part of `normalised` that begins some alias.
std::size_t LongestAliasPrefix(std::string_view normalised) {
  std::size_t best = 0;
  for (const SymbolAlias& a : SpaceGroupAliases()) {
    const auto end =
        std::mismatch(normalised.begin(), normalised.end(), a.alias.begin(), a.alias.end());
    best = std::max(best, static_cast<std::size_t>(end.first - normalised.begin()));
  }
  return best;
}

// Column of the first character that fits no alias: the column after the
// longest prefix of an alias, moved past blanks.
int FirstColumnOutsideAliases(std::string_view typed) {
  std::vector<int> columns;
  const std::string normalised = NormaliseSymbolText(typed, &columns);
  const std::size_t prefix = LongestAliasPrefix(normalised);
  std::size_t column = prefix < columns.size() ? static_cast<std::size_t>(columns[prefix])
                                               : typed.find_last_not_of(' ') + 2;
  while (column <= typed.size() && typed[column - 1] == ' ') ++column;
  return static_cast<int>(column);
}

}  // namespace

std::string NormaliseSymbolText(std::string_view typed, std::vector<int>* columns) {
  std::string out;
  std::vector<int> kept;
  bool suffix = false;
  for (std::size_t i = 0; i < typed.size(); ++i) {
    char c = typed[i];
    if (c == ' ') continue;
    const bool blankBefore = i > 0 && typed[i - 1] == ' ';
    if (blankBefore && !out.empty() && out.back() != ':' && c != ':') {
      out += ' ';
      kept.push_back(static_cast<int>(i));
    }
    suffix = suffix || c == ':';
    if (out.empty() || suffix) c = Upper(c);
    out += c;
    kept.push_back(static_cast<int>(i) + 1);
  }
  if (columns != nullptr) *columns = kept;
  return out;
}

int FirstColumnOutsideNotation(std::string_view typed) {
  Scan s{typed};
  s.Blanks();
  const bool rhombohedral = s.Has("Rr");
  if (!s.Take(kLattices)) return static_cast<int>(s.at) + 1;
  int fields = 0;
  bool setting = false;
  while (s.at < typed.size() && !setting) {
    if (s.Blanks() == 0) return static_cast<int>(s.at) + 1;
    if (s.at == typed.size()) break;
    if (rhombohedral && fields > 0 && s.Take("HRr")) {
      setting = true;
    } else if (fields == 3 || !TakeField(s)) {
      return static_cast<int>(s.at) + 1;
    } else {
      ++fields;
    }
  }
  s.Blanks();
  if (fields == 0 || s.at < typed.size()) return static_cast<int>(s.at) + 1;
  return 0;
}

SymbolForm ReadSymbolForm(std::string_view typed) {
  SymbolForm form;
  form.symbol = std::string(typed);
  const std::string normalised = NormaliseSymbolText(typed);
  const auto aliases = SpaceGroupAliases();
  const auto found = std::lower_bound(
      aliases.begin(), aliases.end(), normalised,
      [](const SymbolAlias& a, const std::string& text) { return a.alias < text; });
  if (found != aliases.end() && found->alias == normalised) {
    form.symbol = std::string(found->symbol);
    form.renamed = true;
    return form;
  }
  const int notation = FirstColumnOutsideNotation(typed);
  if (notation != 0) form.badColumn = std::max(notation, FirstColumnOutsideAliases(typed));
  return form;
}

SymmetryMessages SymbolFormMessages(std::string_view typed, const SymbolForm& form) {
  SymmetryMessages messages;
  if (form.badColumn == 0) return messages;
  messages.console.push_back(" => The space group symbol fits no known form from column " +
                             std::to_string(form.badColumn) + ":");
  messages.console.push_back("\"" + std::string(typed) + "\"");
  messages.console.push_back(" " + std::string(static_cast<std::size_t>(form.badColumn - 1), '-') +
                             "^");
  messages.stop = " Error in S.G. symbol";
  return messages;
}

std::string RenamedSymbolLine(std::string_view typed, const SymbolForm& form) {
  return " => Space group symbol read as: " + form.symbol + " (written " +
         NormaliseSymbolText(typed) + ")";
}

}  // namespace corvinet
