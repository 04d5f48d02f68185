// A job with one phase in one pattern, for the tests of the reflection list.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "crystal/metric.h"
#include "crystal/symmetry_operators.h"
#include "format/text.h"
#include "io/file_set.h"
#include "records/reflection.h"
#include "run/defaults.h"
#include "surface/console.h"
#include "test_support.h"

namespace corvinet::testing {

inline Table1<float, 6> Cell(float a, float b, float c, float alpha = 90, float beta = 90,
                             float gamma = 90) {
  Table1<float, 6> cell;
  cell[1] = a;
  cell[2] = b;
  cell[3] = c;
  cell[4] = alpha;
  cell[5] = beta;
  cell[6] = gamma;
  return cell;
}

// Phase 1 of symbol and cell in pattern 1 of the given abscissa unit, with
// .out and .sum open in a scratch directory (control code "x").
struct ReflectionCase {
  ScratchDir dir;
  CapturedJob job;
  ReflectionCase(const std::string& symbol, const Table1<float, 6>& cell, int unit) {
    job->driver.PcrCode = "x";
    ResetDefaults(*job);
    job->run.NPATT = 1;
    job->run.NPHASE = 1;
    OpenFiles(*job, FileKind::kOutput, 0, 0);
    Pattern& p = job->patterns[1];
    p.IXUNIT = AbscissaUnitOf(unit);
    p.LAMBDA[1] = p.LAMBDA[2] = 1.54056f;
    p.RATIO[1] = 1.0f;
    p.RATIO[2] = 0.0f;
    p.Wdt = 8.0f;
    Phase& ph = job->phases[1];
    ph.SpaceGroupSymbol = symbol;
    SpaceGroupFromSymbol(symbol, ph.group);
    ph.pat[1].Contribution = 1;
    SetCell(cell);
  }
  void SetCell(const Table1<float, 6>& cell) {
    CellMetric metric;
    BuildCellMetric(cell, metric);
    const Table1<float, 6> coefficients = ReciprocalCoefficients(metric);
    for (int i = 1; i <= 6; ++i) job->phases[1].pat[1].PAR[5 + i] = coefficients[i];
  }
  Pattern& P() { return job->patterns[1]; }
  Phase& Ph() { return job->phases[1]; }
  std::vector<Reflection> Slots() {
    const ReflectionTable& t = job->patterns[1].reflections;
    return std::vector<Reflection>(t.slot.begin(), t.slot.begin() + t.total);
  }
  // Runs `run`; false when the run stopped.
  template <typename F>
  bool Runs(F run) {
    return testing::RunsWithoutStop(*job, run);
  }
  std::string Out() { return testing::FlushedReport(dir, *job); }
};

// Whether `text` has the line, trailing blanks ignored on both sides.
inline bool HasLine(const std::string& text, const std::string& line) {
  const std::string wanted(TrimRight(line));
  for (const std::string& l : SplitLines(text)) {
    if (TrimRight(l) == wanted) return true;
  }
  return false;
}

// Whether some line of `text` contains `part`.
inline bool HasLineWith(const std::string& text, const std::string& part) {
  for (const std::string& l : SplitLines(text)) {
    if (l.find(part) != std::string::npos) return true;
  }
  return false;
}

}  // namespace corvinet::testing
