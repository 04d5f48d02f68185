// The words the head of a control file writes for each job line and data format.
#include <gtest/gtest.h>

#include <algorithm>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::NormaliseLines;
using testing::ScratchDir;
using testing::SplitLines;

struct JobWords {
  const char* jobLine;
  std::vector<const char*> words;  // expected on .out, in this order
};

class HeadWords : public ::testing::TestWithParam<JobWords> {};

// Each job line gives its words on the report in their order.
TEST_P(HeadWords, AppearOnTheReportInOrder) {
  ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(testing::ReadHeadOnly(
      dir, job,
      std::string("Words\n") + GetParam().jobLine +
          "\n   0   0   1   0   1   0   0   0   0   1   0   0   0   0   0   0   0\n"));
  const auto lines = NormaliseLines(SplitLines(dir.Read("x.out")));
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
        JobWords{
            "0 5 1 0 0 0 0 0 0 1 0 0 0 0 0 2 0",
            {" => Global Refinement of X-ray powder diffraction data",
             " => Energy Dispersive X-ray data", "    Flat plate with PSD",
             " => Abcisa variable is Energy in Kev", " => Pseudo-Voigt function (ETA variable)"}},
        JobWords{
            "1 6 1 1 0 0 2 0 2 0 0 0 0 0 0 3 0",
            {" => Global Refinement of neutron powder data ",
             " => Abcisa variable is Q in recipr. Angstr",
             " => Pecharskii model for preferred orientation", " => Unit weights will be applied",
             " => Background read from file", " => Normalized Pearson VII (m exponent variable)",
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
                 {" => Abcisa variable is T.O.F. in microsecs", " => Pattern calculation, Neutrons",
                  " => Asymmetry correction as in J.Appl.Cryst. 15,615(1982)",
                  " => Background interpolated by cubic splines between the    5 points given",
                  " => Pseudo-Voigt function (ETA variable)",
                  "    This function is convoluted with asymmetry due to axial",
                  "    divergence as formulated by: "}},
        JobWords{"0 5 1 0 0 0 0 0 0 3 0 0 0 0 0 0 0", {"    Synchrotron B-B/D-S geometry"}},
        JobWords{"-2 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0",
                 {" ==> CONDITIONS OF THIS RUN FOR PATTERN No.:  1", " => Title:Words"}}),
    [](const ::testing::TestParamInfo<JobWords>& info) {
      return "JobLine" + std::to_string(info.index);
    });

TEST(HeadWordsOfFormats, EveryDataFormatHasItsWord) {
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
      " => Data read from GSAS file (FXYE, FXY or TIME_MAP banks) for pattern:  1",
      " => Data in columns x, y, sigma with comment lines for pattern:  1",
      " => Invalid instr parameter for pattern:  1"};
  ScratchDir dir;
  for (int instr = -4; instr <= 15; ++instr) {
    if (instr > -4 && instr < 0) continue;
    CapturedJob job;
    ASSERT_TRUE(testing::ReadHeadOnly(dir, job,
                                      "I\n0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n0 0 0 0 0 0 0 0 0 0 " +
                                          std::to_string(instr) + " 0 0 0 0 0 0\n"));
    const int index = instr == -4 ? 4 : instr;
    const auto lines = SplitLines(dir.Read("x.sum"));
    EXPECT_NE(std::find(lines.begin(), lines.end(), words[index]), lines.end()) << instr;
  }
}

}  // namespace
}  // namespace corvinet
