// Refinements of patterns simulated with anisotropic strain and size recover the values they were
// simulated with, from displaced starts.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "format/fortran_format.h"
#include "observations/poisson.h"
#include "records/profile_slots.h"
#include "refine/cycle_driver.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;
namespace Slot = ProfileSlot;

// An orthorhombic crystal phase (its intensities from two atoms, so that no
// extraction of intensities couples them to the widths) with the TCH
// profile: strain model 5 (along a and b,
// with their correlation Str3) and platelet size along c* (size model 1).
struct Microstructure {
  float str1 = 0.6f, str2 = 0.3f, str3 = 0.5f;
  float lorSiz = 0.05f;
  float shift1 = 0.0f;
  int modS = 0;
  std::string strainCodes = "0 0 0", sizeCode = "0", shiftCode = "0";
  int refined = 0;
  int job = 2;  // 2 calculation, 0 refinement
  int cycles = 1;
};

std::string ControlText(const Microstructure& m) {
  const bool shift = m.modS != 0;
  return "Simulated anisotropic broadening\n" +
         Fmt("(I4,A)", m.job, "   7   1   0   0   0   0   0   0   0   0   0   0   0   0   0   0") +
         "\n   0   0   1   0   0   0   0   0   0   0   0   0   0   0   0   1   0\n"
         " 1.540560 1.540560  0.00000   60.000 12.0000  0.8000  0.0000    0.00    0.0000\n" +
         Fmt("(I3,A)", m.cycles,
             "  0.01  1.00  1.00  1.00  1.00     20.0000   0.0200   120.0000   0.000   0.000") +
         "\n" + Fmt("(I5)", m.refined) + "\n" +
         "  0.0000 0.00  0.0000 0.00  0.0000 0.00 0.000000 0.00   0\n"
         "   40.00  0.0  0.0  0.0  0.0  0.0\n0.00 0.00 0.00 0.00 0.00 0.00\n"
         "Phase\n2 0 0 0.0 0.0 1.0 0 0 0 0 0 0.0 0 7 " +
         (shift ? "1\n0 0 0 1 0 0 1.0 0.0 0.0 0.0 0" : "0") +
         "\nP m m m\nFe FE 0.0 0.0 0.0 0.5 1.0 0 0 0\n0 0 0 0 0\n"
         "O O 0.5 0.5 0.5 0.8 1.0 0 0 0\n0 0 0 0 0\n" +
         Fmt("(A,3F10.5,A)", "0.05 0.0 0.0", m.str1, m.str2, m.str3, " 5") + "\n0 0 0 " +
         m.strainCodes + "\n" +
         Fmt("(A,F10.5,A)", "0.010 -0.008 0.010 0.0 0.02 0.0", m.lorSiz, " 1") + "\n0 0 0 0 0 0 " +
         m.sizeCode + "\n4.05 4.30 3.90 90 90 90\n0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n" +
         (shift ? Fmt("(A,F10.5,A,I3)", "0.0", m.shift1, " 0.0 0", m.modS) + "\n0 " + m.shiftCode +
                      " 0\n1.0 1.0 0.0\n"
                : std::string()) +
         "0.0 0.0 1.0\n";
}

// Calculates the pattern of `truth` and writes it with Poisson noise as x.dat.
void Simulate(ScratchDir& dir, const Microstructure& truth) {
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, ControlText(truth), false)) << job.Console();
  ASSERT_TRUE(testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); })) << job.Console();
  const Pattern& p = job->patterns[1];
  std::string data = "20.0 0.02 120.0\n";
  for (int i = 1; i <= p.NPTS; ++i) {
    const float mean = 20.0f * (p.Ycalc[i] + p.Backg[i]);
    data += Fmt("(F12.1)", PoissonDeviate(*job, mean) / 20.0f);
    if (i % 8 == 0) data += "\n";
  }
  dir.Write("x.dat", data + "\n");
}

// The pattern is simulated by the program itself with the true values, with
// Poisson noise; the refinement starts from displaced values and must end
// within three standard deviations of the truth.
TEST(BroadeningRecovery, AnisotropicStrainAndPlateletSizeFromDisplacedStarts) {
  ScratchDir dir;
  const Microstructure truth;
  Simulate(dir, truth);
  Microstructure start = truth;
  start.job = 0;
  start.cycles = 30;
  start.str1 = 0.8f;
  start.str2 = 0.2f;
  start.str3 = 0.2f;
  start.lorSiz = 0.03f;
  start.strainCodes = "11.0 21.0 31.0";
  start.sizeCode = "41.0";
  start.refined = 4;
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, ControlText(start), false)) << job.Console();
  ASSERT_TRUE(testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); })) << job.Console();
  const Job& j = *job;
  const auto sigma = [&](int L) { return std::sqrt(std::fabs(j.refinement.normal.A(L, L))); };
  const PhasePattern& c = j.phases[1].pat[1];
  EXPECT_NEAR(std::fabs(c.PAR[Slot::Str1]), truth.str1, 3.0f * sigma(1));
  EXPECT_NEAR(std::fabs(c.PAR[Slot::Str2]), truth.str2, 3.0f * sigma(2));
  EXPECT_NEAR(c.PAR[Slot::Str3], truth.str3, 3.0f * sigma(3));
  EXPECT_NEAR(c.PAR[Slot::LorSiz], truth.lorSiz, 3.0f * sigma(4));
  // The data determine them: each is known to a few per cent or better.
  EXPECT_LT(sigma(1), 0.05f * truth.str1);
  EXPECT_LT(sigma(2), 0.1f * truth.str2);
  EXPECT_LT(sigma(4), 0.1f * truth.lorSiz);
}

TEST(BroadeningRecovery, UniaxialShiftFromADisplacedStart) {
  ScratchDir dir;
  Microstructure truth;
  truth.modS = 1;
  truth.shift1 = 0.04f;
  Simulate(dir, truth);
  Microstructure start = truth;
  start.job = 0;
  start.cycles = 20;
  start.shift1 = 0.0f;
  start.shiftCode = "11.0";
  start.refined = 1;
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, ControlText(start), false)) << job.Console();
  ASSERT_TRUE(testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); })) << job.Console();
  const Job& j = *job;
  const float sigma = std::sqrt(std::fabs(j.refinement.normal.A(1, 1)));
  EXPECT_NEAR(j.phases[1].pat[1].PAR[Slot::Shift1], truth.shift1, 3.0f * sigma);
  EXPECT_LT(sigma, 0.002f);
}

}  // namespace
}  // namespace corvinet
