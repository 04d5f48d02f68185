// Tests of the objects of a phase as its species are set up: the report of the form-factor
// option, and the stop beyond the limit of objects.
#include <gtest/gtest.h>

#include <string>

#include "format/fortran_format.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

// A cubic phase of `count` atoms, all of them thin spherical shells.
std::string ShellsText(int count) {
  std::string atoms;
  for (int i = 1; i <= count; ++i) {
    atoms += Fmt("(A,I2.2,A)", "S", i, "  SPHS 0.1 0.2 0.3 0.0 0.02 0 0 4\n0 0 0 0 0\n") +
             "5.0 1.0 0 0 0 0 0\n0 0 0 0 0 0 0\n0 0 0 0 0 0 0\n0 0 0 0 0 0 0\n";
  }
  return "Shells\n   2   0   1   0   0   0   0   0   0   0   0   0   0   0   0   0   0\n"
         "   0   0   1   0   0   0   0   0   0   0   0   0   0   0   0   1   0\n"
         " 1.540560 1.540560  0.00000   60.000 10.0000  0.0000  0.0000    0.00    0.0000\n"
         "  1  0.01  1.00  1.00  1.00  1.00      2.0000   0.0100    14.0000   0.000   0.000\n"
         "    0\n  0.0000 0.00  0.0000 0.00  0.0000 0.00 0.000000 0.00   0\n"
         "   40.00  0.0  0.0  0.0  0.0  0.0\n0.00 0.00 0.00 0.00 0.00 0.00\n"
         "Shells\n" +
         Fmt("(I3,A)", count, " 0 0 0.0 0.0 1.0 0 0 0 0 0 0.0 0 0 0") + "\nP 1\n" + atoms +
         "1.0 0.0 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n0.002 -0.001 0.002 0.0 0.0 0.0 0.0 0\n"
         "0 0 0 0 0 0 0\n30.000 30.000 30.000 90 90 90\n0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n";
}

TEST(ObjectCount, APhaseWithObjectsOpensTheReportOfTheFormFactorOption) {
  ScratchDir dir;
  dir.Write("x.dat", "");
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, ShellsText(2), false)) << job.Console();
  const std::string out = dir.Read("x.out");
  EXPECT_NE(out.find(" Form factor option"), std::string::npos);
  EXPECT_NE(out.find(" SPHS  Form-factor of an user-supplied object"), std::string::npos) << out;
  EXPECT_EQ(job->atoms[1].nuclearSpecies, -1);
  EXPECT_EQ(job->atoms[2].nuclearSpecies, -2);
}

TEST(ObjectCount, MoreObjectsThanTheLimitStopWithTheirMessage) {
  ScratchDir dir;
  dir.Write("x.dat", "");
  CapturedJob job;
  EXPECT_FALSE(testing::ReadControlText(dir, job, ShellsText(61), false));
  EXPECT_NE(job.Console().find(" => Number of objects greater than the maximum:  60"),
            std::string::npos)
      << job.Console();
  EXPECT_NE(job.Console().find(" Too many form factors"), std::string::npos) << job.Console();
}

}  // namespace
}  // namespace corvinet
