// Round trips of whole control files: read, write the new file, read it again, same model.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "control/control_writer.h"
#include "control/run_block.h"
#include "format/text.h"
#include "records/profile_slots.h"
#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

// Flat data over 20 to 60 degrees in steps of 0.02, free format.
std::string FlatData() {
  std::string data = "20.0 0.02 60.0\n";
  for (int i = 1; i <= 2001; ++i) data += i % 10 == 0 ? "100\n" : "100 ";
  return data + "\n";
}

// Pieces of a single-pattern control file, changed by each test.
struct SingleCase {
  std::string title = "COMM Round trip";
  std::string job = "0 5 1 0 0 0 0 0 0 0 0 0 0 1 0 0 0";
  std::string output = "0 0 1 0 2 0 0 0 0 1 0 0 0 0 0 0 0";
  std::string instrument = "1.5406 1.5444 0.5 40.0 8.0 0.8 0.0 30.0 0.0";
  std::string cycle = "3 0.1 1 1 1 1 20.0 0.02 60.0 0 0";
  std::string points;
  std::string scattering;
  std::string maxs = "3";
  std::string globals = "0.01 11.0 0.0 0.0 0.0 0.0 0.0 0.0 0";
  std::string background = "100 2 3 4 5 6\n21.0 0 0 0 0 0";
  std::string flags = "0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0";
  std::string symbol = "P m 3 m";
  std::string widths =
      "1.0 0.0 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n"
      "0.01 -0.01 0.01 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0 0";
  std::string cell = "4.0 4.0 4.0 90 90 90\n31.0 0 0 0 0 0";
  std::string asymmetry = "0 0 0 0 0 0\n0 0 0 0 0 0";
  std::string more;
  std::string limits = "1 -0.5 0.5";
  std::string Text() const {
    std::string t = title + "\n" + job + "\n" + output + "\n";
    if (!instrument.empty()) t += instrument + "\n";
    t += cycle + "\n" + points + scattering + maxs + "\n";
    if (!globals.empty()) t += globals + "\n";
    if (!background.empty()) t += background + "\n";
    t += "Phase one\n" + flags + "\n" + symbol + "\n" + widths + "\n" + cell + "\n" + asymmetry +
         "\n" + more;
    if (!limits.empty()) t += limits + "\n";
    return t;
  }
};

bool Near(float a, float b) {
  return std::fabs(a - b) <= 1.0e-4f + 1.0e-5f * std::fabs(a);
}

void ExpectSameCode(const Codeword& a, const Codeword& b, const std::string& where) {
  EXPECT_EQ(a.parameterNumber, b.parameterNumber) << where;
  EXPECT_TRUE(Near(a.multiplier, b.multiplier))
      << where << ": " << a.multiplier << " " << b.multiplier;
}

#define EXPECT_SAME(field) EXPECT_EQ(a.field, b.field) << #field
#define EXPECT_CLOSE(field) \
  EXPECT_TRUE(Near(a.field, b.field)) << #field << ": " << a.field << " " << b.field

void ExpectSameRun(const RunOptions& a, const RunOptions& b) {
  EXPECT_SAME(Title);
  EXPECT_SAME(NPATT);
  EXPECT_SAME(NPHASE);
  EXPECT_SAME(IDUM);
  EXPECT_SAME(IASG);
  EXPECT_SAME(NRELL);
  EXPECT_SAME(ICRYG);
  EXPECT_SAME(MAT);
  EXPECT_SAME(NXT);
  EXPECT_SAME(IPL1);
  EXPECT_SAME(JCIL);
  EXPECT_SAME(JSY);
  EXPECT_SAME(ISHOR);
  EXPECT_SAME(NCY);
  EXPECT_SAME(MAXS);
  EXPECT_SAME(singlePatternForm);
  EXPECT_CLOSE(EPS);
  for (int i = 1; i <= 4; ++i) EXPECT_CLOSE(relaxationFactor[i]);
}

void ExpectSamePatternFlags(const Pattern& a, const Pattern& b) {
  EXPECT_CLOSE(W_PAT);
  EXPECT_SAME(DatCode);
  EXPECT_SAME(JOBTYP);
  EXPECT_SAME(NPROF);
  EXPECT_SAME(NBCKGD);
  EXPECT_SAME(backgroundSign);
  EXPECT_SAME(noBackgroundPoints);
  EXPECT_SAME(NEXCRG);
  EXPECT_SAME(NSCAT);
  EXPECT_SAME(NORI);
  EXPECT_SAME(IWGT);
  EXPECT_SAME(ILOR);
  EXPECT_SAME(IASYM);
  EXPECT_SAME(IRESO);
  EXPECT_SAME(ISTEP);
  EXPECT_SAME(IXUNIT);
  EXPECT_SAME(ICORR);
  EXPECT_SAME(IOT);
  EXPECT_SAME(IPL);
  EXPECT_SAME(IPC);
  EXPECT_SAME(LST1);
  EXPECT_SAME(LST2);
  EXPECT_SAME(LST3);
  EXPECT_SAME(IPL2);
  EXPECT_SAME(INSTR);
  EXPECT_SAME(JLKH);
  EXPECT_SAME(JFOU);
  EXPECT_SAME(IANALY);
}

