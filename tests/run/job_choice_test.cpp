// Tests of the choice of a job: paths and the continue dialogs.
#include "run/job_choice.h"

#include <gtest/gtest.h>

#include <string>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;

TEST(JobChoice, SplitPathCutsAtTheLastSlash) {
  std::string directory, file;
  SplitPath("/a/b/c.pcr", directory, file);
  EXPECT_EQ(directory, "/a/b/");
  EXPECT_EQ(file, "c.pcr");
  SplitPath("c.pcr", directory, file);
  EXPECT_EQ(directory, "");
  EXPECT_EQ(file, "c.pcr");
  SplitPath("dir/", directory, file);
  EXPECT_EQ(directory, "dir/");
  EXPECT_EQ(file, "");
}

TEST(JobChoice, ContinueDialogsGiveSameOtherOrStop) {
  CapturedJob job("y\nn\ny\nn\nn\n");
  AskContinue(*job);
  EXPECT_EQ(job->driver.answer, DriverAnswer::kSameData);
  AskContinue(*job);
  EXPECT_EQ(job->driver.answer, DriverAnswer::kOtherData);
  AskContinue(*job);
  EXPECT_EQ(job->driver.answer, DriverAnswer::kStop);
  AskContinue(*job);  // end of input answers No twice
  EXPECT_EQ(job->driver.answer, DriverAnswer::kStop);
  const std::string console = job.Console();
  EXPECT_NE(console.find("Corvinet Refinement: Continue with the same data? [Y/n]"),
            std::string::npos);
  EXPECT_NE(console.find("Corvinet Refinement: Continue with other data? [Y/n]"),
            std::string::npos);
}

}  // namespace
}  // namespace corvinet
