// Families of the refined parameters, from the slots that hold them.
#include "refine/parameter_families.h"

namespace corvinet {

Family FamilyOfProfileSlot(int s, int code) {
  switch (s) {
    case 1:
    case 2:
    case 12:
    case 13:
      return kIntensity;
    case 3:
    case 4:
    case 5:
    case 28:
    case 43:
    case 44:
    case 45:
      return code == 8 ? kGaussWidth : kWidth;
    case 14:
      return kAsym1;
    case 35:
      return kAsym2;
    case 36:
      return kAsym3;
    case 37:
      return kAsym4;
    case 15:
      return kShapeX;
    case 16:
      return kShapeY;
    case 17:
      return kShape1;
    case 41:
      return code == 12 ? kWidth : kShp1;
    case 42:
      return code == 12 ? kWidthRight : kShp2;
    case 46:
    case 47:
    case 48:
      return kWidthRight;
    case 49:
      return kEtar;
    case 50:
      return kXr;
    default:
      break;
  }
  if (s >= 6 && s <= 11) return kPosition;
  if (s == 39 || s == 40) return kPosition;
  return kWidth;  // strain and size terms broaden the peak
}

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
  if (L < 1 || L > job.run.MAXS || L > DimensionLimits::MSZ) return;
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
  }
  int row = 0;
  for (int k = 1; k <= job.run.NPHASE; ++k) {
    const Phase& ph = job.phases[k];
    for (int ip = 1; ip <= job.run.NPATT; ++ip) {
      const PhasePattern& c = ph.pat[ip];
      if (c.Contribution == 0) continue;
      for (int s = 1; s <= DimensionLimits::MPAR; ++s) {
        Assign(job, c.PAC[s], FamilyOfProfileSlot(s, c.Npr));
      }
    }
    for (int a = 1; a <= ph.Nat && row < DimensionLimits::NATS; ++a) {
      ++row;
      for (const Codeword& w : job.atoms[row].ATC) Assign(job, w, kIntensity);
    }
    for (int v = 1; v <= ph.Nvk && v <= DimensionLimits::NEQV; ++v) {
      for (const Codeword& w : ph.vectors[v].KCODE) Assign(job, w, kPosition);
    }
  }
}

}  // namespace corvinet