void ExpectSamePatternValues(const Pattern& a, const Pattern& b) {
  for (int i = 1; i <= 2; ++i) {
    EXPECT_CLOSE(LAMBDA[i]);
    EXPECT_CLOSE(RATIO[i]);
  }
  EXPECT_SAME(separateUVW2);
  EXPECT_CLOSE(Bkpos);
  EXPECT_CLOSE(Wdt);
  EXPECT_CLOSE(Cthm);
  EXPECT_CLOSE(muR);
  EXPECT_CLOSE(AsyLim);
  EXPECT_CLOSE(Rpolarz);
  EXPECT_SAME(Iabscor);
  EXPECT_CLOSE(THMIN);
  EXPECT_CLOSE(STEP);
  EXPECT_CLOSE(THMAX);
  EXPECT_CLOSE(PSD);
  EXPECT_CLOSE(Sent0);
  EXPECT_SAME(MORE);
  EXPECT_CLOSE(TwoSinTh);
  EXPECT_CLOSE(FourierWindow);
  EXPECT_SAME(NPTS);
  for (int s = 1; s <= DimensionLimits::NGL; ++s) {
    EXPECT_CLOSE(GLB[s]);
    ExpectSameCode(a.GLBword[s], b.GLBword[s], "GLB " + std::to_string(s));
  }
  for (int j = 1; j <= a.NBCKGD; ++j) {
    EXPECT_CLOSE(BackPos[j]);
    EXPECT_CLOSE(BackInt[j]);
    EXPECT_CLOSE(BackIntCode[j]);
  }
  for (int j = 1; j <= a.NEXCRG; ++j) {
    EXPECT_CLOSE(ExclLow[j]);
    EXPECT_CLOSE(ExclHigh[j]);
  }
  for (int j = 1; j <= a.scatteringCount; ++j) {
    const ScatteringEntry& x = a.scattering[j];
    const ScatteringEntry& y = b.scattering[j];
    EXPECT_EQ(x.NAM, y.NAM);
    EXPECT_TRUE(Near(x.Fprime, y.Fprime));
    EXPECT_TRUE(Near(x.Fsecond, y.Fsecond));
    EXPECT_EQ(x.ITAB, y.ITAB);
    EXPECT_EQ(x.tablePoints, y.tablePoints);
    for (int i = 1; i <= 9; ++i) EXPECT_TRUE(Near(x.coef[i], y.coef[i])) << "coef " << i;
    for (int i = 1; i <= x.tablePoints; ++i) {
      EXPECT_TRUE(Near(x.tableX[i], y.tableX[i]));
      EXPECT_TRUE(Near(x.tableY[i], y.tableY[i]));
    }
  }
}

void ExpectSameContribution(const PhasePattern& a, const PhasePattern& b) {
  EXPECT_SAME(Contribution);
  EXPECT_SAME(Irf);
  EXPECT_SAME(Npr);
  EXPECT_SAME(Jtyp);
  for (int i = 1; i <= 3; ++i) EXPECT_CLOSE(PREF[i]);
  EXPECT_CLOSE(Brind);
  EXPECT_CLOSE(Rmua);
  EXPECT_CLOSE(Rmub);
  EXPECT_CLOSE(Rmuc);
  EXPECT_SAME(StrainModel);
  EXPECT_SAME(SizeModel);
  for (int i = 1; i <= 6; ++i) EXPECT_CLOSE(CellConstants[i]);
  for (int s = 1; s <= DimensionLimits::MPAR; ++s) {
    // Slots 6 to 11 hold the reciprocal coefficients made from the cell.
    if (s < 6 || s > 11) {
      EXPECT_CLOSE(PAR[s]) << " slot " << s;
    }
    ExpectSameCode(a.PAC[s], b.PAC[s], "PAC " + std::to_string(s));
  }
}

void ExpectSamePhase(const Job& ja, const Job& jb, int k) {
  {
    // The operators, whether typed or built from the symbol.
    const SpaceGroup& ga = ja.phases[k].group;
    const SpaceGroup& gb = jb.phases[k].group;
    EXPECT_EQ(ga.NSYM, gb.NSYM);
    EXPECT_EQ(ga.ICENT, gb.ICENT);
    EXPECT_EQ(ga.LAUE, gb.LAUE);
    EXPECT_EQ(ga.NMAGM, gb.NMAGM);
    for (int n = 1; n <= ga.NSYM; ++n) {
      EXPECT_EQ(ga.isl[n], gb.isl[n]) << "operator " << n;
      for (int axis = 1; axis <= 3; ++axis) {
        EXPECT_FLOAT_EQ(ga.translation(axis, n), gb.translation(axis, n));
      }
      // The moment matrices and their phases, or the time-reversal signs.
      for (int m = 1; m <= ga.NMAGM; ++m) {
        EXPECT_EQ(ga.magneticRotation(m, n), gb.magneticRotation(m, n)) << "operator " << n;
        EXPECT_FLOAT_EQ(ga.magneticPhase(m, n), gb.magneticPhase(m, n)) << "operator " << n;
      }
    }
    for (int n = 1; n <= ga.NSYM + 1; ++n) EXPECT_EQ(ga.magneticSign[n], gb.magneticSign[n]);
  }
  const Phase& a = ja.phases[k];
  const Phase& b = jb.phases[k];
  EXPECT_SAME(PhaseTitle);
  EXPECT_SAME(Nat);
  EXPECT_SAME(Dis);
  EXPECT_SAME(Mom);
  EXPECT_SAME(Jbt);
  EXPECT_SAME(Isy);
  EXPECT_SAME(Str);
  EXPECT_SAME(Furth);
  EXPECT_CLOSE(ATZ);
  EXPECT_SAME(Nvk);
  EXPECT_SAME(More);
  EXPECT_SAME(Jvi);
  EXPECT_SAME(Jdi);
  EXPECT_SAME(Hel);
  EXPECT_SAME(Sol);
  EXPECT_SAME(MomOut);
  EXPECT_SAME(Ter);
  EXPECT_EQ(TrimmedCopy(a.SpaceGroupSymbol), TrimmedCopy(b.SpaceGroupSymbol));
  EXPECT_SAME(magneticSymmetry);
  EXPECT_SAME(ModA);
  EXPECT_SAME(ModS);
  for (int i = 1; i <= 3; ++i) {
    EXPECT_CLOSE(ShiftAxis[i]);
    EXPECT_CLOSE(SizeAxis[i]);
    EXPECT_CLOSE(StrainAxis[i]);
  }
  for (int n = 1; n <= a.Nvk; ++n) {
    for (int i = 1; i <= 3; ++i) {
      EXPECT_CLOSE(vectors[n].KVEC[i]);
      ExpectSameCode(a.vectors[n].KCODE[i], b.vectors[n].KCODE[i], "KCODE");
    }
    // A list doubled by -K reads back as a plain list of twice the count.
    if (a.addMinusK == b.addMinusK) {
      EXPECT_SAME(vectors[n].halfVector);
    }
  }
  for (int n = 1; n <= a.Furth; ++n) EXPECT_SAME(FurtherName[n]);
  for (int ip = 1; ip <= ja.run.NPATT; ++ip) ExpectSameContribution(a.pat[ip], b.pat[ip]);
}

