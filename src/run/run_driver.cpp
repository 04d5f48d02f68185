// Start-up, the loop of jobs, the continue dialogs, one run, and the cyclic mode.
#include "run/run_driver.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <memory>

#include "control/control_reading.h"
#include "format/date_time.h"
#include "format/fortran_format.h"
#include "io/file_set.h"
#include "refine/cycle_driver.h"
#include "refine/cycle_work.h"
#include "results/final_report.h"
#include "run/defaults.h"
#include "surface/console.h"
#include "surface/prompts.h"

namespace corvinet {

namespace {

constexpr const char* kStarLine = "********************************************************";
constexpr const char* kVersionLine = "** PROGRAM CORVINET.99 (Version 0.3  - Apr99-QMV TRX) **";

std::string WithSlash(std::string directory) {
  if (!directory.empty() && directory.back() != '/') directory += '/';
  return directory;
}

std::string CutAtFirstDot(const std::string& name) {
  return name.substr(0, name.find('.'));
}

// Finds the directory-memory file and reads the start directory from it.
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

// Takes the codes from the command line, or from the file dialogs.
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
  d.DatCode = CutAtFirstDot(file);
}

void WriteConsoleBanner(Job& job) {
  ConsoleLine(job, std::string("   ") + kStarLine);
  ConsoleLine(job, std::string("   ") + kVersionLine);
  ConsoleLine(job, std::string("   ") + kStarLine);
  ConsoleLine(job, "                 M U L T I -- P A T T E R N                ");
  ConsoleLine(job, "      Rietveld, Profile Matching & Integrated Intensity");
  ConsoleLine(job, "           Refinement of X-ray and/or Neutron Data");
  ConsoleLine(job, "              (Multi_Pattern: Windows-version)");
  ConsoleLine(job, "");
}

void WriteReportBanner(Job& job) {
  WriteReports(job, "");
  WriteReports(job, "");
  WriteReports(job, std::string("        ") + kStarLine);
  WriteReports(job, std::string("        ") + kVersionLine);
  WriteReports(job, std::string("        ") + kStarLine);
  WriteReports(job, "                      M U L T I -- P A T T E R N                ");
  WriteReports(job, "           Rietveld, Profile Matching & Integrated Intensity");
  WriteReports(job, "                Refinement of X-ray and/or Neutron Data");
  WriteReports(job, "");
  WriteReports(job, "");
}

bool IsCyclicCode(const std::string& code) {
  std::string_view c = TrimRight(code);
  return c == "cyc" || c == "CYC" || c == "Cyc";
}

void CloseAllUnits(Job& job) {
  for (TextUnit& unit : job.files.units) CloseUnit(unit);
}

// The cycles of a refinement or the single pass of a calculation, once the
// whole control file is read, then the final report. The search is not part
// of this version.
void RunEngine(Job& job) {
  if (!job.run.controlFileComplete) return;
  if (std::abs(job.run.ICRYG) == 2) {
    const char* words = " => The Monte Carlo search is not run by this version of Corvinet";
    ConsoleLine(job, words);
    WriteReports(job, words);
    return;
  }
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    if (job.patterns[ip].IXUNIT == 1) {
      const char* words = " => Cycles of time-of-flight patterns are not run by this version";
      ConsoleLine(job, words);
      WriteReports(job, words);
      return;
    }
  }
  auto work = std::make_unique<CycleWork>();
  RunCycles(job, job.driver.stopRequested, *work);
  // A run stopped on divergence never comes back here; the flag guards the rest.
  if (job.driver.stopRequested != 0) return;
  FinalReport(job, *work);
}

void RunJobs(Job& job) {
  DriverState& d = job.driver;
  for (;;) {
    ChooseJob(job);
    WriteConsoleBanner(job);
    if (IsCyclicCode(d.PcrCode)) {
      d.cyclicMode = 1;
      RunCyclic(job);
      return;
    }
    d.cyclicMode = 0;
    if (Trim(d.DatCode).empty()) d.DatCode = d.PcrCode;
    while (d.answer == 's' || d.answer == 'S') {
      RunOneJob(job);
      ConsoleLine(job, "");
      ConsoleLine(job, " => File : " + d.PcrCode);
      AskContinue(job);
    }
    if (d.dirMemoryOpen) RememberDirectory(job);
    if (d.answer != 'a' && d.answer != 'A') return;
    d.answer = 's';
    d.commandLineLength = 0;
    d.commandLine.clear();
  }
}

}  // namespace

