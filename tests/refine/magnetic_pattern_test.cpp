// Magnetic phases in the calculated pattern: derivatives of moments, magnetic phase and
// propagation-vector components against central differences of the pattern, and the nuclear and
// magnetic parts of a |Jbt| 10 reflection.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "refine/magnetic_case.h"
#include "refine/point_probe.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

// A job read from `text` on flat data over 10 to 150 degrees.
struct MagneticRun {
  ScratchDir dir;
  CapturedJob job;
  std::unique_ptr<CycleWork> work = std::make_unique<CycleWork>();
  double narrowest = 1.0e30;  // the smallest FWHM of the reflections
  explicit MagneticRun(const std::string& text) {
    std::string data = "10.0 0.05 150.0\n";
    for (int i = 1; i <= 2801; ++i) data += i % 10 == 0 ? "100\n" : "100 ";
    dir.Write("x.dat", data + "\n");
    EXPECT_TRUE(testing::ReadControlText(dir, job, text, false)) << job.Console();
  }
  double At(int i, std::vector<float>* derivative) {
    return testing::PointWithDerivatives(*job, *work, i, derivative);
  }
  // Points on the flanks and tops of the first `count` reflections that have intensity.
  std::vector<int> PointsOnPeaks(int count) {
    std::vector<float> unused;
    At(1, &unused);
    const Pattern& p = job->patterns[1];
    std::vector<int> points;
    for (int k = 1; k <= p.reflections.total; ++k) {
      narrowest = std::min(narrowest, static_cast<double>(p.reflections.slot[k].Fwhm));
    }
    for (int k = 1; k <= p.reflections.total && count > 0; ++k) {
      const Reflection& r = p.reflections.slot[k];
      if (!(r.F2 > 1e-3f) || r.position < 15.0f || r.position > 140.0f) continue;
      const int centre = static_cast<int>((r.position - 10.0f) / 0.05f + 1.5f);
      for (int d : {-4, -1, 0, 2, 5}) points.push_back(centre + d);
      --count;
    }
    return points;
  }
};

struct Parameter {
  std::string name;
  float* value;
  Codeword* code;
  double step;
  bool movesPeak;  // propagation-vector components move the peak as well
};

// Each parameter its own number; every derivative of the point rows against
// a central difference of the calculated points.
void CheckDerivatives(MagneticRun& run, std::vector<Parameter> list, int peaks) {
  Job& j = *run.job;
  j.run.MAXS = static_cast<int>(list.size());
  for (std::size_t n = 0; n < list.size(); ++n) {
    *list[n].code = Codeword{static_cast<int>(n) + 1, 1.0f};
  }
  int checked = 0;
  for (int i : run.PointsOnPeaks(peaks)) {
    std::vector<float> analytic;
    run.At(i, &analytic);
    for (std::size_t n = 0; n < list.size(); ++n) {
      float& v = *list[n].value;
      const float saved = v;
      const double h = list[n].step;
      v = static_cast<float>(saved + h);
      const double up = run.At(i, nullptr);
      v = static_cast<float>(saved - h);
      const double down = run.At(i, nullptr);
      v = saved;
      const double numeric = (up - down) / (2.0 * h);
      // The rows of a vector component leave out how the widths and the
      // Lorentz factor move with the peak, as for the cell.
      const double relative = list[n].movesPeak ? 1.5e-2 : 2e-3;
      const double unit =
          std::numeric_limits<float>::epsilon() * std::max(std::fabs(up), std::fabs(down));
      // A peak that moves is placed to the last bit of a 32-bit angle: on a
      // flank of slope y/H that rounding is a change of y of its own.
      const Pattern& p = j.patterns[1];
      const double placing = list[n].movesPeak ? std::numeric_limits<float>::epsilon() * p.X[i] *
                                                     std::fabs(up) / run.narrowest
                                               : 0.0;
      EXPECT_NEAR(analytic[n], numeric,
                  relative * std::fabs(numeric) + (8.0 * unit + 4.0 * placing) / (2.0 * h))
          << list[n].name << " at point " << i;
      checked += std::fabs(numeric) > 1e-2 ? 1 : 0;
    }
  }
  EXPECT_GT(checked, static_cast<int>(list.size()));
}

