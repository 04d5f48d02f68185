// Lines of the control file writer against lines worked out by hand from the layouts.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "control/control_writer.h"
#include "format/fortran_format.h"
#include "records/profile_slots.h"
#include "records/text_unit.h"
#include "run/defaults.h"
#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

std::string Blanks(int n) {
  return std::string(static_cast<std::size_t>(n), ' ');
}

// True when `expected` stands in `lines` as consecutive records.
bool HasRun(const ControlLines& lines, const std::vector<std::string>& expected) {
  return std::search(lines.begin(), lines.end(), expected.begin(), expected.end()) != lines.end();
}

bool HasLine(const ControlLines& lines, const std::string& line) {
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}

std::string Joined(const ControlLines& lines) {
  std::string all;
  for (const std::string& l : lines) all += l + "\n";
  return all;
}

// A job after the defaults, with one X-ray pattern and one phase.
struct WriterJob {
  CapturedJob job;
  WriterJob() {
    ResetDefaults(*job);
    job->driver.PcrCode = "xyz";
    job->patterns[1].DatCode = "abc";
    job->run.Title = "Test title";
  }
  Job& operator*() { return *job; }
  Job* operator->() { return job.operator->(); }
};

TEST(ControlWriter, MinusOneTimesParameterThreeIsWrittenMinus31) {
  EXPECT_EQ(Fmt("(F8.2)", ComposeCode(Codeword{3, -1.0f})), "  -31.00");
}

TEST(ControlWriter, DecodedCodesComposeToTheTypedCodes) {
  for (float typed : {0.0f, 1.0f, 11.0f, 10.0f, -10.5f, 21.0f, -31.5f, 3000.0f}) {
    EXPECT_FLOAT_EQ(ComposeCode(DecodeCodeword(typed)), typed) << typed;
  }
}

TEST(ControlWriter, SinglePatternHeadInCommentedForm) {
  WriterJob w;
  Pattern& p = w->patterns[1];
  p.NPROF = 8;  // typed 7
  w->run.NPHASE = 2;
  p.IASYM = 1;  // the older asymmetry: the phase count is written negative
  p.NBCKGD = 5;
  p.backgroundSign = -1;
  p.NSCAT = -2;
  w->run.NRELL = 3;
  ControlLines lines;
  AppendRunBlock(*w, lines);
  const std::vector<std::string> expected = {
      "COMM Test title",
      "! Files => DAT-file: abc,  PCR-file: xyz",
      "!Job Npr Nph Nba Nex Nsc Nor Dum Iwg Ilo Ias Res Ste Nre Cry Uni Cor",
      "   0   7  -2  -5   0  -2   0   0   0   0   0   0   0   3   0   0   0",
      "!",
      "!Ipr Ppl Ioc Mat Pcr Ls1 Ls2 Ls3 Syo Prf Ins Rpa Sym Hkl Fou Sho Ana",
      "   0   0   1   0   1   0   0   0   1   1   0   0   0   0   0   0   0",
      "!"};
  EXPECT_EQ(lines, expected) << Joined(lines);
}

TEST(ControlWriter, PlainFormHasTheTitleAloneAndNoHeaders) {
  WriterJob w;
  w->run.commentedOutput = 0;
  ControlLines lines;
  AppendRunBlock(*w, lines);
  const std::vector<std::string> expected = {
      "Test title", "   0   5   1   0   0   0   0   0   0   0   0   0   0   0   0   0   0", "!",
      "   0   0   1   0   1   0   0   0   1   1   0   0   0   0   0   0   0", "!"};
  EXPECT_EQ(lines, expected) << Joined(lines);
}

TEST(ControlWriter, MultiPatternHeadWithResolutionFile) {
  WriterJob w;
  w->run.NPATT = 2;
  w->patterns[1].W_PAT = 0.25f;
  w->patterns[2].W_PAT = 0.75f;
  w->patterns[2].DatCode = "def";
  w->patterns[2].IRESO = 1;
  w->patterns[2].NPROF = 8;
  w->patterns[2].ResolutionFile = "res.irf";
  w->patterns[2].IASYM = 1;
  w->run.NXT = 2;
  ControlLines lines;
  AppendRunBlock(*w, lines);
  const std::vector<std::string> expected = {
      "COMM Test title",
      "NPATT      2",
      "W_PAT   0.250 0.750",
      "!Nph Dum Ias Nre Cry",
      "   1   0   0   0   0",
      "!Job Npr Nba Nex Nsc Nor Iwg Ilo Res Ste Uni Cor Asym",
      "   0   5   0   0   0   0   0   0   0   0   0   0   0",
      "   0   7   0   0   0   0   0   0   1   0   0   0   1",
      "!File names of data(patterns) files",
      "abc",
      "def",
      "!",
      "!  Resolution file for Pattern#   2",
      "res.irf",
      "!Mat Pcr Syo Rpa Sym Sho",
      "   0   2   1   0   0   0",
      "!Ipr Ppl Ioc Ls1 Ls2 Ls3 Prf Ins Hkl Fou Ana",
      "   0   0   1   0   0   0   1   0   0   0   0",
      "   0   0   1   0   0   0   1   0   0   0   0",
      "!"};
  EXPECT_EQ(lines, expected) << Joined(lines);
}

// An X-ray pattern with a polynomial background and one refined zero shift.
void FillXrayPattern(Pattern& p) {
  p.LAMBDA[1] = 1.5406f;
  p.LAMBDA[2] = 1.5444f;
  p.RATIO[2] = 0.5f;
  p.separateUVW2 = true;
  p.Bkpos = 40.0f;
  p.Wdt = 8.0f;
  p.Cthm = 0.8f;
  p.AsyLim = 30.0f;
  p.THMIN = 20.0f;
  p.STEP = 0.02f;
  p.THMAX = 60.0f;
  p.GLB[1] = 0.01f;
  p.GLBword[1] = Codeword{3, -1.0f};
  p.GLB[2] = 100.0f;
  p.GLBword[2] = Codeword{2, 1.0f};
}

