// Distance and moment restraints added to the normal equations of a cycle.
#include "refine/slack_constraints.h"

#include <cmath>
#include <cstdlib>

#include "crystal/rotation_table.h"
#include "format/fortran_format.h"
#include "format/text.h"
#include "model/magnetic_moments.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr double kDegree = 0.017453292519943295;
constexpr int kMomentSlot = 6;
constexpr double kSmallestDistance = 1.0e-6;  // angstroms

// One coordinate slot that depends on a refined parameter: its number and d(value)/d(parameter).
struct SlotTerm {
  int L = 0;
  double gain = 0.0;  // d(quantity)/d(parameter) of this slot
};

// The first atom of phase k whose label's first four characters are `label`; 0 when none.
int FindAtom(const Job& job, int k, const std::string& label) {
  const Phase& ph = job.phases[k];
  const std::string wanted = FixedText(label, 4);
  for (int a = ph.atomOffset + 1; a <= ph.atomOffset + ph.Nat; ++a) {
    if (FixedText(job.atoms[a].label, 4) == wanted) return a;
  }
  return 0;
}

// Adds one observation to the upper triangle of the sums: B += w r d, A += w d d'.
template <std::size_t N>
void AddObservation(NormalMatrix& n, const std::array<SlotTerm, N>& terms, int fitted, double w,
                    double r) {
  for (const SlotTerm& t : terms) {
    if (t.L < 1 || t.L > fitted) continue;
    n.SumB[t.L] += w * r * t.gain;
    for (const SlotTerm& u : terms) {
      if (u.L < t.L || u.L > fitted) continue;
      n.SumA(t.L, u.L) += w * t.gain * u.gain;
    }
  }
}

Vector3 Coordinates(const AtomSite& atom) {
  return {atom.ATP[1], atom.ATP[2], atom.ATP[3]};
}

void ApplyDistance(Job& job, int k, int c, float chi2, RestraintSums& sums) {
  DistanceRestraint& d = job.phases[k].restraints.distances[c];
  const int a = FindAtom(job, k, d.Atom1);
  const int b = FindAtom(job, k, d.Atom2);
  if (a == 0 || b == 0) {
    ConsoleLine(job, Fmt("(A,I3,A)", " => Warning constraint:", c, " not applied!"));
    return;
  }
  const AtomSite& A = job.atoms[a];
  const AtomSite& B = job.atoms[b];
  const DistanceGradient g =
      DistanceAndGradient(Coordinates(A), Coordinates(B), RestraintCell(job, k), d.ITnum, d.T);
  const double sigma = d.Sigma;
  const double r = static_cast<double>(d.Dist) - g.D;
  sums.SumD2 += static_cast<float>(r * r);
  sums.SumWD2 += static_cast<float>(r * r / (sigma * sigma));
  ++sums.count;
  d.Dcalc = static_cast<float>(g.D);
  // Two atoms on one place give no direction to move them apart: the
  // restraint counts in the sums and adds no row.
  if (g.D < kSmallestDistance) {
    ConsoleLine(job,
                Fmt("(A,I3,A)", " => Warning constraint:", c, " has a zero distance: no rows"));
    return;
  }
  std::array<SlotTerm, 6> terms;
  for (int i = 0; i < 3; ++i) {
    terms[i] = {A.ATC[i + 1].parameterNumber, A.ATC[i + 1].multiplier * g.gradA[i] / g.D};
    terms[i + 3] = {B.ATC[i + 1].parameterNumber, B.ATC[i + 1].multiplier * g.gradB[i] / g.D};
  }
  AddObservation(job.refinement.normal, terms, FittedCount(job), chi2 / (sigma * sigma), r);
}

// Atoms of a magnetic phase that carry a moment: all atoms of the magnetic
// kinds, the moment-bearing lines of a nuclear and magnetic phase.
bool CarriesMoment(const Phase& ph, const AtomSite& atom) {
  return std::abs(ph.Jbt) != 10 || BearsMoment(atom);
}

void ApplyMoment(Job& job, int k, int atomIndex, int c, float chi2, RestraintSums& sums) {
  const Phase& ph = job.phases[k];
  const MomentRestraint& m = ph.restraints.moments[c];
  const AtomSite& atom = job.atoms[atomIndex];
  const MomentGradient g = MomentAndGradient(atom, ph.Jbt, RestraintCell(job, k));
  const double sigma = m.MomentSigma;
  const double r = static_cast<double>(m.Moment) - g.M;
  sums.SumD2 += static_cast<float>(r * r);
  sums.SumWD2 += static_cast<float>(r * r / (sigma * sigma));
  ++sums.count;
  PhaseRestraints& store = job.phases[k].restraints;
  if (sums.count <= store.momentResults.size()) {
    store.momentResults[sums.count] = {atomIndex, c, static_cast<float>(g.M)};
  }
  std::array<SlotTerm, 3> terms;
  for (int i = 0; i < 3; ++i) {
    const Codeword& word = atom.ATC[kMomentSlot + i];
    terms[i] = {word.parameterNumber, word.multiplier * g.dM[i]};
  }
  AddObservation(job.refinement.normal, terms, FittedCount(job), chi2 / (sigma * sigma), r);
}

