// The cyclic mode: one control file run over a numbered series of data files, with its log.
#include "run/cyclic_mode.h"

#include <algorithm>
#include <filesystem>

#include "format/fortran_format.h"
#include "format/text.h"
#include "records/text_unit.h"
#include "run/banner.h"
#include "run/run_driver.h"
#include "surface/console.h"
#include "surface/prompts.h"

namespace corvinet {

std::string NumberedCode(const std::string& stem, int n) {
  return std::string(TrimRight(stem)) + Fmt("(I0)", n);
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
