// The derivatives of the calculated pattern with respect to every strain, size and shift parameter
// against central finite differences.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "records/profile_slots.h"
#include "refine/cycle_work.h"
#include "refine/point_probe.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;
namespace Slot = ProfileSlot;

// A profile-matching phase of group `symbol` and cell `cell` on a 2theta
// pattern from 20 to 70 degrees (or an energy pattern from 20 to 60 keV, E =
// 100/d), profile typed `profile`.
std::string ControlText(int profile, const std::string& symbol, const std::string& cell,
                        bool energy) {
  const std::string head =
      energy ? "Broadening\n0 " + std::to_string(profile) +
                   " 1 0 0 0 0 0 0 0 0 0 0 0 0 2 0\n"
                   "0 0 1 0 1 0 0 0 0 1 0 0 0 0 0 0 0\n"
                   "35.0 12.0 0\n"
                   "1 0.1 1 1 1 1 20.0 0.01 60.0 0 0\n"
                   "0\n0.01 0 100.0 0 0.002 0 0.0 0 0\n120 3 0 0 0 0\n0 0 0 0 0 0\n"
             : "Broadening\n0 " + std::to_string(profile) +
                   " 1 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n"
                   "0 0 1 0 1 0 0 0 0 1 0 0 0 0 0 0 0\n"
                   "1.5406 1.5406 0.0 35.0 12.0 0.8 0.0 0.0 0.0\n"
                   "1 0.1 1 1 1 1 20.0 0.01 70.0 0 0\n"
                   "0\n0.01 0 0.0 0 0.0 0 0 0 0\n120 3 0 0 0 0\n0 0 0 0 0 0\n";
  const std::string widths = energy ? "0.0001 0.001 0.01 0.002 0.004 0.0 0.0 0\n0 0 0 0 0 0 0\n"
                                    : "0.02 -0.015 0.012 0.003 0.02 0.0 0.0 0\n0 0 0 0 0 0 0\n";
  return head + "Phase\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0\n" + symbol + "\n" +
         "2.0 0.4 0.3 0.0 0.0 0.0 0\n0 0 0 0 0 0\n" + widths +
         (profile == 11 ? std::string("0.03 -0.01 0.015 0.5 0.002\n0 0 0 0 0\n") : std::string()) +
         cell + "\n0 0 0 0 0 0\n0.0 0.0 0.0 0.0 0.0 0.0\n0 0 0 0 0 0\n" +
         (profile >= 8 ? std::string("0.02 0 0.03 0\n") : std::string());
}

// One job read from a control text, with its models set afterwards.
struct BroadeningRun {
  ScratchDir dir;
  CapturedJob job;
  std::unique_ptr<CycleWork> work = std::make_unique<CycleWork>();
  bool energy;
  explicit BroadeningRun(const std::string& text, bool isEnergy) : energy(isEnergy) {
    const double last = energy ? 60.0 : 70.0;
    const int n = static_cast<int>((last - 20.0) / 0.01 + 1.5);
    std::string data = "20.0 0.01 " + std::to_string(last) + "\n";
    for (int i = 1; i <= n; ++i) data += i % 10 == 0 ? "100\n" : "100 ";
    dir.Write("x.dat", data + "\n");
    EXPECT_TRUE(testing::ReadControlText(dir, job, text, false)) << job.Console();
  }
  PhasePattern& c() { return job->phases[1].pat[1]; }
  double At(int i, std::vector<float>* derivative) {
    return testing::PointWithDerivatives(*job, *work, i, derivative);
  }
};

// A central difference of 32-bit values confirms a derivative to a relative
// 2e-3, widened by the rounding of the two values it differences.
double Tolerance(double numeric, double up, double down, double h, double relative) {
  const double unit =
      std::numeric_limits<float>::epsilon() * std::max(std::fabs(up), std::fabs(down));
  return relative * std::fabs(numeric) + 8.0 * unit / (2.0 * h);
}

constexpr double kRelative = 2e-3;

