// Tests of the phase block and the profile lines: flags, contributions, normalisation, models and
// vectors.
#include "control/phase_block.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "control/profile_lines.h"
#include "control/run_block.h"
#include "io/file_set.h"
#include "run/defaults.h"
#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

// A job positioned at a phase block: single-pattern form unless patterns > 1.
struct PhaseJob {
  ScratchDir dir;
  CapturedJob job;
  PhaseJob(const std::string& lines, int patterns = 1) {
    testing::OpenControlText(dir, *job, lines);
    job->run.NPATT = patterns;
    job->run.singlePatternForm = patterns == 1;
    for (int ip = 1; ip <= patterns; ++ip) job->patterns[ip].NPROF = 6;
  }
  Job& operator*() { return *job; }
  Job* operator->() { return job.operator->(); }
  template <typename F>
  bool Runs(F read) {
    return testing::RunsWithoutStop(*job, read);
  }
  std::string Out() { return testing::FlushedReport(dir, *job); }
};

void ReadPhaseOne(Job& job) {
  ReadPhase(job, 1);
}
void ReadPhaseAndProfile(Job& job) {
  ReadPhase(job, 1);
  ReadProfile(job, 1);
  DecodeProfileCodes(job, 1);
}

const char* kCubicProfile =
    "1.0 0.0 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n"
    "0.01 -0.01 0.01 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0 0\n"
    "4.0 4.0 4.0 90 90 90\n0 0 0 0 0 0\n"
    "0 0 0 0 0 0\n0 0 0 0 0 0\n";

TEST(PhaseBlock, ShortFlagsLineTakesTheProfileOfThePattern) {
  PhaseJob job("Title\n0 0 0 0.0 0.0 1.0 2 0 0 0\nP m 3 m\n");
  job->patterns[1].NPROF = 8;
  ASSERT_TRUE(job.Runs(ReadPhaseOne));
  const Phase& ph = job->phases[1];
  EXPECT_EQ(ph.More, 0);
  EXPECT_EQ(ph.Nvk, 0);
  EXPECT_EQ(ph.pat[1].Npr, 8);
  EXPECT_EQ(ph.SpaceGroupSymbol, "P m 3 m");
  EXPECT_EQ(ph.PhaseTitle, "Title");
}

TEST(PhaseBlock, PatternMatchingWithFixedScaleForcesCycleFlags) {
  PhaseJob job("T\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0\nP 1\n");
  ASSERT_TRUE(job.Runs(ReadPhaseOne));
  EXPECT_EQ(job->run.IDUM, 1);
  EXPECT_EQ(job->run.IASG, 1);
  EXPECT_FALSE(job->run.ConvergenceTestActive);
  const std::string out = job.Out();
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Pattern Matching (fixed scale)"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Input data if irf=2: Integrated Intensities"));
}

TEST(PhaseBlock, VariableScaleMatchingNeedsReflectionsWithIntensities) {
  PhaseJob job("T\n0 0 0 0.0 0.0 1.0 -3 0 0 0 0 0.0 0 0 0\nP 1\n");
  EXPECT_FALSE(job.Runs(ReadPhaseOne));
  const std::string console = job.job.Console();
  EXPECT_NE(console.find("  Illegal JBT and IRF for phase: 1"), std::string::npos);
  EXPECT_NE(console.find("  If ABS(JBT)=3 then IRF must be = 2"), std::string::npos);
  EXPECT_NE(console.find(" Illegal JBT and IRF"), std::string::npos);
}

TEST(PhaseBlock, NullOrientationAxisBecomesC) {
  PhaseJob job("T\n0 0 0 0 0 0 2 0 0 0 0 0.0 0 0 0\nP 1\n");
  ASSERT_TRUE(job.Runs(ReadPhaseOne));
  EXPECT_FLOAT_EQ(job->phases[1].pat[1].PREF[1], 0.0f);
  EXPECT_FLOAT_EQ(job->phases[1].pat[1].PREF[3], 1.0f);
  EXPECT_TRUE(testing::HasNormalisedLine(
      job.Out(), " => Preferred orientation vector:    0.000   0.000   1.000"));
}

