// Shared pieces of the data-file readers: stops, record and value reads of unit 4, point arrays.
#include "observations/powder_data_common.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "observations/finite_watch.h"
#include "records/dimension_limits.h"
#include "surface/console.h"

namespace corvinet {

DataFile::DataFile(Job& j, int pattern) : job(j), ip(pattern), INSTR(j.patterns[pattern].INSTR) {
  const Pattern& p = j.patterns[pattern];
  equalStep = p.equalStep;
  Temperature = p.Temperature;
  TSET = p.TSET;
  MONITOR = p.MONITOR;
}

void StopData(Job& job, std::string_view text) {
  StopBox(job, text);
}

void StopEndOfData(Job& job) {
  StopData(job, " End of file *.DAT ");
}

void StopBadData(Job& job) {
  StopData(job, "  Error on Intensity file, check your instr parameter! ");
}

void StopTooManyPoints(Job& job, long long count) {
  // A capacity wider than six columns is written whole after a blank.
  const char* format = job.dimensions.IDSZ > 99999 ? "(A,1X,I0,A,I0,A)" : "(A,I6,A,I0,A)";
  const std::string text = Fmt(format, " => Program can handle", job.dimensions.IDSZ, " points, ",
                               count, " points were input");
  WriteLine(job, Unit::Out, text);
  ConsoleLine(job, text);
  StopData(job, " Too many points ");
}

void StopNonFinite(DataFile& file, int line) {
  StopData(file.job, Fmt("(A,A,A,I0)", " => Non-finite value in data file: ",
                         file.job.files.units[Unit::Data].name, " at line ", line));
}

void RequireFinite(DataFile& file, float value, int line) {
  if (!std::isfinite(value)) StopNonFinite(file, line);
}

bool ReadsAsNonFinite(std::string_view text) {
  double value = 0.0;
  const ReadTarget target[] = {&value};
  if (ReadListLine(text, target) != ReadStatus::Ok) return false;
  return !std::isfinite(value) || std::fabs(value) > static_cast<double>(FLT_MAX);
}

bool ReadDataRecord(DataFile& file, std::string& record, std::size_t maxLength) {
  switch (ReadRecord(file.job.files.units[Unit::Data], record, maxLength)) {
    case RecordRead::Ok:
      ++file.lineNumber;
      return true;
    case RecordRead::End:
      return false;
    case RecordRead::Error:
      break;
  }
  StopBadData(file.job);
}

std::string RequireDataRecord(DataFile& file, std::size_t maxLength) {
  std::string record;
  if (!ReadDataRecord(file, record, maxLength)) StopEndOfData(file.job);
  return record;
}

namespace {

void CheckRead(DataFile& file, ReadStatus status) {
  if (status == ReadStatus::EndOfRecords) StopEndOfData(file.job);
  if (status == ReadStatus::BadValue) StopBadData(file.job);
}

// Reads values from `first` on with `read`, fetching further records of up to
// `maxLength` characters; every record's values are checked when it is done.
template <typename Read>
void ReadWatched(DataFile& file, std::span<const ReadTarget> targets, std::size_t maxLength,
                 bool list, Read read) {
  const std::string first = RequireDataRecord(file, maxLength);
  FiniteWatch watch(file, targets);
  bool nulls = list && FiniteWatch::MayHoldNulls(first);
  const NextRecord next = [&](std::string& record) {
    watch.RecordDone(nulls);
    if (!ReadDataRecord(file, record, maxLength)) return false;
    nulls = list && FiniteWatch::MayHoldNulls(record);
    return true;
  };
  const ReadStatus status = read(first, next);
  CheckRead(file, status);
  watch.RecordDone(nulls);
}

}  // namespace

void ReadDataFormatted(DataFile& file, const CompiledFormat& format,
                       std::span<const ReadTarget> targets) {
  ReadWatched(file, targets, kDataRecordLength, false,
              [&](std::string_view first, const NextRecord& next) {
                return ReadFormatted(format, first, next, targets);
              });
}

void ReadDataFormatted(DataFile& file, std::string_view format,
                       std::span<const ReadTarget> targets) {
  ReadDataFormatted(file, CompileFormat(format), targets);
}

void ReadDataList(DataFile& file, std::span<const ReadTarget> targets) {
  ReadWatched(file, targets, kDataListRecordLength, true,
              [&](std::string_view first, const NextRecord& next) {
                return ReadList(first, next, targets);
              });
}

std::vector<ReadTarget> Interleaved(std::initializer_list<std::vector<float>*> columns, int count) {
  std::vector<ReadTarget> targets;
  targets.reserve(columns.size() * static_cast<std::size_t>(std::max(count, 0)));
  for (int i = 0; i < count; ++i) {
    for (std::vector<float>* column : columns) {
      targets.emplace_back(&(*column)[static_cast<std::size_t>(i)]);
    }
  }
  return targets;
}

long long FilePointLimit(DataFile& file) {
  const int reduction = file.pattern().ISTEP > 1 ? file.pattern().ISTEP : 1;
  return static_cast<long long>(file.job.dimensions.IDSZ) * reduction;
}

void SetPointCount(DataFile& file, long long count) {
  if (count > FilePointLimit(file)) StopTooManyPoints(file.job, count);
  if (count < 1) StopBadData(file.job);
  const auto n = static_cast<std::size_t>(count);
  file.NPTS = static_cast<int>(count);
  file.X.assign(n, 0.0f);
  file.Ytotal.assign(n, 0.0f);
  file.Variance.assign(n, 0.0f);
  file.CountNorm.assign(n, 1.0f);
}

bool PointsInRange(float thmin, float step, float thmax, long long& count) {
  const float ratio = (thmax - thmin) / step + 1.5f;
  if (!std::isfinite(ratio)) return false;
  constexpr float kLimit = 1.0e18f;
  count = static_cast<long long>(std::clamp(ratio, -kLimit, kLimit));
  return true;
}

void FillEvenPositions(DataFile& file) {
  for (int i = 1; i <= file.NPTS; ++i) {
    file.X[static_cast<std::size_t>(i - 1)] = file.THMIN + static_cast<float>(i - 1) * file.STEP;
  }
}

void ReadRangeLine(DataFile& file) {
  float thmin = 0.0f;
  float step = 0.0f;
  float thmax = 0.0f;
  const ReadTarget range[] = {&thmin, &step, &thmax};
  ReadDataList(file, range);
  long long count = 0;
  if (!PointsInRange(thmin, step, thmax, count)) StopBadData(file.job);
  SetPointCount(file, count);
  file.THMIN = thmin;
  file.STEP = step;
  file.THMAX = thmax;
  FillEvenPositions(file);
}

void RangeFromPositions(DataFile& file) {
  const auto n = static_cast<std::size_t>(file.NPTS);
  file.THMIN = file.X[0];
  file.THMAX = file.X[n - 1];
  file.STEP = n > 1 ? (file.THMAX - file.THMIN) / static_cast<float>(n - 1) : 0.0f;
}

namespace {

// Counts at or below 0.00001 become 1, counter counts of 0 become 1, and
// Variance = Ytotal/CountNorm.
void VarianceOverCounters(DataFile& file) {
  for (std::size_t i = 0; i < static_cast<std::size_t>(file.NPTS); ++i) {
    float& y = file.Ytotal[i];
    float& n = file.CountNorm[i];
    if (y <= 0.00001f) y = 1.0f;
    if (n == 0.0f) n = 1.0f;
    file.Variance[i] = y / n;
  }
}

}  // namespace

void NormaliseByCounters(DataFile& file) {
  VarianceOverCounters(file);
  for (std::size_t i = 0; i < static_cast<std::size_t>(file.NPTS); ++i) {
    file.Ytotal[i] = file.Ytotal[i] / file.CountNorm[i];
  }
  file.Cnorm = MeanVarianceRatio(file.Ytotal, file.Variance);
}

void TakeCounterMeans(DataFile& file) {
  VarianceOverCounters(file);
  file.Cnorm = 1.0f;
}

float MeanVarianceRatio(const std::vector<float>& y, const std::vector<float>& variance) {
  if (y.empty()) return 1.0f;
  double sum = 0.0;
  for (std::size_t i = 0; i < y.size(); ++i) {
    sum += static_cast<double>(variance[i] / std::max(y[i], 0.001f));
  }
  return static_cast<float>(sum / static_cast<double>(y.size()));
}

void SquareSigmas(std::vector<float>& sigmaToVariance) {
  for (float& s : sigmaToVariance) s = s * s;
}

void ReportData(DataFile& file, std::string_view text) {
  WriteLine(file.job, Unit::Out, text);
}

}  // namespace corvinet
