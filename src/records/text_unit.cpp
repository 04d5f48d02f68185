// Record input and output on the logical units of a run.
#include "records/text_unit.h"

#include <sys/stat.h>
#include <unistd.h>

namespace corvinet {

bool IsOpen(const TextUnit& unit) {
  return unit.file != nullptr;
}

bool FileExists(const std::string& path) {
  struct stat info {};
  return !path.empty() && ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

bool OpenUnit(TextUnit& unit, const std::string& path, OpenStatus status) {
  CloseUnit(unit);
  std::FILE* file = nullptr;
  switch (status) {
    case OpenStatus::Old:
      if (FileExists(path)) file = std::fopen(path.c_str(), "r");
      break;
    case OpenStatus::Unknown:
      file = std::fopen(path.c_str(), FileExists(path) ? "r+" : "w+");
      break;
    case OpenStatus::Append:
      file = std::fopen(path.c_str(), "a");
      break;
  }
  if (file == nullptr) return false;
  unit.file = file;
  unit.name = path;
  unit.lastRecordStart = -1;
  unit.written = false;
  unit.atEnd = false;
  return true;
}

void CloseUnit(TextUnit& unit) {
  if (unit.file != nullptr) std::fclose(unit.file);
  unit.file = nullptr;
  unit.name.clear();
  unit.lastRecordStart = -1;
  unit.written = false;
  unit.atEnd = false;
}

RecordRead ReadRecord(TextUnit& unit, std::string& record, std::size_t maxLength) {
  record.clear();
  if (unit.file == nullptr) return RecordRead::Error;
  unit.lastRecordStart = std::ftell(unit.file);
  int c = std::fgetc(unit.file);
  if (c == EOF) {
    unit.atEnd = true;
    return std::ferror(unit.file) ? RecordRead::Error : RecordRead::End;
  }
  while (c != EOF && c != '\n') {
    if (record.size() < maxLength) record.push_back(static_cast<char>(c));
    c = std::fgetc(unit.file);
  }
  if (!record.empty() && record.back() == '\r') record.pop_back();
  return RecordRead::Ok;
}

void WriteRecord(TextUnit& unit, std::string_view record) {
  if (unit.file == nullptr) return;
  if (!unit.written) {
    // Sequential output ends the file at the last record written.
    std::fflush(unit.file);
    long at = std::ftell(unit.file);
    if (at >= 0 && ::ftruncate(::fileno(unit.file), at) == 0) std::fseek(unit.file, at, SEEK_SET);
    unit.written = true;
  }
  // An empty view may hold no pointer at all, which fwrite must not be given.
  if (!record.empty()) std::fwrite(record.data(), 1, record.size(), unit.file);
  std::fputc('\n', unit.file);
}

void Backspace(TextUnit& unit) {
  if (unit.file == nullptr || unit.lastRecordStart < 0) return;
  std::fseek(unit.file, unit.lastRecordStart, SEEK_SET);
  unit.lastRecordStart = -1;
  unit.atEnd = false;
}

void Rewind(TextUnit& unit) {
  if (unit.file == nullptr) return;
  std::fseek(unit.file, 0, SEEK_SET);
  unit.lastRecordStart = -1;
  unit.atEnd = false;
  unit.written = false;
}

}  // namespace corvinet
