// End-to-end runs of control files that hold values no model of this version uses: each stops
// before the first cycle with a line naming the phase and what it holds, and leaves its inputs
// as they were.
#include <gtest/gtest.h>

#include <string>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::HasLine;
using testing::ScratchDir;
using testing::TestData;

// The exit status of a run that ends in a stop box: an error.
constexpr int kStopStatus = 2;

// Replaces the one occurrence of `from` in `text` by `to`.
std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  if (at != std::string::npos) text.replace(at, from.size(), to);
  return text;
}

// The profile-matching job of tests/data/cycle with its one phase changed by `edit`.
std::string CycleJob() {
  return TestData("cycle/cycle1.pcr");
}

// Runs `pcr` on the simulated data and checks the stop: the console line,
// the stop box, no cycle, and the control and data files unchanged.
void ExpectStop(const std::string& pcr, const std::string& line) {
  ScratchDir dir;
  const std::string data = TestData("cycle/cycle.dat");
  dir.Write("job.pcr", pcr);
  dir.Write("job.dat", data);
  const auto run = testing::RunBinary(dir.path, "job");
  EXPECT_EQ(run.exitCode, kStopStatus);
  EXPECT_TRUE(HasLine(run.output, line)) << run.output;
  EXPECT_TRUE(HasLine(run.output, " Input not modelled by this version")) << run.output;
  const std::string out = dir.Read("job.out");
  EXPECT_TRUE(HasLine(out, line)) << out;
  EXPECT_EQ(out.find(" => CYCLE No.:"), std::string::npos);
  EXPECT_EQ(dir.Read("job.pcr"), pcr);
  EXPECT_EQ(dir.Read("job.dat"), data);
}

constexpr const char* kWidthLine =
    "  0.100000 -0.050000  0.050000  0.000000  0.000000  0.000000  0.000000    0";
constexpr const char* kScaleLine =
    "  0.100000     0.0000    0.0000    0.0000    0.0000    0.0000       0";
constexpr const char* kPhaseLine =
    "   0   0   0 0.0 0.0 1.0   2   0   0   0   0          0.000   0   0   0";

constexpr const char* kUnreadSizeStrain =
    " => Phase 1: size and strain parameters are not read by the size and strain models of the "
    "phase";

// LorSiz with Size-Model 0: no size model reads it.
TEST(UnmodelledInputs, LorentzianSizeWithoutSizeModelStopsTheRun) {
  const std::string pcr =
      Replaced(CycleJob(), kWidthLine,
               "  0.100000 -0.050000  0.050000  0.000000  0.000000  0.000000  0.020000    0");
  ExpectStop(pcr, kUnreadSizeStrain);
}

// Str1 with Strain-Model 0 and Str 0: no strain model reads it.
TEST(UnmodelledInputs, StrainParameterWithoutStrainModelStopsTheRun) {
  const std::string pcr =
      Replaced(CycleJob(), kScaleLine,
               "  0.100000     0.0000    0.0000    0.0150    0.0000    0.0000       0");
  ExpectStop(pcr, kUnreadSizeStrain);
}

// A size term refined from zero with no size model would have no derivative.
TEST(UnmodelledInputs, RefinedSizeWithoutSizeModelStopsTheRun) {
  std::string pcr = Replaced(CycleJob(), "    3    !Number", "    4    !Number");
  pcr = Replaced(pcr, "   0.000     0.000     0.000     0.000     0.000     0.000     0.000",
                 "   0.000     0.000     0.000     0.000     0.000     0.000    41.000");
  ExpectStop(pcr, kUnreadSizeStrain);
}

// A size model acts on the Lorentzian width of the TCH profile; with the
// Gaussian profile of this job its term would do nothing.
TEST(UnmodelledInputs, SizeModelWithoutTchProfileStopsTheRun) {
  const std::string pcr =
      Replaced(CycleJob(), kWidthLine,
               "  0.100000 -0.050000  0.050000  0.000000  0.000000  0.000000  0.020000    5");
  ExpectStop(pcr,
             " => Phase 1: size parameters act on the Thompson-Cox-Hastings profile (Npr 7) "
             "only");
}

