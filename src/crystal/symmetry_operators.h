// Expansion of generator words into the general position and the reduced list of operators.
#pragma once

#include <array>
#include <string_view>

#include "crystal/rotation_table.h"
#include "records/space_group.h"
#include "records/table1.h"

namespace corvinet {

// The images of the test point (1/54, 1/36, 1/27) under the group, each with
// the XOR of the words that produced it.
struct GeneralPositionList {
  Table1<std::array<float, 3>, SpaceGroupLimits::kGeneralPositions> point;
  Table1<GeneratorWord, SpaceGroupLimits::kGeneralPositions> word;
  int count = 0;
};

// One operator of the general position: x' = rotation x + translation.
struct SymmetryOperator {
  IntMatrix3 rotation;
  Table1<float, 3> translation;
  int isl = 0;
};

// Rows of IROT that operators are matched against.
struct RotationRange {
  int first = 1;
  int last = 24;
};

// The rows for a Laue class: 25..36 for the classes 6 to 12, 1..24 otherwise.
RotationRange RotationRangeOfClass(int laue);

// The rows for operators derived from a symbol. On rhombohedral axes (classes
// 6 and 7) the three-fold runs along [111], which only rows 1..24 hold.
RotationRange RotationRangeOfSymbol(int laue);

// Fills rotationWords, the decomposed generator table, isAcentric and
// polarAxisMask from the generator words of `group`.
void PointGroupWords(SpaceGroup& group);

// Orbit of the test point under the generator words; sets
// generalPositionCount. Fails when an image falls on the test point.
SymmetryMessages GeneralPositions(SpaceGroup& group, GeneralPositionList& positions);

// Reads the rotation and translation of one position (a multiple of 1/12 in
// each coordinate). False when a coordinate has no valid axis code.
bool DecodePosition(const std::array<float, 3>& point, SymmetryOperator& op);

// Finds `rotation` among IROT rows first..last, first as it stands (isl
// positive), then negated (isl negative). Fails with "Illegal Symmetry Operator".
SymmetryMessages MatchRotation(const IntMatrix3& rotation, int first, int last, int& isl);

int Determinant(const IntMatrix3& rotation);

// Keeps the operators that differ by more than a centring translation, at most
// kOperators; with `fromSymbol` in a centrosymmetric group only those with a
// positive isl. Fills NSYM, isl and translation.
SymmetryMessages ReduceOperators(SpaceGroup& group, const SymmetryOperator* operators, int count,
                                 bool fromSymbol);

// The operators of a group whose generator words, Laue class and centring are
// set: general position, decoding, matching, reduction, ICENT and
// multiplicityFactor.
SymmetryMessages OperatorsFromGenerators(SpaceGroup& group);

// The whole group of a symbol: InterpretSymbol, LatticeFromSymbol and
// OperatorsFromGenerators.
SymmetryMessages SpaceGroupFromSymbol(std::string_view symbol, SpaceGroup& group);

// The magnetic rotations of a phase whose time-reversal signs are read
// (magneticSign): the proper part of each operator, signed by magneticSign.
void MagneticRotationsFromSigns(SpaceGroup& group);

// The report line of the extra magneticSign entry: empty for 0.
std::string_view MagneticCentricityText(int extraSign);

}  // namespace corvinet
