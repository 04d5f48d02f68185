// Start-up, the loop of jobs and one run: control file, engine and report.
#include "run/run_driver.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <memory>
#include <optional>

#include "control/control_reading.h"
#include "control/unmodelled_inputs.h"
#include "format/date_time.h"
#include "format/fortran_format.h"
#include "io/file_set.h"
#include "refine/cycle_driver.h"
#include "refine/cycle_work.h"
#include "results/final_report.h"
#include "results/run_json.h"
#include "run/banner.h"
#include "run/cpu_timer.h"
#include "run/cyclic_mode.h"
#include "run/defaults.h"
#include "run/directory_memory.h"
#include "run/job_choice.h"
#include "run/search_settings.h"
#include "run/start_options.h"
#include "run/starting_template.h"
#include "search/search_run.h"
#include "surface/console.h"

namespace corvinet {

namespace {

void CloseAllUnits(Job& job) {
  for (TextUnit& unit : job.files.units) CloseUnit(unit);
}

// The cycles of a refinement or the single pass of a calculation, once the
// whole control file is read, then the final report; or the search.
void RunEngine(Job& job) {
  if (!job.run.controlFileComplete) return;
  if (std::abs(job.run.ICRYG) == 2) {
    SearchRun(job, SearchOptionsFromEnvironment(job));
    return;
  }
  StopOnUnmodelledInputs(job);
  job.driver.pointThreads = PointThreadsFromEnvironment(job);
  auto work = std::make_unique<CycleWork>();
  RunCycles(job, *work);
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
    while (d.answer == DriverAnswer::kSameData) {
      RunOneJob(job);
      ConsoleLine(job, "");
      ConsoleLine(job, " => File : " + d.PcrCode);
      AskContinue(job);
    }
    if (d.dirMemoryOpen) RememberDirectory(job);
    if (d.answer != DriverAnswer::kOtherData) return;
    d.answer = DriverAnswer::kSameData;
    d.commandLineLength = 0;
    d.commandLine.clear();
  }
}

}  // namespace

int Main(Job& job, const std::vector<std::string>& words) {
  DriverState& d = job.driver;
  job.console.ConsoleUnit = Unit::Console;
  const char* limits = std::getenv("CORVINET_LIMITS");
  const StartOptions options = ReadStartOptions(
      words, limits != nullptr ? std::optional<std::string>(limits) : std::nullopt);
  const std::vector<std::string>& arguments = options.arguments;
  job.dimensions = options.dimensions;
  d.commandLine.clear();
  for (const std::string& word : arguments) {
    if (!d.commandLine.empty()) d.commandLine += ' ';
    d.commandLine += word;
  }
  d.commandLine = CutText(d.commandLine, 256);
  d.commandLineLength = static_cast<int>(TrimRight(d.commandLine).size());
  ExitStatus status = ExitStatus::kNormal;
  try {
    if (!options.error.empty()) StopBox(job, options.error);
    OpenDirectoryMemory(job);
    RunJobs(job);
    if (d.dirMemoryOpen) {
      RememberDirectory(job);
      CloseUnit(job.files.units[Unit::DirMemory]);
    }
    // The end of the jobs, also when the user declined to go on, is a normal end.
    WarningBox(job, " END ");
  } catch (const ProcessStop& stop) {
    status = stop.status;
    // A stop inside a job leaves its JSON file too, with the reason.
    if (d.jobRunning) {
      WriteRunJson(job, {static_cast<int>(status), stop.reason.empty() ? "stop" : stop.reason});
    }
  }
  CloseAllUnits(job);
  return static_cast<int>(status);
}

void RunOneJob(Job& job) {
  DriverState& d = job.driver;
  CpuTimer(job, CpuTimerMode::kStart, false);
  OpenFiles(job, FileKind::kControl, 0, 0);
  d.jobRunning = true;
  if (IsStartingCode(d.PcrCode)) {
    ResetDefaults(job);
    MakeStartingTemplate(job);
    WarningBox(job, " Template File: 'starting.pcr' has been created");
    d.jobRunning = false;
    throw ProcessStop{ExitStatus::kNormal, "template created"};
  }
  OpenFiles(job, FileKind::kOutput, 0, 0);
  WriteReportBanner(job);
  DateTimeStamp start = DateTime();
  WriteReports(job, start.DateLine);
  ConsoleLine(job, "");
  ConsoleLine(job, " => START Date:" + DayText(start) + "  Time => " + ClockText(start));
  WriteReports(job, " => PCR file code: " + std::string(TrimRight(d.PcrCode)));

  ResetDefaults(job);
  ReadControlFile(job);
  RunEngine(job);

  CpuTimer(job, CpuTimerMode::kEnd, true);
  DateTimeStamp end = DateTime();
  WriteReports(job, "");
  WriteReports(job, " => Run finished at: " + end.DateLine);
  ConsoleLine(job, "");
  ConsoleLine(job, " => END   Date:" + DayText(end) + "  Time => " + ClockText(end));
  CloseUnit(job.files.units[Unit::Out]);
  CloseUnit(job.files.units[Unit::Sum]);
  WriteRunJson(job, {0, "normal end"});
  d.jobRunning = false;
}

}  // namespace corvinet
