// The derivatives of the calculated pattern at a point against central finite differences, family
// by family.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "observations/background.h"
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

// A cubic phase in profile matching on a pattern from 20 to 50 degrees with
// its data; the parameters are given codes after reading.
std::string ControlText(int typedProfile, int iasym) {
  // Pearson VII needs an exponent well inside its table: m0 = 1.5.
  const std::string shape1 = typedProfile == 6 ? "1.5" : "0.4";
  return "Derivatives\n0 " + std::to_string(typedProfile) + " " + (iasym == 1 ? "-1" : "1") +
         " 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n"
         "0 0 1 0 1 0 0 0 0 1 0 0 0 0 0 0 0\n"
         "1.5406 1.5444 0.5 35.0 12.0 0.8 0.0 40.0 0.0\n"
         "1 0.1 1 1 1 1 20.0 0.01 50.0 0 0\n"
         "0\n0.01 0 0.0 0 0.0 0 0 0 0\n120 3 0 0 0 0\n0 0 0 0 0 0\n"
         "Phase\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0\nP m 3 m\n"
         "2.0 " +
         shape1 +
         " 0.3 0.0 0.0 0.0 0\n0 0 0 0 0 0\n"
         "0.02 -0.015 0.012 0.003 0.01 0.0 0.0 0\n0 0 0 0 0 0 0\n" +
         // The split profile has its right-hand widths and mixing before the cell.
         (typedProfile == 11 ? std::string("0.03 -0.01 0.015 0.5 0.002\n0 0 0 0 0\n")
                             : std::string()) +
         "4.05 4.05 4.05 90 90 90\n0 0 0 0 0 0\n"
         "0.3 0.0 0.05 0.02 0.01 0.01\n0 0 0 0 0 0\n" +
         (typedProfile == 4 || typedProfile >= 8 ? std::string("0.02 0 0.03 0\n") : std::string());
}

// The relative agreement of an analytic derivative with its central
// difference.
constexpr double kRelative = 2e-3;
// The rows that leave out how the peak moves the quantities computed at its
// position (Lorentz-polarisation factor, widths): their differences show
// those terms, from 0.3 to 1.3 per cent.
constexpr double kPositionOnlyRelative = 1.5e-2;

bool MovesThePeakOnly(const std::string& name) {
  return name == "Sysin" || name == "Dtt1" || name == "U (energy)" || name == "component";
}

// What a central difference of 32-bit values can confirm of a derivative: a
// relative agreement, widened only by the rounding of the two values it
// differences (kRoundingUnits units of the last place of the larger one,
// divided by the width 2h of the difference).
double FiniteDifferenceTolerance(const std::string& name, double numeric, double up, double down,
                                 double h) {
  constexpr double kRoundingUnits = 8.0;
  const double relative = MovesThePeakOnly(name) ? kPositionOnlyRelative : kRelative;
  const double unit =
      std::numeric_limits<float>::epsilon() * std::max(std::fabs(up), std::fabs(down));
  return relative * std::fabs(numeric) + kRoundingUnits * unit / (2.0 * h);
}

struct Parameter {
  const char* name;
  std::function<float&(Job&)> value;
  std::function<Codeword&(Job&)> code;
  double step;
};

std::vector<Parameter> Parameters() {
  auto par = [](int s) { return [s](Job& j) -> float& { return j.phases[1].pat[1].PAR[s]; }; };
  auto pac = [](int s) { return [s](Job& j) -> Codeword& { return j.phases[1].pat[1].PAC[s]; }; };
  auto glb = [](int n) { return [n](Job& j) -> float& { return j.patterns[1].GLB[n]; }; };
  auto gw = [](int n) { return [n](Job& j) -> Codeword& { return j.patterns[1].GLBword[n]; }; };
  return {{"Zero", glb(1), gw(1), 1e-3},
          {"Sycos", glb(8), gw(8), 1e-3},
          {"Sysin", glb(9), gw(9), 1e-3},
          {"Background B0", glb(2), gw(2), 1e-1},
          {"Background B1", glb(3), gw(3), 1e-1},
          {"Scale", par(1), pac(1), 1e-3},
          {"Bov", par(2), pac(2), 1e-2},
          {"U", par(3), pac(3), 1e-3},
          {"V", par(4), pac(4), 1e-4},
          {"W", par(5), pac(5), 1e-4},
          {"X", par(15), pac(15), 1e-4},
          {"Y", par(16), pac(16), 1e-4},
          {"Shape1", par(17), pac(17), 1e-3},
          {"Cell A", par(6), pac(6), 1e-5},
          {"Pref1", par(12), pac(12), 1e-3},
          {"Pref2", par(13), pac(13), 1e-3},
          {"Asy1", par(14), pac(14), 1e-3},
          {"Asy2", par(35), pac(35), 1e-3},
          {"Asy3", par(36), pac(36), 1e-3},
          {"Asy4", par(37), pac(37), 1e-3},
          {"Shp1", par(41), pac(41), 1e-4},
          {"Shp2", par(42), pac(42), 1e-4},
          {"Ur", par(46), pac(46), 1e-4},
          {"Vr", par(47), pac(47), 1e-4},
          {"Wr", par(48), pac(48), 1e-4},
          {"Etar", par(49), pac(49), 1e-3},
          {"Xr", par(50), pac(50), 1e-3}};
}

