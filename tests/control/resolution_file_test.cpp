// Tests of the reading of instrument resolution files: laws, tables, their report and their limits.
#include <gtest/gtest.h>

#include <string>

#include "control/side_files.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

// A job whose pattern 1 names `res.irf` with the law `ireso`, the file holding `text`.
struct ResolutionJob {
  ScratchDir dir;
  CapturedJob job;
  ResolutionJob(int ireso, const std::string& text) {
    testing::OpenControlText(dir, *job, "");
    job->run.NPATT = 1;
    job->patterns[1].IRESO = ireso;
    job->patterns[1].ResolutionFile = "res.irf";
    dir.Write("res.irf", text);
  }
  bool Read(int ip = 1) {
    return testing::RunsWithoutStop(*job, [ip](Job& j) { ReadResolutionFile(j, ip); });
  }
};

TEST(ResolutionFile, LawOfTwoLinesIsReadForBothWavelengthsAndReported) {
  ResolutionJob r(2, "My instrument\n1 2 3 4 5 6\n7 8 9 10 11 12\n");
  ASSERT_TRUE(r.Read());
  const ResolutionFunction& f = r.job->patterns[1].resolution;
  EXPECT_EQ(f.IRESOL, ResolutionLaw::kTangentSquare);
  EXPECT_EQ(f.resolutionTitle, "My instrument");
  EXPECT_EQ(f.law(3, 1), 3.0f);
  EXPECT_EQ(f.law(6, 2), 12.0f);
  const std::string out = testing::FlushedReport(r.dir, *r.job);
  EXPECT_NE(out.find(", => Instrumental Resolution read from file: res.irf"), std::string::npos);
  EXPECT_NE(out.find(" => The resolution function is IRESOL: 2"), std::string::npos);
  EXPECT_NE(out.find("    Input resolution parameters:"), std::string::npos);
}

TEST(ResolutionFile, TableIsReadInFreeFormatAndListed) {
  ResolutionJob r(4, "Table\n3\n10 0.05 0.01  50 0.07 0.03\n100 0.12 0.04\n");
  ASSERT_TRUE(r.Read());
  const ResolutionFunction& f = r.job->patterns[1].resolution;
  ASSERT_EQ(f.nTable, 3);
  EXPECT_EQ(f.tablePosition[2], 50.0f);
  EXPECT_EQ(f.tableLorentzian[3], 0.04f);
  EXPECT_NE(
      testing::FlushedReport(r.dir, *r.job).find("    2-Theta    Gaussian-HW   Lorentzian-HW"),
      std::string::npos);
}

TEST(ResolutionFile, TableOfMoreThanThirtyRowsIsRefused) {
  ResolutionJob r(4, "Table\n31\n");
  EXPECT_FALSE(r.Read());
  EXPECT_NE(r.job.Console().find(" => Wrong number of rows in the resolution table!"),
            std::string::npos);
}

TEST(ResolutionFile, SixthPatternStopsAtReading) {
  ResolutionJob r(1, "Law\n0 0 0 0 0 0\n0 0 0 0 0 0\n");
  EXPECT_FALSE(r.Read(6));
  EXPECT_NE(
      r.job.Console().find("The external instrumetal function can be given only for 5 patterns!"),
      std::string::npos);
}

TEST(ResolutionFile, UnknownLawStops) {
  ResolutionJob r(5, "Law\n");
  EXPECT_FALSE(r.Read());
  EXPECT_NE(r.job.Console().find(" => The resolution function (Res) must be 1, 2, 3 or 4"),
            std::string::npos);
}

TEST(ResolutionFile, FileEndingInsideTheLawStops) {
  ResolutionJob r(1, "Law\n0.1 0.2 0.3 0.4 0.5 0.6\n");
  EXPECT_FALSE(r.Read());
  EXPECT_NE(r.job.Console().find(" => Unexpected end of file: res.irf"), std::string::npos);
}

}  // namespace
}  // namespace corvinet
