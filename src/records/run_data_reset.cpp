// The rebuild of a run's data from its member defaults, before each run.
#include "records/run_data_reset.h"

#include <memory>

namespace corvinet {

void ResetRunData(RunData& data) {
  // The run records are too large for a temporary on the stack: rebuilt in place.
  std::destroy_at(&data);
  std::construct_at(&data);
  // Member defaults give zeros, blanks and the table of defaults; the
  // correction tables start as factors of 1.
  for (Pattern& pattern : data.patterns) {
    pattern.corrX.Fill(1.0f);
    pattern.corrY.Fill(1.0f);
  }
}

}  // namespace corvinet
