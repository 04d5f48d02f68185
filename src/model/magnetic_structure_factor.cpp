// Squared magnetic structure factor of a reflection: the moments summed over the atoms and the
// magnetic operators, projected on the plane normal to the scattering vector, with derivatives.
#include "model/magnetic_structure_factor.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "crystal/rotation_table.h"
#include "model/form_factor_fit.h"

namespace corvinet {

namespace {

constexpr double kTwoPi = 6.283185307179586;

using RealMatrix = std::array<RealVector, 3>;

// The terms of every operator for this reflection and the moment matrices of
// every set: they do not depend on the atom.
void PrepareOperators(const SpaceGroup& g, const MagneticRequest& q, MagneticScratch& scratch) {
  Table1<MagneticOperatorTerms, DimensionLimits::NEQV>& terms = scratch.operators;
  const int sets = std::max(1, std::min(g.NMAGM, DimensionLimits::NMAGM));
  for (int n = 1; n <= q.nSym; ++n) {
    for (int m = 1; m <= sets; ++m) scratch.matrices(m, n) = MomentMatrix(g, m, n);
    const int index = g.isl[n];
    const IntMatrix3& R = IROT(std::abs(index));
    const double sign = index < 0 ? -1.0 : 1.0;
    MagneticOperatorTerms& t = terms[n];
    for (int j = 1; j <= 3; ++j) {
      t.hp[j - 1] = sign * (q.H[0] * R(1, j) + q.H[1] * R(2, j) + q.H[2] * R(3, j));
    }
    const RealVector& h = t.hp;
    t.quad = {h[0] * h[0], h[1] * h[1], h[2] * h[2], h[0] * h[1], h[0] * h[2], h[1] * h[2]};
    t.ht =
        q.H[0] * g.translation(1, n) + q.H[1] * g.translation(2, n) + q.H[2] * g.translation(3, n);
  }
}

// An atom bears a moment for this reflection: not of kind 0 or 2, and, with
// a vector number of its own, only on that vector or on the next one, which
// stands for its negative.
bool BearsMoment(const AtomSite& a, const MagneticRequest& q) {
  if (a.N_t == 0 || a.N_t == 2) return false;
  if (a.Vek == 0) return true;
  const int v = std::abs(a.Vek);
  return q.vector == v || q.vector == v + 1;
}

// The matrix set of an atom: its Mag number when the phase has that many sets, else the first.
int MatrixSet(const SpaceGroup& g, const AtomSite& a) {
  return a.Mag >= 1 && a.Mag <= g.NMAGM ? a.Mag : 1;
}

ComplexVector Times(const RealMatrix& M, const ComplexVector& v) {
  ComplexVector out{};
  for (int i = 0; i < 3; ++i) out[i] = M[i][0] * v[0] + M[i][1] * v[1] + M[i][2] * v[2];
  return out;
}

void AddScaled(ComplexVector& to, Complex f, const ComplexVector& v) {
  for (int i = 0; i < 3; ++i) to[i] += f * v[i];
}

// The phase factor of one operator and its slope in the angle: exp(i phi) for
// an acentric sum; for a centric one the implied inversion folds it into
// cos(phi), or i sin(phi) when the inversion reverses the moments.
void PhaseFactor(const MagneticRequest& q, double phi, Complex& g, Complex& dg) {
  const double c = std::cos(phi), s = std::sin(phi);
  if (q.acentric) {
    g = Complex(c, s);
    dg = Complex(-s, c);
  } else if (q.inversionSign >= 0) {
    g = Complex(c, 0.0);
    dg = Complex(-s, 0.0);
  } else {
    g = Complex(0.0, s);
    dg = Complex(0.0, c);
  }
}

// d(tau v)/dH_i of one operator: tau = T exp(i phi) (or its centric fold)
// with phi = 2 pi H.(R x + t) + phases and T = exp(-h'B h'), h' = H R.
void AddSlopesInH(const SpaceGroup& g, int n, const AtomSite& a, const MagneticOperatorTerms& t,
                  Complex tau, Complex dtau, const ComplexVector& v,
                  std::array<ComplexVector, 3>& dH) {
  const int index = g.isl[n];
  const IntMatrix3& R = IROT(std::abs(index));
  const double sign = index < 0 ? -1.0 : 1.0;
  const RealVector& h = t.hp;
  // B h' with B the symmetric matrix of the betas.
  const RealVector Bh = {a.ATP[13] * h[0] + a.ATP[16] * h[1] + a.ATP[17] * h[2],
                         a.ATP[16] * h[0] + a.ATP[14] * h[1] + a.ATP[18] * h[2],
                         a.ATP[17] * h[0] + a.ATP[18] * h[1] + a.ATP[15] * h[2]};
  for (int i = 0; i < 3; ++i) {
    double r = g.translation(i + 1, n), dE = 0.0;
    for (int j = 0; j < 3; ++j) {
      r += sign * R(i + 1, j + 1) * a.ATP[j + 1];
      dE += 2.0 * sign * R(i + 1, j + 1) * Bh[j];
    }
    AddScaled(dH[i], dtau * r - dE * tau, v);
  }
}

// The sums of one atom over the operators; with `slopes` also those that
// its derivatives are made of.
void SumAtom(const MagneticInputs& in, const MagneticRequest& q, const MagneticScratch& scratch,
             const AtomSite& a, bool slopes, bool slopesInH, MagneticAtomSums& s) {
  const int set = MatrixSet(in.group, a);
  const double phaseSign = q.moment.conjugate ? -1.0 : 1.0;
  for (int n = 1; n <= q.nSym; ++n) {
    const MagneticOperatorTerms& t = scratch.operators[n];
    const double cycles = a.ATP[1] * t.hp[0] + a.ATP[2] * t.hp[1] + a.ATP[3] * t.hp[2] + t.ht +
                          s.moment.phase +
                          (in.group.NMAGM > 0 ? phaseSign * in.group.magneticPhase(set, n) : 0.0);
    const double exponent =
        a.ATP[13] * t.quad[0] + a.ATP[14] * t.quad[1] + a.ATP[15] * t.quad[2] +
        2.0 * (a.ATP[16] * t.quad[3] + a.ATP[17] * t.quad[4] + a.ATP[18] * t.quad[5]);
    const double T = std::exp(-exponent);
    Complex g, dg;
    PhaseFactor(q, kTwoPi * cycles, g, dg);
    const Complex tau = T * g, dtau = kTwoPi * T * dg;
    const RealMatrix& M = scratch.matrices(set, n);
    const ComplexVector v = Times(M, s.moment.S);
    AddScaled(s.F, tau, v);
    if (slopesInH) AddSlopesInH(in.group, n, a, t, tau, dtau, v, s.dH);
    if (!slopes) continue;
    for (int c = 0; c < 3; ++c) {
      AddScaled(s.dPosition[c], t.hp[c] * dtau, v);
      for (int i = 0; i < 3; ++i) s.C[c][i] += tau * M[i][c];
    }
    AddScaled(s.dPhase, dtau, v);
    for (int b = 0; b < 6; ++b) AddScaled(s.dBeta[b], -(b < 3 ? 1.0 : 2.0) * t.quad[b] * tau, v);
  }
  for (auto* part : {&s.F, &s.dPhase}) {
    for (Complex& x : *part) x *= s.w;
  }
  for (auto& part : s.dH) {
    for (Complex& x : part) x *= s.w;
  }
  if (!slopes) return;
  for (auto& part : s.dPosition) {
    for (Complex& x : part) x *= s.w;
  }
  for (auto& part : s.dBeta) {
    for (Complex& x : part) x *= s.w;
  }
}

// Clears the sums of an atom: its amplitude and, with `slopes`, those of its derivatives.
void ClearSums(MagneticAtomSums& s, bool slopes) {
  s.F = {};
  s.dPhase = {};
  s.dH = {};
  if (!slopes) return;
  s.C = {};
  s.dPosition = {};
  s.dBeta = {};
}

// K = G - p p^T / (4 s2): the metric of the unit axis vectors less the part
// along the scattering vector, p_j = H_j / a_j.
RealMatrix ProjectionForm(const MagneticCell& cell, const MagneticRequest& q) {
  RealMatrix K = cell.cosine;
  RealVector p{};
  for (int j = 0; j < 3; ++j) p[j] = q.H[j] / cell.length[j];
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) K[i][j] -= p[i] * p[j] / (4.0 * q.s2);
  }
  return K;
}

