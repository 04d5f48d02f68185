// The atoms that the exports of a phase write: its atom lines, or the atoms its rigid-body
// groups place, each with the standard deviations of its slots.
#include "results/exported_atoms.h"

#include <cmath>
#include <cstdlib>

#include "refine/rigid_report.h"

namespace corvinet {

namespace {

double CodeSigma(const Job& job, const Codeword& word) {
  const int L = word.parameterNumber;
  if (L <= 0 || L > job.refinement.normal.A.rows()) return 0.0;
  return std::sqrt(std::fabs(static_cast<double>(job.refinement.normal.A(L, L))));
}

}  // namespace

std::vector<ExportedAtom> ExportedAtoms(const Job& job, int k) {
  const Phase& ph = job.phases[k];
  std::vector<ExportedAtom> atoms;
  if (std::abs(ph.Jbt) != 4) {
    for (int n = ph.atomOffset + 1; n <= ph.atomOffset + ph.Nat; ++n) {
      ExportedAtom e{job.atoms[n], {}};
      for (int s = 1; s <= DimensionLimits::NAT_P; ++s) e.sigma[s] = CodeSigma(job, e.site.ATC[s]);
      atoms.push_back(e);
    }
    return atoms;
  }
  const RigidModel& model = job.rigid[k];
  for (std::size_t i = 0; i < model.effective.size(); ++i) {
    ExportedAtom e{model.effective[i], {}};
    // The codes of a placed atom number its fields in the derivative buffer, not parameters.
    for (Codeword& w : e.site.ATC) w = Codeword{};
    for (int f = 0; f < kRigidFields; ++f) {
      e.sigma[kRigidFieldSlot[f]] = PlacedFieldSigma(job, k, static_cast<int>(i) + 1, f);
    }
    atoms.push_back(e);
  }
  return atoms;
}

}  // namespace corvinet
