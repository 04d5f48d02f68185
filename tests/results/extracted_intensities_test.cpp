// The regrouping of extracted intensities into clusters of overlapped peaks and the round trip of
// the regrouped file.
#include "results/extracted_intensities.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

ExtractedReflection At(int h, float twoTheta, float fwhm, float intensity, float sigma = 1.0f) {
  ExtractedReflection e;
  e.h = h;
  e.twoTheta = twoTheta;
  e.fwhm = fwhm;
  e.intensity = intensity;
  e.sigma = sigma;
  return e;
}

TEST(RegroupRules, TolerancesBelowOneHundredthTakeTheirDefaults) {
  const RegroupRules unset = RegroupRulesOf(0.0f, 0.005f);
  EXPECT_FLOAT_EQ(unset.Cw, 1.0f);
  EXPECT_FLOAT_EQ(unset.Ci, 0.2f);
  const RegroupRules given = RegroupRulesOf(0.5f, 0.3f);
  EXPECT_FLOAT_EQ(given.Cw, 0.5f);
  EXPECT_FLOAT_EQ(given.Ci, 0.3f);
}

TEST(RegroupOverlaps, PeaksCloserThanTheirMeanWidthTimesCwJoinOneCluster) {
  // Cw 0.5: (0.1 + 0.1) 0.5 / 2 = 0.05; gaps 0.04 (joins) then 0.3 (apart).
  const RegroupRules rules{0.5f, 0.2f};
  const auto c =
      RegroupOverlaps({At(1, 20.0f, 0.1f, 100.0f, 3.0f), At(2, 20.04f, 0.1f, 50.0f, 4.0f),
                       At(3, 20.34f, 0.1f, 70.0f, 2.0f)},
                      rules);
  ASSERT_EQ(c.size(), 3u);
  EXPECT_EQ(c[0].code, 1);
  EXPECT_FLOAT_EQ(c[0].intensity, 150.0f);
  EXPECT_FLOAT_EQ(c[0].sigma, 5.0f);  // sqrt(3² + 4²)
  EXPECT_EQ(c[1].code, 0);
  EXPECT_FLOAT_EQ(c[1].intensity, 0.0f);
  EXPECT_EQ(c[2].code, 1);
  EXPECT_FLOAT_EQ(c[2].intensity, 70.0f);
  EXPECT_FLOAT_EQ(c[2].sigma, 2.0f);
}

TEST(RegroupOverlaps, AWeakNeighbourInsideTheMeanWidthJoinsButAStrongOneDoesNot) {
  // Cw 0.5, Ci 0.2: a gap of 0.08 fails a) (0.05) and passes the width of b) (0.1).
  const RegroupRules rules{0.5f, 0.2f};
  const auto weak =
      RegroupOverlaps({At(1, 30.0f, 0.1f, 100.0f), At(2, 30.08f, 0.1f, 19.0f)}, rules);
  EXPECT_EQ(weak[1].code, 0);
  EXPECT_FLOAT_EQ(weak[0].intensity, 119.0f);
  const auto strong =
      RegroupOverlaps({At(1, 30.0f, 0.1f, 100.0f), At(2, 30.08f, 0.1f, 21.0f)}, rules);
  EXPECT_EQ(strong[1].code, 1);
  EXPECT_FLOAT_EQ(strong[0].intensity, 100.0f);
  // Beyond the mean width nothing joins, however weak.
  const auto apart =
      RegroupOverlaps({At(1, 30.0f, 0.1f, 100.0f), At(2, 30.11f, 0.1f, 1.0f)}, rules);
  EXPECT_EQ(apart[1].code, 1);
}

TEST(RegroupOverlaps, TheRunningSumOfTheClusterJudgesTheNextWeakPeak) {
  // 100 then 15 (joins: 15 < 20), then 22: below (100 + 15) 0.2 = 23, joins.
  const RegroupRules rules{0.5f, 0.2f};
  const auto c = RegroupOverlaps(
      {At(1, 10.0f, 0.1f, 100.0f), At(2, 10.08f, 0.1f, 15.0f), At(3, 10.16f, 0.1f, 22.0f)}, rules);
  EXPECT_EQ(c[1].code, 0);
  EXPECT_EQ(c[2].code, 0);
  EXPECT_FLOAT_EQ(c[0].intensity, 137.0f);
}

TEST(RegroupOverlaps, ReflectionsAreTakenInPositionOrder) {
  const auto c = RegroupOverlaps(
      {At(3, 40.0f, 0.1f, 1.0f), At(1, 10.0f, 0.1f, 1.0f), At(2, 20.0f, 0.1f, 1.0f)},
      RegroupRules{});
  ASSERT_EQ(c.size(), 3u);
  EXPECT_EQ(c[0].reflection.h, 1);
  EXPECT_EQ(c[1].reflection.h, 2);
  EXPECT_EQ(c[2].reflection.h, 3);
}