void ExpectSameAtoms(const Job& ja, const Job& jb) {
  int total = 0;
  for (int k = 1; k <= ja.run.NPHASE; ++k) total += ja.phases[k].Nat;
  for (int i = 1; i <= total; ++i) {
    const AtomSite& a = ja.atoms[i];
    const AtomSite& b = jb.atoms[i];
    EXPECT_SAME(label);
    EXPECT_SAME(species);
    EXPECT_SAME(Mag);
    EXPECT_SAME(Vek);
    EXPECT_SAME(In);
    EXPECT_SAME(Fin);
    EXPECT_SAME(N_t);
    for (int j = 1; j <= DimensionLimits::NAT_P; ++j) {
      EXPECT_CLOSE(ATP[j]) << " slot " << j;
      ExpectSameCode(a.ATC[j], b.ATC[j], "ATC " + std::to_string(j));
    }
  }
}

void ExpectSameModel(const Job& a, const Job& b) {
  ExpectSameRun(a.run, b.run);
  ExpectSameAtoms(a, b);
  for (int ip = 1; ip <= a.run.NPATT; ++ip) {
    ExpectSamePatternFlags(a.patterns[ip], b.patterns[ip]);
    ExpectSamePatternValues(a.patterns[ip], b.patterns[ip]);
  }
  for (int k = 1; k <= a.run.NPHASE; ++k) ExpectSamePhase(a, b, k);
  ASSERT_EQ(a.limits.limited.size(), b.limits.limited.size());
  for (int n = 1; n <= a.limits.limited.size(); ++n) {
    EXPECT_EQ(a.limits.limited[n], b.limits.limited[n]);
    EXPECT_TRUE(Near(a.limits.low[n], b.limits.low[n]));
    EXPECT_TRUE(Near(a.limits.high[n], b.limits.high[n]));
  }
}

// One round trip in a scratch directory: reads `text` (with an extra file
// beside the data when `extraName` is given), writes the new control file and
// reads that again. `plain` clears the commented form before writing.
struct RoundTripRun {
  ScratchDir dir;
  CapturedJob first;
  CapturedJob second;
  std::string written;
  explicit RoundTripRun(const std::string& text, bool plain = false,
                        const std::string& extraName = "", const std::string& extraText = "") {
    dir.Write("x.dat", FlatData());
    dir.Write("x1.dat", FlatData());
    dir.Write("x2.dat", FlatData());
    if (!extraName.empty()) dir.Write(extraName, extraText);
    EXPECT_TRUE(testing::ReadControlText(dir, first, text, false)) << first.Console();
    EXPECT_TRUE(first->run.controlFileComplete) << first.Console();
    if (plain) first->run.commentedOutput = 0;
    EXPECT_TRUE(testing::RunsWithoutStop(*first, [](Job& j) { WriteControlFile(j, 0, 0, 0, 0); }));
    written = first->run.NXT == 1 ? dir.Read("x.pcr") : dir.Read("x.new");
    EXPECT_TRUE(testing::ReadControlText(dir, second, written, false))
        << second.Console() << written;
    EXPECT_TRUE(second->run.controlFileComplete) << second.Console() << written;
    if (plain) second->run.commentedOutput = 0;
  }
};

// A round trip that must give back the same model. Returns the new text.
std::string RoundTrip(const std::string& text, bool plain = false,
                      const std::string& extraName = "", const std::string& extraText = "") {
  const RoundTripRun run(text, plain, extraName, extraText);
  ExpectSameModel(*run.first.job, *run.second.job);
  return run.written;
}

// A case that refines nothing: no parameter, no cell code and no limits.
SingleCase Unrefined() {
  SingleCase c;
  c.maxs = "0";
  c.cell = "4.0 4.0 4.0 90 90 90\n0 0 0 0 0 0";
  c.limits.clear();
  return c;
}

// A case whose job line `job` chooses a background without refined
// coefficients (points, Fourier filtering): no coefficient lines, and the
// cell is parameter 2 of 2.
SingleCase WithoutBackgroundCoefficients(const std::string& job) {
  SingleCase c;
  c.job = job;
  c.maxs = "2";
  c.background.clear();
  c.cell = "4.0 4.0 4.0 90 90 90\n21.0 0 0 0 0 0";
  return c;
}

// A case with atoms: the phase flags and the atom lines below the symbol
// "P m 3 m"; one atom code is parameter 4.
SingleCase WithAtoms(const std::string& flags, const std::string& atoms) {
  SingleCase c;
  c.maxs = "4";
  c.flags = flags;
  c.symbol = "P m 3 m\n" + atoms;
  return c;
}

