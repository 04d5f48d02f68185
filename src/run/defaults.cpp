// Defaults of a run.
#include "run/defaults.h"

#include "records/run_data_reset.h"

namespace corvinet {

void ResetDefaults(Job& job) {
  ResetRunData(job);
}

}  // namespace corvinet
