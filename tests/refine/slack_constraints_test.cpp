// Tests of the distance and moment restraints as observations of the normal equations: distances
// through symmetry against the metric by hand, rows against finite differences, weights and names.
#include "refine/slack_constraints.h"

#include <gtest/gtest.h>

#include <cmath>

#include "refine/restraint_report.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;

constexpr double kRad = 3.14159265358979323846 / 180.0;

// D^2 = Delta' G Delta for a cell with all three angles, written out term by term.
double DistanceByHand(const double (&d)[3], double a, double b, double c, double alpha, double beta,
                      double gamma) {
  return std::sqrt(a * a * d[0] * d[0] + b * b * d[1] * d[1] + c * c * d[2] * d[2] +
                   2.0 * a * b * std::cos(gamma * kRad) * d[0] * d[1] +
                   2.0 * a * c * std::cos(beta * kRad) * d[0] * d[2] +
                   2.0 * b * c * std::cos(alpha * kRad) * d[1] * d[2]);
}

Table1<float, 6> Cell(float a, float b, float c, float alpha, float beta, float gamma) {
  Table1<float, 6> cell;
  const float v[6] = {a, b, c, alpha, beta, gamma};
  for (int i = 1; i <= 6; ++i) cell[i] = v[i - 1];
  return cell;
}

Table1<float, 3> Translation(float x, float y, float z) {
  Table1<float, 3> t;
  t[1] = x;
  t[2] = y;
  t[3] = z;
  return t;
}

TEST(SlackConstraints, DistanceThroughATwoFoldAxisAndATranslationMatchesTheMetricByHand) {
  // Operation 3 is (-x, y, -z); the image of B (0.21, 0.05, 0.77) plus (1, 1/2, 1) is
  // (0.79, 0.55, 0.23).
  const Vector3 xA = {0.12, 0.34, 0.56};
  const Vector3 xB = {0.21, 0.05, 0.77};
  const DistanceGradient g = DistanceAndGradient(
      xA, xB, Cell(5.1f, 6.3f, 7.2f, 90.0f, 103.5f, 90.0f), 3, Translation(1.0f, 0.5f, 1.0f));
  const double delta[3] = {0.12 - 0.79, 0.34 - 0.55, 0.56 - 0.23};
  EXPECT_NEAR(g.D, DistanceByHand(delta, 5.1, 6.3, 7.2, 90.0, 103.5, 90.0), 1.0e-5);
}

TEST(SlackConstraints, DistanceThroughTheInversionOfAThreeFoldAxisInHexagonalAxes) {
  // Operation -26 is (y, -x+y, -z): the image of (0.30, 0.10, 0.25) is (0.10, -0.20, -0.25).
  const Vector3 xA = {0.33, 0.05, 0.10};
  const Vector3 xB = {0.30, 0.10, 0.25};
  const DistanceGradient g = DistanceAndGradient(
      xA, xB, Cell(4.0f, 4.0f, 6.5f, 90.0f, 90.0f, 120.0f), -26, Translation(0.0f, 0.0f, 0.0f));
  const double delta[3] = {0.33 - 0.10, 0.05 + 0.20, 0.10 + 0.25};
  EXPECT_NEAR(g.D, DistanceByHand(delta, 4.0, 4.0, 6.5, 90.0, 90.0, 120.0), 1.0e-5);
}

TEST(SlackConstraints, DistanceInATriclinicCellMatchesTheMetricByHand) {
  const Vector3 xA = {0.9, 0.1, 0.4};
  const Vector3 xB = {0.2, 0.3, 0.6};
  const DistanceGradient g = DistanceAndGradient(
      xA, xB, Cell(5.0f, 6.0f, 7.0f, 80.0f, 95.0f, 110.0f), -1, Translation(1.0f, 0.0f, 1.0f));
  // The inversion and the translation: the image is (0.8, -0.3, 0.4).
  const double delta[3] = {0.1, 0.4, 0.0};
  EXPECT_NEAR(g.D, DistanceByHand(delta, 5.0, 6.0, 7.0, 80.0, 95.0, 110.0), 1.0e-5);
}

