// Tests of the scattering entries: coefficients by name, folding of names, lengths, the limits of
// point tables and of the entry count, the fit of a table of points, and the entries as the first
// species of a phase.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "control/scattering_entries.h"
#include "model/scattering_species.h"
#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

// A job of one pattern whose control unit holds the entry lines.
struct EntriesJob {
  ScratchDir dir;
  CapturedJob job;
  EntriesJob(int jobtyp, int nscat, const std::string& lines) {
    testing::OpenControlText(dir, *job, lines);
    job->run.NPATT = 1;
    Pattern& p = job->patterns[1];
    p.JOBTYP = jobtyp;
    p.LAMBDA[1] = 1.5406f;
    p.NSCAT = nscat;
    p.scatteringCount = std::abs(nscat);
  }
  bool Read() {
    return testing::RunsWithoutStop(*job, [](Job& j) { ReadScatteringEntries(j, 1); });
  }
  const ScatteringEntry& Entry(int j) { return job->patterns[1].scattering[j]; }
  bool OutHas(const std::string& line) {
    return testing::HasLine(testing::FlushedReport(dir, *job), line);
  }
};

TEST(ScatteringEntries, CoefficientsByNameComeFromTheXrayTable) {
  EntriesJob e(0, 2, "Fe+3 0.1 0.2 2\nxx 0.0 0.0 1\n1 2 3 4 5 6 7 8 9\n");
  ASSERT_TRUE(e.Read());
  EXPECT_EQ(e.Entry(1).NAM, "fe+3");
  EXPECT_FLOAT_EQ(e.Entry(1).coef[1], 11.1764f);
  EXPECT_FLOAT_EQ(e.Entry(1).coef[9], 0.9707f);
  EXPECT_FLOAT_EQ(e.Entry(1).Fprime, 0.1f);
  // The entry took no coefficient line: the next entry reads its own.
  EXPECT_EQ(e.Entry(2).NAM, "xx");
  EXPECT_FLOAT_EQ(e.Entry(2).coef[9], 9.0f);
}

TEST(ScatteringEntries, UnknownNameByLabelStops) {
  EntriesJob e(0, 1, "Qq 0.1 0.2 2\n");
  EXPECT_FALSE(e.Read());
  EXPECT_NE(e.job.Console().find(" => Scattering coefficients NOT FOUND for qq"),
            std::string::npos);
  EXPECT_NE(e.job.Console().find(" Some scattering coefficients NOT FOUND"), std::string::npos);
}

TEST(ScatteringEntries, MarkLineFitsThePointsGivenSoFar) {
  // Points of the carbon curve, then the mark -100.
  std::string lines = "cx 0.0 0.0 1\n";
  const double c[9] = {2.31, 20.8439, 1.02, 10.2075, 1.5886, 0.5687, 0.865, 51.6512, 0.2156};
  auto carbon = [&](double s) {
    double f = c[8];
    for (int j = 0; j < 4; ++j) f += c[2 * j] * std::exp(-c[2 * j + 1] * s * s);
    return f;
  };
  for (int i = 0; i <= 20; ++i) {
    lines += std::to_string(0.05 * i) + " " + std::to_string(carbon(0.05 * i)) + " 0 0 0 0 0 0 0\n";
  }
  lines += "-100.0 0 0 0 0 0 0 0 0\nnext 0.0 0.0 1\n1 2 3 4 5 6 7 8 9\n";
  EntriesJob e(0, 2, lines);
  ASSERT_TRUE(e.Read());
  const ScatteringEntry& en = e.Entry(1);
  EXPECT_EQ(en.tablePoints, 21);
  double largest = 0.0;
  for (int i = 1; i <= en.tablePoints; ++i) {
    const double s = en.tableX[i];
    double f = en.coef[9];
    for (int j = 0; j < 4; ++j) f += en.coef[2 * j + 1] * std::exp(-en.coef[2 * j + 2] * s * s);
    largest = std::max(largest, std::fabs(f - en.tableY[i]));
  }
  EXPECT_LT(largest, 0.8);
  EXPECT_EQ(e.Entry(2).NAM, "next");
  EXPECT_FLOAT_EQ(e.Entry(2).coef[1], 1.0f);
}

TEST(ScatteringEntries, XrayNameOfTypeZeroIsFoldedToLowerCase) {
  EntriesJob e(0, 2, "Fe 0.1 0.2 0\n1 2 3 4 5 6 7 8 9\nFe 0.1 0.2 1\n1 2 3 4 5 6 7 8 9\n");
  ASSERT_TRUE(e.Read());
  EXPECT_EQ(e.Entry(1).NAM, "fe");
  EXPECT_FLOAT_EQ(e.Entry(1).coef[9], 9.0f);
  EXPECT_EQ(e.Entry(2).NAM, "Fe");  // other types keep the name as typed
}

TEST(ScatteringEntries, NeutronLengthsLoseTheirSecondTerm) {
  EntriesJob e(1, 2, "O 0.5803 0.7 0\nFE 0.945 0.3 0\n");
  ASSERT_TRUE(e.Read());
  EXPECT_FLOAT_EQ(e.Entry(1).Fprime, 0.5803f);
  EXPECT_EQ(e.Entry(1).Fsecond, 0.0f);
  EXPECT_EQ(e.Entry(2).Fsecond, 0.0f);
  EXPECT_TRUE(e.OutHas(" => Scattering lengths ==>"));
  EXPECT_TRUE(e.OutHas("    FE     0.94500"));
}

