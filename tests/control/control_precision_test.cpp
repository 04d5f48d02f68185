// Values from 1e-6 to 1e6 survive a round trip of the control file: read, write, read gives every
// value to six significant digits, refined or not.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "control/control_writer.h"
#include "records/profile_slots.h"
#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

// Flat data over 20 to 60 degrees in steps of 0.02, free format.
std::string FlatData() {
  std::string data = "20.0 0.02 60.0\n";
  for (int i = 1; i <= 2001; ++i) data += i % 10 == 0 ? "100\n" : "100 ";
  return data + "\n";
}

// A refinement whose values span 1e-6 to 1e6: background coefficients, scale,
// widths, asymmetry, atom parameters and globals; scale, W and the zero shift
// are refined.
const char* const kWideValues =
    "COMM Values from 1e-6 to 1e6\n"
    "0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n"
    "0 0 1 0 1 0 0 0 0 1 0 0 0 0 0 0 0\n"
    "1.5406 1.5444 0.5 40.0 8.0 0.8 0.0 30.0 0.0\n"
    "3 0.1 1 1 1 1 20.0 0.02 60.0 0 0\n"
    "3\n"
    "0.0123457 31.0 -0.000987654 0.0 4.12345e-5 0.0 0.0 0.0 0\n"
    "987654.0 -12345.7 987.654 0.0123457 1.23457e-6 4.12345e-5\n"
    "0 0 0 0 0 0\n"
    "Phase one\n"
    "1 0 0 0.0 0.0 1.0 0 0 0 0 0 0.0 0 0 0\n"
    "P m 3 m\n"
    "Fe FE 0.123457 0.0 0.0 12.3457 0.987654 0 0 0\n"
    "0 0 0 0 0\n"
    "12345.7 0.987654 0.0 0.0 0.0 0.0 0\n"
    "11.0 0 0 0 0 0\n"
    "1.23457e-6 -4.12345e-7 4.12345e-5 0.000987654 0.0 0.0 0.0 0\n"
    "0 0 21.0 0 0 0 0\n"
    "4.0 4.0 4.0 90 90 90\n"
    "0 0 0 0 0 0\n"
    "0.0123457 0.0 0.0987654 0.0 0.0 0.0\n"
    "0 0 0 0 0 0\n";

bool SixDigits(float again, float first) {
  return std::fabs(again - first) <= 5.0e-6f * std::fabs(first);
}

#define EXPECT_SIX_DIGITS(field)                                                                  \
  EXPECT_TRUE(SixDigits(b.field, a.field)) << #field << ": " << a.field << " " << b.field << "\n" \
                                           << run.written

struct RoundTripRun {
  ScratchDir dir;
  CapturedJob first;
  CapturedJob second;
  std::string written;
  RoundTripRun() {
    dir.Write("x.dat", FlatData());
    EXPECT_TRUE(testing::ReadControlText(dir, first, kWideValues, false)) << first.Console();
    EXPECT_TRUE(testing::RunsWithoutStop(*first, [](Job& j) { WriteControlFile(j, 0, 0, 0, 0); }))
        << first.Console();
    written = dir.Read("x.pcr");
    EXPECT_TRUE(testing::ReadControlText(dir, second, written, false))
        << second.Console() << written;
  }
};

TEST(ControlPrecision, ValuesFromOneMillionthToOneMillionReadBackToSixDigits) {
  RoundTripRun run;
  {
    const Pattern& a = run.first->patterns[1];
    const Pattern& b = run.second->patterns[1];
    for (int n : {1, 8, 9}) EXPECT_SIX_DIGITS(GLB[n]);
    for (int n = 2; n <= 7; ++n) EXPECT_SIX_DIGITS(GLB[n]);
  }
  {
    const PhasePattern& a = run.first->phases[1].pat[1];
    const PhasePattern& b = run.second->phases[1].pat[1];
    for (int s : {ProfileSlot::Scale, ProfileSlot::U, ProfileSlot::V, ProfileSlot::W}) {
      EXPECT_SIX_DIGITS(PAR[s]);
    }
    for (int s = 1; s <= DimensionLimits::MPAR; ++s) EXPECT_SIX_DIGITS(PAR[s]);
    for (int i = 1; i <= 6; ++i) EXPECT_SIX_DIGITS(CellConstants[i]);
  }
  {
    const AtomSite& a = run.first->atoms[1];
    const AtomSite& b = run.second->atoms[1];
    for (int j = 1; j <= 5; ++j) EXPECT_SIX_DIGITS(ATP[j]);
  }
  // The values typed are the values read: the widths are the synchrotron ones.
  EXPECT_FLOAT_EQ(run.first->phases[1].pat[1].PAR[ProfileSlot::W], 4.12345e-5f);
  EXPECT_FLOAT_EQ(run.first->patterns[1].GLB[2], 987654.0f);
}

TEST(ControlPrecision, SecondWritingGivesTheSameText) {
  RoundTripRun run;
  ASSERT_TRUE(
      testing::RunsWithoutStop(*run.second, [](Job& j) { WriteControlFile(j, 0, 0, 0, 0); }));
  EXPECT_EQ(run.dir.Read("x.pcr"), run.written);
}

}  // namespace
}  // namespace corvinet