TEST(ControlWriter, InstrumentCycleAndGlobalLines) {
  WriterJob w;
  FillXrayPattern(w->patterns[1]);
  w->run.NCY = 3;
  w->run.EPS = 0.1f;
  w->run.MAXS = 3;
  ControlLines lines;
  AppendPatternBlock(*w, lines);
  EXPECT_TRUE(HasRun(
      lines,
      {"! lambda1 Lambda2    Ratio   Bkpos    Wdt    Cthm     muR   AsyLim   Rpolarz ->Patt# 1",
       " 1.540600 1.544400 -0.5000 40.0000  8.0000  0.8000  0.0000   30.00    0.0000", "!",
       "!NCY  Eps  R_at  R_an  R_pr  R_gl     Thmin       Step       Thmax    PSD    Sent0",
       "  3  0.10  1.00  1.00  1.00  1.00     20.0000     0.0200    60.0000   0.000   0.000", "!",
       "!", "       3    !Number of refined parameters", "!",
       "!  Zero    Code    Sycos    Code   Sysin    Code  Lambda     Code MORE ->Patt#1",
       "  0.0100  -31.00  0.0000    0.00  0.0000    0.00 0.000000    0.00   0",
       "!   Background coefficients/codes  for Pattern#1",
       " 0.10000E+03 0.00000E+00 0.00000E+00 0.00000E+00 0.00000E+00 0.00000E+00",
       "      21.000       0.000       0.000       0.000       0.000       0.000"}))
      << Joined(lines);
}

TEST(ControlWriter, UnitsThreeAndFourHaveNoRangeLine) {
  WriterJob w;
  FillXrayPattern(w->patterns[1]);
  w->patterns[1].IXUNIT = AbscissaUnit::kQ;
  ControlLines lines;
  AppendPatternBlock(*w, lines);
  for (const std::string& l : lines) EXPECT_EQ(l.find("0.0200"), std::string::npos) << l;
  EXPECT_FALSE(HasLine(lines, "  1  0.20  1.00  1.00  1.00  1.00")) << Joined(lines);

  WriterJob m;
  m->run.NPATT = 2;
  FillXrayPattern(m->patterns[1]);
  FillXrayPattern(m->patterns[2]);
  m->patterns[2].IXUNIT = AbscissaUnit::kInverseD;
  ControlLines multi;
  AppendPatternBlock(*m, multi);
  EXPECT_TRUE(
      HasRun(multi, {"!NCY  Eps  R_at  R_an  R_pr  R_gl", "  1  0.20  1.00  1.00  1.00  1.00",
                     "!     Thmin       Step       Thmax    PSD    Sent0  -> Patt#:1",
                     "    20.0000     0.0200    60.0000   0.000   0.000", "!"}))
      << Joined(multi);
  EXPECT_FALSE(HasLine(multi, "!     Thmin       Step       Thmax    PSD    Sent0  -> Patt#:2"));
}

TEST(ControlWriter, TimeOfFlightLinesAndMicroabsorption) {
  WriterJob w;
  Pattern& p = w->patterns[1];
  p.IXUNIT = AbscissaUnit::kTimeOfFlight;
  p.Bkpos = 5000.0f;
  p.Wdt = 6.0f;
  p.Iabscor = 1;
  p.THMIN = 2000.0f;
  p.STEP = 100.0f;
  p.THMAX = 3000.0f;
  p.GLB[8] = 5000.0f;
  p.TwoSinTh = 1.2f;
  p.MORE = 1;
  p.GLB[27] = 0.5f;
  p.GLBword[27] = Codeword{4, 1.0f};
  ControlLines lines;
  AppendPatternBlock(*w, lines);
  EXPECT_TRUE(
      HasRun(lines, {"!  Bkpos      Wdt    Iabscor for Pattern#1", "    5000.000  6.0000     1"}))
      << Joined(lines);
  EXPECT_TRUE(
      HasLine(lines, "  1  0.20  1.00  1.00  1.00  1.00    2000.0000    100.0000   3000.0000"))
      << Joined(lines);
  EXPECT_TRUE(
      HasRun(lines, {"!    Zero    Code      Dtt1    Code      Dtt2    Code    2sinTh  -> Patt#1",
                     "     0.000    0.00  5000.000    0.00     0.000    0.00 1.2000000", "!",
                     "! Microabsorption coefficients for Pattern#1",
                     "!   P0    Cod_P0    Cp   Cod_Cp     Tau  Cod_Tau",
                     "  0.5000   41.00  0.0000    0.00  0.0000    0.00"}))
      << Joined(lines);
}

TEST(ControlWriter, BackgroundPointsExclusionsAndScattering) {
  WriterJob w;
  Pattern& p = w->patterns[1];
  FillXrayPattern(p);
  p.NBCKGD = 2;
  p.BackPos[1] = 20.0f;
  p.BackInt[1] = 100.0f;
  p.BackPos[2] = 60.0f;
  p.BackInt[2] = 110.5f;
  p.NEXCRG = 1;
  p.ExclLow[1] = 20.0f;
  p.ExclHigh[1] = 22.5f;
  p.JOBTYP = 1;
  p.NSCAT = 1;
  p.scatteringCount = 1;
  p.scattering[1].NAM = "Fe";
  p.scattering[1].Fprime = 0.945f;
  ControlLines lines;
  AppendPatternBlock(*w, lines);
  EXPECT_TRUE(HasRun(
      lines, {"!2Theta/TOF/E(Kev)   Background  for Pattern#  1", "       20.000      100.000",
              "       60.000      110.500", "! ", "! Excluded regions (LowT  HighT) for Pattern#1",
              "       20.00       22.50", "! ", "! Additional scattering factors for Pattern#1",
              "Fe      0.945    0.000   0", "!"}))
      << Joined(lines);
}

TEST(ControlWriter, IntensityRunsHaveNoInstrumentPointOrGlobalLines) {
  WriterJob w;
  Pattern& p = w->patterns[1];
  FillXrayPattern(p);
  w->run.ICRYG = 1;
  p.NBCKGD = 2;
  p.NEXCRG = 1;
  ControlLines lines;
  AppendPatternBlock(*w, lines);
  const std::vector<std::string> expected = {
      "!",
      "!NCY  Eps  R_at  R_an  R_pr  R_gl     Thmin       Step       Thmax    PSD    Sent0",
      "  1  0.20  1.00  1.00  1.00  1.00     20.0000     0.0200    60.0000   0.000   0.000",
      "!",
      "!",
      "       0    !Number of refined parameters"};
  EXPECT_EQ(lines, expected) << Joined(lines);
}

