// A job with one pattern, one phase and open .out and .sum units, for the tests of the parameter
// update.
#pragma once

#include <string>
#include <vector>

#include "records/codeword.h"
#include "records/text_unit.h"
#include "refine/bragg_factors.h"
#include "refine/order_reflections.h"
#include "refine/update_pass.h"
#include "test_support.h"

namespace corvinet::testing {

struct UpdateCase {
  ScratchDir dir;
  CapturedJob job;
  BraggProfile profile;

  UpdateCase() {
    OpenUnit(job->files.units[Unit::Out], (dir.path / "x.out").string(), OpenStatus::Unknown);
    OpenUnit(job->files.units[Unit::Sum], (dir.path / "x.sum").string(), OpenStatus::Unknown);
    OpenUnit(job->files.units[Unit::Rpa], (dir.path / "x.rpa").string(), OpenStatus::Unknown);
    RunOptions& run = job->run;
    run.NPATT = 1;
    run.NPHASE = 1;
    run.NCY = 5;
    run.MAXS = 10;
    for (int i = 1; i <= 4; ++i) run.relaxationFactor[i] = 1.0f;
    profile.reach = [](int, int) { return PeakReach{}; };
    profile.peak = [](int, int, int) { return 0.0f; };
    SetPoints();
    Phase& ph = job->phases[1];
    ph.PhaseTitle = "Test phase";
    ph.pat[1].Contribution = 1;
    ph.pat[1].Npr = 6;
    ph.pat[1].PAR[1] = 0.5f;  // scale
    SetCubicCell(5.0f);
  }

  Job& operator*() { return *job; }
  Job* operator->() { return job.operator->(); }
  Pattern& pattern() { return job->patterns[1]; }
  PhasePattern& peaks() { return job->phases[1].pat[1]; }

  // Three points of a pattern, all of them with a Bragg contribution.
  void SetPoints() {
    Pattern& p = pattern();
    p.NPTS = 3;
    p.equalStep = 1;
    p.THMIN = 10.0f;
    p.STEP = 1.0f;
    p.THMAX = 12.0f;
    for (int i = 1; i <= 3; ++i) {
      p.X[i] = 9.0f + static_cast<float>(i);
      p.Ytotal[i] = 10.0f;
      p.Backg[i] = 1.0f;
      p.Ycalc[i] = 3.0f;
      p.Variance[i] = 10.0f;
      p.OrderCode[i] = OrderCodeOf(1, 1);
    }
    job->refinement.braggPoints[1] = 3;
    job->refinement.usedPoints[1] = 3;
  }

  // A cubic cell held as its six metric coefficients, with the cell table.
  void SetCubicCell(float a) {
    PhasePattern& pp = peaks();
    for (int i = 1; i <= 3; ++i) {
      pp.CellConstants[i] = a;
      pp.CellConstants[i + 3] = 90.0f;
    }
    pp.PAR[6] = pp.PAR[7] = pp.PAR[8] = 1.0f / (a * a);
    pp.PAR[9] = pp.PAR[10] = pp.PAR[11] = 0.0f;
  }

  // Parameter L: shift B(L) and variance C(L,L).
  void SetParameter(int L, float shift, float variance) {
    job->refinement.normal.B[L] = shift;
    job->refinement.normal.A(L, L) = variance;
  }

  // Parameter L kept within [low, high]; limits act only with NRELL > 0.
  void SetLimit(int L, float low, float high) {
    job->run.NRELL = 1;
    job->limits.low[L] = low;
    job->limits.high[L] = high;
    job->limits.limited[L] = 1;
  }

  // Appends an atom to phase 1.
  AtomSite& AddAtom(const std::string& label) {
    Phase& ph = job->phases[1];
    ++ph.Nat;
    AtomSite& atom = job->atoms[ph.Nat];
    atom.label = label;
    return atom;
  }

  static Codeword Code(int L, float multiplier = 1.0f) { return Codeword{L, multiplier}; }

  UpdatePass Pass(int cycle = 1, int endMarker = 0) {
    return MakeUpdatePass(*job, cycle, endMarker);
  }

  // The lines written so far on a unit.
  std::vector<std::string> Lines(int unit, const std::string& name) {
    std::fflush(job->files.units[unit].file);
    return SplitLines(dir.Read(name));
  }
  std::vector<std::string> Out() { return Lines(Unit::Out, "x.out"); }
  std::vector<std::string> Sum() { return Lines(Unit::Sum, "x.sum"); }
  std::vector<std::string> Console() { return SplitLines(job.Console()); }
};

// Whether a line equal to `text` (trailing blanks ignored) is among the lines.
inline bool HasLine(const std::vector<std::string>& lines, const std::string& text) {
  const std::string wanted = NormaliseLine(text);
  for (const std::string& line : lines) {
    if (NormaliseLine(line) == wanted) return true;
  }
  return false;
}

// Index of the first line that begins with `head`, or -1.
inline int FindLine(const std::vector<std::string>& lines, const std::string& head) {
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (lines[i].rfind(head, 0) == 0) return static_cast<int>(i);
  }
  return -1;
}

}  // namespace corvinet::testing
