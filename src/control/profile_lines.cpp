// Profile lines of a phase in each pattern: scale, widths, cell, shape, models, vectors and further
// parameters.
#include "control/profile_lines.h"

#include "control/codeword_check.h"

#include <cmath>
#include <cstdlib>
#include <vector>

#include "crystal/metric.h"
#include "format/fortran_format.h"
#include "format/text.h"
#include "io/field_reader.h"
#include "surface/console.h"

namespace corvinet {

namespace {

// Reads the values of PAR slots (and an optional integer after them), then the
// line of their codes.
void ReadSlots(Job& job, PhasePattern& c, std::initializer_list<int> slots,
               int* trailing = nullptr) {
  std::vector<ReadTarget> values;
  std::vector<ReadTarget> codes;
  for (int s : slots) {
    values.emplace_back(&c.PAR[s]);
    codes.emplace_back(&c.PACtyped[s]);
  }
  std::string mask(slots.size(), 'f');
  if (trailing != nullptr) values.emplace_back(trailing);
  ReadMaskedLineList(job, Unit::Control, trailing != nullptr ? mask + "i" : mask, job.LINE, values);
  ReadMaskedLineList(job, Unit::Control, mask, job.LINE, codes);
}

void ReadAxis(Job& job, Table1<float, 3>& axis) {
  ReadMaskedLine(job, Unit::Control, "fff", job.LINE, {&axis[1], &axis[2], &axis[3]});
}

std::string Row(const PhasePattern& c, std::initializer_list<int> slots, bool codes) {
  std::vector<FormatValue> values;
  for (int s : slots) values.emplace_back(codes ? c.PACtyped[s] : c.PAR[s]);
  return FormatText("(10F11.5)", values);
}

void Echo(Job& job, const char* words, const PhasePattern& c, std::initializer_list<int> slots) {
  WriteLine(job, Unit::Out, words + Row(c, slots, false));
}

// Echoes the profile parameters read, by the kind of phase and profile.
void EchoParameters(Job& job, const PhasePattern& c, const Pattern& p) {
  if (std::abs(c.Irf) == 4) {
    Echo(job, " => Scale factors Sc1..Sc5 and Sc6:", c, {1, 2, 3, 4, 5, 12});
    Echo(job, " => Extinction parameters:", c, {13, 14, 15, 16, 17, 18, 19});
    Echo(job, " => Cell parameters:", c, {6, 7, 8, 9, 10, 11});
    return;
  }
  Echo(job, " => Scale factor:", c, {1});
  Echo(job, " => Shape parameter:", c, {17});
  Echo(job, " => Overall temperature factor:", c, {2});
  Echo(job, " => Strain parameters:", c, {18, 19, 20});
  Echo(job, " => Halfwidth parameters U,V,W:", c, {3, 4, 5});
  Echo(job, " => X and Y parameters:", c, {15, 16});
  Echo(job, " => Size parameters (G,L):", c, {28, 29});
  Echo(job, " => Cell parameters:", c, {6, 7, 8, 9, 10, 11});
  Echo(job, " => Preferred orientation parameters:", c, {12, 13});
  Echo(job, " => Asymmetry parameters:", c, {14, 35, 36, 37});
  if (p.separateUVW2) Echo(job, " => U2,V2,W2 for lambda(2) :", c, {43, 44, 45});
  if (c.Npr == 12) {
    Echo(job, " => Split pV right halfwidth parameters Ur,Vr,Wr: ", c, {46, 47, 48});
    Echo(job, " => Split pV right EtaR0 and Xr parameters: ", c, {49, 50});
    Echo(job, " => Left and right Par (FWHM ~ Par/tanT):", c, {41, 42});
  }
  if (c.Npr == 5) Echo(job, " => Further shape parameters :", c, {41, 42});
  if (c.Npr == 13) {
    Echo(job, " => Further shape parameters (S_L and D_L):", c, {41, 42});
    WriteLine(job, Unit::Out, "    S_L is source width/detector distance");
    WriteLine(job, Unit::Out, "    D_L is detector width/detector distance");
  }
}

void ReadSizeModel(Job& job, Phase& ph, PhasePattern& c) {
  const int model = c.SizeModel;
  WriteLine(job, Unit::Out, Fmt("(A,I3,A)", " => The ", model, "th model for size is used"));
  if (std::abs(model) == 1) {
    ReadAxis(job, ph.SizeAxis);
    WriteLine(job, Unit::Out,
              Fmt("(A,3F8.3)", " => Platelet(1) or Needle(-1) axis: ", ph.SizeAxis[1],
                  ph.SizeAxis[2], ph.SizeAxis[3]));
  }
  if (std::abs(model) < 15) return;
  ReadSlots(job, c, {51, 52, 53, 54, 55, 56});
  ReadSlots(job, c, {57, 58, 59});
  if (std::abs(model) == 15) {
    WriteLine(job, Unit::Out, " => Coefficients of Spherical Harmonics for anisotropic size ");
    WriteLine(job, Unit::Out, "    broadening for a monoclinic lattice (b-unique)");
    WriteLine(job, Unit::Out, "    Y00        Y22+        Y22-       Y20         Y44+      Y44-");
    WriteLine(job, Unit::Out, Row(c, {51, 52, 53, 54, 55, 56}, false));
    WriteLine(job, Unit::Out, "    Y42+       Y42-        Y40");
    WriteLine(job, Unit::Out, Row(c, {57, 58, 59}, false));
  } else if (std::abs(model) == 16) {
    WriteLine(job, Unit::Out, " => Coefficients of Spherical Harmonics for anisotropic size ");
    WriteLine(job, Unit::Out, "    broadening for a trigonal lattice (hexagonal setting)");
    WriteLine(job, Unit::Out, "    Y00        Y20         Y40        Y43-        Y60       Y63");
    WriteLine(job, Unit::Out, Row(c, {51, 52, 53, 54, 55, 56}, false));
    WriteLine(job, Unit::Out, "       Y66+");
    WriteLine(job, Unit::Out, Row(c, {57}, false));
  }
}

void ReadStrainModel(Job& job, Phase& ph, PhasePattern& c) {
  const int model = c.StrainModel;
  WriteLine(job, Unit::Out, Fmt("(A,I3,A)", " => The ", model, "th model for strain is used"));
  if (model == 7) {
    ReadAxis(job, ph.StrainAxis);
    WriteLine(job, Unit::Out,
              Fmt("(A,3F8.3)", " => Microstrain axis: ", ph.StrainAxis[1], ph.StrainAxis[2],
                  ph.StrainAxis[3]));
  }
  if (model > 8) ReadSlots(job, c, {21, 22, 23, 24, 25});
}

void WriteShiftAndAsymmetryModels(Job& job, const Phase& ph, const PhasePattern& c) {
  if (ph.ModA != 0) {
    WriteLine(job, Unit::Out,
              Fmt("(A,I3,A)", " => The ", ph.ModA, "th model for hkl-dependent Asymmetry is used"));
    WriteLine(job, Unit::Out, Fmt("(A,F11.5)", " => Asymmetry parameter: ", c.PAR[38]));
    WriteLine(job, Unit::Out, Fmt("(A,F11.2)", "                  Code : ", c.PACtyped[38]));
  }
  if (ph.ModS != 0) {
    WriteLine(job, Unit::Out,
              Fmt("(A,I3,A)", " => The ", ph.ModS, "th model for hkl-dependent Shift is used"));
    WriteLine(job, Unit::Out, Fmt("(A,2F11.5)", " => Shift parameters: ", c.PAR[39], c.PAR[40]));
    WriteLine(job, Unit::Out,
              Fmt("(A,2F11.2)", "              Codes : ", c.PACtyped[39], c.PACtyped[40]));
    if (std::abs(ph.ModS) == 1) {
      WriteLine(job, Unit::Out,
                Fmt("(A,3F8.3)", " => Shift-cos(1) or Shift-sin(-1) axis: ", ph.ShiftAxis[1],
                    ph.ShiftAxis[2], ph.ShiftAxis[3]));
    }
  }
}

bool IsIntegral(float v) {
  return std::fabs(v - std::round(v)) < 1.0e-5f;
}

void ReadPropagationVectors(Job& job, Phase& ph) {
  if (ph.Nvk == 0) return;
  if (ph.Nvk * (ph.addMinusK == 'Y' ? 2 : 1) > DimensionLimits::NEQV) {
    ConsoleLine(job, Fmt("(A,I4,A,I3)", " => Number of propagation vectors:", ph.Nvk,
                         "  maximum:", DimensionLimits::NEQV));
    StopBox(job, " => Too many propagation vectors!");
  }
  for (int n = 1; n <= ph.Nvk; ++n) {
    PropagationVector& v = ph.vectors[n];
    ReadAxis(job, v.KVEC);
    ReadAxis(job, v.KCODEtyped);
    WriteLine(
        job, Unit::Out,
        Fmt("(A,I3,A,3F10.5,A,3F8.2)", " => Propagation vector #", n, ": ", v.KVEC[1], v.KVEC[2],
            v.KVEC[3], "  Codes:", v.KCODEtyped[1], v.KCODEtyped[2], v.KCODEtyped[3]));
  }
  if (ph.addMinusK == 'Y') {
    for (int n = 1; n <= ph.Nvk; ++n) {
      PropagationVector& minus = ph.vectors[n + ph.Nvk];
      for (int i = 1; i <= 3; ++i) {
        minus.KVEC[i] = -ph.vectors[n].KVEC[i];
        minus.KCODEtyped[i] = -ph.vectors[n].KCODEtyped[i];
      }
      WriteLine(job, Unit::Out,
                Fmt("(A,I3,A,3F10.5)", " => Propagation vector #", n + ph.Nvk, ": ", minus.KVEC[1],
                    minus.KVEC[2], minus.KVEC[3]));
    }
    ph.Nvk *= 2;
  }
  for (int n = 1; n <= ph.Nvk; ++n) {
    PropagationVector& v = ph.vectors[n];
    v.halfVector = 0;
    if (ph.addMinusK == 'Y') continue;
    v.halfVector = IsIntegral(2.0f * v.KVEC[1]) && IsIntegral(2.0f * v.KVEC[2]) &&
                   IsIntegral(2.0f * v.KVEC[3]);
  }
}

void ReadFurtherParameters(Job& job, Phase& ph, PhasePattern& c) {
  const int base = job.run.firstFurtherParameter;
  if (base + ph.Furth > DimensionLimits::MPAR) {
    ConsoleLine(job, Fmt("(A,I4,A,I3)", " => Number of further parameters:", ph.Furth,
                         "  maximum:", DimensionLimits::MPAR - base));
    StopBox(job, " => Too many further parameters!");
  }
  for (int n = 1; n <= ph.Furth; ++n) {
    ReadMaskedLine(job, Unit::Control, "4ff", job.LINE,
                   {&ph.FurtherName[n], &c.PAR[base + n], &c.PACtyped[base + n]});
  }
}

// Quadratic form of a direction with a metric, over i <= j, off-diagonal terms once.
float QuadraticForm(const Table1<float, 3>& v, const Table2<double, 3, 3>& g) {
  double sum = 0.0;
  for (int i = 1; i <= 3; ++i) {
    for (int j = i; j <= 3; ++j) sum += v[i] * g(i, j) * v[j];
  }
  return static_cast<float>(sum);
}

void ReadProfileForPattern(Job& job, int k, int ip) {
  Phase& ph = job.phases[k];
  PhasePattern& c = ph.pat[ip];
  const Pattern& p = job.patterns[ip];
  const bool intensities = std::abs(c.Irf) == 4;
  WriteReports(job, Fmt("(A,I2)", " =>-------> PROFILE PARAMETERS FOR PATTERN:", ip));
  if (intensities) {
    c.StrainModel = 0;
    ReadSlots(job, c, {1, 2, 3, 4, 5, 12});
    c.SizeModel = 0;
    ReadSlots(job, c, {13, 14, 15, 16, 17, 18, 19});
  } else {
    ReadSlots(job, c, {1, 17, 2, 18, 19, 20}, &c.StrainModel);
    ReadSlots(job, c, {3, 4, 5, 15, 16, 28, 29}, &c.SizeModel);
    if (c.Npr == 12 || p.IXUNIT == 1) ReadSlots(job, c, {46, 47, 48, 49, 50});
  }
  ReadSlots(job, c, {6, 7, 8, 9, 10, 11});
  for (int i = 1; i <= 6; ++i) c.CellConstants[i] = c.PAR[5 + i];
  c.cellVolume = CellVolume(c.CellConstants);
  if (intensities) {
    for (int s = 6; s <= 11; ++s) c.PACtyped[s] = 0.0f;
    ReadSlots(job, c, {35, 36, 37, 38, 39});
  } else {
    ReadSlots(job, c, {12, 13, 14, 35, 36, 37});
  }
  if (p.separateUVW2) ReadSlots(job, c, {43, 44, 45});
  if (c.Npr == 5 || c.Npr >= 9) {
    ReadMaskedLine(job, Unit::Control, "ffff", job.LINE,
                   {&c.PAR[41], &c.PACtyped[41], &c.PAR[42], &c.PACtyped[42]});
  }
  if (ph.Sol == 1) {
    std::vector<ReadTarget> values = {&c.PAR[38], &c.PAR[39], &c.PAR[40], &ph.ModA, &ph.ModS};
    ReadMaskedLineList(job, Unit::Control, "fffii", job.LINE, values);
    ReadMaskedLine(job, Unit::Control, "fff", job.LINE,
                   {&c.PACtyped[38], &c.PACtyped[39], &c.PACtyped[40]});
    if (std::abs(ph.ModS) == 1) ReadAxis(job, ph.ShiftAxis);
  }
  if (c.PACtyped[1] != 0.0f && std::abs(ph.Jbt) == 2) {
    ConsoleLine(job, Fmt("(A,I2)", " Scale factor fixed for phase:", k));
    c.PACtyped[1] = 0.0f;
  }
  EchoParameters(job, c, p);
  if (c.Npr == 8 && !intensities && (c.PAR[15] < 0.0f || c.PAR[16] < 0.0f)) {
    ConsoleLine(job, " Input X and/or Y parameters negative!");
    ConsoleLine(job, "                (value fixed at 0.001)");
    if (c.PAR[15] < 0.0f) c.PAR[15] = 0.001f;
    if (c.PAR[16] < 0.0f) c.PAR[16] = 0.001f;
  }
  if (c.SizeModel != 0) ReadSizeModel(job, ph, c);
  if (c.StrainModel != 0) ReadStrainModel(job, ph, c);
  WriteShiftAndAsymmetryModels(job, ph, c);
  ReadPropagationVectors(job, ph);
  if (ph.Furth != 0) ReadFurtherParameters(job, ph, c);
  if (ph.Str != 0 && ph.Str != 2) {
    ReadSlots(job, c, {18, 19, 20, 21, 22});
    ReadSlots(job, c, {23, 24, 25, 26, 27});
  }
  if (ph.Str >= 2) ReadSlots(job, c, {29, 30, 31, 32, 33, 34});
  ReciprocalMetric(job, k, ip);
  c.prefLength2 = QuadraticForm(c.PREF, c.metric.Gstar);
  ph.strainAxisLength2 = QuadraticForm(ph.StrainAxis, c.metric.Gstar);
  ph.sizeAxisLength2 = QuadraticForm(ph.SizeAxis, c.metric.Gstar);
  ph.shiftAxisLength2 = QuadraticForm(ph.ShiftAxis, c.metric.Gstar);
}

void EchoCodes(Job& job, const Phase& ph, const PhasePattern& c, const Pattern& p, int ip) {
  if (std::abs(c.Irf) == 4) {
    WriteLine(job, Unit::Out, " ==> CODEWORDS FOR Scale and Extinction PARAMETERS:");
    WriteLine(job, Unit::Out, Row(c, {1, 2, 3, 4, 5, 12}, true));
    WriteLine(job, Unit::Out, Row(c, {13, 14, 15, 16, 17, 18, 19}, true));
    return;
  }
  WriteLine(job, Unit::Out, Fmt("(A,I2)", " ==> CODEWORDS FOR PROFILE PARAMETERS of PATTERN#", ip));
  // With generalized size or strain the codes of the plain terms are shown as zero.
  PhasePattern shown = c;
  if (ph.Str != 0) {
    for (int s : {18, 19, 20, 28, 29}) shown.PACtyped[s] = 0.0f;
  }
  WriteLine(job, Unit::Out, Row(shown, {1, 17, 2, 18, 19, 20}, true));
  WriteLine(job, Unit::Out, Row(shown, {3, 4, 5, 15, 16, 28, 29}, true));
  WriteLine(job, Unit::Out, Row(shown, {6, 7, 8, 9, 10, 11}, true));
  WriteLine(job, Unit::Out, Row(shown, {12, 13, 14, 35, 36, 37}, true));
  if (p.separateUVW2)
    WriteLine(job, Unit::Out, " => CU2,CV2,CW2 for lambda(2) :" + Row(c, {43, 44, 45}, true));
  if (c.Npr == 12) {
    WriteLine(job, Unit::Out,
              " => Split pV right halfwidth parameters CUr,CVr,CWr: " + Row(c, {46, 47, 48}, true));
    WriteLine(job, Unit::Out,
              " => Split pV right CEtaR0 and CXr parameters: " + Row(c, {49, 50}, true));
    WriteLine(job, Unit::Out, " => Left and right CPar (FWHM~Par/TanT):" + Row(c, {41, 42}, true));
  }
  if (c.Npr == 5)
    WriteLine(job, Unit::Out, " => Further shape parameters :" + Row(c, {41, 42}, true));
  if (c.StrainModel > 8) {
    WriteLine(job, Unit::Out, " => Additional strain parameters and codes: ");
    WriteLine(job, Unit::Out, Row(c, {21, 22, 23, 24, 25}, false));
    WriteLine(job, Unit::Out, Row(c, {21, 22, 23, 24, 25}, true));
  }
  if (ph.Furth != 0) {
    WriteLine(job, Unit::Out, " => Further parameters defined by user: ");
    for (int n = 1; n <= ph.Furth; ++n) {
      const int s = job.run.firstFurtherParameter + n;
      WriteLine(
          job, Unit::Out,
          Fmt("(4X,A4,F12.5,F10.2)", FixedText(ph.FurtherName[n], 4), c.PAR[s], c.PACtyped[s]));
    }
  }
  if (ph.Str == 1 || ph.Str == 3) {
    WriteLine(job, Unit::Out, " => Generalized Strain parameters and codes");
    WriteLine(job, Unit::Out, Row(c, {18, 19, 20, 21, 22, 23, 24, 25, 26, 27}, false));
    WriteLine(job, Unit::Out, Row(c, {18, 19, 20, 21, 22, 23, 24, 25, 26, 27}, true));
  }
  if (ph.Str == 2 || ph.Str == 3) {
    WriteLine(job, Unit::Out, " => Generalized Size parameters and codes");
    WriteLine(job, Unit::Out, Row(c, {29, 30, 31, 32, 33, 34}, false));
    WriteLine(job, Unit::Out, Row(c, {29, 30, 31, 32, 33, 34}, true));
  }
}

}  // namespace

void ReadProfile(Job& job, int k) {
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    if (job.phases[k].pat[ip].Contribution != 0) ReadProfileForPattern(job, k, ip);
  }
}

