// Tests of the restraint lines of a phase: reading, the echo in crystallographic words, the limits
// of their counts and the lines the writer gives back.
#include "control/restraint_lines.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "control/control_writer.h"
#include "control/phase_block.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

// A job positioned at the restraint lines of phase 1, with Dis and Mom set.
struct RestraintJob {
  ScratchDir dir;
  CapturedJob job;
  RestraintJob(const std::string& lines, int dis, int mom) {
    testing::OpenControlText(dir, *job, lines);
    job->run.NPHASE = 1;
    job->phases[1].Dis = dis;
    job->phases[1].Mom = mom;
  }
  bool Read() {
    return testing::RunsWithoutStop(*job, [](Job& j) { ReadRestraints(j, 1); });
  }
  std::string Out() { return testing::FlushedReport(dir, *job); }
};

TEST(RestraintLines, SigmaTypedZeroBecomesOneThousandth) {
  RestraintJob job("S    O1   1 0.0 0.0 0.0 1.47 0.0\n", 1, 0);
  ASSERT_TRUE(job.Read());
  const DistanceRestraint& d = job.job->phases[1].restraints.distances[1];
  EXPECT_FLOAT_EQ(d.Sigma, 0.001f);
  EXPECT_FLOAT_EQ(d.Dist, 1.47f);
  EXPECT_TRUE(testing::HasLine(
      job.Out(), "    Distance between S and O1 is   1.4700 with standard error:   0.0010"));
}

TEST(RestraintLines, NegativeSigmaBecomesOneThousandthAsWell) {
  EXPECT_FLOAT_EQ(RestraintSigma(-0.5f), 0.001f);
  EXPECT_FLOAT_EQ(RestraintSigma(0.9e-8f), 0.001f);
  EXPECT_FLOAT_EQ(RestraintSigma(1.0e-8f), 1.0e-8f);
}

TEST(RestraintLines, OperationOneIsXYZWithNoSignChange) {
  Table1<float, 3> t;
  EXPECT_EQ(RestraintOperationLine(1, t), "     ( 1) ( x, y, z) + { 0.0000, 0.0000, 0.0000}");
}

TEST(RestraintLines, OperationMinusOneIsTheInversionPrintedFromRow25) {
  Table1<float, 3> t;
  t[1] = 1.0f;
  t[3] = -0.5f;
  EXPECT_EQ(RestraintOperationLine(-1, t), "     (25) (-x,-y,-z) + { 1.0000, 0.0000,-0.5000}");
}

TEST(RestraintLines, Operation26IsHexagonalRow2AndMinus26Row14) {
  Table1<float, 3> t;
  EXPECT_EQ(RestraintOperationLine(26, t), "     ( 2) (  -y, x-y, z) + { 0.0000, 0.0000, 0.0000}");
  EXPECT_EQ(RestraintOperationLine(-26, t), "     (14) (   y,-x+y,-z) + { 0.0000, 0.0000, 0.0000}");
}

TEST(RestraintLines, DistancesAndMomentsAreReadAndEchoed) {
  RestraintJob job(
      "! Soft distance constraints:\n"
      "Fe1  O2   -3 0.5 0.0 1.0 2.01 0.02\n"
      "Fe1  Fe1   1 1.0 0.0 0.0 3.10 0.05\n"
      "! Soft moment constraints:\n"
      "Fe 4.5 0.1\n",
      2, 1);
  ASSERT_TRUE(job.Read());
  const PhaseRestraints& r = job.job->phases[1].restraints;
  EXPECT_EQ(r.distances[1].Atom1, "Fe1");
  EXPECT_EQ(r.distances[1].Atom2, "O2");
  EXPECT_EQ(r.distances[1].ITnum, -3);
  EXPECT_FLOAT_EQ(r.distances[1].T[1], 0.5f);
  EXPECT_FLOAT_EQ(r.distances[1].T[3], 1.0f);
  EXPECT_FLOAT_EQ(r.distances[2].Dist, 3.10f);
  EXPECT_EQ(r.moments[1].MomentAtom, "Fe");
  EXPECT_FLOAT_EQ(r.moments[1].Moment, 4.5f);
  EXPECT_FLOAT_EQ(r.moments[1].MomentSigma, 0.1f);
  const std::string out = job.Out();
  EXPECT_TRUE(testing::HasLine(out, " => Constraints on distances for phase 1"));
  EXPECT_TRUE(
      testing::HasLine(out, " -> The following operation will be applied to the second atom:"));
  EXPECT_TRUE(testing::HasLine(out, "    ITnum  Rotation part       Associated Translation"));
  EXPECT_TRUE(testing::HasLine(out, "     (27) ( x,-y, z) + { 0.5000, 0.0000, 1.0000}"));
  EXPECT_TRUE(testing::HasLine(out, "    (See output file *.OUT for symmetry details)"));
  EXPECT_TRUE(testing::HasLine(out, " => Constraints on magnetic moments for phase 1"));
  EXPECT_TRUE(testing::HasLine(out, "    Moment of Fe is   4.5000 with standard error:   0.1000"));
}

TEST(RestraintLines, OperationZeroStops) {
  RestraintJob job("S O1 0 0 0 0 1.47 0.01\n", 1, 0);
  EXPECT_FALSE(job.Read());
}