// Whether point i lies where the end of the base of some peak (Wdt widths from
// its centre) may cross it as the widths change: there the value jumps by the
// tail of that peak and a difference measures the jump, not the slope.
bool NearAnEdge(const Job& j, int i) {
  const Pattern& p = j.patterns[1];
  const ReflectionTable& t = p.reflections;
  for (int k = 1; k <= t.total; ++k) {
    const Reflection& r = t.slot[k];
    const double reach = p.Wdt * std::max(r.Fwhm, r.FwhmRight);
    for (double edge : {r.position - reach, r.position + reach}) {
      if (std::fabs(p.X[i] - p.GLB[1] - edge) < 0.15 + 0.1 * reach) return true;
    }
  }
  return false;
}

// Gives each of `slots` a parameter of its own and checks every derivative at
// points on both flanks of the first reflections that lie in the range; at
// least `moving` differences must be clearly non-zero.
void CheckSlots(BroadeningRun& run, const std::vector<int>& slots, double step, int moving,
                const std::string& what, double relative = kRelative) {
  Job& j = *run.job;
  j.run.MAXS = static_cast<int>(slots.size());
  for (std::size_t n = 0; n < slots.size(); ++n) {
    run.c().PAC[slots[n]] = Codeword{static_cast<int>(n) + 1, 1.0f};
  }
  std::vector<float> analytic;
  run.At(1, &analytic);
  std::vector<int> points;
  const ReflectionTable& t = j.patterns[1].reflections;
  for (int k = 1; k <= t.total && points.size() < 80; ++k) {
    const Reflection& r = t.slot[k];
    for (double f : {-1.0, -0.4, 0.3, 0.9}) {
      const int i = static_cast<int>((r.position + f * r.Fwhm - 20.0) / 0.01 + 1.5);
      if (i > 1 && i < j.patterns[1].NPTS) points.push_back(i);
    }
  }
  // Where neighbouring peaks cancel, the net derivative is a small difference
  // of large ones and carries their rounding: a floor of 5e-4 of the largest
  // derivative of the slot over the points covers it.
  std::vector<double> largest(slots.size(), 0.0);
  for (int i : points) {
    run.At(i, &analytic);
    for (std::size_t n = 0; n < slots.size(); ++n) {
      largest[n] = std::max(largest[n], std::fabs(static_cast<double>(analytic[n])));
    }
  }
  int nonZero = 0;
  for (int i : points) {
    run.At(i, &analytic);
    if (NearAnEdge(j, i)) continue;
    for (std::size_t n = 0; n < slots.size(); ++n) {
      float& v = run.c().PAR[slots[n]];
      const float saved = v;
      auto at = [&](double d) {
        v = static_cast<float>(saved + d);
        return run.At(i, nullptr);
      };
      // Four points: the error of the curvature cancels to the fourth order,
      // so that a step wide against the rounding of the positions can be used.
      const double up = at(step), down = at(-step), up2 = at(2.0 * step), down2 = at(-2.0 * step);
      v = saved;
      const double numeric = (8.0 * (up - down) - (up2 - down2)) / (12.0 * step);
      EXPECT_NEAR(analytic[n], numeric,
                  Tolerance(numeric, up, down, step, relative) + 5e-4 * largest[n])
          << what << ": slot " << slots[n] << " at point " << i;
      nonZero += std::fabs(numeric) > 1.0 ? 1 : 0;
    }
  }
  EXPECT_GE(nonZero, moving) << what;
}

std::vector<int> StrainSlots(int count) {
  std::vector<int> slots;
  for (int i = 0; i < count; ++i) slots.push_back(Slot::Str1 + i);
  return slots;
}

constexpr const char* kOrthorhombic = "4.05 4.30 3.90 90 90 90";
constexpr const char* kMonoclinic = "4.05 4.30 3.90 90 101.5 90";

// Values of the strain terms: standard deviations of a few 1e-3 and
// correlation terms and angles that keep every product away from 0.
void SetStrainValues(PhasePattern& c, int model) {
  const float values[10] = {2.0f, 1.5f, 2.5f, 0.4f, 0.3f, 0.5f, 1.2f, 0.2f, 0.0f, 0.0f};
  for (int i = 0; i < 10; ++i) c.PAR[Slot::Str1 + i] = values[i];
  if (model == 9) {
    c.PAR[Slot::Str1] = 0.004f;
    c.PAR[Slot::Str2] = 0.01f;
    c.PAR[Slot::Str3] = 0.02f;
    c.PAR[Slot::Str4] = 0.015f;
  }
}

