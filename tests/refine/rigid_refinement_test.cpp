// Rigid-body and object phases in the whole calculation: the derivatives of the calculated
// pattern in every new parameter against central differences, and refinements of simulated
// patterns that find the group's origin and orientation and an object's size again.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "format/fortran_format.h"
#include "model/rigid_phase.h"
#include "observations/poisson.h"
#include "refine/cycle_driver.h"
#include "refine/point_probe.h"
#include "refine/rigid_case.h"
#include "refine/rigid_report.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::RigidCase;
using testing::ScratchDir;

// A parameter by its line (1-based in the phase) and slot, with its difference step.
struct Slot {
  const char* name;
  int line;
  int slot;
  double step;
};

// Flat data over the range of the control text, so that the job refines.
void WriteFlatData(ScratchDir& dir, const char* head, int points) {
  std::string data = std::string(head) + "\n";
  for (int i = 1; i <= points; ++i) data += i % 10 == 0 ? "100\n" : "100 ";
  dir.Write("x.dat", data + "\n");
}

// The points around the top of the strongest peak.
std::vector<int> PointsOfTheStrongestPeak(Job& j, CycleWork& work) {
  testing::PointWithDerivatives(j, work, 1, nullptr);
  int top = 1;
  for (int i = 1; i <= j.patterns[1].NPTS; ++i) {
    testing::PointWithDerivatives(j, work, i, nullptr);
  }
  for (int i = 1; i <= j.patterns[1].NPTS; ++i) {
    if (j.patterns[1].Ycalc[i] > j.patterns[1].Ycalc[top]) top = i;
  }
  return {top - 4, top - 1, top, top + 2};
}

// Gives every slot its own parameter and compares each derivative of the
// calculated points with central differences.
void CheckDerivatives(Job& j, const std::vector<Slot>& slots) {
  auto work = std::make_unique<CycleWork>();
  const int offset = j.phases[1].atomOffset;
  j.run.MAXS = static_cast<int>(slots.size());
  for (std::size_t n = 0; n < slots.size(); ++n) {
    j.atoms[offset + slots[n].line].ATC[slots[n].slot] = Codeword{static_cast<int>(n) + 1, 1.0f};
  }
  RefreshRigidModels(j);
  for (int i : PointsOfTheStrongestPeak(j, *work)) {
    std::vector<float> analytic;
    testing::PointWithDerivatives(j, *work, i, &analytic);
    for (std::size_t n = 0; n < slots.size(); ++n) {
      float& v = j.atoms[offset + slots[n].line].ATP[slots[n].slot];
      const float saved = v;
      const double h = slots[n].step;
      v = static_cast<float>(saved + h);
      RefreshRigidModels(j);
      const double up = testing::PointWithDerivatives(j, *work, i, nullptr);
      v = static_cast<float>(saved - h);
      RefreshRigidModels(j);
      const double down = testing::PointWithDerivatives(j, *work, i, nullptr);
      v = saved;
      RefreshRigidModels(j);
      const double numeric = (up - down) / (2.0 * h);
      const double rounding = 8.0 * std::numeric_limits<float>::epsilon() *
                              std::max(std::fabs(up), std::fabs(down)) / (2.0 * h);
      EXPECT_NEAR(analytic[n], numeric, 3e-3 * std::fabs(numeric) + rounding)
          << slots[n].name << " at point " << i;
    }
  }
}

TEST(RigidRefinement, OriginAndAngleDerivativesOfAStandardGroupFollowFiniteDifferences) {
  ScratchDir dir;
  WriteFlatData(dir, "15.0 0.02 100.0", 4251);
  RigidCase c;
  c.job = 0;
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, testing::RigidControlText(c), false))
      << job.Console();
  CheckDerivatives(*job, {{"origin x", 2, 1, 1e-4},
                          {"origin y", 2, 2, 1e-4},
                          {"origin z", 2, 3, 1e-4},
                          {"theta", 2, 7, 0.05},
                          {"phi", 2, 8, 0.05},
                          {"chi", 2, 9, 0.05},
                          {"O x in the group", 5, 1, 1e-3},
                          {"O Biso", 5, 4, 1e-2},
                          {"O occupancy", 6, 5, 1e-3},
                          {"Pb x", 1, 1, 1e-4}});
}

// The satellite's atom moves with its main group's origin and angles and with
// its own offset and angles.
TEST(RigidRefinement, SatelliteGroupDerivativesFollowFiniteDifferences) {
  ScratchDir dir;
  WriteFlatData(dir, "15.0 0.02 100.0", 4251);
  RigidCase c;
  c.job = 0;
  c.satellite = true;
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, testing::RigidControlText(c), false))
      << job.Console();
  ASSERT_EQ(job->rigid[1].groups.size(), 2u);
  CheckDerivatives(*job, {{"main origin x", 2, 1, 1e-4},
                          {"main theta", 2, 7, 0.05},
                          {"main chi", 2, 9, 0.05},
                          {"offset x", 8, 1, 1e-3},
                          {"offset y", 8, 2, 1e-3},
                          {"satellite phi", 8, 8, 0.05},
                          {"satellite O x", 9, 1, 1e-3}});
}

