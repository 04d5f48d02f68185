// End-to-end runs of the program on control-file heads, compared line by line with hand-written reports.
#include <gtest/gtest.h>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::NormaliseLines;
using testing::ScratchDir;
using testing::SplitLines;
using testing::TestData;

void ExpectSameLines(const std::string& actual, const std::string& expected) {
  const auto a = NormaliseLines(SplitLines(actual));
  const auto e = NormaliseLines(SplitLines(expected));
  for (std::size_t i = 0; i < std::min(a.size(), e.size()); ++i) {
    EXPECT_EQ(a[i], e[i]) << "at line " << i + 1;
  }
  EXPECT_EQ(a.size(), e.size());
}

TEST(HeadEndToEnd, SinglePatternHeadGivesItsReportAndSummary) {
  ScratchDir dir;
  dir.Write("single.pcr", TestData("head/single.pcr"));
  auto run = testing::RunBinary(dir.path, "single");
  EXPECT_EQ(run.exitCode, 0);
  ExpectSameLines(dir.Read("single.out"), TestData("head/single.out.expected"));
  ExpectSameLines(dir.Read("single.sum"), TestData("head/single.sum.expected"));
  EXPECT_FALSE(dir.Exists("single.rpa"));
  EXPECT_FALSE(dir.Exists("single.sym"));
}

TEST(HeadEndToEnd, MultiPatternHeadGivesItsReportSummaryRpaAndSym) {
  ScratchDir dir;
  dir.Write("multi.pcr", TestData("head/multi.pcr"));
  auto run = testing::RunBinary(dir.path, "multi");
  EXPECT_EQ(run.exitCode, 0);
  ExpectSameLines(dir.Read("multi.out"), TestData("head/multi.out.expected"));
  ExpectSameLines(dir.Read("multi.sum"), TestData("head/multi.sum.expected"));
  ExpectSameLines(dir.Read("multi.rpa"), TestData("head/multi.rpa.expected"));
  ExpectSameLines(dir.Read("multi.sym"), TestData("head/multi.sym.expected"));
}

TEST(HeadEndToEnd, TerminalShowsBannerStartEndAndTheContinueQuestions) {
  ScratchDir dir;
  dir.Write("single.pcr", TestData("head/single.pcr"));
  auto run = testing::RunBinary(dir.path, "single");
  const auto lines = NormaliseLines(SplitLines(run.output));
  const std::vector<std::string> banner = {
      "   ********************************************************",
      "   ** PROGRAM CORVINET.99 (Version 0.3  - Apr99-QMV TRX) **",
      "   ********************************************************",
      "                 M U L T I -- P A T T E R N",
      "      Rietveld, Profile Matching & Integrated Intensity",
      "           Refinement of X-ray and/or Neutron Data",
      "              (Multi_Pattern: Windows-version)",
      ""};
  ASSERT_GE(lines.size(), banner.size());
  for (std::size_t i = 0; i < banner.size(); ++i) EXPECT_EQ(lines[i], banner[i]);
  EXPECT_NE(run.output.find(" => Reading control file *.PCR ..."), std::string::npos);
  EXPECT_NE(NormaliseLines(SplitLines(run.output)).end(),
            std::find(lines.begin(), lines.end(), " => START Date:dd/mm/yyyy  Time => hh:mm:ss.sss"));
  EXPECT_NE(run.output.find(" => END   Date:"), std::string::npos);
  EXPECT_NE(run.output.find(" => File : single"), std::string::npos);
  EXPECT_NE(run.output.find("Corvinet Refinement: Continue with the same data?"), std::string::npos);
  EXPECT_NE(run.output.find("Corvinet Refinement: Continue with other data?"), std::string::npos);
  EXPECT_NE(run.output.find("=== Stop/Warning Box ===\n END"), std::string::npos);
}

struct JobWords {
  const char* jobLine;
  std::vector<const char*> words;  // expected on .out, in this order
};

class HeadWords : public ::testing::TestWithParam<JobWords> {};