TEST(PhaseBlock, PatternWithoutContributionStillGetsNormalisedFields) {
  PhaseJob job("T\n0 0 0 2 0 0 0 0.0 0 0\n1 0\n0 0 0\n0 0 1 1 0 0 0\nP 1\n", 2);
  ASSERT_TRUE(job.Runs(ReadPhaseOne));
  const PhasePattern& none = job->phases[1].pat[2];
  EXPECT_EQ(none.Contribution, 0);
  EXPECT_FLOAT_EQ(none.Brind, 1.0f);
  EXPECT_FLOAT_EQ(none.PREF[3], 1.0f);
  EXPECT_EQ(job->phases[1].pat[1].Contribution, 1);
}

TEST(PhaseBlock, NegativeIntegratedSourceReadsPartialStructureFactors) {
  PhaseJob job("T\n0 0 0 0.0 0.0 1.0 0 -4 0 0 0 0.0 0 0 0\nP 1\n");
  ASSERT_TRUE(job.Runs(ReadPhaseOne));
  EXPECT_TRUE(job->run.integratedObservations);
  const std::string out = job.Out();
  EXPECT_TRUE(
      testing::HasNormalisedLine(out, " => Integrated intensities as observations for phase:  1"));
  EXPECT_TRUE(
      testing::HasNormalisedLine(out, "    Partial Structure Factors, Fp=A+iB, read from file"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Crystal Structure Refinement"));
  EXPECT_FLOAT_EQ(job->phases[1].pat[1].Rmua, 1.0f);
}

TEST(PhaseBlock, NegativeVectorCountAddsMinusK) {
  PhaseJob job("T\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 -2 0 0\nP 1\n");
  ASSERT_TRUE(job.Runs(ReadPhaseOne));
  EXPECT_EQ(job->phases[1].addMinusK, 'Y');
  EXPECT_EQ(job->phases[1].Nvk, 2);
  const std::string out = job.Out();
  EXPECT_TRUE(
      testing::HasNormalisedLine(out, " => The list of [K] vectors has been augmented with [-K]"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Number of propagation vectors [K]+[-K] =   4"));
}

TEST(PhaseBlock, MagneticPhaseMakesThePatternMagnetic) {
  // The remark behind the symbol starts in column 21.
  // With magnetic symmetry the time-reversal sign of each operator follows.
  PhaseJob job("T\n1 0 0 0.0 0.0 1.0 10 0 0 0 0 0.0 0 0 0\nP 1                 Mag\n1\n");
  ASSERT_TRUE(job.Runs(ReadPhaseOne));
  const Phase& ph = job->phases[1];
  EXPECT_EQ(ph.pat[1].magneticPattern, 1);
  EXPECT_EQ(ph.pat[1].Jtyp, 1);  // JOBTYP 0 of the pattern, then 1 for a magnetic phase
  EXPECT_EQ(ph.magneticSymmetry, 1);
  EXPECT_EQ(ph.SpaceGroupRemark, "Mag");
}

TEST(PhaseBlock, MissingSpaceGroupLineStops) {
  PhaseJob job("T\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0\n! nothing more\n");
  EXPECT_FALSE(job.Runs(ReadPhaseOne));
  EXPECT_NE(job.job.Console().find("  Error reading the space group symbol"), std::string::npos);
}

TEST(PhaseBlock, MoreLineGivesViewWordAndJob) {
  PhaseJob job("T\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 1\n1 0 0 0 0 0 1.0 0 0 0 1\nP 1\n");
  ASSERT_TRUE(job.Runs(ReadPhaseOne));
  EXPECT_EQ(job->phases[1].pat[1].Jtyp, 1);
  const std::string out = job.Out();
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Schakal File (*.sch) is output for phase: 1"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Different job for phase:  1"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, "    Neutron diffraction data"));
}

std::string Summary(PhaseJob& job) {
  std::fflush(job->files.units[Unit::Sum].file);
  return job.dir.Read("x.sum");
}

// The flags line of a single-pattern phase with the given Jbt, Irf, Npr and More.
std::string Flags(int jbt, int irf, int npr = 0, int more = 0) {
  return "T\n0 0 0 0.0 0.0 1.0 " + std::to_string(jbt) + " " + std::to_string(irf) +
         " 0 0 0 0.0 0 " + std::to_string(npr) + " " + std::to_string(more) + "\n";
}

TEST(PhaseBlock, EveryPhaseKindHasItsWord) {
  const std::pair<int, const char*> words[] = {
      {0, " => Crystal Structure Refinement"},
      {1, " => Magnetic Structure Refinement"},
      {-1, " => Magnetic Structure Refinement (Spherical)"},
      {2, " => Pattern Matching (fixed scale)"},
      {-2, " => Pattern Matching (fixed scale)"},
      {3, " => Pattern Matching (variable scale)"},
      {-3, " => Pattern Matching (variable scale)"},
      {4, " => Structural model provided by user"},
      {-4, " => Structural model provided by user"},
      {5, " => Magnetic model provided by user"},
      {-5, " => Magnetic model provided by user"},
      {10, " => Crystal+Magnetic Structure Refinement"},
      {-10, " => Crystal+Magnetic(Spherical) Structure Refinement"},
  };
  for (const auto& [jbt, word] : words) EXPECT_STREQ(PhaseTypeWord(jbt), word) << jbt;
  EXPECT_STREQ(PhaseTypeWord(6), "");
  EXPECT_STREQ(PhaseTypeWord(-7), "");
}

TEST(PhaseBlock, PhaseWordGoesToTheSummaryWithThePhaseNumber) {
  PhaseJob job(Flags(-10, 0) + "P 1\n");
  ASSERT_TRUE(job.Runs(ReadPhaseOne));
  EXPECT_TRUE(testing::HasNormalisedLine(job.Out(),
                                         " => Crystal+Magnetic(Spherical) Structure Refinement"));
  EXPECT_TRUE(testing::HasNormalisedLine(
      Summary(job), " => Crystal+Magnetic(Spherical) Structure Refinement for phase: 1"));
}

TEST(PhaseBlock, PhaseKindWithoutAWordWritesNoWord) {
  PhaseJob job(Flags(7, 0) + "P 1\n");
  ASSERT_TRUE(job.Runs(ReadPhaseOne));
  const std::string sum = Summary(job);
  EXPECT_EQ(sum.find(" for phase:"), std::string::npos) << sum;
}

TEST(PhaseBlock, MatchingOnSquaredStructureFactorsSaysSo) {
  PhaseJob job(Flags(-2, 0) + "P 1\n");
  job->run.ConvergenceTestActive = true;  // as the head of the control file leaves it
  ASSERT_TRUE(job.Runs(ReadPhaseOne));
  const std::string out = job.Out();
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Pattern Matching (fixed scale)"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Input data if irf=2: F(H)^2"));
  EXPECT_FALSE(job->run.ConvergenceTestActive);
}

