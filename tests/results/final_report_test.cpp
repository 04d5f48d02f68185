// Tests of the final report: correlation matrix, phase fractions, reflection rows and headers,
// Bragg lines, the simulated pattern, and whole reports after the cycles of a profile-matching job.
#include "results/final_report.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "format/fortran_format.h"
#include "observations/poisson.h"
#include "records/reflection.h"
#include "refine/cycle_driver.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;
using testing::SplitLines;

int CountLines(const std::string& text, const std::string& line) {
  const auto lines = SplitLines(text);
  return static_cast<int>(std::count(lines.begin(), lines.end(), line));
}

std::size_t LineIndex(const std::string& text, const std::string& start) {
  const auto lines = SplitLines(text);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (lines[i].rfind(start, 0) == 0) return i;
  }
  return std::string::npos;
}

// --- Correlation matrix ---

TEST(CorrelationMatrix, PercentIsRoundedByAddingAHalfAndTruncating) {
  // C(1,2) = 1 with variances 4 and 9: 100/6 = 16.67 -> 17.
  EXPECT_EQ(CorrelationPercent(1.0f, 4.0f, 9.0f), 17);
  // -16.67 + 0.5 = -16.17 truncates towards zero.
  EXPECT_EQ(CorrelationPercent(-1.0f, 4.0f, 9.0f), -16);
  // A negative product of variances flips the sign: 100*3/(-6) + 0.5 = -49.5.
  EXPECT_EQ(CorrelationPercent(3.0f, -4.0f, 9.0f), -49);
}

TEST(CorrelationMatrix, ParameterAgainstItselfPrintsOneHundred) {
  EXPECT_EQ(CorrelationPercent(4.0f, 4.0f, 4.0f), 100);
  EXPECT_EQ(CorrelationPercent(0.0025f, 0.0025f, 0.0025f), 100);
  NormalMatrix n;
  n.A(1, 1) = 4.0f;
  n.A(2, 2) = 9.0f;
  n.A(1, 2) = n.A(2, 1) = 1.0f;
  const auto lines = CorrelationMatrixLines(n, 2);
  ASSERT_EQ(lines.size(), 5u);
  EXPECT_EQ(lines[0], " => Correlation matrix ==>");
  EXPECT_EQ(lines[1], "");
  EXPECT_EQ(lines[2], "         1   2");
  EXPECT_EQ(lines[3], "    1  100  17");
  EXPECT_EQ(lines[4], "    2   17 100");
}

TEST(CorrelationMatrix, OneParameterHasNoMatrix) {
  NormalMatrix n;
  n.A(1, 1) = 1.0f;
  EXPECT_TRUE(CorrelationMatrixLines(n, 1).empty());
  EXPECT_TRUE(CorrelationMatrixLines(n, 0).empty());
}

TEST(CorrelationMatrix, BlocksHoldAtMostNineteenColumns) {
  NormalMatrix n;
  for (int i = 1; i <= 20; ++i) n.A(i, i) = 1.0f;
  const auto lines = CorrelationMatrixLines(n, 20);
  // Heading, then two blocks of a blank, a head and 20 rows.
  ASSERT_EQ(lines.size(), 1u + 2u * 22u);
  std::string head = "      ";
  for (int j = 1; j <= 19; ++j) head += Fmt("(I4)", j);
  EXPECT_EQ(lines[2], head);
  EXPECT_EQ(lines[3].size(), 6u + 19u * 4u);
  EXPECT_EQ(lines[24], "        20");
  EXPECT_EQ(lines[25], "    1    0");
  EXPECT_EQ(lines[44], "   20  100");
}

// --- Fractions ---

// Two crystal phases of pattern 1 with scale, volume, ATZ and Brindley given,
// their scales refined as parameters 1 and 2 with the variances given.
void TwoPhases(Job& job, float var1, float var2) {
  job.run.NPHASE = 2;
  job.run.MAXS = 2;
  const float scale[] = {1.0f, 2.0f}, volume[] = {100.0f, 50.0f}, atz[] = {50.0f, 100.0f};
  for (int f = 1; f <= 2; ++f) {
    PhasePattern& pp = job.phases[f].pat[1];
    pp.Contribution = 1;
    pp.PAR[1] = scale[f - 1];
    pp.cellVolume = volume[f - 1];
    pp.Brind = 1.0f;
    pp.PAC[1] = Codeword{f, 1.0f};
    job.phases[f].ATZ = atz[f - 1];
  }
  job.refinement.normal.A(1, 1) = var1;
  job.refinement.normal.A(2, 2) = var2;
}