TEST(ControlRoundTrip, PolynomialBackgroundWithCodesAndLimits) {
  SingleCase c;
  const std::string written = RoundTrip(c.Text());
  EXPECT_NE(written.find("   31.00000"), std::string::npos) << written;
}

TEST(ControlRoundTrip, OverwritesTheControlFileInPlace) {
  SingleCase c;
  c.output = "0 0 1 0 1 0 0 0 0 1 0 0 0 0 0 0 0";
  // Comment lines make the input longer than what is written back.
  c.title += "\n" + std::string(40, '!') + "\n! a long comment that is not written back\n";
  c.title.pop_back();
  RoundTrip(c.Text());
}

TEST(ControlRoundTrip, PlainFormReadsBack) {
  SingleCase c;
  const std::string written = RoundTrip(c.Text(), true);
  EXPECT_EQ(written.find("!Job Npr"), std::string::npos);
  EXPECT_NE(written.find("   Scale ETA Bov Strain"), std::string::npos) << written;
}

TEST(ControlRoundTrip, DebyeLikeBackground) {
  SingleCase c;
  c.job = "0 5 1 -1 0 0 0 0 0 0 0 0 0 1 0 0 0";
  c.background =
      "100 2 3 4 5 6\n21.0 0 0 0 0 0\n1 2 3 4 5 6\n0 0 0 0 0 0\n"
      "2.5 1 1 1 1 1\n0 0 0 0 0 0";
  RoundTrip(c.Text());
}

TEST(ControlRoundTrip, TwelveTermBackground) {
  SingleCase c;
  c.job = "0 5 1 -3 0 0 0 0 0 0 0 0 0 1 0 0 0";
  c.background = "100 2 3 4 5 6\n21.0 0 0 0 0 0\n0.1 0.2 0.3 0.4 0.5 0.6\n0 0 0 0 0 -21.5";
  RoundTrip(c.Text());
}

TEST(ControlRoundTrip, FourierFilteredBackground) {
  SingleCase c = WithoutBackgroundCoefficients("0 5 1 -2 0 0 0 0 0 0 0 0 0 1 0 0 0");
  c.background = "12.5";
  RoundTrip(c.Text());
}

TEST(ControlRoundTrip, BackgroundFromFile) {
  SingleCase c;
  c.job = "0 5 1 1 0 0 0 0 0 0 0 0 0 1 0 0 0";
  c.background = "2.0 5.0 0.0 0.0\n21.0 0.0 0.0 0.0";
  std::string bac = "Flat background\n";
  for (int i = 0; i <= 2000; ++i) bac += std::to_string(20.0 + 0.02 * i) + " 100.0\n";
  RoundTrip(c.Text(), false, "x.bac", bac);
}

TEST(ControlRoundTrip, LinearBackgroundPointsAndExcludedRegions) {
  SingleCase c = WithoutBackgroundCoefficients("0 5 1 3 2 0 0 0 0 0 0 0 0 1 0 0 0");
  c.points = "20.0 100.0\n40.0 110.5\n60.0 120.25\n20.0 22.0\n58.5 60.0\n";
  RoundTrip(c.Text());
}

// A third value on a background point line is the code of its height; the
// codes count as parameters of the matrix and are written back.
TEST(ControlRoundTrip, BackgroundPointHeightsWithCodes) {
  SingleCase c = WithoutBackgroundCoefficients("0 5 1 3 0 0 0 0 0 0 0 0 0 1 0 0 0");
  c.maxs = "4";
  c.points = "20.0 100.0 31.0\n40.0 110.5 41.0\n60.0 120.25\n";
  const std::string written = RoundTrip(c.Text());
  EXPECT_NE(written.find("       20.000      100.000    31.00"), std::string::npos) << written;
  EXPECT_NE(written.find("       60.000      120.250     0.00"), std::string::npos) << written;
}

TEST(ControlRoundTrip, SplineBackgroundPoints) {
  SingleCase c = WithoutBackgroundCoefficients("0 5 1 -4 0 0 0 0 0 0 0 0 0 1 0 0 0");
  c.points = "20.0 100.0\n30.0 105.0\n45.0 110.5\n60.0 120.25\n";
  RoundTrip(c.Text());
}

TEST(ControlRoundTrip, SecondWavelengthWidthsMicroabsorptionAndShape) {
  SingleCase c;
  c.instrument = "1.5406 1.5444 -0.5 40.0 8.0 0.8 0.1 30.0 0.5";
  c.globals = "0.01 11.0 0.002 0.0 -0.003 0.0 0.0 0.0 1";
  c.background = "0.5 0 1.2 0 0.3 0\n100 2 3 4 5 6\n21.0 0 0 0 0 0";
  c.flags = "0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 4 0";
  c.more = "0.02 0.01 0.03\n0 0 0\n0.05 0.0 0.07 0.0\n";
  RoundTrip(c.Text());
}

TEST(ControlRoundTrip, SplitPseudoVoigtWithItsRightHalf) {
  SingleCase c;
  c.flags = "0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 11 0";
  c.widths += "\n0.02 -0.02 0.02 0.3 0.1\n0 0 0 0 0";
  c.more = "0.05 0.0 0.07 0.0\n";
  RoundTrip(c.Text());
}