struct PointRun {
  ScratchDir dir;
  CapturedJob job;
  std::unique_ptr<CycleWork> work = std::make_unique<CycleWork>();
  PointRun(int typedProfile, int iasym) : PointRun(ControlText(typedProfile, iasym)) {}
  explicit PointRun(const std::string& text) {
    std::string data = "20.0 0.01 50.0\n";
    for (int i = 1; i <= 3001; ++i) data += i % 10 == 0 ? "100\n" : "100 ";
    dir.Write("x.dat", data + "\n");
    EXPECT_TRUE(testing::ReadControlText(dir, job, text, false)) << job.Console();
  }
  // Calculated value and derivatives at point i.
  float At(int i, std::vector<float>& derivative) {
    Job& j = *job;
    BuildParameterFamilies(j);
    FillBackground(j, 1);
    OrderReflections(j, 1);
    for (int k = 1; k <= j.patterns[1].reflections.total; ++k)
      ComputeReflectionProfile(j, *work, 1, k);
    CalculatePoint(j, *work, 1, i);
    derivative.assign(j.refinement.PointDerivative.begin(),
                      j.refinement.PointDerivative.begin() + j.run.MAXS);
    return j.patterns[1].Ycalc[i] + j.patterns[1].Backg[i];
  }
};

// Gives every parameter its own number and checks each derivative at points
// on both flanks and at the top of the first peaks.
void CheckProfile(int typedProfile, int iasym, const std::vector<const char*>& skip) {
  PointRun run(typedProfile, iasym);
  Job& j = *run.job;
  std::vector<Parameter> list = Parameters();
  j.run.MAXS = static_cast<int>(list.size());
  for (std::size_t n = 0; n < list.size(); ++n) {
    list[n].code(j) = Codeword{static_cast<int>(n) + 1, 1.0f};
  }
  // 100 at 21.93 and 110 at 31.2 degrees: points on their profiles.
  const int points[] = {181, 190, 194, 197, 1111, 1118, 1124};
  for (int i : points) {
    std::vector<float> analytic;
    run.At(i, analytic);
    for (std::size_t n = 0; n < list.size(); ++n) {
      bool skipped = false;
      for (const char* s : skip) skipped |= std::string(s) == list[n].name;
      if (skipped) continue;
      float& v = list[n].value(j);
      const float saved = v;
      const double h = list[n].step;
      std::vector<float> unused;
      v = static_cast<float>(saved + h);
      const double up = run.At(i, unused);
      v = static_cast<float>(saved - h);
      const double down = run.At(i, unused);
      v = saved;
      const double numeric = (up - down) / (2.0 * h);
      EXPECT_NEAR(analytic[n], numeric,
                  FiniteDifferenceTolerance(list[n].name, numeric, up, down, h))
          << list[n].name << " at point " << i << " (profile " << typedProfile << ")";
    }
  }
}

TEST(PointDerivatives, PseudoVoigtWithAsymmetryFollowFiniteDifferences) {
  CheckProfile(5, 0, {"Y", "Shp1", "Shp2"});
}

// Pearson VII reads A(m) and its slope dA/dm from two separately interpolated
// tables, so a finite difference of the value follows the slope of the A
// interpolant, not the tabulated slope: the exponent rows (slots 15, 16, 17)
// are checked against the profile's own slope tests instead of here.
TEST(PointDerivatives, PearsonSevenFollowFiniteDifferences) {
  CheckProfile(6, 0, {"Shp1", "Shp2", "X", "Y", "Shape1"});
}

