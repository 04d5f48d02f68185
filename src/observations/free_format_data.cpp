// INSTR 0: a range line (or a GSAS-style "BANK" line) followed by the intensities in free format.
#include <string>

#include "observations/powder_data_common.h"

namespace corvinet {

namespace {

constexpr int kRangeTries = 7;
constexpr int kFewestPoints = 4;

// The range of a "BANK" line: a pair of integers from column 5 on (the bank
// and the point count), THMIN and STEP from column 43 on.
bool DecodeBankLine(const std::string& line, DataFile& file, long long& count) {
  int bank = 0;
  int points = 0;
  float thmin = 0.0f;
  float step = 0.0f;
  const ReadTarget integers[] = {&bank, &points};
  if (ReadListLine(std::string_view(line).substr(4), integers) != ReadStatus::Ok) return false;
  if (line.size() <= 42) return false;
  const ReadTarget reals[] = {&thmin, &step};
  if (ReadListLine(std::string_view(line).substr(42), reals) != ReadStatus::Ok) return false;
  RequireFinite(file, thmin, file.lineNumber);
  RequireFinite(file, step, file.lineNumber);
  file.firstInteger = bank;
  file.THMIN = thmin;
  file.STEP = step;
  file.THMAX = thmin + static_cast<float>(points - 1) * step;
  count = points;
  return true;
}

// THMIN, STEP, THMAX of a plain range line.
bool DecodeRangeLine(const std::string& line, DataFile& file, long long& count) {
  float thmin = 0.0f;
  float step = 0.0f;
  float thmax = 0.0f;
  const ReadTarget reals[] = {&thmin, &step, &thmax};
  if (ReadListLine(line, reals) != ReadStatus::Ok) return false;
  if (!PointsInRange(thmin, step, thmax, count)) return false;
  file.THMIN = thmin;
  file.STEP = step;
  file.THMAX = thmax;
  return true;
}

}  // namespace

void ReadFreeFormatData(DataFile& file) {
  long long count = 0;
  bool found = false;
  for (int attempt = 1; attempt <= kRangeTries && !found; ++attempt) {
    const std::string line = RequireDataRecord(file);
    const bool decoded = line.starts_with("BANK") ? DecodeBankLine(line, file, count)
                                                  : DecodeRangeLine(line, file, count);
    found = decoded && count >= kFewestPoints;
  }
  if (!found) StopData(file.job, " Error on Intensity file, check your instr parameter! ");
  SetPointCount(file, count);
  FillEvenPositions(file);
  ReadDataList(file, Interleaved({&file.Ytotal}, file.NPTS));
  file.Variance = file.Ytotal;
}

}  // namespace corvinet
