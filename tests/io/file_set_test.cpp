// Tests of the names, units and open modes of the file set.
#include "io/file_set.h"

#include <gtest/gtest.h>

#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

std::string NameOn(Job& job, int unit) {
  return job.files.units[unit].name;
}

TEST(FileSet, SinglePatternNamesHaveNoSuffix) {
  ScratchDir dir;
  dir.Write("abc.pcr", "title\n");
  CapturedJob job;
  job->driver.PcrCode = "abc";
  job->patterns[1].DatCode = "abc";
  OpenFiles(*job, FileKind::kControl, 0, 0);
  OpenFiles(*job, FileKind::kOutput, 0, 0);
  OpenFiles(*job, FileKind::kProfile, 1, 0);
  OpenFiles(*job, FileKind::kBackground, 1, 0);
  EXPECT_EQ(NameOn(*job, 1), "abc.pcr");
  EXPECT_EQ(NameOn(*job, 7), "abc.out");
  EXPECT_EQ(NameOn(*job, 8), "abc.sum");
  EXPECT_EQ(NameOn(*job, 17), "abc.prf");
  EXPECT_EQ(NameOn(*job, 12), "abc.bac");
}

TEST(FileSet, MultiPatternNamesCarryThePatternSuffix) {
  ScratchDir dir;
  CapturedJob job;
  job->driver.PcrCode = "abc";
  job->patterns[2].DatCode = "data2";
  OpenFiles(*job, FileKind::kMultiPattern, 1, 1);
  OpenFiles(*job, FileKind::kBackground, 2, 0);
  OpenFiles(*job, FileKind::kProfile, 2, 0);
  EXPECT_EQ(NameOn(*job, 12), "data2_2.bac");
  EXPECT_EQ(NameOn(*job, 17), "abc_2.prf");
  EXPECT_EQ(PatternSuffix(*job, 12), "_12");
  EXPECT_EQ(PatternSuffix(*job, 123), "_123");
}

TEST(FileSet, MultiPatternSwitchOutlivesTheRun) {
  ScratchDir dir;
  CapturedJob job;
  job->driver.PcrCode = "abc";
  OpenFiles(*job, FileKind::kMultiPattern, 1, 1);
  // A later single-pattern control file in the same process keeps the suffix.
  OpenFiles(*job, FileKind::kProfile, 1, 0);
  EXPECT_EQ(NameOn(*job, 17), "abc_1.prf");
}

TEST(FileSet, PhaseZeroLeavesABlankInsideTheName) {
  ScratchDir dir;
  CapturedJob job;
  job->driver.PcrCode = "abc";
  OpenFiles(*job, FileKind::kSchakal, 1, 0);
  OpenFiles(*job, FileKind::kAtoms, 1, 0);
  OpenFiles(*job, FileKind::kPhasePattern, 1, 0);
  OpenFiles(*job, FileKind::kIntensities, 1, 0);
  OpenFiles(*job, FileKind::kReflectionBack, 1, 0);
  EXPECT_EQ(NameOn(*job, 18), "abc .sch");
  EXPECT_EQ(NameOn(*job, 22), "abc .atm");
  EXPECT_EQ(NameOn(*job, 23), "abc .sub");
  EXPECT_EQ(NameOn(*job, 26), "abc .int");
  EXPECT_EQ(NameOn(*job, 16), "abc .hkl");
  OpenFiles(*job, FileKind::kAtoms, 1, 3);
  EXPECT_EQ(NameOn(*job, 22), "abc3.atm");
}

TEST(FileSet, PhaseDigitsComeFromTheirTable) {
  EXPECT_EQ(PhaseDigit(0), ' ');
  EXPECT_EQ(PhaseDigit(1), '1');
  EXPECT_EQ(PhaseDigit(8), '8');
}

TEST(FileSet, DirectoryOfTheCodeIsKeptButSomeNamesAreLookedForHere) {
  ScratchDir dir;
  dir.Write("sub/x.pcr", "t\n");
  dir.Write("global.shp", "shape\n");
  dir.Write("cor.cor", "c\n");
  dir.Write("hkl2.hkl", "h\n");
  CapturedJob job;
  job->driver.PcrCode = "sub/x";
  job->patterns[1].DatCode = "sub/none";
  OpenFiles(*job, FileKind::kControl, 0, 0);
  OpenFiles(*job, FileKind::kAtoms, 1, 2);
  OpenFiles(*job, FileKind::kShape, 1, 0);
  OpenFiles(*job, FileKind::kCorrections, 1, 0);
  OpenFiles(*job, FileKind::kReflectionInput, 1, 2);
  EXPECT_EQ(NameOn(*job, 1), "sub/x.pcr");
  EXPECT_EQ(NameOn(*job, 22), "sub/x2.atm");
  EXPECT_EQ(NameOn(*job, 24), "global.shp");
  EXPECT_EQ(NameOn(*job, 25), "cor.cor");
  EXPECT_EQ(NameOn(*job, 15), "hkl2.hkl");
  EXPECT_TRUE(job->files.hklFromFile);
}

