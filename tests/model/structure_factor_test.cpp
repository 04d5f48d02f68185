// Tests of the structure factor: values against independent whole-cell sums, its derivatives
// against finite differences, and its special cases.
#include "model/structure_factor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <memory>
#include <sstream>
#include <vector>

#include "crystal/symmetry_operators.h"
#include "test_support.h"

namespace corvinet {
namespace {

struct CaseAtom {
  std::string label;
  std::vector<double> values;  // x y z B Occ a1..c f' f'' b11..b23
};

struct CaseReflection {
  std::array<float, 3> h{};
  float s2 = 0.0f;
  double F2 = 0.0;
};

struct Case {
  std::string name;
  std::string symbol;
  std::vector<CaseAtom> atoms;
  std::vector<CaseReflection> reflections;
};

// The expected values, written by tests/data/model/make_structure_factor_cases.py.
std::vector<Case> ReadCases() {
  std::vector<Case> cases;
  std::istringstream in(testing::TestData("model/structure_factor_cases.txt"));
  std::string line;
  while (std::getline(in, line)) {
    std::istringstream words(line);
    std::string key;
    words >> key;
    if (key == "case") {
      cases.emplace_back();
      words >> cases.back().name;
    } else if (key == "group") {
      std::getline(words >> std::ws, cases.back().symbol);
    } else if (key == "atom") {
      CaseAtom a;
      words >> a.label;
      double v;
      while (words >> v) a.values.push_back(v);
      cases.back().atoms.push_back(a);
    } else if (key == "hkl") {
      CaseReflection r;
      words >> r.h[0] >> r.h[1] >> r.h[2] >> r.s2 >> r.F2;
      cases.back().reflections.push_back(r);
    }
  }
  return cases;
}

// One crystal phase of the case, one species per atom, with the switches of
// the pattern and of the phase in it.
struct StructureCase {
  SpaceGroup group;
  std::vector<AtomSite> atoms;
  Table1<ChemicalSpecies, DimensionLimits::N_SPE> species;
  int NSCAT = 0;
  int Irf = 0;
  int JFOU = 0;
  std::unique_ptr<StructureFactorScratch> scratch = std::make_unique<StructureFactorScratch>();
  StructureFactorRequest q;
  Reflection r;
  std::vector<float> dF2 = std::vector<float>(DimensionLimits::kDefaultMSZ, 0.0f);