TEST(PointDerivatives, ThompsonCoxHastingsFollowFiniteDifferences) {
  CheckProfile(7, 0, {"Shape1", "Shp1", "Shp2"});
}

TEST(PointDerivatives, SplitPseudoVoigtFollowFiniteDifferences) {
  CheckProfile(11, 0, {"Y"});
}

TEST(PointDerivatives, FivePointAsymmetryAverageFollowsFiniteDifferences) {
  CheckProfile(5, 1, {"Y", "Shp1", "Shp2", "Asy2", "Asy3", "Asy4"});
}

// An energy-dispersive pattern from 20 to 60 keV with E = 100/d.
std::string EnergyControlText() {
  return "Energy\n0 5 1 0 0 0 0 0 0 0 0 0 0 0 0 2 0\n"
         "0 0 1 0 1 0 0 0 0 1 0 0 0 0 0 0 0\n"
         "35.0 12.0 0\n"
         "1 0.1 1 1 1 1 20.0 0.01 60.0 0 0\n"
         "0\n0.01 0 100.0 0 0.002 0 0.0 0 0\n120 3 0 0 0 0\n0 0 0 0 0 0\n"
         "Phase\n0 0 0 0.0 0.0 1.0 2 0 0 0 0 0.0 0 0 0\nP m 3 m\n"
         "2.0 0.4 0.3 0.0 0.0 0.0 0\n0 0 0 0 0 0\n"
         "0.0001 0.001 0.01 0.002 0.0 0.0 0.0 0\n0 0 0 0 0 0 0\n"
         "4.05 4.05 4.05 90 90 90\n0 0 0 0 0 0\n"
         "0.3 0.0 0.0 0.0 0.0 0.0\n0 0 0 0 0 0\n";
}

// Satellites of a profile-matching phase with one propagation vector: the
// position derivatives of its three components.
TEST(PointDerivatives, PropagationVectorComponentsFollowFiniteDifferences) {
  std::string text = ControlText(5, 0);
  text.replace(text.find("2 0 0 0 0 0.0 0 0 0"), 19, "2 0 0 0 0 0.0 1 0 0");
  text += "0.12 0.07 0.21\n0 0 0\n";
  PointRun run(text);
  Job& j = *run.job;
  ASSERT_EQ(j.phases[1].Nvk, 1);
  j.run.MAXS = 3;
  for (int c = 1; c <= 3; ++c) j.phases[1].vectors[1].KCODE[c] = Codeword{c, 1.0f};
  auto at = [&run](int i, std::vector<float>& derivative) { return run.At(i, derivative); };
  // Points on the flanks of the first satellite above 25 degrees.
  std::vector<float> analytic;
  at(1, analytic);
  int centre = 0;
  const ReflectionTable& t = j.patterns[1].reflections;
  for (int k = 1; k <= t.total && centre == 0; ++k) {
    if (t.slot[k].satelliteIndex != 0 && t.slot[k].position > 25.0f) {
      centre = static_cast<int>((t.slot[k].position - 20.0f) / 0.01f + 1.5f);
    }
  }
  ASSERT_GT(centre, 0);
  int checked = 0;
  for (int i : {centre - 6, centre - 3, centre + 3, centre + 6}) {
    at(i, analytic);
    for (int c = 1; c <= 3; ++c) {
      float& v = j.phases[1].vectors[1].KVEC[c];
      const float saved = v;
      const double h = 1e-4;
      std::vector<float> unused;
      v = static_cast<float>(saved + h);
      const double up = at(i, unused);
      v = static_cast<float>(saved - h);
      const double down = at(i, unused);
      v = saved;
      const double numeric = (up - down) / (2.0 * h);
      EXPECT_NEAR(analytic[static_cast<std::size_t>(c - 1)], numeric,
                  FiniteDifferenceTolerance("component", numeric, up, down, h))
          << "component " << c << " at point " << i;
      checked += std::fabs(numeric) > 1.0 ? 1 : 0;
    }
  }
  EXPECT_GT(checked, 4);
}