// 2 Re(dF^H . KF): the derivative of F^H K F along dF.
double Slope(const ComplexVector& dF, const ComplexVector& KF) {
  double sum = 0.0;
  for (int i = 0; i < 3; ++i) sum += (std::conj(dF[i]) * KF[i]).real();
  return 2.0 * sum;
}

void AddDerivative(float* dF2, int fitted, const Codeword& w, double value) {
  const int n = w.parameterNumber;
  if (n <= 0 || n > fitted) return;
  dF2[n - 1] += static_cast<float>(w.multiplier * value);
}

void AtomDerivatives(const MagneticInputs& in, const MagneticRequest& q, const AtomSite& a,
                     const MagneticAtomSums& s, const ComplexVector& KF, float* dF2, int fitted) {
  for (int c = 0; c < 3; ++c) AddDerivative(dF2, fitted, a.ATC[c + 1], Slope(s.dPosition[c], KF));
  const double own = Slope(s.F, KF);
  AddDerivative(dF2, fitted, a.ATC[4], -q.s2 * own);
  if (a.ATP[5] != 0.0f) AddDerivative(dF2, fitted, a.ATC[5], own / a.ATP[5]);
  for (int b = 0; b < 6; ++b) AddDerivative(dF2, fitted, a.ATC[13 + b], Slope(s.dBeta[b], KF));
  const AtomSite& first = in.atoms[0];
  const bool conical = q.moment.form == MomentForm::Conical;
  for (int k = 0; k < kMomentSlots; ++k) {
    const int slot = kFirstMomentSlot + k;
    // The cone axis belongs to the first atom.
    const Codeword& code = conical && (slot == 9 || slot == 10) ? first.ATC[slot] : a.ATC[slot];
    if (code.parameterNumber == 0) continue;
    ComplexVector dF{};
    for (int c = 0; c < 3; ++c) AddScaled(dF, s.w * s.moment.dS[k][c], s.C[c]);
    AddScaled(dF, s.moment.dPhase[k], s.dPhase);
    AddDerivative(dF2, fitted, code, Slope(dF, KF));
  }
}

