// Tests of the normal-equation solver against an independent double-precision solve.
#include "refine/equation_solver.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include "refine/cycle_stop_tests.h"
#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;

struct Solver {
  std::unique_ptr<NormalMatrix> normal = std::make_unique<NormalMatrix>();
  std::unique_ptr<SolverWork> work = std::make_unique<SolverWork>();
};

// Solves with Cholesky in long double, independently of the program's method.
std::vector<long double> CholeskySolve(const std::vector<std::vector<double>>& a,
                                       const std::vector<double>& b) {
  const std::size_t n = b.size();
  std::vector<std::vector<long double>> l(n, std::vector<long double>(n, 0.0L));
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      long double s = a[i][j];
      for (std::size_t k = 0; k < j; ++k) s -= l[i][k] * l[j][k];
      l[i][j] = i == j ? std::sqrt(s) : s / l[j][j];
    }
  }
  std::vector<long double> y(n), x(n);
  for (std::size_t i = 0; i < n; ++i) {
    long double s = b[i];
    for (std::size_t k = 0; k < i; ++k) s -= l[i][k] * y[k];
    y[i] = s / l[i][i];
  }
  for (std::size_t i = n; i-- > 0;) {
    long double s = y[i];
    for (std::size_t k = i + 1; k < n; ++k) s -= l[k][i] * x[k];
    x[i] = s / l[i][i];
  }
  return x;
}

TEST(EquationSolver, OneParameterGivesConditionOne) {
  Solver s;
  s.normal->A(1, 1) = 4.0f;
  s.normal->B[1] = 2.0f;
  SolveNormalEquations(*s.normal, *s.work, 1);
  EXPECT_FLOAT_EQ(s.normal->A(1, 1), 0.25f);
  EXPECT_FLOAT_EQ(s.normal->B[1], 0.5f);
  EXPECT_EQ(s.normal->Condition, 1.0f);
}

TEST(EquationSolver, IdentityGivesTheRightHandSideAndConditionOne) {
  Solver s;
  s.normal->A(1, 1) = s.normal->A(2, 2) = 1.0f;
  s.normal->B[1] = 3.0f;
  s.normal->B[2] = -7.0f;
  SolveNormalEquations(*s.normal, *s.work, 2);
  EXPECT_FLOAT_EQ(s.normal->B[1], 3.0f);
  EXPECT_FLOAT_EQ(s.normal->B[2], -7.0f);
  EXPECT_FLOAT_EQ(s.normal->A(1, 1), 1.0f);
  EXPECT_FLOAT_EQ(s.normal->A(1, 2), 0.0f);
  EXPECT_FLOAT_EQ(s.normal->Condition, 1.0f);
}

TEST(EquationSolver, TheSumsAreSolvedWithTheirDiagonalScaledByOnePlusLambda) {
  Solver s;
  // [[2 1] [1 3]] x = [3 4]: x = (1, 1) undamped; with lambda 1 the diagonal
  // doubles, [[4 1] [1 6]] x = [3 4] gives x = (14/23, 13/23).
  s.normal->SumA(1, 1) = 2.0;
  s.normal->SumA(1, 2) = s.normal->SumA(2, 1) = 1.0;
  s.normal->SumA(2, 2) = 3.0;
  s.normal->SumB[1] = 3.0;
  s.normal->SumB[2] = 4.0;
  ASSERT_EQ(SolveNormalSums(*s.normal, *s.work, 2, 0.0).status, SolveStatus::Solved);
  EXPECT_FLOAT_EQ(s.normal->B[1], 1.0f);
  EXPECT_FLOAT_EQ(s.normal->B[2], 1.0f);
  ASSERT_EQ(SolveNormalSums(*s.normal, *s.work, 2, 1.0).status, SolveStatus::Solved);
  EXPECT_FLOAT_EQ(s.normal->B[1], 14.0f / 23.0f);
  EXPECT_FLOAT_EQ(s.normal->B[2], 13.0f / 23.0f);
  // The inverse of the damped matrix: [[6 -1] [-1 4]] / 23.
  EXPECT_FLOAT_EQ(s.normal->A(1, 1), 6.0f / 23.0f);
  EXPECT_FLOAT_EQ(s.normal->A(1, 2), -1.0f / 23.0f);
  // The sums stay as they were, for a retry with another lambda.
  EXPECT_EQ(s.normal->SumA(1, 1), 2.0);
  EXPECT_EQ(s.normal->SumB[2], 4.0);
}

TEST(EquationSolver, TwoEqualRowsStopAtThePivotTest) {
  testing::ScratchDir dir;
  CapturedJob job;
  ASSERT_TRUE(OpenUnit(job->files.units[Unit::Out], "s.out", OpenStatus::Unknown));
  // The cycle solves the double-precision sums of the point loop.
  NormalMatrix& normal = job->refinement.normal;
  normal.SumA(1, 1) = 1.0;
  normal.SumA(1, 2) = 2.0;
  normal.SumA(1, 3) = 3.0;
  normal.SumA(2, 1) = 1.0;
  normal.SumA(2, 2) = 2.0;
  normal.SumA(2, 3) = 3.0;
  normal.SumA(3, 1) = 4.0;
  normal.SumA(3, 2) = 5.0;
  normal.SumA(3, 3) = 6.0;
  EXPECT_THROW(SolveCycleEquations(*job, 3, 0.0), ProcessStop);
  CloseUnit(job->files.units[Unit::Out]);
  EXPECT_NE(job.Console().find(" Singular matrix!!, fix some parameters!"), std::string::npos);
  EXPECT_NE(job.Console().find(" Singular Matrix!!"), std::string::npos);
  // No value of the job holds the parameter whose pivot vanished.
  EXPECT_EQ(dir.Read("s.out"),
            " ==> Singular matrix!!, fix some parameters!\n"
            " ==> Parameter no.:   2: held by no value of the model\n");
}

