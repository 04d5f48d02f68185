// Tests of the Bessel functions against tabulated values (Abramowitz and Stegun, table 9.1).
#include "observations/bessel.h"

#include <gtest/gtest.h>

namespace corvinet {
namespace {

// Tabulated J0 and J1, ten significant digits.
struct BesselRow {
  double x;
  double j0;
  double j1;
};

constexpr BesselRow kTable[] = {
    {0.5, 0.9384698072, 0.2422684577},   {1.0, 0.7651976866, 0.4400505857},
    {5.0, -0.1775967713, -0.3275791376}, {7.9, 0.1943618448, 0.2191793999},
    {8.0, 0.1716508071, 0.2346363469},   {10.0, -0.2459357645, 0.0434727462},
    {20.0, 0.1670246643, 0.0668331242},  {50.0, 0.0558123277, -0.0975118281},
};

TEST(Bessel, RationalAndAsymptoticFormsMatchTheTable) {
  for (const BesselRow& row : kTable) {
    const float x = static_cast<float>(row.x);
    EXPECT_NEAR(BesselJ0(x), row.j0, 2e-7) << "J0(" << row.x << ")";
    EXPECT_NEAR(BesselJ1(x), row.j1, 2e-7) << "J1(" << row.x << ")";
  }
}

TEST(Bessel, FirstZeroOfJZero) {
  EXPECT_NEAR(BesselJ0(2.404825557695773f), 0.0, 2e-7);
  EXPECT_NEAR(BesselJ1(2.404825557695773f), 0.5191474973, 2e-7);
}

TEST(Bessel, ValuesAtZero) {
  EXPECT_FLOAT_EQ(BesselJ0(0.0f), 1.0f);
  EXPECT_EQ(BesselJ1(0.0f), 0.0f);
}

TEST(Bessel, JZeroIsEvenAndJOneOddOnBothSidesOfEight) {
  for (float x : {1.0f, 3.0f, 10.0f, 20.0f}) {
    EXPECT_EQ(BesselJ0(-x), BesselJ0(x)) << x;
    EXPECT_EQ(BesselJ1(-x), -BesselJ1(x)) << x;
  }
  EXPECT_NEAR(BesselJ0(-3.0f), -0.2600519549, 2e-7);
  EXPECT_NEAR(BesselJ1(-3.0f), -0.3390589585, 2e-7);
}

}  // namespace
}  // namespace corvinet
