// INSTR 10: X,Y,sigma lines, an optional "XYDATA" heading, interpolation to a constant step.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "format/text.h"
#include "io/field_reader.h"
#include "observations/data_lines.h"
#include "observations/powder_data_common.h"
#include "observations/spline.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr int kHeadingLines = 6;

// What the heading of the file asks for.
struct XYHeading {
  float xFactor = 1.0f;
  float yFactor = 1.0f;
  int INTERPOL = 0;  // 0 as read, 1 interpolate to a constant step, 2 constant step listed
  float constantStep = 0.0f;
};

// An "INTER" line: a word, the X and Y factors, INTERPOL and the constant step.
void ReadInterLine(DataFile& file, std::string line, XYHeading& heading) {
  std::string mask = "5ffif";
  std::string format;
  int position = 0;
  int error = 0;
  FindFMT(file.job, 0, line, mask, format, position, file.lineNumber, error);
  std::string word;
  const ReadTarget values[] = {&word, &heading.xFactor, &heading.yFactor, &heading.INTERPOL,
                               &heading.constantStep};
  if (error != 0 || ReadFormattedLine(format, line, values) != ReadStatus::Ok) {
    StopBadData(file.job);
  }
  if (heading.xFactor <= 0.0f) heading.xFactor = 1.0f;
  if (heading.yFactor <= 0.0f) heading.yFactor = 1.0f;
  ReportData(file,
             Fmt("(A,F12.5)", " -> Input X-values multiplied internally by ", heading.xFactor));
  ReportData(file, Fmt("(A,F12.5)", " -> Input Y & Sigma-values multiplied internally by ",
                       heading.yFactor));
}

// A "TEMP" line: the number after the first word is the sample temperature.
void ReadTemperatureLine(DataFile& file, std::string_view line) {
  const std::size_t blank = line.find_first_of(" \t");
  if (blank == std::string_view::npos) return;
  float temperature = 0.0f;
  const ReadTarget value[] = {&temperature};
  if (ReadListLine(line.substr(blank), value) != ReadStatus::Ok) return;
  RequireFinite(file, temperature, file.lineNumber);
  file.Temperature = temperature;
}

// True when one of the first three words of a point line reads as a number
// that is not finite.
bool HoldsNonFinitePoint(std::string_view line) {
  const std::vector<std::string_view> words = LineWords(line);
  for (std::size_t w = 0; w < words.size() && w < 3; ++w) {
    if (ReadsAsNonFinite(words[w])) return true;
  }
  return false;
}

// True when the line holds two or three numbers and nothing else.
bool IsPointLine(std::string_view line) {
  const std::vector<std::string_view> words = LineWords(line);
  for (std::string_view w : words) {
    const std::string word(w);
    char* stop = nullptr;
    std::strtod(word.c_str(), &stop);
    if (stop == word.c_str() || *stop != '\0') return false;
  }
  return words.size() == 2 || words.size() == 3;
}

// Records read ahead on the data unit are given back when this goes: the
// unit is left where it was.
class ReadAhead {
 public:
  explicit ReadAhead(TextUnit& unit)
      : unit_(unit),
        start_(std::ftell(unit.file)),
        lastRecordStart_(unit.lastRecordStart),
        atEnd_(unit.atEnd) {}
  ~ReadAhead() {
    std::fseek(unit_.file, start_, SEEK_SET);
    unit_.lastRecordStart = lastRecordStart_;
    unit_.atEnd = atEnd_;
  }
  ReadAhead(const ReadAhead&) = delete;
  ReadAhead& operator=(const ReadAhead&) = delete;

 private:
  TextUnit& unit_;
  long start_;
  long lastRecordStart_;
  bool atEnd_;
};

// The field reader refuses the letters of nan and inf with its caret report,
// and a number beyond a 32-bit real as unreadable. The point line it takes
// next (comments and blank lines passed over as it does) is looked at first,
// and left unread, so that such a value is named for what it is.
void CheckNextPointLine(DataFile& file) {
  TextUnit& unit = file.job.files.units[Unit::Data];
  const ReadAhead ahead(unit);
  std::string line;
  for (int number = file.lineNumber + 1;
       ReadRecord(unit, line, kDataRecordLength) == RecordRead::Ok; ++number) {
    if (line.empty() || line[0] == '!' || TrimRight(line).empty()) continue;
    if (HoldsNonFinitePoint(line)) StopNonFinite(file, number);
    break;
  }
}

// A file without a heading whose first two lines are already points: it is
// read as data from its first line.
bool StartsWithPoints(DataFile& file) {
  TextUnit& unit = file.job.files.units[Unit::Data];
  const ReadAhead ahead(unit);
  std::string first, second;
  return ReadRecord(unit, first, kDataRecordLength) == RecordRead::Ok &&
         ReadRecord(unit, second, kDataRecordLength) == RecordRead::Ok && IsPointLine(first) &&
         IsPointLine(second);
}

