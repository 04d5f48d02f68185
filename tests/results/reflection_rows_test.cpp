// Tests of the reflection rows, the headers of the reflection file and the Bragg factor lines.
#include "results/reflection_rows.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "records/reflection.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;

// --- Reflection rows ---

TEST(ReflectionRows, HeadersFollowTheValueOfJlkh) {
  CapturedJob job;
  Job& j = *job;
  j.run.NPHASE = 1;
  auto header = [&](int jlkh) {
    j.patterns[1].JLKH = jlkh;
    return ReflectionFileHeader(j, 1, 1);
  };
  EXPECT_TRUE(header(0).empty());
  EXPECT_EQ(header(1)[0],
            " Code h   k   l  Mult   D(A)     2T      HW       Iobs    Icalc   io-ic");
  EXPECT_EQ(header(2)[0], "   h   k   l    Mult  sinT/lamb    2T       Fwhm         F2      sf2");
  EXPECT_EQ(header(-2)[0], "   h   k   l    Mult   Q(Ang-1)    2T       Fwhm         F2      sf2");
  EXPECT_EQ(header(3)[0], "   h   k   l    Mult    Freal       Fimag        2T        Intensity ");
  EXPECT_EQ(header(-3)[0], header(3)[0]);
  EXPECT_EQ(header(4), (std::vector<std::string>{"(3i4,2f12.4,i4,3f8.4)", "   0   0"}));
  EXPECT_EQ(header(5)[0], "   h   k   l  Mult     S.Factor     2T      D(A)    Q(A-1)");
  j.phases[1].Nvk = 1;
  j.phases[1].vectors[1].KVEC = {{0.5f, 0.0f, 0.0f}};
  EXPECT_EQ(header(-4), (std::vector<std::string>{"(4i4,2f12.4,i4,3f8.0)", "   0   0",
                                                  "   1  0.5000  0.0000  0.0000"}));
  EXPECT_EQ(header(5)[0], "   h   k   l ivk Mult     S.Factor     2T      D(A)    Q(A-1)");
  j.phases[1].Jbt = 1;
  EXPECT_EQ(header(1)[0], "   h   k   l Mult   Intensity   S.Factor     2T      D(A)   Q(A-1 )");
}

// Reflection 1 1 0 of phase 1 at 30 degrees, four equivalents.
void OneReflection(Job& job) {
  job.run.NPHASE = 1;
  Pattern& p = job.patterns[1];
  p.LAMBDA[1] = 1.5406f;
  p.LAMBDA[2] = 1.5444f;
  p.RATIO[2] = 0.0f;
  p.reflections.total = 1;
  Reflection& r = p.reflections.slot[1];
  r.key = ReflectionKey(1, 1, 1, 1, 0);
  r.position = 30.0f;
  r.multiplicity = 4;
  r.Fwhm = 0.1f;
}

TEST(ReflectionRows, RowDerivesSpacingQAndSinThetaOverLambda) {
  CapturedJob job;
  OneReflection(*job);
  ReflectionShare share;
  share.counted = true;
  share.Iobs = 120.4f;
  share.Icalc = 100.0f;
  share.Fobs = 3.0f;
  const ReflectionRowValues v = ReflectionRow(*job, 1, 1, share);
  // d = 1.5406/(2 sin 15) = 2.976211, Q = 2 pi/d, sinT/lambda = 1/(2d).
  EXPECT_NEAR(v.d, 2.976211f, 1e-5f);
  EXPECT_NEAR(v.Q, 2.111136f, 1e-5f);
  EXPECT_NEAR(v.sinThetaOverLambda, 0.1679989f, 1e-6f);
  EXPECT_EQ(ReportReflectionRow(v),
            "    1   1   1   0    4  2.9762   30.000  0.1000      120.4    100.0    20.4");
  job->patterns[1].JLKH = 2;
  EXPECT_EQ(ReflectionFileRow(*job, 1, 1, v),
            "   1   1   0       4    0.16800   30.000     0.1000       9.000    0.000");
  job->patterns[1].JLKH = 0;
  EXPECT_TRUE(ReflectionFileRow(*job, 1, 1, v).empty());
}

TEST(ReflectionRows, MeanWavelengthWeighsTheSecondByItsRatio) {
  Pattern p;
  p.LAMBDA[1] = 1.0f;
  p.LAMBDA[2] = 2.0f;
  p.RATIO[2] = 0.5f;
  EXPECT_FLOAT_EQ(MeanWavelength(p), 2.0f / 1.5f);
}

TEST(BraggLines, CrystalPhaseLinesHaveTheirFieldWidths) {
  CapturedJob job;
  job->run.NPHASE = 1;
  job->phases[1].pat[1].cellVolume = 64.0;
  PhaseFractions fr;
  fr.volumeSigma[1] = 0.012f;
  fr.VolumeFraction[1] = 33.33f;
  fr.FractionSigma[1] = 4.16f;
  fr.ATZ[1] = 50.0f;
  fr.Brindley[1] = 1.0f;
  PhaseReportSums sums;
  sums.FinalRB = 5.5f;
  sums.FinalRF = 3.25f;
  sums.SumIobs = 1000.0f;
  sums.SumIcalc = 990.5f;
  const auto lines = FinalBraggLines(*job, 1, 1, fr, sums);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0], " => Phase:  1");
  EXPECT_EQ(lines[1],
            " => Bragg R-factor:  5.50       Vol:   64.000( 0.012)  Fract(%):   33.33( 4.16)");
  EXPECT_EQ(lines[2], " => Rf-factor= 3.25             ATZ:   50.000          Brindley:  1.0000");
  EXPECT_EQ(BraggRecordRow(1, fr, sums),
            "BRAG    1    5.500    3.250      33.330       4.160    1000.000     990.500");
}

// A profile-matching phase has no structure and so no weight fraction.
TEST(BraggLines, ProfileMatchingPhaseHasNoFraction) {
  for (int jbt : {2, -2, 3, -3}) {
    CapturedJob job;
    job->run.NPHASE = 1;
    job->phases[1].Jbt = jbt;
    job->phases[1].pat[1].cellVolume = 64.0;
    PhaseFractions fr;
    fr.volumeSigma[1] = 0.012f;
    fr.VolumeFraction[1] = 100.0f;
    PhaseReportSums sums;
    sums.FinalRB = 5.5f;
    const auto lines = FinalBraggLines(*job, 1, 1, fr, sums);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[1], " => Bragg R-factor:  5.50       Vol:   64.000( 0.012)") << jbt;
  }
}

TEST(BraggLines, MagneticPhaseHasOneFactor) {
  CapturedJob job;
  job->phases[1].Jbt = 5;
  PhaseReportSums sums;
  sums.FinalRB = 12.5f;
  const auto lines = FinalBraggLines(*job, 1, 1, PhaseFractions{}, sums);
  EXPECT_EQ(lines, (std::vector<std::string>{" => Phase:  1", " => Magnetic R-factor:  12.5    "}));
}

}  // namespace
}  // namespace corvinet
