// The apparent size and strain of each reflection of a phase with a size or strain model, and
// their averages.
#include "results/apparent_size_strain.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "crystal/metric.h"
#include "format/fortran_format.h"
#include "model/size_strain.h"
#include "records/profile_slots.h"
#include "records/reflection.h"

namespace corvinet {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kRadian = kPi / 180.0;
// Integral breadth over FWHM: Lorentzian pi/2, Gaussian sqrt(pi/(4 ln 2)).
constexpr double kLorentzBreadth = kPi / 2.0;
const double kGaussBreadth = std::sqrt(kPi / (4.0 * std::log(2.0)));

// Running mean and spread.
struct Spread {
  int n = 0;
  double sum = 0.0;
  double sum2 = 0.0;
  void Add(double v) {
    ++n;
    sum += v;
    sum2 += v * v;
  }
  double Mean() const { return n > 0 ? sum / n : 0.0; }
  double Deviation() const {
    if (n < 2) return 0.0;
    const double m = Mean();
    return std::sqrt(std::max(0.0, (sum2 - n * m * m) / (n - 1)));
  }
};

std::array<double, 3> WorkingVector(const Phase& ph, const Reflection& r) {
  std::array<double, 3> h = {static_cast<double>(KeyH(r.key)), static_cast<double>(KeyK(r.key)),
                             static_cast<double>(KeyL(r.key))};
  const int n = std::abs(r.satelliteIndex);
  if (n > 0 && n <= ph.Nvk) {
    const double sign = r.satelliteIndex > 0 ? 1.0 : -1.0;
    for (int i = 0; i < 3; ++i) h[static_cast<std::size_t>(i)] += sign * ph.vectors[n].KVEC[i + 1];
  }
  return h;
}

}  // namespace

ApparentBroadening ApparentOf(double deltaU, double deltaY, double lambda, double tanTheta) {
  ApparentBroadening a;
  const double cosTheta = 1.0 / std::sqrt(1.0 + tanTheta * tanTheta);
  // Below these the model leaves the reflection unbroadened (a platelet seen
  // edge on, say), and its apparent size or strain is not defined.
  if (deltaU > 1.0e-12) {
    a.strainWidth = std::sqrt(deltaU) * tanTheta;
    a.strain = kGaussBreadth * a.strainWidth * kRadian / (4.0 * tanTheta);
  }
  if (deltaY > 1.0e-6) {
    a.sizeWidth = deltaY / cosTheta;
    a.size = lambda / (kLorentzBreadth * a.sizeWidth * kRadian * cosTheta);
  }
  return a;
}

ApparentBroadening ApparentOfEnergy(double deltaU, double deltaY, double dtt1, double energy) {
  ApparentBroadening a;
  if (deltaU > 1.0e-12) {
    a.strainWidth = std::sqrt(deltaU) * energy;
    a.strain = kGaussBreadth * std::sqrt(deltaU) / 2.0;
  }
  if (deltaY > 1.0e-6) {
    a.sizeWidth = deltaY;
    a.size = dtt1 / (kLorentzBreadth * deltaY);
  }
  return a;
}

bool HasMicrostructureModel(const Phase& ph, const PhasePattern& c) {
  return ph.Str != 0 || c.StrainModel != 0 || c.SizeModel != 0;
}

std::vector<std::string> ApparentSizeStrainLines(const Job& job, int ip, int f) {
  const Phase& ph = job.phases[f];
  const PhasePattern& c = ph.pat[ip];
  const Pattern& p = job.patterns[ip];
  std::vector<std::string> lines;
  const bool energy = p.IXUNIT == AbscissaUnit::kEnergy;
  if (!HasMicrostructureModel(ph, c) || !(p.IXUNIT == AbscissaUnit::kTwoTheta || energy)) {
    return lines;
  }
  const BroadeningModel model = BroadeningModelOf(ph, c, p, 1);
  Table1<float, 6> coefficients;
  for (int i = 1; i <= 6; ++i) coefficients[i] = c.PAR[ProfileSlot::FirstCell - 1 + i];
  const double lambda = p.LAMBDA[1];
  lines.push_back(
      Fmt("(A,I2,A,I2)", " => Apparent size and strain of phase ", f, " in pattern ", ip));
  lines.push_back(
      "    (integral breadths: size = lambda/(beta cos(theta)), strain = beta/(4 tan(theta)))");
  lines.push_back("    (0 where the models leave the reflection unbroadened)");
  lines.push_back(energy ? "    h   k   l    Energy  Hstrain    Hsize    Size(A)  Strain(1e-4)"
                         : "    h   k   l    2theta  Hstrain    Hsize    Size(A)  Strain(1e-4)");
  Spread size, strain;
  const ReflectionTable& t = p.reflections;
  for (int k = 1; k <= t.total; ++k) {
    const Reflection& r = t.slot[k];
    if (KeyPhase(r.key) != f || KeyWavelength(r.key) != 1) continue;
    BroadeningReflection in;
    in.h = WorkingVector(ph, r);
    const double q = InverseDSquared(coefficients, in.h);
    const double s2 = 0.25 * q * lambda * lambda;
    if (energy ? !(q > 0.0) : !(s2 > 0.0 && s2 < 1.0)) continue;
    // The energy stands where an angle pattern has tan(theta).
    in.tanTheta = energy ? p.GLB[8] * std::sqrt(q) : std::sqrt(s2 / (1.0 - s2));
    in.satellite = r.satelliteIndex != 0;
    in.fileCoefficient = r.fileValue1;
    const BroadeningTerms b = SizeStrainBroadening(model, in);
    const ApparentBroadening a = energy
                                     ? ApparentOfEnergy(b.deltaU, b.deltaY, p.GLB[8], in.tanTheta)
                                     : ApparentOf(b.deltaU, b.deltaY, lambda, in.tanTheta);
    const double where = energy ? in.tanTheta : 2.0 * std::atan(in.tanTheta) / kRadian;
    if (a.size > 0.0) size.Add(a.size);
    if (a.strain > 0.0) strain.Add(a.strain * 1.0e4);
    lines.push_back(Fmt("(1X,3I4,F10.3,2F9.4,F11.1,F14.2)", KeyH(r.key), KeyK(r.key), KeyL(r.key),
                        where, a.strainWidth, a.sizeWidth, a.size, a.strain * 1.0e4));
  }
  lines.push_back(Fmt("(A,F11.1,A,F11.1,A,I5,A)",
                      " => Average apparent size (A):     ", size.Mean(),
                      "  Standard deviation:", size.Deviation(), "  (", size.n, " reflections)"));
  lines.push_back(
      Fmt("(A,F11.2,A,F11.2,A,I5,A)", " => Average apparent strain (1e-4):", strain.Mean(),
          "  Standard deviation:", strain.Deviation(), "  (", strain.n, " reflections)"));
  lines.push_back("    The standard deviations measure the anisotropy, not the precision.");
  return lines;
}

}  // namespace corvinet
