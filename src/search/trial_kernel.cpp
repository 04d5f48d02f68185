// The squared structure factors of a search trial: per-reflection terms computed once, atoms in
// contiguous arrays.
#include "search/trial_kernel.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "crystal/rotation_table.h"
#include "model/structure_factor.h"

namespace corvinet {

namespace {

constexpr float kTwoPi = 6.283185307f;

std::array<float, 3> RealIndices(const Phase& ph, const Reflection& r) {
  std::array<float, 3> h{static_cast<float>(KeyH(r.key)), static_cast<float>(KeyK(r.key)),
                         static_cast<float>(KeyL(r.key))};
  const int n = std::abs(r.satelliteIndex);
  if (n == 0 || n > ph.Nvk) return h;
  const float sign = r.satelliteIndex > 0 ? 1.0f : -1.0f;
  for (int i = 0; i < 3; ++i) h[static_cast<std::size_t>(i)] += sign * ph.vectors[n].KVEC[i + 1];
  return h;
}

void StoreOperatorTerms(const SpaceGroup& g, const std::array<float, 3>& h, int r,
                        TrialKernel& kernel) {
  for (int n = 1; n <= kernel.operators; ++n) {
    const int index = g.isl[n];
    const IntMatrix3& R = IROT(std::abs(index));
    const float sign = index < 0 ? -1.0f : 1.0f;
    const std::size_t at = static_cast<std::size_t>(r * kernel.operators + n - 1);
    for (int j = 1; j <= 3; ++j) {
      kernel.hp[at * 3 + static_cast<std::size_t>(j - 1)] =
          sign * (h[0] * static_cast<float>(R(1, j)) + h[1] * static_cast<float>(R(2, j)) +
                  h[2] * static_cast<float>(R(3, j)));
    }
    kernel.ht[at] =
        h[0] * g.translation(1, n) + h[1] * g.translation(2, n) + h[2] * g.translation(3, n);
  }
}

// The operators of atom a, as the structure factor sums them: In..Fin with
// the identity first when the range does not begin with it, or all of them.
void StoreOperatorUse(const AtomSite& atom, int a, TrialKernel& kernel) {
  const std::size_t row = static_cast<std::size_t>(a * kernel.operators);
  int first = 1, last = kernel.operators;
  if (atom.In != 0 && atom.Fin != 0) {
    first = atom.In;
    last = std::min(atom.Fin, kernel.operators);
    if (first != 1) kernel.uses[row] = 1;
  }
  for (int n = first; n <= last; ++n) kernel.uses[row + static_cast<std::size_t>(n - 1)] = 1;
}

}  // namespace

TrialKernel BuildTrialKernel(const Job& job, int ip, int k, int count) {
  const Phase& ph = job.phases[k];
  const PhasePattern& c = ph.pat[ip];
  const IntensityTable& t = job.patterns[ip].intensities;
  TrialKernel kernel;
  kernel.reflections = count;
  kernel.operators = ph.group.NSYM;
  kernel.atoms = ph.Nat;
  kernel.acentric = ph.group.ICENT == 1;
  const std::size_t nr = static_cast<std::size_t>(count);
  const std::size_t no = static_cast<std::size_t>(kernel.operators);
  const std::size_t na = static_cast<std::size_t>(kernel.atoms);
  kernel.hp.assign(nr * no * 3, 0.0f);
  kernel.ht.assign(nr * no, 0.0f);
  kernel.s2.assign(nr, 0.0f);
  kernel.f.assign(nr * na, 0.0f);
  kernel.fpp.assign(nr * na, 0.0f);
  kernel.uses.assign(na * no, 0);
  for (int a = 0; a < kernel.atoms; ++a)
    StoreOperatorUse(job.atoms[ph.atomOffset + a + 1], a, kernel);
  for (int r = 0; r < count; ++r) {
    const IntensityObservation& o = t.slot[t.start[k] + r + 1];
    const float s2 = o.sinThetaOverLambda * o.sinThetaOverLambda;
    kernel.s2[static_cast<std::size_t>(r)] = s2;
    StoreOperatorTerms(ph.group, RealIndices(ph, o.reflection), r, kernel);
    for (int a = 0; a < kernel.atoms; ++a) {
      const int sp = job.atoms[ph.atomOffset + a + 1].nuclearSpecies;
      const std::size_t at = static_cast<std::size_t>(r) * na + static_cast<std::size_t>(a);
      if (sp > 0)
        SpeciesFormFactor(job.patterns[ip].NSCAT, c.species[sp], sp, s2, kernel.f[at],
                          kernel.fpp[at]);
    }
  }
  return kernel;
}

TrialValues CurrentTrialValues(const Job& job, int ip, int k) {
  const Phase& ph = job.phases[k];
  TrialValues v;
  for (int a = 1; a <= ph.Nat; ++a) {
    const AtomSite& atom = job.atoms[ph.atomOffset + a];
    v.x.push_back(atom.ATP[1]);
    v.y.push_back(atom.ATP[2]);
    v.z.push_back(atom.ATP[3]);
    v.B.push_back(atom.ATP[4]);
    v.occ.push_back(atom.ATP[5]);
  }
  static constexpr int kScaleSlot[6] = {1, 2, 3, 4, 5, 12};
  for (int g = 0; g < 6; ++g) v.scale[g] = ph.pat[ip].PAR[kScaleSlot[g]];
  return v;
}

void TrialStructureFactors(const TrialKernel& kernel, const TrialValues& v, float* F2) {
  const int no = kernel.operators, na = kernel.atoms;
  for (int r = 0; r < kernel.reflections; ++r) {
    const float* hp = &kernel.hp[static_cast<std::size_t>(r * no) * 3];
    const float* ht = &kernel.ht[static_cast<std::size_t>(r * no)];
    const float s2 = kernel.s2[static_cast<std::size_t>(r)];
    float A = 0.0f, B = 0.0f, App = 0.0f, Bpp = 0.0f;
    for (int a = 0; a < na; ++a) {
      const std::size_t ia = static_cast<std::size_t>(a);
      const unsigned char* uses = &kernel.uses[ia * static_cast<std::size_t>(no)];
      float sumC = 0.0f, sumS = 0.0f;
      for (int n = 0; n < no; ++n) {
        if (!uses[n]) continue;
        const float* h = hp + 3 * n;
        const float phi = kTwoPi * (v.x[ia] * h[0] + v.y[ia] * h[1] + v.z[ia] * h[2] + ht[n]);
        sumC += std::cos(phi);
        if (kernel.acentric) sumS += std::sin(phi);
      }
      const std::size_t at = static_cast<std::size_t>(r * na) + ia;
      const float E = v.occ[ia] * std::exp(-v.B[ia] * s2);
      const float w = kernel.f[at] * E, wpp = kernel.fpp[at] * E;
      A += w * sumC;
      App += wpp * sumC;
      B += w * sumS;
      Bpp += wpp * sumS;
    }
    F2[r] = A * A + B * B + App * App + Bpp * Bpp;
  }
}

}  // namespace corvinet