  explicit StructureCase(const Case& c) {
    EXPECT_TRUE(SpaceGroupFromSymbol(c.symbol, group).ok()) << c.symbol;
    atoms.resize(c.atoms.size());
    for (int i = 1; i <= static_cast<int>(c.atoms.size()); ++i) {
      const CaseAtom& ca = c.atoms[static_cast<std::size_t>(i - 1)];
      AtomSite& a = Atom(i);
      a.label = ca.label;
      for (int j = 1; j <= 5; ++j) a.ATP[j] = static_cast<float>(ca.values[j - 1]);
      for (int j = 0; j < 6; ++j) a.ATP[13 + j] = static_cast<float>(ca.values[16 + j]);
      ChemicalSpecies& sp = species[i];
      for (int j = 1; j <= 9; ++j) sp.coeff[j] = static_cast<float>(ca.values[4 + j]);
      sp.fp = static_cast<float>(ca.values[14]);
      sp.fpp = static_cast<float>(ca.values[15]);
      a.nuclearSpecies = i;
    }
    q.nSym = group.NSYM;
    q.acentric = group.ICENT == 1 ? 1 : 2;
  }
  AtomSite& Atom(int i) { return atoms[static_cast<std::size_t>(i - 1)]; }
  StructureFactorValue Evaluate(const std::array<float, 3>& h, float s2, bool derivatives) {
    q.h = h;
    q.s2 = s2;
    std::fill(dF2.begin(), dF2.end(), 0.0f);
    const StructureFactorInputs in{group, atoms, species, NSCAT, Irf, JFOU};
    return EvaluateStructureFactor(in, q, r, *scratch, derivatives ? dF2.data() : nullptr,
                                   DimensionLimits::kDefaultMSZ);
  }
  float F2(const std::array<float, 3>& h, float s2, bool derivatives = false) {
    const StructureFactorValue value = Evaluate(h, s2, derivatives);
    EXPECT_EQ(value.status, StructureFactorStatus::Evaluated);
    return value.F2;
  }
};

TEST(StructureFactor, MatchesIndependentWholeCellSumsToOnePartInTenThousand) {
  const std::vector<Case> cases = ReadCases();
  ASSERT_EQ(cases.size(), 10u);
  int checked = 0;
  for (const Case& c : cases) {
    StructureCase s(c);
    for (const CaseReflection& r : c.reflections) {
      const double F2 = s.F2(r.h, r.s2);
      EXPECT_NEAR(F2, r.F2, 1.0e-4 * std::max(r.F2, 1.0e-3))
          << c.name << " " << r.h[0] << " " << r.h[1] << " " << r.h[2];
      ++checked;
    }
  }
  EXPECT_EQ(checked, 126);
}

const Case& Named(const std::vector<Case>& cases, const std::string& name) {
  for (const Case& c : cases) {
    if (c.name == name) return c;
  }
  ADD_FAILURE() << name;
  return cases.front();
}

TEST(StructureFactor, FriedelPairsAgreeWithAnomalousScattering) {
  const auto cases = ReadCases();
  StructureCase s(Named(cases, "aniso_p21"));
  ASSERT_EQ(s.q.acentric, 1);
  const float plus = s.F2({2, 1, 3}, 0.08f);
  const float minus = s.F2({-2, -1, -3}, 0.08f);
  EXPECT_NEAR(plus, minus, 1.0e-5f * plus);
}

TEST(StructureFactor, CentricPhaseHasNoSineSums) {
  const auto cases = ReadCases();
  StructureCase s(Named(cases, "aniso_p21c"));
  ASSERT_NE(s.q.acentric, 1);
  const float F2 = s.F2({2, 1, 3}, 0.08f);
  // B = B'' = 0: A' = A and B' = A'', so F^2 = A'^2 + B'^2.
  EXPECT_NEAR(F2, s.r.Aprime * s.r.Aprime + s.r.Bprime * s.r.Bprime, 1.0e-5f * F2);
}

TEST(StructureFactor, NeutronLengthsGiveNoImaginaryPart) {
  const auto cases = ReadCases();
  StructureCase s(Named(cases, "aniso_f43m_neutron"));
  const float F2 = s.F2({3, 1, 1}, 0.09f);
  // A'' = B'' = 0: F^2 = A^2 + B^2 = A'^2 + B'^2.
  EXPECT_NEAR(F2, s.r.Aprime * s.r.Aprime + s.r.Bprime * s.r.Bprime, 1.0e-5f * F2);
  EXPECT_GT(F2, 0.0f);
}

TEST(StructureFactor, AtomWithAnOperatorRangeUsesTheIdentityAndItsRange) {
  // One atom in general position of a group of eight operators, with f''.
  Case c{"range", "P 4 2 2", {}, {}};
  c.atoms.push_back({"Fe1", {0.11, 0.23,  0.37, 0.5,   1.0, 11.77, 4.76, 7.36, 0.31, 3.52, 15.35,
                             2.30, 76.88, 1.04, -1.13, 3.2, 0,     0,    0,    0,    0,    0}});
  StructureCase s(c);
  ASSERT_EQ(s.q.nSym, 8);
  AtomSite& a = s.Atom(1);
  // A' and B' are linear in the operator terms, so single-operator ranges
  // (each with the identity in front) isolate the term of every operator.
  auto amplitude = [&](int in, int fin) {
    a.In = in;
    a.Fin = fin;
    s.F2({1, 2, 3}, 0.05f);
    return std::complex<double>(s.r.Aprime, s.r.Bprime);
  };
  const std::complex<double> identity = amplitude(1, 1);
  std::complex<double> term[9];
  for (int n = 2; n <= 8; ++n) term[n] = amplitude(n, n) - identity;
  const std::complex<double> ranged = amplitude(3, 5);
  const std::complex<double> expected = identity + term[3] + term[4] + term[5];
  EXPECT_NEAR(std::abs(ranged - expected), 0.0, 1.0e-4 * std::abs(expected));
  // Operator 2 is left out: its term is not small.
  EXPECT_GT(std::abs(term[2]), 1.0e-2 * std::abs(expected));
  const std::complex<double> all = amplitude(0, 0);
  std::complex<double> sum = identity;
  for (int n = 2; n <= 8; ++n) sum += term[n];
  EXPECT_NEAR(std::abs(all - sum), 0.0, 1.0e-4 * std::abs(sum));
}

// Central finite difference of F^2 with respect to one atom field.
// `noise` receives the size of the rounding of F^2 seen through the step.
double FiniteDifference(StructureCase& s, int atom, int field, const std::array<float, 3>& h,
                        float s2, double& noise) {
  float& v = s.Atom(atom).ATP[field];
  const float saved = v;
  const float step = std::max(1.0e-3f * std::fabs(saved), 1.0e-3f);
  v = saved + step;
  const double up = s.F2(h, s2);
  v = saved - step;
  const double down = s.F2(h, s2);
  v = saved;
  noise = 4.0 * 1.2e-7 * std::fabs(up) / step;
  return (up - down) / (2.0 * step);
}

void CheckDerivatives(const std::string& name) {
  const auto cases = ReadCases();
  StructureCase s(Named(cases, name));
  const std::array<float, 3> h = {2, 1, 3};
  const float s2 = 0.08f;
  int parameter = 0;
  const int fields[] = {1, 2, 3, 4, 5, 13, 14, 15, 16, 17, 18};
  for (int atom = 1; atom <= 2; ++atom) {
    for (int field : fields) {
      s.Atom(atom).ATC[field] = Codeword{++parameter, 1.0f};
    }
  }
  s.F2(h, s2, true);
  const std::vector<float> analytic = s.dF2;
  parameter = 0;
  for (int atom = 1; atom <= 2; ++atom) {
    for (int field : fields) {
      double noise = 0.0;
      const double fd = FiniteDifference(s, atom, field, h, s2, noise);
      const double an = analytic[static_cast<std::size_t>(parameter++)];
      EXPECT_NEAR(an, fd, 2.0e-3 * std::fabs(fd) + noise + 1.0e-3)
          << name << " atom " << atom << " field " << field;
    }
  }
}

TEST(StructureFactor, DerivativesMatchFiniteDifferencesInAnAcentricPhase) {
  CheckDerivatives("aniso_p21");
}

TEST(StructureFactor, DerivativesMatchFiniteDifferencesInACentricPhase) {
  CheckDerivatives("aniso_p21c");
}

TEST(StructureFactor, MultiplierScalesTheDerivative) {
  const auto cases = ReadCases();
  StructureCase s(Named(cases, "aniso_p21"));
  s.Atom(1).ATC[1] = Codeword{1, 1.0f};
  s.F2({2, 1, 3}, 0.08f, true);
  const float single = s.dF2[0];
  s.Atom(1).ATC[1] = Codeword{1, -2.5f};
  s.F2({2, 1, 3}, 0.08f, true);
  EXPECT_FLOAT_EQ(s.dF2[0], -2.5f * single);
}

TEST(StructureFactor, EmptyAtomAddsNothingButItsRefinedOccupancyDividesByZero) {
  const auto cases = ReadCases();
  StructureCase s(Named(cases, "aniso_p21"));
  const float full = s.F2({2, 1, 3}, 0.08f);
  s.Atom(2).ATP[5] = 0.0f;
  s.Atom(2).ATC[5] = Codeword{1, 1.0f};
  const float withoutSecond = s.F2({2, 1, 3}, 0.08f, true);
  EXPECT_FALSE(std::isfinite(s.dF2[0]));
  s.atoms.resize(1);
  const float firstOnly = s.F2({2, 1, 3}, 0.08f);
  EXPECT_FLOAT_EQ(withoutSecond, firstOnly);
  EXPECT_NE(withoutSecond, full);
}

// Turns atom i into a thin spherical shell of radius R and weight w.
void MakeShell(StructureCase& s, int i, float R, float w) {
  const int n = i + 8;  // a species of its own, past those of the atoms
  s.species[n] = ChemicalSpecies{};
  s.species[n].label = "SPHS";
  s.Atom(i).nuclearSpecies = -n;
  s.Atom(i).ATP[19] = R;
  s.Atom(i).ATP[20] = w;
}

TEST(StructureFactor, AnObjectScattersWithItsAmplitudeInPlaceOfTheFormFactor) {
  const auto cases = ReadCases();
  StructureCase object(Named(cases, "aniso_p21"));
  MakeShell(object, 2, 1.7f, 2.5f);
  // The same atom with a flat form factor equal to w sin(qR)/(qR), worked out here.
  StructureCase flat(Named(cases, "aniso_p21"));
  const float s2 = 0.08f;
  const double x = 4.0 * std::acos(-1.0) * std::sqrt(s2) * 1.7;
  ChemicalSpecies& sp = flat.species[2];
  sp = ChemicalSpecies{};
  sp.coeff[9] = static_cast<float>(2.5 * std::sin(x) / x);
  EXPECT_NEAR(object.F2({2, 1, 3}, s2), flat.F2({2, 1, 3}, s2), 1e-4 * flat.F2({2, 1, 3}, s2));
  EXPECT_NEAR(object.F2({1, 0, 2}, s2), flat.F2({1, 0, 2}, s2), 1e-4 * flat.F2({1, 0, 2}, s2));
}

TEST(StructureFactor, ObjectParameterDerivativesMatchFiniteDifferences) {
  const auto cases = ReadCases();
  StructureCase s(Named(cases, "aniso_p21"));
  MakeShell(s, 2, 1.7f, 2.5f);
  s.Atom(2).ATC[19] = Codeword{1, 1.0f};
  s.Atom(2).ATC[20] = Codeword{2, 1.0f};
  s.Atom(2).ATC[1] = Codeword{3, 1.0f};
  const std::array<float, 3> h{2, 1, 3};
  const float s2 = 0.08f;
  s.F2(h, s2, true);
  const std::vector<float> analytic = s.dF2;
  const int slots[3] = {19, 20, 1};
  for (int n = 0; n < 3; ++n) {
    float& p = s.Atom(2).ATP[slots[n]];
    const float p0 = p;
    // F2 is a 32-bit sum: the steps are as large as the curvature allows.
    const float step = slots[n] == 1 ? 1e-3f : 1e-2f;
    p = p0 + step;
    const double up = s.F2(h, s2);
    p = p0 - step;
    const double down = s.F2(h, s2);
    p = p0;
    const double numeric = (up - down) / (2.0 * step);
    EXPECT_NEAR(analytic[static_cast<std::size_t>(n)], numeric, 2e-3 * std::fabs(numeric) + 1e-3)
        << "slot " << slots[n];
  }
}

TEST(StructureFactor, AnAtomWithNoSpeciesScattersNothing) {
  const auto cases = ReadCases();
  StructureCase s(Named(cases, "aniso_p21"));
  const float all = s.F2({2, 1, 3}, 0.08f);
  s.Atom(1).nuclearSpecies = 0;
  const float without = s.F2({2, 1, 3}, 0.08f);
  s.Atom(1).ATP[5] = 0.0f;
  EXPECT_NE(without, all);
  EXPECT_FLOAT_EQ(s.F2({2, 1, 3}, 0.08f), without);
}

TEST(StructureFactor, PartialSumsFromAListAreAddedAndKept) {
  const auto cases = ReadCases();
  StructureCase s(Named(cases, "aniso_p21"));
  const float alone = s.F2({1, 0, 0}, 0.01f);
  const float Ap = s.r.Aprime, Bp = s.r.Bprime;
  s.Irf = 3;
  s.r.Aprime = 2.0f;
  s.r.Bprime = -1.0f;
  s.F2({1, 0, 0}, 0.01f);
  EXPECT_EQ(s.r.Aprime, 2.0f);
  EXPECT_EQ(s.r.Bprime, -1.0f);
  EXPECT_NE(alone, 0.0f);
  (void)Ap;
  (void)Bp;
}

TEST(StructureFactor, PhaseAngleIsWrittenOnlyForFourierFiles) {
  const auto cases = ReadCases();
  StructureCase s(Named(cases, "aniso_p21"));
  s.r.phaseAngle = -7.0f;
  s.F2({2, 1, 3}, 0.08f);
  EXPECT_EQ(s.r.phaseAngle, -7.0f);
  s.JFOU = 1;
  s.F2({2, 1, 3}, 0.08f);
  double expected = std::atan2(static_cast<double>(s.r.Bprime), s.r.Aprime);
  if (expected < 0.0) expected += 2.0 * M_PI;
  EXPECT_NEAR(s.r.phaseAngle, expected, 1.0e-5);
}

TEST(StructureFactor, CentricPhaseAngleIsZeroOrPi) {
  const auto cases = ReadCases();
  StructureCase s(Named(cases, "aniso_p21c"));
  s.JFOU = 1;
  for (const std::array<float, 3>& h :
       {std::array<float, 3>{1, 0, 0}, {0, 1, 1}, {2, 1, 3}, {3, -1, 2}}) {
    s.F2(h, 0.05f);
    EXPECT_EQ(s.r.phaseAngle, s.r.Aprime >= 0.0f ? 0.0f : static_cast<float>(M_PI));
  }
}

}  // namespace
}  // namespace corvinet
