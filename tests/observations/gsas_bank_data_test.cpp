// Tests of the GSAS banks of today's instruments (INSTR 13): FXYE with CONST and SLOG binning,
// STD with TIME_MAP binning, the bank chosen by INSTR, and the stops for malformed lines.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "data_file_case.h"
#include "records/data_format.h"

namespace corvinet {
namespace {

using testing::DataFileCase;
using testing::ExpectPoint;
using testing::HasLine;

std::string Excerpt(const std::string& name) {
  return std::string(CORVINET_TEST_DATA) + "/formats/" + name;
}

std::string SharedFile(const std::string& relative) {
  const std::filesystem::path path = std::filesystem::path(CORVINET_SHARED_DIR) / "data" / relative;
  return std::filesystem::exists(path) ? path.string() : std::string();
}

#define SHARED_FILE_OR_SKIP(var, relative)      \
  const std::string var = SharedFile(relative); \
  if (var.empty()) GTEST_SKIP() << "shared data file absent: " << (relative)

TEST(DataFormatCode, BankSitsInTheHundredsOfTheNewFormatsOnly) {
  EXPECT_EQ(DataFormatOf(13), 13);
  EXPECT_EQ(DataBankOf(13), 0);
  EXPECT_EQ(DataFormatOf(413), 13);
  EXPECT_EQ(DataBankOf(413), 4);
  EXPECT_EQ(DataFormatOf(214), 14);
  EXPECT_EQ(DataBankOf(214), 2);
  EXPECT_EQ(DataFormatOf(112), 112);  // the older formats take no bank
  EXPECT_EQ(DataBankOf(112), 0);
  EXPECT_EQ(DataFormatOf(-12), -12);
}

TEST(GsasBankData, SynchrotronConstFxyeInCentidegrees) {
  // 11-BM: "BANK 1  132992 132992 CONS 49.950 0.050 0 0 FXYE", after 60 heading lines
  // in the full file; the excerpt keeps 29 points, fewer than NCHAN, which is said.
  DataFileCase c(13, DataFileCase::LinkTo{Excerpt("11bmb_3844_excerpt.fxye")});
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 29);
  ExpectPoint(p, 1, {0.4995f, 13.0092f, 1.6774912f});
  ExpectPoint(p, 29, {0.5135f, 12.5637f, 1.6168648f});
  const std::string report = c.Report();
  EXPECT_TRUE(HasLine(report, " -> BINTYP          : CONS"));
  EXPECT_TRUE(HasLine(report, " -> DATTYP          : FXYE"));
  EXPECT_TRUE(HasLine(report, " => Points read: 29 of NCHAN 132992"));
}

TEST(GsasBankData, TimeOfFlightSlogFxyeDividedByTheBinWidths) {
  // Mantid writes Y and sigma multiplied by the bin width x*dt/t/(1+dt/2), dt/t = 0.0004.
  DataFileCase c(13, DataFileCase::LinkTo{Excerpt("PG3_17541_excerpt.gsa")});
  c.pattern().IXUNIT = AbscissaUnit::kTimeOfFlight;
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 30);
  ExpectPoint(p, 1, {6777.0815f, 27.947320f, 4.8612576f});
  ExpectPoint(p, 30, {6856.1375f, 34.048584f, 3.5574228f});
  EXPECT_EQ(p.equalStep, 0);
  const std::string report = c.Report();
  EXPECT_TRUE(HasLine(report, " -> BINTYP          : SLOG"));
  EXPECT_TRUE(HasLine(report, " -> Y and sigma divided by the bin widths (microseconds)"));
}

TEST(GsasBankData, TimeMapStdBankAtChannelCentresPerMicrosecond) {
  // TIME_MAP10 with a clock of 50 ns: channel 1 starts at 11984 ticks = 599.2 us and is
  // 6 ticks = 0.3 us wide; the banks ask for map 1 and 2, and the only map is used.
  DataFileCase c(13, DataFileCase::LinkTo{Excerpt("6719_excerpt.dat")});
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 25);
  ExpectPoint(p, 1, {599.35f, 4957.0f / 0.3f, 4957.0f / 0.09f});
  ExpectPoint(p, 25, {606.55f, 5660.0f / 0.3f, 5660.0f / 0.09f});
  EXPECT_TRUE(HasLine(c.Report(), " => TIME_MAP 1 absent: the only map used is 10"));
}

TEST(GsasBankData, BankChosenInTheHundredsOfInstr) {
  DataFileCase c(213, DataFileCase::LinkTo{Excerpt("6719_excerpt.dat")});
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 20);
  ExpectPoint(p, 1, {599.35f, 4475.0f / 0.3f, 4475.0f / 0.09f});
  ExpectPoint(p, 20, {605.05f, 5136.0f / 0.3f, 5136.0f / 0.09f});
  EXPECT_TRUE(HasLine(c.Report(), " -> IBANK,NCHAN,NREC:        2      20       2"));
}

