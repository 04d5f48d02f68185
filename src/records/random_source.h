// The run's random source: the recurrence x = frac(13967501 x), shared by search and noise.
#pragma once

namespace corvinet {

// State of the recurrence. A run starts from the fixed starting value; the
// recurrence is carried in double precision and each value is handed out
// rounded to a 32-bit real.
struct RandomSource {
  static constexpr double kStart = 1.2703368156508077e-05;
  static constexpr double kMultiplier = 13967501.0;
  static constexpr int kSeedArgument = 10;

  double x = kStart;  // state of the recurrence
  float last = 0.0f;  // copy of the last value handed out
  int seedA = 0;      // arguments received by the seeding routine
  int seedB = 0;
};

// Seeds the source at the start of a run: the seeding routine receives the
// arguments 10 and 10, which leave the recurrence and its starting value as
// they are.
void RandomSeed(RandomSource& source);

// The next value of the recurrence, rounded to a 32-bit real: in [0, 1], 1 only
// when the rounding carries a value just below 1 up.
float UniformDeviate(RandomSource& source);

}  // namespace corvinet