TEST(ControlRoundTrip, FlagsLineAsymmetryShiftsAndModels) {
  SingleCase c;
  c.flags = "0 0 0 1.0 1.0 0.0 2 0 0 0 2 1.5 -1 0 1";
  c.flags += "\n0 1 0 1 0 0 0.9 0.0 0.0 0.0 0";
  c.widths =
      "1.0 0.0 0.0 0.0 0.0 0.0 7\n0 0 0 0 0 0\n"
      "0.01 -0.01 0.01 0.0 0.0 0.0 0.0 1\n0 0 0 0 0 0 0";
  c.more =
      "0.1 0.2 0.3 2 1\n0 0 0\n1.0 0.0 0.0\n0.0 0.0 1.0\n0.0 1.0 0.0\n"
      "0.5 0.0 0.0\n0.0 0.0 0.0\nAb1 1.25 0.0\nAb2 -2.5 0.0\n";
  const std::string written = RoundTrip(c.Text());
  EXPECT_NE(written.find("Propagation Vector  2"), std::string::npos) << written;
}

TEST(ControlRoundTrip, NegativeVectorCountReadsBackDoubled) {
  SingleCase c;
  c.flags = "0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 -1 0 0";
  c.more = "0.5 0.0 0.0\n0.0 0.0 0.0\n";
  const RoundTripRun run(c.Text());
  EXPECT_EQ(run.first.job->phases[1].addMinusK, 'Y');
  EXPECT_NE(
      run.written.find("   0   0   0 0.0 0.0 1.0   2   0   0   0   0        0.00   2   5   0"),
      std::string::npos)
      << run.written;
  const Phase& ph = run.second.job->phases[1];
  EXPECT_EQ(ph.addMinusK, 'N');
  EXPECT_EQ(ph.Nvk, 2);
  EXPECT_FLOAT_EQ(ph.vectors[1].KVEC[1], 0.5f);
  EXPECT_FLOAT_EQ(ph.vectors[2].KVEC[1], -0.5f);
  EXPECT_EQ(ph.vectors[1].halfVector, 1);
  ExpectSameModel(*run.first.job, *run.second.job);
}

TEST(ControlRoundTrip, HarmonicSizeStrainTermsAndGeneralizedTerms) {
  SingleCase c;
  c.flags = "0 0 0 0.0 0.0 1.0 2 0 0 3 0 0.0 0 0 0";
  c.widths =
      "1.0 0.0 0.0 0.0 0.0 0.0 9\n0 0 0 0 0 0\n"
      "0.01 -0.01 0.01 0.0 0.0 0.0 0.0 15\n0 0 0 0 0 0 0";
  c.more =
      "0.1 0.2 0.3 0.4 0.5 0.6\n0 0 0 0 0 0\n0.7 0.8 0.9\n0 0 0\n"
      "1 2 3 4 5\n0 0 0 0 0\n"
      "1e-3 2e-3 3e-3 4e-3 5e-3\n0 0 0 0 0\n6e-3 7e-3 8e-3 9e-3 1e-2\n0 0 0 0 0\n"
      "0.11 0.12 0.13 0.14 0.15 0.16\n0 0 0 0 0 0\n";
  RoundTrip(c.Text());
}

TEST(ControlRoundTrip, TrigonalHarmonicsAndGeneralizedSize) {
  SingleCase c;
  c.flags = "0 0 0 0.0 0.0 1.0 2 0 0 2 0 0.0 0 0 0";
  c.widths =
      "1.0 0.0 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n"
      "0.01 -0.01 0.01 0.0 0.0 0.0 0.0 -16\n0 0 0 0 0 0 0";
  c.more =
      "0.1 0.2 0.3 0.4 0.5 0.6\n0 0 0 0 0 0\n0.7 0.8 0.9\n0 0 0\n"
      "0.11 0.12 0.13 0.14 0.15 0.16\n0 0 0 0 0 0\n";
  RoundTrip(c.Text());
}

TEST(ControlRoundTrip, GeneralizedStrainAlone) {
  SingleCase c;
  c.flags = "0 0 0 0.0 0.0 1.0 2 0 0 1 0 0.0 0 0 0";
  c.more = "1e-3 2e-3 3e-3 4e-3 5e-3\n0 0 0 0 0\n6e-3 7e-3 8e-3 9e-3 1e-2\n0 0 0 0 0\n";
  RoundTrip(c.Text());
}

// Every Str reads back what it wrote: the strain lines for Str neither 0 nor
// 2, the size line for Str 2 and above (Str 4 and 5 among them), with the
// axis lines of size model -1 and strain model 7 and refined terms.
TEST(ControlRoundTrip, EveryStrReadsBack) {
  for (int str : {0, 1, 2, 3, 4, 5, -1}) {
    SingleCase c;
    c.maxs = "5";
    c.flags = "0 0 0 0.0 0.0 1.0 2 0 0 " + std::to_string(str) + " 0 0.0 0 7 0";
    c.widths =
        "1.0 0.0 0.0 0.25 0.0 0.0 7\n0 0 0 41.0 0 0\n"
        "0.01 -0.01 0.01 0.0 0.01 0.0 0.05 -1\n0 0 0 0 0 0 51.0";
    std::string more = "0.0 1.0 0.0\n1.0 1.0 0.5\n";
    if (str != 0 && str != 2) {
      // The generalized terms overwrite Str1..Str10 and their codes.
      more += "1.5e-3 2e-3 3e-3 4e-3 5e-3\n41.0 0 0 0 0\n6e-3 7e-3 8e-3 9e-3 1e-2\n0 0 0 0 0\n";
    }
    // They overwrite LorSiz and its code.
    if (str >= 2) more += "0.011 0.012 0.013 0.014 0.015 0.016\n51.0 0 0 0 0 0\n";
    c.more = more;
    const RoundTripRun run(c.Text());
    ExpectSameModel(*run.first.job, *run.second.job);
    EXPECT_EQ(run.second.job->phases[1].Str, str);
    EXPECT_FLOAT_EQ(run.second.job->phases[1].StrainAxis[3], 0.5f) << str;
    EXPECT_FLOAT_EQ(run.second.job->phases[1].SizeAxis[2], 1.0f) << str;
    if (str >= 2) {
      EXPECT_FLOAT_EQ(run.second.job->phases[1].pat[1].PAR[ProfileSlot::Size6], 0.016f) << str;
      EXPECT_NE(run.written.find(str == 2 ? "! Generalized size parameters:"
                                          : "! Generalized strain+size parameters:"),
                std::string::npos)
          << run.written;
    }
  }
}

