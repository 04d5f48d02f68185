// Range limits of the generation and the position of a reflection in the unit of the pattern.
#include "crystal/reflection_range.h"

#include <algorithm>
#include <cmath>

namespace corvinet {
namespace {

constexpr double kHalfDegree = 0.008726646;  // radians in half a degree
constexpr double kPi = 3.14159265358979;
constexpr double kTwoOverDegree = 114.59156;  // degrees of two-theta per radian of theta
constexpr double kTwoPi = 6.2831855;
constexpr double kQSquareToS = 0.006332574;  // 1/(16 pi²)

// The reference of the upper side of a two-theta pattern: THMAX, or the lower
// edge of the last excluded region when THMAX lies inside it.
double UpperReference(const Pattern& p) {
  const int n = p.NEXCRG;
  if (n > 0 && p.THMAX > p.ExclLow[n] && p.THMAX < p.ExclHigh[n]) return p.ExclLow[n];
  return p.THMAX;
}

// The reference of the lower side of a time-of-flight pattern: THMIN, or the
// upper edge of the first excluded region when THMIN lies inside it.
double LowerReference(const Pattern& p) {
  if (p.NEXCRG > 0 && p.THMIN > p.ExclLow[1] && p.THMIN < p.ExclHigh[1]) return p.ExclHigh[1];
  return p.THMIN;
}

double Squared(double v) {
  return v * v;
}

ReflectionRange TwoThetaRange(const Pattern& p, const MarginWidths& w, bool noMargin) {
  const double lambda1 = p.LAMBDA[1];
  const double lambda2 = p.LAMBDA[2];
  ReflectionRange r;
  r.sLow = Squared(std::sin(kPi * p.THMIN / 360.0) / lambda1);
  if (lambda2 > 0.0 && lambda2 > lambda1) r.sLow *= Squared(lambda1 / lambda2);
  const double thetaRef = UpperReference(p) * 0.5 * kPi / 180.0;
  const double t = std::tan(thetaRef);
  const double h2 = w.W + t * (w.V + t * w.U);
  double margin = std::min(0.5 * static_cast<double>(p.THMAX), 10.0 * p.Wdt * h2) * kHalfDegree;
  if (noMargin) margin = 0.0;
  const double thetaMax = std::min(thetaRef + margin, 0.5 * kPi);
  r.sHigh = Squared(std::sin(thetaMax) / lambda1);
  if (lambda2 > 0.0 && lambda2 < lambda1) r.sHigh *= Squared(lambda1 / lambda2);
  return r;
}

}  // namespace

ReflectionRange RangeOfPattern(const Pattern& p, const MarginWidths& widths, bool noMargin) {
  ReflectionRange r;
  switch (p.IXUNIT) {
    case AbscissaUnit::kTwoTheta:
      return TwoThetaRange(p, widths, noMargin);
    case AbscissaUnit::kTimeOfFlight:
      r.sLow = 0.25 * Squared(p.Dtt1 / static_cast<double>(p.THMAX));
      r.sHigh = 0.25 * Squared(p.Dtt1 / LowerReference(p));
      return r;
    case AbscissaUnit::kEnergy:
      r.sLow = 0.25 * Squared(p.THMIN / static_cast<double>(p.Dtt1));
      r.sHigh = 0.25 * Squared(p.THMAX / static_cast<double>(p.Dtt1));
      return r;
    case AbscissaUnit::kQ:
      r.sLow = kQSquareToS * Squared(p.THMIN);
      r.sHigh = kQSquareToS * Squared(p.THMAX);
      return r;
    default:
      r.sLow = 0.25 * Squared(p.THMIN);
      r.sHigh = 0.25 * Squared(p.THMAX);
      return r;
  }
}

int WavelengthCount(const Pattern& p) {
  if (p.LAMBDA[2] < 0.001f) return 1;
  const bool distinct = std::fabs(p.LAMBDA[2] - p.LAMBDA[1]) > 0.001f;
  return distinct && p.RATIO[2] > 0.0f ? 2 : 1;
}

ReflectionPlace PlaceReflection(const Pattern& p, double q, int w, double hklShift) {
  ReflectionPlace place;
  if (!(q > 0.0)) return place;
  const double zero = p.GLB[1];
  const double d = 1.0 / std::sqrt(q);
  double main = 0.0;
  double displacement = hklShift;
  switch (p.IXUNIT) {
    case AbscissaUnit::kTwoTheta: {
      const double sin2 = Squared(p.LAMBDA[w]) * q / 4.0;
      if (sin2 <= 1.0e-10 || sin2 >= 1.0) return place;
      const double tanTheta = std::sqrt(sin2 / (1.0 - sin2));
      const double cosTheta = std::sqrt(1.0 - sin2);
      const double cos2Theta = 1.0 - 2.0 * sin2;
      const double sin2Theta = std::sqrt(std::max(0.0, 1.0 - cos2Theta * cos2Theta));
      displacement = p.GLB[8] * cosTheta + p.GLB[9] * sin2Theta;
      main = kTwoOverDegree * std::atan(tanTheta) + hklShift;
      place.tanTheta = tanTheta;
      break;
    }
    case AbscissaUnit::kTimeOfFlight:
      main = p.Dtt1 * d;
      displacement += p.Dtt2 * d * d;
      break;
    case AbscissaUnit::kEnergy:
      main = p.Dtt1 / d;
      displacement += p.Dtt2 * q;
      break;
    case AbscissaUnit::kQ:
      main = kTwoPi / d;
      break;
    default:
      main = 1.0 / d;
      break;
  }
  place.valid = true;
  place.position = zero + main + displacement;
  return place;
}

bool InsidePattern(const Pattern& p, float position) {
  return position <= p.THMAX && position >= p.THMIN;
}

}  // namespace corvinet
