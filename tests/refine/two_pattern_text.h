// The control text of a job of two patterns at two wavelengths of one cubic phase, and its
// simulated data, shared by the refinement tests.
#pragma once

#include <string>

#include "format/fortran_format.h"
#include "observations/poisson.h"
#include "refine/cycle_driver.h"
#include "test_support.h"

namespace corvinet::testing {

// Two patterns at two wavelengths of the same cubic phase, with one cell
// shared through its code and a zero for each pattern.
inline std::string TwoPatternText(int job, int cycles, float a, float zero1, float zero2,
                                  bool refine) {
  const std::string zeroCode1 = refine ? "11.0" : "0.0";
  const std::string zeroCode2 = refine ? "21.0" : "0.0";
  const std::string cellCode = refine ? "31.0 31.0 31.0" : "0 0 0";
  const std::string profile =
      "1.0 0.0 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n"
      "0.01 -0.006 0.008 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0 0\n" +
      Fmt("(3F10.5,A)", a, a, a, " 90 90 90") + "\n" + cellCode +
      " 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n";
  return "Two patterns\nNPATT 2\nW_PAT 1 1\n1 0 0 0 0\n" +
         Fmt("(I3,A)", job, " 5 0 0 0 0 0 0 0 0 0 0 0") + "\n" +
         Fmt("(I3,A)", job, " 5 0 0 0 0 0 0 0 0 0 0 0") +
         "\nx1\nx2\n0 0 0 0 0 1\n0 0 0 0 0 0 0 0 0 0 0\n0 0 0 0 0 0 0 0 0 0 0\n"
         "1.5406 1.5444 0.5 40.0 10.0 0.91 0.0 10.0 0.0\n"
         "1.2000 1.2000 0.0 40.0 10.0 0.91 0.0 10.0 0.0\n" +
         Fmt("(I3,A)", cycles, " 0.01 1 1 1 1") + "\n20.0 0.02 90.0 0 0\n15.0 0.02 80.0 0 0\n" +
         (refine ? "3" : "0") + "\n" + Fmt("(F8.4)", zero1) + " " + zeroCode1 +
         " 0 0 0 0 0 0 0\n50 0 0 0 0 0\n0 0 0 0 0 0\n" + Fmt("(F8.4)", zero2) + " " + zeroCode2 +
         " 0 0 0 0 0 0 0\n40 0 0 0 0 0\n0 0 0 0 0 0\n"
         "Phase\n0 0 0 2 0 0 0 0.0 0 0\n1 1\n0 0 0\n0 0 1 1 0 0 0\n0 0 0\n0 0 1 1 0 0 0\n"
         "F d 3 m\n" +
         profile + profile;
}

// Both patterns of TwoPatternText calculated with the cell a and the two
// zeros, with Poisson noise on counts 20 times larger, written as x1.dat and
// x2.dat in `dir`.
inline void SimulateTwoPatterns(ScratchDir& dir, float a, float zero1, float zero2) {
  CapturedJob job;
  ASSERT_TRUE(ReadControlText(dir, job, TwoPatternText(2, 1, a, zero1, zero2, false), false))
      << job.Console();
  ASSERT_TRUE(RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); }));
  for (int ip = 1; ip <= 2; ++ip) {
    const Pattern& p = job->patterns[ip];
    std::string data = Fmt("(3F8.2)", p.THMIN, p.STEP, p.THMAX) + "\n";
    for (int i = 1; i <= p.NPTS; ++i) {
      data += Fmt("(F12.1)", PoissonDeviate(*job, 20.0f * (p.Ycalc[i] + p.Backg[i])) / 20.0f);
      if (i % 8 == 0) data += "\n";
    }
    dir.Write("x" + std::to_string(ip) + ".dat", data + "\n");
  }
}

}  // namespace corvinet::testing