TEST(GsasBankData, AbsentBankStops) {
  DataFileCase c(713, DataFileCase::LinkTo{Excerpt("6719_excerpt.dat")});
  const std::string console = c.ReadExpectingStop();
  EXPECT_NE(console.find(" => Error in the input GSAS-file: BANK 7 not found!"), std::string::npos);
}

TEST(GsasBankData, MalformedFxyeLineStopsWithItsNumber) {
  DataFileCase c(13,
                 "title\n"
                 "BANK 1 3 3 CONST 1000 5 0 0 FXYE\n"
                 "1000 10 3\n"
                 "1005 11 x\n"
                 "1010 12 3\n");
  const std::string console = c.ReadExpectingStop();
  EXPECT_NE(console.find(" => Malformed line 4 of data file "), std::string::npos) << console;
  EXPECT_NE(console.find("1005 11 x (x, y, sigma expected)"), std::string::npos) << console;
}

TEST(GsasBankData, MalformedBankLineStopsWithItsNumber) {
  DataFileCase c(13, "title\n# comment\nBANK 1 many 3 CONST 1000 5 0 0 FXYE\n");
  const std::string console = c.ReadExpectingStop();
  EXPECT_NE(console.find(" => Malformed line 3 of data file "), std::string::npos) << console;
}

TEST(GsasBankData, MalformedTimeMapRecordStopsWithItsNumber) {
  DataFileCase c(13,
                 "title\n"
                 "TIME_MAP1   7   1 TIME_MAP  50\n"
                 "       1   1000      1O       5    1005       2   2000\n");
  const std::string console = c.ReadExpectingStop();
  EXPECT_NE(console.find(" => Malformed line 3 of data file "), std::string::npos) << console;
}

TEST(GsasBankData, FxyRecordsTakeTheVarianceFromTheCounts) {
  DataFileCase c(13,
                 "title\n"
                 "BANK 1 3 3 CONST 1000 5 0 0 FXY\n"
                 "1000 16\n"
                 "1005 25\n"
                 "1010 0\n");
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 3);
  ExpectPoint(p, 1, {10.0f, 16.0f, 16.0f});
  ExpectPoint(p, 2, {10.05f, 25.0f, 25.0f});
  ExpectPoint(p, 3, {10.1f, 0.0f, 0.0f});
}

TEST(GsasBankData, WholeHipdFileBank1AcrossItsTimeMap) {
  // 234 segments; channel 337 opens the second at 14000 ticks (700 us), 7 ticks wide;
  // the last channel 7550 lies in segment (7542, 478081, 239): start 23999.65 us, width 11.95.
  SHARED_FILE_OR_SKIP(path, "qpa-cpd-rr-hipd-tof/6719.dat");
  DataFileCase c(113, DataFileCase::LinkTo{path});
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 7550);
  EXPECT_NEAR(p.X[1], 599.35f, 1e-3f);
  EXPECT_NEAR(p.X[336], 699.85f, 1e-3f);  // 11984 + 6*335 ticks, centre
  EXPECT_NEAR(p.X[337], 700.175f, 1e-3f);
  EXPECT_NEAR(p.X[7550], 24005.625f, 1e-2f);
}

TEST(GsasBankData, WholePowgenSlogFile) {
  // "BANK 2 6825 6825 SLOG 6776 103816 0.0004000 0 FXYE": the x column is used as written.
  SHARED_FILE_OR_SKIP(path, "lab6-660b-powgen-tof/PG3_17541.gsa");
  DataFileCase c(213, DataFileCase::LinkTo{path});
  c.pattern().IXUNIT = AbscissaUnit::kTimeOfFlight;
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 6825);
  EXPECT_NEAR(p.X[1], 6777.0815f, 1e-2f);
  EXPECT_NEAR(p.X[6825], 103815.51f, 1e-1f);
}

TEST(GsasBankData, LongSynchrotronFileNeedsTheStepReduction) {
  // 59497 points: more than a pattern holds; with Ste 3 every third point is kept.
  SHARED_FILE_OR_SKIP(path, "nac-powgen-11bm/11BM_NAC.fxye");
  DataFileCase c(13, DataFileCase::LinkTo{path});
  c.pattern().ISTEP = 3;
  c.Read();
  const Pattern& p = c.pattern();
  ASSERT_EQ(p.NPTS, 59497 / 3);
  EXPECT_NEAR(p.X[1], 0.5f, 1e-5f);
  EXPECT_NEAR(p.X[2], 0.503f, 1e-5f);
}

}  // namespace
}  // namespace corvinet