// The slopes in H of one atom: its sums, and its weight through s2.
void AddWeightSlopes(const MagneticInputs& in, const MagneticRequest& q, const AtomSite& a,
                     const MagneticAtomSums& s, std::array<ComplexVector, 3>& dFdH) {
  constexpr double kStep = 1.0e-6;
  const int sp = a.magneticSpecies;
  const double Fm = MagneticFormFactor(in.NSCAT, in.species[sp], sp, q.s2);
  const double dFm = (MagneticFormFactor(in.NSCAT, in.species[sp], sp, q.s2 + kStep) -
                      MagneticFormFactor(in.NSCAT, in.species[sp], sp, q.s2 - kStep)) /
                     (2.0 * kStep);
  // d ln w / d s2 = d ln Fm / d s2 - B.
  const double dlnw = (Fm != 0.0 ? dFm / Fm : 0.0) - a.ATP[4];
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) dFdH[i][j] += s.dH[i][j] + dlnw * q.dS2dH[i] * s.F[j];
  }
}

// dF2/dH_i = 2 Re(dF_i^H K F) + F^H (dK/dH_i) F, K = G - p p^T/(4 s2) with
// p_j = H_j / a_j, P = p.F.
RealVector ProjectedSlopesInH(const MagneticCell& cell, const MagneticRequest& q,
                              const ComplexVector& F, const ComplexVector& KF,
                              const std::array<ComplexVector, 3>& dFdH) {
  Complex P = 0.0;
  for (int j = 0; j < 3; ++j) P += q.H[j] / cell.length[j] * F[j];
  const double P2 = std::norm(P);
  RealVector out{};
  for (int i = 0; i < 3; ++i) {
    const double dP2 = 2.0 * (std::conj(P) * F[i]).real() / cell.length[i];
    out[i] = Slope(dFdH[i], KF) - dP2 / (4.0 * q.s2) + P2 * q.dS2dH[i] / (4.0 * q.s2 * q.s2);
  }
  return out;
}

}  // namespace

