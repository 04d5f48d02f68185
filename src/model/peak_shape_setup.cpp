// The per-reflection constants of a peak: corrected position, mixing, exponent, side peaks.
#include "model/peak_shape_setup.h"

#include <cmath>

#include "format/fortran_format.h"
#include "model/pseudo_voigt.h"
#include "records/profile_slots.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr float kDegreesToRadians = 0.017453292f;
constexpr float kRadiansToDegrees = 57.29578f;

namespace Slot = ProfileSlot;

// Global slots of the pattern.
constexpr int kZero = 1;
constexpr int kSycos = 8;
constexpr int kSysin = 9;

bool KnownCode(ProfileCode code) {
  return StoredNumber(code) >= StoredNumber(ProfileCode::kGaussian) &&
         StoredNumber(code) <= StoredNumber(ProfileCode::kAxialDivergence);
}

void SetWidth(float h, PeakShape& s) {
  s.H = h;
  s.invH = 1.0f / h;
}

void SetSplit(const WidthParameters& par, const ReflectionShapeInput& in, PeakShape& s) {
  s.eta = par[Slot::Shape1] + par[Slot::X] * in.twoTheta;
  s.eta2 = par[Slot::Etar] + par[Slot::Xr] * in.twoTheta;
  s.H2 = in.widths.HL;
  using namespace ShapeConstant;
  const float w = 0.25f * (s.H * (kSplitGauss + kSplitLorentz * s.eta) +
                           s.H2 * (kSplitGauss + kSplitLorentz * s.eta2));
  s.splitInvW = 1.0f / w;
}

void SetTripled(const WidthParameters& par, const ReflectionShapeInput& in, PeakShape& s) {
  s.eta = par[Slot::Shape1];
  s.D = par[Slot::Shp1] * in.tanTheta * kRadiansToDegrees;
  s.w1 = par[Slot::X];
  s.w2 = par[Slot::Y] + par[Slot::Shp2] * in.tanTheta;
}

void SetTch(const ReflectionShapeInput& in, PeakShape& s) {
  s.eta = in.widths.eta;
  TchState t;
  t.HG = in.widths.HG;
  t.HL = in.widths.HL;
  t.H = in.widths.H;
  t.q = t.HL / t.H;
  s.tch = TchWidthSlopes(t);
}

float PearsonExponent(const WidthParameters& par, float twoTheta) {
  return par[Slot::Shape1] + 100.0f * par[Slot::X] / twoTheta +
         10000.0f * par[Slot::Y] / (twoTheta * twoTheta);
}

}  // namespace

float CorrectedPosition(const Pattern& pattern, float twoTheta) {
  const float radians = twoTheta * kDegreesToRadians;
  return twoTheta + pattern.GLB[kZero] + pattern.GLB[kSycos] * std::cos(0.5f * radians) +
         pattern.GLB[kSysin] * std::sin(radians);
}

PeakShape PreparePeakShape(const Pattern& pattern, const WidthParameters& par,
                           const NumericalProfile& numerical, const ReflectionShapeInput& in) {
  if (!KnownCode(in.code))
    throw PeakError{PeakFailure::UnknownCode, 0.0f, 0, StoredNumber(in.code)};
  PeakShape s;
  s.code = in.code;
  s.twoTheta = in.twoTheta;
  s.tanTheta = in.tanTheta;
  s.cosTheta = 1.0f / std::sqrt(1.0f + in.tanTheta * in.tanTheta);
  s.position = CorrectedPosition(pattern, in.twoTheta);
  SetWidth(in.widths.H, s);
  switch (in.code) {
    case ProfileCode::kTripledPseudoVoigt:
      SetTripled(par, in, s);
      break;
    case ProfileCode::kPseudoVoigt:
    case ProfileCode::kAxialDivergence:
      s.eta = par[Slot::Shape1] + par[Slot::X] * in.twoTheta;
      break;
    case ProfileCode::kPearsonVII:
      s.pearson = PearsonConstants(PearsonExponent(par, in.twoTheta));
      break;
    case ProfileCode::kTchPseudoVoigt:
      SetTch(in, s);
      break;
    case ProfileCode::kNumerical:
      s.numerical = &numerical;
      break;
    case ProfileCode::kSplitPseudoVoigt:
      SetSplit(par, in, s);
      break;
    default:
      break;
  }
  return s;
}

ShapeSlotSlopes ShapeParameterSlopes(const PeakShape& s, const ProfileSlopes& d) {
  ShapeSlotSlopes out;
  switch (s.code) {
    case ProfileCode::kTripledPseudoVoigt:
      out.Shape1 = d.eta;
      out.X = d.w1;
      out.Y = d.w2;
      out.Shp1 = d.D * s.tanTheta * kRadiansToDegrees;
      out.Shp2 = d.w2 * s.tanTheta;
      break;
    case ProfileCode::kPseudoVoigt:
    case ProfileCode::kAxialDivergence:
      out.Shape1 = d.eta;
      out.X = d.eta * s.twoTheta;
      break;
    case ProfileCode::kPearsonVII:
      out.Shape1 = d.m;
      out.X = d.m * 100.0f / s.twoTheta;
      out.Y = d.m * 10000.0f / (s.twoTheta * s.twoTheta);
      break;
    case ProfileCode::kTchPseudoVoigt:
      out.X = d.lorentzian * s.tanTheta;
      out.Y = d.lorentzian / s.cosTheta;
      break;
    case ProfileCode::kSplitPseudoVoigt:
      out.Shape1 = d.eta;
      out.X = d.eta * s.twoTheta;
      out.Etar = d.eta2;
      out.Xr = d.eta2 * s.twoTheta;
      break;
    default:
      break;
  }
  return out;
}

void RequireResolutionShape(Job& job, int ip, ProfileCode code) {
  if (job.patterns[ip].IRESO == 0 || code == ProfileCode::kTchPseudoVoigt) return;
  ConsoleLine(job, Fmt("(A,I3)", " Illegal use of resolution function for pattern: ", ip));
  WarningBox(job, " ===>>> Illegal use of resolution function!! ");
  StopBox(job, "        NPROF must be equal to 7!  ");
}

}  // namespace corvinet