TEST(ControlRoundTrip, TimeOfFlightCalculation) {
  SingleCase c = Unrefined();
  c.job = "-3 9 1 0 0 0 0 0 0 0 0 0 0 0 0 1 0";
  c.instrument = "5000.0 6.0 1";
  c.cycle = "1 0.1 1 1 1 1 2000.0 100.0 3000.0 0 0";
  c.globals = "0.0 0.0 5000.0 0.0 -1.0 0.0 1.2 0.0 0";
  c.background = "1 0 0 0 0 0\n0 0 0 0 0 0";
  c.widths += "\n0 0 0 0 0\n0 0 0 0 0";
  c.more = "0.05 0.0 0.07 0.0\n";
  RoundTrip(c.Text());
}

TEST(ControlRoundTrip, EnergyDispersiveCalculation) {
  SingleCase c = Unrefined();
  c.job = "2 5 1 0 0 0 0 0 0 0 0 0 0 0 0 2 0";
  c.instrument = "40.0 6.0 1";
  c.cycle = "1 0.1 1 1 1 1 10.0 0.05 40.0 0 0";
  c.globals = "0.0 0.0 5.0 0.0 0.0 0.0 1.2 0.0 0";
  RoundTrip(c.Text());
}

TEST(ControlRoundTrip, NeutronScatteringLengths) {
  SingleCase c = Unrefined();
  c.job = "3 5 1 0 0 2 0 0 0 0 0 0 0 0 0 0 0";
  c.scattering = "Fe 0.945 0.0 0\nO 0.580 0.0 0\n";
  RoundTrip(c.Text());
}

TEST(ControlRoundTrip, XrayFormFactorCoefficients) {
  SingleCase c = Unrefined();
  c.job = "2 5 1 0 0 1 0 0 0 0 0 0 0 0 0 0 0";
  c.scattering =
      "Fe 0.1 3.2 1\n11.7695 4.7611 7.3573 0.3072 3.5222 15.3535 2.3045 76.8805 1.0369\n";
  RoundTrip(c.Text());
}

TEST(ControlRoundTrip, XrayFormFactorTable) {
  SingleCase c = Unrefined();
  c.job = "2 5 1 0 0 -1 0 0 0 0 0 0 0 0 0 0 0";
  c.scattering = "Fe 0.1 3.2 1\n0.0 26.0\n0.5 20.5\n1.0 12.25\n-100.0 0.0\n";
  RoundTrip(c.Text());
}

TEST(ControlRoundTrip, CrystalStructureAtoms) {
  SingleCase c = WithAtoms("2 0 0 0.0 0.0 1.0 0 0 0 0 0 0.0 0 0 0",
                           "Fe FE 0.0 0.0 0.0 0.5 1.0 0 0 0\n0 0 0 41.0 0\n"
                           "O O 0.5 0.5 0.0 0.8 1.0 0 0 2\n0 0 0 0 0\n"
                           "0.001 0.001 0.002 0.0 0.0 0.0\n0 0 0 0 0 0");
  RoundTrip(c.Text());
}

TEST(ControlRoundTrip, MagneticStructureAtoms) {
  SingleCase c = WithAtoms("1 0 0 0.0 0.0 1.0 1 0 0 0 0 0.0 1 0 0",
                           "Mn MMN2 1 1 0.0 0.0 0.0 0.5 1.0 2.0 0.0 -1.5\n0 0 0 0 0 41.0 0 0\n"
                           "0.1 0.0 0.0 0.0 0.0 0.0 0.25\n0 0 0 0 0 0 0");
  c.job = "1 5 1 0 0 0 0 0 0 0 0 0 0 1 0 0 0";
  c.more = "0.5 0.0 0.0\n0 0 0\n";
  RoundTrip(c.Text());
}

TEST(ControlRoundTrip, CrystalAndMagneticAtoms) {
  SingleCase c = WithAtoms("1 0 0 0.0 0.0 1.0 10 0 0 0 0 0.0 1 0 0",
                           "Mn MMN2 1 1 0.0 0.0 0.0 0.5 1.0 3\n0 0 0 41.0 0\n"
                           "2.0 0.0 -1.5 0.1 0.0 0.0 0.25\n0 0 0 0 0 0 0\n"
                           "0.001 0.001 0.002 0.0 0.0 0.0\n0 0 0 0 0 0");
  c.job = "1 5 1 0 0 0 0 0 0 0 0 0 0 1 0 0 0";
  c.more = "0.5 0.0 0.0\n0 0 0\n";
  RoundTrip(c.Text());
}

// Every magnetic kind of phase reads back the same: the spherical form, the
// conical model, the nuclear and magnetic phase in both forms.
TEST(ControlRoundTrip, SphericalMagneticAtoms) {
  SingleCase c = WithAtoms("1 0 0 0.0 0.0 1.0 -1 0 0 0 0 0.0 1 0 0",
                           "Mn MMN2 1 1 0.0 0.0 0.0 0.5 1.0 2.0 30.0 60.0\n0 0 0 0 0 41.0 0 0\n"
                           "1.5 120.0 45.0 0.0 0.0 0.0 0.25\n0 0 0 0 0 0 0");
  c.job = "1 5 1 0 0 0 0 0 0 0 0 0 0 1 0 0 0";
  c.more = "0.5 0.0 0.0\n0 0 0\n";
  RoundTrip(c.Text());
}

