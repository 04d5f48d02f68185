// The profile block of a phase in one pattern of a written control file, with codes composed.
#include <cstdlib>
#include <initializer_list>
#include <span>
#include <vector>

#include "control/control_writer.h"
#include "control/profile_layout.h"
#include "format/fortran_format.h"
#include "format/text.h"

namespace corvinet {

using namespace profile_layout;

using control_writer::Commented;
using control_writer::Head;
using control_writer::Put;

namespace {

float SlotCode(const PhasePattern& c, int slot) {
  return ComposeCode(c.PAC[slot]);
}

// The values of the slots, what stands behind them on their line (a model
// number, a remark), and the codes of the same slots, under one format.
std::string SlotLines(const PhasePattern& c, std::span<const int> slots, const char* format,
                      std::initializer_list<FormatValue> trailing = {}) {
  std::vector<FormatValue> all;
  for (int s : slots) all.emplace_back(c.PAR[s]);
  all.insert(all.end(), trailing);
  for (int s : slots) all.emplace_back(SlotCode(c, s));
  return FormatText(format, all, FieldFit::kReadBack);
}

std::string AxisLine(const Table1<float, 3>& axis, const char* remark) {
  return FmtReadBack("(3F8.4,12X,A)", axis[1], axis[2], axis[3], remark);
}

void AppendTimeOfFlightWidths(const Job& job, const PhasePattern& c, ControlLines& lines) {
  Head(job, lines, "!  Scale       Extinc      Bov     Str1     Str2     Str3    Strain-Model");
  Put(lines, SlotLines(c, kScaleLine, "(E12.5,5F9.4,I8/F12.5,5F9.2)", {c.StrainModel}));
  Head(job, lines,
       "!    Sig-2     Sig-1     Sig-0       Xt        Yt        Z1     Z0     Size-Model");
  Put(lines, SlotLines(c, kWidthLine, "(7F10.3,I4/7F10.2)", {c.SizeModel}));
  Head(job, lines, "!    Gam-2     Gam-1     Gam-0     LStr       LSiz  ");
  Put(lines, SlotLines(c, kRightWidthLine, "(5F10.3/5F10.2)"));
}

void AppendCommentedWidths(const Job& job, const PhasePattern& c, ControlLines& lines) {
  Head(job, lines, "!  Scale       Shape1      Bov     Str1     Str2     Str3    Strain-Model");
  Put(lines, SlotLines(c, kScaleLine, "(E12.5,5F9.4,I8/F12.5,5F9.2)", {c.StrainModel}));
  const std::string widths = ProfileOf(c) == ProfileCode::kSplitPseudoVoigt
                                 ? "!      Ul       Vl        Wl         Xl  "
                                 : "!      U        V         W          X   ";
  Head(job, lines, widths + "      Y       GauSiz   LorSiz Size-Model");
  Put(lines, SlotLines(c, kWidthLine, "(7F10.5,I4/7F10.2)", {c.SizeModel}));
}

// The plain form: no headers, remarks behind the numbers.
void AppendPlainWidths(const PhasePattern& c, ControlLines& lines) {
  Put(lines, SlotLines(c, kScaleLine, "(E12.5,5F8.4,I4,A/F12.5,5F8.2)",
                       {c.StrainModel, "   Scale ETA Bov Strain"}));
  Put(lines,
      SlotLines(c, kWidthLine, "(3F8.5,4F8.4,I4,A/7F8.2)", {c.SizeModel, "   U V W X Y Siz12"}));
}

void AppendSplitRight(const Job& job, const PhasePattern& c, ControlLines& lines) {
  Head(job, lines, "!      Ur       Vr        Wr       Etar0       Xr   ");
  Put(lines, SlotLines(c, kRightWidthLine, "(5F10.5/5F10.2)"));
}

void AppendIntensityScales(const Job& job, const PhasePattern& c, ControlLines& lines) {
  Head(job, lines, "!  Scale Factors ");
  Head(job, lines, "!  Sc1       Sc2        Sc3        Sc4        Sc5        Sc6");
  Put(lines, SlotLines(c, kIntegratedScales, "(6E11.4/6F10.2)"));
  Head(job, lines, "!  Extinction Parameters ");
  Head(job, lines, "!    Ext1      Ext2      Ext3      Ext4      Ext5      Ext6      Ext7");
  Put(lines, SlotLines(c, kIntegratedExtinction, "(7F10.4/7F10.2)"));
}

void AppendCell(const Job& job, const PhasePattern& c, ControlLines& lines) {
  Head(job, lines, "!     a          b         c        alpha      beta       gamma");
  std::vector<FormatValue> all;
  for (int i = 1; i <= 6; ++i) all.emplace_back(c.CellConstants[i]);
  for (int s : kCellLine) all.emplace_back(SlotCode(c, s));
  Put(lines, FormatText("(6F11.6/6F11.5)", all, FieldFit::kReadBack));
}

void AppendWidthLines(const Job& job, const PhasePattern& c, const Pattern& p,
                      ControlLines& lines) {
  if (std::abs(c.Irf) == 4) {
    AppendIntensityScales(job, c, lines);
  } else if (p.IXUNIT == AbscissaUnit::kTimeOfFlight) {
    AppendTimeOfFlightWidths(job, c, lines);
  } else {
    if (Commented(job)) {
      AppendCommentedWidths(job, c, lines);
    } else {
      AppendPlainWidths(c, lines);
    }
    if (ProfileOf(c) == ProfileCode::kSplitPseudoVoigt) AppendSplitRight(job, c, lines);
  }
}

void AppendOrientationAndAsymmetry(const Job& job, const PhasePattern& c, const Pattern& p,
                                   ControlLines& lines) {
  if (std::abs(c.Irf) == 4) {
    Head(job, lines, "!  Not yet used parameters");
    Put(lines, SlotLines(c, kUnusedLine, "(5F8.5/5F8.2)"));
    return;
  }
  if (p.IXUNIT == AbscissaUnit::kTimeOfFlight) {
    Head(job, lines, "!  Pref1  Pref2   alph0    beta0   alph1   beta1");
  } else {
    Head(job, lines, "!  Pref1  Pref2   Asy1    Asy2    Asy3     Asy4");
  }
  Put(lines, SlotLines(c, kOrientationLine, "(6F8.5/6F8.2)"));
}

void AppendShapeLines(const Job& job, const Phase& ph, const PhasePattern& c, const Pattern& p,
                      ControlLines& lines) {
  if (p.separateUVW2) {
    Head(job, lines, "!Additional U,V,W parameters for Lambda2");
    Put(lines, SlotLines(c, kSecondWidthLine, "(3F10.5,'   <--  U2,V2,W2 for lambda(2) '/3F10.5)"));
  }
  if (HasShapeLine(ProfileOf(c))) {
    const bool tof = p.IXUNIT == AbscissaUnit::kTimeOfFlight;
    Head(job, lines, tof ? "!Absorption correction parameters" : "!Additional Shape parameters");
    const char* format = tof ? "(2(F10.5,F8.2),'            ABS: ABSCOR1  ABSCOR2')"
                             : "(2(F10.5,F8.2),'            SHAPE: SHP1 CSHP1 & SHP2 CSHP2')";
    Put(lines, FmtReadBack(format, c.PAR[Slot::Shp1], SlotCode(c, Slot::Shp1), c.PAR[Slot::Shp2],
                           SlotCode(c, Slot::Shp2)));
  }
  if (ph.Sol == 1) {
    Head(job, lines, "!     AsyP    Shift1    Shift2  ModA ModS");
    const char* format =
        Commented(job) ? "(3F10.5,2i5/3F10.2)" : "(3F10.5,2i5,20X,'ASYM, SHIFTS'/3F10.2)";
    Put(lines, FmtReadBack(format, c.PAR[Slot::AsyP], c.PAR[Slot::Shift1], c.PAR[Slot::Shift2],
                           ph.ModA, ph.ModS, SlotCode(c, Slot::AsyP), SlotCode(c, Slot::Shift1),
                           SlotCode(c, Slot::Shift2)));
    if (std::abs(ph.ModS) == 1) {
      Put(lines, AxisLine(ph.ShiftAxis, " Shift-cos(1) or Shift-sin(-1) axis"));
    }
  }
}

void AppendSizeAndStrainModels(const Job& job, const Phase& ph, const PhasePattern& c,
                               ControlLines& lines) {
  const int size = std::abs(c.SizeModel);
  if (size == 1) Put(lines, AxisLine(ph.SizeAxis, " Platelet-Needle vector (Size)"));
  if (size == 15 || size == 16) {
    Head(job, lines,
         size == 15 ? "!   Y00        Y22+        Y22-       Y20         Y44+      Y44-"
                    : "!   Y00        Y20         Y40        Y43-        Y60       Y63 ");
    Put(lines, SlotLines(c, kHarmonicsFirst, "(6F11.6/6F11.6)"));
    Head(job, lines, size == 15 ? "!   Y42+       Y42-        Y40" : "!   Y66+ ");
    Put(lines, SlotLines(c, kHarmonicsSecond, "(3F11.6/3F11.6)"));
  }
  if (c.StrainModel == 7) Put(lines, AxisLine(ph.StrainAxis, " Axial vector for microstrains"));
  if (c.StrainModel > 8) {
    Head(job, lines, "! 5 additional strain parameters (Istrainmodel>8)");
    Put(lines, SlotLines(c, kExtraStrain, "(5F14.5/5F14.5)"));
  }
}

// All vectors of the phase are written, also those added as -K: the count
// written with the phase is the full one.
void AppendPropagationVectors(const Job& job, const Phase& ph, ControlLines& lines) {
  if (ph.Nvk == 0) return;
  Head(job, lines, "! Propagation vectors: ");
  for (int n = 1; n <= ph.Nvk; ++n) {
    const PropagationVector& v = ph.vectors[n];
    Put(lines, FmtReadBack("(3F12.7,10X,A,I2/3F12.6)", v.KVEC[1], v.KVEC[2], v.KVEC[3],
                           "Propagation Vector ", n, ComposeCode(v.KCODE[1]),
                           ComposeCode(v.KCODE[2]), ComposeCode(v.KCODE[3])));
  }
}

void AppendFurtherParameters(const Job& job, const Phase& ph, const PhasePattern& c,
                             ControlLines& lines) {
  if (ph.Furth == 0) return;
  Head(job, lines, "! Further parameters: ");
  for (int n = 1; n <= ph.Furth; ++n) {
    const int s = job.run.firstFurtherParameter + n;
    Put(lines,
        FmtReadBack("(A4,F14.6,F14.6)", FixedText(ph.FurtherName[n], 4), c.PAR[s], SlotCode(c, s)));
  }
}

// Generalized strain (Str neither 0 nor 2) is ten terms on two pairs of
// lines; the six generalized size terms (Str 2 and above) follow on one pair:
// the lines the reader reads for every Str.
void AppendGeneralizedTerms(const Job& job, const Phase& ph, const PhasePattern& c,
                            ControlLines& lines) {
  if (ph.Str != 0 && ph.Str != 2) {
    Head(job, lines, "! Additional strain parameters:");
    Put(lines, SlotLines(c, kStrainFirst, "(5E14.5/5F14.5)"));
    Put(lines, SlotLines(c, kStrainSecond, "(5E14.5/5F14.5)"));
  }
  if (ph.Str >= 3) {
    Head(job, lines, "! Generalized strain+size parameters:");
    Put(lines, SlotLines(c, kSizeLine, "(6E12.4/6F12.4)"));
  }
  if (ph.Str == 2) {
    Head(job, lines, "! Generalized size parameters:");
    Put(lines, SlotLines(c, kSizeLine, "(6E12.4/6F12.4)"));
  }
}

}  // namespace

void AppendProfileLines(const Job& job, int k, int ip, ControlLines& lines) {
  const Phase& ph = job.phases[k];
  const PhasePattern& c = ph.pat[ip];
  const Pattern& p = job.patterns[ip];
  Head(job, lines, FmtReadBack("(A,I3)", "!-------> Profile Parameters for Pattern #", ip));
  AppendWidthLines(job, c, p, lines);
  AppendCell(job, c, lines);
  AppendOrientationAndAsymmetry(job, c, p, lines);
  AppendShapeLines(job, ph, c, p, lines);
  AppendSizeAndStrainModels(job, ph, c, lines);
  AppendPropagationVectors(job, ph, lines);
  AppendFurtherParameters(job, ph, c, lines);
  AppendGeneralizedTerms(job, ph, c, lines);
}

}  // namespace corvinet