TEST(ControlWriter, XrayScatteringCoefficientsAndTables) {
  WriterJob w;
  Pattern& p = w->patterns[1];
  FillXrayPattern(p);
  p.NSCAT = 2;
  p.scatteringCount = 2;
  ScatteringEntry& fe = p.scattering[1];
  fe.NAM = "Fe";
  fe.Fprime = 0.1f;
  fe.Fsecond = 3.2f;
  fe.ITAB = 2;  // no coefficient line
  ScatteringEntry& co = p.scattering[2];
  co.NAM = "Co";
  co.ITAB = 1;
  for (int i = 1; i <= 9; ++i) co.coef[i] = 0.5f * static_cast<float>(i);
  ControlLines coefficients;
  AppendPatternBlock(*w, coefficients);
  EXPECT_TRUE(
      HasRun(coefficients, {"! Additional scattering factors for Pattern#1",
                            "Fe      0.100    3.200   2", "Co      0.000    0.000   1",
                            "     0.50000      1.00000      1.50000      2.00000      2.50000"
                            "      3.00000      3.50000      4.00000      4.50000",
                            "!"}))
      << Joined(coefficients);

  p.NSCAT = -1;
  p.scatteringCount = 1;
  fe.tablePoints = 2;
  fe.tableX[1] = 0.0f;
  fe.tableY[1] = 26.0f;
  fe.tableX[2] = 0.5f;
  fe.tableY[2] = 20.5f;
  ControlLines table;
  AppendPatternBlock(*w, table);
  EXPECT_TRUE(HasRun(table, {"Fe      0.100    3.200   2", "   0.000     26.00000",
                             "   0.500     20.50000", "  -100.0", "!"}))
      << Joined(table);
}

TEST(ControlWriter, DebyeFourierAndFileBackgroundLines) {
  WriterJob w;
  Pattern& p = w->patterns[1];
  FillXrayPattern(p);
  p.NBCKGD = 2;
  p.backgroundSign = -1;
  p.FourierWindow = 12.5f;
  ControlLines fourier;
  AppendPatternBlock(*w, fourier);
  EXPECT_TRUE(HasRun(fourier, {"!", "     12.50    Window for Fourier filtering for Pattern#  1"}))
      << Joined(fourier);

  p.NBCKGD = 1;
  p.backgroundSign = 1;
  p.GLB[22] = 2.0f;
  p.GLBword[23] = Codeword{5, 0.5f};
  ControlLines file;
  AppendPatternBlock(*w, file);
  EXPECT_TRUE(HasRun(file, {"!   Background Tranf_coefficients/codes for Pattern#1",
                            "       2.00000       0.00000       0.00000       0.00000",
                            "       0.00000      50.50000       0.00000       0.00000"}))
      << Joined(file);

  p.NBCKGD = 1;
  p.backgroundSign = -1;
  p.GLB[16] = 1.0f;
  ControlLines debye;
  AppendPatternBlock(*w, debye);
  EXPECT_TRUE(
      HasRun(debye, {"!  Additional background coefficients/codes for Pattern#1",
                     " 0.00000E+00 0.00000E+00 0.00000E+00 0.00000E+00 0.00000E+00 0.00000E+00",
                     "       0.000       0.000       0.000       0.000       0.000       0.000",
                     " 0.10000E+01 0.00000E+00 0.00000E+00 0.00000E+00 0.00000E+00 0.00000E+00",
                     "       0.000       0.000       0.000       0.000       0.000       0.000"}))
      << Joined(debye);
}

// A profile-matching phase in pattern 1 with a cubic cell.
void FillPhase(Job& job) {
  Phase& ph = job.phases[1];
  ph.PhaseTitle = "Phase one";
  ph.Jbt = 2;
  ph.SpaceGroupSymbol = "P m 3 m";
  PhasePattern& c = ph.pat[1];
  c.Contribution = 1;
  c.Npr = 6;
  c.PREF[3] = 1.0f;
  c.PAR[1] = 1.0f;
  c.PAR[3] = 0.01f;
  c.PAR[4] = -0.01f;
  c.PAR[5] = 0.01f;
  for (int i = 1; i <= 3; ++i) c.CellConstants[i] = 4.0f;
  for (int i = 4; i <= 6; ++i) c.CellConstants[i] = 90.0f;
  c.PAC[6] = Codeword{3, 1.0f};
  c.PAC[1] = Codeword{1, 1.0f};
  job.reliability.pattern[1].braggR[1] = 12.5f;
}

TEST(ControlWriter, PhaseHeadSinglePattern) {
  WriterJob w;
  FillPhase(*w);
  w->phases[1].More = 1;
  w->phases[1].Jdi = 1;
  w->phases[1].pat[1].Brind = 1.0f;
  ControlLines lines;
  AppendPhaseHead(*w, 1, lines);
  const std::string rule = "!" + std::string(79, '-');
  const std::vector<std::string> expected = {
      rule,
      "!  Data for PHASE number:   1  ==> Current R_Bragg for Pattern#  1:    12.50",
      rule,
      "Phase one",
      "!",
      "!Nat Dis Mom Pr1 Pr2 Pr3 Jbt Irf Isy Str Furth     ATZ   Nvk Npr More",
      "   0   0   0 0.0 0.0 1.0   2   0   0   0   0        0.00   0   5   1",
      "!Jvi Jdi Hel Sol Mom Ter  Brind   RMua    RMub    RMuc   Jtyp",
      "   0   1   0   0   0   0  1.0000  0.0000  0.0000  0.0000   0",
      "P m 3 m                  <--Space group symbol"};
  EXPECT_EQ(lines, expected) << Joined(lines);
}

TEST(ControlWriter, PhaseHeadMultiPatternAndMagneticSymbol) {
  WriterJob w;
  w->run.NPATT = 2;
  FillPhase(*w);
  Phase& ph = w->phases[1];
  ph.Jbt = 10;
  ph.magneticSymmetry = 1;
  ph.ATZ = 12.25f;
  ph.pat[2].Contribution = 0;
  ph.group.NSYM = 2;
  ph.group.ICENT = 2;
  for (int n = 1; n <= 3; ++n) ph.group.magneticSign[n] = n == 2 ? -1 : 1;
  ControlLines lines;
  AppendPhaseHead(*w, 1, lines);
  EXPECT_TRUE(HasRun(lines, {"!Nat Dis Mom Jbt Isy Str Furth     ATZ   Nvk More",
                             "   0   0   0  10   0   0   0    12.2500   0   0",
                             "!Contributions (0/1) of this phase to the 2 patterns", " 1 0",
                             "!Irf Npr Jtyp  for Pattern#1", "   0   5   0",
                             "! Pr1    Pr2    Pr3   Brind.   Rmua   Rmub   Rmuc     for Pattern#1",
                             "  0.000  0.000  1.000  1.000  0.000  0.000  0.000",
                             "P m 3 m              Magnetic symmetry below",
                             "! Time Reversal Operations on Crystal Space Group", "  1 -1  1"}))
      << Joined(lines);
}