TEST(RestraintLines, OperationBeyondTheRotationTableStops) {
  RestraintJob job("S O1 37 0 0 0 1.47 0.01\n", 1, 0);
  EXPECT_FALSE(job.Read());
}

TEST(RestraintLines, MoreDistancesThanNconstStopOnThePhaseLine) {
  ScratchDir dir;
  CapturedJob job;
  testing::OpenControlText(dir, *job, "Title\n1 65 0 0.0 0.0 1.0 0 0 0 0 0 0.0 0 5 0\nP 1\n");
  job->run.NPATT = 1;
  job->patterns[1].NPROF = 6;
  EXPECT_FALSE(testing::RunsWithoutStop(*job, [](Job& j) { ReadPhase(j, 1); }));
  EXPECT_NE(job.Console().find("Dis"), std::string::npos);
}

TEST(RestraintLines, NconstDistancesAreAccepted) {
  ScratchDir dir;
  CapturedJob job;
  testing::OpenControlText(dir, *job, "Title\n1 64 64 0.0 0.0 1.0 0 0 0 0 0 0.0 0 5 0\nP 1\n");
  job->run.NPATT = 1;
  job->patterns[1].NPROF = 6;
  EXPECT_TRUE(testing::RunsWithoutStop(*job, [](Job& j) { ReadPhase(j, 1); }));
  EXPECT_EQ(job->phases[1].Dis, 64);
}

TEST(RestraintLines, WrittenLinesReadBackToTheSameRestraints) {
  RestraintJob first("Fe1  O2   -3 0.5 0.0 1.0 2.01 0.0\nFe 4.5 0.1\n", 1, 1);
  ASSERT_TRUE(first.Read());
  ControlLines lines = ControlFileLines(*first.job, {});
  std::string text;
  bool inside = false;
  for (const std::string& line : lines) {
    if (line == "! Soft distance constraints:") inside = true;
    if (inside && line.rfind("! Soft", 0) != 0) text += line + "\n";
  }
  EXPECT_NE(text.find("Fe1  O2    -3    0.50000    0.00000    1.00000    2.01000    0.00100"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("Fe   4.500 0.10000"), std::string::npos) << text;
  RestraintJob again(text, 1, 1);
  ASSERT_TRUE(again.Read());
  const PhaseRestraints& a = first.job->phases[1].restraints;
  const PhaseRestraints& b = again.job->phases[1].restraints;
  EXPECT_EQ(b.distances[1].Atom1, a.distances[1].Atom1);
  EXPECT_EQ(b.distances[1].Atom2, a.distances[1].Atom2);
  EXPECT_EQ(b.distances[1].ITnum, a.distances[1].ITnum);
  for (int i = 1; i <= 3; ++i) EXPECT_FLOAT_EQ(b.distances[1].T[i], a.distances[1].T[i]);
  EXPECT_FLOAT_EQ(b.distances[1].Dist, a.distances[1].Dist);
  EXPECT_FLOAT_EQ(b.distances[1].Sigma, a.distances[1].Sigma);
  EXPECT_EQ(b.moments[1].MomentAtom, "Fe");
  EXPECT_FLOAT_EQ(b.moments[1].Moment, 4.5f);
  EXPECT_FLOAT_EQ(b.moments[1].MomentSigma, 0.1f);
}

}  // namespace
}  // namespace corvinet

namespace corvinet {
namespace {

// The restraint lines of the new control file of a job with one distance and one moment.
std::vector<std::string> WrittenRestraintLines(float distanceSigma, float momentSigma) {
  auto job = std::make_unique<Job>();
  job->run.NPATT = 1;
  job->run.NPHASE = 1;
  Phase& ph = job->phases[1];
  ph.Dis = 1;
  ph.Mom = 1;
  ph.restraints.distances[1] = {"S", "O1", 1, {}, 1.47f, distanceSigma, 0.0f};
  ph.restraints.moments[1] = {"Mn", 3.0f, momentSigma};
  std::vector<std::string> found;
  for (const std::string& line : ControlFileLines(*job, {})) {
    if (line.rfind("S    O1", 0) == 0 || line.rfind("Mn", 0) == 0) found.push_back(line);
  }
  return found;
}

TEST(RestraintLines, SigmasOutsideTheirFixedFieldsAreWrittenInExponentFormAndReadBack) {
  const std::vector<std::string> lines = WrittenRestraintLines(2.0e-6f, 1000.0f);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], "S    O1     1    0.00000    0.00000    0.00000    1.47000   0.200E-05");
  EXPECT_EQ(lines[1], "Mn   3.000  0.100E+04");
  RestraintJob again(lines[0] + "\n" + lines[1] + "\n", 1, 1);
  ASSERT_TRUE(again.Read());
  EXPECT_FLOAT_EQ(again.job->phases[1].restraints.distances[1].Sigma, 2.0e-6f);
  EXPECT_FLOAT_EQ(again.job->phases[1].restraints.moments[1].MomentSigma, 1000.0f);
}

TEST(RestraintLines, SigmasWithinTheirFieldsKeepTheFixedLayout) {
  const std::vector<std::string> lines = WrittenRestraintLines(0.01f, 9.5f);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], "S    O1     1    0.00000    0.00000    0.00000    1.47000    0.01000");
  EXPECT_EQ(lines[1], "Mn   3.000 9.50000");
}

}  // namespace
}  // namespace corvinet
