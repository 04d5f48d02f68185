// End-to-end runs of a refinement with strain, size and shift models: the program reads the models,
// refines their parameters, reports the apparent size and strain, and writes a control file that
// runs again.
#include <gtest/gtest.h>

#include <string>

#include "format/fortran_format.h"
#include "observations/poisson.h"
#include "refine/cycle_driver.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::HasLine;
using testing::ScratchDir;

// An orthorhombic crystal phase, TCH profile, strain model 5, platelet size
// along c* and uniaxial shifts along [1 1 0]*. `job` 2 calculates, 0 refines.
std::string ControlText(int job, int cycles, float str1, float lorSiz, float shift1,
                        const std::string& codes, int refined) {
  return "Strain, size and shift\n" +
         Fmt("(I4,A)", job, "   7   1   0   0   0   0   0   0   0   0   0   0   0   0   0   0") +
         "\n   0   0   1   0   1   0   0   0   0   1   0   0   0   0   0   1   0\n"
         " 1.540560 1.540560  0.00000   60.000 12.0000  0.8000  0.0000    0.00    0.0000\n" +
         Fmt("(I3,A)", cycles,
             "  0.01  1.00  1.00  1.00  1.00     20.0000   0.0200   120.0000   0.000   0.000") +
         "\n" + Fmt("(I5)", refined) +
         "\n  0.0000 0.00  0.0000 0.00  0.0000 0.00 0.000000 0.00   0\n"
         "   40.00  0.0  0.0  0.0  0.0  0.0\n0.00 0.00 0.00 0.00 0.00 0.00\n"
         "Phase\n2 0 0 0.0 0.0 1.0 0 0 0 0 0 0.0 0 7 1\n0 0 0 1 0 0 1.0 0.0 0.0 0.0 0\n"
         "P m m m\nFe FE 0.0 0.0 0.0 0.5 1.0 0 0 0\n0 0 0 0 0\n"
         "O O 0.5 0.5 0.5 0.8 1.0 0 0 0\n0 0 0 0 0\n" +
         Fmt("(A,F10.5,A)", "0.05 0.0 0.0", str1, " 0.3 0.5 5") + "\n0 0 0 " + codes.substr(0, 4) +
         " 0 0\n" + Fmt("(A,F10.5,A)", "0.010 -0.008 0.010 0.0 0.02 0.0", lorSiz, " 1") +
         "\n0 0 0 0 0 0 " + codes.substr(5, 4) +
         "\n4.05 4.30 3.90 90 90 90\n0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n" +
         Fmt("(A,F10.5,A)", "0.0", shift1, " 0.0 0 1") + "\n0 " + codes.substr(10, 4) +
         " 0\n1.0 1.0 0.0\n0.0 0.0 1.0\n";
}

// The pattern of the true values, calculated in the process with Poisson noise.
std::string SimulatedData(ScratchDir& dir) {
  CapturedJob job;
  EXPECT_TRUE(testing::ReadControlText(
      dir, job, ControlText(2, 1, 0.6f, 0.05f, 0.04f, "0.00 0.00 0.00", 0), false))
      << job.Console();
  EXPECT_TRUE(testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); })) << job.Console();
  const Pattern& p = job->patterns[1];
  std::string data = "20.0 0.02 120.0\n";
  for (int i = 1; i <= p.NPTS; ++i) {
    data += Fmt("(F12.1)", PoissonDeviate(*job, 20.0f * (p.Ycalc[i] + p.Backg[i])) / 20.0f);
    if (i % 8 == 0) data += "\n";
  }
  return data + "\n";
}

TEST(MicrostructureRun, RefinesStrainSizeAndShiftAndReportsTheApparentSizeAndStrain) {
  ScratchDir dir;
  dir.Write("x.dat", SimulatedData(dir));
  ScratchDir run;
  run.Write("job.dat", dir.Read("x.dat"));
  run.Write("job.pcr", ControlText(0, 15, 0.8f, 0.03f, 0.0f, "11.0 21.0 31.0", 3));
  const auto first = testing::RunBinary(run.path, "job");
  ASSERT_EQ(first.exitCode, 0) << first.output;
  const std::string out = run.Read("job.out");
  EXPECT_TRUE(HasLine(out, " => The   5th model for strain is used")) << out;
  EXPECT_TRUE(HasLine(out, " => Strain along a and/or b in an orthorrombic lattice ")) << out;
  EXPECT_TRUE(HasLine(out, " => Platelet-like size effect: Lorentzian FWHM")) << out;
  EXPECT_TRUE(HasLine(out, " => Uniaxial shifts along a direction [S1,S2,S3] ")) << out;
  EXPECT_TRUE(HasLine(out, " Shv = Shift1 * cos(Phi) ")) << out;
  EXPECT_TRUE(HasLine(out, " => Apparent size and strain of phase  1 in pattern  1")) << out;
  EXPECT_NE(out.find(" => Average apparent size (A):"), std::string::npos);
  EXPECT_NE(out.find(" => Average apparent strain (1e-4):"), std::string::npos);
  // The new control file holds the refined values and runs again.
  const std::string written = run.Read("job.pcr");
  EXPECT_NE(written.find("0.6"), std::string::npos) << written;
  const auto second = testing::RunBinary(run.path, "job");
  EXPECT_EQ(second.exitCode, 0) << second.output;
}

}  // namespace
}  // namespace corvinet