TEST(RegroupRuleLines, TheRulesAreStatedWithTheirTolerances) {
  const auto lines = RegroupRuleLines(2, RegroupRules{1.0f, 0.2f});
  ASSERT_EQ(lines.size(), 6u);
  EXPECT_EQ(lines[0], " Phase No:   2 Overlaped Reflections Re-grouped ");
  EXPECT_EQ(lines[1], " ==> Conditions (\"a\" or \"b\") to group peaks in CODFILn.INT:");
  EXPECT_EQ(lines[3], "Cw =   1.0000");
  EXPECT_EQ(lines[5], "Ci =   0.2000");
}

// A one-atom P 1 X-ray phase with Irf 4 that reads x1.hkl.
std::string IrfFourControl() {
  return "COMM regrouped list read back\n"
         "!Job Npr Nph Nba Nex Nsc Nor Dum Iwg Ilo Ias Res Ste Nre Cry Uni Cor\n"
         "   0   0   1   0   0   0   0   0   0   0   0   0   0   0   1   0   0\n"
         "!Ipr Ppl Ioc Mat Pcr Ls1 Ls2 Ls3 Syo Prf Ins Rpa Sym Hkl Fou Sho Ana\n"
         "   0   0   1   0   0   0   0   0   0   0   0   0   0   0   0   0   0\n"
         " 5  0.01  1.00  1.00  1.00  1.00     10.0000   0.0250   159.0000   0.000   0.000\n"
         "   1\n"
         "one atom\n"
         "   1   0   0 0.0 0.0 1.0   0   4   0   0   0          0.000   0   0   0\n"
         "P 1\n"
         "Ni   NI   0.00000 0.00000 0.00000 0.00 1.00  0 0 0\n"
         "   0.00 0.00 0.00 0.00 0.00\n"
         "  2.0 3.0 1.0 1.0 1.0 1.0\n"
         "  11.00 0.00 0.00 0.00 0.00 0.00\n"
         "  0.0 0.0 0.0 0.0 0.0 0.0 0.0\n"
         "  0.0 0.0 0.0 0.0 0.0 0.0 0.0\n"
         "   4.000000  5.000000  6.000000  90.000000  90.000000  90.000000\n"
         "   0.00000  0.00000  0.00000   0.00000   0.00000   0.00000\n"
         "  0.00000  0.00000  0.00000  0.00000  0.00000\n"
         "   0.00     0.00     0.00     0.00     0.00\n";
}

TEST(RegroupedFile, WrittenClustersAreReadBackByAnIntensityPhaseWithTheirValues) {
  const RegroupRules rules{0.5f, 0.2f};
  const auto clusters =
      RegroupOverlaps({At(1, 20.0f, 0.1f, 1234.5f, 30.0f), At(2, 20.04f, 0.1f, 321.25f, 40.0f),
                       At(3, 25.0f, 0.1f, 987.0f, 12.5f), At(4, 30.0f, 0.1f, 55.5f, 7.0f),
                       At(5, 30.03f, 0.1f, 44.5f, 7.0f)},
                      rules);
  RegroupedFileHead head;
  head.phase = 1;
  head.wavelength = 1.5406f;
  head.xray = true;
  head.cosMono = 0.8f;
  std::string text;
  for (const std::string& line : RegroupedFileLines(head, clusters)) text += line + "\n";

  ScratchDir dir;
  dir.Write("x1.hkl", text);
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, IrfFourControl(), false)) << job.Console();
  const IntensityTable& t = job->patterns[1].intensities;
  const IntensityPhaseData& d = t.phase[1];
  EXPECT_EQ(d.DATATYPE, 2);
  EXPECT_NEAR(d.WAVELENGTH, 1.5406f, 1e-5);
  EXPECT_NEAR(d.COSMONO, 0.8f, 1e-5);
  ASSERT_EQ(t.count[1], 5);
  EXPECT_EQ(d.NOBSERVED, 3);
  for (int s = 1; s <= 5; ++s) {
    const IntensityObservation& o = t.slot[t.start[1] + s];
    EXPECT_EQ(KeyH(o.reflection.key), clusters[s - 1].reflection.h) << s;
    EXPECT_EQ(o.clusterStart, clusters[s - 1].code == 1) << s;
    if (!o.clusterStart) continue;
    EXPECT_NEAR(o.F2obs, clusters[s - 1].intensity, 0.005) << s;
    EXPECT_NEAR(o.sigmaF2, clusters[s - 1].sigma, 0.005) << s;
  }
  EXPECT_NEAR(t.slot[t.start[1] + 1].F2obs, 1555.75, 0.005);
  EXPECT_NEAR(t.slot[t.start[1] + 1].sigmaF2, 50.0, 0.005);
}

}  // namespace
}  // namespace corvinet