struct StrainCase {
  int model;
  int count;
  const char* cell;
  const char* symbol;
};

void CheckStrainModel(int profile, const StrainCase& sc) {
  BroadeningRun run(ControlText(profile, sc.symbol, sc.cell, false), false);
  run.c().StrainModel = sc.model;
  run.job->phases[1].StrainAxis[1] = 1.0f;
  run.job->phases[1].StrainAxis[2] = 1.0f;
  run.job->phases[1].StrainAxis[3] = 0.5f;
  SetStrainValues(run.c(), sc.model);
  CheckSlots(run, StrainSlots(sc.count), sc.model == 9 ? 1e-4 : 1e-2, 4,
             "strain model " + std::to_string(sc.model) + ", profile " + std::to_string(profile));
}

const StrainCase kStrainCases[] = {
    {1, 1, kOrthorhombic, "P m m m"}, {2, 1, kOrthorhombic, "P m m m"},
    {3, 1, kMonoclinic, "P 1 2/m 1"}, {4, 2, kMonoclinic, "P 1 2/m 1"},
    {5, 3, kOrthorhombic, "P m m m"}, {6, 3, kOrthorhombic, "P m m m"},
    {7, 1, kMonoclinic, "P 1 2/m 1"}, {8, 3, "4.05 4.05 6.30 90 90 120", "P 6/m m m"},
    {9, 4, kOrthorhombic, "P m m m"}, {10, 6, kOrthorhombic, "P m m m"},
    {11, 8, kMonoclinic, "P 1 2/m 1"}};

TEST(BroadeningDerivatives, EveryStrainModelFollowsFiniteDifferencesWithPseudoVoigt) {
  for (const StrainCase& sc : kStrainCases) CheckStrainModel(5, sc);
}

TEST(BroadeningDerivatives, EveryStrainModelFollowsFiniteDifferencesWithTch) {
  for (const StrainCase& sc : kStrainCases) CheckStrainModel(7, sc);
}

// The strain adds to both widths of the split profile.
TEST(BroadeningDerivatives, StrainMovesBothSidesOfTheSplitProfile) {
  CheckStrainModel(11, {5, 3, kOrthorhombic, "P m m m"});
}

TEST(BroadeningDerivatives, GeneralizedStrainFollowsFiniteDifferences) {
  {
    BroadeningRun run(ControlText(7, "P 1 2/m 1", kMonoclinic, false), false);
    run.job->phases[1].Str = 1;
    const float values[10] = {2.0f, 1.5f, 2.5f, 30.0f, 20.0f, -15.0f, 35.0f, 10.0f, -25.0f, 40.0f};
    for (int i = 0; i < 10; ++i) run.c().PAR[Slot::Str1 + i] = values[i];
    CheckSlots(run, StrainSlots(10), 1e-2, 4, "generalized strain, monoclinic");
  }
  {
    BroadeningRun run(ControlText(7, "P 6/m m m", "4.05 4.05 6.30 90 90 120", false), false);
    run.job->phases[1].Str = 1;
    run.c().PAR[Slot::Str1] = 2.0f;
    run.c().PAR[Slot::Str2] = 3.0f;
    run.c().PAR[Slot::Str3] = 25.0f;
    CheckSlots(run, StrainSlots(3), 1e-2, 4, "generalized strain, hexagonal");
  }
}

void CheckSize(int model, const char* symbol, const char* cell, std::vector<int> slots,
               const std::vector<float>& values, double step = 1e-3, int moving = 4) {
  BroadeningRun run(ControlText(7, symbol, cell, false), false);
  if (model == 0) {
    run.job->phases[1].Str = 2;
  } else {
    run.c().SizeModel = model;
  }
  run.job->phases[1].SizeAxis[1] = 0.3f;
  run.job->phases[1].SizeAxis[2] = 1.0f;
  run.job->phases[1].SizeAxis[3] = 0.2f;
  for (std::size_t n = 0; n < slots.size(); ++n) run.c().PAR[slots[n]] = values[n];
  CheckSlots(run, slots, step, moving, "size model " + std::to_string(model));
}

