// A small hand-built pattern with two reflections, shared by the tests of the profile and plot
// files.
#pragma once

#include <string>
#include <vector>

#include "records/reflection.h"
#include "results/profile_files.h"
#include "test_support.h"

namespace corvinet::testing {

// Four points from 10 to 11.5 in steps of 0.5, one phase with the reflections
// (1 1 0) at 10.5 and (2 0 0) at 11.0, Zero 0.01, one excluded region 10.9..11.1
// that covers point 3. Ycalc already holds the background (Ymax 300, BackMin 20).
inline void FillPlotCase(Job& job) {
  job.driver.PcrCode = "x";
  job.run.Title = "Test pattern";
  job.run.NPHASE = 1;
  job.run.NPATT = 1;
  job.phases[1].PhaseTitle = "Phase one";
  Pattern& p = job.patterns[1];
  p.DatCode = "d";
  p.JOBTYP = 0;
  p.IXUNIT = AbscissaUnit::kTwoTheta;
  p.THMIN = 10.0f;
  p.STEP = 0.5f;
  p.THMAX = 11.5f;
  p.equalStep = 1;
  p.NPTS = 4;
  p.LAMBDA[1] = 1.54056f;
  p.LAMBDA[2] = 1.54439f;
  p.GLB[1] = 0.01f;
  const float x[] = {10.0f, 10.5f, 11.0f, 11.5f};
  const float yobs[] = {100.4f, 200.6f, 300.0f, 50.0f};
  const float ycalc[] = {90.2f, 210.7f, 280.0f, 50.0f};
  const float back[] = {20.8f, 20.8f, 20.0f, 20.0f};
  for (int i = 1; i <= 4; ++i) {
    p.X[i] = x[i - 1];
    p.Ytotal[i] = yobs[i - 1];
    p.Ycalc[i] = ycalc[i - 1];
    p.Backg[i] = back[i - 1];
    p.Variance[i] = 4.0f * static_cast<float>(i);
  }
  p.NEXCRG = 1;
  p.ExclLow[1] = 10.9f;
  p.ExclHigh[1] = 11.1f;
  ReflectionTable& t = p.reflections;
  t.total = 2;
  t.count[1] = 2;
  t.slot[1].key = ReflectionKey(1, 1, 1, 1, 0);
  t.slot[1].position = 10.5f;
  t.slot[2].key = ReflectionKey(1, 1, 2, 0, 0);
  t.slot[2].position = 11.0f;
}

inline PlotExtremes PlotCaseExtremes() {
  PlotExtremes e;
  e.Ymax = 300.0f;
  e.BackMin = 20.0f;
  return e;
}

inline std::vector<std::string> FileLines(const ScratchDir& dir, const std::string& name) {
  return SplitLines(dir.Read(name));
}

}  // namespace corvinet::testing