// Each job line gives its words on the report in their order.
TEST_P(HeadWords, AppearOnTheReportInOrder) {
  ScratchDir dir;
  dir.Write("w.pcr", std::string("Words\n") + GetParam().jobLine +
                         "\n   0   0   1   0   1   0   0   0   0   1   0   0   0   0   0   0   0\n");
  auto run = testing::RunBinary(dir.path, "w");
  ASSERT_EQ(run.exitCode, 0);
  const auto lines = NormaliseLines(SplitLines(dir.Read("w.out")));
  auto at = lines.begin();
  for (const char* word : GetParam().words) {
    std::string wanted = testing::NormaliseLine(word);
    auto found = std::find(at, lines.end(), wanted);
    ASSERT_NE(found, lines.end()) << "missing or out of order: " << word;
    at = found + 1;
  }
}

INSTANTIATE_TEST_SUITE_P(
    JobLines, HeadWords,
    ::testing::Values(
        JobWords{"0 5 1 0 0 0 0 0 0 1 0 0 0 0 0 2 0",
                 {" => Global Refinement of X-ray powder diffraction data",
                  " => Energy Dispersive X-ray data", "    Flat plate with PSD",
                  " => Abcisa variable is Energy in Kev", " => Pseudo-Voigt function (ETA variable)"}},
        JobWords{"1 6 1 1 0 0 2 0 2 0 0 0 0 0 0 3 0",
                 {" => Global Refinement of neutron powder data ",
                  " => Abcisa variable is Q in recipr. Angstr",
                  " => Pecharskii model for preferred orientation",
                  " => Unit weights will be applied", " => Background read from file",
                  " => Normalized Pearson VII (m exponent variable)",
                  "                 X and Y parameters correspond to:",
                  "                m=m0+100*X/2theta+10000*Y/2theta**2 "}},
        JobWords{"2 4 1 -1 0 0 0 0 0 2 0 0 0 0 0 4 0",
                 {" => Pattern calculation, X-ray", "    Transmission Geometry",
                  " => Abcisa variable is S in recipr. Angstr",
                  " => Background refined by Debye-like and Polynomial functions",
                  " => Tripled pseudo-Voigt function (ETA unique)",
                  "      p4(x) = X*pV(x-D) + (1-X-Y)*pV(x) + Y*pV(x+D)",
                  "          D = Shp1*tan(theta)      ", "      pV(x) = ETA*L(x)+(1-ETA)*G(x)"}},
        JobWords{"3 11 1 7 0 0 0 0 0 0 0 0 0 0 0 0 0",
                 {" => Pattern calculation, Neutrons",
                  " => Background linearly interpolated between the    7 points given",
                  " => Split pseudo-Voigt function ",
                  "    For x<=0 eta and FWHM (H) are different than for x>0",
                  "     x<=0    pV(x)= {ETAl*L(x,Hl)+(1-ETAl)*G(x,Hl)}/(N/4)",
                  "     x>0     pV(x)= {ETAr*L(x,Hr)+(1-ETAr)*G(x,Hr)}/(N/4)",
                  "   L(x,H)=1/{1+4*(x/H)^2};  G(x,H)= exp{-4Ln2*(x/H)^2}",
                  "   N ={Hl*((pi-a)*ETAl+a)+Hr*((pi-a)*ETAr+a)}; a=sqrt(pi/Ln2)"}},
        JobWords{"-3 12 -1 -5 0 0 0 0 0 0 0 0 0 0 0 1 0",
                 {" => Abcisa variable is T.O.F. in microsecs",
                  " => Pattern calculation, Neutrons",
                  " => Asymmetry correction as in J.Appl.Cryst. 15,615(1982)",
                  " => Background interpolated by cubic splines between the    5 points given",
                  " => Pseudo-Voigt function (ETA variable)",
                  "    This function is convoluted with asymmetry due to axial",
                  "    divergence as formulated by: "}},
        JobWords{"0 5 1 0 0 0 0 0 0 3 0 0 0 0 0 0 0",
                 {"    Synchrotron B-B/D-S geometry"}},
        JobWords{"-2 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0",
                 {" ==> CONDITIONS OF THIS RUN FOR PATTERN No.:  1", " => Title:Words"}}),
    [](const ::testing::TestParamInfo<JobWords>& info) {
      return "JobLine" + std::to_string(info.index);
    });

