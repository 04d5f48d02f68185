// Reading lists of integrated intensities: each form, clusters, the codes and the sums.
#include "crystal/intensity_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

// A one-atom P 1 phase refined against the list in x1.hkl; `extra` follows the
// phase header (Irf 4 or -4 as asked).
std::string ControlText(int irf, int jobtyp = 1) {
  return "COMM intensities\n"
         "!Job Npr Nph Nba Nex Nsc Nor Dum Iwg Ilo Ias Res Ste Nre Cry Uni Cor\n"
         "   " +
         std::to_string(jobtyp) +
         "   0   1   0   0   0   0   0   0   0   0   0   0   0   1   0   0\n"
         "!Ipr Ppl Ioc Mat Pcr Ls1 Ls2 Ls3 Syo Prf Ins Rpa Sym Hkl Fou Sho Ana\n"
         "   0   0   1   0   0   0   0   0   0   0   0   0   0   0   0   0   0\n"
         " 5  0.01  1.00  1.00  1.00  1.00     10.0000   0.0250   159.0000   0.000   0.000\n"
         "   1\n"
         "one atom\n"
         "   1   0   0 0.0 0.0 1.0   0   " +
         std::to_string(irf) +
         "   0   0   0          0.000   0   0   0\n"
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

struct ReadList {
  ScratchDir dir;
  CapturedJob job;
  bool read = false;
  ReadList(const std::string& list, int irf = 4, int jobtyp = 1) {
    dir.Write("x1.hkl", list);
    read = testing::ReadControlText(dir, job, ControlText(irf, jobtyp), false);
  }
  const IntensityTable& table() { return job->patterns[1].intensities; }
  const IntensityObservation& at(int s) { return table().slot[s]; }
};

const char* kHead = "a title\n(3i4,2f12.2,i4,3f8.0)\n";

TEST(IntensityFile, SingleCrystalListIsReadWithItsSums) {
  ReadList r(std::string(kHead) + "1.5 0 1\n" +
             "   1   0   0      100.00        2.00   1     0.5     0.6     0.7\n"
             "   0   1   0       16.00        4.00   2\n"
             "   0   0   1        1.00        1.00   3\n");
  ASSERT_TRUE(r.read) << r.job.Console();
  ASSERT_EQ(r.table().count[1], 3);
  EXPECT_EQ(KeyH(r.at(1).reflection.key), 1);
  EXPECT_FLOAT_EQ(r.at(1).F2obs, 100.0f);
  EXPECT_FLOAT_EQ(r.at(1).sigmaF2, 2.0f);
  EXPECT_FLOAT_EQ(r.at(1).direction[2], 0.7f);
  EXPECT_EQ(r.at(2).group, 2);
  // sin(theta)/lambda = 1/(2d): d = b = 5 for (0 1 0).
  EXPECT_NEAR(r.at(2).sinThetaOverLambda, 0.1f, 1e-6f);
  const IntensityPhaseData& d = r.table().phase[1];
  EXPECT_FLOAT_EQ(d.WAVELENGTH, 1.5f);
  // Rmub is 0: every observation counts.
  EXPECT_EQ(d.NOBSERVED, 3);
  EXPECT_FLOAT_EQ(d.SumF2, 117.0f);
  EXPECT_FLOAT_EQ(d.SumF2w, 2500.0f + 16.0f + 1.0f);
  EXPECT_FLOAT_EQ(d.SumF, 10.0f + 4.0f + 1.0f);
  const std::string out = r.dir.Read("x.out");
  EXPECT_NE(out.find(" -> Title: a title"), std::string::npos);
  EXPECT_NE(out.find(" -> Format of data: (3i4,2f12.2,i4,3f8.0)"), std::string::npos);
  EXPECT_NE(out.find(" -> Type of data:  F2 and Sig(F2) have been input"), std::string::npos);
}

TEST(IntensityFile, ARecordOfZerosEndsTheListBeforeTheEndOfFile) {
  ReadList r(std::string(kHead) + "1.5 0 1\n" + "   1   0   0      100.00        2.00   1\n" +
             "   0   0   0        0.00        0.00   0\n" +
             "   0   1   0       16.00        4.00   1\n");
  ASSERT_TRUE(r.read) << r.job.Console();
  EXPECT_EQ(r.table().count[1], 1);
}

TEST(IntensityFile, ASigmaOfZeroBecomesOneThousandth) {
  ReadList r(std::string(kHead) + "1.5 0 1\n" + "   1   0   0      100.00        0.00   1\n");
  ASSERT_TRUE(r.read) << r.job.Console();
  EXPECT_FLOAT_EQ(r.at(1).sigmaF2, 0.001f);
  EXPECT_FLOAT_EQ(r.table().phase[1].SumF2w, (100.0f / 0.001f) * (100.0f / 0.001f));
}

TEST(IntensityFile, AGroupCodeOfZeroOrSevenAndUpIsTakenAsOne) {
  ReadList r(std::string(kHead) + "1.5 0 1\n" + "   1   0   0      100.00        1.00   0\n" +
             "   0   1   0      100.00        1.00   7\n" +
             "   0   0   1      100.00        1.00  12\n" +
             "   1   1   0      100.00        1.00   6\n");
  ASSERT_TRUE(r.read) << r.job.Console();
  EXPECT_EQ(r.at(1).group, 1);
  EXPECT_EQ(r.at(2).group, 1);
  EXPECT_EQ(r.at(3).group, 1);
  EXPECT_EQ(r.at(4).group, 6);
}

TEST(IntensityFile, FAndSigmaFAreConvertedToSquares) {
  ReadList r(std::string(kHead) + "1.5 1 1\n" + "   1   0   0       10.00        0.50   1\n" +
             "   0   1   0        3.00        0.20   1\n");
  ASSERT_TRUE(r.read) << r.job.Console();
  EXPECT_FLOAT_EQ(r.at(1).F2obs, 100.0f);
  EXPECT_FLOAT_EQ(r.at(1).sigmaF2, 10.0f);  // 2 F sigma(F)
  EXPECT_FLOAT_EQ(r.at(2).F2obs, 9.0f);
  EXPECT_FLOAT_EQ(r.at(2).sigmaF2, 1.2f);
  const IntensityPhaseData& d = r.table().phase[1];
  EXPECT_FLOAT_EQ(d.SumF, 13.0f);  // the sum of F, taken before the conversion
  EXPECT_FLOAT_EQ(d.SumF2, 109.0f);
  EXPECT_NE(r.dir.Read("x.out").find(" F and Sig(F) have been converted to F2, Sig(F2)"),
            std::string::npos);
}

TEST(IntensityFile, PowderClustersOfXraysReadTheMonochromatorLineAndMultiplicities) {
  // X-ray job (Job 0): the line of COSMONO and POLCONST follows line 3; CONV
  // is forced to 0 by DATATYPE 2.
  ReadList r(std::string(kHead) + "1.5406 1 2\n0.8 0.0\n" +
                 "   1   0   0      500.00       10.00   1\n"
                 "   0   1   0        0.00        0.00   0\n"
                 "   0   0   1      300.00       10.00   2\n",
             4, 0);
  ASSERT_TRUE(r.read) << r.job.Console();
  const IntensityPhaseData& d = r.table().phase[1];
  EXPECT_EQ(d.DATATYPE, 2);
  EXPECT_EQ(d.CONV, 0);
  EXPECT_FLOAT_EQ(d.COSMONO, 0.8f);
  EXPECT_TRUE(r.at(1).clusterStart);
  EXPECT_FALSE(r.at(2).clusterStart);
  EXPECT_TRUE(r.at(3).clusterStart);
  EXPECT_EQ(r.at(3).group, 2);
  EXPECT_EQ(r.at(2).group, 1);  // a member takes the scale of its cluster
  // Only the first of a cluster carries an observation.
  EXPECT_EQ(d.NOBSERVED, 2);
  EXPECT_FLOAT_EQ(d.SumF2, 800.0f);
  // P 1: the rule of Laue class -1, before its Friedel factor, counts one
  // reflection per form; times the multiplicity factor of the group.
  const int factor = r.job->phases[1].group.multiplicityFactor;
  EXPECT_EQ(r.at(1).reflection.multiplicity, 1 * factor);
  // Lp by hand for (1 0 0), a = 4: sin(theta) = 1.5406/8.
  const double st = 1.5406 / 8.0, s2 = st * st, c2 = (1 - 2 * s2) * (1 - 2 * s2);
  const double lp = 1.0 / (2.0 * s2 * std::sqrt(1.0 - s2)) * (1.0 + 0.8 * c2);
  EXPECT_NEAR(r.at(1).lpFactor, lp, 1e-4 * lp);
  const std::string out = r.dir.Read("x.out");
  EXPECT_NE(out.find(" -> X-ray Powder data:"), std::string::npos);
  EXPECT_NE(out.find(" Powder integrated intensities of peak-clusters"), std::string::npos);
}

TEST(IntensityFile, PartialStructureFactorsOfIrfMinusFourAreKept) {
  ReadList r(std::string(kHead) + "1.5 0 1\n" +
                 "   1   0   0      100.00        2.00   1     3.5    -1.5     0.0\n",
             -4);
  ASSERT_TRUE(r.read) << r.job.Console();
  EXPECT_FLOAT_EQ(r.at(1).reflection.Aprime, 3.5f);
  EXPECT_FLOAT_EQ(r.at(1).reflection.Bprime, -1.5f);
}

TEST(IntensityFile, ABadFormatStopsTheRun) {
  ReadList r("a title\n(3i4,2q12.2)\n1.5 0 1\n   1   0   0      100.00        2.00   1\n");
  EXPECT_FALSE(r.read);
  EXPECT_NE(r.job.Console().find("Wrong format of the intensity records"), std::string::npos);
}

TEST(IntensityLorentzPolarisation, PolarisationConstantReplacesTheMonochromatorTerm) {
  const double st = 0.3 * 1.2, s2 = st * st, c2 = (1 - 2 * s2) * (1 - 2 * s2);
  const double lorentz = 1.0 / (2.0 * s2 * std::sqrt(1.0 - s2));
  EXPECT_NEAR(IntensityLorentzPolarisation({0.3f, 1.2f, true, 0.5f, 0.4f}),
              lorentz * (1.0 - 0.4 + 0.4 * c2), 1e-4 * lorentz);
  EXPECT_NEAR(IntensityLorentzPolarisation({0.3f, 1.2f, false, 0.5f, 0.4f}), lorentz,
              1e-4 * lorentz);
}

TEST(IntensityVariance, TheWeightingSchemesGiveSigmaSquaredObservedOrOne) {
  EXPECT_FLOAT_EQ(IntensityVariance(0, 50.0f, 3.0f), 9.0f);
  EXPECT_FLOAT_EQ(IntensityVariance(1, 50.0f, 3.0f), 50.0f);
  EXPECT_FLOAT_EQ(IntensityVariance(2, 50.0f, 3.0f), 1.0f);
}

}  // namespace
}  // namespace corvinet