TEST(ControlWriter, MultiPatternFurtherFlagsLine) {
  WriterJob w;
  w->run.NPATT = 2;
  FillPhase(*w);
  w->phases[1].More = 1;
  w->phases[1].Jdi = 1;
  w->phases[1].Ter = 2;
  ControlLines lines;
  AppendPhaseHead(*w, 1, lines);
  EXPECT_TRUE(HasRun(
      lines, {"!Nat Dis Mom Jbt Isy Str Furth     ATZ   Nvk More",
              "   0   0   0   2   0   0   0     0.0000   0   1", "!Jvi Jdi Hel Sol Mom Ter ",
              "   0   1   0   0   0   2", "!Contributions (0/1) of this phase to the 2 patterns"}))
      << Joined(lines);
}

TEST(ControlWriter, CentricTimeReversalHasOneSignPerOperator) {
  WriterJob w;
  FillPhase(*w);
  Phase& ph = w->phases[1];
  ph.Jbt = -10;
  ph.magneticSymmetry = 1;
  ph.group.NSYM = 2;
  ph.group.ICENT = 1;
  for (int n = 1; n <= 3; ++n) ph.group.magneticSign[n] = -1;
  ControlLines lines;
  AppendPhaseHead(*w, 1, lines);
  EXPECT_TRUE(HasRun(lines, {"P m 3 m              Magnetic symmetry below",
                             "! Time Reversal Operations on Crystal Space Group", " -1 -1"}))
      << Joined(lines);
  EXPECT_EQ(lines.back(), " -1 -1");
}

TEST(ControlWriter, NumericAndTextOperatorLines) {
  WriterJob w;
  FillPhase(*w);
  Phase& ph = w->phases[1];
  ph.Jbt = 1;
  ph.Isy = 1;
  SpaceGroup& g = ph.group;
  g.NSYM = 2;
  g.ICENT = 1;
  g.LAUE = 2;
  g.NMAGM = 1;
  g.isl[1] = 1;
  g.isl[2] = -2;  // minus (-x,-y,z): the mirror (x,y,-z)
  g.translation(3, 2) = 0.5f;
  g.magneticRotation(1, 1) = 1;
  g.magneticRotation(1, 2) = 2;
  g.magneticPhase(1, 2) = 0.25f;
  ControlLines lines;
  AppendPhaseHead(*w, 1, lines);
  EXPECT_TRUE(
      HasRun(lines, {"!Nsym Cen Laue MagMat", "   2   1   2   1",
                     "!S11 S12 S13     T1        S21 S22 S23     T2    S31 S32 S33       T3",
                     "   1   0   0    0.000000   0   1   0    0.000000   0   0   1    0.000000",
                     "!M11 M12 M13  M21 M22 M23  M31 M32 M33     Ph",
                     "   1   0   0   0   1   0   0   0   1    0.000000",
                     "   1   0   0    0.000000   0   1   0    0.000000   0   0  -1    0.500000",
                     "!M11 M12 M13  M21 M22 M23  M31 M32 M33     Ph",
                     "  -1   0   0   0  -1   0   0   0   1    0.250000"}))
      << Joined(lines);

  ph.Isy = -1;
  g.operatorText[1] = "SYMM x,y,z";
  g.operatorText[2] = "SYMM x,y,-z+1/2";
  ControlLines text;
  AppendPhaseHead(*w, 1, text);
  EXPECT_TRUE(HasRun(text, {"   2   1   2   1", "SYMM x,y,z", "MSYM u,v,w,0", "SYMM x,y,-z+1/2",
                            "MSYM -u,-v,w,0"}))
      << Joined(text);
}

AtomSite Atom(const std::string& label, const std::string& species) {
  AtomSite a;
  a.label = label;
  a.species = species;
  return a;
}

TEST(ControlWriter, CrystalAtomsWithBetasAndFormFactors) {
  WriterJob w;
  FillPhase(*w);
  Phase& ph = w->phases[1];
  ph.Jbt = 0;
  ph.Nat = 2;
  AtomSite fe = Atom("Fe", "FE");
  fe.ATP[1] = 0.125f;
  fe.ATP[2] = 0.25f;
  fe.ATP[3] = 0.5f;
  fe.ATP[4] = 0.5f;
  fe.ATP[5] = 1.0f;
  fe.N_t = 2;
  fe.In = 1;
  fe.Fin = 4;
  fe.ATC[1] = Codeword{1, 1.0f};
  fe.ATC[2] = Codeword{1, -1.0f};
  fe.ATP[13] = 0.001f;
  fe.ATC[13] = Codeword{2, 0.5f};
  AtomSite o = Atom("O1", "O");
  o.N_t = 4;
  o.ATP[19] = 1.5f;
  o.ATC[32] = Codeword{6, 1.0f};
  w->atoms[1] = fe;
  w->atoms[2] = o;
  ControlLines lines;
  AppendAtomLines(*w, 1, lines);
  const std::string zeros9 = "     0.00";
  const std::vector<std::string> expected = {
      "!Atom Typ       X        Y        Z     Biso      Occ     In Fin N_t  /Codes",
      "!    beta11   beta22   beta33   beta12   beta13   beta23  /Codes",
      "Fe   FE      0.12500  0.25000  0.50000  0.50000  1.00000   1   4   2",
      Blanks(11) + "    11.00   -11.00" + zeros9 + zeros9 + zeros9,
      "    0.00100  0.00000  0.00000  0.00000  0.00000  0.00000",
      "      20.50" + zeros9 + zeros9 + zeros9 + zeros9 + zeros9,
      "O1   O       0.00000  0.00000  0.00000  0.00000  0.00000   0   0   4",
      Blanks(11) + zeros9 + zeros9 + zeros9 + zeros9 + zeros9,
      "! Form-factor refinable parameters",
      "    1.50000  0.00000  0.00000  0.00000  0.00000  0.00000  0.00000",
      "  " + zeros9 + zeros9 + zeros9 + zeros9 + zeros9 + zeros9 + zeros9,
      "    0.00000  0.00000  0.00000  0.00000  0.00000  0.00000  0.00000",
      "  " + zeros9 + zeros9 + zeros9 + zeros9 + zeros9 + zeros9 + "    61.00"};
  EXPECT_EQ(lines, expected) << Joined(lines);
}