// Runs `pcr` on the simulated data: it must run its cycle and end normally.
void ExpectCycles(const std::string& pcr) {
  ScratchDir dir;
  dir.Write("job.pcr", pcr);
  dir.Write("job.dat", TestData("cycle/cycle.dat"));
  const auto run = testing::RunBinary(dir.path, "job");
  EXPECT_EQ(run.exitCode, 0) << run.output;
  EXPECT_NE(dir.Read("job.out").find(" => CYCLE No.:"), std::string::npos);
  EXPECT_FALSE(HasLine(run.output, " Input not modelled by this version"));
}

// Strain model 2 reads Str1: the run goes on.
TEST(UnmodelledInputs, StrainParameterWithItsModelRunsTheCycles) {
  ExpectCycles(Replaced(CycleJob(), kScaleLine,
                        "  0.100000     0.0000    0.0000    0.0150    0.0000    0.0000       2"));
}

// Npr 12, the pseudo-Voigt with axial divergence, with its S_L and D_L line: it is modelled now.
TEST(UnmodelledInputs, AxialDivergenceProfileRunsTheCycles) {
  std::string pcr =
      Replaced(CycleJob(), kPhaseLine,
               "   0   0   0 0.0 0.0 1.0   2   0   0   0   0          0.000   0  12   0");
  pcr = Replaced(pcr, "   0.00     0.00     0.00     0.00     0.00     0.00\n",
                 "   0.00     0.00     0.00     0.00     0.00     0.00\n"
                 "  0.02000   0.00   0.02000   0.00\n");
  ExpectCycles(pcr);
}

// The further flags of the phase ask for the hkl-dependent shift line (Sol 1).
std::string WithShiftLine(const std::string& values, bool withAxis = true) {
  std::string pcr =
      Replaced(CycleJob(), kPhaseLine,
               "   0   0   0 0.0 0.0 1.0   2   0   0   0   0          0.000   0   0   1");
  pcr = Replaced(pcr, "P m 3 m",
                 "   0   0   0   1   0   0  1.0000  0.0000  0.0000  0.0000   0\nP m 3 m");
  return Replaced(pcr, "   0.00     0.00     0.00     0.00     0.00     0.00\n",
                  "   0.00     0.00     0.00     0.00     0.00     0.00\n" + values +
                      "\n   0.00   0.00   0.00\n" + (withAxis ? "   0.0   0.0   1.0\n" : ""));
}

TEST(UnmodelledInputs, HklDependentShiftRunsTheCycles) {
  ExpectCycles(WithShiftLine("  0.0000  0.0300  0.0000   0   1"));
}

// Shift model 0 reads no shift parameter.
TEST(UnmodelledInputs, ShiftWithoutShiftModelStopsTheRun) {
  ExpectStop(WithShiftLine("  0.0000  0.0300  0.0000   0   0", false),
             " => Phase 1: hkl-dependent shift parameters are not read by the shift model of the "
             "phase");
}

TEST(UnmodelledInputs, HklDependentAsymmetryStopsTheRun) {
  ExpectStop(WithShiftLine("  0.0100  0.0000  0.0000   1   1"),
             " => Phase 1: the hkl-dependent asymmetry parameter is not modelled by this version");
}

TEST(UnmodelledInputs, FurtherParameterStopsTheRun) {
  std::string pcr =
      Replaced(CycleJob(), kPhaseLine,
               "   0   0   0 0.0 0.0 1.0   2   0   0   0   1          0.000   0   0   0");
  pcr = Replaced(pcr, "   0.00     0.00     0.00     0.00     0.00     0.00\n",
                 "   0.00     0.00     0.00     0.00     0.00     0.00\nAbcd  0.5000  0.00\n");
  ExpectStop(pcr, " => Phase 1: further parameters are not modelled by this version");
}

// Zero size and strain terms with no code, as most control files hold them, run as before.
TEST(UnmodelledInputs, ZeroTermsRunTheCycles) {
  ScratchDir dir;
  dir.Write("job.pcr", CycleJob());
  dir.Write("job.dat", TestData("cycle/cycle.dat"));
  const auto run = testing::RunBinary(dir.path, "job");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_NE(dir.Read("job.out").find(" => CYCLE No.:"), std::string::npos);
  EXPECT_FALSE(HasLine(run.output, " Input not modelled by this version"));
}

}  // namespace
}  // namespace corvinet
