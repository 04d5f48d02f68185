// Families of the refined parameters, from the slots that hold them.
#include "refine/parameter_families.h"

#include "records/codeword.h"
#include "records/profile_slots.h"

namespace corvinet {

Family FamilyOfGlobalSlot(int n) {
  switch (n) {
    case 1:
    case 8:
    case 9:
    case 26:
      return kPosition;
    case 27:
    case 28:
    case 29:
      return kIntensity;
    default:
      return n <= 35 ? kBackground : kNoFamily;
  }
}

namespace {

void Assign(Job& job, const Codeword& w, Family family) {
  const int L = w.parameterNumber;
  if (L < 1 || L > job.run.MAXS || L > job.refinement.family.size()) return;
  if (job.refinement.family[L] == kNoFamily) job.refinement.family[L] = family;
}

}  // namespace

void BuildParameterFamilies(Job& job) {
  auto& family = job.refinement.family;
  family.Fill(kNoFamily);
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    for (int n = 1; n <= DimensionLimits::NGL; ++n) {
      Assign(job, job.patterns[ip].GLBword[n], FamilyOfGlobalSlot(n));
    }
    // Heights of an interpolated background; other models leave their codes 0.
    const Pattern& p = job.patterns[ip];
    for (int k = 1; k <= p.NBCKGD && k <= DimensionLimits::IBACP; ++k) {
      Assign(job, p.backPointWord[k], kBackground);
    }
  }
  int row = 0;
  for (int k = 1; k <= job.run.NPHASE; ++k) {
    const Phase& ph = job.phases[k];
    for (int ip = 1; ip <= job.run.NPATT; ++ip) {
      const PhasePattern& c = ph.pat[ip];
      if (c.Contribution == 0) continue;
      for (int s = 1; s <= DimensionLimits::MPAR; ++s) {
        Assign(job, c.PAC[s], ProfileSlotFamily(s, ProfileOf(c)));
      }
    }
    for (int a = 1; a <= ph.Nat && row < DimensionLimits::NATS; ++a) {
      ++row;
      for (const Codeword& w : job.atoms[row].ATC) Assign(job, w, kIntensity);
    }
    for (int v = 1; v <= ph.Nvk && v <= DimensionLimits::NEQV; ++v) {
      for (const Codeword& w : ph.vectors[v].KCODE) Assign(job, w, kBraggAngle);
    }
  }
}

}  // namespace corvinet