TEST(PhaseBlock, VariableScaleMatchingKeepsTheConvergenceTest) {
  PhaseJob job(Flags(3, 2) + "P 1\n");
  job->run.ConvergenceTestActive = true;  // as the head of the control file leaves it
  ASSERT_TRUE(job.Runs(ReadPhaseOne));
  EXPECT_TRUE(
      testing::HasNormalisedLine(job.Out(), " => Input data if irf=2: Integrated Intensities"));
  EXPECT_TRUE(job->run.ConvergenceTestActive);
  EXPECT_EQ(job->phases[1].Nat, 0);
}

TEST(PhaseBlock, ReflectionListFromFileIsAnnounced) {
  PhaseJob job(Flags(0, 3) + "P 1\n");
  ASSERT_TRUE(job.Runs(ReadPhaseOne));
  EXPECT_TRUE(testing::HasNormalisedLine(
      job.Out(), " => Reflection list & partial structure factors read from file"));
}

TEST(PhaseBlock, OwnProfileOfAPhaseIsAnnouncedWithItsTypedNumber) {
  PhaseJob job(Flags(0, 0, 7) + "P 1\n");
  ASSERT_TRUE(job.Runs(ReadPhaseOne));
  EXPECT_EQ(job->phases[1].pat[1].Npr, 8);
  EXPECT_TRUE(testing::HasNormalisedLine(
      job.Out(), " => The  7th profile function was selected for phase no.  1"));
}