TEST(FileSet, ReflectionFileTriesThreeNamesInOrder) {
  ScratchDir dir;
  dir.Write("abc1.hkl", "1\n");
  dir.Write("dat.int", "2\n");
  CapturedJob job;
  job->driver.PcrCode = "abc";
  job->patterns[1].DatCode = "dat";
  OpenFiles(*job, FileKind::kReflectionInput, 1, 1);
  EXPECT_EQ(NameOn(*job, 15), "abc1.hkl");
  EXPECT_FALSE(job->files.hklFromFile);
  OpenFiles(*job, FileKind::kReflectionInput, 1, 2);
  EXPECT_EQ(NameOn(*job, 15), "dat.int");
  EXPECT_TRUE(job->files.hklFromFile);
  OpenFiles(*job, FileKind::kReflectionBack, 1, 2);
  EXPECT_EQ(NameOn(*job, 16), "hkl2.hkl");
}

TEST(FileSet, MissingReflectionFilesStopWithTheThreeNames) {
  ScratchDir dir;
  CapturedJob job;
  job->driver.PcrCode = "abc";
  job->patterns[1].DatCode = "dat";
  EXPECT_THROW(OpenFiles(*job, FileKind::kReflectionInput, 1, 1), ProcessStop);
  EXPECT_NE(
      job.Console().find(" => Error opening a (hkl)-file: abc1.hkl,dat.int,hkl1.hkl Unit: 15"),
      std::string::npos);
}

TEST(FileSet, DataFileIsLookedForAsDatThenUxdThenAcq) {
  ScratchDir dir;
  dir.Write("d.uxd", "u\n");
  dir.Write("d.acq", "a\n");
  CapturedJob job;
  job->patterns[1].DatCode = "d";
  OpenFiles(*job, FileKind::kData, 1, 0);
  EXPECT_EQ(NameOn(*job, 4), "d.uxd");
}

// A data code with an extension of its own names the file as it is.
TEST(FileSet, DataCodeWithItsOwnExtensionOpensThatFile) {
  ScratchDir dir;
  dir.Write("d.xye", "a\n");
  dir.Write("d.xye.dat", "b\n");
  CapturedJob job;
  job->patterns[1].DatCode = "d.xye";
  OpenFiles(*job, FileKind::kData, 1, 0);
  EXPECT_EQ(NameOn(*job, 4), "d.xye");
}

// Without an extension, or with the file absent, the three extensions are tried.
TEST(FileSet, DataCodeWithAnAbsentExtensionFileTriesTheExtensions) {
  ScratchDir dir;
  dir.Write("run.2.dat", "a\n");
  CapturedJob job;
  job->patterns[1].DatCode = "run.2";
  OpenFiles(*job, FileKind::kData, 1, 0);
  EXPECT_EQ(NameOn(*job, 4), "run.2.dat");
}

TEST(FileSet, MissingDataFileStopsWithItsCode) {
  ScratchDir dir;
  CapturedJob job;
  job->patterns[1].DatCode = "nothing";
  EXPECT_THROW(OpenFiles(*job, FileKind::kData, 1, 0), ProcessStop);
  EXPECT_NE(job.Console().find(
                " ==> Error opening file CODEFIL.DAT(UXD,ACQ) with CODEFIL=nothing Unit:  4"),
            std::string::npos);
}

TEST(FileSet, MissingControlFileStopsWithItsName) {
  ScratchDir dir;
  CapturedJob job;
  job->driver.PcrCode = "absent";
  EXPECT_THROW(OpenFiles(*job, FileKind::kControl, 0, 0), ProcessStop);
  EXPECT_NE(job.Console().find(" => Error opening file: absent.pcr Unit:  1"), std::string::npos);
}

TEST(FileSet, MissingShapeFileStopsWithTheCommonName) {
  ScratchDir dir;
  CapturedJob job;
  job->driver.PcrCode = "abc";
  EXPECT_THROW(OpenFiles(*job, FileKind::kShape, 1, 0), ProcessStop);
  EXPECT_NE(job.Console().find(" => Error opening file: global.shp Unit: 24"), std::string::npos);
}

TEST(FileSet, MissingCorrectionFileStopsWithTheCommonNameOfItsPattern) {
  ScratchDir dir;
  CapturedJob job;
  job->driver.PcrCode = "abc";
  OpenFiles(*job, FileKind::kMultiPattern, 1, 1);
  EXPECT_THROW(OpenFiles(*job, FileKind::kCorrections, 2, 0), ProcessStop);
  EXPECT_NE(job.Console().find(" => Error opening file: cor_2.cor Unit: 25"), std::string::npos);
}