// A job with one phase of two atoms A and B and restraint 1 between them.
struct RestraintCase {
  CapturedJob job;
  RestraintCase() {
    Job& j = *job;
    j.run.NPATT = 1;
    j.run.NPHASE = 1;
    Phase& ph = j.phases[1];
    ph.Nat = 2;
    ph.Dis = 1;
    ph.pat[1].Contribution = 1;
    ph.pat[1].CellConstants = Cell(5.1f, 6.3f, 7.2f, 90.0f, 103.5f, 90.0f);
    SetAtom(1, "A", {0.12f, 0.34f, 0.56f});
    SetAtom(2, "B", {0.21f, 0.05f, 0.77f});
    DistanceRestraint& d = ph.restraints.distances[1];
    d.Atom1 = "A";
    d.Atom2 = "B";
    d.ITnum = 3;
    d.T = Translation(1.0f, 0.5f, 1.0f);
    d.Dist = 3.0f;
    d.Sigma = 0.05f;
  }
  void SetAtom(int n, const char* label, std::array<float, 3> x) {
    AtomSite& a = job->atoms[n];
    a.label = label;
    for (int i = 1; i <= 3; ++i) a.ATP[i] = x[static_cast<std::size_t>(i - 1)];
  }
  void Refine(int atom, int slot, int parameter, float multiplier) {
    job->atoms[atom].ATC[slot] = {parameter, multiplier};
    if (parameter > job->run.MAXS) job->run.MAXS = parameter;
  }
  // The distance with the model as it stands, from the two atoms' coordinates.
  double Distance() {
    const AtomSite& a = job->atoms[1];
    const AtomSite& b = job->atoms[2];
    const DistanceRestraint& d = job->phases[1].restraints.distances[1];
    return DistanceAndGradient({a.ATP[1], a.ATP[2], a.ATP[3]}, {b.ATP[1], b.ATP[2], b.ATP[3]},
                               job->phases[1].pat[1].CellConstants, d.ITnum, d.T)
        .D;
  }
  // dD/dp of parameter L by central differences: every slot holding L moves by its multiplier.
  double CentralDifference(int L, double h) {
    auto shift = [&](double step) {
      for (int n = 1; n <= 2; ++n) {
        for (int s = 1; s <= 3; ++s) {
          AtomSite& a = job->atoms[n];
          if (a.ATC[s].parameterNumber == L) {
            a.ATP[s] = static_cast<float>(a.ATP[s] + step * a.ATC[s].multiplier);
          }
        }
      }
    };
    shift(h);
    const double up = Distance();
    shift(-2.0 * h);
    const double down = Distance();
    shift(h);
    return (up - down) / (2.0 * h);
  }
  Job& operator*() { return *job; }
  Job* operator->() { return job.operator->(); }
};

TEST(SlackConstraints, RowsOfADistanceMatchCentralFiniteDifferences) {
  RestraintCase c;
  c.Refine(1, 1, 1, 1.0f);
  c.Refine(1, 2, 2, 1.0f);
  c.Refine(1, 3, 3, -0.5f);
  c.Refine(2, 1, 4, 1.0f);
  c.Refine(2, 2, 5, 2.0f);
  c.Refine(2, 3, 6, 1.0f);
  const float chi2 = 2.0f;
  const double D = c.Distance();
  SlackConstraints(*c, chi2);
  const double w = chi2 / (0.05 * 0.05);
  const double r = 3.0 - D;
  double dD[7];
  for (int L = 1; L <= 6; ++L) dD[L] = c.CentralDifference(L, 1.0e-3);
  const NormalMatrix& n = c->refinement.normal;
  for (int L = 1; L <= 6; ++L) {
    EXPECT_NEAR(n.SumB[L], w * r * dD[L], 1.0e-3 * std::fabs(w * r * dD[L]) + 1.0e-6) << L;
    for (int M = L; M <= 6; ++M) {
      EXPECT_NEAR(n.SumA(L, M), w * dD[L] * dD[M], 1.0e-3 * std::fabs(w * dD[L] * dD[M]) + 1.0)
          << L << "," << M;
    }
  }
  EXPECT_NEAR(c->phases[1].restraints.distances[1].Dcalc, D, 1.0e-5);
}

TEST(SlackConstraints, AParameterSharedByBothAtomsTakesTheSumOfItsTerms) {
  RestraintCase c;
  c.Refine(1, 1, 1, 1.0f);
  c.Refine(2, 1, 1, 1.0f);
  c.Refine(2, 3, 2, 1.0f);
  SlackConstraints(*c, 1.0f);
  const double dD1 = c.CentralDifference(1, 1.0e-3);
  const double dD2 = c.CentralDifference(2, 1.0e-3);
  const double w = 1.0 / (0.05 * 0.05);
  const NormalMatrix& n = c->refinement.normal;
  EXPECT_NEAR(n.SumA(1, 1), w * dD1 * dD1, 1.0e-3 * w * dD1 * dD1);
  EXPECT_NEAR(n.SumA(1, 2), w * dD1 * dD2, 1.0e-3 * std::fabs(w * dD1 * dD2));
  EXPECT_NEAR(n.SumA(2, 2), w * dD2 * dD2, 1.0e-3 * w * dD2 * dD2);
}

