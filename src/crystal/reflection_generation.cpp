// Generation of the reflections of a phase over its wedge, with satellites and the report.
#include "crystal/reflection_generation.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "crystal/equivalents.h"
#include "crystal/metric.h"
#include "crystal/reflection_wedge.h"
#include "crystal/slot_error_stop.h"
#include "crystal/space_group_symbol.h"
#include "format/fortran_format.h"
#include "records/profile_slots.h"
#include "surface/console.h"

namespace corvinet {
namespace {

constexpr float kZeroVector = 0.00001f;
constexpr double kSameSatellite = 0.0001;
constexpr float kSelectionFlag = 99.0f;

using Triple = std::array<double, 3>;

// The real triples of the satellites stored so far for one phase.
struct SatelliteList {
  std::vector<Triple> triples;
  bool Holds(const Triple& t) const {
    for (const Triple& s : triples) {
      if (Near(s, t, 1.0) || Near(s, t, -1.0)) return true;
    }
    return false;
  }
  static bool Near(const Triple& s, const Triple& t, double sign) {
    for (int i = 0; i < 3; ++i) {
      if (std::fabs(sign * s[i] - t[i]) >= kSameSatellite) return false;
    }
    return true;
  }
  void Add(const Triple& t) {
    if (static_cast<int>(triples.size()) < DimensionLimits::kLargeIRS) triples.push_back(t);
  }
};

int RoundHalfAway(float v) {
  return static_cast<int>(v + (v >= 0.0f ? 0.5f : -0.5f));
}

// An index passes its divisor p when p is 0, or the index is 0, equal to p,
// or a multiple of p.
bool PassesDivisor(int index, int p) {
  if (p == 0 || index == 0 || index == p) return true;
  return index % p == 0;
}

bool IsZeroVector(const Table1<float, 3>& v) {
  return std::fabs(v[1]) < kZeroVector && std::fabs(v[2]) < kZeroVector &&
         std::fabs(v[3]) < kZeroVector;
}

struct GenerationState {
  Job& job;
  int k;
  int ip;
  SlotContext context;
  SatelliteList satellites;
  int taken = 0;
  Pattern& Pat() { return job.patterns[ip]; }
};

void StoreFundamental(GenerationState& s, int h, int k, int l, int multiplicity) {
  ReflectionSource source;
  source.h = h;
  source.k = k;
  source.l = l;
  source.real = {static_cast<double>(h), static_cast<double>(k), static_cast<double>(l)};
  source.multiplicity = multiplicity;
  if (!InsideRange(s.context, InverseDSquared(s.context.coefficients, source.real))) return;
  s.taken += StoreReflection(s.Pat(), s.Pat().reflections, s.context, source);
}

void StoreSatellite(GenerationState& s, int h, int k, int l, int multiplicity, int vector,
                    int sign) {
  const Table1<float, 3>& kv = s.job.phases[s.k].vectors[vector].KVEC;
  ReflectionSource source;
  source.h = h;
  source.k = k;
  source.l = l;
  source.satelliteIndex = sign * vector;
  source.multiplicity = multiplicity;
  source.real = {h + sign * static_cast<double>(kv[1]), k + sign * static_cast<double>(kv[2]),
                 l + sign * static_cast<double>(kv[3])};
  if (!InsideRange(s.context, InverseDSquared(s.context.coefficients, source.real))) return;
  if (s.satellites.Holds(source.real)) return;
  s.satellites.Add(source.real);
  s.taken += StoreReflection(s.Pat(), s.Pat().reflections, s.context, source);
}

// The fundamental and the satellites of one triple of the wedge.
void Consider(GenerationState& s, int h, int k, int l) {
  const Phase& ph = s.job.phases[s.k];
  const PhasePattern& c = ph.pat[s.ip];
  if (c.PAR[ProfileSlot::Pref1] > kSelectionFlag && !SelectedByPreferredVector(c.PREF, h, k, l))
    return;
  if (IsSystematicallyAbsent(ph.group, h, k, l)) return;
  const int multiplicity = FormMultiplicity(ph.group.LAUE, ph.group.UniqueAxis, h, k, l);
  const bool origin = h == 0 && k == 0 && l == 0;
  if (c.Irf != -1 && !origin) StoreFundamental(s, h, k, l, multiplicity);
  for (int n = 1; n <= ph.Nvk; ++n) {
    StoreSatellite(s, h, k, l, multiplicity, n, 1);
    const bool ownMate = origin || IsZeroVector(ph.vectors[n].KVEC);
    if (!ownMate) StoreSatellite(s, h, k, l, multiplicity, n, -1);
  }
}

void ReportGeneration(Job& job, int k, int ip, const ReflectionRange& range) {
  const Phase& ph = job.phases[k];
  const SpaceGroup& g = ph.group;
  const double sMin = std::sqrt(4.0 * range.sLow);
  const double sMax = std::sqrt(4.0 * range.sHigh);
  WriteLine(job, Unit::Out,
            Fmt("(A,A,A,I2)", " => Laue symmetry ", PrintedLaueClass(g.LAUE),
                " will be used to gnerate HKL for pattern# ", ip));
  WriteLine(job, Unit::Out,
            Fmt("(A,F10.5,A,F10.5,A)", " => Reflections generated between S(1/d)min:", sMin,
                " A-1 and S(1/d)max:", sMax, " A-1"));
  WriteLine(job, Unit::Out,
            Fmt("(A,F10.4,A,F10.4,A)",
                " =>                                    dmax:", sMin > 0.0 ? 1.0 / sMin : 0.0,
                " A   and      dmin:", sMax > 0.0 ? 1.0 / sMax : 0.0, " A"));
  WriteLine(job, Unit::Out,
            Fmt("(A,I3,A,A)", "  NSPGRP:  ", g.LAUE, " -->  ", ph.SpaceGroupSymbol));
  WriteLine(job, Unit::Out, "   M(1)   M(2)   M(3)   M(4)   M(5)   M(6)   M(7)   M(8)");
  const auto& w = g.generatorWords;
  WriteLine(job, Unit::Out, Fmt("(8I7)", w[1], w[2], w[3], w[4], w[5], w[6], w[7], w[8]));
}

void ReportCutLimits(Job& job) {
  WriteLine(job, Unit::Out,
            " => Warning: index limits above 127 cut to 127 (the reflection key holds -128..127)");
}

// The notes on the file of relevant reflections of a generation from a
// symbol with operators of the control file, or of satellites.
void ReportRelevantFile(Job& job, const Phase& ph, int irf) {
  if (ph.Isy != 0 && irf == 0) {
    WriteLine(job, Unit::Out,
              " => A new file with relevant HKLs for the present model will be written");
    WriteLine(job, Unit::Out, "    because isym=1");
  } else if (irf < 0) {
    WriteLine(job, Unit::Out, " => (hkl) progenitors generated from space group symbol");
    WriteLine(job, Unit::Out, "     a file with hkl-satellites relevant to the present model");
    WriteLine(job, Unit::Out, "     will be written");
  }
}

int IndexLimit(double length, double sMax, int factor) {
  const double limit = std::trunc(factor * length * sMax);
  return limit > kMaxKeyIndex ? kMaxKeyIndex + 1 : static_cast<int>(limit);
}

}  // namespace

IndexLimits GenerationIndexLimits(const Table1<float, 6>& coefficients, double sHigh,
                                  bool withVectors) {
  const Table1<float, 6> cell = CellFromCoefficients(coefficients);
  const double sMax = std::sqrt(std::max(sHigh, 0.0));
  const int factor = withVectors ? 4 : 2;
  IndexLimits limits;
  int* values[3] = {&limits.hMax, &limits.kMax, &limits.lMax};
  for (int i = 0; i < 3; ++i) {
    *values[i] = IndexLimit(cell[i + 1], sMax, factor);
    if (*values[i] > kMaxKeyIndex) {
      *values[i] = kMaxKeyIndex;
      limits.cut = true;
    }
  }
  return limits;
}

bool SelectedByPreferredVector(const Table1<float, 3>& pref, int h, int k, int l) {
  const int p1 = RoundHalfAway(pref[1]);
  const int p2 = RoundHalfAway(pref[2]);
  const int p3 = RoundHalfAway(pref[3]);
  return PassesDivisor(h, p1) && PassesDivisor(k, p2) && PassesDivisor(l, p3) &&
         PassesDivisor(h + k + l, p1 + p2 + p3);
}

int GenerateReflections(Job& job, int k, int ip, LorentzFactor lorentz, const HklShift& shift) {
  const Phase& ph = job.phases[k];
  if (ph.group.UniqueAxis > 3) StopBox(job, " Illegal SP symb:if cubic, set 3 instead of -3");
  GenerationState state{job, k, ip, MakeSlotContext(job, k, ip, lorentz, shift), {}, 0};
  const IndexLimits limits =
      GenerationIndexLimits(state.context.coefficients, state.context.range.sHigh, ph.Nvk > 0);
  ReportGeneration(job, k, ip, state.context.range);
  if (limits.cut) ReportCutLimits(job);
  const WedgeLoops wedge = SetUpWedge(ph.group, limits.hMax, limits.kMax, limits.lMax);
  try {
    WalkWedge(wedge, [&state](int h, int kk, int l) { Consider(state, h, kk, l); });
  } catch (const SlotError& error) {
    StopOnSlotError(job, ip, error);
  }
  ReportRelevantFile(job, ph, ph.pat[ip].Irf);
  return state.taken;
}

}  // namespace corvinet