TEST(ControlWriter, SearchRunsKeepTheTypedAtomCodes) {
  WriterJob w;
  FillPhase(*w);
  w->phases[1].Jbt = 0;
  w->phases[1].Nat = 1;
  w->run.ICRYG = 2;
  AtomSite a = Atom("C", "C");
  a.ATCtyped[1] = 7.0f;
  a.ATC[1] = Codeword{0, 7.0f};
  a.ATC[2] = Codeword{5, 1.0f};
  w->atoms[1] = a;
  ControlLines lines;
  AppendAtomLines(*w, 1, lines);
  EXPECT_EQ(lines.back(), Blanks(11) + "     7.00     0.00     0.00     0.00     0.00");
}

TEST(ControlWriter, MagneticAtomRows) {
  WriterJob w;
  FillPhase(*w);
  w->phases[1].Jbt = 1;
  w->phases[1].Nat = 1;
  AtomSite a = Atom("Mn1", "MMN2");
  a.Mag = 1;
  a.Vek = 1;
  a.ATP[4] = 0.5f;
  a.ATP[5] = 1.0f;
  a.ATP[6] = 1.5f;
  a.ATP[8] = -2.0f;
  a.ATP[12] = 0.25f;
  a.ATC[6] = Codeword{5, 1.0f};
  a.ATC[12] = Codeword{7, 1.0f};
  w->atoms[1] = a;
  ControlLines lines;
  AppendAtomLines(*w, 1, lines);
  const std::string z8 = "    0.00";
  const std::vector<std::string> expected = {
      "!Atom Typ  Mag Vek    X      Y      Z       Biso   Occ      Rx      Ry      Rz",
      "!     Ix     Iy     Iz    beta11  beta22  beta33   MagPh",
      "Mn1  MMN2  1  1  0.00000 0.00000 0.00000 0.50000 1.00000   1.500   0.000  -2.000",
      Blanks(16) + z8 + z8 + z8 + z8 + z8 + "   51.00" + z8 + z8,
      "   0.000   0.000   0.000   0.000   0.000   0.000 0.25000",
      z8 + z8 + z8 + z8 + z8 + z8 + "   71.00"};
  EXPECT_EQ(lines, expected) << Joined(lines);

  w->phases[1].Jbt = -1;
  ControlLines spherical;
  AppendAtomLines(*w, 1, spherical);
  EXPECT_EQ(spherical[0],
            "!Atom Typ  Mag Vek    X      Y      Z       Biso   Occ      Rm      Rphi  Rtheta");
  EXPECT_EQ(spherical[1], "!     Im   Iphi   Itheta  beta11  beta22  beta33   MagPh");
  w->phases[1].Jbt = 5;
  ControlLines cone;
  AppendAtomLines(*w, 1, cone);
  EXPECT_EQ(cone[0],
            "!Atom Typ  Mag Vek    X      Y      Z       Biso   Occ      Mom     beta   Phase");
  EXPECT_EQ(cone[1], "!   Phi & Theta  of Cone-axis + unused params");
}

TEST(ControlWriter, CrystalAndMagneticAtomRows) {
  WriterJob w;
  FillPhase(*w);
  w->phases[1].Jbt = 10;
  w->phases[1].Nat = 2;
  AtomSite a = Atom("Fe1", "MFE3");
  a.Mag = 1;
  a.Vek = 1;
  a.N_t = 3;
  a.ATP[1] = 0.5f;
  a.ATP[6] = 2.5f;
  a.ATP[13] = 0.002f;
  a.ATC[1] = Codeword{1, 0.5f};
  a.ATC[6] = Codeword{2, 1.0f};
  a.ATC[18] = Codeword{3, -1.0f};
  w->atoms[1] = a;
  w->atoms[2] = Atom("O", "O");
  ControlLines lines;
  AppendAtomLines(*w, 1, lines);
  const std::string z10 = "      0.00";
  const std::string f10 = "   0.00000";
  const std::vector<std::string> expected = {
      "!Atom Typ    Mag Vek      X         Y         Z       Biso      Occ    N_type",
      "!Line below:Codes",
      "!     Rx       Ry        Rz        Ix        Iy        Iz      MagPh",
      "!Line below:Codes or...",
      "!    beta11   beta22   beta33   beta12   beta13   beta23  /Line below:Codes",
      "Fe1  MFE3      1  1    0.50000" + f10 + f10 + f10 + f10 + "    3",
      Blanks(20) + "     10.50" + z10 + z10 + z10 + z10,
      "   2.50000" + f10 + f10 + f10 + f10 + f10 + f10 + " <-MagPar",
      "     21.00" + z10 + z10 + z10 + z10 + z10 + z10,
      "   0.00200" + f10 + f10 + f10 + f10 + f10 + " <-Betas",
      z10 + z10 + z10 + z10 + z10 + "    -31.00",
      "O    O         0  0 " + f10 + f10 + f10 + f10 + f10 + "    0",
      Blanks(20) + z10 + z10 + z10 + z10 + z10};
  EXPECT_EQ(lines, expected) << Joined(lines);
  w->phases[1].Jbt = -10;
  ControlLines spherical;
  AppendAtomLines(*w, 1, spherical);
  EXPECT_EQ(spherical[2], "!     Rm      Rphi   Rtheta        Im       Rphi     Rtheta      MagPh");
}

TEST(ControlWriter, ModelAtomRows) {
  WriterJob w;
  FillPhase(*w);
  w->phases[1].Jbt = -4;
  w->phases[1].Nat = 1;
  AtomSite a = Atom("R1", "C");
  for (int j = 1; j <= 16; ++j) a.ATP[j] = 0.5f * static_cast<float>(j);
  a.ATC[8] = Codeword{1, 1.0f};
  a.ATC[15] = Codeword{2, 1.0f};
  a.ATC[16] = Codeword{3, 1.0f};  // slot 16 has no code in the file
  w->atoms[1] = a;
  ControlLines lines;
  AppendAtomLines(*w, 1, lines);
  const std::vector<std::string> expected = {
      "!Atom Typ      p1       p2       p3      p4     p5      p6     p7     p8",
      "!     p9        p10     p11      p12       p13      p14      p15     p16",
      "R1   C       0.50000  1.00000  1.50000  2.00000  2.50000   3.000   3.500   4.000",
      Blanks(11) + "     0.00     0.00     0.00     0.00     0.00    0.00    0.00   11.00",
      "    4.50000  5.00000  5.50000  6.00000  6.50000  7.00000  7.50000  8.00000",
      "       0.00     0.00     0.00     0.00     0.00     0.00    21.00"};
  EXPECT_EQ(lines, expected) << Joined(lines);
}

