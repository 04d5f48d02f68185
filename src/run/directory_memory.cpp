// The directory memory: the file corvinet.dir that keeps the start directory and the last control
// code between processes.
#include "run/directory_memory.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "format/text.h"

namespace corvinet {

namespace {

std::string WithSlash(std::string directory) {
  if (!directory.empty() && directory.back() != '/') directory += '/';
  return directory;
}

}  // namespace

void OpenDirectoryMemory(Job& job) {
  DriverState& d = job.driver;
  TextUnit& unit = job.files.units[Unit::DirMemory];
  if (FileExists("corvinet.dir")) {
    d.dirMemoryPath = "corvinet.dir";
  } else {
    const char* env = std::getenv("CORVINET");
    std::string value = env != nullptr ? CutText(env, 256) : std::string();
    if (Trim(value).empty()) return;
    d.envDirectory = WithSlash(std::string(TrimRight(value)));
    d.dirMemoryPath = d.envDirectory + "corvinet.dir";
    if (!FileExists(d.dirMemoryPath)) {
      d.dirMemoryOpen = OpenUnit(unit, d.dirMemoryPath, OpenStatus::Unknown);
      return;
    }
  }
  d.dirMemoryOpen = OpenUnit(unit, d.dirMemoryPath, OpenStatus::Unknown);
  std::string line;
  if (d.dirMemoryOpen && ReadRecord(unit, line, 256) == RecordRead::Ok) {
    d.startDirectory = WithSlash(LeftJustified(TrimRight(line)));
  }
}

void RememberDirectory(Job& job) {
  TextUnit& unit = job.files.units[Unit::DirMemory];
  Rewind(unit);
  WriteRecord(unit, TrimRight(job.driver.startDirectory));
  WriteRecord(unit, TrimRight(job.driver.PcrCode));
  std::fflush(unit.file);
}

}  // namespace corvinet
