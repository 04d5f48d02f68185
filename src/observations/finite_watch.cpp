// FiniteWatch: checks the real values of a read over several records, naming the line of a bad one.
#include "observations/finite_watch.h"

#include <bit>
#include <cmath>
#include <cstdint>

namespace corvinet {

namespace {

// A quiet NaN with a payload; the number reader stores only the plain quiet NaN.
constexpr std::uint32_t kMarkerBits = 0x7fe5a5a5u;

bool IsMarker(const float* value) {
  return std::bit_cast<std::uint32_t>(*value) == kMarkerBits;
}

}  // namespace

FiniteWatch::FiniteWatch(DataFile& file, std::span<const ReadTarget> targets) : file_(file) {
  for (const ReadTarget& t : targets) {
    if (t.kind != ReadTarget::Kind::Float) continue;
    auto* value = static_cast<float*>(t.target);
    reals_.push_back(value);
    before_.push_back(*value);
    *value = std::bit_cast<float>(kMarkerBits);
  }
}

bool FiniteWatch::MayHoldNulls(std::string_view record) {
  return record.find_first_of(",*") != std::string_view::npos;
}

void FiniteWatch::RecordDone(bool mayHoldNulls) {
  std::size_t end = next_;
  while (end < reals_.size() && !IsMarker(reals_[end])) ++end;
  if (mayHoldNulls) {
    // Values may follow skipped targets: the filled ones end at the last unmarked target.
    for (std::size_t k = reals_.size(); k > end; --k) {
      if (!IsMarker(reals_[k - 1])) {
        end = k;
        break;
      }
    }
  }
  for (; next_ < end; ++next_) {
    if (!IsMarker(reals_[next_])) RequireFinite(file_, *reals_[next_], file_.lineNumber);
  }
}

FiniteWatch::~FiniteWatch() {
  for (std::size_t k = 0; k < reals_.size(); ++k) {
    if (IsMarker(reals_[k])) *reals_[k] = before_[k];
  }
}

}  // namespace corvinet