TEST(PhaseFractions, TwoPhasesShareTheWeightWithPropagatedSigmas) {
  CapturedJob job;
  TwoPhases(*job, 0.01f, 0.04f);
  // W = 1*100*50 = 5000 and 2*50*100 = 10000; r = 0.01/1 = 0.04/4 = 0.01;
  // Q = (5000^2 + 10000^2) 0.01 / 15000^2 = 0.0055556.
  const PhaseFractions fr = ComputePhaseFractions(*job, 1);
  EXPECT_NEAR(fr.VolumeFraction[1], 33.33333f, 1e-4f);
  EXPECT_NEAR(fr.VolumeFraction[2], 66.66667f, 1e-4f);
  EXPECT_NEAR(fr.FractionSigma[1], 4.157397f, 1e-4f);
  EXPECT_NEAR(fr.FractionSigma[2], 8.314794f, 1e-4f);
  EXPECT_NEAR(fr.SqrtAtz[2], 10.0f, 1e-6f);
}

TEST(PhaseFractions, VolumeSigmaEntersTheRelativeVariance) {
  CapturedJob job;
  TwoPhases(*job, 0.0f, 0.0f);
  job->limits.cells(1, 1).volumeSigma = 2.0f;  // (2/100)^2 = 4E-4
  const PhaseFractions fr = ComputePhaseFractions(*job, 1);
  EXPECT_NEAR(fr.relativeVariance[1], 4.0e-4f, 1e-9f);
  // Q = 5000^2 4E-4 / 15000^2 = 4.4444E-5.
  EXPECT_NEAR(fr.FractionSigma[2], std::sqrt(4.4444444e-5f) * 66.66667f, 1e-4f);
}

TEST(PhaseFractions, MagneticPhaseWeighsNothingAndSmallBrindleyBecomesOne) {
  CapturedJob job;
  TwoPhases(*job, 0.0f, 0.0f);
  job->phases[1].Jbt = -1;
  job->phases[2].pat[1].Brind = 0.00005f;
  const PhaseFractions fr = ComputePhaseFractions(*job, 1);
  EXPECT_EQ(fr.ATZ[1], 0.0f);
  EXPECT_EQ(fr.Brindley[2], 1.0f);
  EXPECT_FLOAT_EQ(fr.VolumeFraction[2], 100.0f);
  EXPECT_EQ(fr.VolumeFraction[1], 0.0f);
}

TEST(PhaseFractions, NoWeightAtAllKeepsTheSumAtOne) {
  CapturedJob job;
  TwoPhases(*job, 0.0f, 0.0f);
  job->phases[1].ATZ = 0.0f;
  job->phases[2].ATZ = 0.0f;
  const PhaseFractions fr = ComputePhaseFractions(*job, 1);
  EXPECT_EQ(fr.VolumeFraction[1], 0.0f);
  EXPECT_EQ(fr.VolumeFraction[2], 0.0f);
}

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

TEST(BraggLines, MagneticPhaseHasOneFactor) {
  CapturedJob job;
  job->phases[1].Jbt = 5;
  PhaseReportSums sums;
  sums.FinalRB = 12.5f;
  const auto lines = FinalBraggLines(*job, 1, 1, PhaseFractions{}, sums);
  EXPECT_EQ(lines, (std::vector<std::string>{" => Phase:  1", " => Magnetic R-factor:  12.5    "}));
}

// --- Simulated pattern ---

TEST(SimulatedPattern, CountsAreRoundedHalfAwayFromZero) {
  EXPECT_EQ(RoundedCount(2.5f), 3);
  EXPECT_EQ(RoundedCount(2.49f), 2);
  EXPECT_EQ(RoundedCount(-2.5f), -3);
  EXPECT_EQ(RoundedCount(-0.4f), 0);
}

void ThreePoints(Job& job, int jobtyp, int idum) {
  job.run.Title = "Three points";
  job.run.IDUM = idum;
  Pattern& p = job.patterns[1];
  p.JOBTYP = jobtyp;
  p.NPTS = 3;
  p.THMIN = 10.0f;
  p.STEP = 0.5f;
  p.THMAX = 11.0f;
  p.Ytotal[1] = 10.4f;
  p.Ytotal[2] = 2000.5f;
  p.Ytotal[3] = -3.5f;
}