TEST(ControlWriter, CommentedProfileLinesWithSplitFunction) {
  WriterJob w;
  FillPhase(*w);
  w->phases[1].pat[1].Npr = 12;
  w->phases[1].pat[1].PAR[46] = 0.02f;
  ControlLines lines;
  AppendProfileLines(*w, 1, 1, lines);
  const std::string c9 = "     0.00";
  const std::vector<std::string> expected = {
      "!-------> Profile Parameters for Pattern #  1",
      "!  Scale       Shape1      Bov     Str1     Str2     Str3    Strain-Model",
      " 0.10000E+01   0.0000   0.0000   0.0000   0.0000   0.0000       0",
      "    11.00000" + c9 + c9 + c9 + c9 + c9,
      "!      Ul       Vl        Wl         Xl        Y       GauSiz   LorSiz Size-Model",
      "   0.01000  -0.01000   0.01000   0.00000   0.00000   0.00000   0.00000   0",
      "      0.00      0.00      0.00      0.00      0.00      0.00      0.00",
      "!      Ur       Vr        Wr       Etar0       Xr   ",
      "   0.02000   0.00000   0.00000   0.00000   0.00000",
      "      0.00      0.00      0.00      0.00      0.00",
      "!     a          b         c        alpha      beta       gamma",
      "   4.000000   4.000000   4.000000  90.000000  90.000000  90.000000",
      "   31.00000    0.00000    0.00000    0.00000    0.00000    0.00000",
      "!  Pref1  Pref2   Asy1    Asy2    Asy3     Asy4",
      " 0.00000 0.00000 0.00000 0.00000 0.00000 0.00000",
      "    0.00    0.00    0.00    0.00    0.00    0.00",
      "!Additional Shape parameters",
      "   0.00000    0.00   0.00000    0.00            SHAPE: SHP1 CSHP1 & SHP2 CSHP2"};
  EXPECT_EQ(lines, expected) << Joined(lines);
}

TEST(ControlWriter, PlainProfileLinesCarryTheirRemarks) {
  WriterJob w;
  FillPhase(*w);
  w->run.commentedOutput = 0;
  w->phases[1].Sol = 1;
  w->phases[1].ModA = 2;
  w->phases[1].pat[1].PAR[38] = 0.1f;
  ControlLines lines;
  AppendProfileLines(*w, 1, 1, lines);
  const std::string c8 = "    0.00";
  const std::vector<std::string> expected = {
      " 0.10000E+01  0.0000  0.0000  0.0000  0.0000  0.0000   0   Scale ETA Bov Strain",
      "    11.00000" + c8 + c8 + c8 + c8 + c8,
      " 0.01000 -0.0100 0.01000  0.0000  0.0000  0.0000  0.0000   0   U V W X Y Siz12",
      c8 + c8 + c8 + c8 + c8 + c8 + c8,
      "   4.000000   4.000000   4.000000  90.000000  90.000000  90.000000",
      "   31.00000    0.00000    0.00000    0.00000    0.00000    0.00000",
      " 0.00000 0.00000 0.00000 0.00000 0.00000 0.00000",
      c8 + c8 + c8 + c8 + c8 + c8,
      "   0.10000   0.00000   0.00000    2    0" + Blanks(20) + "ASYM, SHIFTS",
      "      0.00      0.00      0.00"};
  EXPECT_EQ(lines, expected) << Joined(lines);
}

TEST(ControlWriter, IntegratedIntensityProfileLines) {
  WriterJob w;
  FillPhase(*w);
  PhasePattern& c = w->phases[1].pat[1];
  c.Irf = 4;
  c.PAR[12] = 2.0f;
  c.PAR[13] = 0.5f;
  ControlLines lines;
  AppendProfileLines(*w, 1, 1, lines);
  EXPECT_TRUE(HasRun(
      lines,
      {"!  Scale Factors ", "!  Sc1       Sc2        Sc3        Sc4        Sc5        Sc6",
       " 0.1000E+01 0.0000E+00 0.1000E-01  -0.100000E-01 0.1000E-01 0.2000E+01",
       "     11.00      0.00      0.00      0.00      0.00      0.00", "!  Extinction Parameters ",
       "!    Ext1      Ext2      Ext3      Ext4      Ext5      Ext6      Ext7",
       "    0.5000    0.0000    0.0000    0.0000    0.0000    0.0000    0.0000"}))
      << Joined(lines);
  EXPECT_TRUE(
      HasRun(lines, {"!  Not yet used parameters", " 0.00000 0.00000 0.00000 0.00000 0.00000",
                     "    0.00    0.00    0.00    0.00    0.00"}))
      << Joined(lines);
}

TEST(ControlWriter, TimeOfFlightProfileLines) {
  WriterJob w;
  FillPhase(*w);
  w->patterns[1].IXUNIT = AbscissaUnit::kTimeOfFlight;
  w->phases[1].pat[1].Npr = 10;
  w->phases[1].pat[1].PAR[41] = 0.5f;
  ControlLines lines;
  AppendProfileLines(*w, 1, 1, lines);
  EXPECT_TRUE(HasRun(
      lines, {"!  Scale       Extinc      Bov     Str1     Str2     Str3    Strain-Model",
              " 0.10000E+01   0.0000   0.0000   0.0000   0.0000   0.0000       0",
              "    11.00000     0.00     0.00     0.00     0.00     0.00",
              "!    Sig-2     Sig-1     Sig-0       Xt        Yt        Z1     Z0     Size-Model",
              "     0.010    -0.010     0.010     0.000     0.000     0.000     0.000   0",
              "      0.00      0.00      0.00      0.00      0.00      0.00      0.00",
              "!    Gam-2     Gam-1     Gam-0     LStr       LSiz  ",
              "     0.000     0.000     0.000     0.000     0.000",
              "      0.00      0.00      0.00      0.00      0.00"}))
      << Joined(lines);
  EXPECT_TRUE(HasLine(lines, "!  Pref1  Pref2   alph0    beta0   alph1   beta1"));
  EXPECT_TRUE(
      HasRun(lines, {"!Absorption correction parameters",
                     "   0.50000    0.00   0.00000    0.00            ABS: ABSCOR1  ABSCOR2"}))
      << Joined(lines);
}

