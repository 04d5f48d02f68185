// The job record: everything one process and its runs know, passed by reference.
#pragma once

#include <atomic>
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
#include "records/rigid_model.h"
#include "records/run_options.h"
#include "records/table1.h"

namespace corvinet {

// The answer of the continue dialogs.
enum class DriverAnswer {
  kSameData,   // run the same control file again
  kOtherData,  // choose another job
  kStop,       // end the program
};

// A request of the user to end a long task (the interrupt key during a
// search); set by the thread that waits for the signal, read by the workers.
struct InterruptFlag {
  std::atomic<bool> raised{false};
  InterruptFlag() = default;
  InterruptFlag(const InterruptFlag& other) : raised(other.raised.load()) {}
  InterruptFlag& operator=(const InterruptFlag& other) {
    raised = other.raised.load();
    return *this;
  }
};

// What the run driver keeps for the whole process.
struct DriverState {
  std::string commandLine;                        // the arguments, joined by blanks
  int commandLineLength = 0;                      // its length; 0 once the arguments are used
  std::string PcrCode;                            // control-file code of the job
  std::string DatCode;                            // data-file code of the job
  bool jobRunning = false;                        // a job has opened its control file
  std::string startDirectory;                     // directory the file dialog starts in
  std::string envDirectory;                       // directory named by CORVINET, with a slash
  std::string dirMemoryPath;                      // file that remembers the start directory
  bool dirMemoryOpen = false;                     // that file is open
  int cyclicMode = 0;                             // 1 while a series of data files is run
  DriverAnswer answer = DriverAnswer::kSameData;  // answer of the last continue dialog
  double cpuStart = 0.0;                          // CPU clock at the start of the run, seconds
  double cpuEnd = 0.0;                            // CPU clock at the end of the run, seconds
  InterruptFlag interrupt;                        // the user asked to end the search
  int pointThreads = 0;  // threads of the point loop (CORVINET_THREADS); 0: one per core
};

// Everything a run reads and computes; cleared by ResetDefaults before each run.
struct RunData {
  DimensionLimits dimensions;  // capacities of the process, chosen at start-up; kept by the reset
  RunOptions run;
  Table1<Pattern, DimensionLimits::NPATT> patterns;
  NumericalProfile numericalProfile;
  Table1<Phase, DimensionLimits::NPHT> phases;
  Table1<AtomSite, DimensionLimits::NATS> atoms;
  Table1<RigidModel, DimensionLimits::NPHT> rigid;  // groups of the user-model phases
  ParameterLimits limits;
  RefinementState refinement;
  ReliabilityState reliability;
  int LINE = 0;         // line counter of the control file
  RandomSource random;  // the run's random source
};

// The number of refined parameters the equations hold: MAXS, at most MSZ.
inline int FittedCount(const RunData& data) {
  return data.run.MAXS < data.dimensions.MSZ ? data.run.MAXS : data.dimensions.MSZ;
}

// Makes room in every table of parameters for parameter numbers up to n (at
// most MSZ), before the cycles: the tables already wide enough are left as
// they are, the square ones are cleared when they widen.
void GrowParameterTables(RunData& data, int n);

// Makes room for n points in pattern ip and in the cycles' order work.
void GrowPointTables(RunData& data, int ip, int n);

// The run's data is reachable directly (job.run, job.patterns[ip]); the driver,
// console and file-set state (its Channels) outlive the runs of a process.
struct Job : RunData, Channels {
  DriverState driver;
};

}  // namespace corvinet
