// A job with one small constructed pattern and its .out, .sum and .rpa units open.
#pragma once

#include <string>
#include <vector>

#include "records/text_unit.h"
#include "refine/order_reflections.h"
#include "test_support.h"

namespace corvinet::testing {

// One point of a constructed pattern.
struct TestPoint {
  float yo;     // Ytotal
  float yb;     // Backg
  float ycalc;  // Bragg part of the calculated intensity
  float var;    // Variance
  int code;     // OrderCode
};

// A Bragg order code (reflections 1 to 1) and the two non-Bragg codes.
constexpr int kBragg = OrderCodeOf(1, 1);
constexpr int kNoReflection = 0;
constexpr int kExcludedCode = kExcludedPoint;

struct ReliabilityCase {
  ScratchDir dir;
  CapturedJob job;

  ReliabilityCase() {
    OpenUnit(job->files.units[Unit::Out], (dir.path / "x.out").string(), OpenStatus::Unknown);
    OpenUnit(job->files.units[Unit::Sum], (dir.path / "x.sum").string(), OpenStatus::Unknown);
    OpenUnit(job->files.units[Unit::Rpa], (dir.path / "x.rpa").string(), OpenStatus::Unknown);
    job->run.NPATT = 1;
    job->run.NPHASE = 1;
    job->run.NCY = 5;
  }

  Pattern& pattern(int ip = 1) { return job->patterns[ip]; }

  // Points at x = x0, x0 + step, ... on a constant step; background model 0,
  // so that the background of a point is its Backg.
  void SetPoints(const std::vector<TestPoint>& points, float x0 = 10.0f, float step = 1.0f) {
    Pattern& p = pattern();
    p.NPTS = static_cast<int>(points.size());
    p.equalStep = 1;
    p.NBCKGD = 0;
    p.THMIN = x0;
    p.STEP = step;
    p.THMAX = x0 + step * static_cast<float>(p.NPTS - 1);
    for (int i = 1; i <= p.NPTS; ++i) {
      const TestPoint& t = points[static_cast<std::size_t>(i - 1)];
      p.X[i] = x0 + step * static_cast<float>(i - 1);
      p.Ytotal[i] = t.yo;
      p.Backg[i] = t.yb;
      p.Ycalc[i] = t.ycalc;
      p.Variance[i] = t.var;
      p.OrderCode[i] = t.code;
    }
  }

  void Exclude(float low, float high) {
    Pattern& p = pattern();
    ++p.NEXCRG;
    p.ExclLow[p.NEXCRG] = low;
    p.ExclHigh[p.NEXCRG] = high;
  }

  // The text written so far on a unit, as lines.
  std::vector<std::string> Lines(int unit, const std::string& name) {
    std::fflush(job->files.units[unit].file);
    return SplitLines(dir.Read(name));
  }
};

}  // namespace corvinet::testing
