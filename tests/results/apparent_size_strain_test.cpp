// The apparent size and strain of a reflection from the additions of its models to the widths.
#include "results/apparent_size_strain.h"

#include <gtest/gtest.h>

#include <cmath>

namespace corvinet {
namespace {

// A strain of standard deviation sigma has a Gaussian distribution of d of
// integral breadth sqrt(2 pi) sigma; the peak's breadth in 2theta is 2
// tan(theta) times that, and the apparent strain beta/(4 tan(theta)) is
// sqrt(2 pi) sigma / 2 at every angle. Strain model 2 gives for h00
// deltaU = P² (2 Str1)² with sigma = Str1 1e-3.
TEST(ApparentSizeStrain, StrainIsTheIntegralBreadthOfTheStrainDistribution) {
  const double P2 = 0.018203745;
  const double str1 = 1.7;
  const double deltaU = P2 * 4.0 * str1 * str1;
  for (double tanTheta : {0.2, 0.6, 1.5}) {
    const ApparentBroadening a = ApparentOf(deltaU, 0.0, 1.5406, tanTheta);
    EXPECT_NEAR(a.strain, std::sqrt(2.0 * M_PI) * str1 * 1e-3 / 2.0, 1e-7) << tanTheta;
    EXPECT_EQ(a.size, 0.0);
  }
}

// A Lorentzian size width deltaY/cos(theta) degrees has the integral breadth
// (pi/2) deltaY (pi/180)/cos(theta) radians, and Scherrer's D = lambda/(beta
// cos(theta)) = 360 lambda/(pi² deltaY): 561.94 A for 0.1 degree at 1.5406 A.
TEST(ApparentSizeStrain, SizeIsScherrersOfTheIntegralBreadth) {
  for (double tanTheta : {0.2, 0.6, 1.5}) {
    const ApparentBroadening a = ApparentOf(0.0, 0.1, 1.5406, tanTheta);
    EXPECT_NEAR(a.size, 360.0 * 1.5406 / (M_PI * M_PI * 0.1), 1e-6) << tanTheta;
    EXPECT_NEAR(a.size, 561.94, 0.01);
    EXPECT_EQ(a.strain, 0.0);
  }
}

// On an energy pattern the same strain (the P² that makes Str1 the strain of
// an angle pattern) gives the same apparent strain; a Lorentzian size width
// of deltaY keV is deltaY/Dtt1 in 1/d, of integral breadth (pi/2) of that,
// and D = 2 Dtt1/(pi deltaY): 318.3 A for 0.2 keV at Dtt1 = 100.
TEST(ApparentSizeStrain, EnergyPatternsGiveTheSameStrainAndTheSizeOfTheirWidthInOneOverD) {
  const double str1 = 1.7;
  const double angleU = 0.018203745 * 4.0 * str1 * str1;
  const double energyU = 0.018203745 * std::pow(M_PI / 180.0, 2) / 4.0 * 4.0 * str1 * str1;
  EXPECT_NEAR(ApparentOfEnergy(energyU, 0.0, 100.0, 35.0).strain,
              ApparentOf(angleU, 0.0, 1.5406, 0.6).strain, 1e-9);
  EXPECT_NEAR(ApparentOfEnergy(0.0, 0.2, 100.0, 35.0).size, 2.0 * 100.0 / (M_PI * 0.2), 1e-9);
  EXPECT_NEAR(ApparentOfEnergy(0.0, 0.2, 100.0, 35.0).size, 318.31, 0.01);
}

TEST(ApparentSizeStrain, AReflectionTheModelsLeaveUnbroadenedHasNoApparentValue) {
  const ApparentBroadening a = ApparentOf(0.0, 1e-18, 1.5406, 0.5);
  EXPECT_EQ(a.size, 0.0);
  EXPECT_EQ(a.sizeWidth, 0.0);
  EXPECT_EQ(a.strain, 0.0);
}

}  // namespace
}  // namespace corvinet
