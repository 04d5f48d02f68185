// Tests of the magnetic structure factor: values against brute-force sums over magnetic supercells
// (tests/data/model/magnetic_reference.py), the projection, and which atoms take part.
#include "model/magnetic_structure_factor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "crystal/metric.h"
#include "model/scattering_tables.h"

namespace corvinet {
namespace {

// A magnetic phase put together by hand: operators, atoms, one magnetic species per label.
struct MagneticCase {
  SpaceGroup group;
  std::vector<AtomSite> atoms;
  Table1<ChemicalSpecies, DimensionLimits::N_SPE> species;
  int speciesCount = 0;
  Table1<float, 6> cell;
  Table1<float, 6> coefficients;
  std::unique_ptr<MagneticScratch> scratch = std::make_unique<MagneticScratch>();

  MagneticCase(float a, float b, float c, float al, float be, float ga) {
    cell[1] = a;
    cell[2] = b;
    cell[3] = c;
    cell[4] = al;
    cell[5] = be;
    cell[6] = ga;
    CellMetric metric;
    EXPECT_TRUE(BuildCellMetric(cell, metric));
    coefficients = ReciprocalCoefficients(metric);
    group.NSYM = 1;
    group.isl[1] = 1;
  }
  // Operator n: rotation `isl` of the fixed table, translation t, moment matrix `magnetic`.
  void Operator(int n, int isl, float t1, float t2, float t3, int magnetic = 0,
                float phase = 0.0f) {
    group.NSYM = std::max(group.NSYM, n);
    group.isl[n] = isl;
    group.translation(1, n) = t1;
    group.translation(2, n) = t2;
    group.translation(3, n) = t3;
    if (magnetic != 0) {
      group.NMAGM = 1;
      group.magneticRotation(1, n) = magnetic;
      group.magneticPhase(1, n) = phase;
    }
  }
  AtomSite& Atom(const std::string& key, float x, float y, float z, float biso, float occ) {
    AtomSite a;
    a.label = key;
    a.species = key;
    a.N_t = 1;
    a.ATP[1] = x;
    a.ATP[2] = y;
    a.ATP[3] = z;
    a.ATP[4] = biso;
    a.ATP[5] = occ;
    a.magneticSpecies = SpeciesOf(key);
    atoms.push_back(a);
    return atoms.back();
  }
  int SpeciesOf(const std::string& key) {
    for (int n = 1; n <= speciesCount; ++n) {
      if (species[n].label == key) return n;
    }
    const int row = FindMagneticRow(key);
    EXPECT_GT(row, 0) << key;
    ChemicalSpecies& sp = species[++speciesCount];
    sp.label = key;
    for (int j = 1; j <= 7; ++j) sp.coeff[j] = FixedScatteringTables().magnetic[row].v[j - 1];
    return speciesCount;
  }
  // F2 of the vector H = h + sign k for vector number `vector` (0: none).
  double F2(int Jbt, std::array<double, 3> H, int vector = 0, bool conjugate = false,
            double fact = 1.0, float* dF2 = nullptr, int fitted = 0, RealVector* dF2dH = nullptr) {
    const MagneticCell magneticCell = MagneticCellOf(cell);
    const MagneticInputs in{group, std::span<const AtomSite>(atoms.data(), atoms.size()), species,
                            0, magneticCell};
    MagneticRequest q;
    q.nSym = group.NSYM;
    q.acentric = group.ICENT == 1;
    q.H = H;
    q.s2 = 0.25 * InverseDSquared(coefficients, H);
    q.vector = vector;
    q.moment.form = MomentFormOf(Jbt);
    q.moment.fact = fact;
    q.moment.satellite = vector != 0;
    q.moment.conjugate = conjugate;
    const auto& k = coefficients;
    q.dS2dH = {0.25 * (2.0 * k[1] * H[0] + k[5] * H[2] + k[6] * H[1]),
               0.25 * (2.0 * k[2] * H[1] + k[4] * H[2] + k[6] * H[0]),
               0.25 * (2.0 * k[3] * H[2] + k[4] * H[1] + k[5] * H[0])};
    return EvaluateMagneticStructureFactor(in, q, *scratch, dF2, fitted, dF2dH);
  }
};

// Agreement with the reference sums: 1E-4 relative (the reference takes the
// magnetic amplitude to more digits), with an absolute floor for the zeros.
void ExpectReference(double program, double reference) {
  EXPECT_NEAR(program, reference, 1.0e-4 * reference + 1.0e-7);
}

// A-type order of LaMnO3 in P n m a with the moments along a: Mn at 4b, the
// four operators of the reduced set with the moment matrices of Pn'ma' in
// that order (1, 2_1z with time reversal, 2_1y, 2_1x with time reversal).
// Occ 0.5 is 4 sites of 8 general positions; the implied inversion, which the
// Mn sites sit on, doubles the amplitude: the whole cell has 4 F2.
TEST(MagneticStructureFactor, CollinearAntiferromagnetInPnmaAgreesWithTheWholeCellSum) {
  MagneticCase c(5.7327f, 7.6738f, 5.5354f, 90.0f, 90.0f, 90.0f);
  c.group.ICENT = 2;
  c.Operator(1, 1, 0.0f, 0.0f, 0.0f, 1);
  c.Operator(2, 2, 0.5f, 0.0f, 0.5f, -2);
  c.Operator(3, 3, 0.0f, 0.5f, 0.0f, 3);
  c.Operator(4, 4, 0.5f, 0.5f, 0.5f, -4);
  AtomSite& mn = c.Atom("MMN3", 0.0f, 0.0f, 0.5f, 0.18f, 0.5f);
  mn.ATP[6] = 3.7f;
  const struct {
    std::array<double, 3> h;
    double reference;
  } rows[] = {{{0, 1, 0}, 14.6725834}, {{1, 0, 0}, 0.0}, {{0, 1, 2}, 8.08022912},
              {{1, 1, 1}, 6.78818104}, {{2, 1, 1}, 0.0}, {{0, 3, 0}, 7.89231802},
              {{1, 0, 1}, 0.0}};
  for (const auto& r : rows) {
    ExpectReference(4.0 * c.F2(1, r.h), r.reference);
  }
}

TEST(MagneticStructureFactor, FerromagnetInATriclinicCellAgreesWithTheReferenceSum) {
  for (const bool spherical : {false, true}) {
    MagneticCase c(4.1f, 5.2f, 6.3f, 80.0f, 95.0f, 105.0f);
    for (auto xyz : {std::array<float, 3>{0.1f, 0.2f, 0.3f}, {0.65f, 0.45f, 0.7f}}) {
      AtomSite& fe = c.Atom("MFE3", xyz[0], xyz[1], xyz[2], 0.4f, 1.0f);
      if (spherical) {
        fe.ATP[6] = 2.5f;   // modulus
        fe.ATP[7] = 40.0f;  // phi
        fe.ATP[8] = 70.0f;  // theta
      } else {
        fe.ATP[6] = 1.5f;
        fe.ATP[7] = -0.8f;
        fe.ATP[8] = 2.2f;
      }
    }
    const double cartesian[] = {0.0273608797, 0.304424166, 0.0144069932, 0.435628206, 0.0614233748};
    const double sphericalValues[] = {0.00843508932, 0.152488421, 0.524352039, 0.137904525,
                                      0.136695443};
    const std::array<double, 3> hkl[] = {{1, 0, 0}, {0, 1, 1}, {1, -1, 2}, {2, 1, -1}, {0, 0, 1}};
    for (int i = 0; i < 5; ++i) {
      ExpectReference(c.F2(spherical ? -1 : 1, hkl[i]),
                      spherical ? sphericalValues[i] : cartesian[i]);
    }
  }
}

// k = (0, 0, 0.3), a helix in the ab plane: R along a, I along b, Fact 1/2;
// a second operator (2-fold screw along c) with its moment matrix and a phase.
TEST(MagneticStructureFactor, IncommensurateHelixAgreesWithTheSupercellSum) {
  MagneticCase c(5.0f, 6.0f, 4.0f, 90.0f, 90.0f, 90.0f);
  c.Operator(1, 1, 0.0f, 0.0f, 0.0f, 1);
  c.Operator(2, 2, 0.0f, 0.0f, 0.5f, 2, 0.1f);
  AtomSite& co = c.Atom("MCO2", 0.1f, 0.2f, 0.3f, 0.5f, 1.0f);
  co.ATP[6] = 2.0f;
  co.ATP[10] = 2.0f;
  co.ATP[12] = 0.05f;
  const struct {
    std::array<double, 3> h;
    int sign;
    double reference;
  } rows[] = {{{0, 0, 0}, 1, 0.282229965},   {{1, 0, 0}, 1, 0.00644351438},
              {{1, 0, 0}, -1, 0.256860766},  {{1, 1, 0}, 1, 0.176567598},
              {{0, 1, 1}, -1, 0.0694693485}, {{2, 1, 1}, 1, 0.00270842654}};
  for (const auto& r : rows) {
    const std::array<double, 3> H = {r.h[0], r.h[1], r.h[2] + r.sign * 0.3};
    ExpectReference(c.F2(1, H, 1, r.sign < 0, 0.5), r.reference);
  }
}

// A ferromagnetic cone in a monoclinic cell: the axial part on the
// fundamentals, the turning part on the satellites of k = (0.2, 0, 0.125).
TEST(MagneticStructureFactor, ConicalStructureAgreesWithTheSupercellSum) {
  MagneticCase c(6.0f, 5.0f, 7.0f, 90.0f, 100.0f, 90.0f);
  c.Operator(2, 3, 0.0f, 0.0f, 0.0f);
  AtomSite& ni = c.Atom("MNI2", 0.15f, 0.25f, 0.35f, 0.2f, 1.0f);
  ni.ATP[6] = 2.0f;    // moment
  ni.ATP[7] = 35.0f;   // cone half-angle
  ni.ATP[8] = 20.0f;   // phase in degrees
  ni.ATP[9] = 30.0f;   // Phi of the cone axis
  ni.ATP[10] = 60.0f;  // Theta
  const std::array<double, 3> k = {0.2, 0.0, 0.125};
  const struct {
    std::array<double, 3> h;
    int sign;
    double reference;
  } rows[] = {{{1, 0, 0}, 0, 0.0760207863},   {{0, 1, 1}, 0, 0.122089578},
              {{1, 1, -1}, 0, 0.0376706003},  {{1, 0, 0}, 1, 0.0037172534},
              {{0, 1, 1}, -1, 0.00258436643}, {{1, 1, -1}, 1, 0.0460483533}};
  for (const auto& r : rows) {
    std::array<double, 3> H = r.h;
    for (int i = 0; i < 3; ++i) H[i] += r.sign * k[i];
    ExpectReference(c.F2(5, H, r.sign == 0 ? 0 : 1, r.sign < 0), r.reference);
  }
}

TEST(MagneticStructureFactor, ReflectionAlongTheMomentHasNoMagneticIntensity) {
  MagneticCase c(4.0f, 5.0f, 6.0f, 90.0f, 90.0f, 90.0f);
  AtomSite& fe = c.Atom("MFE3", 0.1f, 0.2f, 0.3f, 0.0f, 1.0f);
  fe.ATP[8] = 4.0f;  // along c
  // Zero up to the rounding of the 32-bit result.
  EXPECT_NEAR(c.F2(1, {0, 0, 2}), 0.0f, 1.0e-6f * c.F2(1, {2, 0, 0}));
  EXPECT_GT(c.F2(1, {2, 0, 0}), 0.1f);
  // Normal to the moment the whole moment is seen: (p f m)^2.
  const double s2 = 0.25 * 4.0 / 16.0;
  const auto& k = c.species[1].coeff;
  const double f = k[1] * std::exp(-k[2] * s2) + k[3] * std::exp(-k[4] * s2) +
                   k[5] * std::exp(-k[6] * s2) + k[7];
  EXPECT_NEAR(c.F2(1, {2, 0, 0}), std::pow(0.26954 * f * 4.0, 2), 1e-5);
}

TEST(MagneticStructureFactor, AtomsOfKindZeroOrTwoDoNothing) {
  MagneticCase c(4.0f, 5.0f, 6.0f, 90.0f, 90.0f, 90.0f);
  AtomSite& fe = c.Atom("MFE3", 0.1f, 0.2f, 0.3f, 0.0f, 1.0f);
  fe.ATP[6] = 2.0f;
  const float alone = c.F2(10, {1, 1, 0});
  for (int kind : {0, 2}) {
    AtomSite& other = c.Atom("MFE3", 0.4f, 0.1f, 0.7f, 0.0f, 1.0f);
    other.ATP[6] = 3.0f;
    other.ATP[7] = 1.0f;
    other.N_t = kind;
    EXPECT_FLOAT_EQ(c.F2(10, {1, 1, 0}), alone) << kind;
  }
}

// Vector 3 stands for -k2: an atom of vector 2 adds to the satellites of
// vectors 2 and 3, and to no other.
TEST(MagneticStructureFactor, AtomOfVectorTwoContributesToVectorsTwoAndThreeOnly) {
  MagneticCase c(4.0f, 5.0f, 6.0f, 90.0f, 90.0f, 90.0f);
  AtomSite& fe = c.Atom("MFE3", 0.1f, 0.2f, 0.3f, 0.0f, 1.0f);
  fe.ATP[6] = 2.0f;
  fe.Vek = 2;
  const std::array<double, 3> H = {1.2, 0.0, 0.5};
  EXPECT_EQ(c.F2(1, H, 1, false, 0.5), 0.0f);
  EXPECT_GT(c.F2(1, H, 2, false, 0.5), 0.0f);
  EXPECT_GT(c.F2(1, H, 3, false, 0.5), 0.0f);
  EXPECT_EQ(c.F2(1, H, 4, false, 0.5), 0.0f);
  EXPECT_EQ(c.F2(1, H, 0), 0.0f);
}

// The analytic derivatives of F2 against central differences of F2, for the
// moments, the magnetic phase, positions, Biso, Occ and betas, in the
// Cartesian, spherical and conical forms, on a satellite and its mate.
TEST(MagneticStructureFactor, DerivativesFollowCentralDifferences) {
  for (const int Jbt : {1, -1, 5}) {
    for (const bool conjugate : {false, true}) {
      MagneticCase c(5.0f, 6.0f, 4.5f, 90.0f, 98.0f, 90.0f);
      c.Operator(1, 1, 0.0f, 0.0f, 0.0f, 1);
      c.Operator(2, 3, 0.0f, 0.5f, 0.0f, -3, 0.15f);
      for (int i = 0; i < 2; ++i) {
        AtomSite& a =
            c.Atom(i == 0 ? "MCO2" : "MNI2", 0.1f + 0.3f * i, 0.2f, 0.35f - 0.1f * i, 0.4f, 0.8f);
        const float values[] = {1.7f, 40.0f, 25.0f, 0.9f, 35.0f, 70.0f, 0.07f};
        for (int s = 6; s <= 12; ++s) a.ATP[s] = values[s - 6] * (i == 0 ? 1.0f : 0.8f);
        if (Jbt == 1) {
          // Cartesian components of a size like that of the modulus.
          const float cartesian[] = {1.7f, 0.6f, -0.9f, 0.9f, 1.3f, 0.5f, 0.07f};
          for (int s = 6; s <= 12; ++s) a.ATP[s] = cartesian[s - 6];
        }
        a.ATP[13] = 0.004f;
        a.ATP[17] = 0.001f;
      }
      std::vector<std::pair<int, int>> slots;  // (atom, slot)
      for (int i = 0; i < 2; ++i) {
        for (int s : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 17}) {
          if (Jbt == 5 && (s == 11 || s == 12)) continue;
          if (Jbt == 5 && i == 1 && (s == 9 || s == 10)) continue;  // the axis is the first atom's
          slots.emplace_back(i, s);
        }
      }
      for (std::size_t n = 0; n < slots.size(); ++n) {
        c.atoms[static_cast<std::size_t>(slots[n].first)].ATC[slots[n].second] =
            Codeword{static_cast<int>(n) + 1, 1.0f};
      }
      const std::array<double, 3> H = {1.2, 1.0, conjugate ? -0.8 : 1.2};
      std::vector<float> analytic(slots.size(), 0.0f);
      RealVector inH{};
      c.F2(Jbt, H, 1, conjugate, 0.5, analytic.data(), static_cast<int>(slots.size()), &inH);
      // The slope in H = h + k: phases, betas, form factor and projection.
      for (int i = 0; i < 3; ++i) {
        const double h = 1e-5;
        std::array<double, 3> up = H, down = H;
        up[static_cast<std::size_t>(i)] += h;
        down[static_cast<std::size_t>(i)] -= h;
        const double numeric =
            (c.F2(Jbt, up, 1, conjugate, 0.5) - c.F2(Jbt, down, 1, conjugate, 0.5)) / (2.0 * h);
        EXPECT_NEAR(inH[static_cast<std::size_t>(i)], numeric, 1e-5 * std::fabs(numeric) + 1e-8)
            << "Jbt " << Jbt << " H component " << i << (conjugate ? " (-k)" : " (+k)");
      }
      for (std::size_t n = 0; n < slots.size(); ++n) {
        float& v = c.atoms[static_cast<std::size_t>(slots[n].first)].ATP[slots[n].second];
        const float saved = v;
        const float h = slots[n].second >= 13 ? 1e-4f : (std::fabs(saved) > 5.0f ? 1e-2f : 1e-3f);
        v = saved + h;
        const double up = c.F2(Jbt, H, 1, conjugate, 0.5);
        v = saved - h;
        const double down = c.F2(Jbt, H, 1, conjugate, 0.5);
        v = saved;
        const double numeric = (up - down) / (2.0 * h);
        EXPECT_NEAR(analytic[n], numeric, 5e-3 * std::fabs(numeric) + 2e-6)
            << "Jbt " << Jbt << " atom " << slots[n].first << " slot " << slots[n].second
            << (conjugate ? " (-k)" : " (+k)");
      }
    }
  }
}

}  // namespace
}  // namespace corvinet