TEST(SimulatedPattern, CalculationJobWritesTheCalculatedCounts) {
  ScratchDir dir;
  CapturedJob job;
  job->driver.PcrCode = "x";
  ThreePoints(*job, 2, 1);
  WriteSimulatedPattern(*job, 1);
  EXPECT_EQ(dir.Read("x.sim"),
            "     10.0000      0.5000     11.0000  Three points\n"
            "      10    2001      -4\n");
}

TEST(SimulatedPattern, NegativeIdumDrawsPoissonCounts) {
  ScratchDir dir;
  CapturedJob job;
  CapturedJob twin;
  job->driver.PcrCode = "x";
  ThreePoints(*job, 2, -1);
  ThreePoints(*twin, 2, -1);
  WriteSimulatedPattern(*job, 1);
  const float expected[] = {PoissonDeviate(*twin, 10.4f), PoissonDeviate(*twin, 2000.5f),
                            PoissonDeviate(*twin, -3.5f)};
  const auto lines = SplitLines(dir.Read("x.sim"));
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[1], Fmt("(3I8)", RoundedCount(expected[0]), RoundedCount(expected[1]),
                          RoundedCount(expected[2])));
  EXPECT_EQ(job->patterns[1].Ytotal[2], expected[1]);
  EXPECT_NE(lines[1], "      10    2001      -4");
}

TEST(SimulatedPattern, RefinementOrIdumZeroWritesNoFile) {
  ScratchDir dir;
  for (auto [jobtyp, idum] : {std::pair{0, 1}, std::pair{1, 1}, std::pair{2, 0}}) {
    CapturedJob job;
    job->driver.PcrCode = "x";
    ThreePoints(*job, jobtyp, idum);
    WriteSimulatedPattern(*job, 1);
    EXPECT_FALSE(dir.Exists("x.sim")) << jobtyp << " " << idum;
  }
}

// --- Exports of a pattern ---

TEST(PatternExports, SchakalLineOnlyForTheFirstPattern) {
  ScratchDir dir;
  CapturedJob job;
  job->driver.PcrCode = "x";
  OpenUnit(job->files.units[Unit::Out], "x.out", OpenStatus::Unknown);
  job->run.NPATT = 2;
  job->run.NPHASE = 1;
  job->phases[1].More = 1;
  job->phases[1].Jvi = 1;
  WritePatternExports(*job, 1);
  WritePatternExports(*job, 2);
  job->phases[1].Jvi = 2;
  WritePatternExports(*job, 2);
  CloseUnit(job->files.units[Unit::Out]);
  EXPECT_EQ(CountLines(dir.Read("x.out"),
                       " => This version of Corvinet does not write the Schakal/STRUPLO file "
                       "(.sch) of phase 1"),
            1);
}

TEST(PatternExports, FourierShelxAndSavFilesAreNamedAsNotWritten) {
  ScratchDir dir;
  CapturedJob job;
  job->driver.PcrCode = "x";
  OpenUnit(job->files.units[Unit::Out], "x.out", OpenStatus::Unknown);
  job->run.NPHASE = 1;
  job->run.JCIL = 2;
  job->patterns[1].JFOU = -2;
  WritePatternExports(*job, 1);
  job->patterns[1].JFOU = 3;
  job->run.JCIL = 1;
  WritePatternExports(*job, 1);
  CloseUnit(job->files.units[Unit::Out]);
  const std::string out = dir.Read("x.out");
  const std::string prefix = " => This version of Corvinet does not write ";
  EXPECT_EQ(CountLines(out, prefix + "the Fourier file (.fou) of pattern 1"), 2);
  EXPECT_EQ(CountLines(out, prefix + "the SHELX file (.ins)"), 1);
  EXPECT_EQ(CountLines(out, prefix + "the Fourier template (.inp)"), 1);
  EXPECT_EQ(CountLines(out, prefix + "the collected results file (.sav)"), 1);
  EXPECT_FALSE(dir.Exists("x.fou"));
}

// --- Whole reports after the cycles of a profile-matching job ---

