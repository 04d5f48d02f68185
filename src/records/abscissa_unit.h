// The abscissa units of a pattern (IXUNIT) and their numbers in the control file.
#pragma once

namespace corvinet {

// Abscissa unit of a pattern. A number outside the list is kept as read.
enum class AbscissaUnit : int {
  kTwoTheta = 0,      // degrees
  kTimeOfFlight = 1,  // microseconds
  kEnergy = 2,        // keV
  kQ = 3,             // 2 pi / d
  kInverseD = 4,      // 1 / d
};

// The unit of the control file's number.
constexpr AbscissaUnit AbscissaUnitOf(int number) {
  return static_cast<AbscissaUnit>(number);
}

// The control file's number of a unit.
constexpr int ControlNumber(AbscissaUnit unit) {
  return static_cast<int>(unit);
}

// Units other than an angle; a negative number counts as the angle.
constexpr bool IsNonAngleUnit(AbscissaUnit unit) {
  return ControlNumber(unit) > 0;
}

// Time of flight and energy: positions from d through Dtt1 and Dtt2.
constexpr bool IsTofOrEnergy(AbscissaUnit unit) {
  return unit == AbscissaUnit::kTimeOfFlight || unit == AbscissaUnit::kEnergy;
}

}  // namespace corvinet
