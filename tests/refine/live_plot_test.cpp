// The live plot of the cycles: the questions after a cycle and their effects, the pages of several
// patterns, and the page a browser reloads.
#include <gtest/gtest.h>

#include <string>

#include "refine/live_plot.h"
#include "surface/console.h"
#include "surface/drawing_page.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

// A job "live" of `patterns` small patterns and `cycles` cycles.
void Prepare(Job& job, int patterns, int cycles) {
  job.driver.PcrCode = "live";
  job.run.NPATT = patterns;
  job.run.NCY = cycles;
  job.run.Title = "Live plot test";
  for (int ip = 1; ip <= patterns; ++ip) {
    Pattern& p = job.patterns[ip];
    p.NPTS = 3;
    for (int i = 1; i <= 3; ++i) {
      p.X[i] = 10.0f * static_cast<float>(i);
      p.Ytotal[i] = 100.0f * static_cast<float>(i);
      p.Ycalc[i] = 90.0f * static_cast<float>(i);
      p.Backg[i] = 5.0f;
    }
  }
}

int Count(const std::string& text, const std::string& word) {
  int n = 0;
  for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
    ++n;
  }
  return n;
}

TEST(LivePlot, OneCycleShowsOnlyRefinementFinished) {
  ScratchDir dir;
  CapturedJob job;
  Prepare(*job, 1, 1);
  PlotCycle(*job, 1);
  const std::string console = job.Console();
  EXPECT_EQ(Count(console, "Refinement finished!"), 1);
  EXPECT_EQ(Count(console, "Continue refinement ?"), 0);
  EXPECT_EQ(job->refinement.plotWindow.pages, 1);
  EXPECT_TRUE(dir.Exists("live_plot.html"));
  if (PicturesAvailable()) {
    EXPECT_TRUE(dir.Exists("live_plot.png"));
    EXPECT_TRUE(dir.Exists("live_plot.svg"));
  }
}

TEST(LivePlot, YesContinuesTheRefinement) {
  ScratchDir dir;
  CapturedJob job("y\n");
  Prepare(*job, 1, 3);
  EXPECT_TRUE(testing::RunsWithoutStop(*job, [](Job& j) { PlotCycle(j, 1); }));
  EXPECT_EQ(Count(job.Console(), "Continue refinement ?"), 1);
  EXPECT_EQ(Count(job.Console(), "Corvinet stopped!"), 0);
}

TEST(LivePlot, NoStopsTheRunWithANormalEnd) {
  ScratchDir dir;
  CapturedJob job("n\n");
  Prepare(*job, 1, 3);
  ExitStatus status = ExitStatus::kError;
  try {
    PlotCycle(*job, 2);
    FAIL() << "the run went on";
  } catch (const ProcessStop& stop) {
    status = stop.status;
  }
  EXPECT_EQ(status, ExitStatus::kNormal);
  EXPECT_EQ(Count(job.Console(), "Corvinet stopped!"), 1);
}

TEST(LivePlot, EndOfInputAnswersNo) {
  ScratchDir dir;
  CapturedJob job;
  Prepare(*job, 1, 3);
  EXPECT_FALSE(testing::RunsWithoutStop(*job, [](Job& j) { PlotCycle(j, 1); }));
  EXPECT_EQ(Count(job.Console(), "Corvinet stopped!"), 1);
}

TEST(LivePlot, NoToNextPatternSkipsTheRestButStillAsksToContinue) {
  ScratchDir dir;
  CapturedJob job("n\ny\n");
  Prepare(*job, 3, 4);
  EXPECT_TRUE(testing::RunsWithoutStop(*job, [](Job& j) { PlotCycle(j, 1); }));
  const std::string console = job.Console();
  EXPECT_EQ(Count(console, "Next Pattern ?"), 1);
  EXPECT_EQ(Count(console, "Continue refinement ?"), 1);
  // Only the first pattern was drawn.
  EXPECT_EQ(job->refinement.plotWindow.pages, 1);
  EXPECT_TRUE(job->refinement.plotWindow.open);
}

TEST(LivePlot, YesToNextPatternDrawsEveryPattern) {
  ScratchDir dir;
  CapturedJob job("y\ny\ny\n");
  Prepare(*job, 3, 4);
  EXPECT_TRUE(testing::RunsWithoutStop(*job, [](Job& j) { PlotCycle(j, 1); }));
  EXPECT_EQ(Count(job.Console(), "Next Pattern ?"), 2);
  EXPECT_EQ(job->refinement.plotWindow.pages, 3);
  EXPECT_EQ(job->refinement.plotWindow.title, "Corvinet Refinement for pattern #  3");
}

TEST(LivePlot, HtmlShowsThePictureAndReloads) {
  const std::string html = LivePlotHtml("job_plot.png", "Corvinet Refinement for pattern #  1");
  EXPECT_NE(html.find("<meta http-equiv=\"refresh\" content=\"2\">"), std::string::npos);
  EXPECT_NE(html.find("<img src=\"job_plot.png\""), std::string::npos);
  EXPECT_NE(html.find("<title>Corvinet Refinement for pattern #  1</title>"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
