// The Lorentzian-width rows of an energy-dispersive Thompson-Cox-Hastings peak against finite
// differences.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "observations/background.h"
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

// An energy-dispersive pattern from 20 to 60 keV with E = 100/d and the
// Thompson-Cox-Hastings shape: HL = X E + Y, here mostly Y.
std::string EnergyTchControlText() {
  return "Energy TCH\n0 7 1 0 0 0 0 0 0 0 0 0 0 0 0 2 0\n"
         "0 0 1 0 1 0 0 0 0 1 0 0 0 0 0 0 0\n"
         "35.0 12.0 0\n"
         "1 0.1 1 1 1 1 20.0 0.01 60.0 0 0\n"
         "0\n0.01 0 100.0 0 0.0 0 0.0 0 0\n120 3 0 0 0 0\n0 0 0 0 0 0\n"
         "Phase\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0\nP m 3 m\n"
         "2.0 0.4 0.3 0.0 0.0 0.0 0\n0 0 0 0 0 0\n"
         "0.0 0.0 0.01 0.001 0.05 0.0 0.0 0\n0 0 0 0 0 0 0\n"
         "4.05 4.05 4.05 90 90 90\n0 0 0 0 0 0\n"
         "0.3 0.0 0.0 0.0 0.0 0.0\n0 0 0 0 0 0\n";
}

struct EnergyRun {
  ScratchDir dir;
  CapturedJob job;
  std::unique_ptr<CycleWork> work = std::make_unique<CycleWork>();
  EnergyRun() {
    std::string data = "20.0 0.01 60.0\n";
    for (int i = 1; i <= 4001; ++i) data += i % 10 == 0 ? "100\n" : "100 ";
    dir.Write("x.dat", data + "\n");
    EXPECT_TRUE(testing::ReadControlText(dir, job, EnergyTchControlText(), false)) << job.Console();
  }
  double At(int i, std::vector<float>* derivative) {
    return testing::PointWithDerivatives(*job, *work, i, derivative);
  }
};

// HL = X E + Y has no cos(theta) in energy: the Y row is the slope of the
// pattern in Y itself, at 25 and 35 keV, where 1/cos(theta) of the angle
// formula would make it about E times too large.
TEST(EnergyTchDerivatives, LorentzianWidthRowsFollowFiniteDifferences) {
  EnergyRun run;
  Job& j = *run.job;
  float* value[2] = {&j.phases[1].pat[1].PAR[15], &j.phases[1].pat[1].PAR[16]};
  const char* name[2] = {"X", "Y"};
  const double step[2] = {1e-5, 1e-4};
  j.run.MAXS = 2;
  j.phases[1].pat[1].PAC[15] = Codeword{1, 1.0f};
  j.phases[1].pat[1].PAC[16] = Codeword{2, 1.0f};
  int checked = 0;
  // 100 at 24.69 keV and 110 at 34.92 keV: points on their flanks and tops.
  for (int i : {455, 462, 467, 470, 473, 480, 1485, 1490, 1493, 1496, 1500}) {
    std::vector<float> analytic;
    run.At(i, &analytic);
    for (int n = 0; n < 2; ++n) {
      const float saved = *value[n];
      *value[n] = static_cast<float>(saved + step[n]);
      const double up = run.At(i, nullptr);
      *value[n] = static_cast<float>(saved - step[n]);
      const double down = run.At(i, nullptr);
      *value[n] = saved;
      const double numeric = (up - down) / (2.0 * step[n]);
      if (std::fabs(numeric) < 1.0) continue;
      ++checked;
      EXPECT_NEAR(analytic[static_cast<std::size_t>(n)], numeric, 3e-2 * std::fabs(numeric))
          << name[n] << " at point " << i;
    }
  }
  EXPECT_GT(checked, 10);
}

}  // namespace
}  // namespace corvinet
