// Tests of the slopes of each profile code against central differences.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>

#include "model/peak_shape.h"
#include "model/peak_shape_test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::LogDifference;
using testing::Par;
using testing::PlainWidths;
using testing::PrepareShape;
using testing::SlopeTolerance;

// Steps that keep T + h, H + h and the shape parameters exact in 32 bits.
constexpr double kStep = 1.0 / 1024.0;
constexpr float kH = 0.5f;
// Distances of the points from the peak, in units of the left width.
constexpr double kOffsets[] = {-2.2, -1.0, -0.37, -0.05, 0.11, 0.45, 1.3, 2.7};

// Omega at the fixed abscissa x.
double OmegaAtX(const PeakShape& s, float x) {
  ProfilePoint p;
  PointInBase(s, x, 1.0e18f, p);
  return ProfileValue(s, p);
}

// A shape built from the job, whose inputs a perturbation h can move.
using ShapeMaker = std::function<PeakShape(double h)>;

// d ln(Omega)/dp at the fixed point x, by central differences.
double LogSlopeAt(const ShapeMaker& make, float x) {
  return LogDifference([&](double h) { return OmegaAtX(make(h), x); }, kStep);
}

struct PointSlopes {
  ProfilePoint point;
  ProfileSlopes slopes;
};

PointSlopes SlopesAt(const PeakShape& s, float x) {
  PointSlopes r;
  PointInBase(s, x, 1.0e18f, r.point);
  ProfileValueWithSlopes(s, r.point, r.slopes);
  return r;
}

// The position and width slopes of a shape Omega = f(x2)/H, as the point loop
// forms them from dOmega: 2 delta Psi/H^2 and (2 Psi x2 - 1)/H.
double PositionFromPsi(const ProfilePoint& p) {
  return 2.0 * p.delta * p.dOmega / (p.H * p.H);
}
double WidthFromPsi(const ProfilePoint& p) {
  return (2.0 * p.dOmega * p.x2 - 1.0) / p.H;
}

class ProfileSlopeCodes : public ::testing::TestWithParam<int> {
 protected:
  CapturedJob job;

  void SetUp() override {
    auto& par = Par(*job);
    par[17] = GetParam() == 7 ? 1.9f : 0.35f;  // eta or m
  }
  PeakShape Make(double zero, double width) {
    job->patterns[1].GLB[1] = static_cast<float>(zero);
    return PrepareShape(*job, GetParam(), PlainWidths(static_cast<float>(kH + width)));
  }
};

TEST_P(ProfileSlopeCodes, PositionSlopeMatchesDifferences) {
  const PeakShape base = Make(0.0, 0.0);
  for (double k : kOffsets) {
    const float x = base.position + static_cast<float>(k * kH);
    const double expected = LogSlopeAt([&](double h) { return Make(h, 0.0); }, x);
    const PointSlopes r = SlopesAt(Make(0.0, 0.0), x);
    EXPECT_NEAR(r.slopes.position, expected, SlopeTolerance(expected)) << k;
    EXPECT_NEAR(PositionFromPsi(r.point), expected, SlopeTolerance(expected)) << k;
  }
}

TEST_P(ProfileSlopeCodes, WidthSlopeMatchesDifferences) {
  const PeakShape base = Make(0.0, 0.0);
  for (double k : kOffsets) {
    const float x = base.position + static_cast<float>(k * kH);
    const double expected = LogSlopeAt([&](double h) { return Make(0.0, h); }, x);
    const PointSlopes r = SlopesAt(Make(0.0, 0.0), x);
    EXPECT_NEAR(r.slopes.width, expected, SlopeTolerance(expected)) << k;
    EXPECT_NEAR(WidthFromPsi(r.point), expected, SlopeTolerance(expected)) << k;
  }
}

INSTANTIATE_TEST_SUITE_P(PeakShapes, ProfileSlopeCodes, ::testing::Values(1, 2, 3, 4, 5, 6, 7),
                         [](const ::testing::TestParamInfo<int>& info) {
                           return "Code" + std::to_string(info.param);
                         });

TEST(ProfileSlopes, PseudoVoigtMixingSlopeMatchesDifferences) {
  CapturedJob job;
  const auto make = [&](double h) {
    Par(*job)[17] = static_cast<float>(0.35 + h);
    return PrepareShape(*job, 6, PlainWidths(kH));
  };
  const PeakShape base = make(0.0);
  for (double k : kOffsets) {
    const float x = base.position + static_cast<float>(k * kH);
    const double expected = LogSlopeAt(make, x);
    EXPECT_NEAR(SlopesAt(make(0.0), x).slopes.eta, expected, SlopeTolerance(expected)) << k;
  }
}

