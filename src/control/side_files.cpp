// Readers of the side files that the head of the control file brings in: numerical shapes,
// corrections and instrument resolution.
#include "control/side_files.h"

#include <cstdlib>
#include <vector>

#include "control/run_block.h"
#include "format/fortran_format.h"
#include "format/text.h"
#include "io/file_set.h"
#include "surface/console.h"

namespace corvinet {

namespace {

// One list-directed read on a unit, continuing on further records as needed.
// Returns false at the end of the file before any value; a bad value or a file
// that ends inside the list stops the run.
bool ReadListFromUnit(Job& job, int unit, std::span<const ReadTarget> targets) {
  TextUnit& file = job.files.units[unit];
  std::string record;
  if (ReadRecord(file, record, 1024) != RecordRead::Ok) return false;
  NextRecord next = [&file](std::string& more) {
    return ReadRecord(file, more, 1024) == RecordRead::Ok;
  };
  ReadStatus status = ReadList(record, next, targets);
  if (status == ReadStatus::Ok) return true;
  ConsoleLine(job, " => Error reading the file: " + file.name);
  StopBox(job, " => Error reading the file: " + file.name);
}

void RequireList(Job& job, int unit, std::span<const ReadTarget> targets) {
  if (ReadListFromUnit(job, unit, targets)) return;
  const std::string& name = job.files.units[unit].name;
  ConsoleLine(job, " => Unexpected end of file: " + name);
  StopBox(job, " => Unexpected end of file: " + name);
}

void SkipTitle(Job& job, int unit) {
  std::string title;
  if (ReadRecord(job.files.units[unit], title) != RecordRead::Ok) {
    StopBox(job, " => Unexpected end of file: " + job.files.units[unit].name);
  }
}

}  // namespace

void ReadShapeFile(Job& job) {
  NumericalProfile& shape = job.numericalProfile;
  SkipTitle(job, Unit::Shape);
  // The count of shapes comes first on the record that lists their angles.
  TextUnit& file = job.files.units[Unit::Shape];
  std::string record;
  if (ReadRecord(file, record, 1024) != RecordRead::Ok) {
    StopBox(job, " => Unexpected end of file: " + file.name);
  }
  int points = 0;
  int count = 0;
  const ReadTarget head[] = {&points, &count};
  if (ReadListLine(record, head) == ReadStatus::BadValue) {
    StopBox(job, " => Error reading the file: " + file.name);
  }
  if (count < 1 || count > DimensionLimits::INPR) {
    ConsoleLine(job, Fmt("(A,I6,A,I3)", " => Number of numerical peak shapes:", count,
                         "  allowed: 1 to", DimensionLimits::INPR));
    StopBox(job, " => Too many numerical peak shapes!");
  }
  std::vector<ReadTarget> targets = {&shape.shapePoints, &shape.shapeCount};
  for (int s = 1; s <= count; ++s) targets.emplace_back(&shape.shapeAngle[s]);
  NextRecord next = [&file](std::string& more) {
    return ReadRecord(file, more, 1024) == RecordRead::Ok;
  };
  if (ReadList(record, next, targets) != ReadStatus::Ok) {
    StopBox(job, " => Error reading the file: " + file.name);
  }
  if (shape.shapePoints > DimensionLimits::NPR) {
    StopBox(job, " => Too many points in numerical profile!");
  }
  for (int i = 1; i <= shape.shapePoints; ++i) {
    std::vector<ReadTarget> row = {&shape.shapeX[i]};
    for (int s = 1; s <= count; ++s) {
      row.emplace_back(&shape.shapeY(i, s));
      row.emplace_back(&shape.shapeDy(i, s));
    }
    RequireList(job, Unit::Shape, row);
  }
}

void ReadCorrectionFile(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  SkipTitle(job, Unit::Corrections);
  if (p.ICORR == 1) {
    p.corrCount = 0;
    while (p.corrCount < DimensionLimits::NPRC) {
      const int j = p.corrCount + 1;
      const ReadTarget pair[] = {&p.corrX[j], &p.corrY[j]};
      if (!ReadListFromUnit(job, Unit::Corrections, pair)) break;
      p.corrCount = j;
    }
    return;
  }
  if (p.ICORR != 2) return;
  const ReadTarget head[] = {&p.corrMode, &p.corrForm, &p.corrCount};
  RequireList(job, Unit::Corrections, head);
  if (p.corrCount < 0 || p.corrCount > DimensionLimits::NPRC) {
    ConsoleLine(job, Fmt("(A,I6,A,I4)", " => Number of correction terms:", p.corrCount,
                         "  maximum:", DimensionLimits::NPRC));
    StopBox(job, " => Too many terms in the table for correcting intensities!");
  }
  std::vector<ReadTarget> values;
  for (int j = 1; j <= p.corrCount; ++j) {
    values.emplace_back(&p.corrY[j]);
    if (p.corrMode == 2) values.emplace_back(&p.corrX[j]);
  }
  if ((p.corrMode == 1 || p.corrMode == 2) && !values.empty()) {
    RequireList(job, Unit::Corrections, values);
  }
}

namespace {

constexpr int kResolutionPatterns = 5;  // patterns that may have a resolution file
constexpr std::size_t kResolutionTitle = 40;

void ReportResolutionLaw(Job& job, const ResolutionFunction& f) {
  for (int w = 1; w <= 2; ++w) {
    WriteLine(job, Unit::Out,
              Fmt("(A,I1,A,6F12.6)", "    Lambda(", w, "): ", f.law(1, w), f.law(2, w), f.law(3, w),
                  f.law(4, w), f.law(5, w), f.law(6, w)));
  }
}

void ReadResolutionTable(Job& job, ResolutionFunction& f) {
  const ReadTarget count[] = {&f.nTable};
  RequireList(job, Unit::Resolution, count);
  if (f.nTable < 1 || f.nTable > ResolutionFunction::kTableRows) {
    ConsoleLine(job, Fmt("(A,I6,A,I3)", " => Rows of the resolution table:", f.nTable,
                         "  allowed: 1 to", ResolutionFunction::kTableRows));
    StopBox(job, " => Wrong number of rows in the resolution table!");
  }
  std::vector<ReadTarget> rows;
  for (int i = 1; i <= f.nTable; ++i) {
    rows.emplace_back(&f.tablePosition[i]);
    rows.emplace_back(&f.tableGaussian[i]);
    rows.emplace_back(&f.tableLorentzian[i]);
  }
  RequireList(job, Unit::Resolution, rows);
  WriteLine(job, Unit::Out, "    2-Theta    Gaussian-HW   Lorentzian-HW");
  for (int i = 1; i <= f.nTable; ++i) {
    WriteLine(job, Unit::Out,
              Fmt("(F11.4,2F14.6)", f.tablePosition[i], f.tableGaussian[i], f.tableLorentzian[i]));
  }
}

}  // namespace

void ReadResolutionFile(Job& job, int ip) {
  if (ip > kResolutionPatterns) {
    StopBox(job, "The external instrumetal function can be given only for 5 patterns!");
  }
  Pattern& p = job.patterns[ip];
  ResolutionFunction& f = p.resolution;
  f = ResolutionFunction{};
  const int law = std::abs(p.IRESO);
  if (law < 1 || law > 4) {
    ConsoleLine(job, Fmt("(A,I6,A,I2)", " => Resolution function", p.IRESO, " for pattern", ip));
    StopBox(job, " => The resolution function (Res) must be 1, 2, 3 or 4");
  }
  f.IRESOL = static_cast<ResolutionLaw>(law);
  OpenFiles(job, FileKind::kResolution, ip, 0);
  TextUnit& file = job.files.units[Unit::Resolution];
  std::string title;
  if (ReadRecord(file, title) != RecordRead::Ok) {
    StopBox(job, " => Unexpected end of file: " + file.name);
  }
  f.resolutionTitle = CutText(title, kResolutionTitle);
  WriteLine(job, Unit::Out, ", => Instrumental Resolution read from file: " + file.name);
  WriteLine(job, Unit::Out, f.resolutionTitle);
  WriteLine(job, Unit::Out, Fmt("(A,I2)", " => The resolution function is IRESOL:", law));
  WriteLine(job, Unit::Out, "    Input resolution parameters:");
  if (f.IRESOL == ResolutionLaw::kTable) {
    ReadResolutionTable(job, f);
  } else {
    for (int w = 1; w <= 2; ++w) {
      const ReadTarget terms[] = {&f.law(1, w), &f.law(2, w), &f.law(3, w),
                                  &f.law(4, w), &f.law(5, w), &f.law(6, w)};
      RequireList(job, Unit::Resolution, terms);
    }
    ReportResolutionLaw(job, f);
  }
  CloseUnit(file);
}

}  // namespace corvinet
