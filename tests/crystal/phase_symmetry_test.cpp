// Symmetry of a phase at reading: operator lines, the report and the symbol of generation.
#include "crystal/phase_symmetry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "crystal/symmetry_texts.h"
#include "reflection_case.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::HasLine;
using testing::HasLineWith;
using testing::ScratchDir;

// Phase 1 with the given symbol and the lines that follow the symbol in the
// control file.
struct SymmetryCase {
  ScratchDir dir;
  CapturedJob job;
  SymmetryCase(const std::string& symbol, int isy, int jbt, const std::string& lines) {
    testing::OpenControlText(dir, *job, lines);
    job->run.NPATT = 1;
    job->run.NPHASE = 1;
    Phase& ph = job->phases[1];
    ph.SpaceGroupSymbol = symbol;
    ph.Isy = isy;
    ph.Jbt = jbt;
    ph.pat[1].Contribution = 1;
    ph.pat[1].Irf = 1;
  }
  Phase& Ph() { return job->phases[1]; }
  SpaceGroup& G() { return job->phases[1].group; }
  bool Builds() {
    try {
      BuildPhaseSymmetry(*job, 1);
    } catch (const ProcessStop&) {
      return false;
    }
    return true;
  }
  std::string Out() {
    std::fflush(job->files.units[Unit::Out].file);
    return dir.Read("x.out");
  }
};

TEST(OperatorLines, NumericOperatorsAreMatchedAgainstTheRotationTable) {
  SymmetryCase c("P 21/c", 1, 0,
                 "!Nsym Cen Laue MagMat\n2 2 2 0\n"
                 "1 0 0 0.0 0 1 0 0.0 0 0 1 0.0\n"
                 "-1 0 0 0.0 0 1 0 0.5 0 0 -1 0.5\n");
  ASSERT_TRUE(c.Builds());
  const SpaceGroup& g = c.G();
  EXPECT_EQ(g.NSYM, 2);
  EXPECT_EQ(g.ICENT, 2);
  EXPECT_EQ(g.LAUE, 2);
  EXPECT_EQ(g.isAcentric, 0);
  EXPECT_EQ(g.multiplicityFactor, 1);
  EXPECT_EQ(g.isl[1], 1);
  EXPECT_EQ(g.isl[2], 3);  // (-x, y, -z)
  EXPECT_FLOAT_EQ(g.translation(2, 2), 0.5f);
  EXPECT_FLOAT_EQ(g.translation(3, 2), 0.5f);
  EXPECT_EQ(c.Ph().hasSymbol, 0);
}

TEST(OperatorLines, TextOperatorsSkipCommentLinesAndStartAtColumnSix) {
  SymmetryCase c("P 41", -1, 0, "2 1 4 0\n!  the operators\nSYMM x,y,z\nSYMM -y,x,z+1/4\n");
  ASSERT_TRUE(c.Builds());
  EXPECT_EQ(c.G().isl[2], 16);  // (-y, x, z)
  EXPECT_FLOAT_EQ(c.G().translation(3, 2), 0.25f);
  EXPECT_EQ(c.G().operatorText[2], "SYMM -y,x,z+1/4");
}

TEST(OperatorLines, RhombohedralAxesOperatorsUseTheCubicRows) {
  SymmetryCase c("R -3 m R", -1, 0, "2 2 7 0\nSYMM z,x,y\nSYMM -y,-x,-z\n");
  ASSERT_TRUE(c.Builds());
  EXPECT_EQ(c.G().isl[1], 5);
  EXPECT_EQ(c.G().isl[2], 14);
}

TEST(OperatorLines, HexagonalClassesUseTheHexagonalRows) {
  SymmetryCase c("P 6/m m m", -1, 0, "2 2 12 0\nSYMM x,y,z\nSYMM -y,x-y,z\n");
  ASSERT_TRUE(c.Builds());
  EXPECT_EQ(c.G().isl[1], 25);
  EXPECT_EQ(c.G().isl[2], 26);
}