TEST(PhaseBlock, IntegratedIntensitiesDoNotAnnounceTheirProfile) {
  PhaseJob job(Flags(0, 4, 7) + "P 1\n");
  ASSERT_TRUE(job.Runs(ReadPhaseOne));
  EXPECT_EQ(job.Out().find("th profile function was selected"), std::string::npos);
}

TEST(PhaseBlock, ViewWordsOfStruploAndClusters) {
  const std::pair<int, const char*> words[] = {
      {2, " => STRUPLO File (*.sch) is output for phase: 1"},
      {11, " => Clusters of overlaped reflections is output for phase: 1"},
  };
  for (const auto& [jvi, word] : words) {
    PhaseJob job(Flags(0, 0, 0, 1) + std::to_string(jvi) + " 0 0 0 0 0 1.0 0 0 0 0\nP 1\n");
    ASSERT_TRUE(job.Runs(ReadPhaseOne)) << jvi;
    EXPECT_TRUE(testing::HasNormalisedLine(job.Out(), word)) << jvi;
  }
}

TEST(PhaseBlock, UnknownViewCodeWritesNoWord) {
  PhaseJob job(Flags(0, 0, 0, 1) + "5 0 0 0 0 0 1.0 0 0 0 0\nP 1\n");
  ASSERT_TRUE(job.Runs(ReadPhaseOne));
  EXPECT_EQ(job.Out().find("is output for phase"), std::string::npos);
}

TEST(PhaseBlock, TimeOfFlightJobOfAPhaseIsNamed) {
  PhaseJob job(Flags(0, 0, 0, 1) + "0 0 0 0 0 0 1.0 0 0 0 -1\nP 1\n");
  ASSERT_TRUE(job.Runs(ReadPhaseOne));
  const std::string out = job.Out();
  EXPECT_TRUE(testing::HasNormalisedLine(out, " => Different job for phase:  1"));
  EXPECT_TRUE(testing::HasNormalisedLine(out, "    Neutron T.O.F. diffraction data"));
}

TEST(PhaseBlock, XrayJobOfAPhaseInANeutronPatternIsNamed) {
  PhaseJob job(Flags(0, 0, 0, 1) + "0 0 0 0 0 0 1.0 0 0 0 0\nP 1\n");
  job->patterns[1].JOBTYP = 1;
  ASSERT_TRUE(job.Runs(ReadPhaseOne));
  EXPECT_TRUE(testing::HasNormalisedLine(job.Out(), "    X-ray diffraction data"));
}

TEST(ProfileLines, CellBecomesTheReciprocalCoefficients) {
  PhaseJob job(std::string("T\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0\nP 1\n") + kCubicProfile);
  ASSERT_TRUE(job.Runs(ReadPhaseAndProfile));
  const PhasePattern& c = job->phases[1].pat[1];
  EXPECT_NEAR(c.PAR[6], 1.0 / 16.0, 1e-7);
  EXPECT_NEAR(c.PAR[7], 1.0 / 16.0, 1e-7);
  EXPECT_NEAR(c.PAR[8], 1.0 / 16.0, 1e-7);
  EXPECT_NEAR(c.PAR[9], 0.0, 1e-7);
  EXPECT_FLOAT_EQ(c.CellConstants[1], 4.0f);
  EXPECT_NEAR(c.cellVolume, 64.0, 1e-4);
  EXPECT_FLOAT_EQ(c.PAR[3], 0.01f);
  EXPECT_FLOAT_EQ(c.PAR[4], -0.01f);
}