TEST(ScatteringEntries, NeutronEntryWithCoefficientsListsScatteringFactors) {
  EntriesJob e(1, 1, "Xx 0.5 0.25 1\n1 2 3 4 5 6 7 8 9\n");
  ASSERT_TRUE(e.Read());
  EXPECT_FLOAT_EQ(e.Entry(1).Fsecond, 0.25f);
  EXPECT_FLOAT_EQ(e.Entry(1).coef[9], 9.0f);
  EXPECT_TRUE(e.OutHas(" => Scattering factors ==>"));
  EXPECT_FALSE(e.OutHas(" => Scattering lengths ==>"));
}

// Lines of n points (s, f) in the nine-number form: the third number is zero.
std::string PointLines(int n) {
  std::string lines;
  for (int i = 0; i < n; ++i) {
    lines += std::to_string(0.02 * i) + " " + std::to_string(6.0 - 0.05 * i) + " 0 0 0 0 0 0 0\n";
  }
  return lines;
}

TEST(ScatteringEntries, FiftyNinePointsBeforeTheMarkAreAccepted) {
  EntriesJob e(0, 1, "cx 0.0 0.0 1\n" + PointLines(59) + "-100.0 0 0 0 0 0 0 0 0\n");
  ASSERT_TRUE(e.Read());
  EXPECT_EQ(e.Entry(1).tablePoints, 59);
  EXPECT_FLOAT_EQ(e.Entry(1).tableY[59], 6.0f - 0.05f * 58.0f);
}

TEST(ScatteringEntries, SixtiethPointStopsTheRun) {
  EntriesJob e(0, 1, "cx 0.0 0.0 1\n" + PointLines(60) + "-100.0 0 0 0 0 0 0 0 0\n");
  EXPECT_FALSE(e.Read());
  EXPECT_TRUE(e.OutHas(" => Too many scattering factor entries"));
  EXPECT_NE(e.job.Console().find(" Too many scattering factor entries"), std::string::npos);
}

TEST(ScatteringEntries, TableEndsAfterFiftyNineLinesWithoutTheMark) {
  std::string lines = "xx 0.0 0.0 0\n";
  for (int i = 1; i <= 59; ++i) lines += std::to_string(10 * i) + ".0 1.0\n";
  lines += "yy 0.0 0.0 0\n5.0 2.0\n-100.0 0.0\n";
  EntriesJob e(0, -2, lines);
  ASSERT_TRUE(e.Read());
  EXPECT_EQ(e.Entry(1).tablePoints, 59);
  EXPECT_FLOAT_EQ(e.Entry(1).tableX[59], 590.0f);
  // The line after the 59th point is the next entry, not a point.
  EXPECT_EQ(e.Entry(2).NAM, "yy");
  EXPECT_EQ(e.Entry(2).tablePoints, 1);
  EXPECT_FLOAT_EQ(e.Entry(2).tableY[1], 2.0f);
}

TEST(ScatteringEntries, MoreEntriesThanSpeciesStopTheRun) {
  EntriesJob e(1, 17, "");
  EXPECT_FALSE(e.Read());
  EXPECT_NE(e.job.Console().find(" => Number of scattering entries:"), std::string::npos);
  EXPECT_NE(e.job.Console().find(" => Too many additional scattering entries!"), std::string::npos);
}

TEST(ScatteringEntries, EntriesAreTheFirstSpeciesOfAPhase) {
  EntriesJob e(0, 1, "xx 0.5 0.25 1\n1 2 3 4 5 6 7 8 9\n");
  ASSERT_TRUE(e.Read());
  Job& job = *e.job;
  job.run.NPHASE = 1;
  job.phases[1].pat[1].Contribution = 1;
  job.phases[1].Nat = 2;
  job.atoms[1].species = "XX";  // folded to xx: the entry
  job.atoms[2].species = "O";
  ASSERT_TRUE(testing::RunsWithoutStop(job, [](Job& j) { SetUpPhaseSpecies(j, 1, 1); }));
  const PhasePattern& t = job.phases[1].pat[1];
  EXPECT_EQ(job.atoms[1].nuclearSpecies, 1);
  EXPECT_EQ(t.species[1].kind, SpeciesKind::Coefficients);
  EXPECT_FLOAT_EQ(t.species[1].coeff[9], 9.0f);
  EXPECT_FLOAT_EQ(t.species[1].fp, 0.5f);
  EXPECT_FLOAT_EQ(t.species[1].fpp, 0.25f);
  EXPECT_EQ(job.atoms[2].nuclearSpecies, 2);
  EXPECT_EQ(t.speciesCount, 2);
}

TEST(ScatteringEntries, TabulatedEntryBecomesAnInterpolatedSpecies) {
  EntriesJob e(0, -1, "xx 0.0 0.0 0\n0.0 6.0\n500.0 3.0\n1000.0 1.0\n-100.0 0.0\n");
  ASSERT_TRUE(e.Read());
  Job& job = *e.job;
  job.phases[1].pat[1].Contribution = 1;
  job.phases[1].Nat = 1;
  job.atoms[1].species = "xx";
  ASSERT_TRUE(testing::RunsWithoutStop(job, [](Job& j) { SetUpPhaseSpecies(j, 1, 1); }));
  const ChemicalSpecies& sp = job.phases[1].pat[1].species[1];
  EXPECT_EQ(sp.kind, SpeciesKind::Tabulated);
  EXPECT_EQ(sp.nTable, 3);
  EXPECT_FLOAT_EQ(sp.sTable[2], 500.0f);
  EXPECT_FLOAT_EQ(sp.coeff[3], 1.0f);
  EXPECT_EQ(job.atoms[1].nuclearSpecies, 1);
}

}  // namespace
}  // namespace corvinet
