// The choice of a job: the codes from the command line or the file dialogs, and the continue
// dialogs after a run.
#include "run/job_choice.h"

#include <cctype>

#include <unistd.h>

#include "format/text.h"
#include "records/text_unit.h"
#include "surface/console.h"
#include "surface/prompts.h"

namespace corvinet {

namespace {

std::string CutAtFirstDot(const std::string& name) {
  return name.substr(0, name.find('.'));
}

// The data code of a chosen file: its name without one of the data
// extensions the program adds itself, or the whole name for any other
// extension (a file such as data.xye is then read as it is named).
std::string DataCodeOf(const std::string& name) {
  const std::size_t dot = name.rfind('.');
  if (dot == std::string::npos) return name;
  std::string extension = name.substr(dot);
  for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  for (const char* known : {".dat", ".uxd", ".acq", ".int"}) {
    if (extension == known) return name.substr(0, dot);
  }
  return name;
}

}  // namespace

void ChooseJob(Job& job) {
  DriverState& d = job.driver;
  if (d.commandLineLength != 0) {
    std::string line(Trim(d.commandLine));
    std::size_t blank = line.find(' ');
    d.PcrCode = line.substr(0, blank);
    d.DatCode = blank == std::string::npos ? std::string() : TrimmedCopy(line.substr(blank));
    return;
  }
  auto chosen =
      FileOpenDialog(job.console, "PCR files", "*.PCR", "Select input PCR file:", d.startDirectory);
  if (!chosen) return;
  std::string directory, file;
  SplitPath(*chosen, directory, file);
  d.startDirectory = directory;
  // The dialog leaves the chosen directory as the current one.
  if (!directory.empty() && ::chdir(directory.c_str()) != 0) {
    ConsoleLine(job, " => Cannot enter the directory: " + directory);
  }
  d.PcrCode = CutAtFirstDot(file);
  for (const char* ext : {".dat", ".uxd", ".int"}) {
    if (FileExists(d.PcrCode + ext)) {
      d.DatCode = d.PcrCode;
      return;
    }
  }
  auto data = FileOpenDialog(job.console, "Data files", "*.dat; *.uxd; *.int; *.acq",
                             "Select data file:", d.startDirectory);
  if (!data) return;
  SplitPath(*data, directory, file);
  d.DatCode = DataCodeOf(file);
}

bool IsCyclicCode(const std::string& code) {
  std::string_view c = TrimRight(code);
  return c == "cyc" || c == "CYC" || c == "Cyc";
}

void AskContinue(Job& job) {
  if (AskYesNo(job.console, "Corvinet Refinement", "Continue with the same data?", true)) {
    job.driver.answer = DriverAnswer::kSameData;
  } else if (AskYesNo(job.console, "Corvinet Refinement", "Continue with other data?", true)) {
    job.driver.answer = DriverAnswer::kOtherData;
  } else {
    job.driver.answer = DriverAnswer::kStop;
  }
}

void SplitPath(const std::string& path, std::string& directoryOut, std::string& fileOut) {
  std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) {
    directoryOut.clear();
    fileOut = path;
    return;
  }
  directoryOut = path.substr(0, slash + 1);
  fileOut = path.substr(slash + 1);
}

}  // namespace corvinet
