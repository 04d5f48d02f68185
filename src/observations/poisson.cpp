// Poisson deviates in four regimes of the mean, from the run's random source.
#include "observations/poisson.h"

#include <cmath>

#include "surface/console.h"

namespace corvinet {

namespace {

constexpr double kTwoPi = 6.283185307179586;
constexpr double kRatioOfUniformsWidth = 0.8577639;  // sqrt(2/e)

enum class PoissonMethod { None, Multiplicative, BoxMuller, RatioOfUniforms, Normal };

PoissonMethod MethodFor(float mean) {
  if (mean < 30.0f) return PoissonMethod::Multiplicative;
  if (mean < 87.0f) return PoissonMethod::BoxMuller;
  if (mean < 500.0f) return PoissonMethod::RatioOfUniforms;
  if (mean >= 500.0f) return PoissonMethod::Normal;
  return PoissonMethod::None;
}

double Uniform(Job& job) {
  return static_cast<double>(UniformDeviate(job.random));
}

// Count of uniform factors whose running product stays above exp(-mean).
double MultiplicativeCount(Job& job, float mean) {
  const double limit = std::exp(-static_cast<double>(mean));
  double product = Uniform(job);
  double count = 0.0;
  while (product > limit) {
    product *= Uniform(job);
    count += 1.0;
  }
  return count;
}

double BoxMullerNormal(Job& job) {
  const double u1 = Uniform(job);
  const double u2 = Uniform(job);
  return std::sqrt(-2.0 * std::log(u1)) * std::cos(kTwoPi * u2);
}

double RatioOfUniformsNormal(Job& job) {
  for (;;) {
    const double u1 = Uniform(job);
    const double u2 = Uniform(job);
    const double x = kRatioOfUniformsWidth * (2.0 * u2 - 1.0);
    const double g = x / u1;
    if (g * g / 4.0 <= -std::log(u1)) return g;
  }
}

double StabilisedForm(float mean, double g) {
  const double root = std::sqrt(static_cast<double>(mean)) + g / 2.0;
  return root * root - 0.33;
}

// Rounds half away from zero to an integer value; negatives become 0.
float RoundedCount(double value) {
  const double rounded = std::trunc(value + (value >= 0.0 ? 0.5 : -0.5));
  return rounded < 0.0 ? 0.0f : static_cast<float>(rounded);
}

}  // namespace

float PoissonDeviate(Job& job, float mean) {
  if (mean <= 0.0f) return std::trunc(mean);
  const double m = static_cast<double>(mean);
  switch (MethodFor(mean)) {
    case PoissonMethod::Multiplicative:
      return static_cast<float>(MultiplicativeCount(job, mean));
    case PoissonMethod::BoxMuller:
      return RoundedCount(StabilisedForm(mean, BoxMullerNormal(job)));
    case PoissonMethod::RatioOfUniforms:
      return RoundedCount(StabilisedForm(mean, RatioOfUniformsNormal(job)));
    case PoissonMethod::Normal:
      return RoundedCount(m + std::sqrt(m) * BoxMullerNormal(job));
    case PoissonMethod::None:
      break;
  }
  ConsoleLine(job, "Erreur GenPoi !!");
  return 0.0f;
}

}  // namespace corvinet
