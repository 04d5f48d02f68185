// The body of the control file: refined-parameter count, global lines, data of each pattern,
// phases, closing lines.
#include <cmath>
#include <cstdlib>
#include <ctime>

#include "control/atom_lines.h"
#include "control/pattern_block.h"
#include "control/phase_block.h"
#include "control/profile_lines.h"
#include "crystal/reflection_generation.h"
#include "crystal/reflection_list.h"
#include "format/fortran_format.h"
#include "io/field_reader.h"
#include "model/lorentz_polarisation.h"
#include "model/scattering_species.h"
#include "observations/background.h"
#include "observations/powder_data.h"
#include "refine/reflection_calculation.h"
#include "surface/console.h"

namespace corvinet {

namespace {

bool AnyCalculatedPattern(const Job& job) {
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    if (IsCalculatedPattern(job.patterns[ip])) return true;
  }
  return false;
}

void ReadRefinedCount(Job& job) {
  ReadMaskedLine(job, Unit::Control, "i", job.LINE, {&job.run.MAXS});
  if (AnyCalculatedPattern(job)) job.run.MAXS = 0;
  WriteReports(job, Fmt("(A,I5)", " => Number of Least-Squares parameters varied: ", job.run.MAXS));
}

void WriteRange(Job& job, const Pattern& p) {
  if (p.IXUNIT == 1) {
    WriteReports(job, " ==> T.O.F. range, and number of points:");
    WriteReports(job, Fmt("(A,F12.3,A,F12.3,A,I6)", "    TOFmin: ", p.THMIN, "  TOFmax: ", p.THMAX,
                          "    No. of points: ", p.NPTS));
  } else if (p.IXUNIT == 2) {
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
  if (points <= DimensionLimits::IDSZ) return;
  WriteLine(job, Unit::Out,
            Fmt("(A,I6,A)", " => Program can handle only", DimensionLimits::IDSZ, " points"));
  WriteLine(job, Unit::Out, Fmt("(A,I8,A)", "  => A number of ", points, " points were input"));
  ConsoleLine(job, " Too many data points NPTS>IDSZ!");
  StopBox(job, " Too many data points ");
}

// A pattern to calculate has its abscissa from the range of the cycle line.
void BuildCalculatedAbscissa(Job& job, Pattern& p) {
  const double points = std::trunc((p.THMAX - p.THMIN) * (1.0f / p.STEP) + 1.5f);
  StopOnTooManyPoints(job, points > 1.0e9 ? 1000000000 : static_cast<int>(points));
  p.equalStep = 1;
  p.NPTS = static_cast<int>(points);
  for (int i = 1; i <= p.NPTS; ++i) p.X[i] = p.THMIN + static_cast<float>(i - 1) * p.STEP;
}

void ReadPatternBody(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  ReadGlobalParameters(job, ip);
  if (!IsCalculatedPattern(p)) {
    ReadObservedData(job, ip);
  } else {
    BuildCalculatedAbscissa(job, p);
  }
  StopOnTooManyPoints(job, p.NPTS);
  EvaluateBackground(job, ip);
}

// Ends the reading at a piece of the file this version does not read.
bool StopReadingAt(Job& job, const std::string& what) {
  const std::string end = " => The control file has been read up to " + what +
                          ": this version of Corvinet reads no further";
  ConsoleLine(job, end);
  WriteReports(job, end);
  return false;
}

// The reflections of phase k in pattern ip, with the width flag of generated
// and integrated lists, the species of the phase and the listing the pattern asks for.
void MakeContributionReflections(Job& job, int k, int ip) {
  Phase& ph = job.phases[k];
  PhasePattern& c = ph.pat[ip];
  MakeReflections(job, k, ip, ReflectionLorentzPolarisation);
  if (c.Irf <= 0 || std::abs(c.Irf) == 4) c.laueWidthFlag = LaueWidthFlag(ph.group.LAUE);
  SetUpPhaseSpecies(job, k, ip);
  if (job.patterns[ip].LST1 == 1) WriteReflectionList(job, k, ip);
}

bool ReadPhases(Job& job) {
  for (int k = 1; k <= job.run.NPHASE; ++k) {
    ConsoleLine(job, Fmt("(A,I2)", " Reading parameters for phase:", k));
    ReadPhase(job, k);
    const Phase& ph = job.phases[k];
    const bool structure = std::abs(ph.Jbt) != 2 && std::abs(ph.Jbt) != 3;
    if (structure) ReadAtoms(job, k);
    ReadProfile(job, k);
    DecodeAtomCodes(job, k);
    DecodeProfileCodes(job, k);
    if (ph.Dis != 0 || ph.Mom != 0) {
      return StopReadingAt(job, Fmt("(A,I2)", "the restraints of phase", k));
    }
    for (int ip = 1; ip <= job.run.NPATT; ++ip) {
      if (ph.pat[ip].Contribution != 0) MakeContributionReflections(job, k, ip);
    }
  }
  for (int ip = 1; ip <= job.run.NPATT; ++ip) FillReflectionWidths(job, ip);
  return true;
}

// Points and reflections of each pattern share the storage of a pattern.
void CheckCapacities(Job& job) {
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    CheckPointCapacity(job, ip, job.patterns[ip].reflections.total, 0);
  }
}

void ReportPreliminaryEnd(Job& job) {
  ConsoleLine(job, " => End of preliminary calculations !");
  const double seconds = static_cast<double>(std::clock()) / CLOCKS_PER_SEC - job.driver.cpuStart;
  ConsoleLine(job, Fmt("(A,F10.3,A)", " => CPU time so far: ", seconds, " seconds"));
}

}  // namespace

void ReadBody(Job& job) {
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    if (job.patterns[ip].IRESO != 0) {
      ConsoleLine(job, " => Instrument resolution files are not read by this version of Corvinet");
      StopBox(job, " => Resolution file not supported yet: " + job.patterns[ip].ResolutionFile);
    }
  }
  ReadRefinedCount(job);
  if (job.run.ICRYG == 0) {
    for (int ip = 1; ip <= job.run.NPATT; ++ip) ReadPatternBody(job, ip);
  }
  if (!ReadPhases(job)) return;
  ReadClosingLinesAndCheck(job);
}

// What follows the phases: the closing lines and the final checks.
void ReadClosingLinesAndCheck(Job& job) {
  CloseUnit(job.files.units[Unit::Sym]);
  DecodeGlobalCodes(job);
  if (job.run.NRELL != 0) ReadHardLimits(job);
  if (job.run.ICRYG == 2) ReadMonteCarloLine(job);
  ReportPreliminaryEnd(job);
  if (AnyCalculatedPattern(job)) {
    job.run.controlFileComplete = true;
    return;
  }
  if (job.run.ICRYG != 2) CheckParameterHoles(job);
  FixZeroCounts(job);
  CheckCapacities(job);
  job.run.controlFileComplete = true;
}

}  // namespace corvinet
