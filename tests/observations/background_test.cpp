// Tests of the choice of background model and of the evaluation when a pattern is read.
#include "observations/background.h"

#include <gtest/gtest.h>

#include <memory>

#include "background_test_support.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::DerivativesAt;
using testing::SetGrid;
using testing::SetTypedBackground;

BackgroundModel ModelOfTyped(int typed) {
  auto p = std::make_unique<Pattern>();
  SetTypedBackground(*p, typed);
  return BackgroundModelOf(*p);
}

TEST(BackgroundModel, TheTypedCodeSelectsTheModel) {
  auto p = std::make_unique<Pattern>();
  EXPECT_EQ(BackgroundModelOf(*p), BackgroundModel::Polynomial);
  EXPECT_EQ(ModelOfTyped(0), BackgroundModel::Polynomial);
  EXPECT_EQ(ModelOfTyped(1), BackgroundModel::File);
  EXPECT_EQ(ModelOfTyped(-1), BackgroundModel::Debye);
  EXPECT_EQ(ModelOfTyped(-2), BackgroundModel::Fourier);
  EXPECT_EQ(ModelOfTyped(-3), BackgroundModel::Polynomial12);
  EXPECT_EQ(ModelOfTyped(2), BackgroundModel::Linear);
  EXPECT_EQ(ModelOfTyped(100), BackgroundModel::Linear);
  EXPECT_EQ(ModelOfTyped(-4), BackgroundModel::Spline);
  EXPECT_EQ(ModelOfTyped(-100), BackgroundModel::Spline);
}

TEST(FourierBackground, StartsAtZeroWhenThePatternIsRead) {
  CapturedJob job;
  Pattern& p = job->patterns[2];
  SetGrid(p, 10.0f, 0.1f, 50);
  SetTypedBackground(p, -2);
  p.Backg.Fill(4.0f);
  EvaluateBackground(*job, 2);
  for (int i = 1; i <= 50; ++i) ASSERT_EQ(p.Backg[i], 0.0f) << i;
}

TEST(FourierBackground, RefreshKeepsTheValuesOfTheLastFilterPass) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetGrid(p, 10.0f, 0.1f, 50);
  SetTypedBackground(p, -2);
  for (int i = 1; i <= 50; ++i) p.Backg[i] = static_cast<float>(i);
  FillBackground(*job, 1);
  for (int i = 1; i <= 50; ++i) ASSERT_EQ(BackgroundAt(p, i), static_cast<float>(i)) << i;
  const DerivativeVector d = DerivativesAt(p, 10);
  for (int L = 1; L <= DimensionLimits::kDefaultMSZ; ++L) ASSERT_EQ(d[L], 0.0f);
}

TEST(PolynomialBackground, EvaluationFillsEveryPoint) {
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetGrid(p, 10.0f, 0.1f, 50);
  p.Bkpos = 20.0f;
  p.GLB[2] = 42.0f;
  EvaluateBackground(*job, 1);
  for (int i = 1; i <= 50; ++i) ASSERT_EQ(BackgroundAt(p, i), 42.0f) << i;
  EXPECT_EQ(p.Backg[51], 0.0f);
}

}  // namespace
}  // namespace corvinet