TEST(ControlWriter, ModelAxesVectorsFurtherAndGeneralizedLines) {
  WriterJob w;
  FillPhase(*w);
  Phase& ph = w->phases[1];
  PhasePattern& c = ph.pat[1];
  w->patterns[1].separateUVW2 = true;
  c.PAR[43] = 0.03f;
  ph.Sol = 1;
  ph.ModS = -1;
  ph.ShiftAxis[3] = 1.0f;
  c.SizeModel = -1;
  ph.SizeAxis[1] = 1.0f;
  c.StrainModel = 7;
  ph.StrainAxis[2] = 1.0f;
  ph.Nvk = 1;
  ph.vectors[1].KVEC[1] = 0.5f;
  ph.vectors[1].KCODE[1] = Codeword{4, 1.0f};
  ph.Furth = 1;
  ph.FurtherName[1] = "Ab1";
  c.PAR[60] = 1.25f;
  c.PAC[60] = Codeword{5, 1.0f};
  ph.Str = 3;
  c.PAR[18] = 0.001f;
  ControlLines lines;
  AppendProfileLines(*w, 1, 1, lines);
  EXPECT_TRUE(HasRun(lines, {"!Additional U,V,W parameters for Lambda2",
                             "   0.03000   0.00000   0.00000   <--  U2,V2,W2 for lambda(2) ",
                             "   0.00000   0.00000   0.00000"}))
      << Joined(lines);
  EXPECT_TRUE(HasRun(
      lines, {"!     AsyP    Shift1    Shift2  ModA ModS",
              "   0.00000   0.00000   0.00000    0   -1", "      0.00      0.00      0.00",
              "  0.0000  0.0000  1.0000" + Blanks(12) + " Shift-cos(1) or Shift-sin(-1) axis",
              "  1.0000  0.0000  0.0000" + Blanks(12) + " Platelet-Needle vector (Size)",
              "  0.0000  1.0000  0.0000" + Blanks(12) + " Axial vector for microstrains",
              "! Propagation vectors: ",
              "   0.5000000   0.0000000   0.0000000" + Blanks(10) + "Propagation Vector  1",
              "   41.000000    0.000000    0.000000", "! Further parameters: ",
              "Ab1       1.250000     51.000000", "! Additional strain parameters:",
              "   0.10000E-02   0.00000E+00   0.00000E+00   0.00000E+00   0.00000E+00",
              "       0.00000       0.00000       0.00000       0.00000       0.00000",
              "   0.00000E+00   0.00000E+00   0.00000E+00   0.00000E+00   0.00000E+00",
              "       0.00000       0.00000       0.00000       0.00000       0.00000",
              "! Generalized strain+size parameters:",
              "  0.0000E+00  0.0000E+00  0.0000E+00  0.0000E+00  0.0000E+00  0.0000E+00",
              "      0.0000      0.0000      0.0000      0.0000      0.0000      0.0000"}))
      << Joined(lines);
}

TEST(ControlWriter, HarmonicSizeAndExtraStrainLines) {
  WriterJob w;
  FillPhase(*w);
  PhasePattern& c = w->phases[1].pat[1];
  c.SizeModel = 15;
  c.StrainModel = 9;
  c.PAR[51] = 0.5f;
  c.PAR[21] = 2.0f;
  ControlLines lines;
  AppendProfileLines(*w, 1, 1, lines);
  const std::string z11 = "   0.000000";
  const std::string z14 = "       0.00000";
  EXPECT_TRUE(
      HasRun(lines, {"!   Y00        Y22+        Y22-       Y20         Y44+      Y44-",
                     "   0.500000" + z11 + z11 + z11 + z11 + z11, z11 + z11 + z11 + z11 + z11 + z11,
                     "!   Y42+       Y42-        Y40", z11 + z11 + z11, z11 + z11 + z11,
                     "! 5 additional strain parameters (Istrainmodel>8)",
                     "       2.00000" + z14 + z14 + z14 + z14, z14 + z14 + z14 + z14 + z14}))
      << Joined(lines);
  c.SizeModel = 16;
  c.StrainModel = 8;  // no extra line: the test is above 8
  ControlLines trigonal;
  AppendProfileLines(*w, 1, 1, trigonal);
  EXPECT_TRUE(
      HasLine(trigonal, "!   Y00        Y20         Y40        Y43-        Y60       Y63 "));
  EXPECT_TRUE(HasLine(trigonal, "!   Y66+ "));
  EXPECT_FALSE(HasLine(trigonal, "! 5 additional strain parameters (Istrainmodel>8)"));
}

TEST(ControlWriter, GeneralizedStrainAloneHasNoSizeTerms) {
  WriterJob w;
  FillPhase(*w);
  w->phases[1].Str = 1;
  ControlLines lines;
  AppendProfileLines(*w, 1, 1, lines);
  EXPECT_TRUE(HasLine(lines, "! Additional strain parameters:")) << Joined(lines);
  EXPECT_FALSE(HasLine(lines, "! Generalized strain+size parameters:")) << Joined(lines);
  EXPECT_FALSE(HasLine(lines, "! Generalized size parameters:")) << Joined(lines);
  EXPECT_EQ(lines.back(), "       0.00000       0.00000       0.00000       0.00000       0.00000");
}

TEST(ControlWriter, GeneralizedSizeAlone) {
  WriterJob w;
  FillPhase(*w);
  w->phases[1].Str = 2;
  ControlLines lines;
  AppendProfileLines(*w, 1, 1, lines);
  EXPECT_TRUE(HasLine(lines, "! Generalized size parameters:"));
  EXPECT_FALSE(HasLine(lines, "! Additional strain parameters:"));
}

TEST(ControlWriter, ClosingLines) {
  WriterJob w;
  w->run.NRELL = 1;
  w->limits.limited[2] = 1;
  w->limits.low[2] = -0.5f;
  w->limits.high[2] = 0.5f;
  w->run.ICRYG = 2;
  w->run.Nconfg = 1000;
  w->run.Nsolu = 5;
  w->run.Num_Ref = 40;
  w->run.Nscalef = 1;
  w->patterns[1].IPL = 1;
  w->run.JCIL = 2;
  ControlLines lines;
  AppendClosingLines(*w, {100, 50, 10.0f, 80.0f}, lines);
  const std::vector<std::string> expected = {"! Hard limits for selected parameters:",
                                             "   2     -0.5000      0.5000",
                                             "! Nconfg   Nsolu  Num_Ref  Nscalef",
                                             "    1000       5      40       1",
                                             "! Iscale    Idif   --> Pattern#1",
                                             "     100      50",
                                             "!  2Th1    2Th2  ",
                                             "   10.00   80.00"};
  EXPECT_EQ(lines, expected) << Joined(lines);
}

