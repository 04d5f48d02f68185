// Values of a time-of-flight phase that its peak does not read stop the run before the first
// cycle with a line naming them; the widths' own size and strain terms Z1 and LStr run.
#include <gtest/gtest.h>

#include <string>

#include "control/unmodelled_inputs.h"
#include "refine/tof_text.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

// Reads `m` and runs the check: whether it stopped, and the console.
bool Stops(const TofModel& m, std::string& console) {
  ScratchDir dir;
  CapturedJob job;
  EXPECT_TRUE(testing::ReadControlText(dir, job, TofText(m), false)) << job.Console();
  const bool ran = testing::RunsWithoutStop(*job, [](Job& j) { StopOnUnmodelledInputs(j); });
  console = job.Console();
  return !ran;
}

void ExpectStopWith(const TofModel& m, const std::string& words) {
  std::string console;
  EXPECT_TRUE(Stops(m, console));
  EXPECT_NE(console.find(" => Phase 1: " + words), std::string::npos) << console;
  EXPECT_NE(console.find("Input not modelled by this version"), std::string::npos) << console;
}

TEST(TofUnmodelledInputs, PlainTimeOfFlightPhaseRuns) {
  std::string console;
  EXPECT_FALSE(Stops(TofModel{}, console)) << console;
}

TEST(TofUnmodelledInputs, Z1AndLStrAreModelledAndRun) {
  TofModel m;
  m.shapeLine = "0.0 0.0 2.0 0.0 0";
  m.gammaTail = "0.3 0.0";
  std::string console;
  EXPECT_FALSE(Stops(m, console)) << console;
}

TEST(TofUnmodelledInputs, XtStopsTheRun) {
  TofModel m;
  m.shapeLine = "0.5 0.0 0.0 0.0 0";
  ExpectStopWith(m, "Xt and Yt have no time-of-flight model in this version");
}

TEST(TofUnmodelledInputs, YtStopsTheRun) {
  TofModel m;
  m.shapeLine = "0.0 0.5 0.0 0.0 0";
  ExpectStopWith(m, "Xt and Yt have no time-of-flight model in this version");
}

TEST(TofUnmodelledInputs, Z0StopsTheRun) {
  TofModel m;
  m.shapeLine = "0.0 0.0 0.0 0.7 0";
  ExpectStopWith(m, "Z0 and LSiz have no time-of-flight model in this version");
}

TEST(TofUnmodelledInputs, LSizStopsTheRun) {
  TofModel m;
  m.gammaTail = "0.0 0.4";
  ExpectStopWith(m, "Z0 and LSiz have no time-of-flight model in this version");
}

TEST(TofUnmodelledInputs, SizeModelStopsTheRun) {
  TofModel m;
  m.shapeLine = "0.0 0.0 0.0 0.0 2";
  ExpectStopWith(m,
                 "size, strain and shift models do not act on time-of-flight peaks in this "
                 "version");
}

}  // namespace
}  // namespace corvinet
