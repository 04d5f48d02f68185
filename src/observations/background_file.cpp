// Reading of the .bac file and the interpolated, transformed background taken from it.
#include "observations/background_file.h"

#include <algorithm>
#include <string>

#include "format/fortran_format.h"
#include "io/file_set.h"
#include "surface/console.h"

namespace corvinet {

namespace {

[[noreturn]] void StopAtEndOfFile(Job& job) {
  StopBox(job, " End of file *.BAC ");
}

// What the file's table gives at the transformed abscissa of point i, on the
// segment between its entries j and j + 1 (j in 1..NPTS-1).
struct FileSegment {
  float transformed = 0.0f;  // (1+c) X[i] + d
  float read = 0.0f;         // BackRead at the transformed abscissa
  float slope = 0.0f;        // d BackRead / d abscissa on the segment
};

// Slot estimated from the pattern's grid; truncation towards zero then the clamp.
int SegmentSlot(const Pattern& p, int i, float transformed) {
  float q = 1.0f;
  if (p.equalStep == 1) {
    q = (transformed - p.THMIN) / p.STEP + 1.0f;
  } else if (i > 1 && p.X[i] != p.THMIN) {
    q = (transformed - p.THMIN) * static_cast<float>(i - 1) / (p.X[i] - p.THMIN) + 1.0f;
  }
  const float last = static_cast<float>(std::max(p.NPTS - 1, 1));
  return static_cast<int>(std::clamp(q, 0.0f, last));
}

FileSegment SegmentAt(const Pattern& p, int i) {
  FileSegment s;
  s.transformed = (1.0f + p.GLB[kFileStretchSlot]) * p.X[i] + p.GLB[kFileShiftSlot];
  const int j = std::clamp(SegmentSlot(p, i, s.transformed), 1, std::max(p.NPTS - 1, 1));
  if (p.NPTS < 2) {
    s.read = p.backRead[1];
    return s;
  }
  const float width = p.backReadPos[j + 1] - p.backReadPos[j];
  if (width != 0.0f) s.slope = (p.backRead[j + 1] - p.backRead[j]) / width;
  s.read = p.backRead[j] + s.slope * (s.transformed - p.backReadPos[j]);
  return s;
}

}  // namespace

void ReadBackgroundFile(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  OpenFiles(job, FileKind::kBackground, ip, 0);
  TextUnit& unit = job.files.units[Unit::Background];
  std::string record;
  if (ReadRecord(unit, record) != RecordRead::Ok) StopAtEndOfFile(job);  // title
  const NextRecord next = [&unit](std::string& r) { return ReadRecord(unit, r) == RecordRead::Ok; };
  for (int i = 1; i <= p.NPTS; ++i) {
    if (ReadRecord(unit, record) != RecordRead::Ok) StopAtEndOfFile(job);
    float position = 0.0f;
    float height = 0.0f;
    const ReadTarget pair[] = {&position, &height};
    if (ReadList(record, next, pair) != ReadStatus::Ok) StopAtEndOfFile(job);
    p.backReadPos[i] = position;
    p.backRead[i] = height;
  }
  p.backReadCount = p.NPTS;
  CloseUnit(unit);
}

float FileBackgroundAt(const Pattern& pattern, int i) {
  const FileSegment s = SegmentAt(pattern, i);
  return pattern.GLB[kFileScaleSlot] * s.read + pattern.GLB[kFileOffsetSlot];
}

void AddFileBackgroundDerivatives(const Pattern& pattern, int i, float factor,
                                  DerivativeVector& derivative) {
  const FileSegment s = SegmentAt(pattern, i);
  const float a = pattern.GLB[kFileScaleSlot];
  AddBackgroundTerm(derivative, pattern.GLBword[kFileScaleSlot], factor, s.read);
  AddBackgroundTerm(derivative, pattern.GLBword[kFileOffsetSlot], factor, 1.0f);
  AddBackgroundTerm(derivative, pattern.GLBword[kFileStretchSlot], factor,
                    a * s.slope * pattern.X[i]);
  AddBackgroundTerm(derivative, pattern.GLBword[kFileShiftSlot], factor, a * s.slope);
}

}  // namespace corvinet
