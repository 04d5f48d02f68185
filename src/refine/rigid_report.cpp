// The report of the atoms that rigid-body groups place: their positions and displacements with
// the standard deviations that the refined group parameters give them.
#include "refine/rigid_report.h"

#include <cmath>
#include <map>

#include "format/fortran_format.h"
#include "format/text.h"
#include "model/displacement_analysis.h"
#include "model/rigid_body.h"

namespace corvinet {

double PlacedFieldSigma(const Job& job, int k, int atom, int field) {
  const RigidModel& model = job.rigid[k];
  const int fitted = FittedCount(job);
  std::map<int, double> slope;  // by parameter number
  for (const RigidLink& link : model.links) {
    if (link.atom != atom || link.field != field) continue;
    const Codeword& w = job.atoms[job.phases[k].atomOffset + link.row].ATC[link.slot];
    if (w.parameterNumber < 1 || w.parameterNumber > fitted) continue;
    slope[w.parameterNumber] += w.multiplier * link.value;
  }
  double variance = 0.0;
  for (const auto& [L, gl] : slope) {
    for (const auto& [M, gm] : slope) variance += gl * gm * job.refinement.normal.A(L, M);
  }
  return std::sqrt(std::fabs(variance));
}

namespace {

std::string AtomLine(const Job& job, int k, int i, const AtomSite& a) {
  std::string line = " " + FixedText(a.label, 4) + " " + FixedText(a.species, 4);
  for (int f = 0; f < 4; ++f) {
    line += Fmt("(F10.5,F9.5)", a.ATP[kRigidFieldSlot[f]], PlacedFieldSigma(job, k, i, f));
  }
  return line;
}

std::string BetaLine(const Job& job, int k, int i, const AtomSite& a) {
  std::string line = "      betas:";
  for (int f = 5; f < kRigidFields; ++f) {
    line += Fmt("(F10.6,F9.6)", a.ATP[kRigidFieldSlot[f]], PlacedFieldSigma(job, k, i, f));
  }
  return line;
}

}  // namespace

std::vector<std::string> RigidAtomLines(const Job& job, int k) {
  const RigidModel& model = job.rigid[k];
  std::vector<std::string> lines;
  for (const RigidGroup& g : model.groups) {
    lines.push_back(Fmt("(A,I3,A)", " => Atoms placed by RBG no.:", g.number,
                        "   (x, y, z, Biso with their sigmas)"));
    for (std::size_t i = 0; i < model.source.size(); ++i) {
      bool member = false;
      for (int row : g.atoms) member |= row == model.source[i];
      if (!member) continue;
      const int atom = static_cast<int>(i) + 1;
      lines.push_back(AtomLine(job, k, atom, model.effective[i]));
      if (IsTlsOption(g.option)) lines.push_back(BetaLine(job, k, atom, model.effective[i]));
    }
  }
  return lines;
}

namespace {

// The eigenvalues and eigenvectors of a symmetric tensor given as 11 22 33 12 13 23.
void TensorAxesLines(const AtomSite& line, int first, std::vector<std::string>& lines) {
  const auto t = [&](int i) { return static_cast<double>(line.ATP[first + i]); };
  std::array<std::array<double, 3>, 3> a{
      {{t(0), t(3), t(4)}, {t(3), t(1), t(5)}, {t(4), t(5), t(2)}}};
  std::array<std::array<double, 3>, 3> v{};
  SymmetricEigen(a, v);
  lines.push_back("    Eigen Value ---->    Eigen vector(Orth. syst.)");
  for (int n = 0; n < 3; ++n) {
    lines.push_back(Fmt("(F14.5,6X,3F10.5)", a[n][n], v[0][n], v[1][n], v[2][n]));
  }
}

}  // namespace

std::vector<std::string> DiagonaliseTl(const Job& job, int k) {
  const RigidModel& model = job.rigid[k];
  std::vector<std::string> lines;
  for (const RigidGroup& g : model.groups) {
    if (!IsTlsOption(g.option)) continue;
    if (lines.empty())
      lines.push_back(" => TL-tensors of RBG defined for the refined phase(s) below:");
    const AtomSite& head = job.atoms[job.phases[k].atomOffset + g.line];
    lines.push_back(
        Fmt("(A,I3)", " => Diagonalization of T-tensor(100xAngstroms**2) of RBG no.", g.number));
    TensorAxesLines(head, GroupSlot::T, lines);
    if (g.tlsLine == 0) continue;
    lines.push_back(
        Fmt("(A,I3)", " => Diagonalization of L-tensor(degrees**2) of RBG no. ", g.number));
    TensorAxesLines(job.atoms[job.phases[k].atomOffset + g.tlsLine], TlsSlot::L, lines);
  }
  return lines;
}

}  // namespace corvinet
