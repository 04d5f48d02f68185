// Tests of console lines, numbers on console lines, the stop box and the switch to the log unit.
#include "surface/console.h"

#include <gtest/gtest.h>

#include "surface/prompts.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;

TEST(Console, EmptyTextGivesTwoBlanks) {
  CapturedJob job;
  ConsoleLine(*job, "");
  ConsoleLine(*job, "    ");
  EXPECT_EQ(job.Console(), "  \n  \n");
}

TEST(Console, TextBeginningWithTwoEqualSignsGetsAnArrow) {
  CapturedJob job;
  ConsoleLine(*job, "==> Reading");
  EXPECT_EQ(job.Console(), " =>==> Reading\n");
}

TEST(Console, SingleEqualSignIsNotPrefixed) {
  CapturedJob job;
  ConsoleLine(*job, "=");
  ConsoleLine(*job, "=x");
  EXPECT_EQ(job.Console(), "=\n=x\n");
}

TEST(Console, LineIsCutAt132Characters) {
  CapturedJob job;
  ConsoleLine(*job, std::string(140, 'a'));
  EXPECT_EQ(job.Console(), std::string(132, 'a') + "\n");
}

TEST(Console, CycleTextWithLeadingBlankShowsNumberInEightColumns) {
  CapturedJob job;
  ConsoleLineWithNumber(*job, " ===================>>> CYCLE:", 12, 0.0f, 1);
  EXPECT_EQ(job.Console(), "    ===================>>> CYCLE:      12\n");
}

TEST(Console, NumberModesTwoAndThree) {
  CapturedJob job;
  ConsoleLineWithNumber(*job, "==> Chi2:", 0, 1.5f, 2);
  ConsoleLineWithNumber(*job, "Value", 3, 2.25f, 3);
  ConsoleLineWithNumber(*job, "Nothing", 3, 2.25f, 9);
  // G12.4 of 1.5 is "   1.500    " and the line is trimmed.
  EXPECT_EQ(job.Console(), " =>==> Chi2:   1.500\n   Value       3and    2.250\n   Nothing\n");
}

TEST(Console, WarningBoxReturns) {
  CapturedJob job;
  WarningBox(*job, " A warning ");
  EXPECT_EQ(job.Console(), "=== Stop/Warning Box ===\n A warning\n");
}

TEST(Console, StopBoxEndsTheProcessWithTheErrorStatus) {
  CapturedJob job;
  try {
    StopBox(*job, " Invalid JOBTYP ");
    FAIL() << "the stop box returned";
  } catch (const ProcessStop& stop) {
    EXPECT_EQ(static_cast<int>(stop.status), 2);
  }
  EXPECT_NE(job.Console().find(" Invalid JOBTYP"), std::string::npos);
  EXPECT_EQ(job.Console(), "=== Stop/Warning Box ===\n Invalid JOBTYP\n");
}

TEST(Console, LinesGoToTheLogUnitWhenSwitched) {
  testing::ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(OpenUnit(job->files.units[Unit::CyclicLog], "x.log", OpenStatus::Unknown));
  job->console.ConsoleUnit = Unit::CyclicLog;
  ConsoleLine(*job, "into the log");
  job->console.ConsoleUnit = Unit::Console;
  ConsoleLine(*job, "on the terminal");
  CloseUnit(job->files.units[Unit::CyclicLog]);
  EXPECT_EQ(dir.Read("x.log"), "into the log\n");
  EXPECT_EQ(job.Console(), "on the terminal\n");
}

TEST(Console, ClearTextBlanksTheTrimmedLength) {
  std::string t = "abc  ";
  ClearText(t);
  EXPECT_EQ(t, "     ");
}

TEST(Prompts, EmptyAnswerTakesThePresetAndEndOfInputAnswersNo) {
  CapturedJob job("\nn\ny\n");
  EXPECT_TRUE(AskYesNo(job->console, "T", "Q?", true));
  EXPECT_FALSE(AskYesNo(job->console, "T", "Q?", true));
  EXPECT_TRUE(AskYesNo(job->console, "T", "Q?", false));
  EXPECT_FALSE(AskYesNo(job->console, "T", "Q?", true));
  EXPECT_NE(job.Console().find("T: Q?"), std::string::npos);
}

TEST(Prompts, FileDialogTakesRelativeAnswersInsideTheStartDirectory) {
  CapturedJob job("abc.pcr\n/x/y.pcr\n\n");
  EXPECT_EQ(
      FileOpenDialog(job->console, "PCR files", "*.PCR", "Select input PCR file:", "/w/").value(),
      "/w/abc.pcr");
  EXPECT_EQ(
      FileOpenDialog(job->console, "PCR files", "*.PCR", "Select input PCR file:", "/w/").value(),
      "/x/y.pcr");
  EXPECT_FALSE(
      FileOpenDialog(job->console, "PCR files", "*.PCR", "Select input PCR file:", "").has_value());
  EXPECT_FALSE(
      FileOpenDialog(job->console, "PCR files", "*.PCR", "Select input PCR file:", "").has_value());
  EXPECT_NE(job.Console().find("Select input PCR file: [PCR files: *.PCR] in /w/"),
            std::string::npos);
}

}  // namespace
}  // namespace corvinet