TEST(FileSet, StartingControlCodeIsCreatedWhenAbsent) {
  ScratchDir dir;
  CapturedJob job;
  job->driver.PcrCode = "starting";
  OpenFiles(*job, FileKind::kControl, 0, 0);
  EXPECT_EQ(NameOn(*job, Unit::Control), "starting.pcr");
  EXPECT_EQ(job.Console(), "");
}

TEST(FileSet, IllegalOptionStops) {
  CapturedJob job;
  EXPECT_THROW(OpenFiles(*job, static_cast<FileKind>(99), 1, 0), ProcessStop);
  EXPECT_NE(job.Console().find(" => Illegal option nopf:    99"), std::string::npos);
}

TEST(FileSet, RpaAndSavAreAppendedWhenTheyExist) {
  ScratchDir dir;
  dir.Write("abc.rpa", "old rpa\n");
  dir.Write("abc.sav", "old sav\n");
  CapturedJob job;
  job->driver.PcrCode = "abc";
  OpenFiles(*job, FileKind::kRpa, 0, 0);
  OpenFiles(*job, FileKind::kSav, 0, 0);
  WriteRecord(job->files.units[2], "new rpa");
  WriteRecord(job->files.units[11], "new sav");
  CloseUnit(job->files.units[2]);
  CloseUnit(job->files.units[11]);
  EXPECT_EQ(dir.Read("abc.rpa"), "old rpa\nnew rpa\n");
  EXPECT_EQ(dir.Read("abc.sav"), "old sav\nnew sav\n");
}

TEST(FileSet, UnknownStatusOverwritesOnWriting) {
  ScratchDir dir;
  dir.Write("abc.out", "an old report that is longer\n");
  CapturedJob job;
  job->driver.PcrCode = "abc";
  OpenFiles(*job, FileKind::kOutput, 0, 0);
  WriteRecord(job->files.units[7], "new");
  CloseUnit(job->files.units[7]);
  EXPECT_EQ(dir.Read("abc.out"), "new\n");
}

TEST(FileSet, OtherNamesOfTheTable) {
  ScratchDir dir;
  dir.Write("abc.shp", "s\n");
  dir.Write("abc_1.cor", "c\n");
  dir.Write("res.irf", "r\n");
  CapturedJob job;
  job->driver.PcrCode = "abc";
  job->patterns[1].ResolutionFile = "res.irf";
  OpenFiles(*job, FileKind::kMultiPattern, 1, 1);
  OpenFiles(*job, FileKind::kSymmetry, 0, 0);
  OpenFiles(*job, FileKind::kFourier, 1, 0);
  OpenFiles(*job, FileKind::kReflectionOutput, 1, 0);
  OpenFiles(*job, FileKind::kResolution, 1, 0);
  OpenFiles(*job, FileKind::kSimulated, 0, 0);
  OpenFiles(*job, FileKind::kNewControl, 0, 0);
  OpenFiles(*job, FileKind::kShelx, 0, 0);
  EXPECT_EQ(NameOn(*job, 3), "abc.sym");
  EXPECT_EQ(NameOn(*job, 9), "abc_1.fou");
  EXPECT_EQ(NameOn(*job, 10), "abc_1.hkl");
  EXPECT_EQ(NameOn(*job, 13), "res.irf");
  EXPECT_EQ(NameOn(*job, 14), "abc.sim");
  EXPECT_EQ(NameOn(*job, 19), "abc.new");
  EXPECT_EQ(NameOn(*job, 21), "abc.ins");
  OpenFiles(*job, FileKind::kShelx, 1, 0);
  EXPECT_EQ(NameOn(*job, 21), "abc.inp");
  OpenFiles(*job, FileKind::kShape, 1, 0);
  OpenFiles(*job, FileKind::kCorrections, 1, 0);
  EXPECT_EQ(NameOn(*job, 24), "abc.shp");
  EXPECT_EQ(NameOn(*job, 25), "abc_1.cor");
  OpenFiles(*job, FileKind::kIntensities, 2, 1);
  EXPECT_EQ(NameOn(*job, 26), "abc1_2.int");
}

TEST(FileSet, StartingCodeIsRecognisedByItsLastEightCharacters) {
  EXPECT_TRUE(IsStartingCode("starting"));
  EXPECT_TRUE(IsStartingCode("../starting  "));
  EXPECT_FALSE(IsStartingCode("start"));
  EXPECT_FALSE(IsStartingCode("startingx"));
}

}  // namespace
}  // namespace corvinet