TEST(ProfileLines, IntegratedIntensitiesDropTheCellCodes) {
  PhaseJob job(
      "T\n0 0 0 0.0 0.0 1.0 0 4 0 0 0 0.0 0 0 0\nP 1\n"
      "1 1 1 1 1 1\n11 0 0 0 0 0\n"
      "0 0 0 0 0 0 0\n0 0 0 0 0 0 0\n"
      "4 4 4 90 90 90\n21 21 21 0 0 0\n"
      "0 0 0 0 0\n0 0 0 0 0\n");
  ASSERT_TRUE(job.Runs(ReadPhaseAndProfile));
  const PhasePattern& c = job->phases[1].pat[1];
  for (int s = 6; s <= 11; ++s) EXPECT_EQ(c.PAC[s].parameterNumber, 0) << s;
  EXPECT_EQ(c.PAC[1].parameterNumber, 1);
  EXPECT_TRUE(
      testing::HasNormalisedLine(job.Out(), " ==> CODEWORDS FOR Scale and Extinction PARAMETERS:"));
}

// The number of lines a profile block reads for the given flags, found by
// counting where the next text begins.
struct ProfileCase {
  const char* flags;  // Nat..More of the single-pattern flags line
  int NPROF;          // stored profile of the pattern
  int IXUNIT;
  const char* extra;  // lines the case adds after the standard block
};

TEST(ProfileLines, ShapeLineOfStep7ForTheRightProfiles) {
  for (int typed : {4, 5, 6, 7, 8, 9, 10, 11, 12}) {
    const bool expectLine = typed == 4 || typed >= 8;
    std::string text = std::string("T\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 ") +
                       std::to_string(typed) + " 0\nP 1\n" + kCubicProfile;
    if (typed == 11) text.insert(text.find("4.0 4.0"), "0 0 0 0 0\n0 0 0 0 0\n");
    if (expectLine) text += "0.5 0.0 0.7 0.0\n";
    text += "END\n";
    PhaseJob job(text);
    ASSERT_TRUE(job.Runs(ReadPhaseAndProfile)) << typed;
    std::string next;
    ReadRecord(job->files.units[Unit::Control], next);
    EXPECT_EQ(next, "END") << "typed profile " << typed;
    if (expectLine) {
      EXPECT_FLOAT_EQ(job->phases[1].pat[1].PAR[42], 0.7f) << typed;
    }
  }
}

TEST(ControlRecords, CommentsAreSkippedAndEveryRecordIsCounted) {
  PhaseJob job("! one\n!two\nfirst\n\n! three\nsecond\n");
  job->LINE = 10;
  std::string record;
  ASSERT_TRUE(ReadNonCommentRecord(*job, record));
  EXPECT_EQ(record, "first");
  EXPECT_EQ(job->LINE, 13);
  ASSERT_TRUE(ReadNonCommentRecord(*job, record));
  EXPECT_EQ(record, "") << "an empty record is not a comment";
  ASSERT_TRUE(ReadNonCommentRecord(*job, record));
  EXPECT_EQ(record, "second");
  EXPECT_EQ(job->LINE, 16);
  EXPECT_FALSE(ReadNonCommentRecord(*job, record)) << "end of the control file";
}

TEST(ControlRecords, RecordsAreCutToTheLengthAsked) {
  PhaseJob job("!x\nabcdefghij\n");
  std::string record;
  ASSERT_TRUE(ReadNonCommentRecord(*job, record, 4));
  EXPECT_EQ(record, "abcd");
}

