// The reliability report of a pattern on .out, .sum, the console and the parameter record.
#include <string>

#include "refine/reliability.h"
#include "refine/reliability_report_lines.h"
#include "surface/console.h"

namespace corvinet {

namespace {

void WriteAll(Job& job, int unit, const std::vector<std::string>& lines) {
  for (const std::string& line : lines) WriteLine(job, unit, line);
}

}  // namespace

void ReportReliability(Job& job, int ip, bool writeOut, bool writeSum, int cycle,
                       std::string_view methodLabel, float condition) {
  const PatternReliability& state = job.reliability.pattern[ip];
  if (writeOut) {
    WriteAll(job, Unit::Out, ReliabilityOutLines(ip, state.setA, false, condition, writeSum));
    WriteAll(job, Unit::Out, ReliabilityOutLines(ip, state.setB, true, condition, writeSum));
  }
  if (writeSum) {
    const int maxCycle = job.run.NCY;
    WriteAll(job, Unit::Sum,
             ReliabilitySumLines(ip, state.setA, false, cycle, maxCycle, methodLabel));
    WriteAll(job, Unit::Sum,
             ReliabilitySumLines(ip, state.setB, true, cycle, maxCycle, methodLabel));
    if (job.run.JCIL > 0) RecordReliability(job, ip);
  }
  for (const std::string& line : ReliabilityConsoleLines(ip, state.setA)) ConsoleLine(job, line);
}

void RecordReliability(Job& job, int ip) {
  const PatternReliability& state = job.reliability.pattern[ip];
  WriteAll(job, Unit::Rpa, ReliabilityRecordLines(state.setA, false));
  WriteAll(job, Unit::Rpa, ReliabilityRecordLines(state.setB, true));
}

}  // namespace corvinet
