// The operators of a built group as matrices, and matrix rows as letters.
#include "crystal/group_operators.h"

#include <cmath>
#include <cstdlib>

namespace corvinet {

namespace {

float InCell(float t) {
  t -= std::floor(t);
  return t >= 1.0f - 1.0e-6f ? 0.0f : t;
}

}  // namespace

IntMatrix3 SignedRotation(int isl) {
  IntMatrix3 m;
  m.Fill(0);
  if (isl == 0) return m;
  const IntMatrix3& r = IROT(std::abs(isl));
  const int sign = isl < 0 ? -1 : 1;
  for (int i = 1; i <= 3; ++i) {
    for (int j = 1; j <= 3; ++j) m(i, j) = sign * r(i, j);
  }
  return m;
}

SymmetryOperator ReducedOperator(const SpaceGroup& group, int n) {
  SymmetryOperator op;
  op.isl = group.isl[n];
  op.rotation = SignedRotation(op.isl);
  for (int i = 1; i <= 3; ++i) op.translation[i] = group.translation(i, n);
  return op;
}

std::vector<SymmetryOperator> GeneralPositionOperators(const SpaceGroup& group) {
  std::vector<SymmetryOperator> ops;
  for (int n = 1; n <= group.NSYM; ++n) {
    const SymmetryOperator reduced = ReducedOperator(group, n);
    for (int c = 1; c <= group.NLAT; ++c) {
      for (const int inversion : {1, -1}) {
        if (inversion < 0 && group.ICENT != 2) continue;
        SymmetryOperator op = reduced;
        op.isl = inversion * reduced.isl;
        for (int i = 1; i <= 3; ++i) {
          for (int j = 1; j <= 3; ++j) op.rotation(i, j) = inversion * reduced.rotation(i, j);
          op.translation[i] =
              InCell(inversion * reduced.translation[i] + group.latticeTranslation(i, c));
        }
        ops.push_back(op);
      }
    }
  }
  return ops;
}

std::string MatrixRowText(const IntMatrix3& m, int row,
                          const std::array<std::string_view, 3>& letters) {
  std::string text;
  for (int j = 1; j <= 3; ++j) {
    const int a = m(row, j);
    if (a == 0) continue;
    if (a < 0) {
      text += '-';
    } else if (!text.empty()) {
      text += '+';
    }
    if (std::abs(a) != 1) text += std::to_string(std::abs(a));
    text += letters[j - 1];
  }
  return text.empty() ? "0" : text;
}

}  // namespace corvinet
