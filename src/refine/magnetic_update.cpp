// The update of the moment slots of a magnetic phase: angles brought back into range, the norm of
// each moment.
#include "refine/magnetic_update.h"

#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "refine/atom_update.h"
#include "refine/parameter_report.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr double kDegree = 0.017453292;
constexpr float kSmallestSquare = 1.0e-10f;
constexpr int kFirstMomentSlot = 6;
constexpr int kPhaseSlot = 12;

float OneTurn(float angle) {
  return angle - 360.0f * std::trunc(angle / 360.0f);
}

bool IsAngleSlot(const Phase& phase, int slot) {
  if (phase.Jbt == 5) return slot >= 7 && slot != 8 && slot <= kPhaseSlot;
  return UsesSphericalMoments(phase) && slot > kFirstMomentSlot && slot != 9 && slot != kPhaseSlot;
}

bool HasMoment(const Phase& phase, const AtomSite& atom) {
  if (std::abs(phase.Jbt) != 10) return true;
  for (int s = kFirstMomentSlot; s <= kPhaseSlot; ++s) {
    if (atom.ATP[s] != 0.0f || atom.ATC[s].parameterNumber != 0) return true;
  }
  return false;
}

// The cell used for the norms: that of the first pattern the phase contributes to.
const Table1<float, 6>& PhaseCell(const Job& job, const Phase& phase) {
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    if (phase.pat[ip].Contribution != 0) return phase.pat[ip].CellConstants;
  }
  return phase.pat[1].CellConstants;
}

std::vector<std::string> MomentNames(const Phase& phase) {
  if (std::abs(phase.Jbt) == 5) return {"P6", "P7", "P8", "P9", "P10", "P11", "P12"};
  if (UsesSphericalMoments(phase)) return {"Rm", "Rphi", "Rtheta", "Im", "Iphi", "Itheta", "MagPh"};
  return {"Rx", "Ry", "Rz", "Ix", "Iy", "Iz", "MagPh"};
}

// Norm lines of an atom: Cartesian components give the norms by the metric;
// a spherical moment is its own modulus.
void ReportNorms(Job& job, const UpdatePass& pass, const Phase& phase, const AtomSite& atom,
                 const std::vector<ReportedValue>& shown) {
  if (std::abs(phase.Jbt) == 5) return;
  if (UsesSphericalMoments(phase)) {
    WritePassLine(job, pass, MomentLine(atom.label, "Real", shown[0].value, shown[0].sigma));
    return;
  }
  const Table1<float, 6>& cell = PhaseCell(job, phase);
  for (int part = 0; part < 2; ++part) {
    const int first = 3 * part;
    const float m[3] = {shown[first].value, shown[first + 1].value, shown[first + 2].value};
    const float s[3] = {shown[first].sigma, shown[first + 1].sigma, shown[first + 2].sigma};
    if (part == 1 && m[0] == 0.0f && m[1] == 0.0f && m[2] == 0.0f) continue;
    const MomentNorm norm = MomentNormOf(m, s, cell);
    if (norm.warned) ConsoleLine(job, " Something is going wrong in magnetic moment!");
    WritePassLine(job, pass,
                  MomentLine(atom.label, part == 0 ? "Real" : "Imag", norm.moment, norm.sigma));
  }
}

}  // namespace

bool UsesSphericalMoments(const Phase& phase) {
  return phase.Jbt == -1 || phase.Jbt == -10;
}

void ReduceMomentAngles(const Phase& phase, AtomSite& atom) {
  for (int s = kFirstMomentSlot + 1; s <= kPhaseSlot; ++s) {
    if (IsAngleSlot(phase, s)) atom.ATP[s] = OneTurn(atom.ATP[s]);
  }
  if (phase.Jbt != 5) atom.ATP[kPhaseSlot] -= std::trunc(atom.ATP[kPhaseSlot]);
}

MomentNorm MomentNormOf(const float (&m)[3], const float (&sigma)[3],
                        const Table1<float, 6>& cell) {
  // cos of the angle between axes i and j: gamma for (1,2), beta for (1,3), alpha for (2,3).
  const float cg = static_cast<float>(std::cos(cell[6] * kDegree));
  const float cb = static_cast<float>(std::cos(cell[5] * kDegree));
  const float ca = static_cast<float>(std::cos(cell[4] * kDegree));
  const float cosine[3][3] = {{1.0f, cg, cb}, {cg, 1.0f, ca}, {cb, ca, 1.0f}};
  float square = 0.0f;
  float form = 0.0f;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      square += m[i] * m[j] * cosine[i][j];
      form += m[i] * sigma[i] * m[j] * sigma[j] * cosine[i][j];
    }
  }
  MomentNorm norm;
  if (square <= 0.0f || form < 0.0f) {
    norm.warned = true;
    square = std::fabs(square);
    form = std::fabs(form);
  }
  if (square < kSmallestSquare) square = kSmallestSquare;
  norm.moment = std::sqrt(square);
  norm.sigma = std::sqrt(form / square);
  return norm;
}

void UpdateMagneticMoments(Job& job, int phase, const UpdatePass& pass) {
  const Phase& ph = job.phases[phase];
  const std::vector<std::string> names = MomentNames(ph);
  const int offset = AtomOffset(job, phase);
  for (int n = offset + 1; n <= offset + ph.Nat; ++n) {
    AtomSite& atom = job.atoms[n];
    if (!HasMoment(ph, atom)) continue;
    std::vector<ReportedValue> shown;
    for (int s = kFirstMomentSlot; s <= kPhaseSlot; ++s)
      shown.push_back(UpdateAtomSlot(job, atom, s));
    ReduceMomentAngles(ph, atom);
    for (int s = kFirstMomentSlot; s <= kPhaseSlot; ++s)
      shown[s - kFirstMomentSlot].value = atom.ATP[s];
    WritePassLines(job, pass, ParameterBlockLines(atom.label, names, shown));
    ReportNorms(job, pass, ph, atom, shown);
  }
}

}  // namespace corvinet
