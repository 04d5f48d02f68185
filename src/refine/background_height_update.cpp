// The update of the refined point heights of an interpolated background and their report lines.
#include "refine/background_height_update.h"

#include "format/fortran_format.h"
#include "observations/background.h"
#include "refine/apply_shift.h"

namespace corvinet {

namespace {

bool HasPointHeights(const Pattern& p) {
  const BackgroundModel model = BackgroundModelOf(p);
  return model == BackgroundModel::Linear || model == BackgroundModel::Spline;
}

}  // namespace

std::vector<ShownHeight> ShiftBackgroundHeights(Job& job, int ip) {
  std::vector<ShownHeight> heights;
  Pattern& p = job.patterns[ip];
  if (!HasPointHeights(p)) return heights;
  const float relaxation = RelaxationFactor(job, Relaxation::kGlobal);
  for (int k = 1; k <= p.NBCKGD; ++k) {
    const Codeword& word = p.backPointWord[k];
    if (word.parameterNumber == 0) continue;
    const ValueShift r = ShiftValue(job, p.BackInt[k], word, relaxation);
    heights.push_back({k, {p.BackInt[k], r.shift, r.sigma}});
  }
  return heights;
}

std::string BackgroundHeightName(int point) {
  return Fmt("(A,I0)", "BckPt", point);
}

}  // namespace corvinet