TEST(OperatorLines, OperatorWithAMissingFieldStops) {
  SymmetryCase c("P 1", -1, 0, "1 1 1 0\nSYMM x,y\n");
  EXPECT_FALSE(c.Builds());
  EXPECT_TRUE(HasLine(c.job.Console(), " *** ERROR: Blank operator field"));
}

TEST(OperatorLines, InvalidCharacterStopsWithTheLine) {
  SymmetryCase c("P 1", -1, 0, "1 1 1 0\nSYMM x,y,q\n");
  EXPECT_FALSE(c.Builds());
  const std::string console = c.job.Console();
  EXPECT_TRUE(HasLine(console, "SYMM x,y,q"));
  EXPECT_TRUE(HasLine(console, " *** ERROR: Invalid character... q in Sym. Op."));
}

TEST(OperatorLines, SingularOperatorStops) {
  SymmetryCase c("P 1", -1, 0, "1 1 1 0\nSYMM x,x,z\n");
  EXPECT_FALSE(c.Builds());
  const std::string console = c.job.Console();
  EXPECT_TRUE(HasLine(console, "SYMM x,x,z"));
  EXPECT_TRUE(HasLine(console, "  *** ERROR: The above operator is wrong"));
}

TEST(OperatorLines, RotationOutsideTheRowsOfTheClassStops) {
  SymmetryCase c("P m 3 m", -1, 0, "1 2 14 0\nSYMM x-y,x,z\n");
  EXPECT_FALSE(c.Builds());
  const std::string console = c.job.Console();
  EXPECT_TRUE(HasLine(console, " => The supplied S.O. is not standard :"));
  EXPECT_TRUE(HasLine(console, "    identical to a S.O. of the space group P m -3 m"));
  EXPECT_TRUE(HasLine(console, "Illegal Symmetry Operator"));
}

TEST(OperatorLines, MoreThanEightMagneticMatricesStop) {
  SymmetryCase c("P 1", 1, 1, "1 1 1 9\n");
  EXPECT_FALSE(c.Builds());
  EXPECT_TRUE(HasLine(c.job.Console(), " Too many magnetic rotation matrices"));
}

TEST(OperatorLines, NonMagneticPhaseReadsNoMagneticMatrices) {
  SymmetryCase c("P 1", 1, 0, "1 1 1 2\n1 0 0 0.0 0 1 0 0.0 0 0 1 0.0\n");
  ASSERT_TRUE(c.Builds());
  EXPECT_EQ(c.G().NMAGM, 0);
}

TEST(OperatorLines, MagneticMatricesAsTextAndAsNumbers) {
  SymmetryCase text("P 2", -1, 1,
                    "2 1 2 1\nSYMM x,y,z\nMSYM u,v,w,0\nSYMM -x,y,-z\nMSYM -u,v,-w,1\n");
  ASSERT_TRUE(text.Builds());
  EXPECT_EQ(text.G().NMAGM, 1);
  EXPECT_EQ(text.G().magneticRotation(1, 1), 1);
  EXPECT_EQ(text.G().magneticRotation(1, 2), 3);
  EXPECT_FLOAT_EQ(text.G().magneticPhase(1, 2), 1.0f);
  SymmetryCase numbers("P 2", 1, 1,
                       "1 1 2 1\n1 0 0 0.0 0 1 0 0.0 0 0 1 0.0\n-1 0 0 0 -1 0 0 0 -1 0.5\n");
  ASSERT_TRUE(numbers.Builds());
  EXPECT_EQ(numbers.G().magneticRotation(1, 1), -1);
  EXPECT_FLOAT_EQ(numbers.G().magneticPhase(1, 1), 0.5f);
  EXPECT_TRUE(HasLine(numbers.Out(), "  (1): (-Mx,-My,-Mz)       MPhas:   0.5000"));
}

