// Profile lines of a phase in each pattern: scale, widths, cell, shape, models, vectors and further
// parameters.
#include "control/profile_lines.h"

#include "control/codeword_check.h"

#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <span>
#include <vector>

#include "control/profile_layout.h"
#include "crystal/metric.h"
#include "format/fortran_format.h"
#include "format/text.h"
#include "io/field_reader.h"
#include "model/size_strain.h"
#include "surface/console.h"

namespace corvinet {

using namespace profile_layout;

namespace {

// Reads the values of PAR slots (and an optional integer after them), then the
// line of their codes.
void ReadSlots(Job& job, PhasePattern& c, std::span<const int> slots, int* trailing = nullptr) {
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

std::string Row(const PhasePattern& c, std::span<const int> slots, bool codes) {
  std::vector<FormatValue> values;
  for (int s : slots) values.emplace_back(codes ? c.PACtyped[s] : c.PAR[s]);
  return FormatText("(10F11.5)", values);
}

std::string Row(const PhasePattern& c, std::initializer_list<int> slots, bool codes) {
  return Row(c, std::span<const int>(slots.begin(), slots.size()), codes);
}

void Echo(Job& job, const char* words, const PhasePattern& c, std::span<const int> slots) {
  WriteLine(job, Unit::Out, words + Row(c, slots, false));
}

void Echo(Job& job, const char* words, const PhasePattern& c, std::initializer_list<int> slots) {
  Echo(job, words, c, std::span<const int>(slots.begin(), slots.size()));
}

// Echoes the profile parameters read, by the kind of phase and profile.
void EchoParameters(Job& job, const PhasePattern& c, const Pattern& p) {
  if (std::abs(c.Irf) == 4) {
    Echo(job, " => Scale factors Sc1..Sc5 and Sc6:", c, kIntegratedScales);
    Echo(job, " => Extinction parameters:", c, kIntegratedExtinction);
    Echo(job, " => Cell parameters:", c, kCellLine);
    return;
  }
  Echo(job, " => Scale factor:", c, {Slot::Scale});
  Echo(job, " => Shape parameter:", c, {Slot::Shape1});
  Echo(job, " => Overall temperature factor:", c, {Slot::Bov});
  Echo(job, " => Strain parameters:", c, {Slot::Str1, Slot::Str2, Slot::Str3});
  Echo(job, " => Halfwidth parameters U,V,W:", c, {Slot::U, Slot::V, Slot::W});
  Echo(job, " => X and Y parameters:", c, {Slot::X, Slot::Y});
  Echo(job, " => Size parameters (G,L):", c, {Slot::GauSiz, Slot::LorSiz});
  Echo(job, " => Cell parameters:", c, kCellLine);
  Echo(job, " => Preferred orientation parameters:", c, {Slot::Pref1, Slot::Pref2});
  Echo(job, " => Asymmetry parameters:", c, {Slot::Asy1, Slot::Asy2, Slot::Asy3, Slot::Asy4});
  if (p.separateUVW2) Echo(job, " => U2,V2,W2 for lambda(2) :", c, kSecondWidthLine);
  if (ProfileOf(c) == ProfileCode::kSplitPseudoVoigt) {
    Echo(job, " => Split pV right halfwidth parameters Ur,Vr,Wr: ", c,
         {Slot::Ur, Slot::Vr, Slot::Wr});
    Echo(job, " => Split pV right EtaR0 and Xr parameters: ", c, {Slot::Etar, Slot::Xr});
    Echo(job, " => Left and right Par (FWHM ~ Par/tanT):", c, kShapePair);
  }
  if (ProfileOf(c) == ProfileCode::kTripledPseudoVoigt)
    Echo(job, " => Further shape parameters :", c, kShapePair);
  if (ProfileOf(c) == ProfileCode::kAxialDivergence) {
    Echo(job, " => Further shape parameters (S_L and D_L):", c, kShapePair);
    WriteLine(job, Unit::Out, "    S_L is source width/detector distance");
    WriteLine(job, Unit::Out, "    D_L is detector width/detector distance");
  }
}

void ReadSizeModel(Job& job, Phase& ph, PhasePattern& c) {
  const int model = c.SizeModel;
  WriteLine(job, Unit::Out, Fmt("(A,I3,A)", " => The ", model, "th model for size is used"));
  if (*SizeModelText(model) != '\0') WriteLine(job, Unit::Out, SizeModelText(model));
  if (std::abs(model) == 1) {
    ReadAxis(job, ph.SizeAxis);
    WriteLine(job, Unit::Out,
              Fmt("(A,3F8.3)", " => Platelet(1) or Needle(-1) axis: ", ph.SizeAxis[1],
                  ph.SizeAxis[2], ph.SizeAxis[3]));
  }
  if (std::abs(model) < 15) return;
  ReadSlots(job, c, kHarmonicsFirst);
  ReadSlots(job, c, kHarmonicsSecond);
  if (std::abs(model) == 15) {
    WriteLine(job, Unit::Out, " => Coefficients of Spherical Harmonics for anisotropic size ");
    WriteLine(job, Unit::Out, "    broadening for a monoclinic lattice (b-unique)");
    WriteLine(job, Unit::Out, "    Y00        Y22+        Y22-       Y20         Y44+      Y44-");
    WriteLine(job, Unit::Out, Row(c, kHarmonicsFirst, false));
    WriteLine(job, Unit::Out, "    Y42+       Y42-        Y40");
    WriteLine(job, Unit::Out, Row(c, kHarmonicsSecond, false));
  } else if (std::abs(model) == 16) {
    WriteLine(job, Unit::Out, " => Coefficients of Spherical Harmonics for anisotropic size ");
    WriteLine(job, Unit::Out, "    broadening for a trigonal lattice (hexagonal setting)");
    WriteLine(job, Unit::Out, "    Y00        Y20         Y40        Y43-        Y60       Y63");
    WriteLine(job, Unit::Out, Row(c, kHarmonicsFirst, false));
    WriteLine(job, Unit::Out, "       Y66+");
    WriteLine(job, Unit::Out, Row(c, {Slot::SizeSH7}, false));
  }
}

void ReadStrainModel(Job& job, Phase& ph, PhasePattern& c) {
  const int model = c.StrainModel;
  WriteLine(job, Unit::Out, Fmt("(A,I3,A)", " => The ", model, "th model for strain is used"));
  if (*StrainModelText(model) != '\0') WriteLine(job, Unit::Out, StrainModelText(model));
  if (model == 7) {
    ReadAxis(job, ph.StrainAxis);
    WriteLine(job, Unit::Out,
              Fmt("(A,3F8.3)", " => Microstrain axis: ", ph.StrainAxis[1], ph.StrainAxis[2],
                  ph.StrainAxis[3]));
  }
  if (model > 8) ReadSlots(job, c, kExtraStrain);
}

void WriteShiftAndAsymmetryModels(Job& job, const Phase& ph, const PhasePattern& c) {
  if (ph.ModA != 0) {
    WriteLine(job, Unit::Out,
              Fmt("(A,I3,A)", " => The ", ph.ModA, "th model for hkl-dependent Asymmetry is used"));
    WriteLine(job, Unit::Out, " ==> Sorry, no hkl-dependent asymmetry model is available! ");
    WriteLine(job, Unit::Out, Fmt("(A,F11.5)", " => Asymmetry parameter: ", c.PAR[Slot::AsyP]));
    WriteLine(job, Unit::Out,
              Fmt("(A,F11.2)", "                  Code : ", c.PACtyped[Slot::AsyP]));
  }
  if (ph.ModS != 0) {
    WriteLine(job, Unit::Out,
              Fmt("(A,I3,A)", " => The ", ph.ModS, "th model for hkl-dependent Shift is used"));
    if (*ShiftModelText(ph.ModS) != '\0') WriteLine(job, Unit::Out, ShiftModelText(ph.ModS));
    if (*ShiftFormulaText(ph.ModS) != '\0') WriteLine(job, Unit::Out, ShiftFormulaText(ph.ModS));
    WriteLine(
        job, Unit::Out,
        Fmt("(A,2F11.5)", " => Shift parameters: ", c.PAR[Slot::Shift1], c.PAR[Slot::Shift2]));
    WriteLine(job, Unit::Out,
              Fmt("(A,2F11.2)", "              Codes : ", c.PACtyped[Slot::Shift1],
                  c.PACtyped[Slot::Shift2]));
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
    ReadSlots(job, c, kIntegratedScales);
    c.SizeModel = 0;
    ReadSlots(job, c, kIntegratedExtinction);
  } else {
    ReadSlots(job, c, kScaleLine, &c.StrainModel);
    ReadSlots(job, c, kWidthLine, &c.SizeModel);
    if (ProfileOf(c) == ProfileCode::kSplitPseudoVoigt || p.IXUNIT == AbscissaUnit::kTimeOfFlight)
      ReadSlots(job, c, kRightWidthLine);
  }
  ReadSlots(job, c, kCellLine);
  for (int i = 1; i <= 6; ++i) c.CellConstants[i] = c.PAR[Slot::FirstCell - 1 + i];
  c.cellVolume = CellVolume(c.CellConstants);
  if (intensities) {
    for (int s : kCellLine) c.PACtyped[s] = 0.0f;
    ReadSlots(job, c, kUnusedLine);
  } else {
    ReadSlots(job, c, kOrientationLine);
  }
  if (p.separateUVW2) ReadSlots(job, c, kSecondWidthLine);
  if (HasShapeLine(ProfileOf(c))) {
    ReadMaskedLine(
        job, Unit::Control, "ffff", job.LINE,
        {&c.PAR[Slot::Shp1], &c.PACtyped[Slot::Shp1], &c.PAR[Slot::Shp2], &c.PACtyped[Slot::Shp2]});
  }
  if (ph.Sol == 1) {
    std::vector<ReadTarget> values = {&c.PAR[Slot::AsyP], &c.PAR[Slot::Shift1],
                                      &c.PAR[Slot::Shift2], &ph.ModA, &ph.ModS};
    ReadMaskedLineList(job, Unit::Control, "fffii", job.LINE, values);
    ReadMaskedLine(job, Unit::Control, "fff", job.LINE,
                   {&c.PACtyped[Slot::AsyP], &c.PACtyped[Slot::Shift1], &c.PACtyped[Slot::Shift2]});
    if (std::abs(ph.ModS) == 1) ReadAxis(job, ph.ShiftAxis);
  }
  if (c.PACtyped[Slot::Scale] != 0.0f && std::abs(ph.Jbt) == 2) {
    ConsoleLine(job, Fmt("(A,I2)", " Scale factor fixed for phase:", k));
    c.PACtyped[Slot::Scale] = 0.0f;
  }
  EchoParameters(job, c, p);
  if (ProfileOf(c) == ProfileCode::kTchPseudoVoigt && !intensities &&
      (c.PAR[Slot::X] < 0.0f || c.PAR[Slot::Y] < 0.0f)) {
    ConsoleLine(job, " Input X and/or Y parameters negative!");
    ConsoleLine(job, "                (value fixed at 0.001)");
    if (c.PAR[Slot::X] < 0.0f) c.PAR[Slot::X] = 0.001f;
    if (c.PAR[Slot::Y] < 0.0f) c.PAR[Slot::Y] = 0.001f;
  }
  if (c.SizeModel != 0) ReadSizeModel(job, ph, c);
  if (c.StrainModel != 0) ReadStrainModel(job, ph, c);
  WriteShiftAndAsymmetryModels(job, ph, c);
  ReadPropagationVectors(job, ph);
  if (ph.Furth != 0) ReadFurtherParameters(job, ph, c);
  if (ph.Str != 0 && ph.Str != 2) {
    ReadSlots(job, c, kStrainFirst);
    ReadSlots(job, c, kStrainSecond);
  }
  if (ph.Str >= 2) ReadSlots(job, c, kSizeLine);
  ReciprocalMetric(job, k, ip);
  c.prefLength2 = QuadraticForm(c.PREF, c.metric.Gstar);
  ph.strainAxisLength2 = QuadraticForm(ph.StrainAxis, c.metric.Gstar);
  ph.sizeAxisLength2 = QuadraticForm(ph.SizeAxis, c.metric.Gstar);
  ph.shiftAxisLength2 = QuadraticForm(ph.ShiftAxis, c.metric.Gstar);
}

void EchoCodes(Job& job, const Phase& ph, const PhasePattern& c, const Pattern& p, int ip) {
  if (std::abs(c.Irf) == 4) {
    WriteLine(job, Unit::Out, " ==> CODEWORDS FOR Scale and Extinction PARAMETERS:");
    WriteLine(job, Unit::Out, Row(c, kIntegratedScales, true));
    WriteLine(job, Unit::Out, Row(c, kIntegratedExtinction, true));
    return;
  }
  WriteLine(job, Unit::Out, Fmt("(A,I2)", " ==> CODEWORDS FOR PROFILE PARAMETERS of PATTERN#", ip));
  // With generalized size or strain the codes of the plain terms are shown as zero.
  PhasePattern shown = c;
  if (ph.Str != 0) {
    for (int s : {Slot::Str1, Slot::Str2, Slot::Str3, Slot::GauSiz, Slot::LorSiz})
      shown.PACtyped[s] = 0.0f;
  }
  WriteLine(job, Unit::Out, Row(shown, kScaleLine, true));
  WriteLine(job, Unit::Out, Row(shown, kWidthLine, true));
  WriteLine(job, Unit::Out, Row(shown, kCellLine, true));
  WriteLine(job, Unit::Out, Row(shown, kOrientationLine, true));
  if (p.separateUVW2)
    WriteLine(job, Unit::Out, " => CU2,CV2,CW2 for lambda(2) :" + Row(c, kSecondWidthLine, true));
  if (ProfileOf(c) == ProfileCode::kSplitPseudoVoigt) {
    WriteLine(job, Unit::Out,
              " => Split pV right halfwidth parameters CUr,CVr,CWr: " +
                  Row(c, {Slot::Ur, Slot::Vr, Slot::Wr}, true));
    WriteLine(
        job, Unit::Out,
        " => Split pV right CEtaR0 and CXr parameters: " + Row(c, {Slot::Etar, Slot::Xr}, true));
    WriteLine(job, Unit::Out,
              " => Left and right CPar (FWHM~Par/TanT):" + Row(c, kShapePair, true));
  }
  if (ProfileOf(c) == ProfileCode::kTripledPseudoVoigt)
    WriteLine(job, Unit::Out, " => Further shape parameters :" + Row(c, kShapePair, true));
  if (c.StrainModel > 8) {
    WriteLine(job, Unit::Out, " => Additional strain parameters and codes: ");
    WriteLine(job, Unit::Out, Row(c, kExtraStrain, false));
    WriteLine(job, Unit::Out, Row(c, kExtraStrain, true));
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
    WriteLine(job, Unit::Out, Row(c, kStrainTerms, false));
    WriteLine(job, Unit::Out, Row(c, kStrainTerms, true));
  }
  if (ph.Str == 2 || ph.Str == 3) {
    WriteLine(job, Unit::Out, " => Generalized Size parameters and codes");
    WriteLine(job, Unit::Out, Row(c, kSizeLine, false));
    WriteLine(job, Unit::Out, Row(c, kSizeLine, true));
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
  for (int i = 1; i <= 6; ++i) c.PAR[Slot::FirstCell - 1 + i] = coefficients[i];
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
