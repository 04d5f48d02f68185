// The simulated pattern of a calculation job, optionally with Poisson noise, as integer counts.
#include "results/simulated_pattern.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "format/fortran_format.h"
#include "format/text.h"
#include "io/file_set.h"
#include "observations/poisson.h"
#include "results/plot_geometry.h"
#include "surface/console.h"

namespace corvinet {

namespace {

// Counts beyond this are held at it: a 64-bit integer takes every such value.
constexpr double kLargestCount = 1.0e18;

// The narrowest field of at least eight characters in which every count keeps
// a blank before it, so that the file reads back in free format.
int FieldWidthOf(const std::vector<long long>& counts) {
  int width = 8;
  for (const long long c : counts) {
    const int digits = static_cast<int>(std::to_string(c).size());
    width = std::max(width, digits + 1);
  }
  return width;
}

}  // namespace

long long RoundedCount(float y) {
  const double v = std::clamp(static_cast<double>(y), -kLargestCount, kLargestCount);
  return static_cast<long long>(std::trunc(v + (v < 0.0 ? -0.5 : 0.5)));
}

void WriteSimulatedPattern(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  if (job.run.IDUM == 0 || !IsCalculatedPattern(p)) return;
  OpenFiles(job, FileKind::kSimulated, ip, 0);
  // A negative IDUM asks for counts drawn around the calculated pattern.
  if (job.run.IDUM < 0) {
    for (int i = 1; i <= p.NPTS; ++i) p.Ytotal[i] = PoissonDeviate(job, p.Ytotal[i]);
  }
  WriteLine(job, Unit::Simulated,
            Fmt("(3F12.4,2X,A)", p.THMIN, p.STEP, p.THMAX, TrimRight(job.run.Title)));
  std::vector<long long> rounded;
  rounded.reserve(static_cast<std::size_t>(p.NPTS));
  for (int i = 1; i <= p.NPTS; ++i) rounded.push_back(RoundedCount(p.Ytotal[i]));
  std::vector<FormatValue> counts(rounded.begin(), rounded.end());
  WriteValues(job, Unit::Simulated, Fmt("(A,I0,A)", "(10I", FieldWidthOf(rounded), ")"), counts);
  CloseUnit(job.files.units[Unit::Simulated]);
}

}  // namespace corvinet