// The one-cycle profile matching of the simulated cubic pattern, with its
// output options replaced by `outputLine` (Ipr Ppl Ioc Mat Pcr ... Ana).
struct ReportRun {
  ScratchDir dir;
  CapturedJob job;
  std::string pcr;
  bool cycled = false;
  explicit ReportRun(const std::string& outputLine, int cycles = 1) {
    pcr = testing::TestData("cycle/cycle1.pcr");
    const std::string blank =
        "   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0";
    const std::size_t at = pcr.find(blank, pcr.find("!Ipr"));
    pcr.replace(at, blank.size(), outputLine);
    pcr.replace(pcr.find("  1  0.10"), 3, Fmt("(I3)", cycles));
    dir.Write("x.dat", testing::TestData("cycle/cycle.dat"));
    EXPECT_TRUE(testing::ReadControlText(dir, job, pcr, false)) << job.Console();
    OpenUnit(job->files.units[Unit::Out], "x.out", OpenStatus::Append);
    OpenUnit(job->files.units[Unit::Sum], "x.sum", OpenStatus::Append);
    int stop = 0;
    cycled = testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j, stop); });
  }
  bool Report() {
    return testing::RunsWithoutStop(*job, [](Job& j) { FinalReport(j); });
  }
  std::string Out() { return testing::FlushedReport(dir, *job); }
  std::string Sum() {
    std::fflush(job->files.units[Unit::Sum].file);
    return dir.Read("x.sum");
  }
};

TEST(FinalReport, StepsComeInTheirOrder) {
  //              Ipr Ppl Ioc Mat Pcr Ls1 Ls2 Ls3 Syo Prf Ins Rpa Sym Hkl Fou Sho Ana
  ReportRun run("   1   1   0   1   1   0   0   0   0   1   0   1   0   1   0   0   0", 2);
  ASSERT_TRUE(run.cycled) << run.job.Console();
  ASSERT_TRUE(run.Report()) << run.job.Console();
  const std::string out = run.Out();
  const std::size_t matrix = LineIndex(out, " => Correlation matrix ==>");
  const std::size_t phase = LineIndex(out, " Pattern#  1 Phase No:   1 Phase name: Cubic phase");
  const std::size_t bragg = LineIndex(out, " => Bragg R-factor:");
  const std::size_t table = LineIndex(out, "2THETA   YOBS    YCALC VARIANCE ");
  const std::size_t dimensions = LineIndex(out, " => Dimensions of arrays");
  ASSERT_NE(matrix, std::string::npos);
  ASSERT_NE(phase, std::string::npos);
  ASSERT_NE(bragg, std::string::npos);
  ASSERT_NE(table, std::string::npos);
  ASSERT_NE(dimensions, std::string::npos);
  EXPECT_LT(matrix, phase);
  EXPECT_LT(phase, bragg);
  // The line-printer table reads the totals, after the phase blocks.
  EXPECT_LT(bragg, table);
  EXPECT_LT(table, dimensions);
  // Six reflections of the cubic cell in range, each with its row.
  EXPECT_EQ(SplitLines(run.dir.Read("x.hkl")).size(), 7u);
  EXPECT_TRUE(run.dir.Exists("x.prf"));
  EXPECT_TRUE(run.dir.Exists("x1.int"));
  // The control file now holds the refined background.
  EXPECT_NE(run.dir.Read("x.pcr"), run.pcr);
  EXPECT_NE(run.dir.Read("x.pcr").find("! Iscale    Idif   --> Pattern#1"), std::string::npos);
  const std::string sum = run.Sum();
  EXPECT_NE(LineIndex(sum, " => Bragg R-factor:"), std::string::npos);
  EXPECT_NE(LineIndex(sum, " => Rf-factor="), std::string::npos);
  std::fflush(run.job->files.units[Unit::Rpa].file);
  const auto rpa = SplitLines(run.dir.Read("x.rpa"));
  ASSERT_GE(rpa.size(), 2u);
  EXPECT_EQ(rpa[rpa.size() - 2].rfind("BRAG    1", 0), 0u);
  EXPECT_EQ(rpa.back(), std::string(80, '-'));
  EXPECT_EQ(CountLines(out,
                       " => This version of Corvinet does not write the regrouped list of "
                       "extracted intensities"),
            1);
}

TEST(FinalReport, ReflectionRowsRepeatTheRietveldPartition) {
  ReportRun run("   0   0   0   0   0   0   0   0   0   0   0   0   0   1   0   0   0");
  ASSERT_TRUE(run.cycled) << run.job.Console();
  ASSERT_TRUE(run.Report()) << run.job.Console();
  // The Iobs column sums to the observed intensity of the phase, and RB is
  // 100 sum|Iobs - Icalc| / sum Iobs over the same rows.
  double sumIobs = 0.0, sumAbs = 0.0;
  const auto rows = SplitLines(run.dir.Read("x.hkl"));
  for (std::size_t i = 1; i < rows.size(); ++i) {
    const double iobs = std::stod(rows[i].substr(47, 11));
    const double icalc = std::stod(rows[i].substr(58, 9));
    sumIobs += iobs;
    sumAbs += std::fabs(iobs - icalc);
  }
  const std::string line = SplitLines(run.Out())[LineIndex(run.Out(), " => Bragg R-factor:")];
  EXPECT_NEAR(std::stod(line.substr(20, 9)), 100.0 * sumAbs / sumIobs, 0.05);
}