XYHeading ReadHeading(DataFile& file) {
  XYHeading heading;
  if (StartsWithPoints(file)) {
    ReportData(file, " -> No heading in input data file X,Y,sigma: points from its first line");
    return heading;
  }
  const std::string first = RequireDataRecord(file);
  if (!first.starts_with("XYDATA")) {
    for (const char* line : {" -> No recognizable heading in input data file X,Y,sigma",
                             "    First 6 lines are considered as COMMENTS "}) {
      ReportData(file, line);
      ConsoleLine(file.job, line);
    }
    ReportData(file, " -> COMMENT: " + CutText(first, kDataRecordLength));
    for (int k = 2; k <= kHeadingLines; ++k) {
      ReportData(file, " -> COMMENT: " + CutText(RequireDataRecord(file), kDataRecordLength));
    }
    return heading;
  }
  ReportData(file, " => Heading of input data file X,Y,sigma");
  for (int k = 1; k <= kHeadingLines; ++k) {
    const std::string line = RequireDataRecord(file);
    ReportData(file, " -> INTER" + CutText(line, kDataRecordLength));
    if (line.starts_with("INTER")) ReadInterLine(file, line, heading);
    if (line.starts_with("TEMP")) {
      ReadTemperatureLine(file, line);
      break;
    }
  }
  return heading;
}

// Puts the points on the grid THMIN + (i-1)*step by natural cubic splines of
// the intensities and of the variances against the positions read.
void InterpolateToConstantStep(DataFile& file, float step) {
  if (file.NPTS < 2) return;
  for (std::size_t i = 1; i < file.X.size(); ++i) {
    if (!(file.X[i] > file.X[i - 1])) StopBadData(file.job);
  }
  if (!(step > 0.0f)) step = file.STEP;
  long long count = 0;
  if (!PointsInRange(file.THMIN, step, file.THMAX, count)) StopBadData(file.job);
  if (count > FilePointLimit(file)) StopTooManyPoints(file.job, count);

  const std::vector<float> x = std::move(file.X);
  const std::vector<float> y = std::move(file.Ytotal);
  const std::vector<float> v = std::move(file.Variance);
  const int n = static_cast<int>(x.size());
  std::vector<float> ySecond(x.size(), 0.0f);
  std::vector<float> vSecond(x.size(), 0.0f);
  SplineSetup(x, y, n, kNaturalSplineEnd, kNaturalSplineEnd, ySecond);
  SplineSetup(x, v, n, kNaturalSplineEnd, kNaturalSplineEnd, vSecond);
  SetPointCount(file, count);
  file.STEP = step;
  FillEvenPositions(file);
  for (std::size_t i = 0; i < file.X.size(); ++i) {
    file.Ytotal[i] = SplineValue(file.job, x, y, ySecond, n, file.X[i]);
    file.Variance[i] = SplineValue(file.job, x, v, vSecond, n, file.X[i]);
  }
  file.THMAX = file.X.back();
}

}  // namespace

void ReadXYSigmaData(DataFile& file) {
  const XYHeading heading = ReadHeading(file);
  if (heading.INTERPOL == 1) {
    ReportData(file, Fmt("(A,F12.5)",
                         " -> Internal interpolation for constant STEP =", heading.constantStep));
    file.stepKind = 1;
  } else if (heading.INTERPOL == 2) {
    ReportData(file, " -> XY-DATA are supplied with constant STEP");
    file.stepKind = 2;
  }

  // Points to the end of the file or to a line of three zeros.
  std::vector<float> xs;
  std::vector<float> ys;
  std::vector<float> vs;
  long long total = 0;
  for (;;) {
    float x = 0.0f;
    float y = 0.0f;
    float sigma = 0.0f;
    CheckNextPointLine(file);
    const int error =
        ReadMaskedLine(file.job, Unit::Data, "fff", file.lineNumber, {&x, &y, &sigma});
    if (error == FieldError::EndOfFile) break;
    if (x == 0.0f && y == 0.0f && sigma == 0.0f) break;
    ++total;
    if (total > FilePointLimit(file)) continue;  // counted for the report, not kept
    x *= heading.xFactor;
    y *= heading.yFactor;
    sigma *= heading.yFactor;
    for (float value : {x, y, sigma * sigma}) RequireFinite(file, value, file.lineNumber);
    xs.push_back(x);
    ys.push_back(y);
    vs.push_back(sigma == 0.0f ? y : sigma * sigma);
  }
  if (total == 0) StopEndOfData(file.job);
  SetPointCount(file, total);
  file.X = std::move(xs);
  file.Ytotal = std::move(ys);
  file.Variance = std::move(vs);
  RangeFromPositions(file);
  file.Cnorm = MeanVarianceRatio(file.Ytotal, file.Variance);
  if (file.stepKind == 1) {
    InterpolateToConstantStep(file, heading.constantStep);
  } else if (file.stepKind == 0) {
    file.equalStep = 0;  // positions as read, not on a grid
  }
}

}  // namespace corvinet
