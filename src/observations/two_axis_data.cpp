// INSTR 5, 8 and 11: the general two-axis, the DMC and the variable-time (LHPM) formats.
#include <string>
#include <vector>

#include "observations/powder_data_common.h"

namespace corvinet {

namespace {

constexpr float kShortestTime = 0.00001f;

}  // namespace

void ReadTwoAxisData(DataFile& file) {
  for (int k = 0; k < 3; ++k) RequireDataRecord(file);  // titles
  int points = 0;
  int sigmaFlag = 0;
  float monitor = 0.0f;
  float norm = 0.0f;
  const ReadTarget head[] = {&points, &monitor, &norm, &sigmaFlag, &file.Temperature, &file.TSET};
  ReadDataFormatted(file, "(I6,1X,2F10.3,I5,2F10.1)", head);
  ReportData(file, Fmt("(A,I6,A,2F10.1)", "   -> NPTS: ", points,
                       " Temperature (Sample & Regul): ", file.Temperature, file.TSET));
  file.MONITOR = monitor;
  SetPointCount(file, points);
  const ReadTarget range[] = {&file.THMIN, &file.STEP, &file.THMAX};
  ReadDataFormatted(file, "(3F10.0)", range);
  FillEvenPositions(file);
  ReadDataList(file, Interleaved({&file.Ytotal}, file.NPTS));

  if (sigmaFlag == 1) {
    ReportData(file, "   -> Standard deviations of Yi read from file ");
    ReadDataList(file, Interleaved({&file.Variance}, file.NPTS));
    SquareSigmas(file.Variance);
  } else if (monitor > 1.0f && norm > 1.0f) {
    // Counts scaled to a norm monitor: the variance carries the same factor.
    ReportData(file, "   -> Standard deviations of Yi assumed SQRT(Yi*Cnorm/Monitor) ");
    file.Cnorm = norm / monitor;
    for (std::size_t i = 0; i < file.Ytotal.size(); ++i) {
      file.Variance[i] = file.Ytotal[i] * file.Cnorm;
    }
  } else {
    ReportData(file, "   -> Standard deviations of Yi assumed SQRT(Yi) ");
    file.Variance = file.Ytotal;
  }
}

void ReadDmcData(DataFile& file) {
  RequireDataRecord(file);  // titles
  RequireDataRecord(file);
  ReadRangeLine(file);
  ReadDataFormatted(file, "(10F8.0)", Interleaved({&file.Ytotal}, file.NPTS));
  ReadDataFormatted(file, "(10F8.0)", Interleaved({&file.Variance}, file.NPTS));
  SquareSigmas(file.Variance);
}

void ReadVariableTimeData(DataFile& file) {
  for (int k = 0; k < 4; ++k) RequireDataRecord(file);  // titles
  ReadRangeLine(file);
  ReportData(file, Fmt("(A,3F10.4,I7)", "   -> THMIN,STEP,THMAX, NPTS: ", file.THMIN, file.STEP,
                       file.THMAX, file.NPTS));
  std::vector<float> times(static_cast<std::size_t>(file.NPTS), 0.0f);
  ReadDataFormatted(file, "(5(F6.0,F10.0))", Interleaved({&times, &file.Ytotal}, file.NPTS));
  double sum = 0.0;
  for (float t : times) {
    if (t < kShortestTime) StopData(file.job, " Zero time in *.DAT ");
    sum += static_cast<double>(t);
  }
  const float norm = static_cast<float>(sum / static_cast<double>(times.size()));
  ReportData(file,
             Fmt("(A,A,F12.4)", " => Variable time data collection,", " Normalizing Time: ", norm));
  for (std::size_t i = 0; i < times.size(); ++i) {
    file.Ytotal[i] = file.Ytotal[i] * norm / times[i];
    file.Variance[i] = file.Ytotal[i] * norm / times[i];
  }
}

}  // namespace corvinet
