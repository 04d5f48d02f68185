// The FXYE and FXY records of a GSAS bank: one point per line, x as written (CONST or SLOG).
#include <cmath>
#include <string>
#include <vector>

#include "observations/data_lines.h"
#include "observations/gsas_bank.h"

namespace corvinet {

namespace {

// Constant-wavelength CONST positions are centidegrees; time-of-flight ones
// and SLOG positions are microseconds.
double PositionDivisor(DataFile& file, const GsasBankLine& b) {
  const bool timeOfFlight = file.pattern().IXUNIT == AbscissaUnit::kTimeOfFlight;
  return b.BINTYP.starts_with("CONS") && !timeOfFlight ? 100.0 : 1.0;
}

// The width of the bin of a point: SLOG bins grow as x*dt/t around their
// centres x, CONST bins are BCOEF2 wide.
double BinWidth(const GsasBankLine& b, double x) {
  if (b.BINTYP == "SLOG") return x * b.BCOEF[2] / (1.0 + 0.5 * b.BCOEF[2]);
  return b.BCOEF[1];
}

// A line that ends the points of a bank: the next BANK or a comment.
bool EndsBank(const std::string& line) {
  return line.starts_with("BANK") || line.starts_with("#");
}

}  // namespace

void ReadFxyeBank(DataFile& file, const GsasBank& bank) {
  const GsasBankLine& b = bank.line;
  if (!b.BINTYP.starts_with("CONS") && b.BINTYP != "SLOG") {
    StopData(file.job, " => Only BINTYP=CONST or SLOG is allowed for FXYE or FXY data");
  }
  const bool withSigma = b.DATTYP == "FXYE";
  const double divisor = PositionDivisor(file, b);
  const bool perWidth = bank.binWidthMultiplied && (b.BINTYP == "SLOG" || divisor == 1.0);
  std::vector<float> x, y, variance;
  long long total = 0;
  std::string line;
  while (total < b.NCHAN && ReadDataRecord(file, line, kDataListRecordLength)) {
    if (EndsBank(line)) break;
    double v[3] = {0.0, 0.0, 0.0};
    if (!LineNumbers(line, withSigma ? 3 : 2, v)) {
      StopMalformedLine(file, file.lineNumber, line,
                        withSigma ? "x, y, sigma expected" : "x, y expected");
    }
    ++total;
    if (total > FilePointLimit(file)) continue;  // counted for the report, not kept
    const double width = perWidth ? BinWidth(b, v[0]) : 1.0;
    const double sigma = withSigma ? v[2] : std::sqrt(std::fmax(v[1], 0.0));
    x.push_back(static_cast<float>(v[0] / divisor));
    y.push_back(static_cast<float>(v[1] / width));
    variance.push_back(static_cast<float>((sigma / width) * (sigma / width)));
  }
  if (total == 0) StopEndOfData(file.job);
  if (total < b.NCHAN) {
    ReportData(file, Fmt("(A,I0,A,I0)", " => Points read: ", total, " of NCHAN ", b.NCHAN));
  }
  if (perWidth) ReportData(file, " -> Y and sigma divided by the bin widths (microseconds)");
  SetPointCount(file, total);
  file.X = std::move(x);
  file.Ytotal = std::move(y);
  file.Variance = std::move(variance);
  RangeFromPositions(file);
  file.equalStep = b.BINTYP == "SLOG" ? 0 : 1;
  file.Cnorm = MeanVarianceRatio(file.Ytotal, file.Variance);
}

}  // namespace corvinet
