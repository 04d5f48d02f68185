// The data of a pattern as its control lines ask: read from its data file or built from the range
// of the cycle line, then its background.
#include "control/pattern_data.h"

#include <cmath>
#include <cstdlib>
#include <string>

#include "control/body_checks.h"
#include "format/fortran_format.h"
#include "observations/background.h"
#include "observations/powder_data.h"
#include "surface/console.h"

namespace corvinet {

namespace {

void WriteRange(Job& job, const Pattern& p) {
  if (p.IXUNIT == AbscissaUnit::kTimeOfFlight) {
    WriteReports(job, " ==> T.O.F. range, and number of points:");
    WriteReports(job, Fmt("(A,F12.3,A,F12.3,A,I6)", "    TOFmin: ", p.THMIN, "  TOFmax: ", p.THMAX,
                          "    No. of points: ", p.NPTS));
  } else if (p.IXUNIT == AbscissaUnit::kEnergy) {
    WriteReports(job, " ==> Energy range, and number of points:");
    WriteReports(job, Fmt("(A,F10.4,A,F10.4,A,I6)", "   Emin: ", p.THMIN, "  Emax: ", p.THMAX,
                          "    No. of points: ", p.NPTS));
  } else {
    WriteReports(job, " ==> Angular range, step and number of points:");
    WriteReports(job, Fmt("(A,F10.4,A,F10.4,A,F10.6,A,I6)", "     2Thmin: ", p.THMIN,
                          "  2Thmax: ", p.THMAX, "  Step: ", p.STEP, "  No. of points: ", p.NPTS));
  }
}

void ReadObservedData(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  ConsoleLine(job, " => Reading intensity file *.DAT...");
  ReadPattern(job, ip);
  if (p.ICORR == 2 && p.corrMode == 2) ApplyIntensityCorrection(p);
  if (p.equalStep == 0 && p.IPL2 == 1) p.IPL2 = -3;
  if (p.IWGT == 2) {
    for (int i = 1; i <= p.NPTS; ++i) p.Variance[i] = 1.0f;
  }
  if (p.ISTEP > 1) {
    WriteReports(job, " => The number of data points has been reduced");
    WriteReports(job, Fmt("(A,I4)", "    by a factor of ", p.ISTEP));
  }
  WriteRange(job, p);
}

void StopOnTooManyPoints(Job& job, int points) {
  if (points <= job.dimensions.IDSZ) return;
  // A capacity wider than six columns is written whole after a blank.
  const char* format = job.dimensions.IDSZ > 99999 ? "(A,1X,I0,A)" : "(A,I6,A)";
  WriteLine(job, Unit::Out,
            Fmt(format, " => Program can handle only", job.dimensions.IDSZ, " points"));
  WriteLine(job, Unit::Out, Fmt("(A,I8,A)", "  => A number of ", points, " points were input"));
  ConsoleLine(job, " Too many data points NPTS>IDSZ!");
  StopBox(job, " Too many data points ");
}

// Stops with `words` on the report and in the box.
[[noreturn]] void StopOnPatternInput(Job& job, int ip, const char* words) {
  const std::string line = Fmt("(A,A,I3)", words, " -> Pattern#", ip);
  WriteLine(job, Unit::Out, line);
  StopBox(job, line);
}

// A 2theta pattern places its reflections by the wavelength: with none, no
// reflection would fall in the range.
void StopOnMissingWavelength(Job& job, int ip) {
  const Pattern& p = job.patterns[ip];
  if (p.IXUNIT != AbscissaUnit::kTwoTheta || p.LAMBDA[1] > 0.0f) return;
  StopOnPatternInput(job, ip, " => The wavelength Lambda1 must be above 0");
}

// The range of the cycle line must hold points: a step above 0 and an upper
// end above the lower one.
void StopOnEmptyCalculationRange(Job& job, int ip) {
  const Pattern& p = job.patterns[ip];
  if (!(p.STEP > 0.0f)) StopOnPatternInput(job, ip, " => The calculation step must be above 0");
  if (!(p.THMAX > p.THMIN)) {
    StopOnPatternInput(job, ip, " => The calculation range is empty: Thmax must be above Thmin");
  }
}

// A refinement needs points: a data file without them, or a step reduction
// (Ste) larger than the file, leaves none to walk.
void StopOnTooFewPoints(Job& job, int ip) {
  const Pattern& p = job.patterns[ip];
  if (p.NPTS >= 2) return;
  if (p.ISTEP > 1) {
    const std::string words = Fmt("(A,I0,A,I0,A)", " => The step reduction Ste = ", p.ISTEP,
                                  " leaves ", p.NPTS, " data points");
    ConsoleLine(job, words);
    WriteLine(job, Unit::Out, words);
  }
  StopOnPatternInput(job, ip, " => Fewer than 2 data points to refine");
}

// A pattern to calculate has its abscissa from the range of the cycle line.
void BuildCalculatedAbscissa(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  const double points = std::trunc((p.THMAX - p.THMIN) * (1.0f / p.STEP) + 1.5f);
  StopOnTooManyPoints(job, points > 1.0e9 ? 1000000000 : static_cast<int>(points));
  p.equalStep = 1;
  p.NPTS = static_cast<int>(points);
  GrowPointTables(job, ip, p.NPTS);
  for (int i = 1; i <= p.NPTS; ++i) p.X[i] = p.THMIN + static_cast<float>(i - 1) * p.STEP;
}

}  // namespace

void ReadPatternData(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  StopOnMissingWavelength(job, ip);
  if (!IsCalculatedPattern(p)) {
    ReadObservedData(job, ip);
    StopOnTooFewPoints(job, ip);
  } else {
    StopOnEmptyCalculationRange(job, ip);
    BuildCalculatedAbscissa(job, ip);
  }
  StopOnTooManyPoints(job, p.NPTS);
  EvaluateBackground(job, ip);
}

}  // namespace corvinet
