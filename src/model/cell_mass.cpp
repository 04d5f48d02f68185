// The mass of the cell contents of a phase from its atom lines.
#include "model/cell_mass.h"

#include <cstdlib>

#include "model/elements.h"
#include "model/scattering_species.h"
#include "records/rigid_model.h"

namespace corvinet {

namespace {

bool IsObjectLabel(const std::string& label) {
  for (const std::string_view object : kObjectLabels) {
    if (label.substr(0, 4) == object) return true;
  }
  return false;
}

}  // namespace

CellMass CellMassOfPhase(const Job& job, int k) {
  const Phase& ph = job.phases[k];
  const SpaceGroup& g = ph.group;
  const int order = g.NSYM * g.NLAT * (g.ICENT == 2 ? 2 : 1);
  CellMass result;
  double sum = 0.0;
  for (int i = ph.atomOffset + 1; i <= ph.atomOffset + ph.Nat; ++i) {
    const AtomSite& atom = job.atoms[i];
    if (std::abs(ph.Jbt) == 4 && IsRigidGroupLine(atom)) continue;  // a group's parameters
    const std::string label = NucleusLabel(ph, atom);
    const LabelledElement element = ElementOfLabel(label);
    if (element.Z == 0 || IsObjectLabel(atom.species)) {
      result.unknownLabel = atom.species;
      return result;
    }
    sum += double(atom.ATP[5]) * element.weight;
  }
  result.mass = sum * order;
  return result;
}

}  // namespace corvinet
