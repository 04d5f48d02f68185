// The control file named `starting`: the two answers, both built-in jobs written, read back by the
// program's readers and run as pattern calculations, and the detailed form that is not available.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "records/job.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::RunBinary;
using testing::ScratchDir;
using testing::SplitLines;

constexpr double kDegree = 3.14159265358979323846 / 180.0;

// The largest of the calculated intensities of a .prf file: its rows of counts end with a dot.
double LargestCount(const std::string& prf) {
  double largest = 0.0;
  for (const std::string& line : SplitLines(prf)) {
    std::istringstream words(line);
    std::string word;
    while (words >> word) {
      if (word.size() < 2 || word.back() != '.') continue;
      largest = std::max(largest, std::stod(word));
    }
  }
  return largest;
}

// True when some number of the text lies within `tolerance` of `value`.
bool HasNumberNear(const std::string& text, double value, double tolerance) {
  std::istringstream words(text);
  std::string word;
  while (words >> word) {
    char* end = nullptr;
    const double x = std::strtod(word.c_str(), &end);
    if (end != word.c_str() && *end == '\0' && std::fabs(x - value) <= tolerance) return true;
  }
  return false;
}

// Makes the template with the given answers and keeps it as `name`.pcr beside it.
std::string MakeTemplate(ScratchDir& dir, const std::string& answers, const std::string& name,
                         std::string* console = nullptr) {
  const testing::BinaryRun run = RunBinary(dir.path, "starting", answers);
  EXPECT_EQ(run.exitCode, 0) << run.output;
  if (console != nullptr) *console = run.output;
  EXPECT_NE(run.output.find(" Template File: 'starting.pcr' has been created"), std::string::npos);
  const std::string text = dir.Read("starting.pcr");
  dir.Write(name + ".pcr", text);
  return text;
}

TEST(StartingTemplate, AnEmptyAnswerToTheFirstQuestionMeansTheStandardChoice) {
  ScratchDir dir;
  std::string console;
  MakeTemplate(dir, "\n1\n", "ceo2", &console);
  EXPECT_NE(console.find("  Template File 'STARTING.PCR': CALCULATION PATTERN OF CEO2"),
            std::string::npos);
  EXPECT_EQ(console.find("Sorry!"), std::string::npos);
}

TEST(StartingTemplate, AnEmptyAnswerToTheSecondQuestionMeansTheSecondJob) {
  ScratchDir dir;
  std::string console;
  MakeTemplate(dir, "s\n\n", "ho", &console);
  EXPECT_NE(console.find("  Template File 'STARTING.PCR': HO2BANIO5-LOW TEMPERATURE"),
            std::string::npos);
}

TEST(StartingTemplate, TheEndOfTheInputAnswersBothQuestionsAsEmpty) {
  ScratchDir dir;
  std::string console;
  MakeTemplate(dir, "", "ho", &console);
  EXPECT_NE(console.find(" => Create standard template (s=<cr>) or detailed *.pcr (d):"),
            std::string::npos);
  EXPECT_NE(console.find("              (2) Neutrons + magnetic structure"), std::string::npos);
  EXPECT_NE(console.find("HO2BANIO5-LOW TEMPERATURE"), std::string::npos);
}

TEST(StartingTemplate, TheCeriaJobReadsBackAndRunsAsAnXrayCalculation) {
  ScratchDir dir;
  const std::string text = MakeTemplate(dir, "\n1\n", "ceo2");
  EXPECT_TRUE(testing::HasLine(text, "F m 3 m                  <--Space group symbol"));
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, text, false)) << job.Console();
  EXPECT_EQ(job->patterns[1].JOBTYP, 2);
  EXPECT_EQ(job->phases[1].Nat, 2);
  EXPECT_EQ(job->atoms[1].label, "Ce");
  EXPECT_FLOAT_EQ(job->atoms[2].ATP[1], 0.25f);
  EXPECT_FLOAT_EQ(job->phases[1].pat[1].PAR[3], 0.00783f);
  const testing::BinaryRun run = RunBinary(dir.path, "ceo2");
  ASSERT_EQ(run.exitCode, 0) << run.output;
  // The 111 reflection of the Cu K-alpha1 line of a = 5.4113 A, by Bragg's law.
  const double d111 = 5.4113 / std::sqrt(3.0);
  const double twoTheta = 2.0 * std::asin(1.54056 / (2.0 * d111)) / kDegree;
  const std::string prf = dir.Read("ceo2.prf");
  EXPECT_TRUE(HasNumberNear(prf, twoTheta, 0.002));
  // Peaks stand well above the flat background of 200 counts.
  EXPECT_GT(LargestCount(prf), 2000.0);
}

TEST(StartingTemplate, TheHolmiumJobReadsBackAndRunsAsANeutronCalculationWithItsSatellites) {
  ScratchDir dir;
  const std::string text = MakeTemplate(dir, "\n2\n", "ho");
  EXPECT_TRUE(testing::HasLine(text, "SYMM   -X,Y,-Z"));
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, text, false)) << job.Console();
  const Phase& ph = job->phases[1];
  EXPECT_EQ(ph.Jbt, 10);
  EXPECT_EQ(ph.Nat, 6);
  EXPECT_EQ(ph.group.NSYM, 4);
  EXPECT_FLOAT_EQ(job->atoms[2].ATP[8], 8.9f);
  EXPECT_EQ(job->atoms[2].species, "JHO3");
  const testing::BinaryRun run = RunBinary(dir.path, "ho");
  ASSERT_EQ(run.exitCode, 0) << run.output;
  // The first satellite, (1/2 0 1/2) of the propagation vector, at 2.52 A.
  const double d = 1.0 / std::sqrt(std::pow(0.5 / 3.754824, 2) + std::pow(0.5 / 11.27448, 2));
  const double twoTheta = 2.0 * std::asin(2.52 / (2.0 * d)) / kDegree;
  const std::string prf = dir.Read("ho.prf");
  EXPECT_TRUE(HasNumberNear(prf, twoTheta, 0.002));
  EXPECT_GT(LargestCount(prf), 14000.0);  // above twice the background of 7000
}

TEST(StartingTemplate, AnswerDShowsTheBoxAndWritesAFileOfDefaultsWhoseHeadReads) {
  ScratchDir dir;
  std::string console;
  const std::string text = MakeTemplate(dir, "d\n", "dflt", &console);
  EXPECT_NE(console.find(" Sorry!, option not available yet."), std::string::npos);
  EXPECT_EQ(console.find(" => Options: "), std::string::npos);
  EXPECT_TRUE(testing::HasLine(text,
                               "!Job Npr Nph Nba Nex Nsc Nor Dum Iwg Ilo Ias Res Ste Nre "
                               "Cry Uni Cor"));
  CapturedJob job;
  EXPECT_TRUE(testing::ReadHeadOnly(dir, job, text)) << job.Console();
  EXPECT_EQ(job->run.NPHASE, 1);
}

}  // namespace
}  // namespace corvinet
