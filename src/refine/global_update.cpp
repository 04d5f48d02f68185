// The update of the global slots of a pattern and the recoveries that follow it.
#include "refine/global_update.h"

#include <cmath>
#include <vector>

#include "refine/apply_shift.h"
#include "refine/background_height_update.h"
#include "surface/console.h"

namespace corvinet {

namespace {

namespace Global {
constexpr int kDtt1 = 8;
constexpr int kDtt2 = 9;
constexpr int kTransformC = 24;
constexpr int kTransformD = 25;
constexpr int kWavelength = 26;
constexpr int kP0 = 27;
constexpr int kCp = 28;
constexpr int kTau = 29;
}  // namespace Global

constexpr float kRecoveredSigma = 0.9999f;
constexpr float kSmallestMicroabsorption = 0.00001f;

using GlobalTable = Table1<ReportedValue, DimensionLimits::NGL>;

bool IsRefined(const Pattern& p, int slot) {
  return p.GLBword[slot].parameterNumber != 0;
}

// An out-of-range transforming coefficient goes back to 0, without a message.
void RecoverTransform(Pattern& p, GlobalTable& shown, int slot, float bound) {
  if (IsRefined(p, slot) && std::fabs(p.GLB[slot]) > bound) {
    p.GLB[slot] = 0.0f;
    shown[slot].sigma = kRecoveredSigma;
  }
}

void ClampMicroabsorption(Job& job, const UpdatePass& pass, Pattern& p) {
  if (p.GLB[Global::kP0] > 1.0f) {
    p.GLB[Global::kP0] = 0.5f;
    ConsoleLine(job, " Warning! Microabsorption parameter P0 > 1 !");
    if (pass.writeOut) {
      WriteLine(job, Unit::Out, " ----> Warning! Microabsorption parameter P0 >1 !");
      WriteLine(job, Unit::Out, "       Program is fixing P0 to 0.5 (s.d. unreliable)");
    }
  }
  for (int slot : {Global::kP0, Global::kCp, Global::kTau}) {
    if (!(p.GLB[slot] < 0.0f)) continue;
    p.GLB[slot] = kSmallestMicroabsorption;
    ConsoleLine(job, " Warning! Some microabsorption parameter <0");
    ConsoleLine(job, " Program is fixing such values!");
    if (pass.writeOut) {
      WriteLine(job, Unit::Out, " ----> Warning! Some microabsorption parameter is negative!");
      WriteLine(job, Unit::Out, "    Program is fixing such values to 0.00001 (s.d. unreliables)");
    }
    return;
  }
}

}  // namespace

void MoveWavelengths(Pattern& pattern, float lambda1) {
  const float old1 = pattern.LAMBDA[1];
  const float old2 = pattern.LAMBDA[2];
  pattern.LAMBDA[1] = lambda1;
  if (old2 == old1 || !(old1 > 0.0f)) {
    pattern.LAMBDA[2] = lambda1;
  } else {
    pattern.LAMBDA[2] = static_cast<float>(static_cast<double>(old2) / old1 * lambda1);
  }
}

bool HasMicroabsorption(const Pattern& pattern) {
  return pattern.MORE != 0 && (pattern.ILOR == 0 || pattern.ILOR == 3);
}

GlobalTable ShiftGlobalParameters(Job& job, int ip, const UpdatePass& pass) {
  Pattern& p = job.patterns[ip];
  GlobalTable shown;
  const float relaxation = RelaxationFactor(job, Relaxation::kGlobal);
  for (int s = 1; s <= DimensionLimits::NGL; ++s) {
    const ValueShift r = ShiftValue(job, p.GLB[s], p.GLBword[s], relaxation);
    shown[s] = {p.GLB[s], r.shift, r.sigma};
  }
  if (IsRefined(p, Global::kWavelength) && p.GLB[Global::kWavelength] > 0.0f) {
    MoveWavelengths(p, p.GLB[Global::kWavelength]);
  }
  RecoverTransform(p, shown, Global::kTransformC, 0.1f);
  RecoverTransform(p, shown, Global::kTransformD, 3.0f);
  if (HasMicroabsorption(p)) ClampMicroabsorption(job, pass, p);
  if (IsTofOrEnergy(p.IXUNIT)) {
    p.Dtt1 = p.GLB[Global::kDtt1];
    p.Dtt2 = p.GLB[Global::kDtt2];
  }
  for (int s = 1; s <= DimensionLimits::NGL; ++s) shown[s].value = p.GLB[s];
  return shown;
}

void UpdateGlobalParameters(Job& job, int ip, const UpdatePass& pass) {
  const GlobalTable shown = ShiftGlobalParameters(job, ip, pass);
  const std::vector<ShownHeight> heights = ShiftBackgroundHeights(job, ip);
  const Pattern& p = job.patterns[ip];
  WritePassLine(job, pass, GlobalHeading(ip));
  WritePassLine(job, pass, ParameterColumns());
  for (int s = 1; s <= DimensionLimits::NGL; ++s) {
    if (p.GLB[s] == 0.0f && !IsRefined(p, s)) continue;
    WritePassLine(job, pass, ParameterLine(GlobalSlotName(s, p.IXUNIT), shown[s]));
  }
  for (const ShownHeight& h : heights) {
    WritePassLine(job, pass, ParameterLine(BackgroundHeightName(h.point), h.shown));
  }
}

}  // namespace corvinet
