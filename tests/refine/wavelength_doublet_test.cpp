// A refined wavelength of a Ka1/Ka2 doublet: both lines move together at their fixed ratio.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "observations/background.h"
#include "records/reflection.h"
#include "refine/cycle_driver.h"
#include "refine/cycle_work.h"
#include "refine/order_reflections.h"
#include "refine/parameter_families.h"
#include "refine/point_calculation.h"
#include "refine/point_probe.h"
#include "refine/reflection_calculation.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

constexpr double kLambda1 = 1.5406;
constexpr double kLambda2 = 1.5444;
constexpr double kTrueLambda1 = 1.5409;  // the wavelength the data are drawn with
constexpr double kCell = 4.05;
constexpr double kFwhm = 0.05;

// A cubic phase in profile matching, pseudo-Voigt peaks of FWHM 0.05 degrees
// (W = 0.0025), the doublet with Ratio 0.5 and the wavelength refined as
// parameter 1.
std::string ControlText() {
  return "Doublet\n0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n"
         "0 0 1 0 1 0 0 0 0 1 0 0 0 0 0 0 0\n"
         "1.5406 1.5444 0.5 35.0 20.0 0.8 0.0 0.0 0.0\n"
         "1 0.1 1 1 1 1 20.0 0.005 50.0 0 0\n"
         "1\n0.0 0 0.0 0 0.0 0 1.5406 11 0\n100 0 0 0 0 0\n0 0 0 0 0 0\n"
         "Phase\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0\nP m 3 m\n"
         "1.0 0.0 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n"
         "0.0 0.0 0.0025 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0 0\n"
         "4.05 4.05 4.05 90 90 90\n0 0 0 0 0 0\n"
         "0.0 0.0 0.0 0.0 0.0 0.0\n0 0 0 0 0 0\n";
}

// Counts of 100 over Gaussian peaks of the cubic cell at both lines of the
// doublet drawn with kTrueLambda1, the second line at half the height.
std::string DrawnData() {
  const double ratio = kLambda2 / kLambda1;
  std::string data = "20.0 0.005 50.0\n";
  for (int i = 0; i <= 6000; ++i) {
    const double x = 20.0 + 0.005 * i;
    double y = 100.0;
    for (int n = 1; n <= 6; ++n) {
      for (int w = 1; w <= 2; ++w) {
        const double lambda = w == 1 ? kTrueLambda1 : kTrueLambda1 * ratio;
        const double s = lambda * std::sqrt(n) / (2.0 * kCell);
        const double centre = 2.0 * std::asin(s) * 180.0 / std::numbers::pi;
        const double z = (x - centre) / kFwhm;
        y += (w == 1 ? 2000.0 : 1000.0) * std::exp(-4.0 * std::log(2.0) * z * z);
      }
    }
    data += std::to_string(static_cast<int>(y)) + ((i + 1) % 10 == 0 ? "\n" : " ");
  }
  return data + "\n";
}

struct DoubletRun {
  ScratchDir dir;
  CapturedJob job;
  std::unique_ptr<CycleWork> work = std::make_unique<CycleWork>();
  DoubletRun() {
    dir.Write("x.dat", DrawnData());
    EXPECT_TRUE(testing::ReadControlText(dir, job, ControlText(), false)) << job.Console();
  }
  double At(int i, std::vector<float>* derivative) {
    return testing::PointWithDerivatives(*job, *work, i, derivative);
  }
};

TEST(WavelengthDoublet, ReadingARefinedWavelengthKeepsTheDoublet) {
  DoubletRun run;
  const Pattern& p = run.job->patterns[1];
  EXPECT_FLOAT_EQ(p.LAMBDA[1], static_cast<float>(kLambda1));
  EXPECT_FLOAT_EQ(p.LAMBDA[2], static_cast<float>(kLambda2));
}

TEST(WavelengthDoublet, ACycleMovesBothWavelengthsAtTheirRatio) {
  DoubletRun run;
  Job& j = *run.job;
  ASSERT_TRUE(testing::RunsWithoutStop(j, [](Job& job) { RunCycles(job); })) << run.job.Console();
  const Pattern& p = j.patterns[1];
  // The cycle moves the wavelength towards the one the data are drawn with.
  EXPECT_GT(p.LAMBDA[1], static_cast<float>(kLambda1 + 0.0001));
  EXPECT_LT(p.LAMBDA[1], static_cast<float>(kTrueLambda1 + 0.0002));
  EXPECT_NEAR(static_cast<double>(p.LAMBDA[2]) / p.LAMBDA[1], kLambda2 / kLambda1, 1e-6);
}

// At points on the second line of the 200 reflection, the derivative of the
// pattern with respect to the wavelength, with both lines moving, against
// central differences.
TEST(WavelengthDoublet, WavelengthRowFollowsTheSecondLine) {
  DoubletRun run;
  Job& j = *run.job;
  Pattern& p = j.patterns[1];
  std::vector<float> unused;
  run.At(1, &unused);
  float centre = 0.0f;
  const ReflectionTable& t = p.reflections;
  for (int k = 1; k <= t.total; ++k) {
    if (KeyWavelength(t.slot[k].key) == 2 && t.slot[k].position > 44.0f &&
        t.slot[k].position < 46.0f)
      centre = t.slot[k].position;
  }
  ASSERT_GT(centre, 44.0f) << "no reflection of the second line near 44.8 degrees";
  const double ratio = kLambda2 / kLambda1;
  // A step that LAMBDA[1] takes exactly; LAMBDA[2] is rounded, so the
  // difference is taken over the step it really made, brought back to LAMBDA[1].
  const double h = 1.0 / 32768.0;
  const float lambda1 = p.LAMBDA[1];
  int checked = 0;
  for (double offset : {-0.04, -0.025, -0.015, 0.015, 0.025, 0.04}) {
    const int i = static_cast<int>(std::lround((centre + offset - 20.0) / 0.005)) + 1;
    std::vector<float> analytic;
    run.At(i, &analytic);
    auto atLambda = [&](double lambda) {
      p.LAMBDA[1] = static_cast<float>(lambda);
      p.LAMBDA[2] = static_cast<float>(lambda * ratio);
      return run.At(i, nullptr);
    };
    const double up = atLambda(lambda1 + h);
    const float up2 = p.LAMBDA[2];
    const double down = atLambda(lambda1 - h);
    const float down2 = p.LAMBDA[2];
    atLambda(lambda1);
    const double numeric = (up - down) / ((static_cast<double>(up2) - down2) / ratio);
    EXPECT_GT(std::fabs(numeric), 1.0e4) << "point " << i;
    EXPECT_NEAR(analytic[0], numeric, 5e-3 * std::fabs(numeric)) << "point " << i;
    ++checked;
  }
  EXPECT_EQ(checked, 6);
}

}  // namespace
}  // namespace corvinet
