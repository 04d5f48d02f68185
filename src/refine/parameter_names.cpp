// Names of refined parameters for the messages that point at one of them.
#include "refine/parameter_names.h"

#include <cstdlib>

#include "format/fortran_format.h"
#include "format/text.h"
#include "records/profile_slots.h"
#include "refine/background_height_update.h"
#include "refine/parameter_report.h"

namespace corvinet {

namespace {

constexpr int kLastMomentSlot = 12;
constexpr int kLastBetaSlot = 18;

bool Holds(const Codeword& word, int L) {
  return word.parameterNumber == L;
}

std::string InPattern(int ip) {
  return Fmt("(A,I0)", " of pattern ", ip);
}

std::string InPhase(int k) {
  return Fmt("(A,I0)", " in phase ", k);
}

// The slot of an atom as the atom tables of the report head it.
std::string AtomSlotName(const Phase& phase, int slot) {
  static constexpr const char* kPositions[] = {"x", "y", "z", "B", "occ."};
  static constexpr const char* kMoments[] = {"Rx", "Ry", "Rz", "Ix", "Iy", "Iz", "MagPh"};
  static constexpr const char* kBetas[] = {"B11", "B22", "B33", "B12", "B13", "B23"};
  const bool userModel = std::abs(phase.Jbt) == 4;
  if (userModel || (std::abs(phase.Jbt) == 5 && slot > 5 && slot <= kLastMomentSlot)) {
    return Fmt("(A,I0)", userModel ? "p" : "P", slot);
  }
  if (slot <= 5) return kPositions[slot - 1];
  if (slot <= kLastMomentSlot) return kMoments[slot - 6];
  if (slot <= kLastBetaSlot) return kBetas[slot - kLastMomentSlot - 1];
  return Fmt("(A,I0)", "FF", slot);
}

ParameterHolder GlobalHolder(const Job& job, int L) {
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    const Pattern& p = job.patterns[ip];
    for (int n = 1; n <= DimensionLimits::NGL; ++n) {
      if (Holds(p.GLBword[n], L)) return {GlobalSlotName(n, p.IXUNIT) + InPattern(ip), p.GLB[n]};
    }
    for (int j = 1; j <= p.NBCKGD && j <= DimensionLimits::IBACP + 1; ++j) {
      if (Holds(p.backPointWord[j], L)) {
        return {BackgroundHeightName(j) + Fmt("(A,F0.3)", " (background height at ", p.BackPos[j]) +
                    ")" + InPattern(ip),
                p.BackInt[j]};
      }
    }
  }
  return {};
}

ParameterHolder ProfileHolder(const Job& job, int k, int L) {
  const Phase& ph = job.phases[k];
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    const PhasePattern& c = ph.pat[ip];
    if (c.Contribution == 0) continue;
    for (int s = 1; s <= DimensionLimits::MPAR; ++s) {
      if (!Holds(c.PAC[s], L)) continue;
      const int further = s - job.run.firstFurtherParameter;
      const std::string furtherName =
          further >= 1 && further <= ph.Furth ? ph.FurtherName[further] : std::string();
      const std::string where = InPhase(k) + Fmt("(A,I0)", ", pattern ", ip);
      if (s >= ProfileSlot::FirstCell && s <= ProfileSlot::LastCell) {
        const int i = s - ProfileSlot::FirstCell + 1;
        return {std::string(CellConstantName(i)) + where, c.CellConstants[i],
                job.limits.cells(k, ip).sigma[i]};
      }
      return {PeakSlotName(s, c.Irf, job.patterns[ip].IXUNIT, furtherName) + where, c.PAR[s]};
    }
  }
  return {};
}

ParameterHolder AtomHolder(const Job& job, int k, int firstRow, int L) {
  const Phase& ph = job.phases[k];
  for (int a = 1; a <= ph.Nat && firstRow + a <= DimensionLimits::NATS; ++a) {
    const AtomSite& atom = job.atoms[firstRow + a];
    for (int s = 1; s <= DimensionLimits::NAT_P; ++s) {
      if (!Holds(atom.ATC[s], L)) continue;
      return {AtomSlotName(ph, s) + " of atom " + TrimmedCopy(atom.label) + InPhase(k),
              atom.ATP[s]};
    }
  }
  return {};
}

ParameterHolder VectorHolder(const Job& job, int k, int L) {
  static constexpr const char* kComponents[] = {"kx", "ky", "kz"};
  const Phase& ph = job.phases[k];
  for (int v = 1; v <= ph.Nvk && v <= DimensionLimits::NEQV; ++v) {
    for (int i = 1; i <= 3; ++i) {
      if (!Holds(ph.vectors[v].KCODE[i], L)) continue;
      return {std::string(kComponents[i - 1]) + Fmt("(A,I0)", " of propagation vector ", v) +
                  InPhase(k),
              ph.vectors[v].KVEC[i]};
    }
  }
  return {};
}

}  // namespace

ParameterHolder ParameterHolderOf(const Job& job, int L) {
  if (L < 1) return {};
  ParameterHolder found = GlobalHolder(job, L);
  int firstRow = 0;
  for (int k = 1; k <= job.run.NPHASE && found.name.empty(); ++k) {
    found = ProfileHolder(job, k, L);
    if (found.name.empty()) found = AtomHolder(job, k, firstRow, L);
    if (found.name.empty()) found = VectorHolder(job, k, L);
    firstRow += job.phases[k].Nat;
  }
  return found;
}

std::string ParameterDescription(const Job& job, int L) {
  return ParameterHolderOf(job, L).name;
}

}  // namespace corvinet
