// The check that no value read from the control file waits on a model this version lacks.
#include "control/unmodelled_inputs.h"

#include <cstdlib>
#include <string>

#include "format/fortran_format.h"
#include "model/size_strain.h"
#include "records/profile_slots.h"
#include "surface/console.h"

namespace corvinet {

namespace {

using namespace ProfileSlot;

// A slot range of the profile table, first to last.
struct SlotRange {
  int first;
  int last;
};

// Strain terms, the Lorentzian and generalized size terms, the harmonic size coefficients.
constexpr SlotRange kStrain[] = {{Str1, Str10}};
constexpr SlotRange kSize[] = {{LorSiz, Size6}, {SizeSH1, SizeSH9}};
constexpr SlotRange kShift[] = {{Shift1, Shift2}};
constexpr SlotRange kAsymmetryModel[] = {{AsyP, AsyP}};
// Time of flight: Xt, Yt in the X, Y slots; Z0 and LSiz in LorSiz and Xr.
constexpr SlotRange kTofShape[] = {{X, Y}};
constexpr SlotRange kTofLorentzianSize[] = {{LorSiz, LorSiz}, {Xr, Xr}};

// A slot holds something: a non-zero value, or a code that refines it.
bool SlotUsed(const PhasePattern& c, int s) {
  return c.PAR[s] != 0.0f || c.PACtyped[s] != 0.0f;
}

template <std::size_t N>
bool AnyUsed(const PhasePattern& c, const SlotRange (&ranges)[N]) {
  for (const SlotRange& r : ranges) {
    for (int s = r.first; s <= r.last; ++s) {
      if (SlotUsed(c, s)) return true;
    }
  }
  return false;
}

// A slot of the ranges holds something that the size, strain and shift
// models selected by the phase do not read.
template <std::size_t N>
bool AnyUnread(const BroadeningModel& m, const PhasePattern& c, const SlotRange (&ranges)[N]) {
  for (const SlotRange& r : ranges) {
    for (int s = r.first; s <= r.last; ++s) {
      if (SlotUsed(c, s) && !BroadeningUsesSlot(m, s)) return true;
    }
  }
  return false;
}

bool FurtherUsed(const Job& job, const Phase& ph, const PhasePattern& c) {
  for (int n = 1; n <= ph.Furth; ++n) {
    const int s = job.run.firstFurtherParameter + n;
    if (s <= DimensionLimits::MPAR && SlotUsed(c, s)) return true;
  }
  return false;
}

// What a phase on a time-of-flight pattern holds that its peak does not read:
// the widths take Z1 and LStr, but not Xt, Yt, Z0, LSiz nor the size, strain
// and shift models.
std::string UnmodelledTofWords(const Phase& ph, const PhasePattern& c) {
  if (AnyUsed(c, kTofShape)) return "Xt and Yt have no time-of-flight model in this version";
  if (AnyUsed(c, kTofLorentzianSize))
    return "Z0 and LSiz have no time-of-flight model in this version";
  if (ph.Str != 0 || c.StrainModel != 0 || c.SizeModel != 0 || ph.ModS != 0 ||
      AnyUsed(c, kStrain) || AnyUsed(c, kSize) || AnyUsed(c, kShift))
    return "size, strain and shift models do not act on time-of-flight peaks in this version";
  return {};
}

// What phase k holds in pattern ip that no model uses; empty when nothing.
std::string UnmodelledWords(const Job& job, int k, int ip) {
  const Phase& ph = job.phases[k];
  const PhasePattern& c = ph.pat[ip];
  // The restraints read atom lines as free atoms; a group's lines hold its parameters.
  if (std::abs(ph.Jbt) == 4 && (ph.Dis != 0 || ph.Mom != 0))
    return "restraints do not act on the atoms of rigid-body groups in this version";
  if (job.patterns[ip].IXUNIT == AbscissaUnit::kTimeOfFlight) {
    std::string words = UnmodelledTofWords(ph, c);
    if (!words.empty()) return words;
  }
  const BroadeningModel m = BroadeningModelOf(ph, c, job.patterns[ip], 1);
  if (AnyUnread(m, c, kStrain) || AnyUnread(m, c, kSize))
    return "size and strain parameters are not read by the size and strain models of the phase";
  // The size terms add to the Lorentzian width of the TCH profile alone.
  if (AnyUsed(c, kSize) && ProfileOf(c) != ProfileCode::kTchPseudoVoigt)
    return "size parameters act on the Thompson-Cox-Hastings profile (Npr 7) only";
  if (AnyUnread(m, c, kShift))
    return "hkl-dependent shift parameters are not read by the shift model of the phase";
  if (AnyUsed(c, kAsymmetryModel))
    return "the hkl-dependent asymmetry parameter is not modelled by this version";
  if (FurtherUsed(job, ph, c)) return "further parameters are not modelled by this version";
  return {};
}

// What an |Irf| 4 phase holds that the evaluation of intensities lacks.
std::string UnmodelledIntensityWords(const Phase& ph, const PhasePattern& c) {
  if (ph.Jbt != 0) return "integrated intensities are evaluated for nuclear phases (Jbt 0) only";
  for (int s = IntegratedSlot::Ext1; s <= IntegratedSlot::Ext7; ++s) {
    if (SlotUsed(c, s))
      return "the extinction of integrated intensities is not modelled by this version";
  }
  return {};
}

}  // namespace

void StopOnUnmodelledInputs(Job& job) {
  if (std::abs(job.run.ICRYG) == 2) return;
  for (int k = 1; k <= job.run.NPHASE; ++k) {
    for (int ip = 1; ip <= job.run.NPATT; ++ip) {
      const PhasePattern& c = job.phases[k].pat[ip];
      if (c.Contribution == 0) continue;
      const std::string words = std::abs(c.Irf) == 4 ? UnmodelledIntensityWords(job.phases[k], c)
                                                     : UnmodelledWords(job, k, ip);
      if (words.empty()) continue;
      const std::string where = job.run.NPATT > 1
                                    ? Fmt("(A,I0,A,I0)", " => Phase ", k, " in pattern ", ip)
                                    : Fmt("(A,I0)", " => Phase ", k);
      const std::string line = where + ": " + words;
      ConsoleLine(job, line);
      WriteReports(job, line);
      StopBox(job, " Input not modelled by this version ");
    }
  }
}

}  // namespace corvinet
