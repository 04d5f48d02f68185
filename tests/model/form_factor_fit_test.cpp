// Tests of tabulated form factors: linear interpolation and the fit of four-Gaussian coefficients.
#include "model/form_factor_fit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace corvinet {
namespace {

ChemicalSpecies Table(const std::vector<float>& s, const std::vector<float>& f) {
  ChemicalSpecies sp;
  sp.nTable = static_cast<int>(s.size());
  for (int i = 1; i <= sp.nTable; ++i) {
    sp.sTable[i] = s[i - 1];
    sp.coeff[i] = f[i - 1];
  }
  return sp;
}

TEST(InterpolateFormFactor, EndValuesHoldBeyondTheEnds) {
  const ChemicalSpecies sp = Table({100.0f, 200.0f, 400.0f}, {8.0f, 6.0f, 2.0f});
  EXPECT_EQ(InterpolateFormFactor(sp, 50.0f), 8.0f);
  EXPECT_EQ(InterpolateFormFactor(sp, 100.0f), 8.0f);
  EXPECT_EQ(InterpolateFormFactor(sp, 400.0f), 2.0f);
  EXPECT_EQ(InterpolateFormFactor(sp, 1000.0f), 2.0f);
}

TEST(InterpolateFormFactor, LinearBetweenNeighbours) {
  const ChemicalSpecies sp = Table({100.0f, 200.0f, 400.0f}, {8.0f, 6.0f, 2.0f});
  EXPECT_FLOAT_EQ(InterpolateFormFactor(sp, 150.0f), 7.0f);
  EXPECT_FLOAT_EQ(InterpolateFormFactor(sp, 200.0f), 6.0f);  // a node starts its interval
  EXPECT_FLOAT_EQ(InterpolateFormFactor(sp, 300.0f), 4.0f);
  EXPECT_FLOAT_EQ(InterpolateFormFactor(sp, 399.0f), 2.02f);
}

TEST(InterpolateFormFactor, SinglePointTable) {
  const ChemicalSpecies sp = Table({100.0f}, {5.0f});
  EXPECT_EQ(InterpolateFormFactor(sp, 10.0f), 5.0f);
  EXPECT_EQ(InterpolateFormFactor(sp, 500.0f), 5.0f);
}

// Four-Gaussian curve of carbon (the c row of the X-ray table).
const double kCarbon[9] = {2.31, 20.8439, 1.02, 10.2075, 1.5886, 0.5687, 0.865, 51.6512, 0.2156};

double Curve(const float* x, double s) {
  double f = x[8];
  for (int j = 0; j < 4; ++j) f += x[2 * j] * std::exp(-x[2 * j + 1] * s * s);
  return f;
}

double Carbon(double s) {
  double f = kCarbon[8];
  for (int j = 0; j < 4; ++j) f += kCarbon[2 * j] * std::exp(-kCarbon[2 * j + 1] * s * s);
  return f;
}

TEST(FitGaussianFormFactor, TwoPassesReproduceTabulatedPointsRoughly) {
  std::vector<float> s, f;
  for (int i = 0; i <= 20; ++i) {
    s.push_back(0.05f * static_cast<float>(i));
    f.push_back(static_cast<float>(Carbon(0.05 * i)));
  }
  const std::array<float, 10> x = FitGaussianCoefficients(s, f);
  double start = 0.0, fitted = 0.0, largest = 0.0;
  const float one[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  for (std::size_t i = 0; i < s.size(); ++i) {
    start += std::pow(Curve(one, s[i]) - f[i], 2);
    fitted += std::pow(Curve(x.data(), s[i]) - f[i], 2);
    largest = std::max(largest, std::fabs(Curve(x.data(), s[i]) - f[i]));
  }
  const double rms = std::sqrt(fitted / static_cast<double>(s.size()));
  EXPECT_LT(fitted, start);
  // Two passes from the start 1, 2, ..., 9 (25 electrons at s = 0 against 6)
  // leave an rms misfit of about 0.37 and a largest one of about 0.67.
  EXPECT_LT(rms, 0.45);
  EXPECT_LT(largest, 0.8);
  EXPECT_EQ(x[9], 0.0f);  // the tenth element is never varied
}

TEST(FitGaussianFormFactor, NonPositiveSecondAmplitudeIsKeptNegative) {
  // A flat table at zero: the fit drives the amplitudes down, a2 included.
  std::vector<float> s, f;
  for (int i = 0; i < 12; ++i) {
    s.push_back(0.1f * static_cast<float>(i));
    f.push_back(-40.0f);
  }
  const std::array<float, 10> x = FitGaussianCoefficients(s, f);
  EXPECT_EQ(x[2], -1.0e-6f);
}

TEST(FitGaussianFormFactor, FewPointsVaryAsManyElements) {
  // Three points: elements 1 to 3 are varied, 4 to 10 stay zero.
  const std::vector<float> s = {0.0f, 0.3f, 0.6f};
  const std::vector<float> f = {6.0f, 3.0f, 1.5f};
  const std::array<float, 10> x = FitGaussianCoefficients(s, f);
  for (int i = 3; i < 10; ++i) EXPECT_EQ(x[static_cast<std::size_t>(i)], 0.0f) << i + 1;
}

TEST(FitGaussianFormFactor, EntryCoefficientsComeFromItsPoints) {
  ScatteringEntry e;
  e.tablePoints = 11;
  for (int i = 1; i <= 11; ++i) {
    e.tableX[i] = 0.1f * static_cast<float>(i - 1);
    e.tableY[i] = static_cast<float>(Carbon(0.1 * (i - 1)));
  }
  FitGaussianFormFactor(e);
  const std::array<float, 10> x = FitGaussianCoefficients(
      std::span<const float>(e.tableX.ptr(), 11), std::span<const float>(e.tableY.ptr(), 11));
  for (int j = 1; j <= 9; ++j) EXPECT_EQ(e.coef[j], x[static_cast<std::size_t>(j - 1)]);
}

}  // namespace
}  // namespace corvinet