std::array<RealVector, 3> MomentMatrix(const SpaceGroup& g, int m, int n) {
  RealMatrix M{};
  if (g.NMAGM == 0) {
    for (int i = 0; i < 3; ++i) M[i][i] = 1.0;
    return M;
  }
  const int index = g.magneticRotation(m, n);
  if (index == 0) return M;
  const IntMatrix3& R = IROT(std::abs(index));
  const double sign = index < 0 ? -1.0 : 1.0;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) M[i][j] = sign * R(i + 1, j + 1);
  }
  return M;
}

double MagneticFormFactor(int NSCAT, const ChemicalSpecies& sp, int number, double s2) {
  if (NSCAT < 0 && number <= -NSCAT && sp.nTable >= 1) {
    return InterpolateFormFactor(sp, static_cast<float>(2000.0 * std::sqrt(s2)));
  }
  const auto& c = sp.coeff;
  return c[1] * std::exp(-c[2] * s2) + c[3] * std::exp(-c[4] * s2) + c[5] * std::exp(-c[6] * s2) +
         c[7];
}

double EvaluateMagneticStructureFactor(const MagneticInputs& in, const MagneticRequest& q,
                                       MagneticScratch& scratch, float* dF2, int fitted,
                                       RealVector* dF2dH) {
  if (dF2dH != nullptr) *dF2dH = {};
  if (!(q.s2 > 0.0) || in.atoms.empty()) return 0.0;
  PrepareOperators(in.group, q, scratch);
  ComplexVector F{};
  std::array<ComplexVector, 3> dFdH{};
  const int nAtoms = static_cast<int>(in.atoms.size());
  for (int i = 1; i <= nAtoms; ++i) {
    const AtomSite& a = in.atoms[static_cast<std::size_t>(i - 1)];
    MagneticAtomSums& s = scratch.atoms[i];
    s.bears = false;
    if (!BearsMoment(a, q)) continue;
    ClearSums(s, dF2 != nullptr);
    const int sp = a.magneticSpecies;
    if (sp < 1 || sp > DimensionLimits::N_SPE) continue;
    s.bears = true;
    const double Fm = MagneticFormFactor(in.NSCAT, in.species[sp], sp, q.s2);
    s.w = kMagneticAmplitude * Fm * a.ATP[5] * std::exp(-a.ATP[4] * q.s2);
    s.moment = MomentComponentOf(a, in.atoms[0], in.cell, q.moment);
    SumAtom(in, q, scratch, a, dF2 != nullptr, dF2dH != nullptr, s);
    for (int j = 0; j < 3; ++j) F[j] += s.F[j];
    if (dF2dH != nullptr) AddWeightSlopes(in, q, a, s, dFdH);
  }
  const RealMatrix K = ProjectionForm(in.cell, q);
  ComplexVector KF{};
  for (int i = 0; i < 3; ++i) KF[i] = K[i][0] * F[0] + K[i][1] * F[1] + K[i][2] * F[2];
  double F2 = 0.0;
  for (int i = 0; i < 3; ++i) F2 += (std::conj(F[i]) * KF[i]).real();
  if (dF2dH != nullptr) *dF2dH = ProjectedSlopesInH(in.cell, q, F, KF, dFdH);
  if (dF2 != nullptr) {
    for (int i = 1; i <= nAtoms; ++i) {
      if (!scratch.atoms[i].bears) continue;
      AtomDerivatives(in, q, in.atoms[static_cast<std::size_t>(i - 1)], scratch.atoms[i], KF, dF2,
                      fitted);
    }
  }
  return F2;
}

}  // namespace corvinet
