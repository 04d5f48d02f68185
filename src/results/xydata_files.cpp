// The XYDATA files of the final report: the background, the difference, or the zero-corrected
// difference with the background in, each under its own name.
#include <cmath>
#include <string>

#include "format/fortran_format.h"
#include "format/text.h"
#include "io/file_set.h"
#include "observations/background.h"
#include "results/profile_files.h"
#include "surface/console.h"

namespace corvinet {

namespace {

const char* KindTitle(XyDataKind kind) {
  switch (kind) {
    case XyDataKind::Background:
      return "  Background of: ";
    case XyDataKind::Difference:
      return "  Difference of: ";
    default:
      return "Zero-corrected difference pattern + background of:";
  }
}

struct XyPoint {
  float x = 0.0f;
  float y = 0.0f;
  float sigma = 0.0f;
};

// Point i of the file. Ycalc is the Bragg part only at this stage.
XyPoint PointOf(const Pattern& p, int i, XyDataKind kind) {
  XyPoint v{p.X[i], 0.0f, std::sqrt(std::fabs(p.Variance[i]))};
  switch (kind) {
    case XyDataKind::Background:
      v.y = BackgroundAt(p, i);
      break;
    case XyDataKind::Difference:
      v.y = p.Ytotal[i] - p.Ycalc[i] - BackgroundAt(p, i);
      break;
    case XyDataKind::ZeroCorrectedDifference:
      v.x = p.X[i] - p.GLB[1];
      v.y = p.Ytotal[i] - p.Ycalc[i];
      break;
  }
  return v;
}

// Each kind has its own file, apart from the background file that a run reads.
FileKind FileOf(XyDataKind kind) {
  switch (kind) {
    case XyDataKind::Background:
      return FileKind::kBackgroundCurve;
    case XyDataKind::Difference:
      return FileKind::kDifferenceCurve;
    case XyDataKind::ZeroCorrectedDifference:
      break;
  }
  return FileKind::kZeroDifference;
}

// The report line that names the file written.
std::string AnnouncementOf(XyDataKind kind, const std::string& name) {
  switch (kind) {
    case XyDataKind::Background:
      return " => Background written on file: " + name;
    case XyDataKind::Difference:
      return " => Difference pattern written on file: " + name;
    case XyDataKind::ZeroCorrectedDifference:
      break;
  }
  return " => Zero-corrected difference + background written on file: " + name;
}

void WriteHeader(Job& job, XyDataKind kind) {
  const int u = Unit::Background;
  WriteLine(job, u, "XYDATA");
  WriteLine(job, u, std::string(KindTitle(kind)) + std::string(TrimRight(job.run.Title)));
  WriteLine(job, u, "INTER   1.0  1.0  0");
  WriteLine(job, u, "TEMP  ");
  WriteLine(job, u, "2Theta/TOF/E(KeV)     Intensity         Sigma");
  WriteLine(job, u, "---------------------------------------------");
}

}  // namespace

void WriteXyDataFile(Job& job, int ip, XyDataKind kind) {
  const Pattern& p = job.patterns[ip];
  OpenFiles(job, FileOf(kind), ip, 0);
  WriteLine(job, Unit::Out, AnnouncementOf(kind, job.files.units[Unit::Background].name));
  WriteHeader(job, kind);
  const bool constantStep = p.equalStep == 1;
  if (constantStep) {
    const float low = kind == XyDataKind::ZeroCorrectedDifference ? p.THMIN - p.GLB[1] : p.THMIN;
    const float high = kind == XyDataKind::ZeroCorrectedDifference ? p.THMAX - p.GLB[1] : p.THMAX;
    WriteLine(job, Unit::Background,
              Fmt("(3F17.5,2X,A)", low, p.STEP, high, TrimRight(job.run.Title)));
  }
  for (int i = 1; i <= p.NPTS; ++i) {
    const XyPoint v = PointOf(p, i, kind);
    WriteLine(job, Unit::Background,
              constantStep ? Fmt("(17X,2F14.3)", v.y, v.sigma)
                           : Fmt("(F17.5,2F14.3)", v.x, v.y, v.sigma));
  }
  CloseUnit(job.files.units[Unit::Background]);
}

void WriteBackgroundPlotFiles(Job& job, int ip) {
  const int ipl = job.patterns[ip].IPL;
  if (ipl == 2) WriteXyDataFile(job, ip, XyDataKind::Background);
  if (ipl == 3) WriteXyDataFile(job, ip, XyDataKind::Difference);
}

}  // namespace corvinet