TEST(ControlRoundTrip, ConicalMagneticAtoms) {
  SingleCase c = WithAtoms("2 0 0 0.0 0.0 1.0 5 0 0 0 0 0.0 1 0 0",
                           "Mn MMN2 1 1 0.0 0.0 0.0 0.5 1.0 2.0 35.0 20.0\n0 0 0 0 0 41.0 0 0\n"
                           "30.0 60.0 0.0 0.0 0.0 0.0 0.0\n0 0 0 0 0 0 0\n"
                           "Mn2 MMN2 1 1 0.5 0.5 0.5 0.5 1.0 2.0 35.0 110.0\n0 0 0 0 0 0 0 0\n"
                           "0.0 0.0 0.0 0.0 0.0 0.0 0.0\n0 0 0 0 0 0 0");
  c.job = "1 5 1 0 0 0 0 0 0 0 0 0 0 1 0 0 0";
  c.more = "0.0 0.0 0.3\n0 0 0\n";
  RoundTrip(c.Text());
}

TEST(ControlRoundTrip, SphericalCrystalAndMagneticAtoms) {
  SingleCase c = WithAtoms("1 0 0 0.0 0.0 1.0 -10 0 0 0 0 0.0 1 0 0",
                           "Mn MMN2 1 1 0.0 0.0 0.0 0.5 1.0 3\n0 0 0 41.0 0\n"
                           "2.0 30.0 60.0 0.1 0.0 0.0 0.25\n0 0 0 0 0 0 0\n"
                           "0.001 0.001 0.002 0.0 0.0 0.0\n0 0 0 0 0 0");
  c.job = "1 5 1 0 0 0 0 0 0 0 0 0 0 1 0 0 0";
  c.more = "0.5 0.0 0.0\n0 0 0\n";
  RoundTrip(c.Text());
}

// Operators with their moment matrices typed as numbers and as text.
TEST(ControlRoundTrip, MagneticOperatorsTypedAsNumbersAndAsText) {
  for (const std::string& symmetry :
       {std::string("!Nsym Cen Laue MagMat\n2 1 3 2\n"
                    " 1 0 0 0.0  0 1 0 0.0  0 0 1 0.0\n 1 0 0 0 1 0 0 0 1 0.0\n"
                    "-1 0 0 0 -1 0 0 0 1 0.25\n"
                    "-1 0 0 0.5  0 -1 0 0.0  0 0 1 0.5\n-1 0 0 0 -1 0 0 0 1 0.1\n"
                    " 1 0 0 0 1 0 0 0 -1 0.0\n"),
        std::string("!Nsym Cen Laue MagMat\n2 1 3 1\n"
                    "SYMM x,y,z\nMSYM u,v,w,0.0\nSYMM -x+1/2,-y,z+1/2\nMSYM -u,-v,w,0.1\n")}) {
    const bool text = symmetry.find("SYMM") != std::string::npos;
    SingleCase c = WithAtoms(
        std::string("1 0 0 0.0 0.0 1.0 1 0 ") + (text ? "-1" : "1") + " 0 0 0.0 0 0 0", "");
    c.symbol = "P m m m\n" + symmetry +
               "Mn MMN2 2 0 0.1 0.2 0.3 0.5 1.0 2.0 0.0 -1.5\n0 0 0 0 0 41.0 0 0\n"
               "0.0 0.0 0.0 0.0 0.0 0.0 0.0\n0 0 0 0 0 0 0";
    c.job = "1 5 1 0 0 0 0 0 0 0 0 0 0 1 0 0 0";
    c.cell = "4.0 4.1 4.2 90 90 90\n31.0 0 0 0 0 0";
    RoundTrip(c.Text());
  }
}

// A nuclear and magnetic phase with "Mag" behind its symbol: the line of
// time-reversal signs reads back.
TEST(ControlRoundTrip, TimeReversalSignsOfANuclearAndMagneticPhase) {
  SingleCase c = WithAtoms("1 0 0 0.0 0.0 1.0 10 0 0 0 0 0.0 0 0 0", "");
  c.symbol =
      "P n m a             Mag\n1 -1 1 -1 1\n"
      "Mn MMN3 1 0 0.0 0.0 0.5 0.3 0.5 1\n0 0 0 41.0 0\n"
      "3.7 0.0 0.0 0.0 0.0 0.0 0.0\n0 0 0 0 0 0 0";
  c.job = "1 5 1 0 0 0 0 0 0 0 0 0 0 1 0 0 0";
  c.cell = "5.7 7.6 5.5 90 90 90\n31.0 0 0 0 0 0";
  const RoundTripRun run(c.Text());
  ExpectSameModel(*run.first.job, *run.second.job);
  EXPECT_EQ(run.second.job->phases[1].magneticSymmetry, 1);
  EXPECT_EQ(run.second.job->phases[1].group.magneticSign[2], -1);
}

TEST(ControlRoundTrip, AtomsOfTheSecondPhaseFollowThoseOfTheFirst) {
  SingleCase c = WithAtoms("1 0 0 0.0 0.0 1.0 0 0 0 0 0 0.0 0 0 0",
                           "Fe FE 0.0 0.0 0.0 0.5 1.0 0 0 0\n0 0 0 41.0 0");
  c.job = "0 5 2 0 0 0 0 0 0 0 0 0 0 1 0 0 0";
  c.more =
      "Phase two\n2 0 0 0.0 0.0 1.0 0 0 0 0 0 0.0 0 0 0\nP m 3 m\n"
      "O1 O 0.5 0.5 0.5 0.8 1.0 0 0 0\n0 0 0 0 0\n"
      "O2 O 0.25 0.25 0.25 0.9 1.0 0 0 0\n0 0 0 0 0\n" +
      c.widths + "\n4.0 4.0 4.0 90 90 90\n0 0 0 0 0 0\n" + c.asymmetry + "\n";
  const std::string written = RoundTrip(c.Text());
  EXPECT_LT(written.find("Fe   FE"), written.find("O1   O"));
  EXPECT_LT(written.find("O1   O"), written.find("O2   O"));
  EXPECT_LT(written.find("Phase two"), written.find("O1   O"));
  EXPECT_NE(written.find("O2   O"), std::string::npos) << written;
}