TEST(SlackConstraints, AConstraintBetweenFixedAtomsChangesNoEquationButCountsInTheSums) {
  RestraintCase c;
  c->run.MAXS = 3;
  c->atoms[1].ATC[4] = {1, 1.0f};  // a B factor is refined, no coordinate
  SlackConstraints(*c, 1.0f);
  const NormalMatrix& n = c->refinement.normal;
  for (int L = 1; L <= 3; ++L) {
    EXPECT_EQ(n.SumB[L], 0.0);
    for (int M = 1; M <= 3; ++M) EXPECT_EQ(n.SumA(L, M), 0.0);
  }
  const RestraintSums& sums = c->phases[1].restraints.distanceSums;
  EXPECT_EQ(sums.count, 1);
  const double r = 3.0 - c.Distance();
  EXPECT_NEAR(sums.SumD2, std::fabs(r), 1.0e-5);
  EXPECT_NEAR(sums.SumWD2, r * r / (0.05 * 0.05), 1.0e-3 * r * r / (0.05 * 0.05));
}

TEST(SlackConstraints, AZeroDistanceCountsInTheSumsAndAddsNoRow) {
  RestraintCase c;
  DistanceRestraint& d = c->phases[1].restraints.distances[1];
  d.Atom2 = "A";
  d.ITnum = 1;
  d.T = Translation(0.0f, 0.0f, 0.0f);
  c.Refine(1, 1, 1, 1.0f);
  SlackConstraints(*c, 1.0f);
  const RestraintSums& sums = c->phases[1].restraints.distanceSums;
  EXPECT_EQ(sums.count, 1);
  EXPECT_NEAR(sums.SumD2, 3.0f, 1.0e-6f);
  EXPECT_EQ(c->refinement.normal.SumA(1, 1), 0.0);
  EXPECT_EQ(c->refinement.normal.SumB[1], 0.0);
  EXPECT_NE(c.job.Console().find(" => Warning constraint:  1 has a zero distance: no rows"),
            std::string::npos);
}

TEST(SlackConstraints, TheWeightGrowsWithChi2) {
  RestraintCase poor;
  RestraintCase good;
  for (RestraintCase* c : {&poor, &good}) {
    c->Refine(1, 1, 1, 1.0f);
    c->Refine(2, 2, 2, 1.0f);
  }
  SlackConstraints(*good, 1.0f);
  SlackConstraints(*poor, 4.0f);
  const NormalMatrix& p = poor->refinement.normal;
  const NormalMatrix& g = good->refinement.normal;
  ASSERT_NE(g.SumA(1, 1), 0.0);
  EXPECT_NEAR(p.SumA(1, 1) / g.SumA(1, 1), 4.0, 1.0e-9);
  EXPECT_NEAR(p.SumA(1, 2) / g.SumA(1, 2), 4.0, 1.0e-9);
  EXPECT_NEAR(p.SumB[2] / g.SumB[2], 4.0, 1.0e-9);
}

TEST(SlackConstraints, ANamePresentTwiceTakesTheFirstAtom) {
  RestraintCase c;
  c->phases[1].Nat = 3;
  c.SetAtom(3, "B", {0.5f, 0.5f, 0.5f});
  const double first = c.Distance();
  SlackConstraints(*c, 1.0f);
  EXPECT_NEAR(c->phases[1].restraints.distances[1].Dcalc, first, 1.0e-5);
}

TEST(SlackConstraints, NamesCompareOnTheirFirstFourCharacters) {
  RestraintCase c;
  c->atoms[2].label = "B";
  c->phases[1].restraints.distances[1].Atom2 = "B   ";
  SlackConstraints(*c, 1.0f);
  EXPECT_EQ(c->phases[1].restraints.distanceSums.count, 1);
}

TEST(SlackConstraints, AnUnknownNameIsSkippedWithAWarning) {
  RestraintCase c;
  c->phases[1].restraints.distances[1].Atom2 = "Q9";
  c.Refine(1, 1, 1, 1.0f);
  SlackConstraints(*c, 1.0f);
  EXPECT_EQ(c->phases[1].restraints.distanceSums.count, 0);
  EXPECT_EQ(c->refinement.normal.SumA(1, 1), 0.0);
  EXPECT_NE(c.job.Console().find(" => Warning constraint:  1 not applied!"), std::string::npos);
}

