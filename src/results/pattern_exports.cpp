// The exports of a pattern in the final report: structure plot files, the SHELX file, the map
// template, the Fourier reflections and the collected results.
#include "results/pattern_exports.h"

#include <cstdlib>

#include "format/date_time.h"
#include "format/fortran_format.h"
#include "format/text.h"
#include "io/file_set.h"
#include "results/structure_exports.h"
#include "surface/console.h"

namespace corvinet {

namespace {

void WriteLines(Job& job, int unit, const std::vector<std::string>& lines) {
  for (const std::string& line : lines) WriteLine(job, unit, line);
}

void WriteStructurePlot(Job& job, int ip, int f) {
  OpenFiles(job, FileKind::kSchakal, ip, f);
  WriteLines(job, Unit::Schakal, StructurePlotLines(job, ip, f));
  CloseUnit(job.files.units[Unit::Schakal]);
}

void WriteShelxFile(Job& job, int ip) {
  OpenFiles(job, FileKind::kShelx, 0, 0);
  WriteLines(job, Unit::Shelx, ShelxLines(job, ip));
  CloseUnit(job.files.units[Unit::Shelx]);
}

void WriteFourierTemplate(Job& job, int ip) {
  const std::string fourier = FileName(job, FileKind::kFourier, ip, 0);
  const std::string binary = fourier.substr(0, fourier.size() - 4) + ".bin";
  OpenFiles(job, FileKind::kShelx, ip, 0);
  WriteLines(job, Unit::Shelx, FourierTemplateLines(job, ip, fourier, binary));
  CloseUnit(job.files.units[Unit::Shelx]);
}

// One record of the results of this run on the collected results file.
void WriteCollectedResults(Job& job, int ip) {
  OpenFiles(job, FileKind::kSav, ip, 0);
  const DateTimeStamp now = DateTime();
  const ReliabilityFactors& r = job.reliability.pattern[ip].setA;
  WriteLine(
      job, Unit::Sav,
      Fmt("(A,A,1X,A,A,A,I3,A,4F10.3)", "RUN  ", DayText(now), ClockText(now, false), "  ",
          TrimmedCopy(job.driver.PcrCode), ip, "  Rp Rwp Rexp Chi2:", r.Rp, r.Rwp, r.Rexp, r.Chi2));
  for (int f = 1; f <= job.run.NPHASE; ++f) {
    const PhasePattern& pp = job.phases[f].pat[ip];
    if (pp.Contribution == 0) continue;
    const Table1<float, 6>& c = pp.CellConstants;
    WriteLine(job, Unit::Sav,
              Fmt("(A,I3,A,2F9.3,A,3F11.5,3F10.4)", "PHAS ", f, "  RB RF:",
                  job.reliability.pattern[ip].braggR[f], job.reliability.pattern[ip].rfFactor[f],
                  "  cell:", c[1], c[2], c[3], c[4], c[5], c[6]));
  }
  CloseUnit(job.files.units[Unit::Sav]);
}

}  // namespace

void WritePatternExports(Job& job, int ip) {
  for (int f = 1; f <= job.run.NPHASE; ++f) {
    const Phase& ph = job.phases[f];
    if (ip != 1 || ph.More == 0) continue;
    if (ph.Jvi == 1 || ph.Jvi == 2) WriteStructurePlot(job, ip, f);
    if (ph.Jdi == 2 && f > DimensionLimits::NPHT) StopBox(job, "Illegal phase number");
  }
  const Pattern& p = job.patterns[ip];
  if (p.JFOU != 0) OpenFiles(job, FileKind::kFourier, ip, 0);
  if (std::abs(p.JFOU) == 2) WriteShelxFile(job, ip);
  if (std::abs(p.JFOU) == 3 || std::abs(p.JFOU) == 4) WriteFourierTemplate(job, ip);
  if (p.JLKH != 0) OpenFiles(job, FileKind::kReflectionOutput, ip, 0);
  if (job.run.JCIL == 2) WriteCollectedResults(job, ip);
}

void NotWrittenLine(Job& job, const std::string& what) {
  WriteLine(job, Unit::Out, " => This version of Corvinet does not write " + what);
}

}  // namespace corvinet