// The means of the sums, once all restraints of a kind were applied.
void Average(RestraintSums& sums) {
  if (sums.count == 0) return;
  sums.SumWD2 /= static_cast<float>(sums.count);
  sums.SumD2 = std::sqrt(sums.SumD2 / static_cast<float>(sums.count));
}

void PhaseRestraintRows(Job& job, int k, float chi2) {
  Phase& ph = job.phases[k];
  ph.restraints.distanceSums = {};
  ph.restraints.momentSums = {};
  for (int c = 1; c <= ph.Dis; ++c) ApplyDistance(job, k, c, chi2, ph.restraints.distanceSums);
  Average(ph.restraints.distanceSums);
  if (ph.Mom == 0 || !IsMagneticPhase(ph)) return;
  for (int a = ph.atomOffset + 1; a <= ph.atomOffset + ph.Nat; ++a) {
    if (!CarriesMoment(ph, job.atoms[a])) continue;
    const std::string prefix = FixedText(job.atoms[a].label, 2);
    for (int c = 1; c <= ph.Mom; ++c) {
      if (FixedText(ph.restraints.moments[c].MomentAtom, 2) != prefix) continue;
      ApplyMoment(job, k, a, c, chi2, ph.restraints.momentSums);
    }
  }
  Average(ph.restraints.momentSums);
}

}  // namespace

DistanceGradient DistanceAndGradient(const Vector3& xA, const Vector3& xB,
                                     const Table1<float, 6>& cell, int ITnum,
                                     const Table1<float, 3>& T) {
  const IntMatrix3& R = IROT(std::abs(ITnum));
  const double s = ITnum < 0 ? -1.0 : 1.0;
  Vector3 delta{};
  for (int i = 0; i < 3; ++i) {
    double image = T[i + 1];
    for (int j = 0; j < 3; ++j) image += s * R(i + 1, j + 1) * xB[j];
    delta[i] = xA[i] - image;
  }
  const double ca = std::cos(cell[4] * kDegree);
  const double cb = std::cos(cell[5] * kDegree);
  const double cg = std::cos(cell[6] * kDegree);
  const double a = cell[1], b = cell[2], c = cell[3];
  const double G[3][3] = {{a * a, a * b * cg, a * c * cb},
                          {a * b * cg, b * b, b * c * ca},
                          {a * c * cb, b * c * ca, c * c}};
  DistanceGradient g;
  double square = 0.0;
  for (int i = 0; i < 3; ++i) {
    g.gradA[i] = G[i][0] * delta[0] + G[i][1] * delta[1] + G[i][2] * delta[2];
    square += delta[i] * g.gradA[i];
  }
  for (int j = 0; j < 3; ++j) {
    g.gradB[j] = 0.0;
    for (int i = 0; i < 3; ++i) g.gradB[j] -= s * R(i + 1, j + 1) * g.gradA[i];
  }
  g.D = std::sqrt(square);
  return g;
}

MomentGradient MomentAndGradient(const AtomSite& atom, int Jbt, const Table1<float, 6>& cell) {
  MomentGradient g;
  const bool cartesian = Jbt == 1 || Jbt == 10;
  if (!cartesian) {
    const double m = atom.ATP[kMomentSlot];
    g.M = std::fabs(m);
    g.dM[0] = m < 0.0 ? -1.0 : 1.0;
    return g;
  }
  const MagneticCell magnetic = MagneticCellOf(cell);
  const Vector3 m = {atom.ATP[kMomentSlot], atom.ATP[kMomentSlot + 1], atom.ATP[kMomentSlot + 2]};
  Vector3 partner{};
  double square = 0.0;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) partner[i] += magnetic.cosine[i][j] * m[j];
    square += m[i] * partner[i];
  }
  g.M = std::sqrt(square);
  for (int i = 0; i < 3; ++i) g.dM[i] = g.M > 0.0 ? partner[i] / g.M : 0.0;
  return g;
}

const Table1<float, 6>& RestraintCell(const Job& job, int k) {
  const Phase& ph = job.phases[k];
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    if (ph.pat[ip].Contribution != 0) return ph.pat[ip].CellConstants;
  }
  return ph.pat[1].CellConstants;
}

bool HasRestraints(const Job& job) {
  for (int k = 1; k <= job.run.NPHASE; ++k) {
    if (job.phases[k].Dis != 0 || job.phases[k].Mom != 0) return true;
  }
  return false;
}

void SlackConstraints(Job& job, float chi2) {
  for (int k = 1; k <= job.run.NPHASE; ++k) PhaseRestraintRows(job, k, chi2);
}

}  // namespace corvinet