TEST(EquationSolver, TwoEqualRowsGiveTheSingularStatusWithoutAJob) {
  Solver s;
  for (int j = 1; j <= 3; ++j) {
    s.normal->A(1, j) = static_cast<float>(j);
    s.normal->A(2, j) = static_cast<float>(j);
    s.normal->A(3, j) = static_cast<float>(j + 3);
  }
  const SolveResult result = SolveNormalEquations(*s.normal, *s.work, 3);
  EXPECT_EQ(result.status, SolveStatus::Singular);
  // Row 1 takes its pivot in the column of parameter 3, its largest; row 2,
  // equal to row 1, is then left with nothing for the next one, parameter 2.
  EXPECT_EQ(result.parameter, 2);
}

TEST(EquationSolver, AParameterWithoutInformationIsNamedBySingularStatus) {
  // The second parameter enters no equation: its row and column are zero.
  Solver s;
  s.normal->A(1, 1) = 4.0f;
  s.normal->B[1] = 2.0f;
  s.normal->B[2] = 1.0f;
  const SolveResult result = SolveNormalEquations(*s.normal, *s.work, 2);
  EXPECT_EQ(result.status, SolveStatus::Singular);
  EXPECT_EQ(result.parameter, 2);
  // Nothing of the matrix is replaced by a partial solution.
  EXPECT_EQ(s.normal->A(1, 1), 4.0f);
  EXPECT_EQ(s.normal->B[1], 2.0f);
}

TEST(EquationSolver, ARegularSystemReportsItIsSolved) {
  Solver s;
  s.normal->A(1, 1) = 2.0f;
  s.normal->A(1, 2) = s.normal->A(2, 1) = 1.0f;
  s.normal->A(2, 2) = 3.0f;
  s.normal->B[1] = 3.0f;
  s.normal->B[2] = 4.0f;
  const SolveResult result = SolveNormalEquations(*s.normal, *s.work, 2);
  EXPECT_EQ(result.status, SolveStatus::Solved);
  // 2x + y = 3, x + 3y = 4: x = y = 1.
  EXPECT_FLOAT_EQ(s.normal->B[1], 1.0f);
  EXPECT_FLOAT_EQ(s.normal->B[2], 1.0f);
}

TEST(EquationSolver, VeryDifferentDiagonalMagnitudesAreSolved) {
  Solver s;
  // A scale factor of order 1e-5 next to a lattice constant.
  s.normal->A(1, 1) = 1.0e-10f;
  s.normal->A(1, 2) = s.normal->A(2, 1) = 2.0e-6f;
  s.normal->A(2, 2) = 1.0e3f;
  s.normal->B[1] = 1.0e-10f;
  s.normal->B[2] = 1.0f;
  SolveNormalEquations(*s.normal, *s.work, 2);
  const auto x = CholeskySolve({{1.0e-10, 2.0e-6}, {2.0e-6, 1.0e3}}, {1.0e-10, 1.0});
  EXPECT_NEAR(s.normal->B[1], static_cast<double>(x[0]),
              1e-4 * std::fabs(static_cast<double>(x[0])));
  EXPECT_NEAR(s.normal->B[2], static_cast<double>(x[1]),
              1e-4 * std::fabs(static_cast<double>(x[1])));
}

class RandomSystems : public ::testing::TestWithParam<int> {};

// Random symmetric positive-definite systems up to 300 parameters.
TEST_P(RandomSystems, MatchAnIndependentSolveAndInverse) {
  const int n = GetParam();
  std::mt19937 random(1234u + static_cast<unsigned>(n));
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  std::vector<std::vector<double>> m(n, std::vector<double>(n));
  for (auto& row : m) {
    for (double& v : row) v = uniform(random);
  }
  std::vector<std::vector<double>> a(n, std::vector<double>(n, 0.0));
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) {
      double s = 0.0;
      for (int k = 0; k < n; ++k) s += m[i][k] * m[j][k];
      a[i][j] = s + (i == j ? n : 0.0);
    }
  }
  // Store the matrix as the program does, in single precision, and solve the
  // reference with exactly those values.
  Solver s;
  std::vector<double> b(n);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) {
      s.normal->A(i + 1, j + 1) = static_cast<float>(a[i][j]);
      a[i][j] = static_cast<double>(static_cast<float>(a[i][j]));
    }
    b[i] = static_cast<double>(static_cast<float>(uniform(random)));
    s.normal->B[i + 1] = static_cast<float>(b[i]);
  }
  SolveNormalEquations(*s.normal, *s.work, n);
  const auto x = CholeskySolve(a, b);
  double worst = 0.0;
  double scale = 0.0;
  for (int i = 0; i < n; ++i) {
    worst = std::max(worst, std::fabs(s.normal->B[i + 1] - static_cast<double>(x[i])));
    scale = std::max(scale, std::fabs(static_cast<double>(x[i])));
  }
  EXPECT_LT(worst, 1e-5 * scale + 1e-7);
  // The inverse times A is the identity.
  for (int i = 1; i <= n; i += std::max(1, n / 7)) {
    for (int j = 1; j <= n; j += std::max(1, n / 5)) {
      double sum = 0.0;
      for (int k = 1; k <= n; ++k) sum += s.normal->A(i, k) * a[k - 1][j - 1];
      EXPECT_NEAR(sum, i == j ? 1.0 : 0.0, 1e-4) << i << "," << j;
    }
  }
  EXPECT_GE(s.normal->Condition, 1.0f);
}

INSTANTIATE_TEST_SUITE_P(Sizes, RandomSystems, ::testing::Values(2, 3, 10, 50, 150, 300));

}  // namespace
}  // namespace corvinet
