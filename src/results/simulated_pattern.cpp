// The simulated pattern of a calculation job, optionally with Poisson noise, as integer counts.
#include "results/simulated_pattern.h"

#include <cmath>
#include <cstdlib>
#include <vector>

#include "format/fortran_format.h"
#include "format/text.h"
#include "io/file_set.h"
#include "observations/poisson.h"
#include "results/plot_geometry.h"
#include "surface/console.h"

namespace corvinet {

int RoundedCount(float y) {
  return static_cast<int>(std::trunc(y + (y < 0.0f ? -0.5f : 0.5f)));
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
  std::vector<FormatValue> counts;
  counts.reserve(static_cast<std::size_t>(p.NPTS));
  for (int i = 1; i <= p.NPTS; ++i) counts.emplace_back(RoundedCount(p.Ytotal[i]));
  WriteValues(job, Unit::Simulated, "(10I8)", counts);
  CloseUnit(job.files.units[Unit::Simulated]);
}

}  // namespace corvinet
