// End-to-end runs with the live plot and the analysis: the questions after every cycle and their
// effects on the binary, the pictures a run leaves, and the analysis that closes the summary.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "test_support.h"

#ifdef CORVINET_HAVE_CAIRO
#include <cairo.h>
#endif

namespace corvinet {
namespace {

using testing::ScratchDir;
using testing::SplitLines;
using testing::TestData;

// The control file with the output line (the one after "!Ipr") replaced.
std::string WithOutputLine(const std::string& pcr, const std::string& line) {
  std::string out;
  bool next = false;
  for (const std::string& l : SplitLines(pcr)) {
    out += (next ? line : l) + "\n";
    next = l.rfind("!Ipr", 0) == 0;
  }
  return out;
}

// The profile-matching job of the cycle tests with the live plot (Ls2 4),
// a .prf file (Prf 1) and the analysis (Ana 1).
void WriteLiveJob(const ScratchDir& dir) {
  dir.Write("live.pcr",
            WithOutputLine(TestData("cycle/cycle3.pcr"),
                           "   0   0   0   0   1   0   4   0   0   1   0   0   0   0   0   0   1"));
  dir.Write("live.dat", TestData("cycle/cycle.dat"));
}

int Count(const std::string& text, const std::string& word) {
  int n = 0;
  for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
    ++n;
  }
  return n;
}

// Width and height of a PNG file, 0 when it does not decode (or without cairo).
std::pair<int, int> PngSize(const std::filesystem::path& path) {
#ifdef CORVINET_HAVE_CAIRO
  cairo_surface_t* s = cairo_image_surface_create_from_png(path.string().c_str());
  std::pair<int, int> size{0, 0};
  if (cairo_surface_status(s) == CAIRO_STATUS_SUCCESS) {
    size = {cairo_image_surface_get_width(s), cairo_image_surface_get_height(s)};
  }
  cairo_surface_destroy(s);
  return size;
#else
  (void)path;
  return {0, 0};
#endif
}

// The number after `label` on its line of `text`.
float ValueAfter(const std::string& text, const std::string& label) {
  const std::size_t at = text.find(label);
  if (at == std::string::npos) return -1.0f;
  return std::stof(text.substr(at + label.size(), 12));
}

TEST(LivePlotEndToEnd, YesAfterEachCycleRunsToTheEndWithPicturesAndAnalysis) {
  ScratchDir dir;
  WriteLiveJob(dir);
  // Three cycles: two questions, then "Refinement finished!".
  const auto run = testing::RunBinary(dir.path, "live", "y\ny\n");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(Count(run.output, "Continue refinement ?"), 2);
  EXPECT_EQ(Count(run.output, "Refinement finished!"), 1);
  EXPECT_TRUE(dir.Exists("live_plot.html"));
  EXPECT_NE(dir.Read("live_plot.html").find("live_plot.png"), std::string::npos);
  EXPECT_TRUE(dir.Exists("live.prf"));
  const std::string sum = dir.Read("live.sum");
  EXPECT_NE(sum.find("       -    ANALYSIS OF THE REFINEMENT    -"), std::string::npos);
  EXPECT_NE(sum.find(" => ANALYSIS OF CORRELATED PARAMETERS "), std::string::npos);
#ifdef CORVINET_HAVE_CAIRO
  EXPECT_EQ(PngSize(dir.path / "live_plot.png"), std::make_pair(1000, 700));
  EXPECT_EQ(PngSize(dir.path / "live_fit.png"), std::make_pair(1600, 1000));
  EXPECT_TRUE(dir.Exists("live_fit.svg"));
#endif
}

TEST(LivePlotEndToEnd, NoStopsTheRunBeforeTheFinalFiles) {
  ScratchDir dir;
  WriteLiveJob(dir);
  const std::string pcr = dir.Read("live.pcr");
  const auto run = testing::RunBinary(dir.path, "live", "n\n");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(Count(run.output, "Continue refinement ?"), 1);
  EXPECT_EQ(Count(run.output, "Corvinet stopped!"), 1);
  EXPECT_EQ(Count(run.output, " ===================>>> CYCLE:"), 1);
  EXPECT_FALSE(dir.Exists("live.prf"));
  EXPECT_FALSE(dir.Exists("live_fit.png"));
  EXPECT_EQ(dir.Read("live.pcr"), pcr);
}

std::string ExampleFile(const std::string& name) {
  const auto path = std::filesystem::path(CORVINET_TEST_DATA) / ".." / ".." / "examples" /
                    "anglesite-xray" / name;
  std::ifstream in(path, std::ios::binary);
  std::stringstream all;
  all << in.rdbuf();
  return all.str();
}

TEST(AnalysisEndToEnd, WithoutIntensityParametersTheDivisorsAreOne) {
  ScratchDir dir;
  WriteLiveJob(dir);
  dir.Write("live.pcr",
            WithOutputLine(TestData("cycle/cycle3.pcr"),
                           "   0   0   0   0   1   0   0   0   0   1   0   0   0   0   0   0   1"));
  const auto run = testing::RunBinary(dir.path, "live");
  EXPECT_EQ(run.exitCode, 0);
  const std::string sum = dir.Read("live.sum");
  EXPECT_NE(sum.find("    Number of intensity-dependent refined parameters:     0"),
            std::string::npos);
  // Profile matching of one phase: the ratios are the effective numbers
  // themselves, and so are the degrees of freedom (R x 1 - 0).
  const float enref = ValueAfter(sum, "                      at level p=1.00  :");
  ASSERT_GT(enref, 0.0f);
  EXPECT_FLOAT_EQ(ValueAfter(sum, "      Ratio (Pessimistic view,p=1.00): "), enref);
  EXPECT_FLOAT_EQ(ValueAfter(sum, " Degrees of freedom for p=1, 1/2, 1/4: "), enref);
}

TEST(AnalysisEndToEnd, SimulatedAnglesiteIsJudgedVeryGood) {
  ScratchDir dir;
  //                                                 Rpa                 Ana
  dir.Write("ana.pcr",
            WithOutputLine(ExampleFile("anglesite.pcr"),
                           "   0   0   1   1   1   0   0   0   0   1   0   1   0   0   0   1   1"));
  dir.Write("ana.dat", ExampleFile("anglesite.dat"));
  const auto run = testing::RunBinary(dir.path, "ana");
  EXPECT_EQ(run.exitCode, 0);
  const std::string sum = dir.Read("ana.sum");
  // The data were simulated from the model with Poisson noise: the refined
  // Rp is the Rp of the noise, which the analysis simulates again.
  const float expected = ValueAfter(sum, "  Expected Rp (background uncorrected): ");
  const float observed = ValueAfter(sum, " Observed-> ");
  ASSERT_GT(expected, 0.0f);
  EXPECT_NEAR(observed / expected, 1.0f, 0.15f);
  // The intensity parameters of the control file: x, z and B of the four atoms
  // on the mirror and x, y, z and B of O3 (the scale counts as a profile one).
  EXPECT_NE(sum.find("    Number of intensity-dependent refined parameters:    16"),
            std::string::npos);
  EXPECT_NE(sum.find(" => Your refinement seems to be very good!"), std::string::npos);
  EXPECT_EQ(sum.find(" => WARNING!:"), std::string::npos);
  // The parameter record carries the figures of the analysis.
  const std::string rpa = dir.Read("ana.rpa");
  for (const char* row : {"\nEXRP ", "\nREFL ", "\nSOLV ", "\nSCOR "}) {
    EXPECT_NE(rpa.find(row), std::string::npos) << row;
  }
  const std::size_t refp = rpa.find("\nREFP ");
  ASSERT_NE(refp, std::string::npos);
  EXPECT_EQ(rpa.substr(rpa.find('\n', refp + 1) - 5, 5), "   16");
#ifdef CORVINET_HAVE_CAIRO
  EXPECT_EQ(PngSize(dir.path / "ana_fit.png"), std::make_pair(1600, 1000));
#endif
}

TEST(AnalysisEndToEnd, StartingModelAfterOneCycleIsJudgedTooHigh) {
  ScratchDir dir;
  std::string pcr =
      WithOutputLine(ExampleFile("anglesite.pcr"),
                     "   0   0   1   1   1   0   0   0   0   1   0   0   0   0   0   1   1");
  // One cycle from the Wyckoff starting model instead of thirty.
  const std::size_t at = pcr.find("\n 30  0.10");
  ASSERT_NE(at, std::string::npos);
  pcr.replace(at, 4, "\n  1");
  dir.Write("one.pcr", pcr);
  dir.Write("one.dat", ExampleFile("anglesite.dat"));
  const auto run = testing::RunBinary(dir.path, "one");
  EXPECT_EQ(run.exitCode, 0);
  const std::string sum = dir.Read("one.sum");
  EXPECT_GT(ValueAfter(sum, "  Reduced Chi-square : "), 10.0f);
  EXPECT_GE(ValueAfter(sum, "  Weighted Average Bragg R-factor: "), 8.0f);
  EXPECT_NE(sum.find("  Reduced Chi-square and average R-Bragg are TOO HIGH"), std::string::npos);
  EXPECT_EQ(sum.find(" => Your refinement seems to be"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