TEST(ProfileLines, TimeOfFlightReadsTheExtraWidthLines) {
  std::string text = std::string("T\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0\nP 1\n") + kCubicProfile;
  text.insert(text.find("4.0 4.0"), "1 2 3 4 5\n0 0 0 0 0\n");
  PhaseJob job(text + "END\n");
  job->patterns[1].IXUNIT = AbscissaUnit::kTimeOfFlight;
  ASSERT_TRUE(job.Runs(ReadPhaseAndProfile));
  EXPECT_FLOAT_EQ(job->phases[1].pat[1].PAR[50], 5.0f);
  std::string next;
  ReadRecord(job->files.units[Unit::Control], next);
  EXPECT_EQ(next, "END");
}

// Reads a profile block with the flags and models given and checks that the
// extra lines were consumed.
void ExpectExtraLines(const std::string& flags, const std::string& scaleLine,
                      const std::string& widthLine, const std::string& extra) {
  std::string text =
      "T\n" + flags + "\nP 1\n" + scaleLine + "\n0 0 0 0 0 0\n" + widthLine +
      "\n0 0 0 0 0 0 0\n4.0 4.0 4.0 90 90 90\n0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n" + extra +
      "END\n";
  PhaseJob job(text);
  ASSERT_TRUE(job.Runs(ReadPhaseAndProfile)) << flags << " / " << extra;
  std::string next;
  ReadRecord(job->files.units[Unit::Control], next);
  EXPECT_EQ(next, "END") << flags << " / " << scaleLine << " / " << widthLine;
}

const char* kPlainFlags = "0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0";
const char* kPlainScale = "1 0 0 0 0 0 0";
const char* kPlainWidth = "0 0 0 0 0 0 0 0";

TEST(ProfileLines, StrainModelEightHasNoExtraLineAboveEightHasOne) {
  ExpectExtraLines(kPlainFlags, "1 0 0 0 0 0 8", kPlainWidth, "");
  ExpectExtraLines(kPlainFlags, "1 0 0 0 0 0 9", kPlainWidth, "1 2 3 4 5\n0 0 0 0 0\n");
  ExpectExtraLines(kPlainFlags, "1 0 0 0 0 0 7", kPlainWidth, "0 0 1\n");
}

TEST(ProfileLines, GeneralizedStrainAndSizeLineCounts) {
  ExpectExtraLines("0 0 0 0.0 0.0 1.0 2 0 0 1 0 0.0 0 0 0", kPlainScale, kPlainWidth,
                   "1 2 3 4 5\n0 0 0 0 0\n6 7 8 9 10\n0 0 0 0 0\n");
  ExpectExtraLines("0 0 0 0.0 0.0 1.0 2 0 0 2 0 0.0 0 0 0", kPlainScale, kPlainWidth,
                   "1 2 3 4 5 6\n0 0 0 0 0 0\n");
  ExpectExtraLines("0 0 0 0.0 0.0 1.0 2 0 0 3 0 0.0 0 0 0", kPlainScale, kPlainWidth,
                   "1 2 3 4 5\n0 0 0 0 0\n6 7 8 9 10\n0 0 0 0 0\n1 2 3 4 5 6\n0 0 0 0 0 0\n");
}

TEST(ProfileLines, SizeModelsReadTheirLines) {
  ExpectExtraLines(kPlainFlags, kPlainScale, "0 0 0 0 0 0 0 -1", "0 0 1\n");
  ExpectExtraLines(kPlainFlags, kPlainScale, "0 0 0 0 0 0 0 1", "1 0 0\n");
  ExpectExtraLines(kPlainFlags, kPlainScale, "0 0 0 0 0 0 0 14", "");
  ExpectExtraLines(kPlainFlags, kPlainScale, "0 0 0 0 0 0 0 15",
                   "1 2 3 4 5 6\n0 0 0 0 0 0\n7 8 9\n0 0 0\n");
}

