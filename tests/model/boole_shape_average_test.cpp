// Tests of the five-point asymmetric average of the shapes other than the pseudo-Voigt: each code
// keeps its own shape under the asymmetry, with the slopes of the average.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "model/boole_average.h"
#include "model/peak_shape_test_support.h"
#include "records/profile_slots.h"

namespace corvinet {
namespace {

using testing::PeakCase;
using testing::PlainWidths;

constexpr double kH = 0.25;
constexpr double kTan2Theta = 0.8;
constexpr double kAsy = 0.04;
constexpr double kM = 1.5;  // the Pearson VII exponent
constexpr double kOffsets[] = {-0.9, -0.3, -0.07, 0.0, 0.12, 0.4, 1.1};

// The normalised shapes of unit area over delta, written from their formulas.
double ShapeOf(int code, double delta) {
  const double x2 = delta * delta / (kH * kH);
  const double ln2 = std::numbers::ln2;
  const double pi = std::numbers::pi;
  switch (code) {
    case 1:
      return 2.0 * std::sqrt(ln2 / pi) / kH * std::exp(-4.0 * ln2 * x2);
    case 2:
      return 2.0 / (pi * kH) / (1.0 + 4.0 * x2);
    case 3: {
      const double c = 4.0 * (std::sqrt(2.0) - 1.0);
      return 2.0 * std::sqrt(c) / (pi * kH) / std::pow(1.0 + c * x2, 2.0);
    }
    case 4: {
      const double c = 4.0 * (std::pow(2.0, 2.0 / 3.0) - 1.0);
      return std::sqrt(c) / (2.0 * kH) / std::pow(1.0 + c * x2, 1.5);
    }
    case 7: {
      const double k = std::pow(2.0, 1.0 / kM) - 1.0;
      const double c = 2.0 * std::tgamma(kM) / std::tgamma(kM - 0.5) * std::sqrt(k / pi);
      return c / kH / std::pow(1.0 + 4.0 * k * x2, kM);
    }
    default:
      return 0.0;
  }
}

// The asymmetric peak: the shape averaged over the point moved by
// t^2 Asy1/tan(2theta), t = 0, 1/4, 1/2, 3/4, 1, with Boole's weights.
double AsymmetricShapeOf(int code, double delta, double asy) {
  const double t[] = {0.0, 0.25, 0.5, 0.75, 1.0};
  const double weight[] = {7.0, 32.0, 12.0, 32.0, 7.0};
  double sum = 0.0;
  for (int i = 0; i < 5; ++i)
    sum += weight[i] * ShapeOf(code, delta + t[i] * t[i] * asy / kTan2Theta);
  return sum / 90.0;
}

struct AverageCase : PeakCase {
  AverageCase() { par[ProfileSlot::Shape1] = static_cast<float>(kM); }
  PeakShape Make(int code, double h = kH, double zero = 0.0) {
    pattern->GLB[1] = static_cast<float>(zero);
    return Shape(code, PlainWidths(static_cast<float>(h)));
  }
  static double At(const PeakShape& s, double delta, double asy, ProfilePoint* out = nullptr,
                   ProfileSlopes* slopes = nullptr) {
    ProfilePoint p;
    PointInBase(s, s.position + static_cast<float>(delta), 1.0e18f, p);
    ProfileSlopes unused;
    const double v =
        BooleAverageProfileWithSlopes(s, static_cast<float>(asy), static_cast<float>(kTan2Theta), p,
                                      slopes != nullptr ? *slopes : unused);
    if (out != nullptr) *out = p;
    return v;
  }
};

class ShapeAverage : public ::testing::TestWithParam<int> {};

TEST_P(ShapeAverage, IsTheAsymmetryAppliedToTheCodesOwnShape) {
  const int code = GetParam();
  AverageCase c;
  const PeakShape s = c.Make(code);
  for (double k : kOffsets) {
    const double expected = AsymmetricShapeOf(code, k, kAsy);
    ProfilePoint p;
    PointInBase(s, s.position + static_cast<float>(k), 1.0e18f, p);
    const double value =
        BooleAverageProfile(s, static_cast<float>(kAsy), static_cast<float>(kTan2Theta), p);
    EXPECT_NEAR(value, expected, 2e-4 * expected) << "code " << code << " at " << k;
  }
}

TEST_P(ShapeAverage, WithoutAsymmetryItIsThePlainShape) {
  const int code = GetParam();
  AverageCase c;
  const PeakShape s = c.Make(code);
  for (double k : kOffsets) {
    ProfilePoint plain;
    const double expected = testing::OmegaAt(s, k, &plain);
    ProfilePoint p;
    EXPECT_NEAR(AverageCase::At(s, k, 0.0, &p), expected, 1e-6 * expected) << k;
    EXPECT_NEAR(p.dOmega, plain.dOmega, 1e-5 * (1.0 + plain.dOmega)) << k;
  }
}

TEST_P(ShapeAverage, SlopesMatchDifferences) {
  const int code = GetParam();
  const double h = 1.0 / 4096.0;
  AverageCase c;
  for (double k : kOffsets) {
    const PeakShape base = c.Make(code);
    const float x = base.position + static_cast<float>(k);
    ProfileSlopes d;
    AverageCase::At(base, k, kAsy, nullptr, &d);
    auto atX = [x](const PeakShape& s, double asy) {
      return AverageCase::At(s, x - s.position, asy);
    };
    const double position =
        testing::LogDifference([&](double t) { return atX(c.Make(code, kH, t), kAsy); }, h);
    const double width =
        testing::LogDifference([&](double t) { return atX(c.Make(code, kH + t), kAsy); }, h);
    const double asymmetry =
        testing::LogDifference([&](double t) { return atX(c.Make(code), kAsy + t); }, h);
    EXPECT_NEAR(d.position, position, testing::SlopeTolerance(position)) << k;
    EXPECT_NEAR(d.width, width, testing::SlopeTolerance(width)) << k;
    EXPECT_NEAR(d.asymmetry, asymmetry, testing::SlopeTolerance(asymmetry)) << k;
  }
}

INSTANTIATE_TEST_SUITE_P(Codes, ShapeAverage, ::testing::Values(1, 2, 3, 4, 7),
                         [](const ::testing::TestParamInfo<int>& info) {
                           switch (info.param) {
                             case 1:
                               return std::string("Gaussian");
                             case 2:
                               return std::string("Lorentzian");
                             case 3:
                               return std::string("ModifiedLorentzian1");
                             case 4:
                               return std::string("ModifiedLorentzian2");
                             default:
                               return std::string("PearsonVII");
                           }
                         });

// The Pearson VII exponent slope of the average, through the mean of the
// node slopes, against differences in Shape1.
TEST(ShapeAverage, PearsonExponentSlopeMatchesDifferences) {
  const double h = 1.0 / 4096.0;
  AverageCase c;
  for (double k : kOffsets) {
    c.par[ProfileSlot::Shape1] = static_cast<float>(kM);
    const PeakShape base = c.Make(7);
    ProfileSlopes d;
    AverageCase::At(base, k, kAsy, nullptr, &d);
    const double m = testing::LogDifference(
        [&](double t) {
          c.par[ProfileSlot::Shape1] = static_cast<float>(kM + t);
          return AverageCase::At(c.Make(7), k, kAsy);
        },
        h);
    EXPECT_NEAR(d.m, m, 1e-2 * (1.0 + std::fabs(m))) << k;
  }
}

}  // namespace
}  // namespace corvinet
