// The run's random source: seeding and the next uniform deviate.
#include "records/random_source.h"

#include <cmath>

namespace corvinet {

namespace {

// The platform seeding routine: it records its arguments only.
void SeedRandomSource(RandomSource& source, int a, int b) {
  source.seedA = a;
  source.seedB = b;
}

}  // namespace

void RandomSeed(RandomSource& source) {
  SeedRandomSource(source, RandomSource::kSeedArgument, RandomSource::kSeedArgument);
}

float UniformDeviate(RandomSource& source) {
  const double product = source.x * RandomSource::kMultiplier;
  source.x = product - std::floor(product);
  source.last = static_cast<float>(source.x);
  return source.last;
}

}  // namespace corvinet