TEST(ProfileSlopes, PearsonExponentSlopeMatchesDifferences) {
  CapturedJob job;
  for (double m : {0.75, 1.9, 3.25}) {
    const auto make = [&](double h) {
      Par(*job)[17] = static_cast<float>(m + h);
      return PrepareShape(*job, 7, PlainWidths(kH));
    };
    const PeakShape base = make(0.0);
    for (double k : kOffsets) {
      const float x = base.position + static_cast<float>(k * kH);
      const double expected = LogSlopeAt(make, x);
      // The tabulated slope of Gamma(m)/Gamma(m - 1/2) differs from the slope of
      // its linear reading by up to about 1e-3 of the value.
      EXPECT_NEAR(SlopesAt(make(0.0), x).slopes.m, expected, 5e-3 * (1 + std::fabs(expected)))
          << "m " << m << " at " << k;
    }
  }
}

// Code 5 with side peaks: the slopes of each of its five quantities.
class TripledSlopes : public ::testing::Test {
 protected:
  CapturedJob job;
  PeakShape Make(double dZero, double dWidth, double dEta, double dD, double dW1, double dW2) {
    Par(*job)[17] = static_cast<float>(0.4 + dEta);
    job->patterns[1].GLB[1] = static_cast<float>(dZero);
    PeakShape s = PrepareShape(*job, 5, PlainWidths(static_cast<float>(kH + dWidth)));
    s.D = static_cast<float>(0.25 + dD);
    s.w1 = static_cast<float>(0.125 + dW1);
    s.w2 = static_cast<float>(0.1875 + dW2);
    return s;
  }
};

TEST_F(TripledSlopes, AllSlopesMatchDifferences) {
  const PeakShape base = Make(0, 0, 0, 0, 0, 0);
  for (double k : kOffsets) {
    const float x = base.position + static_cast<float>(k * kH);
    const ProfileSlopes d = SlopesAt(base, x).slopes;
    const double position = LogSlopeAt([&](double h) { return Make(h, 0, 0, 0, 0, 0); }, x);
    const double width = LogSlopeAt([&](double h) { return Make(0, h, 0, 0, 0, 0); }, x);
    const double eta = LogSlopeAt([&](double h) { return Make(0, 0, h, 0, 0, 0); }, x);
    const double spacing = LogSlopeAt([&](double h) { return Make(0, 0, 0, h, 0, 0); }, x);
    const double w1 = LogSlopeAt([&](double h) { return Make(0, 0, 0, 0, h, 0); }, x);
    const double w2 = LogSlopeAt([&](double h) { return Make(0, 0, 0, 0, 0, h); }, x);
    EXPECT_NEAR(d.position, position, SlopeTolerance(position)) << k;
    EXPECT_NEAR(d.width, width, SlopeTolerance(width)) << k;
    EXPECT_NEAR(d.eta, eta, SlopeTolerance(eta)) << k;
    EXPECT_NEAR(d.D, spacing, SlopeTolerance(spacing)) << k;
    EXPECT_NEAR(d.w1, w1, SlopeTolerance(w1)) << k;
    EXPECT_NEAR(d.w2, w2, SlopeTolerance(w2)) << k;
  }
}

// Code 8: slopes in H and eta, and through the TCH combination in HG and HL.
TEST(ProfileSlopes, TchSlopesMatchDifferences) {
  CapturedJob job;
  const float hg = 0.3f;
  const float hl = 0.2f;
  const PeakWidths w = testing::TchWidthsOf(hg, hl);
  const auto make = [&](PeakWidths v, double dZero) {
    job->patterns[1].GLB[1] = static_cast<float>(dZero);
    return PrepareShape(*job, 8, v);
  };
  const PeakShape base = make(w, 0.0);
  for (double k : kOffsets) {
    const float x = base.position + static_cast<float>(k * w.H);
    const PointSlopes r = SlopesAt(base, x);
    const double position = LogSlopeAt([&](double h) { return make(w, h); }, x);
    const double width = LogSlopeAt(
        [&](double h) {
          return make({w.H + static_cast<float>(h), hg, hl, w.eta}, 0);
        },
        x);
    const double eta = LogSlopeAt(
        [&](double h) {
          return make({w.H, hg, hl, w.eta + static_cast<float>(h)}, 0);
        },
        x);
    const double gaussian = LogSlopeAt(
        [&](double h) { return make(testing::TchWidthsOf(hg + static_cast<float>(h), hl), 0); }, x);
    const double lorentzian = LogSlopeAt(
        [&](double h) { return make(testing::TchWidthsOf(hg, hl + static_cast<float>(h)), 0); }, x);
    EXPECT_NEAR(r.slopes.position, position, SlopeTolerance(position)) << k;
    EXPECT_NEAR(PositionFromPsi(r.point), position, SlopeTolerance(position)) << k;
    EXPECT_NEAR(r.slopes.width, width, SlopeTolerance(width)) << k;
    EXPECT_NEAR(WidthFromPsi(r.point), width, SlopeTolerance(width)) << k;
    EXPECT_NEAR(r.slopes.eta, eta, SlopeTolerance(eta)) << k;
    EXPECT_NEAR(r.slopes.gaussian, gaussian, SlopeTolerance(gaussian)) << k;
    EXPECT_NEAR(r.slopes.lorentzian, lorentzian, SlopeTolerance(lorentzian)) << k;
  }
}

