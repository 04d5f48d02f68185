// The Lorentz-polarisation factor of a reflection follows the Bragg angle of the current cell.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>

#include "format/fortran_format.h"
#include "records/reflection.h"
#include "refine/cycle_work.h"
#include "refine/reflection_calculation.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

// A cubic phase in profile matching on a neutron pattern (no polarisation,
// no absorption, Bragg-Brentano): Lp = 1 / (2 sin²θ cosθ).
const char* kControl =
    "Lp\n1 5 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n"
    "0 0 1 0 1 0 0 0 0 1 0 0 0 0 0 0 0\n"
    "1.5406 1.5406 0.0 35.0 12.0 0.0 0.0 0.0 0.0\n"
    "1 0.1 1 1 1 1 20.0 0.01 100.0 0 0\n"
    "0\n0.0 0 0.0 0 0.0 0 0 0 0\n120 0 0 0 0 0\n0 0 0 0 0 0\n"
    "Phase\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0\nP m 3 m\n"
    "2.0 0.4 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n"
    "0.02 -0.015 0.012 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0 0\n"
    "4.05 4.05 4.05 90 90 90\n0 0 0 0 0 0\n"
    "0.0 0.0 0.0 0.0 0.0 0.0\n0 0 0 0 0 0\n";

// The angle form of Lp at 1/d² = q, from Bragg's law.
double NeutronLp(double q) {
  const double sinTheta = 1.5406 * std::sqrt(q) / 2.0;
  const double cosTheta = std::sqrt(1.0 - sinTheta * sinTheta);
  return 1.0 / (2.0 * sinTheta * sinTheta * cosTheta);
}

// A job read from `control` over flat data of `points` points from `first`
// in steps of 0.01, with the cubic cell then shrunk by 0.5 % (A = 1/a² up by
// 1 %); returns A.
struct ShrunkCell {
  ScratchDir dir;
  CapturedJob job;
  std::unique_ptr<CycleWork> work = std::make_unique<CycleWork>();
  float A = 0.0f;
  ShrunkCell(const char* control, float first, int points) {
    std::string data = Fmt("(3F8.2)", first, 0.01f, first + 0.01f * (points - 1)) + "\n";
    for (int i = 1; i <= points; ++i) data += i % 10 == 0 ? "100\n" : "100 ";
    dir.Write("x.dat", data + "\n");
    EXPECT_TRUE(testing::ReadControlText(dir, job, control, false)) << job.Console();
    PhasePattern& c = job->phases[1].pat[1];
    A = c.PAR[6] * 1.01f;
    for (int s = 6; s <= 8; ++s) c.PAR[s] = A;
  }
};

TEST(LorentzFollowsCell, LpOfEveryReflectionMovesWithTheCell) {
  // The cell shrinks by 0.5 %: every peak moves to a higher angle.
  ShrunkCell run(kControl, 20.0f, 8001);
  Job& j = *run.job;
  auto& work = run.work;
  const float A = run.A;
  ReflectionTable& table = j.patterns[1].reflections;
  ASSERT_GT(table.total, 5);
  int checked = 0;
  for (int k = 1; k <= table.total; ++k) {
    const Reflection& r = table.slot[k];
    const float before = r.LpM;
    const int hkl2 =
        KeyH(r.key) * KeyH(r.key) + KeyK(r.key) * KeyK(r.key) + KeyL(r.key) * KeyL(r.key);
    const double q0 = static_cast<double>(hkl2) / (4.05 * 4.05);
    const double q1 = static_cast<double>(hkl2) * A;
    if (1.5406 * std::sqrt(q1) / 2.0 >= 0.99) continue;
    ComputeReflectionProfile(j, *work, 1, k);
    const double expected = NeutronLp(q1) / NeutronLp(q0);
    EXPECT_NEAR(r.LpM / before, expected, 2e-5 * expected) << "reflection " << k;
    ++checked;
  }
  EXPECT_GT(checked, 5);
}

// An energy-dispersive pattern (E = 100 s, 20 to 60 keV) of the same phase:
// there Lp = d².
const char* kEnergyControl =
    "Lp energy\n0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 2 0\n"
    "0 0 1 0 1 0 0 0 0 1 0 0 0 0 0 0 0\n"
    "35.0 12.0 0\n"
    "1 0.1 1 1 1 1 20.0 0.01 60.0 0 0\n"
    "0\n0.0 0 100.0 0 0.0 0 0.0 0 0\n120 0 0 0 0 0\n0 0 0 0 0 0\n"
    "Phase\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0\nP m 3 m\n"
    "2.0 0.4 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n"
    "0.0 0.0 0.05 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0 0\n"
    "4.05 4.05 4.05 90 90 90\n0 0 0 0 0 0\n"
    "0.0 0.0 0.0 0.0 0.0 0.0\n0 0 0 0 0 0\n";

TEST(LorentzFollowsCell, EnergyLpIsTheSquareOfTheCurrentSpacing) {
  ShrunkCell run(kEnergyControl, 20.0f, 4001);
  Job& j = *run.job;
  auto& work = run.work;
  ReflectionTable& table = j.patterns[1].reflections;
  ASSERT_GE(table.total, 5);
  for (int k = 1; k <= table.total; ++k) {
    const Reflection& r = table.slot[k];
    const float before = r.LpM;
    ComputeReflectionProfile(j, *work, 1, k);
    // d² scales as 1/A: the ratio is 1/1.01 whatever the reflection.
    EXPECT_NEAR(r.LpM / before, 1.0 / 1.01, 2e-6) << "reflection " << k;
  }
}

}  // namespace
}  // namespace corvinet
