// FiniteWatch: checks the real values of a read over several records, naming the line of a bad one.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "format/fortran_format.h"
#include "observations/powder_data_common.h"

namespace corvinet {

// Watches the real targets of one formatted or list read. The targets are
// filled in order; those not yet filled hold a marker (a NaN with a payload
// the number reader never produces), so when a record is done the values it
// gave are the ones from the last check on up to the first marker. A value
// that is not finite stops the run with the line of that record. Targets left
// unfilled by the read (null values and '/' of a list) get their value back.
// The owner calls RecordDone for every record the read took, the last one too.
class FiniteWatch {
 public:
  FiniteWatch(DataFile& file, std::span<const ReadTarget> targets);
  // Targets still unfilled get their value from before the read back.
  ~FiniteWatch();
  FiniteWatch(const FiniteWatch&) = delete;
  FiniteWatch& operator=(const FiniteWatch&) = delete;

  // The record numbered file.lineNumber is done. `mayHoldNulls`: the record
  // may have skipped targets (a list record with ',' or '*'), so the values
  // past a marker are looked for too.
  void RecordDone(bool mayHoldNulls);

  // True when a list record can leave targets unfilled before later ones.
  static bool MayHoldNulls(std::string_view record);

 private:
  DataFile& file_;
  std::vector<float*> reals_;  // the float targets, in reading order
  std::vector<float> before_;  // their values before the read
  std::size_t next_ = 0;       // the first target not yet checked
};

}  // namespace corvinet