TEST(OperatorLines, TimeReversalSignsWithTheCentricityOfTheMagneticStructure) {
  SymmetryCase c("P -1", 0, 10, "1 -1\n");
  c.Ph().magneticSymmetry = 1;
  ASSERT_TRUE(c.Builds());
  EXPECT_EQ(c.G().magneticSign[1], 1);
  EXPECT_EQ(c.G().magneticSign[2], -1);
  EXPECT_TRUE(HasLine(c.Out(), " => The magnetic structure is non-centrosymmetric"));
  SymmetryCase centric("P -1", 0, 10, "-1 1\n");
  centric.Ph().magneticSymmetry = 1;
  ASSERT_TRUE(centric.Builds());
  EXPECT_EQ(centric.G().magneticRotation(1, 1), -1);
  EXPECT_TRUE(HasLine(centric.Out(), " => The magnetic structure is centrosymmetric"));
}

TEST(OperatorLines, ExtraSignOfZeroPrintsNeitherCentricityLine) {
  SymmetryCase c("P -1", 0, 10, "1 0\n");
  c.Ph().magneticSymmetry = 1;
  ASSERT_TRUE(c.Builds());
  EXPECT_FALSE(HasLineWith(c.Out(), "The magnetic structure is"));
}

TEST(OperatorLines, AcentricGroupReadsOneSignPerOperator) {
  SymmetryCase c("P 2", 0, 10, "1 -1\n");
  c.Ph().magneticSymmetry = 1;
  ASSERT_TRUE(c.Builds());
  EXPECT_EQ(c.G().NSYM, 2);
  EXPECT_EQ(c.G().magneticSign[2], -1);
  EXPECT_FALSE(HasLineWith(c.Out(), "The magnetic structure is"));
}

TEST(SymmetryReport, OneOperatorOfP1) {
  SymmetryCase c("P 1", 0, 0, "");
  ASSERT_TRUE(c.Builds());
  EXPECT_EQ(c.G().NSYM, 1);
  EXPECT_EQ(c.G().ICENT, 1);
  EXPECT_EQ(c.G().multiplicityFactor, 1);
  EXPECT_EQ(c.Ph().hasSymbol, 1);
  const std::string out = c.Out();
  EXPECT_TRUE(HasLine(out, " => The SPACE GROUP is: P 1"));
  EXPECT_TRUE(HasLine(out, " -> The multiplicity of the general position is:   1"));
  EXPECT_TRUE(HasLine(out, " -> The space group is non-centrosymmetric"));
  EXPECT_TRUE(HasLine(out, " -> Lattice type  P: { 000 }"));
  EXPECT_TRUE(HasLine(out, " -> Reduced set of symmetry operators:"));
  EXPECT_TRUE(
      HasLine(out, "  No.  IT   Symmetry symbol    Rotation part     Associated Translation"));
  EXPECT_TRUE(
      HasLine(out, "   1: ( 1)   1            --> ( x, y, z) + {  0.0000  0.0000  0.0000}"));
}

TEST(SymmetryReport, CentringDifferencesNeverDoubleAnOperatorOfFm3m) {
  SymmetryCase c("F m 3 m", 0, 0, "");
  ASSERT_TRUE(c.Builds());
  EXPECT_EQ(c.G().NSYM, 24);
  EXPECT_EQ(c.G().ICENT, 2);
  EXPECT_EQ(c.G().NLAT, 4);
  EXPECT_EQ(c.G().multiplicityFactor, 64);
  const std::string out = c.Out();
  EXPECT_TRUE(HasLine(out, " -> The multiplicity of the general position is: 192"));
  EXPECT_TRUE(HasLine(out, " -> The space group is centrosymmetric"));
  EXPECT_TRUE(HasLine(out, " -> Lattice type  F: { 000;  0  1/2 1/2; 1/2  0  1/2; 1/2 1/2  0 }+"));
  EXPECT_TRUE(HasLineWith(out, "  24: ("));
  EXPECT_FALSE(HasLineWith(out, "  25: ("));
}

