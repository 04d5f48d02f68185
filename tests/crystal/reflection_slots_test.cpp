// Tests of the placement of one reflection in the table, and of its two refusals, without a job.
#include "crystal/reflection_slots.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace corvinet {
namespace {

constexpr double kPi = 3.14159265358979323846;

float UnitLorentz(const Pattern&, double, int, float) {
  return 1.0f;
}

// A two-theta pattern of Cu K-alpha1 over 10..80 degrees and a cubic cell of
// a = 4 with positive widths, multiplicity factor 2 and unit Lorentz factor.
struct SlotCase {
  std::unique_ptr<Pattern> pattern = std::make_unique<Pattern>();
  SlotContext context;
  ReflectionSource source;
  SlotCase() {
    Pattern& p = *pattern;
    p.IXUNIT = AbscissaUnit::kTwoTheta;
    p.LAMBDA[1] = 1.54056f;
    p.THMIN = 10.0f;
    p.THMAX = 80.0f;
    for (int i = 1; i <= 3; ++i) context.coefficients[i] = 1.0f / 16.0f;
    context.widths = MarginWidths{0.01f, -0.01f, 0.02f};
    context.wavelengths = 1;
    context.lorentz = UnitLorentz;
    context.multiplicityFactor = 2;
    source.h = 1;
    source.real = {1.0, 0.0, 0.0};
    source.multiplicity = 6;
  }
  int Store() { return StoreReflection(*pattern, pattern->reflections, context, source); }
};

// The two-theta of (1 0 0) at a = 4, in degrees.
double Position100() {
  return 2.0 * std::asin(1.54056 / (2.0 * 4.0)) * 180.0 / kPi;
}

TEST(ReflectionSlots, StoresTheReflectionAtItsPositionWithItsConstantIntensityFactor) {
  SlotCase c;
  ASSERT_EQ(c.Store(), 1);
  const ReflectionTable& table = c.pattern->reflections;
  ASSERT_EQ(table.total, 1);
  const Reflection& r = table.slot[1];
  EXPECT_NEAR(r.position, Position100(), 1e-4);
  EXPECT_EQ(r.key, ReflectionKey(1, 1, 1, 0, 0));
  EXPECT_EQ(r.multiplicity, 6);
  EXPECT_FLOAT_EQ(r.LpM, 12.0f);  // 2 x 6 x 1
}

TEST(ReflectionSlots, AFullTableThrowsTheTooManyErrorAndKeepsItsCount) {
  SlotCase c;
  c.pattern->reflections.total = c.pattern->reflections.LastUsable();
  try {
    c.Store();
    FAIL() << "a full table took a reflection";
  } catch (const SlotError& error) {
    EXPECT_EQ(error.failure, SlotFailure::TableFull);
  }
  EXPECT_EQ(c.pattern->reflections.total, c.pattern->reflections.LastUsable());
}

TEST(ReflectionSlots, TheLastUsableSlotIsStillTaken) {
  SlotCase c;
  c.pattern->reflections.total = c.pattern->reflections.LastUsable() - 1;
  EXPECT_EQ(c.Store(), 1);
  EXPECT_EQ(c.pattern->reflections.total, c.pattern->reflections.LastUsable());
}

TEST(ReflectionSlots, ANegativeSquaredWidthThrowsItsErrorWithThePosition) {
  SlotCase c;
  c.context.widths.W = -0.01f;  // W + t(V + tU) < 0 at tan(theta) = 0.196
  try {
    c.Store();
    FAIL() << "a negative squared width was stored";
  } catch (const SlotError& error) {
    EXPECT_EQ(error.failure, SlotFailure::NegativeWidth);
    EXPECT_NEAR(error.position, Position100(), 1e-4);
  }
  EXPECT_EQ(c.pattern->reflections.total, 0);
}

TEST(ReflectionSlots, ANegativeSquaredWidthIsAcceptedWithAResolutionFile) {
  SlotCase c;
  c.context.widths.W = -0.01f;
  c.pattern->IRESO = 1;
  EXPECT_EQ(c.Store(), 1);
}

TEST(ReflectionSlots, APeakAboveThmaxWithinTheTailReachIsKeptForItsTail) {
  SlotCase c;
  c.pattern->THMAX = static_cast<float>(Position100() - 0.3);
  c.context.tailReach = 1.0f;
  ASSERT_EQ(c.Store(), 1);
  EXPECT_GT(c.pattern->reflections.slot[1].position, c.pattern->THMAX);
}

TEST(ReflectionSlots, APeakAboveThmaxBeyondTheTailReachIsLeftOut) {
  SlotCase c;
  c.pattern->THMAX = static_cast<float>(Position100() - 0.3);
  c.context.tailReach = 0.2f;
  EXPECT_EQ(c.Store(), 0);
  c.context.tailReach = 0.0f;
  EXPECT_EQ(c.Store(), 0);
  EXPECT_EQ(c.pattern->reflections.total, 0);
}

TEST(ReflectionSlots, APeakAboveThmaxWithoutARealWidthIsLeftOut) {
  SlotCase c;
  c.pattern->THMAX = static_cast<float>(Position100() - 0.3);
  c.context.tailReach = 1.0f;
  c.context.widths.W = -0.01f;  // W + t(V + tU) < 0 at the peak: no tail to serve
  EXPECT_EQ(c.Store(), 0);
}

TEST(ReflectionSlots, APeakBelowThminIsLeftOutWhateverTheTailReach) {
  SlotCase c;
  c.pattern->THMIN = static_cast<float>(Position100() + 0.3);
  c.context.tailReach = 1.0f;
  EXPECT_EQ(c.Store(), 0);
}

}  // namespace
}  // namespace corvinet
