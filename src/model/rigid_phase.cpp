// The placed atoms of a rigid-body phase kept up to date with its lines and its cell.
#include "model/rigid_phase.h"

#include <cstdlib>
#include <span>

#include "crystal/metric.h"
#include "model/rigid_body.h"

namespace corvinet {

int RigidCellPattern(const Job& job, int k) {
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    if (job.phases[k].pat[ip].Contribution != 0) return ip;
  }
  return 1;
}

void RefreshRigidModel(Job& job, int k) {
  const Phase& ph = job.phases[k];
  if (std::abs(ph.Jbt) != 4) return;
  RigidModel& model = job.rigid[k];
  CellMetric metric;
  const PhasePattern& c = ph.pat[RigidCellPattern(job, k)];
  if (!BuildCellMetric(c.CellConstants, metric)) return;
  for (int i = 1; i <= 6; ++i) model.cell[static_cast<std::size_t>(i - 1)] = c.CellConstants[i];
  const std::span<const AtomSite> rows(job.atoms.ptr() + ph.atomOffset,
                                       static_cast<std::size_t>(ph.Nat));
  RigidGroupCoordinates(model, rows, metric);
  BuildRigidLinks(model, rows, metric);
  for (const RigidGroup& g : model.groups) {
    if (g.option != RigidOption::Chain) continue;
    for (std::size_t i = 0; i < model.source.size(); ++i) {
      AtomSite& line = job.atoms[ph.atomOffset + model.source[i]];
      if (GroupOfLine(line) != g.number) continue;
      for (int s = 1; s <= 3; ++s) line.ATP[s] = model.effective[i].ATP[s];
    }
  }
}

void RefreshRigidModels(Job& job) {
  for (int k = 1; k <= job.run.NPHASE; ++k) RefreshRigidModel(job, k);
}

}  // namespace corvinet