// Code 12: both widths and both mixings act on every point through the common normaliser.
class SplitSlopes : public ::testing::Test {
 protected:
  CapturedJob job;
  PeakShape Make(double dZero, double dLeft, double dRight, double dEta, double dEta2) {
    Par(*job)[17] = static_cast<float>(0.3 + dEta);
    Par(*job)[49] = static_cast<float>(0.7 + dEta2);
    job->patterns[1].GLB[1] = static_cast<float>(dZero);
    return PrepareShape(*job, 12,
                        testing::SplitWidthsOf(static_cast<float>(0.375 + dLeft),
                                               static_cast<float>(0.625 + dRight)));
  }
};

TEST_F(SplitSlopes, AllSlopesMatchDifferences) {
  const PeakShape base = Make(0, 0, 0, 0, 0);
  for (double k : kOffsets) {
    const float x = base.position + static_cast<float>(k * 0.375);
    const PointSlopes r = SlopesAt(base, x);
    const double position = LogSlopeAt([&](double h) { return Make(h, 0, 0, 0, 0); }, x);
    const double left = LogSlopeAt([&](double h) { return Make(0, h, 0, 0, 0); }, x);
    const double right = LogSlopeAt([&](double h) { return Make(0, 0, h, 0, 0); }, x);
    const double eta = LogSlopeAt([&](double h) { return Make(0, 0, 0, h, 0); }, x);
    const double eta2 = LogSlopeAt([&](double h) { return Make(0, 0, 0, 0, h); }, x);
    EXPECT_NEAR(r.slopes.position, position, SlopeTolerance(position)) << k;
    EXPECT_NEAR(PositionFromPsi(r.point), position, SlopeTolerance(position)) << k;
    EXPECT_NEAR(r.slopes.width, left, SlopeTolerance(left)) << k;
    EXPECT_NEAR(r.slopes.width2, right, SlopeTolerance(right)) << k;
    EXPECT_NEAR(r.slopes.eta, eta, SlopeTolerance(eta)) << k;
    EXPECT_NEAR(r.slopes.eta2, eta2, SlopeTolerance(eta2)) << k;
  }
}

TEST_F(SplitSlopes, SideWidthSlopeFromPsiWithTheNormaliserTerm) {
  // The point loop's width factor for code 12: E = 2 Psi x2 - (1.0126586 eta' + 2.1289339) H'/(4
  // Hs), with eta', H' of the point's side and Hs the common normaliser; d ln(Omega)/dH' = E/H'.
  const PeakShape base = Make(0, 0, 0, 0, 0);
  const double hs =
      (1.0126586 * 0.7 + 2.128934) * 0.25 * 0.625 + (1.0126586 * 0.3 + 2.128934) * 0.25 * 0.375;
  for (double k : kOffsets) {
    const float x = base.position + static_cast<float>(k * 0.375);
    const PointSlopes r = SlopesAt(base, x);
    const bool right = r.point.delta > 0.0f;
    const double etaSide = right ? 0.7 : 0.3;
    const double e = 2.0 * r.point.dOmega * r.point.x2 -
                     (1.0126586 * etaSide + 2.1289339) * r.point.H * 0.25 / hs;
    const double expected = right ? LogSlopeAt([&](double h) { return Make(0, 0, h, 0, 0); }, x)
                                  : LogSlopeAt([&](double h) { return Make(0, h, 0, 0, 0); }, x);
    EXPECT_NEAR(e / r.point.H, expected, SlopeTolerance(expected)) << k;
  }
}

TEST(ProfileSlopes, SlopesAreZeroWhereThePseudoVoigtVanishes) {
  CapturedJob job;
  Par(*job)[17] = 0.0f;  // pure Gaussian: exp underflows far out
  const PeakShape s = PrepareShape(*job, 6, PlainWidths(kH));
  const PointSlopes r = SlopesAt(s, s.position + 20.0f);
  EXPECT_EQ(r.point.dOmega, 0.0f);
  EXPECT_EQ(r.slopes.position, 0.0f);
  EXPECT_EQ(r.slopes.width, 0.0f);
  EXPECT_EQ(r.slopes.eta, 0.0f);
}

}  // namespace
}  // namespace corvinet