TEST(HeadEndToEnd, EveryDataFormatHasItsWord) {
  const char* words[] = {
      " => Data supplied in free format for pattern:  1",
      " => Data in D1A,D2B (ILL) format for pattern:  1",
      " => Data in D1B(ILL) format, Step=0.2 in 2theta for pattern:  1",
      " => Data in D1B,D20 format for pattern:  1",
      " => Data in BNBL(Synchrotron) format for pattern:  1",
      " => Data in GENERAL FORMAT for TWO AXIS instrument for pattern:  1",
      " => Data in D1A,D2B format as prepared by D1A(D2B)SUM for pattern:  1",
      " => Data in D4,D20L format for pattern:  1",
      " => Data in DMC format at Wurenlingen for pattern:  1",
      " => UXD data from Socabim Eva-2 Software for pattern:  1",
      " => X-Y type of data: 2theta/TOF/E(Kev) Intens sigma for pattern:  1",
      " => Variable time data collection (format as LHPM) for pattern:  1",
      " => Data read from GSAS file for pattern:  1",
      " => Invalid instr parameter for pattern:  1"};
  ScratchDir dir;
  for (int instr = -4; instr <= 13; ++instr) {
    if (instr > -4 && instr < 0) continue;
    dir.Write("i.pcr", "I\n0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n0 0 0 0 0 0 0 0 0 0 " +
                           std::to_string(instr) + " 0 0 0 0 0 0\n");
    auto run = testing::RunBinary(dir.path, "i");
    ASSERT_EQ(run.exitCode, 0);
    const int index = instr == -4 ? 4 : (instr > 12 ? 13 : instr);
    const auto lines = SplitLines(dir.Read("i.sum"));
    EXPECT_NE(std::find(lines.begin(), lines.end(), words[index]), lines.end()) << instr;
  }
}

TEST(HeadEndToEnd, BadFieldStopsWithCaretAndLineNumber) {
  ScratchDir dir;
  dir.Write("bad.pcr", "Bad\n! job line follows\n0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n"
                       "0 0 1 0 1 0 0 0 x 1 0 0 0 0 0 0 0\n");
  auto run = testing::RunBinary(dir.path, "bad");
  EXPECT_EQ(run.exitCode, 0);
  const auto lines = SplitLines(run.output);
  auto at = std::find(lines.begin(), lines.end(), "FindFMT: invalid character in a numeric field !");
  ASSERT_NE(at, lines.end());
  ASSERT_LT(at + 2, lines.end());
  EXPECT_EQ(*(at + 1), "\"0 0 1 0 1 0 0 0 x 1 0 0 0 0 0 0 0\"");
  EXPECT_EQ((at + 2)->find('^'), (at + 1)->find('x'));
  EXPECT_NE(run.output.find(" => Please check your input file at line: 4 !"), std::string::npos);
  // The stop ends the process: no continue question follows.
  EXPECT_EQ(run.output.find("Continue with the same data?"), std::string::npos);
}

TEST(HeadEndToEnd, ControlFileThatEndsEarlyEndsTheProcess) {
  ScratchDir dir;
  dir.Write("short.pcr", "Short\n0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n");
  auto run = testing::RunBinary(dir.path, "short");
  EXPECT_NE(run.output.find(" => Not FATAL End of file !,  logical unit:   1"), std::string::npos);
  EXPECT_EQ(run.output.find("Continue with the same data?"), std::string::npos);
}

TEST(HeadEndToEnd, MissingControlFileStops) {
  ScratchDir dir;
  auto run = testing::RunBinary(dir.path, "nothing");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_NE(run.output.find(" => Error opening file: nothing.pcr Unit:  1"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