TEST(ProfileLines, HalfVectorWithMinusKIsZero) {
  std::string text = std::string("T\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 -1 0 0\nP 1\n") +
                     kCubicProfile + "0.5 0.0 0.0\n0 0 0\n";
  PhaseJob job(text);
  ASSERT_TRUE(job.Runs(ReadPhaseAndProfile));
  const Phase& ph = job->phases[1];
  ASSERT_EQ(ph.Nvk, 2);
  EXPECT_FLOAT_EQ(ph.vectors[1].KVEC[1], 0.5f);
  EXPECT_FLOAT_EQ(ph.vectors[2].KVEC[1], -0.5f);
  EXPECT_EQ(ph.vectors[1].halfVector, 0);
  EXPECT_EQ(ph.vectors[2].halfVector, 0);
}

TEST(ProfileLines, HalfVectorWithoutMinusKIsOne) {
  std::string text = std::string("T\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 1 0 0\nP 1\n") +
                     kCubicProfile + "0.5 0.0 0.0\n0 0 0\n";
  PhaseJob job(text);
  ASSERT_TRUE(job.Runs(ReadPhaseAndProfile));
  ASSERT_EQ(job->phases[1].Nvk, 1);
  EXPECT_EQ(job->phases[1].vectors[1].halfVector, 1);
}

TEST(ProfileLines, ScaleCodeOfFixedScaleMatchingIsCleared) {
  std::string text = std::string("T\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0\nP 1\n") + kCubicProfile;
  text.replace(text.find("0 0 0 0 0 0\n0.01"), 1, "11");
  PhaseJob job(text);
  ASSERT_TRUE(job.Runs(ReadPhaseAndProfile));
  EXPECT_EQ(job->phases[1].pat[1].PAC[1].parameterNumber, 0);
  EXPECT_NE(job.job.Console().find(" Scale factor fixed for phase: 1"), std::string::npos);
}

TEST(ProfileLines, CodeAboveTheCapacityStops) {
  std::string text = std::string("T\n0 0 0 0.0 0.0 1.0 3 2 0 0 0 0.0 0 0 0\nP 1\n") + kCubicProfile;
  text.replace(text.find("0 0 0 0 0 0\n0.01"), 1, "3010");
  PhaseJob job(text);
  EXPECT_FALSE(job.Runs(ReadPhaseAndProfile));
  const std::string console = job.job.Console();
  EXPECT_NE(console.find("                        Error in a code:      3010.00"),
            std::string::npos);
  EXPECT_NE(console.find("    The maximum number of parameters is:  300"), std::string::npos);
  EXPECT_NE(console.find(" Error in a code"), std::string::npos);
}

TEST(ProfileLines, NegativeXYOfTchAreFixed) {
  std::string text = std::string("T\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 7 0\nP 1\n") + kCubicProfile;
  text.replace(text.find("0.01 -0.01 0.01 0.0 0.0"), 23, "0.01 -0.01 0.01 -0.2 -0.1");
  PhaseJob job(text);
  ASSERT_TRUE(job.Runs(ReadPhaseAndProfile));
  EXPECT_FLOAT_EQ(job->phases[1].pat[1].PAR[15], 0.001f);
  EXPECT_FLOAT_EQ(job->phases[1].pat[1].PAR[16], 0.001f);
  EXPECT_NE(job.job.Console().find(" Input X and/or Y parameters negative!"), std::string::npos);
}

TEST(ProfileLines, FurtherParametersTakeTheirSlots) {
  std::string text = std::string("T\n0 0 0 0.0 0.0 1.0 2 0 0 0 2 0.0 0 0 0\nP 1\n") +
                     kCubicProfile + "Par1 0.25 0.0\nPar2 0.75 0.0\n";
  PhaseJob job(text);
  ASSERT_TRUE(job.Runs(ReadPhaseAndProfile));
  EXPECT_EQ(job->phases[1].FurtherName[2], "Par2");
  EXPECT_FLOAT_EQ(job->phases[1].pat[1].PAR[61], 0.75f);
}

}  // namespace
}  // namespace corvinet
