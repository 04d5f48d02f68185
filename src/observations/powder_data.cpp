// ReadPattern: opens the data file, runs the reader of its INSTR format, stores the points.
#include "observations/powder_data.h"

#include <cstddef>

#include "io/file_set.h"
#include "observations/powder_data_common.h"
#include "records/data_format.h"
#include "surface/console.h"

namespace corvinet {

namespace {

// Closes unit 4 however the reading ends.
struct DataUnitCloser {
  Job& job;
  ~DataUnitCloser() { CloseUnit(job.files.units[Unit::Data]); }
};

bool KnownFormat(int instr) {
  const int format = DataFormatOf(instr);
  return (format >= 0 && format <= kColumnDataFormat) || format == -4 || format == -12;
}

void ReadByFormat(DataFile& file) {
  switch (DataFormatOf(file.INSTR)) {
    case 0:
      ReadFreeFormatData(file);
      return;
    case 1:
      ReadD1AData(file);
      return;
    case 2:
      ReadD1BData(file);
      return;
    case 3:
      ReadD20Data(file);
      return;
    case 4:
    case -4:
      ReadSynchrotronData(file);
      return;
    case 5:
      ReadTwoAxisData(file);
      return;
    case 6:
      ReadD1ASumData(file);
      return;
    case 7:
      ReadD4Data(file);
      return;
    case 8:
      ReadDmcData(file);
      return;
    case 9:
      ReadUxdData(file);
      return;
    case 10:
      ReadXYSigmaData(file);
      return;
    case 11:
      ReadVariableTimeData(file);
      return;
    case 12:
    case -12:
      ReadGsasData(file);
      return;
    case kGsasBankFormat:
      ReadGsasBankData(file);
      return;
    case kColumnDataFormat:
      ReadColumnData(file);
      return;
    default:
      break;
  }
  StopData(file.job, " Invalid INSTR parameter ");
}

// The copy of the header numbers on the list, when the pattern asks for its
// data to be printed.
void WriteListCopy(DataFile& file) {
  if (file.pattern().LST2 != 1) return;
  ReportData(file, Fmt("(A,I4,I8,F14.1,2F10.2)", "DATT ", file.INSTR, file.firstInteger,
                       file.MONITOR, file.Temperature, file.TSET));
}

// Copies the points and the header values into the Pattern, every ISTEP-th
// point when the pattern asks for a step reduction: point 1 stays, the count
// is NPTS/ISTEP, the step ISTEP times larger and THMAX the last point kept.
// A file may hold up to ISTEP times the capacity of a pattern.
void StorePoints(const DataFile& file, Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  const int reduction = p.ISTEP > 1 ? p.ISTEP : 1;
  p.NPTS = file.NPTS / reduction;
  GrowPointTables(job, ip, p.NPTS);
  p.CountNorm.Fill(1.0f);
  for (int i = 1; i <= p.NPTS; ++i) {
    const auto k = static_cast<std::size_t>((i - 1) * reduction);
    p.X[i] = file.X[k];
    p.Ytotal[i] = file.Ytotal[k];
    p.Variance[i] = file.Variance[k];
    p.CountNorm[i] = file.CountNorm[k];
  }
  p.THMIN = file.THMIN;
  p.STEP = reduction > 1 ? file.STEP * static_cast<float>(reduction) : file.STEP;
  p.THMAX = reduction > 1 && p.NPTS >= 1 ? p.X[p.NPTS] : file.THMAX;
  p.stepKind = file.stepKind;
  p.equalStep = file.equalStep;
  p.Cnorm = file.Cnorm;
  p.Temperature = file.Temperature;
  p.TSET = file.TSET;
  p.MONITOR = file.MONITOR;
}

}  // namespace

void ReadPattern(Job& job, int ip) {
  if (!KnownFormat(job.patterns[ip].INSTR)) StopData(job, " Invalid INSTR parameter ");
  DataFile file(job, ip);
  {
    OpenFiles(job, FileKind::kData, ip, 0);
    DataUnitCloser closer{job};
    ReadByFormat(file);
  }
  WriteListCopy(file);
  StorePoints(file, job, ip);
}

}  // namespace corvinet