TEST(MagneticPattern, HelixMomentPhaseAndVectorDerivativesFollowFiniteDifferences) {
  for (const int Jbt : {1, -1}) {
    testing::HelixCase c;
    c.Jbt = Jbt;
    if (Jbt == -1) {
      c.moments = "2.0 0.0 80.0";          // Rm Rphi Rtheta
      c.imaginary = "1.8 95.0 85.0 0.05";  // Im Iphi Itheta MagPh
    } else {
      c.moments = "2.0 0.3 -0.2";
      c.imaginary = "0.1 1.8 0.2 0.05";
    }
    MagneticRun run(c.Text());
    Job& j = *run.job;
    AtomSite& co = j.atoms[1];
    PropagationVector& k = j.phases[1].vectors[1];
    std::vector<Parameter> list = {
        {"Scale", &j.phases[1].pat[1].PAR[1], &j.phases[1].pat[1].PAC[1], 1.0, false},
        {"x", &co.ATP[1], &co.ATC[1], 1e-4, false},
        {"Biso", &co.ATP[4], &co.ATC[4], 1e-2, false},
        {"MagPh", &co.ATP[12], &co.ATC[12], 1e-4, false},
        {"k1", &k.KVEC[1], &k.KCODE[1], 3e-4, true},
        {"k2", &k.KVEC[2], &k.KCODE[2], 3e-4, true},
        {"k3", &k.KVEC[3], &k.KCODE[3], 3e-4, true}};
    for (int s = 6; s <= 11; ++s) {
      // Angles in degrees take a step of their own size.
      const bool angle = Jbt == -1 && s != 6 && s != 9;
      list.push_back(
          {"moment slot " + std::to_string(s), &co.ATP[s], &co.ATC[s], angle ? 1e-2 : 1e-3, false});
    }
    CheckDerivatives(run, list, 6);
  }
}

TEST(MagneticPattern, NuclearAndMagneticMomentDerivativesFollowFiniteDifferences) {
  testing::LaMnO3Case c;
  c.job = 1;
  MagneticRun run(c.Text());
  Job& j = *run.job;
  AtomSite& mn = j.atoms[2];
  CheckDerivatives(run,
                   {{"Scale", &j.phases[1].pat[1].PAR[1], &j.phases[1].pat[1].PAC[1], 1e-3, false},
                    {"Mn Rx", &mn.ATP[6], &mn.ATC[6], 1e-3, false},
                    {"Mn Ry", &mn.ATP[7], &mn.ATC[7], 1e-3, false},
                    {"Mn Biso", &mn.ATP[4], &mn.ATC[4], 1e-2, false},
                    {"La x", &j.atoms[1].ATP[1], &j.atoms[1].ATC[1], 1e-4, false}},
                   8);
}

// F2 of reflection (h, k, l) of the LaMnO3 phase with moment m on Mn.
float LaMnO3F2(int h, int k, int l, float moment) {
  testing::LaMnO3Case c;
  c.moment = moment;
  MagneticRun run(c.Text());
  std::vector<float> unused;
  run.At(1, &unused);
  const ReflectionTable& t = run.job->patterns[1].reflections;
  for (int n = 1; n <= t.total; ++n) {
    const Reflection& r = t.slot[n];
    if (KeyH(r.key) == h && KeyK(r.key) == k && KeyL(r.key) == l) return r.F2;
  }
  ADD_FAILURE() << "no reflection " << h << k << l;
  return 0.0f;
}

// The nuclear and magnetic parts add without an interference term: F2 is
// even in the moment, and the magnetic part grows as its square.
TEST(MagneticPattern, NuclearAndMagneticIntensitiesAddWithoutInterference) {
  for (const auto& hkl : {std::array<int, 3>{1, 1, 1}, {0, 1, 2}, {2, 1, 1}}) {
    const float nuclear = LaMnO3F2(hkl[0], hkl[1], hkl[2], 0.0f);
    const float up = LaMnO3F2(hkl[0], hkl[1], hkl[2], 3.0f);
    const float down = LaMnO3F2(hkl[0], hkl[1], hkl[2], -3.0f);
    const float half = LaMnO3F2(hkl[0], hkl[1], hkl[2], 1.5f);
    EXPECT_NEAR(up, down, 1e-5f * up) << hkl[0] << hkl[1] << hkl[2];
    EXPECT_NEAR(up - nuclear, 4.0f * (half - nuclear), 1e-4f * up) << hkl[0] << hkl[1] << hkl[2];
  }
  // (0 1 0) is absent for the nuclear structure of P n m a: it is magnetic alone.
  EXPECT_EQ(LaMnO3F2(0, 1, 0, 0.0f), 0.0f);
  EXPECT_GT(LaMnO3F2(0, 1, 0, 3.7f), 1.0f);
  // (1 1 1) and (0 1 2) have both parts.
  EXPECT_GT(LaMnO3F2(1, 1, 1, 0.0f), 0.1f);
  EXPECT_GT(LaMnO3F2(1, 1, 1, 3.7f) - LaMnO3F2(1, 1, 1, 0.0f), 0.1f);
}

// The moments of a nuclear and magnetic phase scatter as those of a magnetic
// phase: on the purely magnetic (0 1 0) and (0 3 0) of LaMnO3 its F2, times
// the 4 of the implied inversion, is the whole-cell sum of
// tests/data/model/magnetic_reference.py, with no factor of its own.
TEST(MagneticPattern, NuclearAndMagneticPhaseHasTheMomentsOfAMagneticPhase) {
  EXPECT_NEAR(4.0 * LaMnO3F2(0, 1, 0, 3.7f), 14.6725834, 1e-4 * 14.6725834);
  EXPECT_NEAR(4.0 * LaMnO3F2(0, 3, 0, 3.7f), 7.89231802, 1e-4 * 7.89231802);
}

}  // namespace
}  // namespace corvinet