TEST(SlackConstraints, APhaseWithoutConstraintsKeepsItsSumsAtZeroAndPrintsNothing) {
  RestraintCase c;
  c->run.NPHASE = 2;
  Phase& second = c->phases[2];
  second.Nat = 0;
  second.pat[1].Contribution = 1;
  second.restraints.distanceSums = {5, 1.0f, 2.0f};  // what a former cycle could have left
  EXPECT_TRUE(HasRestraints(*c));
  SlackConstraints(*c, 1.0f);
  EXPECT_EQ(second.restraints.distanceSums.count, 0);
  EXPECT_EQ(second.restraints.distanceSums.SumD2, 0.0f);
  EXPECT_EQ(second.restraints.distanceSums.SumWD2, 0.0f);
  EXPECT_EQ(second.restraints.momentSums.count, 0);
  EXPECT_TRUE(DistanceRestraintLines(*c, 2).empty());
  EXPECT_TRUE(MomentRestraintLines(*c, 2).empty());
  EXPECT_FALSE(DistanceRestraintLines(*c, 1).empty());
}

TEST(SlackConstraints, NoRestraintsNoSlackPass) {
  RestraintCase c;
  c->phases[1].Dis = 0;
  EXPECT_FALSE(HasRestraints(*c));
}

TEST(SlackConstraints, ReportGivesWantedObtainedAndSigmaOfEachDistance) {
  RestraintCase c;
  c->refinement.GlobalChi2 = 2.0f;
  c->refinement.globalResidualSum = 1000.0f;
  SlackConstraints(*c, 2.0f);
  const std::vector<std::string> lines = DistanceRestraintLines(*c, 1);
  ASSERT_GE(lines.size(), 8u);
  EXPECT_EQ(lines[0], " => Distance constraints:      Dobs     Dcalc  diff/sigma");
  const double D = c.Distance();
  char row[128];
  std::snprintf(row, sizeof row, "   A    B      3%10.5f%10.5f%10.2f   sigma:%9.5f", 3.0, D,
                (3.0 - D) / 0.05, 0.05);
  EXPECT_EQ(lines[1], row);
  EXPECT_EQ(lines[2], " => Slack Constraints(dist):");
  const double mean = (3.0 - D) * (3.0 - D) / (0.05 * 0.05);
  EXPECT_NE(lines[3].find("         Sum{W(Dobs-Dcal)**2}/  1 ="), std::string::npos);
  EXPECT_NEAR(std::stod(lines[3].substr(lines[3].rfind('=') + 1)), mean, 1.0e-3 * mean);
  EXPECT_NEAR(std::stod(lines[5].substr(lines[5].rfind('=') + 1)), 2.0 * mean, 2.0e-3 * mean);
  EXPECT_NEAR(std::stod(lines[4].substr(lines[4].rfind('=') + 1)), 2.0 * mean / 1000.0,
              2.0e-6 * mean);
  EXPECT_NEAR(std::stod(lines[7].substr(lines[7].rfind('=') + 1)), std::fabs(3.0 - D), 1.0e-4);
}

// A magnetic phase (Jbt 1) with one atom whose moment components along the axes are refined.
struct MomentCase {
  CapturedJob job;
  MomentCase(int Jbt, const Table1<float, 6>& cell) {
    Job& j = *job;
    j.run.NPATT = 1;
    j.run.NPHASE = 1;
    Phase& ph = j.phases[1];
    ph.Jbt = Jbt;
    ph.Nat = 1;
    ph.Mom = 1;
    ph.pat[1].Contribution = 1;
    ph.pat[1].CellConstants = cell;
    AtomSite& a = j.atoms[1];
    a.label = "Mn1";
    a.N_t = 1;
    a.ATP[6] = 2.0f;
    a.ATP[7] = -1.0f;
    a.ATP[8] = 1.5f;
    for (int s = 6; s <= 8; ++s) a.ATC[s] = {s - 5, 1.0f};
    j.run.MAXS = 3;
    MomentRestraint& m = ph.restraints.moments[1];
    m.MomentAtom = "Mn";
    m.Moment = 3.5f;
    m.MomentSigma = 0.1f;
  }
};