TEST(BroadeningDerivatives, SizeModelsFollowFiniteDifferences) {
  CheckSize(1, "P 1 2/m 1", kMonoclinic, {Slot::LorSiz}, {0.05f});
  CheckSize(-1, "P 1 2/m 1", kMonoclinic, {Slot::LorSiz}, {0.05f});
  for (int model = 2; model <= 14; ++model) {
    // A list without satellites: model 8 broadens nothing, and the
    // derivatives must all be 0.
    CheckSize(model, "P m m m", kOrthorhombic, {Slot::LorSiz}, {0.05f}, 1e-3, model == 8 ? 0 : 4);
  }
}

TEST(BroadeningDerivatives, HarmonicSizeFollowsFiniteDifferences) {
  std::vector<int> nine;
  for (int i = 0; i < 9; ++i) nine.push_back(Slot::SizeSH1 + i);
  CheckSize(15, "P 1 2/m 1", kMonoclinic, nine,
            {0.05f, 0.01f, -0.008f, 0.012f, 0.006f, -0.004f, 0.005f, 0.003f, -0.006f});
  std::vector<int> seven(nine.begin(), nine.begin() + 7);
  CheckSize(16, "P -3 m 1", "4.05 4.05 6.30 90 90 120", seven,
            {0.05f, 0.01f, -0.008f, 0.012f, 0.006f, -0.004f, 0.005f});
}

TEST(BroadeningDerivatives, EllipsoidalSizeFollowsFiniteDifferences) {
  CheckSize(0, "P 1 2/m 1", kMonoclinic,
            {Slot::LorSiz, Slot::Size2, Slot::Size3, Slot::Size4, Slot::Size5, Slot::Size6},
            {0.0005f, 0.0004f, 0.0006f, 0.0001f, -0.0001f, 0.00005f}, 4e-6);
}

void CheckShift(int model) {
  BroadeningRun run(ControlText(5, "P 1 2/m 1", kMonoclinic, false), false);
  Phase& ph = run.job->phases[1];
  ph.ModS = model;
  ph.ShiftAxis[1] = 1.0f;
  ph.ShiftAxis[2] = 0.5f;
  ph.ShiftAxis[3] = 0.2f;
  run.c().PAR[Slot::Shift1] = 0.05f;
  // With X = 0 the mixing does not follow the position, and the row of the
  // shift, which moves the peak only, is the whole derivative.
  run.c().PAR[Slot::X] = 0.0f;
  ReflectionTable& t = run.job->patterns[1].reflections;
  for (int k = 1; k <= t.total; ++k) t.slot[k].fileValue1 = 0.2f + 0.1f * static_cast<float>(k % 5);
  // Steps that move the peaks by some 0.004 degrees: wide against the rounding
  // of a 32-bit position, narrow against the width.
  const double step = std::abs(model) == 1 ? 5e-3 : 3e-2;
  CheckSlots(run, {Slot::Shift1}, step, 4, "shift model " + std::to_string(model));
}

TEST(BroadeningDerivatives, EveryShiftModelFollowsFiniteDifferences) {
  for (int model : {1, -1, 2, -2}) CheckShift(model);
}

TEST(BroadeningDerivatives, EnergyStrainAndSizeFollowFiniteDifferences) {
  BroadeningRun run(ControlText(7, "P m m m", kOrthorhombic, true), true);
  run.c().StrainModel = 5;
  run.c().SizeModel = 5;
  SetStrainValues(run.c(), 5);
  run.c().PAR[Slot::LorSiz] = 0.01f;
  CheckSlots(run, {Slot::Str1, Slot::Str2, Slot::Str3, Slot::LorSiz}, 1e-3, 4, "energy");
}

}  // namespace
}  // namespace corvinet