TEST(SymmetryReport, HexagonalOperatorsUseTheirOwnSymbolsAndTexts) {
  SymmetryCase c("P 6/m", 0, 0, "");
  ASSERT_TRUE(c.Builds());
  EXPECT_TRUE(HasLineWith(c.Out(), ": ( 2)  3+ ( 0, 0, z) --> (  -y, x-y, z) + {"));
  EXPECT_TRUE(HasLineWith(c.Out(), ": ( 3)  3- ( 0, 0, z) --> (-x+y,-x  , z) + {"));
}

TEST(SymmetryReport, TranslationOfOneThirdIsFourTwelfths) {
  SymmetryCase c("P 31", 0, 0, "");
  ASSERT_TRUE(c.Builds());
  bool third = false;
  for (int n = 1; n <= c.G().NSYM; ++n) {
    const float t = c.G().translation(3, n);
    if (t > 0.0f && t < 0.5f) {
      EXPECT_EQ(std::lround(t * 12.0f), 4);
      EXPECT_NEAR(t * 12.0f, 4.0f, 1e-5f);
      third = true;
    }
  }
  EXPECT_TRUE(third);
  EXPECT_TRUE(HasLineWith(c.Out(), "  0.0000  0.0000  0.3333}"));
}

TEST(SymmetryReport, OperatorsOfTheFileAreReportedAsRead) {
  SymmetryCase c("P 21/c", 1, 0,
                 "2 2 2 0\n1 0 0 0.0 0 1 0 0.0 0 0 1 0.0\n-1 0 0 0.0 0 1 0 0.5 0 0 -1 0.5\n");
  ASSERT_TRUE(c.Builds());
  const std::string out = c.Out();
  EXPECT_TRUE(HasLine(out, " => Symmetry operators read from file"));
  EXPECT_TRUE(
      HasLine(out, " => Laue class (LAUE):  2   Magnetic matrices per operator (NMAGM):  0"));
  EXPECT_TRUE(HasLine(out, " -> The multiplicity of the general position is:   4"));
  EXPECT_TRUE(HasLine(out, " -> The structure is treated as centrosymmetric"));
  EXPECT_TRUE(
      HasLine(out, "   2: ( 3)   2 ( 0, y, 0) --> (-x, y,-z) + {  0.0000  0.5000  0.5000}"));
}

TEST(SymmetryReport, SymmetryListFileWhenTheRunAsksForIt) {
  SymmetryCase c("P 21/c", 0, 0, "");
  c.job->run.JSY = 1;
  OpenFiles(*c.job, FileKind::kSymmetry, 0, 0);
  ASSERT_TRUE(c.Builds());
  std::fflush(c.job->files.units[Unit::Sym].file);
  const std::vector<std::string> lines = testing::SplitLines(c.dir.Read("x.sym"));
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0], "   2  P");
  EXPECT_EQ(lines[1], "  1  0  0   0.00000  0  1  0   0.00000  0  0  1   0.00000");
  EXPECT_EQ(lines[2], " -1  0  0   0.00000  0  1  0   0.50000  0  0 -1   0.50000");
}

TEST(PhaseSymmetry, ProfileMatchingPhasesReadNoOperatorLinesAndNoReport) {
  SymmetryCase c("P m 3 m", 0, 2, "");
  ASSERT_TRUE(c.Builds());
  EXPECT_EQ(c.G().LAUE, 14);
  EXPECT_EQ(c.Ph().hasSymbol, 1);
  EXPECT_FALSE(HasLineWith(c.Out(), "Reduced set of symmetry operators"));
}

TEST(PhaseSymmetry, UnreadableSymbolStopsWithItsMessages) {
  SymmetryCase c("Q 1 2", 0, 0, "");
  EXPECT_FALSE(c.Builds());
  const std::string console = c.job.Console();
  EXPECT_TRUE(HasLine(console, "\"Q 1 2\""));
  EXPECT_TRUE(HasLine(console, " ^"));
  EXPECT_TRUE(HasLine(console, " Error in S.G. symbol"));
}