TEST(SlackConstraints, MomentAlongTheAxesOfAMonoclinicCellMatchesItsNormByHand) {
  const Table1<float, 6> cell = Cell(5.0f, 6.0f, 7.0f, 90.0f, 110.0f, 90.0f);
  MomentCase c(1, cell);
  const AtomSite& atom = c.job->atoms[1];
  const MomentGradient g = MomentAndGradient(atom, 1, cell);
  // Unit vectors along a and c meet at beta: M^2 = mx^2 + my^2 + mz^2 + 2 mx mz cos(beta).
  const double byHand = std::sqrt(4.0 + 1.0 + 2.25 + 2.0 * 2.0 * 1.5 * std::cos(110.0 * kRad));
  EXPECT_NEAR(g.M, byHand, 1.0e-5);
}

TEST(SlackConstraints, RowsOfAMomentMatchCentralFiniteDifferences) {
  const Table1<float, 6> cell = Cell(5.0f, 6.0f, 7.0f, 85.0f, 110.0f, 95.0f);
  MomentCase c(10, cell);
  SlackConstraints(*c.job, 3.0f);
  AtomSite& atom = c.job->atoms[1];
  double dM[4];
  for (int i = 1; i <= 3; ++i) {
    const float kept = atom.ATP[5 + i];
    atom.ATP[5 + i] = kept + 1.0e-3f;
    const double up = MomentAndGradient(atom, 10, cell).M;
    atom.ATP[5 + i] = kept - 1.0e-3f;
    const double down = MomentAndGradient(atom, 10, cell).M;
    atom.ATP[5 + i] = kept;
    dM[i] = (up - down) / (2.0 * 1.0e-3);
  }
  const double M = MomentAndGradient(atom, 10, cell).M;
  const double w = 3.0 / (0.1 * 0.1);
  const NormalMatrix& n = c.job->refinement.normal;
  for (int L = 1; L <= 3; ++L) {
    EXPECT_NEAR(n.SumB[L], w * (3.5 - M) * dM[L], 2.0e-3 * std::fabs(w * (3.5 - M) * dM[L]));
    for (int K = L; K <= 3; ++K) {
      EXPECT_NEAR(n.SumA(L, K), w * dM[L] * dM[K], 2.0e-3 * std::fabs(w * dM[L] * dM[K]) + 1.0e-3);
    }
  }
  const PhaseRestraints& r = c.job->phases[1].restraints;
  EXPECT_EQ(r.momentSums.count, 1);
  EXPECT_NEAR(r.momentResults[1].obtained, M, 1.0e-5);
}

TEST(SlackConstraints, MomentRestraintsApplyToEveryAtomWhoseLabelBeginsWithThePrefix) {
  MomentCase c(10, Cell(5.0f, 5.0f, 5.0f, 90.0f, 90.0f, 90.0f));
  Job& j = *c.job;
  j.phases[1].Nat = 3;
  j.atoms[2] = j.atoms[1];
  j.atoms[2].label = "Mn2";
  j.atoms[3] = j.atoms[1];
  j.atoms[3].label = "O1";
  SlackConstraints(j, 1.0f);
  EXPECT_EQ(j.phases[1].restraints.momentSums.count, 2);
  const std::vector<std::string> lines = MomentRestraintLines(j, 1);
  ASSERT_GE(lines.size(), 3u);
  EXPECT_EQ(lines[1].substr(0, 10), "   Mn1    ");
  EXPECT_EQ(lines[2].substr(0, 10), "   Mn2    ");
}

TEST(SlackConstraints, ALineWithoutAMomentInANuclearAndMagneticPhaseIsLeftOut) {
  MomentCase c(10, Cell(5.0f, 5.0f, 5.0f, 90.0f, 90.0f, 90.0f));
  c.job->atoms[1].N_t = 0;
  SlackConstraints(*c.job, 1.0f);
  EXPECT_EQ(c.job->phases[1].restraints.momentSums.count, 0);
}

TEST(SlackConstraints, ASphericalMomentIsItsModulus) {
  MomentCase c(-1, Cell(5.0f, 5.0f, 5.0f, 90.0f, 90.0f, 90.0f));
  const MomentGradient g =
      MomentAndGradient(c.job->atoms[1], -1, c.job->phases[1].pat[1].CellConstants);
  EXPECT_NEAR(g.M, 2.0, 1.0e-6);
  EXPECT_EQ(g.dM[0], 1.0);
  EXPECT_EQ(g.dM[1], 0.0);
}

}  // namespace
}  // namespace corvinet
