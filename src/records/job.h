// The job record: everything one process and its runs know, passed by reference.
#pragma once

#include <cstdio>
#include <string>

#include "records/channels.h"
#include "records/dimension_limits.h"
#include "records/parameter_limits.h"
#include "records/pattern.h"
#include "records/phase.h"
#include "records/random_source.h"
#include "records/refinement_state.h"
#include "records/reliability_state.h"
#include "records/run_options.h"
#include "records/table1.h"

namespace corvinet {

// The answer of the continue dialogs.
enum class DriverAnswer {
  kSameData,   // run the same control file again
  kOtherData,  // choose another job
  kStop,       // end the program
};

// What the run driver keeps for the whole process.
struct DriverState {
  std::string commandLine;
  int commandLineLength = 0;
  std::string PcrCode;
  std::string DatCode;
  std::string startDirectory;
  std::string envDirectory;
  std::string dirMemoryPath;
  bool dirMemoryOpen = false;
  int cyclicMode = 0;
  DriverAnswer answer = DriverAnswer::kSameData;  // answer of the last continue dialog
  int stopRequested = 0;
  double cpuStart = 0.0;
  double cpuEnd = 0.0;
};

// Everything a run reads and computes; cleared by ResetDefaults before each run.
struct RunData {
  RunOptions run;
  Table1<Pattern, DimensionLimits::NPATT> patterns;
  NumericalProfile numericalProfile;
  Table1<Phase, DimensionLimits::NPHT> phases;
  Table1<AtomSite, DimensionLimits::NATS> atoms;
  ParameterLimits limits;
  RefinementState refinement;
  ReliabilityState reliability;
  int LINE = 0;         // line counter of the control file
  RandomSource random;  // the run's random source
};

// The number of refined parameters the equations hold: MAXS, at most MSZ.
inline int FittedCount(const RunData& data) {
  return data.run.MAXS < DimensionLimits::MSZ ? data.run.MAXS : DimensionLimits::MSZ;
}

// The run's data is reachable directly (job.run, job.patterns[ip]); the driver,
// console and file-set state (its Channels) outlive the runs of a process.
struct Job : RunData, Channels {
  DriverState driver;
};

}  // namespace corvinet