// Profile matching, and phase types that have no structure factor, keep the
// squared structure factor the reflection holds.
TEST(PointDerivatives, ReflectionWithoutStructureFactorKeepsItsStoredValue) {
  for (int Jbt : {2, 6}) {
    PointRun run(5, 0);
    Job& j = *run.job;
    j.phases[1].Jbt = Jbt;
    OrderReflections(j, 1);
    Reflection& r = j.patterns[1].reflections.slot[1];
    r.F2 = 7.5f;
    ComputeReflectionProfile(j, *run.work, 1, 1);
    EXPECT_EQ(r.F2, 7.5f) << "Jbt " << Jbt;
  }
}

// The energy rows under their names in MovesThePeakOnly.
std::string EnergyRowName(const std::string& name) {
  return name == "U" ? "U (energy)" : name;
}

TEST(PointDerivatives, EnergyDispersivePseudoVoigtFollowsFiniteDifferences) {
  ScratchDir dir;
  CapturedJob job;
  std::string data = "20.0 0.01 60.0\n";
  for (int i = 1; i <= 4001; ++i) data += i % 10 == 0 ? "100\n" : "100 ";
  dir.Write("x.dat", data + "\n");
  ASSERT_TRUE(testing::ReadControlText(dir, job, EnergyControlText(), false)) << job.Console();
  Job& j = *job;
  auto par = [&j](int s) -> float& { return j.phases[1].pat[1].PAR[s]; };
  auto glb = [&j](int n) -> float& { return j.patterns[1].GLB[n]; };
  struct Item {
    const char* name;
    float* value;
    Codeword* code;
    double step;
  };
  std::vector<Item> list = {{"Zero", &glb(1), &j.patterns[1].GLBword[1], 1e-3},
                            {"Dtt1", &glb(8), &j.patterns[1].GLBword[8], 1e-3},
                            {"Dtt2", &glb(9), &j.patterns[1].GLBword[9], 1e-2},
                            {"Background B0", &glb(2), &j.patterns[1].GLBword[2], 1e-1},
                            {"Scale", &par(1), &j.phases[1].pat[1].PAC[1], 1e-3},
                            {"Bov", &par(2), &j.phases[1].pat[1].PAC[2], 1e-2},
                            {"U", &par(3), &j.phases[1].pat[1].PAC[3], 1e-5},
                            {"V", &par(4), &j.phases[1].pat[1].PAC[4], 1e-4},
                            {"W", &par(5), &j.phases[1].pat[1].PAC[5], 1e-3},
                            {"X", &par(15), &j.phases[1].pat[1].PAC[15], 1e-4},
                            {"Shape1", &par(17), &j.phases[1].pat[1].PAC[17], 1e-3},
                            {"Cell A", &par(6), &j.phases[1].pat[1].PAC[6], 1e-5}};
  j.run.MAXS = static_cast<int>(list.size());
  for (std::size_t n = 0; n < list.size(); ++n)
    *list[n].code = Codeword{static_cast<int>(n) + 1, 1.0f};
  auto work = std::make_unique<CycleWork>();
  auto at = [&](int i, std::vector<float>* derivative) {
    return testing::PointWithDerivatives(j, *work, i, derivative);
  };
  // The energy constants move the peak only: the widths and the mixing that
  // depend on the energy are taken as fixed, as for the wavelength of
  // angle data. They are checked where the widths do not depend on it.
  auto check = [&](bool constants) {
    // 100 at 24.69 keV and 110 at 34.92 keV.
    for (int i : {455, 465, 470, 476, 1480, 1493, 1500}) {
      std::vector<float> analytic;
      at(i, &analytic);
      for (std::size_t n = 0; n < list.size(); ++n) {
        const bool constant = std::string(list[n].name).rfind("Dtt", 0) == 0;
        if (constant != constants) continue;
        float& v = *list[n].value;
        const float saved = v;
        v = static_cast<float>(saved + list[n].step);
        const double up = at(i, nullptr);
        v = static_cast<float>(saved - list[n].step);
        const double down = at(i, nullptr);
        v = saved;
        const double numeric = (up - down) / (2.0 * list[n].step);
        EXPECT_NEAR(
            analytic[n], numeric,
            FiniteDifferenceTolerance(EnergyRowName(list[n].name), numeric, up, down, list[n].step))
            << list[n].name << " at point " << i;
      }
    }
  };
  check(false);
  par(3) = par(4) = par(15) = 0.0f;
  check(true);
}

}  // namespace
}  // namespace corvinet