TEST(RigidRefinement, PolarInternalCoordinateDerivativesFollowFiniteDifferences) {
  ScratchDir dir;
  WriteFlatData(dir, "15.0 0.02 100.0", 4251);
  RigidCase c;
  c.job = 0;
  c.option = 2;
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, testing::RigidControlText(c), false))
      << job.Console();
  CheckDerivatives(
      *job,
      {{"r", 5, 1, 1e-3}, {"alpha", 5, 2, 0.05}, {"beta", 6, 3, 0.05}, {"theta", 2, 7, 0.05}});
}

TEST(RigidRefinement, TlsDerivativesFollowFiniteDifferences) {
  ScratchDir dir;
  WriteFlatData(dir, "15.0 0.02 100.0", 4251);
  RigidCase c;
  c.job = 0;
  c.option = 4;
  c.T = {1.5f, 1.2f, 1.8f, 0.1f, -0.1f, 0.05f};
  c.L = {20.0f, 15.0f, 25.0f, 2.0f, -3.0f, 1.0f};
  c.S = {0.1f, -0.05f, 0.08f, 0.06f, -0.04f, 0.05f, -0.02f, 0.03f, -0.06f};
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, testing::RigidControlText(c), false))
      << job.Console();
  CheckDerivatives(*job, {{"T11", 2, 10, 0.05},
                          {"T22", 2, 11, 0.05},
                          {"T12", 2, 13, 0.05},
                          {"T23", 2, 15, 0.05},
                          {"L11", 3, 1, 0.5},
                          {"L33", 3, 3, 0.5},
                          {"L12", 3, 4, 0.5},
                          {"L23", 3, 6, 0.5},
                          {"S11", 3, 7, 0.05},
                          {"S12", 3, 8, 0.05},
                          {"S21", 3, 10, 0.05},
                          {"S33", 3, 15, 0.05},
                          {"chi", 2, 9, 0.05},
                          {"origin y", 2, 2, 1e-4}});
}

// Calculates the pattern of `truth` and writes it, with a scale that puts the
// strongest point near 20000 counts, as x.dat with Poisson noise.
template <class Text>
float Simulate(ScratchDir& dir, Text text, float scale, const char* head) {
  dir.Write("x.dat", "");
  float top = 0.0f;
  for (int pass = 0; pass < 2; ++pass) {
    CapturedJob job;
    EXPECT_TRUE(testing::ReadControlText(dir, job, text(scale), false)) << job.Console();
    EXPECT_TRUE(testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); })) << job.Console();
    const Pattern& p = job->patterns[1];
    if (pass == 0) {
      for (int i = 1; i <= p.NPTS; ++i) top = std::max(top, p.Ycalc[i]);
      scale *= 20000.0f / top;
      continue;
    }
    std::string data = std::string(head) + "\n";
    for (int i = 1; i <= p.NPTS; ++i) {
      data += Fmt("(F12.1)", PoissonDeviate(*job, p.Ycalc[i] + p.Backg[i]));
      if (i % 8 == 0) data += "\n";
    }
    dir.Write("x.dat", data + "\n");
  }
  return scale;
}

float Sigma(const Job& j, int L) {
  return std::sqrt(std::fabs(j.refinement.normal.A(L, L)));
}

TEST(RigidRefinement, ASimulatedRigidSulphateRefinesBackFromARotatedAndShiftedStart) {
  ScratchDir dir;
  RigidCase truth;
  const float scale = Simulate(
      dir,
      [&](float s) {
        RigidCase c = truth;
        c.scale = s;
        return testing::RigidControlText(c);
      },
      1.0f, "15.0 0.02 100.0");
  RigidCase start = truth;
  start.job = 0;
  start.cycles = 30;
  start.refined = 7;
  start.scale = scale * 1.05f;
  start.scaleCode = "11.00";
  start.origin = {truth.origin[0] + 0.008f, truth.origin[1] - 0.01f, truth.origin[2] + 0.006f};
  start.angles = {truth.angles[0] + 6.0f, truth.angles[1] - 5.0f, truth.angles[2] + 4.0f};
  for (int s = 1; s <= 3; ++s) start.codes[{2, s}] = Fmt("(I1,A)", s + 1, "1.00");
  for (int s = 7; s <= 9; ++s) start.codes[{2, s}] = Fmt("(I1,A)", s - 2, "1.00");
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(dir, job, testing::RigidControlText(start), false))
      << job.Console();
  ASSERT_TRUE(testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); })) << job.Console();
  const AtomSite& g = job->atoms[job->phases[1].atomOffset + 2];
  for (int s = 0; s < 3; ++s) {
    EXPECT_NEAR(g.ATP[1 + s], truth.origin[static_cast<std::size_t>(s)],
                3.0f * Sigma(*job, 2 + s) + 1e-4f)
        << "origin " << s;
    EXPECT_NEAR(g.ATP[7 + s], truth.angles[static_cast<std::size_t>(s)],
                3.0f * Sigma(*job, 5 + s) + 0.05f)
        << "angle " << s;
    EXPECT_LT(Sigma(*job, 5 + s), 1.0f);
  }
  // The S sits at the origin: its position has the sigma of the origin; an O
  // also moves with the angles, and has more.
  EXPECT_NEAR(PlacedFieldSigma(*job, 1, 2, 0), Sigma(*job, 2), 1e-3 * Sigma(*job, 2));
  EXPECT_NEAR(PlacedFieldSigma(*job, 1, 2, 2), Sigma(*job, 4), 1e-3 * Sigma(*job, 4));
  EXPECT_GT(PlacedFieldSigma(*job, 1, 3, 0), Sigma(*job, 2));
  const std::vector<std::string> report = RigidAtomLines(*job, 1);
  ASSERT_EQ(report.size(), 6u);  // the head and the S and four O
  EXPECT_EQ(report[0].substr(0, 32), " => Atoms placed by RBG no.:  1 ");
  EXPECT_EQ(report[1].substr(0, 10), " SO4  S   ");
  // x of the S is the origin's, with the origin's sigma.
  EXPECT_NE(report[1].find(Fmt("(F10.5,F9.5)", g.ATP[1], Sigma(*job, 2))), std::string::npos)
      << report[1];
}

