// Gauss-Jordan solution of the normal equations with row equilibration and column pivoting.
#include "refine/equation_solver.h"

#include <cmath>

namespace corvinet {

namespace {

// The single-precision 1.0E-38 kept as a double.
constexpr double kSmallestPivot = static_cast<double>(1.0e-38f);

// Copies the matrix a (its diagonal times diagonalFactor) and the vector b
// to double precision and divides every row by its largest element; returns
// the infinity norm of the matrix (row sums in single precision).
template <class Matrix, class Vector>
float Equilibrate(const Matrix& a, const Vector& b, double diagonalFactor, SolverWork& w, int n) {
  float normA = 0.0f;
  for (int i = 1; i <= n; ++i) {
    double largest = 0.0;
    float sum = 0.0f;
    for (int j = 1; j <= n; ++j) {
      const double v = i == j ? a(i, j) * diagonalFactor : static_cast<double>(a(i, j));
      w.Work(i, j) = v;
      largest = std::max(largest, std::fabs(v));
      sum += static_cast<float>(std::fabs(v));
    }
    normA = std::max(normA, sum);
    w.RowScale[i] = largest;
    w.Perm[i] = i;
    const double reciprocal = 1.0 / largest;
    w.Rhs[i] = b[i] / largest;
    for (int j = 1; j <= n; ++j) w.Work(i, j) *= reciprocal;
  }
  return normA;
}

// Moves the column of the largest element of row k (among Perm(k..n)) to place k.
void ChoosePivot(SolverWork& w, int k, int n) {
  int best = k;
  double largest = std::fabs(w.Work(k, w.Perm[k]));
  for (int m = k + 1; m <= n; ++m) {
    const double v = std::fabs(w.Work(k, w.Perm[m]));
    if (v > largest) {
      largest = v;
      best = m;
    }
  }
  std::swap(w.Perm[k], w.Perm[best]);
}

// One Jordan exchange: equation k is solved for the unknown of its pivot
// column c, and that unknown is eliminated from every other equation. After
// the n exchanges row k holds the unknown Perm(k) as a combination of the
// right-hand sides, column Perm(m) standing for the right-hand side m.
// Returns false, leaving the work as it is, when the pivot vanishes.
bool Exchange(SolverWork& w, int k, int n) {
  if (k < n) ChoosePivot(w, k, n);
  const int c = w.Perm[k];
  if (!(std::fabs(w.Work(k, c)) >= kSmallestPivot)) return false;
  const double pivot = 1.0 / w.Work(k, c);
  double* rowK = &w.Work(k, 1);
  for (int j = 1; j <= n; ++j) rowK[j - 1] *= -pivot;
  rowK[c - 1] = pivot;
  for (int i = 1; i <= n; ++i) {
    if (i == k) continue;
    double* row = &w.Work(i, 1);
    const double f = row[c - 1];
    if (f == 0.0) continue;
    for (int j = 1; j <= n; ++j) row[j - 1] += f * rowK[j - 1];
    row[c - 1] = f * pivot;
  }
  return true;
}

// The solution of the equations a x = b into `normal`, as declared in the header.
template <class Matrix, class Vector>
SolveResult Solve(const Matrix& a, const Vector& b, double diagonalFactor, NormalMatrix& normal,
                  SolverWork& w, int n) {
  if (n == 1) {
    const double value = a(1, 1) * diagonalFactor;
    normal.A(1, 1) = static_cast<float>(1.0 / value);
    normal.B[1] = static_cast<float>(b[1] / value);
    normal.Condition = 1.0f;
    return {};
  }
  const float normA = Equilibrate(a, b, diagonalFactor, w, n);
  for (int k = 1; k <= n; ++k) {
    if (!Exchange(w, k, n)) return {SolveStatus::Singular, w.Perm[k]};
  }
  // Unscramble: the inverse of the equilibrated matrix, then the scale of
  // each right-hand side undone; the shifts are the inverse times the
  // equilibrated right-hand side.
  for (int k = 1; k <= n; ++k) {
    const int i = w.Perm[k];
    double shift = 0.0;
    for (int m = 1; m <= n; ++m) {
      const double inverse = w.Work(k, w.Perm[m]);
      shift += inverse * w.Rhs[m];
      normal.A(i, m) = static_cast<float>(inverse * (1.0 / w.RowScale[m]));
    }
    normal.B[i] = static_cast<float>(shift);
  }
  float normInverse = 0.0f;
  for (int i = 1; i <= n; ++i) {
    float sum = 0.0f;
    for (int j = 1; j <= n; ++j) sum += std::fabs(normal.A(i, j));
    normInverse = std::max(normInverse, sum);
  }
  normal.Condition = normInverse * normA;
  return {};
}

}  // namespace

SolveResult SolveNormalEquations(NormalMatrix& normal, SolverWork& w, int n) {
  if (n == 1) {
    normal.A(1, 1) = 1.0f / normal.A(1, 1);
    normal.B[1] = normal.B[1] * normal.A(1, 1);
    normal.Condition = 1.0f;
    return {};
  }
  // The 32-bit matrix is read before the inverse overwrites it.
  return Solve(normal.A, normal.B, 1.0, normal, w, n);
}

SolveResult SolveNormalSums(NormalMatrix& normal, SolverWork& w, int n, double lambda) {
  return Solve(normal.SumA, normal.SumB, 1.0 + lambda, normal, w, n);
}

}  // namespace corvinet
