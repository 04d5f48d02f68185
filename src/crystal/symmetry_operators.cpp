// Matching of operators against IROT, the reduced operator list and the group of a symbol.
#include "crystal/symmetry_operators.h"

#include "format/fortran_format.h"

#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "crystal/space_group_symbol.h"

namespace corvinet {
namespace {

constexpr float kSameTranslation = 0.0001f;

bool EqualsSigned(const IntMatrix3& a, const IntMatrix3& b, int sign) {
  for (int i = 1; i <= 3; ++i) {
    for (int j = 1; j <= 3; ++j) {
      if (a(i, j) != sign * b(i, j)) return false;
    }
  }
  return true;
}

void ReportNonStandard(const IntMatrix3& rotation, int first, int last, int isl, int sign,
                       SymmetryMessages& messages) {
  auto& out = messages.console;
  out.push_back(" => The supplied S.O. is not standard :");
  out.push_back(Fmt("(A,2I4)", "   i1->i2: ", first, last));
  out.push_back(Fmt("(A,2I4)", "  Isl, iss: ", isl, sign));
  for (int i = 1; i <= 3; ++i) {
    out.push_back(Fmt("(3I4)", rotation(i, 1), rotation(i, 2), rotation(i, 3)));
  }
  out.push_back(" => Try to re-write your S.O. using a rotational part");
  const bool cubic = first == 1 && last == 24;
  const bool hexagonal = first == 25 && last == 36;
  if (cubic) out.push_back("    identical to a S.O. of the space group P m -3 m");
  if (hexagonal) out.push_back("    identical to a S.O. of the space group P 6/m m m");
  if (!cubic && !hexagonal) {
    out.push_back("    identical to a S.O. of the space group P m -3 m");
    out.push_back(" or identical to a S.O. of the space group P 6/m m m");
  }
  messages.stop = "Illegal Symmetry Operator";
}

// Whether `candidate` equals `kept` up to one of the centring vectors 2..NLAT.
bool DiffersByCentring(const SpaceGroup& group, const Table1<float, 3>& candidate, int kept) {
  for (int v = 2; v <= group.NLAT; ++v) {
    float sum = 0.0f;
    for (int axis = 1; axis <= 3; ++axis) {
      float t = candidate[axis] + group.latticeTranslation(axis, v);
      t -= std::floor(t);
      sum += std::fabs(t - group.translation(axis, kept));
    }
    if (sum < kSameTranslation) return true;
  }
  return false;
}

bool IsCentringImage(const SpaceGroup& group, const SymmetryOperator& op) {
  for (int kept = group.NSYM; kept >= 1; --kept) {
    if (group.isl[kept] == op.isl && DiffersByCentring(group, op.translation, kept)) return true;
  }
  return false;
}

void Keep(SpaceGroup& group, const SymmetryOperator& op) {
  ++group.NSYM;
  group.isl[group.NSYM] = op.isl;
  for (int axis = 1; axis <= 3; ++axis) group.translation(axis, group.NSYM) = op.translation[axis];
}

// Drops the operators with a negative isl: the inversion at the origin is implied.
void KeepProperOperators(SpaceGroup& group) {
  int kept = 0;
  for (int n = 1; n <= group.NSYM; ++n) {
    if (group.isl[n] < 0) continue;
    ++kept;
    group.isl[kept] = group.isl[n];
    for (int axis = 1; axis <= 3; ++axis)
      group.translation(axis, kept) = group.translation(axis, n);
  }
  group.NSYM = kept;
}

}  // namespace

RotationRange RotationRangeOfClass(int laue) {
  if (laue >= kLaue3R && laue <= kLaue6mmm) return {25, 36};
  return {1, 24};
}

RotationRange RotationRangeOfSymbol(int laue) {
  if (laue == kLaue3R || laue == kLaue3mR) return {1, 24};
  return RotationRangeOfClass(laue);
}

int Determinant(const IntMatrix3& m) {
  return m(1, 1) * (m(2, 2) * m(3, 3) - m(2, 3) * m(3, 2)) -
         m(1, 2) * (m(2, 1) * m(3, 3) - m(2, 3) * m(3, 1)) +
         m(1, 3) * (m(2, 1) * m(3, 2) - m(2, 2) * m(3, 1));
}

SymmetryMessages MatchRotation(const IntMatrix3& rotation, int first, int last, int& isl) {
  SymmetryMessages messages;
  for (int sign : {1, -1}) {
    for (int index = first; index <= last; ++index) {
      if (EqualsSigned(rotation, IROT(index), sign)) {
        isl = sign * index;
        return messages;
      }
    }
  }
  isl = 0;
  ReportNonStandard(rotation, first, last, isl, -1, messages);
  return messages;
}

SymmetryMessages ReduceOperators(SpaceGroup& group, const SymmetryOperator* operators, int count,
                                 bool fromSymbol) {
  SymmetryMessages messages;
  group.NSYM = 0;
  for (int n = 0; n < count; ++n) {
    const SymmetryOperator& op = operators[n];
    if (group.NSYM > 0 && group.NLAT > 1 && IsCentringImage(group, op)) continue;
    if (group.NSYM >= SpaceGroupLimits::kOperators) {
      messages.console.push_back(" Warning!!, symmetry op. are possibly wrong!");
      messages.console.push_back(" Please, supply your own symmetry operators");
      continue;
    }
    Keep(group, op);
  }
  if (fromSymbol && group.isAcentric == 0) KeepProperOperators(group);
  return messages;
}

SymmetryMessages OperatorsFromGenerators(SpaceGroup& group) {
  PointGroupWords(group);
  GeneralPositionList positions;
  SymmetryMessages messages = GeneralPositions(group, positions);
  if (!messages.ok()) return messages;
  const RotationRange range = RotationRangeOfSymbol(group.LAUE);
  std::vector<SymmetryOperator> operators(static_cast<std::size_t>(positions.count));
  for (int p = 1; p <= positions.count; ++p) {
    SymmetryOperator& op = operators[static_cast<std::size_t>(p - 1)];
    if (!DecodePosition(positions.point[p], op)) {
      messages.stop = " The program generated wrong symmetry operator";
      return messages;
    }
    messages = MatchRotation(op.rotation, range.first, range.last, op.isl);
    if (!messages.ok()) return messages;
  }
  messages = ReduceOperators(group, operators.data(), positions.count, true);
  group.Isy = 0;
  group.NMAGM = 0;
  group.ICENT = group.isAcentric != 0 ? 1 : 2;
  group.multiplicityFactor = (group.NLAT * group.ICENT) * (group.NLAT * group.ICENT);
  return messages;
}

SymmetryMessages SpaceGroupFromSymbol(std::string_view symbol, SpaceGroup& group) {
  SymmetryMessages messages = InterpretSymbol(symbol, 0, group);
  if (!messages.ok()) return messages;
  LatticeFromSymbol(symbol, group);
  SymmetryMessages operators = OperatorsFromGenerators(group);
  messages.console.insert(messages.console.end(), operators.console.begin(),
                          operators.console.end());
  messages.stop = operators.stop;
  return messages;
}

void MagneticRotationsFromSigns(SpaceGroup& group) {
  group.NMAGM = 1;
  for (int n = 1; n <= group.NSYM; ++n) {
    // The proper part acts on moments: sign(isl) * sign(det) is always +1.
    group.magneticRotation(1, n) = std::abs(group.isl[n]) * group.magneticSign[n];
    group.magneticPhase(1, n) = 0.0f;
  }
}

std::string_view MagneticCentricityText(int extraSign) {
  if (extraSign == -1) return " => The magnetic structure is non-centrosymmetric";
  if (extraSign == 1) return " => The magnetic structure is centrosymmetric";
  return "";
}

}  // namespace corvinet
