// The reflection record and the per-pattern table of reflections, all phases in consecutive blocks.
#pragma once

#include <cstdint>

#include "records/dimension_limits.h"
#include "records/run_table.h"
#include "records/table1.h"

namespace corvinet {

// One Bragg reflection of one phase at one wavelength.
struct Reflection {
  // (((wavelengthIndex + 8*phase)*256 + h+128)*256 + k+128)*256 + l+128; each
  // index occupies one byte, so h, k, l are limited to -128..127.
  std::int32_t key = 0;
  int multiplicity = 0;    // of the form; satellites keep that of their parent
  int satelliteIndex = 0;  // 0 fundamental, else the vector number, negative for -k
  float position = 0.0f;   // in the abscissa unit of the pattern, all shifts included
  float Fwhm = 0.0f;
  float FwhmRight = 0.0f;  // right-hand width of the split profile
  float HG = 0.0f;         // Gaussian and Lorentzian widths of the TCH profile
  float HL = 0.0f;
  float gaussianHWSquared = 0.0f;
  float lorentzianHW = 0.0f;
  float eta = 0.0f;
  float LpM = 0.0f;  // multiplicity times Lorentz-polarisation factor
  float Corr = 0.0f;
  float F2 = 0.0f;
  float Aprime = 0.0f;      // A - B'' of the structure factor
  float Bprime = 0.0f;      // B + A''
  float phaseAngle = 0.0f;  // of the structure factor, radians, when asked
  float tanTheta = 0.0f;
  float fileValue1 = 0.0f;  // extra numbers of a reflection file
  float fileValue2 = 0.0f;
};

// The reflections of one pattern: phase p is made into the slots
// start[p]+1 .. start[p]+count[p]. Once the last phase of the pattern is
// done the whole table is sorted by position; the blocks then interleave and
// the phase of a slot is read from its key, while count[p] stays its number
// of slots.
// The slots hold the default capacity and grow as reflections are stored,
// up to the capacity of the run.
struct ReflectionTable {
  int capacity = DimensionLimits::kDefaultIRS;  // IRS of the run
  // The last slot a generation may fill: two slots are kept free.
  int LastUsable() const { return capacity - 2; }

  RunTable1<Reflection> slot{DimensionLimits::kDefaultIRS};
  Table1<int, DimensionLimits::NPHT> count;
  Table1<int, DimensionLimits::NPHT> start;
  int total = 0;  // slots in use, all phases
};

// The packed key; every index is taken modulo 256 into its byte.
constexpr std::int32_t ReflectionKey(int wavelengthIndex, int phase, int h, int k, int l) {
  const std::uint32_t head = static_cast<std::uint32_t>(wavelengthIndex + 8 * phase);
  const std::uint32_t bh = static_cast<std::uint32_t>(h + 128) & 255u;
  const std::uint32_t bk = static_cast<std::uint32_t>(k + 128) & 255u;
  const std::uint32_t bl = static_cast<std::uint32_t>(l + 128) & 255u;
  return static_cast<std::int32_t>((((head << 8) | bh) << 8 | bk) << 8 | bl);
}

constexpr int KeyH(std::int32_t key) {
  return ((key >> 16) & 255) - 128;
}
constexpr int KeyK(std::int32_t key) {
  return ((key >> 8) & 255) - 128;
}
constexpr int KeyL(std::int32_t key) {
  return (key & 255) - 128;
}
constexpr int KeyWavelength(std::int32_t key) {
  return (key >> 24) % 8;
}
constexpr int KeyPhase(std::int32_t key) {
  return (key >> 24) / 8;
}

// Index limits of a generation: the key holds -128..127.
constexpr int kMaxKeyIndex = 127;

}  // namespace corvinet