int Main(Job& job, const std::vector<std::string>& arguments) {
  DriverState& d = job.driver;
  job.console.ConsoleUnit = Unit::Console;
  d.commandLine.clear();
  for (const std::string& word : arguments) {
    if (!d.commandLine.empty()) d.commandLine += ' ';
    d.commandLine += word;
  }
  d.commandLine = CutText(d.commandLine, 256);
  d.commandLineLength = static_cast<int>(TrimRight(d.commandLine).size());
  int exitCode = 0;
  try {
    OpenDirectoryMemory(job);
    RunJobs(job);
    if (d.dirMemoryOpen) {
      RememberDirectory(job);
      CloseUnit(job.files.units[Unit::DirMemory]);
    }
    StopBox(job, " END ");
  } catch (const ProcessStop& stop) {
    exitCode = stop.exitCode;
  }
  CloseAllUnits(job);
  return exitCode;
}

void AskContinue(Job& job) {
  if (AskYesNo(job.console, "Corvinet Refinement", "Continue with the same data?", true)) {
    job.driver.answer = 's';
  } else if (AskYesNo(job.console, "Corvinet Refinement", "Continue with other data?", true)) {
    job.driver.answer = 'a';
  } else {
    job.driver.answer = 'k';
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

void CpuTimer(Job& job, int mode, bool print) {
  const double seconds = static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
  if (mode == 1) {
    job.driver.cpuStart = seconds;
    return;
  }
  job.driver.cpuEnd = seconds;
  if (!print) return;
  const double used = job.driver.cpuEnd - job.driver.cpuStart;
  const std::string lines[] = {Fmt("(10X,'    CPU Time:',F10.3,' seconds')", used),
                               Fmt("(10X,'             ',F10.3,' minutes')", used * (1.0 / 60.0))};
  for (const std::string& line : lines) {
    ConsoleLine(job, line);
    WriteReports(job, line);
  }
}

std::string NumberedCode(const std::string& stem, int n) {
  return std::string(TrimRight(stem)) + Fmt("(I0)", n);
}

void RunOneJob(Job& job) {
  DriverState& d = job.driver;
  CpuTimer(job, 1, false);
  OpenFiles(job, 1, 0, 0);
  if (IsStartingCode(d.PcrCode)) {
    ResetDefaults(job);
    StopBox(job, " => The starting template cannot be generated by this version of Corvinet");
  }
  OpenFiles(job, 2, 0, 0);
  WriteReportBanner(job);
  DateTimeStamp start = DateTime();
  WriteReports(job, start.DateLine);
  ConsoleLine(job, "");
  ConsoleLine(job, " => START Date:" + DayText(start) + "  Time => " + ClockText(start));
  WriteReports(job, " => PCR file code: " + std::string(TrimRight(d.PcrCode)));

  d.stopRequested = 0;
  ResetDefaults(job);
  ReadControlFile(job);
  RunEngine(job);

  CpuTimer(job, 2, true);
  DateTimeStamp end = DateTime();
  WriteReports(job, "");
  WriteReports(job, " => Run finished at: " + end.DateLine);
  ConsoleLine(job, "");
  ConsoleLine(job, " => END   Date:" + DayText(end) + "  Time => " + ClockText(end));
  CloseUnit(job.files.units[Unit::Out]);
  CloseUnit(job.files.units[Unit::Sum]);
}

void RunCyclic(Job& job) {
  DriverState& d = job.driver;
  d.PcrCode.clear();
  ConsoleLine(job, "  ==> Code of the starting *.pcr file (xx for xx.pcr): ");
  auto answer = ReadConsoleAnswer(job.console);
  if (!answer) {
    ConsoleLine(job, " => Normal end...");
    return;
  }
  d.PcrCode = TrimmedCopy(*answer);
  const std::size_t shownLength = std::max<std::size_t>(d.PcrCode.size(), 17);
  ConsoleLine(job, "  ==> Give the code of data files (yy for yynnn.dat,uxd,acq)  ");
  ConsoleLine(job,
              "                               (<cr> =" + FixedText(d.PcrCode, shownLength) + "): ");
  answer = ReadConsoleAnswer(job.console);
  d.DatCode = answer ? TrimmedCopy(*answer) : std::string();
  if (d.DatCode.empty()) d.DatCode = d.PcrCode;
  const std::string dataCodeStem = CutText(d.DatCode, 16);

  int firstNumber = 0;
  int lastNumber = 0;
  ConsoleLine(job, "  ==> Number of the starting *.dat file: ");
  answer = ReadConsoleAnswer(job.console);
  if (!answer || ReadListLine(*answer, {{ReadTarget(&firstNumber)}}) == ReadStatus::BadValue) {
    ConsoleLine(job, " => Normal end...");
    return;
  }
  ConsoleLine(job, "  ==> Number of the     last *.dat file: ");
  answer = ReadConsoleAnswer(job.console);
  if (!answer || ReadListLine(*answer, {{ReadTarget(&lastNumber)}}) == ReadStatus::BadValue) {
    ConsoleLine(job, " => Normal end...");
    return;
  }
  const int step = lastNumber < firstNumber ? -1 : 1;

  OpenUnit(job.files.units[Unit::CyclicLog], d.PcrCode + ".log", OpenStatus::Unknown);
  job.console.ConsoleUnit = Unit::CyclicLog;
  const char* indent = "     ";
  ConsoleLine(job, "");
  ConsoleLine(job, indent + std::string("   ") + kStarLine);
  ConsoleLine(job, indent + std::string("   ") + kVersionLine);
  ConsoleLine(job, indent + std::string("   ") + kStarLine);
  ConsoleLine(job, indent + std::string("      Rietveld, Profile Matching & Integrated Intensity"));
  ConsoleLine(job, indent + std::string("           Refinement of X-ray and/or Neutron Data"));
  ConsoleLine(job, indent + std::string("        (Single_Pattern: Windows-version - CYCLIC mode)"));
  ConsoleLine(job, indent + std::string("                     L O G   F I L E"));
  ConsoleLine(job, " => Analysis of data files of code: " + dataCodeStem);
  ConsoleLine(job, Fmt("(A,I6,A,I6)", "    between  numbers ", firstNumber, " and ", lastNumber));
  ConsoleLine(job, " => The code of the starting *.pcr file is:" + d.PcrCode);
  job.console.ConsoleUnit = Unit::Console;
  ConsoleLine(job, "");
  ConsoleLine(job, "");
  job.console.ConsoleUnit = Unit::CyclicLog;

  const std::string outName = d.PcrCode + ".out";
  const std::string sumName = d.PcrCode + ".sum";
  const int rounds = (lastNumber - firstNumber + step) / step;
  for (int round = 0, n = firstNumber; round < rounds; ++round, n += step) {
    d.DatCode = NumberedCode(dataCodeStem, n);
    if (!FileExists(d.DatCode + ".dat")) continue;
    RunOneJob(job);
    job.console.ConsoleUnit = Unit::Console;
    ConsoleLine(job, Fmt("(A,A,A,F12.4,A)", " ##### ", d.DatCode,
                         ": Chi2 = ", job.refinement.GlobalChi2, "  #####"));
    job.console.ConsoleUnit = Unit::CyclicLog;
    // The run's report and summary are removed so that they do not pile up.
    std::error_code ignored;
    std::filesystem::remove(outName, ignored);
    std::filesystem::remove(sumName, ignored);
    WriteLine(job, Unit::CyclicLog, std::string(80, '-'));
  }
  job.console.ConsoleUnit = Unit::Console;
  ConsoleLine(job, " => Normal end...");
}

}  // namespace corvinet
