// The values of the end lines that the final report reads from the still open control file.
#include "control/run_block.h"
#include "results/final_report.h"
#include "run/fortran_format.h"

namespace corvinet {

namespace {

template <typename T>
EndLineValues ReadPair(Job& job, T fallback) {
  T first = fallback;
  T second = fallback;
  std::string line;
  if (ReadNonCommentRecord(job, line)) {
    const ReadTarget targets[] = {ReadTarget(&first), ReadTarget(&second)};
    if (ReadListLine(line, targets) != ReadStatus::Ok) first = second = fallback;
  }
  return {static_cast<float>(first), static_cast<float>(second)};
}

}  // namespace

EndLineValues ReadEndLineReals(Job& job, float fallback) {
  return ReadPair<float>(job, fallback);
}

EndLineValues ReadEndLineIntegers(Job& job) {
  return ReadPair<int>(job, 0);
}

}  // namespace corvinet
