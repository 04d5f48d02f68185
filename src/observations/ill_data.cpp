// INSTR 1, 2, 3, 6 and 7: the ILL two-axis formats (D1A/D2B, D1B, D1B/D20, D1A/D2B SUM, D4/D20L).
#include <algorithm>
#include <string>
#include <vector>

#include "format/text.h"
#include "observations/powder_data_common.h"

namespace corvinet {

namespace {

// D1B: 400 points in 40 rows of 10, at 0.2 degrees.
constexpr int kD1BRows = 40;
constexpr int kD1BPerRow = 10;
constexpr int kD1BPoints = kD1BRows * kD1BPerRow;
constexpr float kD1BStep = 0.2f;

// Width of one counter/intensity pair of the 10(I2,F6.0) records.
constexpr std::size_t kPairWidth = 8;
constexpr std::size_t kPairsPerRecord = 10;

}  // namespace

void ReadD1AData(DataFile& file) {
  ReadRangeLine(file);
  ReadDataFormatted(file, "(10(I2,F6.0))", Interleaved({&file.CountNorm, &file.Ytotal}, file.NPTS));
  NormaliseByCounters(file);
}

void ReadD1BData(DataFile& file) {
  RequireDataRecord(file);  // title
  const std::string date = RequireDataRecord(file);
  ReportData(file, "=> Date of experiment: " + CutText(date, 80));
  const ReadTarget monitor[] = {&file.MONITOR};
  ReadDataList(file, monitor);
  RequireDataRecord(file);
  RequireDataRecord(file);

  SetPointCount(file, kD1BPoints);
  const CompiledFormat row = CompileFormat("(F7.3,10F6.0)");
  for (int r = 0; r < kD1BRows; ++r) {
    float angle = 0.0f;
    std::vector<ReadTarget> targets{&angle};
    for (int k = 0; k < kD1BPerRow; ++k) {
      targets.emplace_back(&file.Ytotal[static_cast<std::size_t>(r * kD1BPerRow + k)]);
    }
    ReadDataFormatted(file, row, targets);
    if (r == 0) file.THMIN = angle;
  }
  file.STEP = kD1BStep;
  file.THMAX = file.THMIN + static_cast<float>(kD1BPoints - 1) * kD1BStep;
  FillEvenPositions(file);
  // The first and last detector cells are not trusted: they copy their neighbours.
  file.Ytotal[0] = file.Ytotal[1];
  file.Ytotal[kD1BPoints - 1] = file.Ytotal[kD1BPoints - 2];
  file.Variance = file.Ytotal;
}

void ReadD20Data(DataFile& file) {
  int sets = 0;
  const ReadTarget setCount[] = {&sets};
  ReadDataFormatted(file, "(I5)", setCount);
  ReportData(file, Fmt("(A,I5)", "     Nset:", sets));
  RequireDataRecord(file);  // three short texts of the run, not used

  int first = 0;
  int numor = 0;
  int third = 0;
  const ReadTarget run[] = {&first, &numor, &third};
  ReadDataFormatted(file, "(I3,1X,I6,1X,I4)", run);

  float counted = 0.0f;
  float step = 0.0f;
  std::vector<float> angles(10, 0.0f);
  std::vector<ReadTarget> scan{&counted, &step};
  for (float& a : angles) scan.emplace_back(&a);
  ReadDataFormatted(file, "(F13.0,F9.0,1X,10(F8.3,1X))", scan);

  int index = 0;
  std::vector<float> values(5, 0.0f);
  int points = 0;
  int monitor = 0;
  std::vector<ReadTarget> sample{&index};
  for (float& v : values) sample.emplace_back(&v);
  sample.emplace_back(&points);
  sample.emplace_back(&monitor);
  ReadDataFormatted(file, "(I4,1X,5(F9.3,1X),29X,I6,3X,I6)", sample);
  ReportData(file, Fmt("(A,I8,F10.3)", " -> Numor & Tsample: ", numor, values[0]));

  SetPointCount(file, points);
  file.THMIN = angles[0];
  file.STEP = step;
  file.THMAX = file.THMIN + static_cast<float>(file.NPTS - 1) * step;
  file.Temperature = values[0];
  file.MONITOR = static_cast<float>(monitor);
  FillEvenPositions(file);
  ReadDataFormatted(file, "(10(I2,F8.0))", Interleaved({&file.CountNorm, &file.Ytotal}, file.NPTS));
  int closing = 0;
  const ReadTarget last[] = {&closing};
  ReadDataFormatted(file, "(I10)", last);
  NormaliseByCounters(file);
}

void ReadD1ASumData(DataFile& file) {
  RequireDataRecord(file);  // title
  const ReadTarget step[] = {&file.STEP};
  ReadDataFormatted(file, "(16X,F8.3)", step);
  ReportData(file, Fmt("(A,F8.3)", "   ->    Step: ", file.STEP));
  const ReadTarget thmin[] = {&file.THMIN};
  ReadDataFormatted(file, "(F8.3)", thmin);
  ReportData(file, Fmt("(A,F8.3)", "   ->   Thmin: ", file.THMIN));
  float monitor1 = 0.0f;
  float monitor2 = 0.0f;
  const ReadTarget monitors[] = {&monitor1, &monitor2};
  ReadDataFormatted(file, "(2F8.0)", monitors);
  ReportData(file, Fmt("(A,2F12.0)", "   -> Monitors: ", monitor1, monitor2));
  file.MONITOR = monitor2 >= 1.0f ? monitor2 : monitor1;

  // The points run to the end of the file; a short last record holds as many
  // pairs as its length covers.
  const CompiledFormat pairs = CompileFormat("(10(I2,F6.0))");
  std::vector<float> counters;
  std::vector<float> counts;
  long long total = 0;
  std::string record;
  while (ReadDataRecord(file, record)) {
    const std::size_t length = TrimRight(record).size();
    const std::size_t n = std::min(kPairsPerRecord, (length + kPairWidth - 1) / kPairWidth);
    total += static_cast<long long>(n);
    if (total > FilePointLimit(file)) continue;  // counted for the report, not kept
    std::vector<float> c(n, 0.0f);
    std::vector<float> y(n, 0.0f);
    std::vector<ReadTarget> targets = Interleaved({&c, &y}, static_cast<int>(n));
    if (ReadFormatted(pairs, record, NextRecord(), targets) != ReadStatus::Ok) {
      StopBadData(file.job);
    }
    for (std::size_t k = 0; k < n; ++k) RequireFinite(file, y[k], file.lineNumber);
    counters.insert(counters.end(), c.begin(), c.end());
    counts.insert(counts.end(), y.begin(), y.end());
  }
  if (total == 0) StopEndOfData(file.job);
  SetPointCount(file, total);
  file.CountNorm = std::move(counters);
  file.Ytotal = std::move(counts);
  file.THMAX = file.THMIN + static_cast<float>(file.NPTS - 1) * file.STEP;
  FillEvenPositions(file);
  NormaliseByCounters(file);
}

void ReadD4Data(DataFile& file) {
  int points = 0;
  std::string title;
  const ReadTarget head[] = {&points, &file.MONITOR, &title};
  ReadDataFormatted(file, "(I5,1X,F5.0,1X,A72)", head);
  SetPointCount(file, points);
  ReadDataFormatted(file, "(5(F7.2,1X,F8.1,1X,F5.1))",
                    Interleaved({&file.X, &file.Ytotal, &file.Variance}, file.NPTS));
  SquareSigmas(file.Variance);
  RangeFromPositions(file);
}

}  // namespace corvinet
