// Bessel J0 and J1: rational forms in x^2 below |x| = 8, phase-amplitude forms beyond.
#include "observations/bessel.h"

#include <cmath>

namespace corvinet {

namespace {

constexpr double kTwoOverPi = 0.636619772;
constexpr double kPhaseJ0 = 0.785398164;
constexpr double kPhaseJ1 = 2.356194491;

double RationalJ0(double x) {
  const double y = x * x;
  const double num =
      57568490574.0 +
      y * (-13362590354.0 +
           y * (651619640.7 + y * (-11214424.18 + y * (77392.33017 + y * (-184.9052456)))));
  const double den =
      57568490411.0 +
      y * (1029532985.0 + y * (9494680.718 + y * (59272.64853 + y * (267.8532712 + y * 1.0))));
  return num / den;
}

double AsymptoticJ0(double ax) {
  const double z = 8.0 / ax;
  const double y = z * z;
  const double xx = ax - kPhaseJ0;
  const double p = 1.0 + y * (-0.1098628627e-2 +
                              y * (0.2734510407e-4 + y * (-0.2073370639e-5 + y * 0.2093887211e-6)));
  const double q =
      -0.1562499995e-1 +
      y * (0.1430488765e-3 + y * (-0.6911147651e-5 + y * (0.7621095161e-6 - y * 0.934935152e-7)));
  return std::sqrt(kTwoOverPi / ax) * (std::cos(xx) * p - z * std::sin(xx) * q);
}

double RationalJ1(double x) {
  const double y = x * x;
  const double num =
      x * (72362614232.0 +
           y * (-7895059235.0 +
                y * (242396853.1 + y * (-2972611.439 + y * (15704.48260 + y * (-30.16036606))))));
  const double den =
      144725228442.0 +
      y * (2300535178.0 + y * (18583304.74 + y * (99447.43394 + y * (376.9991397 + y * 1.0))));
  return num / den;
}

double AsymptoticJ1(double ax) {
  const double z = 8.0 / ax;
  const double y = z * z;
  const double xx = ax - kPhaseJ1;
  const double p =
      1.0 +
      y * (0.183105e-2 + y * (-0.3516396496e-4 + y * (0.2457520174e-5 + y * (-0.240337019e-6))));
  const double q =
      0.04687499995 +
      y * (-0.2002690873e-3 + y * (0.8449199096e-5 + y * (-0.88228987e-6 + y * 0.105787412e-6)));
  return std::sqrt(kTwoOverPi / ax) * (std::cos(xx) * p - z * std::sin(xx) * q);
}

}  // namespace

float BesselJ0(float x) {
  const double ax = std::fabs(static_cast<double>(x));
  if (ax < 8.0) return static_cast<float>(RationalJ0(static_cast<double>(x)));
  return static_cast<float>(AsymptoticJ0(ax));
}

float BesselJ1(float x) {
  const double ax = std::fabs(static_cast<double>(x));
  if (ax < 8.0) return static_cast<float>(RationalJ1(static_cast<double>(x)));
  const double value = AsymptoticJ1(ax);
  return static_cast<float>(x < 0.0f ? -value : value);
}

}  // namespace corvinet
