// A logical unit: one text file opened for records, with the sequential semantics of the program's
// units.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace corvinet {

enum class OpenStatus {
  Old,      // must exist; opened for reading
  Unknown,  // opened if it exists, created if not; the first write cuts the file there
  Append,   // opened for writing at its end, created if it does not exist
};

struct TextUnit {
  std::FILE* file = nullptr;
  std::string name;
  long lastRecordStart = -1;  // offset of the last record read, for one step back
  bool written = false;       // a record was written since the open
  bool atEnd = false;         // the last read met the end of the file
};

enum class RecordRead { Ok, End, Error };

bool IsOpen(const TextUnit& unit);
bool FileExists(const std::string& path);

// Opens `path` on the unit (closing what it held); false when it cannot be opened.
bool OpenUnit(TextUnit& unit, const std::string& path, OpenStatus status);
void CloseUnit(TextUnit& unit);

// Reads one record; the line end (LF or CR LF) is removed and the text cut to
// `maxLength` characters.
RecordRead ReadRecord(TextUnit& unit, std::string& record, std::size_t maxLength = 132);

// Writes one record followed by a line end.
void WriteRecord(TextUnit& unit, std::string_view record);

// Steps back over the last record read, so that the next read gives it again.
void Backspace(TextUnit& unit);
void Rewind(TextUnit& unit);

}  // namespace corvinet
