// Rietveld refinements of simulated rutile patterns recover the coordinates, displacements and
// occupancies they were simulated with, for X-rays and for neutrons.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "format/fortran_format.h"
#include "observations/poisson.h"
#include "refine/cycle_driver.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

// Rutile, P 42/m n m: Ti at the origin (2a), O at (x, x, 0) (4f). Occupancies
// are the site multiplicity over the general one (16).
struct Structure {
  float scale = 1.0f;
  float x = 0.3048f;
  float bTi = 0.45f, bO = 0.70f;
  float occO = 0.25f;
  float zero = 0.0f;
  std::string scaleCode = "0.00", xCode = "0.00", bTiCode = "0.00", bOCode = "0.00",
              occOCode = "0.00", zeroCode = "0.00";
  int refined = 0;
  int job = 2;  // 2 X-ray calculation, 3 neutron calculation, 0 or 1 refinement
  int cycles = 1;
};

std::string ControlText(const Structure& s) {
  return Fmt("(A)", "Simulated rutile") + "\n" +
         Fmt("(I4,A)", s.job, "   0   1   0   0   0   0   0   0   0   0   0   0   0   0   0   0") +
         "\n   0   0   1   0   0   0   0   0   0   0   0   0   0   0   0   1   0\n"
         " 1.540560 1.540560  0.00000   60.000 10.0000  0.0000  0.0000    0.00    0.0000\n" +
         Fmt("(I3,A)", s.cycles,
             "  0.01  1.00  1.00  1.00  1.00     15.0000   0.0200   120.0000   0.000   0.000") +
         "\n" + Fmt("(I5)", s.refined) + "\n" +
         Fmt("(F8.4,1X,A,A)", s.zero, s.zeroCode, "  0.0000 0.00  0.0000 0.00 0.000000 0.00   0") +
         "\n   40.00  0.0  0.0  0.0  0.0  0.0\n0.00 0.00 0.00 0.00 0.00 0.00\n"
         "Rutile\n2 0 0 0.0 0.0 1.0 0 0 0 0 0 0.0 0 0 0\nP 42/m n m\n" +
         Fmt("(A,F8.4,A)", "Ti   TI   0.0 0.0 0.0 ", s.bTi, " 0.125 0 0 0") + "\n0 0 0 " +
         s.bTiCode + " 0\n" +
         Fmt("(A,2F9.5,A,F8.4,F9.5,A)", "O    O    ", s.x, s.x, " 0.0 ", s.bO, s.occO, " 0 0 0") +
         "\n" + s.xCode + " " + s.xCode + " 0 " + s.bOCode + " " + s.occOCode + "\n" +
         Fmt("(F12.6,A)", s.scale, " 0.0 0.0 0.0 0.0 0.0 0") + "\n" + s.scaleCode +
         " 0 0 0 0 0\n0.012 -0.008 0.010 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0 0\n"
         "4.5940 4.5940 2.9590 90 90 90\n0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n";
}

// Runs the job of `s` in `dir`; false when it stopped.
bool RunJob(ScratchDir& dir, CapturedJob& job, const Structure& s) {
  if (!testing::ReadControlText(dir, job, ControlText(s), false)) return false;
  return testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); });
}

// Calculates the pattern of `truth`, with a scale that puts the strongest
// point near 20000 counts, and writes it with Poisson noise as x.dat.
Structure Simulate(ScratchDir& dir, Structure truth) {
  dir.Write("x.dat", "");
  {
    CapturedJob job;
    EXPECT_TRUE(RunJob(dir, job, truth)) << job.Console();
    const Pattern& p = job->patterns[1];
    float top = 0.0f;
    for (int i = 1; i <= p.NPTS; ++i) top = std::max(top, p.Ycalc[i]);
    truth.scale = 20000.0f / top;
  }
  CapturedJob job;
  EXPECT_TRUE(RunJob(dir, job, truth)) << job.Console();
  const Pattern& p = job->patterns[1];
  std::string data = "15.0 0.02 120.0\n";
  for (int i = 1; i <= p.NPTS; ++i) {
    data += Fmt("(F12.1)", PoissonDeviate(*job, p.Ycalc[i] + p.Backg[i]));
    if (i % 8 == 0) data += "\n";
  }
  dir.Write("x.dat", data + "\n");
  return truth;
}

float Sigma(const Job& j, int L) {
  return std::sqrt(std::fabs(j.refinement.normal.A(L, L)));
}

// The refinement job of `truth` from displaced values: scale, x, both B and
// the fifth parameter (the zero for X-rays, the O occupancy for neutrons).
Structure Displaced(const Structure& truth, float scale, float x, float bTi, float bO) {
  Structure start = truth;
  start.job = truth.job == 3 ? 1 : 0;
  start.cycles = 20;
  start.scale = scale * truth.scale;
  start.x = x;
  start.bTi = bTi;
  start.bO = bO;
  start.scaleCode = "11.00";
  start.xCode = "21.00";
  start.bTiCode = "31.00";
  start.bOCode = "41.00";
  start.refined = 5;
  return start;
}

// The common checks: scale, coordinate and displacements within 3 sigma.
void ExpectStructureRecovered(const Job& j, const Structure& truth) {
  const AtomSite& ti = j.atoms[1];
  const AtomSite& o = j.atoms[2];
  EXPECT_NEAR(j.phases[1].pat[1].PAR[1], truth.scale, 3.0f * Sigma(j, 1));
  EXPECT_NEAR(o.ATP[1], truth.x, 3.0f * Sigma(j, 2));
  EXPECT_FLOAT_EQ(o.ATP[1], o.ATP[2]);
  EXPECT_NEAR(ti.ATP[4], truth.bTi, 3.0f * Sigma(j, 3));
  EXPECT_NEAR(o.ATP[4], truth.bO, 3.0f * Sigma(j, 4));
}

TEST(StructureRecovery, XrayRutileRecoversItsCoordinateAndDisplacements) {
  ScratchDir dir;
  const Structure truth = Simulate(dir, Structure{});
  Structure start = Displaced(truth, 1.1f, 0.2950f, 0.9f, 0.3f);
  start.zero = 0.01f;
  start.zeroCode = "51.00";
  CapturedJob job;
  ASSERT_TRUE(RunJob(dir, job, start)) << job.Console();
  ExpectStructureRecovered(*job, truth);
  EXPECT_NEAR(job->patterns[1].GLB[1], truth.zero, 3.0f * Sigma(*job, 5) + 1e-4f);
  EXPECT_LT(Sigma(*job, 2), 0.002f);
}

TEST(StructureRecovery, NeutronRutileRecoversItsCoordinateDisplacementsAndOccupancy) {
  ScratchDir dir;
  Structure simulated;
  simulated.job = 3;
  simulated.occO = 0.23f;
  const Structure truth = Simulate(dir, simulated);
  Structure start = Displaced(truth, 0.9f, 0.3120f, 0.2f, 1.0f);
  start.occO = 0.25f;
  start.occOCode = "51.00";
  CapturedJob job;
  ASSERT_TRUE(RunJob(dir, job, start)) << job.Console();
  ExpectStructureRecovered(*job, truth);
  EXPECT_NEAR(job->atoms[2].ATP[5], truth.occO, 3.0f * Sigma(*job, 5));
  EXPECT_LT(Sigma(*job, 5), 0.01f);
}

}  // namespace
}  // namespace corvinet