// A cubic cell with a sphere of the family at its origin (parabolic density
// for order 2), at small angles.
std::string ObjectControlText(int job, float radius, const std::string& radiusCode, int refined,
                              float scale, const std::string& scaleCode, int cycles) {
  return "Simulated spheres\n" +
         Fmt("(I4,A)", job, "   0   1   0   0   0   0   0   0   0   0   0   0   0   0   0   0") +
         "\n   0   0   1   0   0   0   0   0   0   0   0   0   0   0   0   1   0\n"
         " 1.540560 1.540560  0.00000   60.000 10.0000  0.0000  0.0000    0.00    0.0000\n" +
         Fmt("(I3,A)", cycles,
             "  0.01  1.00  1.00  1.00  1.00      2.0000   0.0100    14.0000   0.000   0.000") +
         "\n" + Fmt("(I5)", refined) + "\n" +
         "  0.0000 0.00  0.0000 0.00  0.0000 0.00 0.000000 0.00   0\n"
         "   40.00  0.0  0.0  0.0  0.0  0.0\n0.00 0.00 0.00 0.00 0.00 0.00\n"
         "Spheres\n1 0 0 0.0 0.0 1.0 0 0 0 0 0 0.0 0 0 0\nP m -3 m\n"
         "Sp   SPHE 0.0 0.0 0.0 0.0 0.02083 0 0 4\n0 0 0 0 0\n" +
         Fmt("(F10.4,A)", radius, " 1.0 2.0 0.0 0.0 0.0 0.0") + "\n" + radiusCode +
         " 0 0 0 0 0 0\n0 0 0 0 0 0 0\n0 0 0 0 0 0 0\n" +
         Fmt("(F12.6,A)", scale, " 0.0 0.0 0.0 0.0 0.0 0") + "\n" + scaleCode +
         " 0 0 0 0 0\n0.002 -0.001 0.002 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0 0\n"
         "30.000 30.000 30.000 90 90 90\n0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n";
}

TEST(RigidRefinement, ObjectParameterDerivativesFollowFiniteDifferences) {
  ScratchDir dir;
  WriteFlatData(dir, "2.0 0.01 14.0", 1201);
  CapturedJob job;
  ASSERT_TRUE(
      testing::ReadControlText(dir, job, ObjectControlText(0, 8.0f, "0", 0, 1.0f, "0", 1), false))
      << job.Console();
  CheckDerivatives(*job, {{"radius", 1, 19, 1e-2}, {"weight", 1, 20, 1e-2}, {"x", 1, 1, 1e-4}});
}

TEST(RigidRefinement, ASimulatedSpherePatternRefinesBackItsRadius) {
  ScratchDir dir;
  const float scale = Simulate(
      dir, [](float s) { return ObjectControlText(2, 8.0f, "0", 0, s, "0", 1); }, 1.0f,
      "2.0 0.01 14.0");
  CapturedJob job;
  ASSERT_TRUE(testing::ReadControlText(
      dir, job, ObjectControlText(0, 7.0f, "21.00", 2, scale * 0.9f, "11.00", 30), false))
      << job.Console();
  ASSERT_TRUE(testing::RunsWithoutStop(*job, [&](Job& j) { RunCycles(j); })) << job.Console();
  EXPECT_NEAR(job->atoms[1].ATP[19], 8.0f, 3.0f * Sigma(*job, 2) + 1e-3f);
  EXPECT_LT(Sigma(*job, 2), 0.05f);
}

}  // namespace
}  // namespace corvinet
