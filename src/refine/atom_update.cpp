// The update of the atom table of a phase: positions, B and occupancy, betas, form-factor and user
// parameters.
#include "refine/atom_update.h"

#include <cstdlib>
#include <string>
#include <vector>

#include "format/fortran_format.h"
#include "model/displacement_analysis.h"
#include "model/rigid_phase.h"
#include "refine/apply_shift.h"
#include "refine/rigid_report.h"

namespace corvinet {

namespace {

constexpr int kLastAtomRelaxationSlot = 12;  // slots above take R_an
constexpr int kUserModelSlots = 16;

bool HasEntries(const AtomSite& atom, int first, int last) {
  for (int s = first; s <= last; ++s) {
    if (atom.ATP[s] != 0.0f || atom.ATC[s].parameterNumber != 0) return true;
  }
  return false;
}

std::vector<std::string> SlotNames(const char* word, int first, int last) {
  std::vector<std::string> names;
  for (int s = first; s <= last; ++s) names.push_back(Fmt("(A,I0)", word, s));
  return names;
}

// Updates slots first..last of every atom of the phase and prints, for each
// atom that has any of them, a block of names and values.
void UpdateAtomBlocks(Job& job, int phase, const UpdatePass& pass, int first, int last,
                      const std::vector<std::string>& names, bool printAlways) {
  const int offset = AtomOffset(job, phase);
  for (int n = offset + 1; n <= offset + job.phases[phase].Nat; ++n) {
    AtomSite& atom = job.atoms[n];
    std::vector<ReportedValue> shown;
    for (int s = first; s <= last; ++s) shown.push_back(UpdateAtomSlot(job, atom, s));
    if (printAlways || HasEntries(atom, first, last)) {
      WritePassLines(job, pass, ParameterBlockLines(atom.label, names, shown));
    }
  }
}

void UpdatePositions(Job& job, int phase, const UpdatePass& pass, bool userModel) {
  WritePassLine(job, pass, AtomPositionColumns(userModel));
  const int offset = AtomOffset(job, phase);
  for (int n = offset + 1; n <= offset + job.phases[phase].Nat; ++n) {
    AtomSite& atom = job.atoms[n];
    ReportedValue shown[5];
    for (int s = 1; s <= 5; ++s) {
      shown[s - 1] = UpdateAtomSlot(job, atom, s);
      if (!userModel) shown[s - 1].sigma = CappedPositionSigma(shown[s - 1].sigma);
    }
    WritePassLine(job, pass, AtomPositionLine(atom.label, shown));
  }
}

bool BetasRefined(const AtomSite& atom) {
  for (int s = 13; s <= 18; ++s) {
    if (atom.ATC[s].parameterNumber != 0) return true;
  }
  return false;
}

// The principal axes of the refined betas of every atom, in the cell of the first pattern that
// holds the phase.
void AnalyseDisplacements(Job& job, int phase, const UpdatePass& pass) {
  const Phase& ph = job.phases[phase];
  int ip = 1;
  while (ip < job.run.NPATT && ph.pat[ip].Contribution == 0) ++ip;
  const int offset = AtomOffset(job, phase);
  for (int n = offset + 1; n <= offset + ph.Nat; ++n) {
    const AtomSite& atom = job.atoms[n];
    if (!BetasRefined(atom)) continue;
    Table1<float, 6> beta;
    for (int s = 1; s <= 6; ++s) beta[s] = atom.ATP[12 + s];
    WritePassLine(job, pass, " => Displacement analysis of atom " + atom.label);
    WritePassLines(job, pass,
                   DisplacementAnalysisLines(AnalyseDisplacement(beta, ph.pat[ip].CellConstants)));
  }
}

}  // namespace

int AtomOffset(const Job& job, int phase) {
  int offset = 0;
  for (int f = 1; f < phase; ++f) offset += job.phases[f].Nat;
  return offset;
}

bool IsUserModelPhase(const Phase& phase) {
  return std::abs(phase.Jbt) == 4;
}

ReportedValue UpdateAtomSlot(Job& job, AtomSite& atom, int slot) {
  const int relaxationClass =
      slot <= kLastAtomRelaxationSlot ? Relaxation::kAtom : Relaxation::kAnisotropic;
  const ValueShift r =
      ShiftValue(job, atom.ATP[slot], atom.ATC[slot], RelaxationFactor(job, relaxationClass));
  return {atom.ATP[slot], r.shift, r.sigma};
}

float CappedPositionSigma(float sigma) {
  return sigma > 0.99999994f ? 0.99999899f : sigma;
}

void UpdateAtoms(Job& job, int phase, const UpdatePass& pass) {
  if (job.phases[phase].Nat <= 0) return;
  if (IsUserModelPhase(job.phases[phase])) {
    UpdatePositions(job, phase, pass, true);
    UpdateAtomBlocks(job, phase, pass, 6, kUserModelSlots, SlotNames("p", 6, kUserModelSlots),
                     true);
    // The atoms of the groups follow the shifted parameters.
    RefreshRigidModel(job, phase);
    WritePassLines(job, pass, RigidAtomLines(job, phase));
    WritePassLines(job, pass, DiagonaliseTl(job, phase));
    return;
  }
  UpdatePositions(job, phase, pass, false);
  UpdateAtomBlocks(job, phase, pass, 13, 18, {"B11", "B22", "B33", "B12", "B13", "B23"}, false);
  AnalyseDisplacements(job, phase, pass);
  UpdateAtomBlocks(job, phase, pass, 19, DimensionLimits::NAT_P,
                   SlotNames("FF", 19, DimensionLimits::NAT_P), false);
}

}  // namespace corvinet
