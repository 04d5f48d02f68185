// Tests of the whole results pass: flags, order, convergence pass, relaxation by class, limit
// report, filter refresh.
#include <gtest/gtest.h>

#include "refine/parameter_update.h"

#include <string>
#include <vector>
#include "refine/reliability.h"
#include "refine/update_case.h"

namespace corvinet {
namespace {

using testing::FindLine;
using testing::HasLine;
using testing::UpdateCase;

// Runs the residual sums of the cycle and then the results pass.
void RunPass(UpdateCase& c, int cycle, int endMarker = 0) {
  ResidualStatistics(*c, 1, cycle, endMarker);
  WriteCycleResults(*c, cycle, endMarker, c.profile);
}

TEST(UpdatePassFlags, TheLastCycleOrAConvergenceMakeTheLastPass) {
  UpdateCase c;
  c->run.NCY = 4;
  c->run.ISHOR = 1;
  const UpdatePass middle = c.Pass(2, 0);
  EXPECT_FALSE(middle.lastPass);
  EXPECT_FALSE(middle.writeOut);
  EXPECT_FALSE(middle.writeSum);
  const UpdatePass last = c.Pass(4, 0);
  EXPECT_TRUE(last.lastPass && last.writeOut && last.writeSum);
  const UpdatePass converged = c.Pass(2, 123);
  EXPECT_TRUE(converged.lastPass && converged.converged && converged.writeOut);
  c->run.ISHOR = 0;
  EXPECT_TRUE(c.Pass(2, 0).writeOut);
  EXPECT_FALSE(c.Pass(2, 0).writeSum);
}

TEST(MethodLabel, ModelWeightsAreMaximumLikelihood) {
  Pattern p;
  EXPECT_EQ(MethodLabel(p), "L.S.");
  p.IWGT = 1;
  EXPECT_EQ(MethodLabel(p), "M.L.");
  p.IWGT = 2;
  EXPECT_EQ(MethodLabel(p), "M.L.");
}

TEST(WriteCycleResults, EachClassTakesItsOwnRelaxationFactor) {
  UpdateCase c;
  RunOptions& run = c->run;
  run.relaxationFactor[1] = 0.5f;    // R_at
  run.relaxationFactor[2] = 0.25f;   // R_an
  run.relaxationFactor[3] = 0.75f;   // R_pr
  run.relaxationFactor[4] = 0.125f;  // R_gl
  for (int L = 1; L <= 6; ++L) c.SetParameter(L, 1.0f, 0.0f);
  AtomSite& atom = c.AddAtom("Si");
  atom.ATC[1] = UpdateCase::Code(1);             // x
  atom.ATC[13] = UpdateCase::Code(2);            // beta11
  atom.ATC[20] = UpdateCase::Code(3);            // a form-factor parameter
  c.peaks().PAC[5] = UpdateCase::Code(4);        // W
  c.pattern().GLBword[1] = UpdateCase::Code(5);  // Zero
  c->phases[1].Nvk = 1;
  c->phases[1].vectors[1].KCODE[3] = UpdateCase::Code(6);
  WriteCycleResults(*c, 1, 0, c.profile);
  EXPECT_EQ(atom.ATP[1], 0.5f);
  EXPECT_EQ(atom.ATP[13], 0.25f);
  EXPECT_EQ(atom.ATP[20], 0.25f);
  EXPECT_EQ(c.peaks().PAR[5], 0.75f);
  EXPECT_EQ(c.pattern().GLB[1], 0.125f);
  EXPECT_EQ(c->phases[1].vectors[1].KVEC[3], 0.75f);
}

TEST(WriteCycleResults, MomentsOfAMagneticPhaseTakeRat) {
  UpdateCase c;
  c->run.relaxationFactor[1] = 0.5f;
  c->run.relaxationFactor[2] = 0.25f;
  c->phases[1].Jbt = 1;
  AtomSite& atom = c.AddAtom("Mn");
  atom.ATP[6] = 1.0f;
  atom.ATC[6] = UpdateCase::Code(1);
  c.SetParameter(1, 1.0f, 0.0f);
  WriteCycleResults(*c, 1, 0, c.profile);
  EXPECT_EQ(atom.ATP[6], 1.5f);
}

TEST(WriteCycleResults, TheCellCoefficientsTakeRprNotRgl) {
  UpdateCase c;
  c->run.relaxationFactor[3] = 0.5f;
  c->run.relaxationFactor[4] = 0.0f;
  c.peaks().PAC[6] = UpdateCase::Code(1);
  c.SetParameter(1, 0.002f, 0.0f);
  const float before = c.peaks().PAR[6];
  WriteCycleResults(*c, 1, 0, c.profile);
  EXPECT_EQ(c.peaks().PAR[6], before + 0.002f * 1.0f * 0.5f);
}

TEST(WriteCycleResults, AConvergencePassChangesNothingAndReportsAsAnyOther) {
  UpdateCase c;
  AtomSite& atom = c.AddAtom("O1");
  atom.ATP[1] = 0.125f;
  atom.ATC[1] = UpdateCase::Code(1);
  c.SetParameter(1, 0.0f, 0.0004f);  // the driver has set all shifts to zero
  RunPass(c, 3, 123);
  EXPECT_EQ(atom.ATP[1], 0.125f);
  EXPECT_TRUE(HasLine(c.Console(), " Convergence reached at this CYCLE !!!!: CYCLE No.   3"));
  const std::vector<std::string> out = c.Out();
  const int converged = FindLine(out, " =>  Convergence reached at this CYCLE !!!!");
  ASSERT_GE(converged, 0);
  EXPECT_EQ(out[static_cast<std::size_t>(converged) + 1], " =>  Parameter shifts set to zero");
  // The atom line keeps its sigma of 0.02 and its zero shift.
  const int row = FindLine(out, "   O1");
  ASSERT_GE(row, 0);
  EXPECT_EQ(out[static_cast<std::size_t>(row)].substr(5, 25), "  0.12500 0.00000 .020000");
  EXPECT_GE(FindLine(out, " ==> RELIABILITY FACTORS WITH ALL NON-EXCLUDED POINTS FOR PATTERN:"), 0);
  EXPECT_GE(FindLine(c.Sum(), " ==> RESULTS OF REFINEMENT:"), 0);
}

TEST(WriteCycleResults, TheSummaryIsWrittenOnlyInTheLastPass) {
  UpdateCase c;
  c->run.NCY = 2;
  c->run.MAXS = 7;
  RunPass(c, 1);
  EXPECT_TRUE(c.Sum().empty());
  RunPass(c, 2);
  const std::vector<std::string> sum = c.Sum();
  const int results = FindLine(sum, " ==> RESULTS OF REFINEMENT:");
  ASSERT_GE(results, 0);
  ASSERT_GT(sum.size(), static_cast<std::size_t>(results) + 1);
  EXPECT_EQ(sum[static_cast<std::size_t>(results) + 1], " => No. of fitted parameters:     7");
  EXPECT_GE(FindLine(sum, " => Global user-weigthed Chi2 (Bragg contrib.):"), 0);
}

TEST(WriteCycleResults, ShortOutputWritesTheReportOnlyInTheLastPass) {
  UpdateCase c;
  c->run.ISHOR = 1;
  c->run.NCY = 3;
  c.AddAtom("O1");
  RunPass(c, 1);
  EXPECT_TRUE(c.Out().empty());
  RunPass(c, 3);
  EXPECT_GE(FindLine(c.Out(), "   O1"), 0);
}

TEST(WriteCycleResults, TheReportFollowsTheOrderOfThePass) {
  UpdateCase c;
  c->run.NCY = 1;
  c.AddAtom("O1");
  c.SetLimit(1, 0.0f, 1.0f);
  c.pattern().GLBword[1] = UpdateCase::Code(1);
  c.SetParameter(1, 2.0f, 0.0f);
  RunPass(c, 1);
  const std::vector<std::string> out = c.Out();
  const int cycle = FindLine(out, " => CYCLE No.:    1");
  const int phase = FindLine(out, " => Phase No.  1  Test phase");
  const int atoms = FindLine(out, "   O1");
  const int peaks = FindLine(out, " => Profile parameters of phase  1 in pattern  1");
  const int globals = FindLine(out, " => Global parameters of pattern  1");
  const int limits =
      FindLine(out, " => WARNING!! the following parameters have gone out of limits!");
  const int reliability =
      FindLine(out, " ==> RELIABILITY FACTORS WITH ALL NON-EXCLUDED POINTS FOR PATTERN:");
  const int chi2 = FindLine(out, " => Global user-weigthed Chi2 (Bragg contrib.):");
  const int bragg = FindLine(out, " => ---------> Pattern#");
  EXPECT_GE(cycle, 0);
  EXPECT_LT(cycle, phase);
  EXPECT_LT(phase, atoms);
  EXPECT_LT(atoms, peaks);
  EXPECT_LT(peaks, globals);
  EXPECT_LT(globals, limits);
  EXPECT_LT(limits, reliability);
  EXPECT_LT(reliability, chi2);
  EXPECT_LT(chi2, bragg);
  EXPECT_EQ(out[static_cast<std::size_t>(limits) + 1],
            "  -> Parameter no.:    1 Fixed to:    1.00000    ");
  EXPECT_GE(FindLine(c.Sum(), " => WARNING!! the following parameters have gone out of limits!"),
            0);
}

TEST(WriteCycleResults, EachPassStartsWithAnEmptyListOfBreaks) {
  UpdateCase c;
  c->run.NCY = 5;
  c.SetLimit(1, 0.0f, 1.0f);
  c.pattern().GLBword[1] = UpdateCase::Code(1);
  c.SetParameter(1, 2.0f, 0.0f);
  WriteCycleResults(*c, 1, 0, c.profile);
  EXPECT_EQ(c->limits.breaks.count, 1);
  EXPECT_EQ(c.pattern().GLB[1], 1.0f);
  c.SetParameter(1, -0.5f, 0.0f);
  WriteCycleResults(*c, 2, 0, c.profile);
  EXPECT_EQ(c->limits.breaks.count, 0);
  EXPECT_EQ(c.pattern().GLB[1], 0.5f);
}

TEST(WriteCycleResults, WithNrellZeroNoLimitIsReported) {
  UpdateCase c;
  c.SetLimit(1, 0.0f, 1.0f);
  c->run.NRELL = 0;
  c.pattern().GLBword[1] = UpdateCase::Code(1);
  c.SetParameter(1, 2.0f, 0.0f);
  WriteCycleResults(*c, 1, 0, c.profile);
  EXPECT_EQ(c.pattern().GLB[1], 2.0f);
  EXPECT_EQ(c->limits.breaks.count, 0);
  EXPECT_EQ(FindLine(c.Out(), " => WARNING!! the following parameters"), -1);
}

TEST(WriteCycleResults, APositionSigmaAboveOneIsShownJustBelowOneToFitItsField) {
  UpdateCase c;
  AtomSite& atom = c.AddAtom("O1");
  atom.ATC[2] = UpdateCase::Code(1);
  c.SetParameter(1, 0.0f, 4.0f);  // sigma 2
  WriteCycleResults(*c, 1, 0, c.profile);
  const std::vector<std::string> out = c.Out();
  const int row = FindLine(out, "   O1");
  ASSERT_GE(row, 0);
  // Second group (y): value, shift, sigma.
  EXPECT_EQ(out[static_cast<std::size_t>(row)].substr(30, 25), "  0.00000 0.00000 .999999");
}

TEST(WriteCycleResults, UserModelParametersKeepTheirSigmaEvenOutOfTheField) {
  UpdateCase c;
  c->phases[1].Jbt = 4;
  AtomSite& atom = c.AddAtom("M1");
  atom.ATC[2] = UpdateCase::Code(1);
  c.SetParameter(1, 0.0f, 4.0f);
  WriteCycleResults(*c, 1, 0, c.profile);
  const std::vector<std::string> out = c.Out();
  EXPECT_GE(FindLine(out, " Atom       p1     dp1     sp1"), 0);
  const int row = FindLine(out, "   M1");
  ASSERT_GE(row, 0);
  EXPECT_EQ(out[static_cast<std::size_t>(row)].substr(30, 25), "  0.00000 0.00000 *******");
}

TEST(WriteCycleResults, TheGlobalChi2GoesToTheConsoleAndTheReports) {
  UpdateCase c;
  c->run.NCY = 1;
  c->refinement.GlobalChi2 = 2.5f;
  WriteCycleResults(*c, 1, 0, c.profile);
  const std::string line = " => Global user-weigthed Chi2 (Bragg contrib.):   2.500";
  EXPECT_TRUE(HasLine(c.Console(), line));
  EXPECT_TRUE(HasLine(c.Out(), line));
  EXPECT_TRUE(HasLine(c.Sum(), line));
}

TEST(WriteCycleResults, AFourierFilterBackgroundIsRefreshedAfterTheUpdate) {
  UpdateCase c;
  c.pattern().NBCKGD = 2;
  c.pattern().backgroundSign = -1;
  c.pattern().FourierWindow = 0.0f;  // a window of 0 leaves the residual as it is
  WriteCycleResults(*c, 1, 0, c.profile);
  // Residual 10 - 3 - 1 = 6, added twice to the background of 1.
  for (int i = 1; i <= 3; ++i) EXPECT_NEAR(c.pattern().Backg[i], 13.0f, 1e-4) << i;
}

TEST(WriteCycleResults, OtherBackgroundsAreNotFiltered) {
  UpdateCase c;
  c.pattern().NBCKGD = 2;
  c.pattern().backgroundSign = 1;
  WriteCycleResults(*c, 1, 0, c.profile);
  EXPECT_EQ(c.pattern().Backg[2], 1.0f);
}

TEST(WriteCycleResults, IntegratedIntensityJobsSkipTheGlobalsAndTheFilter) {
  UpdateCase c;
  c->run.ICRYG = 1;
  c.pattern().NBCKGD = 2;
  c.pattern().backgroundSign = -1;
  c.pattern().GLBword[1] = UpdateCase::Code(1);
  c.SetParameter(1, 1.0f, 0.0f);
  WriteCycleResults(*c, 1, 0, c.profile);
  EXPECT_EQ(c.pattern().GLB[1], 0.0f);
  EXPECT_EQ(c.pattern().Backg[1], 1.0f);
  EXPECT_EQ(FindLine(c.Out(), " => Global parameters of pattern"), -1);
}

TEST(WriteCycleResults, APhaseWithoutContributionKeepsItsPeakParameters) {
  UpdateCase c;
  c.peaks().Contribution = 0;
  c.peaks().PAC[1] = UpdateCase::Code(1);
  c.SetParameter(1, 1.0f, 0.0f);
  WriteCycleResults(*c, 1, 0, c.profile);
  EXPECT_EQ(c.peaks().PAR[1], 0.5f);
}

}  // namespace
}  // namespace corvinet