TEST(ControlRoundTrip, AtomWithFormFactorParameters) {
  SingleCase c = WithAtoms("1 0 0 0.0 0.0 1.0 0 0 0 0 0 0.0 0 0 0",
                           "Fe FE 0.0 0.0 0.0 0.5 1.0 0 0 4\n0 0 0 0 0\n"
                           "1.5 2.5 3.5 4.5 5.5 6.5 7.5\n0 41.0 0 0 0 0 0\n"
                           "8.5 9.5 10.5 11.5 12.5 13.5 14.5\n0 0 0 0 0 0 0");
  RoundTrip(c.Text());
}

// A rigid-body group: its group line (origin, number, reference, option,
// angles, T) and its one atom, which names the group in slot 6.
TEST(ControlRoundTrip, RigidBodyModelAtoms) {
  SingleCase c = WithAtoms("2 0 0 0.0 0.0 1.0 4 0 0 0 0 0.0 0 0 0",
                           "G1 RBG 0.1 0.2 0.3 1.0 0.0 1.0 0.7 0.8\n0 0 41.0 0 0 0 0 0\n"
                           "0.9 1.0 1.1 1.2 1.3 1.4 1.5 1.6\n0 0 0 0 0 0 0\n"
                           "G1 C 0.5 0.2 0.1 0.4 0.5 1.0 0.0 0.0\n0 0 0 0 0 0 0 0\n"
                           "0 0 0 0 0 0 0 0\n0 0 0 0 0 0 0");
  RoundTrip(c.Text());
}

TEST(ControlRoundTrip, OperatorsTypedInTheControlFile) {
  SingleCase c;
  c.maxs = "4";
  c.flags = "1 0 0 0.0 0.0 1.0 0 0 1 0 0 0.0 0 0 0";
  c.symbol =
      "P -1\n!Nsym Cen Laue MagMat\n1 2 1 0\n1 0 0 0.0 0 1 0 0.0 0 0 1 0.0\n"
      "Fe FE 0.1 0.2 0.3 0.5 1.0 0 0 0\n0 0 0 41.0 0";
  c.cell = "4.0 4.1 4.2 91 92 93\n31.0 0 0 0 0 0";
  RoundTrip(c.Text());
}

// Two patterns; the second phase contributes to the second pattern only.
std::string MultiText() {
  return "COMM Two patterns\nNPATT 2\nW_PAT 1 3\n2 0 0 1 0\n"
         "0 5 0 0 0 0 0 0 0 0 0 0 0\n0 5 -3 1 0 0 0 0 0 0 0 0 1\nx1\nx2\n"
         "0 2 1 0 0 0\n0 0 1 0 0 0 1 0 0 0 0\n0 0 1 0 0 0 1 0 0 0 0\n"
         "1.5406 1.5444 0.5 40.0 8.0 0.8 0.0 30.0 0.0\n"
         "1.5406 0.0 0.0 35.0 7.0 0.8 0.0 30.0 0.0\n"
         "3 0.1 1 1 1 1\n20.0 0.02 60.0 0 0\n20.0 0.02 60.0 0 0\n20.0 22.0\n"
         "3\n0.01 11.0 0 0 0 0 0 0 0\n100 2 3 4 5 6\n21.0 0 0 0 0 0\n"
         "0.0 0 0 0 0 0 0 0 0\n50 0 0 0 0 0\n0 0 0 0 0 0\n1 2 3 4 5 6\n0 0 0 0 0 0\n"
         "Phase one\n0 0 0 2 0 0 0 0.0 0 0\n1 1\n0 0 0\n0 0 1 1 0 0 0\n0 0 0\n0 1 0 1 0 0 0\n"
         "P m 3 m\n"
         "1.0 0.0 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n0.01 -0.01 0.01 0.0 0.0 0.0 0.0 0\n"
         "0 0 0 0 0 0 0\n4.0 4.0 4.0 90 90 90\n31.0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n"
         "2.0 0.0 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n0.02 -0.01 0.01 0.0 0.0 0.0 0.0 0\n"
         "0 0 0 0 0 0 0\n4.0 4.0 4.0 90 90 90\n31.0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n"
         "Phase two\n0 0 0 2 0 0 0 0.0 0 1\n0 0 0 0 0 0\n0 1\n0 0 0\n0 0 1 1 0 0 0\n"
         "P m 3 m\n"
         "1.0 0.0 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n0.01 -0.01 0.01 0.0 0.0 0.0 0.0 0\n"
         "0 0 0 0 0 0 0\n5.0 5.0 5.0 90 90 90\n0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n"
         "1 -0.5 0.5\n";
}

TEST(ControlRoundTrip, MultiPatternForm) {
  const std::string written = RoundTrip(MultiText());
  EXPECT_NE(written.find("NPATT      2"), std::string::npos) << written;
  EXPECT_NE(written.find("W_PAT   0.250 0.750"), std::string::npos) << written;
}

TEST(ControlRoundTrip, MultiPatternPlainForm) {
  RoundTrip(MultiText(), true);
}

}  // namespace
}  // namespace corvinet