TEST(ControlWriter, AtomCoordinateFileOfAMagneticPhase) {
  WriterJob w;
  FillPhase(*w);
  Phase& ph = w->phases[1];
  ph.Jbt = 1;
  ph.Nvk = 1;
  ph.vectors[1].KVEC[3] = 0.5f;
  const std::vector<std::string> expected = {
      "TITLE  Atom coordinates of phase no:1",
      "CELL    4.000000   4.000000   4.000000  90.000000  90.000000  90.000000",
      "SPGR P m 3 m",
      "JBTV    1",
      "VECK    1",
      "Vk_1  0.00000  0.00000  0.50000"};
  EXPECT_EQ(AtomCoordinateLines(*w, 1), expected);
  ph.Jbt = 0;
  EXPECT_EQ(AtomCoordinateLines(*w, 1).size(), 3u);
}

// The jobs of these tests are built in memory, without the data files a
// reading needs: the replacement of the file is tested with a check that
// accepts every text (the check itself is tested in control_read_back_test).
ReadBackResult AcceptEveryText(const Job&, const std::string&, const ControlLines&,
                               const ControlEndValues&) {
  return {true, ""};
}

ReadBackResult RefuseEveryText(const Job&, const std::string&, const ControlLines&,
                               const ControlEndValues&) {
  return {false, " => Line 7 reads back as:"};
}

TEST(ControlWriter, NewFileAndAtomFileAreWritten) {
  ScratchDir dir;
  WriterJob w;
  w->driver.PcrCode = "x";
  FillPhase(*w);
  w->phases[1].Jdi = 1;
  w->run.NXT = 2;
  WriteControlFile(*w, {}, AcceptEveryText);
  const ControlLines lines = ControlFileLines(*w, {});
  EXPECT_EQ(dir.Read("x.new"), Joined(lines));
  EXPECT_EQ(dir.Read("x1.atm"), Joined(AtomCoordinateLines(*w, 1)));
}

TEST(ControlWriter, OverwrittenControlFileEndsWithTheNewText) {
  ScratchDir dir;
  WriterJob w;
  w->driver.PcrCode = "x";
  FillPhase(*w);
  dir.Write("x.pcr", std::string(20000, '!') + "\n");
  ASSERT_TRUE(OpenUnit(w->files.units[Unit::Control], "x.pcr", OpenStatus::Old));
  w->run.NXT = 1;
  WriteControlFile(*w, {}, AcceptEveryText);
  EXPECT_EQ(dir.Read("x.pcr"), Joined(ControlFileLines(*w, {})));
}

TEST(ControlWriter, OverwrittenControlFileLeavesNoTemporaryFileAndClosesItsUnit) {
  ScratchDir dir;
  WriterJob w;
  w->driver.PcrCode = "x";
  FillPhase(*w);
  dir.Write("x.pcr", "old\n");
  ASSERT_TRUE(OpenUnit(w->files.units[Unit::Control], "x.pcr", OpenStatus::Old));
  w->run.NXT = 1;
  WriteControlFile(*w, {}, AcceptEveryText);
  EXPECT_EQ(dir.Read("x.pcr"), Joined(ControlFileLines(*w, {})));
  EXPECT_FALSE(dir.Exists("x.pcr.tmp"));
  EXPECT_FALSE(IsOpen(w->files.units[Unit::Control]));
}

TEST(ControlWriter, TextThatDoesNotReadBackLeavesTheOldFileWithAWarning) {
  ScratchDir dir;
  WriterJob w;
  w->driver.PcrCode = "x";
  FillPhase(*w);
  dir.Write("x.pcr", "old\n");
  ASSERT_TRUE(OpenUnit(w->files.units[Unit::Control], "x.pcr", OpenStatus::Old));
  w->run.NXT = 1;
  EXPECT_TRUE(
      testing::RunsWithoutStop(*w, [](Job& j) { WriteControlFile(j, {}, RefuseEveryText); }));
  EXPECT_EQ(dir.Read("x.pcr"), "old\n");
  EXPECT_FALSE(dir.Exists("x.pcr.tmp"));
  const std::string console = w.job.Console();
  EXPECT_NE(console.find(" => The new control file does not read back:"), std::string::npos);
  EXPECT_NE(console.find(" => Line 7 reads back as:"), std::string::npos);
  EXPECT_NE(console.find(" => The old control file is kept"), std::string::npos);
}

TEST(ControlWriter, NonFiniteValueStopsAsDivergedAndLeavesTheOldFile) {
  ScratchDir dir;
  WriterJob w;
  w->driver.PcrCode = "x";
  FillPhase(*w);
  w->phases[1].pat[1].PAR[ProfileSlot::W] = std::nanf("");
  dir.Write("x.pcr", "old\n");
  ASSERT_TRUE(OpenUnit(w->files.units[Unit::Control], "x.pcr", OpenStatus::Old));
  w->run.NXT = 1;
  EXPECT_FALSE(
      testing::RunsWithoutStop(*w, [](Job& j) { WriteControlFile(j, {}, AcceptEveryText); }));
  EXPECT_EQ(dir.Read("x.pcr"), "old\n");
  EXPECT_NE(w.job.Console().find(" => A value of the new control file is not a finite number"),
            std::string::npos);
  EXPECT_NE(w.job.Console().find(" => The refinement diverged: the old control file is kept"),
            std::string::npos);
}

TEST(ControlWriter, WriteFailureStopsTheRunAndLeavesTheOldFile) {
  ScratchDir dir;
  WriterJob w;
  w->driver.PcrCode = "x";
  FillPhase(*w);
  dir.Write("x.pcr", "old\n");
  // The temporary file cannot be made where a directory holds its name.
  std::filesystem::create_directory(dir.path / "x.pcr.tmp");
  ASSERT_TRUE(OpenUnit(w->files.units[Unit::Control], "x.pcr", OpenStatus::Old));
  w->run.NXT = 1;
  EXPECT_FALSE(testing::RunsWithoutStop(*w, [](Job& j) { WriteControlFile(j, 0, 0, 0.0f, 0.0f); }));
  EXPECT_NE(w.job.Console().find(" Error writing the new control file"), std::string::npos)
      << w.job.Console();
  EXPECT_NE(w.job.Console().find(" => Error writing file: x.pcr"), std::string::npos);
  EXPECT_EQ(dir.Read("x.pcr"), "old\n");
}

}  // namespace
}  // namespace corvinet
