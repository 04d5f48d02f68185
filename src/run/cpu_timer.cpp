// The CPU clock of a run and the CPU time written at its end.
#include "run/cpu_timer.h"

#include <ctime>
#include <string>

#include "format/fortran_format.h"
#include "surface/console.h"

namespace corvinet {

void CpuTimer(Job& job, CpuTimerMode mode, bool print) {
  const double seconds = static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
  if (mode == CpuTimerMode::kStart) {
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

}  // namespace corvinet
