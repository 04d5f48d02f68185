// Squared structure factor of a reflection from the atoms of a crystal phase, with its derivatives.
#include "model/structure_factor.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "crystal/rotation_table.h"
#include "model/form_factor_fit.h"

namespace corvinet {

namespace {

constexpr double kTwoPi = 6.283185307179586;

}  // namespace

void SpeciesFormFactor(int NSCAT, const ChemicalSpecies& sp, int number, float s2, float& f,
                       float& fpp) {
  fpp = sp.fpp;
  if (NSCAT < 0 && number <= -NSCAT && sp.nTable >= 1) {
    const float t = 2000.0f * std::sqrt(s2);
    f = InterpolateFormFactor(sp, t) + sp.fp;
    return;
  }
  double sum = sp.coeff[9] + sp.fp;
  for (int j = 0; j < 4; ++j) {
    sum += sp.coeff[2 * j + 1] * std::exp(-static_cast<double>(sp.coeff[2 * j + 2]) * s2);
  }
  f = static_cast<float>(sum);
}

namespace {

// The unit vector of h' in the Cartesian frame: h' times the Cartesian-to-fractional matrix.
std::array<float, 3> CartesianDirection(const Table2<double, 3, 3>& M,
                                        const std::array<float, 3>& h) {
  std::array<double, 3> v{};
  for (int j = 1; j <= 3; ++j) {
    v[j - 1] = h[0] * M(1, j) + h[1] * M(2, j) + h[2] * M(3, j);
  }
  const double n = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
  if (n <= 0.0) return {0.0f, 0.0f, 1.0f};
  return {static_cast<float>(v[0] / n), static_cast<float>(v[1] / n), static_cast<float>(v[2] / n)};
}

// The terms of every operator for this reflection: they do not depend on the atom.
void PrepareOperators(const SpaceGroup& g, const StructureFactorRequest& q,
                      const Table2<double, 3, 3>* fractional,
                      Table1<OperatorTerms, DimensionLimits::NEQV>& terms) {
  for (int n = 1; n <= q.nSym; ++n) {
    const int index = g.isl[n];
    const IntMatrix3& R = IROT(std::abs(index));
    const float sign = index < 0 ? -1.0f : 1.0f;
    OperatorTerms& t = terms[n];
    for (int j = 1; j <= 3; ++j) {
      t.hp[j - 1] =
          sign * (q.h[0] * static_cast<float>(R(1, j)) + q.h[1] * static_cast<float>(R(2, j)) +
                  q.h[2] * static_cast<float>(R(3, j)));
    }
    const std::array<float, 3>& h = t.hp;
    t.quad = {h[0] * h[0], h[1] * h[1], h[2] * h[2], h[0] * h[1], h[0] * h[2], h[1] * h[2]};
    t.ht =
        q.h[0] * g.translation(1, n) + q.h[1] * g.translation(2, n) + q.h[2] * g.translation(3, n);
    if (fractional != nullptr) t.direction = CartesianDirection(*fractional, h);
  }
}

// What an atom scatters with: its species' form factor, or an object's amplitude.
struct AtomScatterer {
  bool object = false;
  ObjectShape shape = ObjectShape::Ellipsoids;
  bool derive = false;  // object derivatives are wanted
  float s2 = 0.0f;
};

// Adds the contribution of one operator to the sums of an atom.
void AddOperator(const OperatorTerms& t, const AtomSite& a, int acentric, const AtomScatterer& how,
                 AtomSums& s) {
  const double phi =
      kTwoPi * (static_cast<double>(a.ATP[1]) * t.hp[0] + static_cast<double>(a.ATP[2]) * t.hp[1] +
                static_cast<double>(a.ATP[3]) * t.hp[2] + t.ht);
  const double exponent =
      a.ATP[13] * t.quad[0] + a.ATP[14] * t.quad[1] + a.ATP[15] * t.quad[2] +
      2.0 * (a.ATP[16] * t.quad[3] + a.ATP[17] * t.quad[4] + a.ATP[18] * t.quad[5]);
  const double T = std::exp(-exponent);
  const float cT = static_cast<float>(T * std::cos(phi));
  const float sT = static_cast<float>(T * std::sin(phi));
  float O = 1.0f;
  if (how.object) {
    const ObjectAmplitudeValue v =
        ObjectAmplitude(how.shape, a.ATP, how.s2, t.direction, how.derive);
    O = v.O;
    if (how.derive) {
      for (int k = 0; k < kObjectParameters; ++k) {
        s.objectC[k] += v.d[k] * cT;
        if (acentric == 1) s.objectS[k] += v.d[k] * sT;
      }
    }
  }
  const float c = O * cT;
  const float sn = O * sT;
  s.A += c;
  for (int j = 0; j < 3; ++j) s.posS[j] += t.hp[j] * sn;
  for (int j = 0; j < 6; ++j) s.betaC[j] += t.quad[j] * c;
  if (acentric != 1) return;
  s.B += sn;
  for (int j = 0; j < 3; ++j) s.posC[j] += t.hp[j] * c;
  for (int j = 0; j < 6; ++j) s.betaS[j] += t.quad[j] * sn;
}

// The sums of one atom over its operators: In..Fin (with the identity first
// when the range does not begin with it), or all of them.
void SumOperators(const Table1<OperatorTerms, DimensionLimits::NEQV>& terms, const AtomSite& a,
                  const StructureFactorRequest& q, const AtomScatterer& how, AtomSums& s) {
  int first = 1, last = q.nSym;
  if (a.In != 0 && a.Fin != 0) {
    first = a.In;
    last = std::min(a.Fin, q.nSym);  // operators beyond the group's are not there
    if (first != 1) AddOperator(terms[1], a, q.acentric, how, s);
  }
  for (int n = first; n <= last; ++n) AddOperator(terms[n], a, q.acentric, how, s);
}

void AddDerivative(float* dF2, int fitted, const Codeword& w, float value) {
  const int n = w.parameterNumber;
  if (n <= 0 || n > fitted) return;
  dF2[n - 1] += w.multiplier * value;
}

// Derivatives of F^2 with respect to the parameters of one atom.
void AtomDerivatives(const AtomSite& a, const AtomSums& s, float A, float B, float App, float Bpp,
                     float s2, float* dF2, int fitted) {
  const float wc = A * s.w + App * s.wpp;  // multiplies the cosine sums
  const float ws = B * s.w + Bpp * s.wpp;  // multiplies the sine sums
  for (int j = 0; j < 3; ++j) {
    const float d = static_cast<float>(-kTwoPi * 2.0 * (wc * s.posS[j] - ws * s.posC[j]));
    AddDerivative(dF2, fitted, a.ATC[j + 1], d);
  }
  const float sumWeighted = wc * s.A + ws * s.B;
  AddDerivative(dF2, fitted, a.ATC[4], -s2 * 2.0f * sumWeighted);
  AddDerivative(dF2, fitted, a.ATC[5], 2.0f * sumWeighted / a.ATP[5]);
  for (int j = 0; j < 6; ++j) {
    const float factor = j < 3 ? -2.0f : -4.0f;
    AddDerivative(dF2, fitted, a.ATC[13 + j], factor * (wc * s.betaC[j] + ws * s.betaS[j]));
  }
  if (a.nuclearSpecies >= 0) return;
  for (int k = 0; k < kObjectParameters; ++k) {
    AddDerivative(dF2, fitted, a.ATC[kFirstObjectSlot + k],
                  2.0f * (wc * s.objectC[k] + ws * s.objectS[k]));
  }
}

// The phase angle of (A', B') for the Fourier files.
float PhaseAngle(float Ap, float Bp, int acentric) {
  if (acentric != 1) return Ap >= 0.0f ? 0.0f : static_cast<float>(kTwoPi / 2.0);
  const double D = static_cast<double>(Ap) * Ap + static_cast<double>(Bp) * Bp;
  if (D < 1.0e-5) return 0.0f;
  double c = Ap / std::sqrt(D);
  if (c > 1.0) c = 1.0;
  if (c < -1.0) c = -1.0;
  double angle = std::acos(c);
  if (Bp < 0.0f) angle = kTwoPi - angle;
  return static_cast<float>(angle);
}

}  // namespace

StructureFactorValue EvaluateStructureFactor(const StructureFactorInputs& in,
                                             const StructureFactorRequest& q, Reflection& r,
                                             StructureFactorScratch& scratch, float* dF2,
                                             int fitted) {
  const int nAtoms = static_cast<int>(in.atoms.size());
  float A = 0.0f, B = 0.0f, App = 0.0f, Bpp = 0.0f;
  PrepareOperators(in.group, q, in.fractional, scratch.operators);
  for (int i = 1; i <= nAtoms; ++i) {
    const AtomSite& a = in.atoms[static_cast<std::size_t>(i - 1)];
    AtomSums& s = scratch.atoms[i];
    s = AtomSums{};
    const int sp = a.nuclearSpecies;
    if (sp == 0) continue;  // no species: nothing scatters
    AtomScatterer how;
    // An object has no form factor and no anomalous term: its amplitude stands in.
    float f = 1.0f, fpp = 0.0f;
    if (sp < 0) {
      how = {true, ObjectShapeOf(in.species[-sp].label), dF2 != nullptr, q.s2};
    } else {
      SpeciesFormFactor(in.NSCAT, in.species[sp], sp, q.s2, f, fpp);
    }
    const double E = std::exp(-static_cast<double>(a.ATP[4]) * q.s2);
    SumOperators(scratch.operators, a, q, how, s);
    s.w = static_cast<float>(f * a.ATP[5] * E);
    s.wpp = static_cast<float>(fpp * a.ATP[5] * E);
    A += s.w * s.A;
    App += s.wpp * s.A;
    if (q.acentric == 1) {
      B += s.w * s.B;
      Bpp += s.wpp * s.B;
    }
  }
  if (in.Irf == 3 || in.Irf == -4) {
    A += r.Aprime;
    B += r.Bprime;
  } else {
    r.Aprime = A - Bpp;
    r.Bprime = B + App;
  }
  const double F2 = static_cast<double>(A) * A + static_cast<double>(B) * B +
                    static_cast<double>(App) * App + static_cast<double>(Bpp) * Bpp;
  if (in.JFOU != 0) r.phaseAngle = PhaseAngle(r.Aprime, r.Bprime, q.acentric);
  if (dF2 != nullptr) {
    for (int i = 1; i <= nAtoms; ++i) {
      AtomDerivatives(in.atoms[static_cast<std::size_t>(i - 1)], scratch.atoms[i], A, B, App, Bpp,
                      q.s2, dF2, fitted);
    }
  }
  return {StructureFactorStatus::Evaluated, static_cast<float>(F2)};
}

}  // namespace corvinet