TEST(FinalReport, NxtZeroWritesNoNewControlFile) {
  ReportRun run("   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0");
  ASSERT_TRUE(run.cycled);
  ASSERT_TRUE(run.Report()) << run.job.Console();
  EXPECT_EQ(run.dir.Read("x.pcr"), run.pcr);
  EXPECT_FALSE(run.dir.Exists("x.new"));
}

TEST(FinalReport, NxtTwoWritesTheNewFileBesideTheOldOne) {
  ReportRun run("   0   0   0   0   2   0   0   0   0   0   0   0   0   0   0   0   0");
  ASSERT_TRUE(run.cycled);
  ASSERT_TRUE(run.Report()) << run.job.Console();
  EXPECT_EQ(run.dir.Read("x.pcr"), run.pcr);
  EXPECT_TRUE(run.dir.Exists("x.new"));
}

TEST(FinalReport, OneRefinedParameterHasNoCorrelationMatrix) {
  ReportRun run("   0   0   0   1   0   0   0   0   0   0   0   0   0   0   0   0   0");
  ASSERT_TRUE(run.cycled);
  run.job->run.MAXS = 1;
  ASSERT_TRUE(run.Report()) << run.job.Console();
  EXPECT_EQ(LineIndex(run.Out(), " => Correlation matrix ==>"), std::string::npos);
}

TEST(FinalReport, MatZeroHasNoCorrelationMatrix) {
  ReportRun run("   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0");
  ASSERT_TRUE(run.cycled);
  ASSERT_TRUE(run.Report());
  EXPECT_EQ(LineIndex(run.Out(), " => Correlation matrix ==>"), std::string::npos);
}

TEST(FinalReport, PhaseWithoutObservedIntensityShowsTheBoxAndGoesOn) {
  ReportRun run("   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0");
  ASSERT_TRUE(run.cycled);
  // An excluded region over the whole range leaves no reflection counted.
  Pattern& p = run.job->patterns[1];
  p.NEXCRG = 1;
  p.ExclLow[1] = 0.0f;
  p.ExclHigh[1] = 180.0f;
  ASSERT_TRUE(run.Report()) << run.job.Console();
  EXPECT_NE(run.job.Console().find("Sum(Iobs)=0: have you really reflections?"), std::string::npos);
  EXPECT_NE(LineIndex(run.Out(), " => Dimensions of arrays"), std::string::npos);
}

TEST(FinalReport, BackgroundIsAddedToYcalcOnce) {
  ReportRun run("   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0");
  ASSERT_TRUE(run.cycled);
  Pattern& p = run.job->patterns[1];
  const float bragg = p.Ycalc[100];
  const float background = p.Backg[100];
  ASSERT_TRUE(run.Report());
  EXPECT_FLOAT_EQ(p.Ycalc[100], bragg + background);
}

TEST(FinalReport, StepsOfOtherPiecesAreNamedAsNotWritten) {
  //              Ipr Ppl Ioc Mat Pcr Ls1 Ls2 Ls3 Syo Prf Ins Rpa Sym Hkl Fou Sho Ana
  ReportRun run("   2   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   1");
  ASSERT_TRUE(run.cycled);
  run.job->phases[1].Sol = 1;
  ASSERT_TRUE(run.Report()) << run.job.Console();
  const std::string out = run.Out();
  const std::string prefix = " => This version of Corvinet does not write ";
  EXPECT_EQ(CountLines(out, prefix + "the refinement analysis"), 1);
  EXPECT_EQ(CountLines(out, prefix + "the contribution table to Yi of phase 1"), 1);
  EXPECT_EQ(CountLines(out, prefix + "the structure-factor list of phase 1"), 1);
}

TEST(FinalReport, IntegratedIntensityPhaseIsNamedAsNotEvaluated) {
  ReportRun run("   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0   0");
  ASSERT_TRUE(run.cycled);
  run.job->phases[1].pat[1].Irf = 4;
  ASSERT_TRUE(run.Report());
  EXPECT_EQ(CountLines(run.Out(),
                       " => This version of Corvinet does not write the Bragg "
                       "evaluation of integrated intensities"),
            1);
  EXPECT_EQ(LineIndex(run.Out(), " => Bragg R-factor:"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
