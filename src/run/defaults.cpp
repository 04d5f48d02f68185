// Defaults of a run.
#include "run/defaults.h"

#include <memory>

namespace corvinet {

namespace {

// Rebuilds a record in place from its member defaults; the run records are too
// large for a temporary on the stack.
template <typename T>
void ResetRecord(T& record) {
  std::destroy_at(&record);
  std::construct_at(&record);
}

}  // namespace

void ResetDefaults(Job& job) {
  ResetRecord(static_cast<RunData&>(job));
  // Member defaults give zeros, blanks and the table of defaults; the
  // correction tables start as factors of 1.
  for (Pattern& pattern : job.patterns) {
    pattern.corrX.Fill(1.0f);
    pattern.corrY.Fill(1.0f);
  }
}

}  // namespace corvinet
