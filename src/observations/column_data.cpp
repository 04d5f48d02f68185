// INSTR 14 (and 100*n + 14): x, y and sigma columns with comment lines, as Mantid writes .xye
// files.
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "format/text.h"
#include "observations/data_lines.h"
#include "observations/powder_data_common.h"
#include "records/data_format.h"

namespace corvinet {

namespace {

// The number N of a comment "Data for spectra :N" (or "spectrum"), -1 on other lines.
int SpectrumOfComment(std::string_view line) {
  const std::size_t at = line.find("Data for spectr");
  if (at == std::string_view::npos) return -1;
  const std::size_t colon = line.find(':', at);
  if (colon == std::string_view::npos) return -1;
  double value = 0.0;
  const std::vector<std::string_view> words = LineWords(line.substr(colon + 1));
  if (words.empty() || !WordNumber(words[0], value)) return -1;
  return static_cast<int>(value);
}

// The points read so far and how many the file held.
struct ColumnPoints {
  std::vector<float> x, y, variance;
  long long total = 0;
  int columns = 0;  // 2 or 3, fixed by the first point line
};

// One point line: x, y and sigma, or x and y with the variance from the counts.
void TakePointLine(DataFile& file, std::string_view line, ColumnPoints& points) {
  const std::size_t words = LineWords(line).size();
  if (points.columns == 0) points.columns = words >= 3 ? 3 : 2;
  double v[3] = {0.0, 0.0, 0.0};
  if (!LineNumbers(line, points.columns, v)) {
    StopMalformedLine(file, file.lineNumber, line,
                      points.columns == 3 ? "x, y, sigma expected" : "x, y expected");
  }
  ++points.total;
  if (points.total > FilePointLimit(file)) return;  // counted for the report, not kept
  points.x.push_back(static_cast<float>(v[0]));
  points.y.push_back(static_cast<float>(v[1]));
  const double variance = points.columns == 3 ? v[2] * v[2] : std::fmax(v[1], 0.0);
  points.variance.push_back(static_cast<float>(variance));
  RequireFinite(file, points.variance.back(), file.lineNumber);
}

// Reads the points of the chosen spectrum: lines whose first word is not a
// number are comments; a "Data for spectra :N" comment starts spectrum N.
ColumnPoints ReadChosenSpectrum(DataFile& file, int spectrum) {
  ColumnPoints points;
  bool inChosen = spectrum == 0;
  std::string line;
  while (ReadDataRecord(file, line, kDataListRecordLength)) {
    const int n = SpectrumOfComment(line);
    if (n >= 0) {
      if (!points.x.empty() || points.total > 0) break;  // the next spectrum begins
      inChosen = spectrum == 0 || n == spectrum;
      continue;
    }
    if (Trim(line).empty() || !StartsWithNumber(line)) continue;
    if (inChosen) TakePointLine(file, line, points);
  }
  return points;
}

}  // namespace

void ReadColumnData(DataFile& file) {
  const int spectrum = DataBankOf(file.INSTR);
  ColumnPoints points = ReadChosenSpectrum(file, spectrum);
  if (points.total == 0) {
    if (spectrum > 0) {
      StopData(file.job, Fmt("(A,I0,A)", " => Spectrum ", spectrum, " not found in the data file"));
    }
    StopEndOfData(file.job);
  }
  SetPointCount(file, points.total);
  file.X = std::move(points.x);
  file.Ytotal = std::move(points.y);
  file.Variance = std::move(points.variance);
  for (std::size_t i = 1; i < file.X.size(); ++i) {
    if (!(file.X[i] > file.X[i - 1])) {
      StopData(file.job, Fmt("(A,I0)", " => Positions must increase: point ", i + 1));
    }
  }
  RangeFromPositions(file);
  file.equalStep = 0;
  file.Cnorm = MeanVarianceRatio(file.Ytotal, file.Variance);
  if (spectrum > 0) ReportData(file, Fmt("(A,I4)", " -> Spectrum read: ", spectrum));
  ReportData(file, points.columns == 3 ? " -> Columns: x, y, sigma"
                                       : " -> Columns: x, y; variances from the counts");
}

}  // namespace corvinet