TEST(PhaseSymmetry, SymbolInTheProgramsNotationThatNamesNoGroupKeepsItsMessages) {
  SymmetryCase c("P 2 2", 0, 0, "");
  EXPECT_FALSE(c.Builds());
  const std::string console = c.job.Console();
  EXPECT_TRUE(HasLine(console, "   Did you punch the symbol correctly ?"));
  EXPECT_TRUE(HasLine(console, " Error in S.G. symbol"));
}

TEST(PhaseSymmetry, AnAliasIsReportedAndBuildsTheGroupOfTheProgramsSymbol) {
  SymmetryCase c("F m -3 m", 0, 0, "");
  ASSERT_TRUE(c.Builds());
  EXPECT_EQ(c.G().LAUE, 14);
  EXPECT_EQ(c.G().NLAT, 4);
  EXPECT_EQ(c.Ph().SpaceGroupSymbol, "F m 3 m");
  EXPECT_TRUE(HasLine(c.Out(), " => Space group symbol read as: F m 3 m (written F m -3 m)"));
}

TEST(PhaseSymmetry, OperatorLinesWithGenerationTakeTheWordsOfTheSymbol) {
  const std::string lines = "2 2 2 0\nSYMM x,y,z\nSYMM -x,y,-z\n";
  SymmetryCase c("P 4/m m m", -1, 0, lines);
  c.Ph().pat[1].Irf = 0;
  ASSERT_TRUE(c.Builds());
  EXPECT_EQ(c.G().NSYM, 2);
  EXPECT_EQ(c.G().isl[2], 3);
  EXPECT_EQ(c.G().LAUE, 5);
  EXPECT_GT(c.G().generatorTableCount, 0);
  EXPECT_EQ(c.Ph().hasSymbol, 1);
  const std::string console = c.job.Console();
  EXPECT_TRUE(HasLine(console, " Sym.Op. read from file but H,K,L generated from: P 4/m m m"));
  EXPECT_TRUE(HasLine(console, " Output a file with a reduced hkl-set"));
  EXPECT_TRUE(HasLineWith(c.Out(), " => The SPACE GROUP symbol for HKL generation is: P 4/M M M"));

  SymmetryCase satellites("P 4/m m m", -1, 0, lines);
  satellites.Ph().pat[1].Irf = -1;
  ASSERT_TRUE(satellites.Builds());
  const std::string second = satellites.job.Console();
  EXPECT_TRUE(HasLine(second, "Sym.Op. read from file, hkl-progenitors generated from: P 4/m m m"));
  EXPECT_TRUE(HasLine(second, " A file with hkl-satellites will be created!!"));

  SymmetryCase fromFile("P 4/m m m", -1, 0, lines);
  ASSERT_TRUE(fromFile.Builds());  // Irf 1: the reflections come from a file
  EXPECT_EQ(fromFile.G().LAUE, 2);
  EXPECT_EQ(fromFile.Ph().hasSymbol, 0);
}

TEST(SymmetryTexts, RotationAndMomentTextsOfBothFamilies) {
  EXPECT_EQ(RotationText(1), "( x, y, z)");
  EXPECT_EQ(RotationText(-15), "(-y, x,-z)");
  EXPECT_EQ(RotationText(25), "( x  ,   y, z)");
  EXPECT_EQ(RotationText(27), "(-x+y,-x  , z)");
  EXPECT_EQ(RotationText(-26), "(   y,-x+y,-z)");
  EXPECT_EQ(MomentText(1), "( Mx, My, Mz)      ");
  EXPECT_EQ(MomentText(25), "( Mx   ,    My, Mz)");
  EXPECT_EQ(SeitzSymbol(-1), " -1           ");
  EXPECT_EQ(SymbolTableIndex(-1), 25);
  EXPECT_EQ(SymbolTableIndex(-26), 14);
  EXPECT_EQ(SeitzSymbol(-26), "-3+ ( 0, 0, z)");
}

}  // namespace
}  // namespace corvinet