void ReciprocalMetric(Job& job, int k, int ip) {
  Phase& ph = job.phases[k];
  PhasePattern& c = ph.pat[ip];
  const SpaceGroup& g = ph.group;
  if (g.UniqueAxis > 3) StopBox(job, " Something is wrong in S.G. symbol!! ");
  WriteLine(job, Unit::Out, " => Laue class: " + std::string(LaueClassName(g.LAUE)));
  ForceCellToLaueClass(c.CellConstants, g.LAUE, g.UniqueAxis);
  if (!BuildCellMetric(c.CellConstants, c.metric)) StopBox(job, "Bad cell parameters!");
  const Table1<float, 6> coefficients = ReciprocalCoefficients(c.metric);
  if (!(coefficients[1] > 0.0f && coefficients[2] > 0.0f && coefficients[3] > 0.0f)) {
    StopBox(job, "Bad G*-metric tensor!");
  }
  for (int i = 1; i <= 6; ++i) c.PAR[5 + i] = coefficients[i];
  c.cellVolume = c.metric.volume;
}

void DecodeProfileCodes(Job& job, int k) {
  Phase& ph = job.phases[k];
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    PhasePattern& c = ph.pat[ip];
    if (c.Contribution == 0) continue;
    EchoCodes(job, ph, c, job.patterns[ip], ip);
    for (int s = 1; s <= DimensionLimits::MPAR; ++s)
      c.PAC[s] = DecodeCheckedCode(job, c.PACtyped[s]);
  }
  for (int n = 1; n <= ph.Nvk; ++n) {
    for (int i = 1; i <= 3; ++i) {
      ph.vectors[n].KCODE[i] = DecodeCheckedCode(job, ph.vectors[n].KCODEtyped[i]);
    }
  }
}

}  // namespace corvinet
