// The reading of a control file in its order: the text of each block with the files it brings in,
// the data of each pattern and the reflections of each phase.
#include "control/control_reading.h"

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <string>

#include "control/body_checks.h"
#include "control/closing_lines.h"
#include "control/global_parameters.h"
#include "control/instrument_lines.h"
#include "control/pattern_body.h"
#include "control/pattern_data.h"
#include "control/rigid_groups.h"
#include "control/side_files.h"
#include "crystal/reflection_generation.h"
#include "crystal/reflection_list.h"
#include "format/fortran_format.h"
#include "format/text.h"
#include "io/file_set.h"
#include "model/cell_mass.h"
#include "model/lorentz_polarisation.h"
#include "model/scattering_species.h"
#include "refine/reflection_calculation.h"
#include "surface/console.h"
#include "surface/prompts.h"

namespace corvinet {

namespace {

// The prompt for the data code of a single-pattern file.
std::string AskDataCode(Job& job) {
  ConsoleLine(job, "  ==> Give the name of data file (yy for yy.dat)  ");
  ConsoleLine(job, "                             (yy.uxd, or yy.acq)  ");
  ConsoleLine(job, "                       (<cr> =" + job.driver.PcrCode + "): ");
  auto answer = ReadConsoleAnswer(job.console);
  return answer ? TrimmedCopy(*answer) : std::string();
}

void ReadSideFiles(Job& job, int ip) {
  const Pattern& p = job.patterns[ip];
  if (ProfileCodeFromTyped(p.NPROF) == ProfileCode::kNumerical) {
    OpenFiles(job, FileKind::kShape, ip, 0);
    ReadShapeFile(job);
    CloseUnit(job.files.units[Unit::Shape]);
  }
  if (p.ICORR != 0) {
    OpenFiles(job, FileKind::kCorrections, ip, 0);
    ReadCorrectionFile(job, ip);
    CloseUnit(job.files.units[Unit::Corrections]);
  }
}

void OpenOutputFiles(Job& job) {
  if (job.run.JSY > 0) OpenFiles(job, FileKind::kSymmetry, 0, 0);
  if (job.run.JCIL > 0) OpenFiles(job, FileKind::kRpa, 0, 0);
}

// The resolution files of the patterns that name one.
void ReadResolutionFiles(Job& job) {
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    if (job.patterns[ip].IRESO != 0) ReadResolutionFile(job, ip);
  }
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

// The reflections of phase k in every pattern it contributes to.
void GeneratePhaseReflections(Job& job, int k) {
  for (int ip = 1; ip <= job.run.NPATT; ++ip) {
    if (job.phases[k].pat[ip].Contribution != 0) MakeContributionReflections(job, k, ip);
  }
}

// A phase with atoms and ATZ 0 takes the mass of its cell contents as its weight term, so that
// its fraction is not 0; the report says so, or why it cannot.
void ComputeMissingAtz(Job& job, int k) {
  Phase& ph = job.phases[k];
  if (ph.ATZ != 0.0f || ph.Nat <= 0 || !HasStructure(ph) || IsMagneticKind(ph.Jbt)) return;
  const CellMass cell = CellMassOfPhase(job, k);
  if (!cell.unknownLabel.empty()) {
    WriteLine(job, Unit::Out,
              " => ATZ is 0 and the atom type " + cell.unknownLabel +
                  " names no element: ATZ stays 0, and so does the fraction of the phase");
    return;
  }
  // Kept to the hundredths that the phase line of the control file holds, so that the new
  // control file gives the same value.
  ph.ATZ = static_cast<float>(std::round(cell.mass * 100.0) / 100.0);
  WriteLine(job, Unit::Out,
            Fmt("(A,F12.3,A)", " => ATZ computed from the atoms:", ph.ATZ,
                " (Z x formula weight, from the occupancies of the atom lines)"));
}

// The phase blocks, each followed by its reflections; false when the reading ended early.
bool ReadPhases(Job& job) {
  for (int k = 1; k <= job.run.NPHASE; ++k) {
    if (!ReadPhaseBlock(job, k)) return false;
    BuildRigidBodyGroups(job, k);
    ComputeMissingAtz(job, k);
    GeneratePhaseReflections(job, k);
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

// What follows the phases: the closing lines, the final checks and the end lines.
void ReadClosingLinesAndCheck(Job& job) {
  CloseUnit(job.files.units[Unit::Sym]);
  ReadClosingLines(job);
  ReportPreliminaryEnd(job);
  if (!AnyCalculatedPattern(job)) {
    if (job.run.ICRYG != 2) CheckParameterHoles(job);
    FixZeroCounts(job);
    CheckCapacities(job);
  }
  ReadEndLines(job);
  job.run.controlFileComplete = true;
}

}  // namespace

HeadSteps RunHeadSteps() {
  HeadSteps steps;
  steps.askDataCode = AskDataCode;
  steps.multiPatternNames = [](Job& job) { OpenFiles(job, FileKind::kMultiPattern, 1, 1); };
  steps.readSideFiles = ReadSideFiles;
  steps.openOutputFiles = OpenOutputFiles;
  return steps;
}

void ReadControlHead(Job& job) {
  ReadRunBlock(job, RunHeadSteps());
}

void ReadControlFile(Job& job) {
  ReadControlFile(job, RunHeadSteps());
}

void ReadControlFile(Job& job, const HeadSteps& steps) {
  ReadRunBlock(job, steps);
  ReadInstrumentLines(job);
  ReadResolutionFiles(job);
  ReadRefinedCount(job);
  if (job.run.ICRYG == 0) {
    for (int ip = 1; ip <= job.run.NPATT; ++ip) {
      ReadGlobalParameters(job, ip);
      ReadPatternData(job, ip);
    }
  }
  if (!ReadPhases(job)) return;
  ReadClosingLinesAndCheck(job);
}

}  // namespace corvinet
