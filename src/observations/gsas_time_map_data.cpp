// TIME_MAP blocks of a GSAS file and the STD bank whose channel times they give.
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "format/text.h"
#include "observations/data_lines.h"
#include "observations/gsas_bank.h"

namespace corvinet {

namespace {

constexpr std::size_t kMapField = 8;  // the map integers stand in I8 fields, ten to a record

// The integers of a map record, field by field; false when a field is no integer.
bool MapIntegers(std::string_view record, std::vector<long long>& out, std::size_t wanted) {
  for (std::size_t at = 0; at < record.size() && out.size() < wanted; at += kMapField) {
    const std::string field(Trim(record.substr(at, kMapField)));
    if (field.empty()) continue;
    char* stop = nullptr;
    const long long value = std::strtoll(field.c_str(), &stop, 10);
    if (*stop != '\0') return false;
    out.push_back(value);
  }
  return true;
}

// The map chosen by the bank's first coefficient; with that number absent and
// exactly one map in the file, that one, with a report line.
const TimeMap& ChosenMap(DataFile& file, const GsasBank& bank) {
  const int number = static_cast<int>(bank.line.BCOEF[0]);
  for (const TimeMap& map : bank.maps) {
    if (map.number == number) return map;
  }
  if (bank.maps.size() == 1) {
    ReportData(file, Fmt("(A,I0,A,I0)", " => TIME_MAP ", number, " absent: the only map used is ",
                         bank.maps[0].number));
    return bank.maps[0];
  }
  StopData(file.job,
           Fmt("(A,I0,A)", " => Error in the input GSAS-file: TIME_MAP ", number, " not found!"));
}

}  // namespace

TimeMap ReadTimeMap(DataFile& file, const std::string& header) {
  // TIME_MAP<n> NVAL NREC TIME_MAP CLCKWDT [free text]; n may touch the keyword.
  const int headerLine = file.lineNumber;
  const std::vector<std::string_view> words = LineWords(std::string_view(header).substr(8));
  TimeMap map;
  double number = 0.0, nval = 0.0, nrec = 0.0, clock = 0.0;
  if (words.size() < 5 || !WordNumber(words[0], number) || !WordNumber(words[1], nval) ||
      !WordNumber(words[2], nrec) || words[3] != "TIME_MAP" || !WordNumber(words[4], clock) ||
      nval < 4 || clock <= 0.0) {
    StopMalformedLine(file, headerLine, header, "TIME_MAPn NVAL NREC TIME_MAP CLCKWDT expected");
  }
  map.number = static_cast<int>(number);
  map.CLCKWDT = clock;
  std::vector<long long> values;
  const auto wanted = static_cast<std::size_t>(nval);
  for (int r = 0; r < static_cast<int>(nrec); ++r) {
    const std::string record = RequireDataRecord(file, kDataListRecordLength);
    if (!MapIntegers(record, values, wanted)) {
      StopMalformedLine(file, file.lineNumber, record, "integers in I8 fields expected");
    }
  }
  if (values.size() != wanted || (wanted - 1) % 3 != 0) {
    StopMalformedLine(file, headerLine, header, "NVAL does not match the map records");
  }
  for (std::size_t k = 0; k + 1 < wanted; k += 3) {
    map.segments.push_back({values[k], values[k + 1], values[k + 2]});
  }
  map.TMAX = values.back();
  return map;
}

void TimeMapChannels(const TimeMap& map, int count, std::vector<double>& start,
                     std::vector<double>& width) {
  start.assign(static_cast<std::size_t>(count), 0.0);
  width.assign(static_cast<std::size_t>(count), 0.0);
  const double microseconds = map.CLCKWDT / 1000.0;
  std::size_t k = 0;
  for (int j = 1; j <= count; ++j) {
    while (k + 1 < map.segments.size() && j >= map.segments[k + 1].C) ++k;
    const TimeMapSegment& s = map.segments[k];
    start[static_cast<std::size_t>(j - 1)] =
        static_cast<double>(s.T + s.W * (j - s.C)) * microseconds;
    width[static_cast<std::size_t>(j - 1)] = static_cast<double>(s.W) * microseconds;
  }
}

void ReadTimeMapBank(DataFile& file, const GsasBank& bank) {
  const TimeMap& map = ChosenMap(file, bank);
  const int n = bank.line.NCHAN;
  SetPointCount(file, n);
  ReadDataFormatted(file, "(10(I2,F6.0))", Interleaved({&file.CountNorm, &file.Ytotal}, n));
  std::vector<double> start, width;
  TimeMapChannels(map, n, start, width);
  // A point stands at the centre of its channel; counts (means over their
  // counters) become counts per microsecond of the channel's width.
  for (std::size_t i = 0; i < static_cast<std::size_t>(n); ++i) {
    float& counters = file.CountNorm[i];
    if (counters == 0.0f) counters = 1.0f;
    const double w = width[i] > 0.0 ? width[i] : 1.0;
    file.X[i] = static_cast<float>(start[i] + 0.5 * width[i]);
    const double y = file.Ytotal[i];
    file.Ytotal[i] = static_cast<float>(y / w);
    file.Variance[i] = static_cast<float>(y / counters / (w * w));
    counters = 1.0f;  // the counters are in the variance now
  }
  ReportData(file, Fmt("(A,I0,A,F8.3,A)", " -> TIME_MAP ", map.number, ", clock ", map.CLCKWDT,
                       " ns: points at channel centres, counts per microsecond"));
  RangeFromPositions(file);
  file.equalStep = 0;
  file.Cnorm = MeanVarianceRatio(file.Ytotal, file.Variance);
}

}  // namespace corvinet
