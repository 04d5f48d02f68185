// The job record: everything one process and its runs know, passed by reference.
#pragma once

#include <cstdio>
#include <string>

#include "control/parameter_limits.h"
#include "control/pattern.h"
#include "control/phase.h"
#include "control/run_options.h"
#include "refine/refinement_state.h"
#include "refine/reliability_state.h"
#include "run/dimension_limits.h"
#include "run/random_source.h"
#include "run/table1.h"
#include "run/text_unit.h"

namespace corvinet {

// Logical unit numbers of the file set.
namespace Unit {
constexpr int Control = 1;
constexpr int Rpa = 2;
constexpr int Sym = 3;
constexpr int Data = 4;
constexpr int Console = 6;
constexpr int Out = 7;
constexpr int Sum = 8;
constexpr int Fourier = 9;
constexpr int HklOut = 10;
constexpr int Sav = 11;
constexpr int Background = 12;
constexpr int Resolution = 13;
constexpr int Simulated = 14;
constexpr int HklIn = 15;
constexpr int HklBack = 16;
constexpr int Profile = 17;
constexpr int Schakal = 18;
constexpr int NewControl = 19;
constexpr int Shelx = 21;
constexpr int Atoms = 22;
constexpr int PhasePattern = 23;
constexpr int Shape = 24;
constexpr int Corrections = 25;
constexpr int IntensitiesOut = 26;
constexpr int DirMemory = 33;
constexpr int CyclicLog = 34;
constexpr int Count = 40;
}  // namespace Unit

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
  char answer = 's';
  int stopRequested = 0;
  double cpuStart = 0.0;
  double cpuEnd = 0.0;
};

// The terminal and where console lines go.
struct ConsoleState {
  int ConsoleUnit = Unit::Console;  // 6: the terminal; otherwise an open unit (the cyclic log)
  std::FILE* out = stdout;
  std::FILE* in = stdin;
};

// The open units and the naming state of the file set.
struct FileSet {
  Table1<TextUnit, Unit::Count> units;
  bool multiPattern = false;  // set once by the first multi-pattern control file, never cleared
  bool hklFromFile = false;
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
  int LINE = 0;             // line counter of the control file
  float globalChi2 = 0.0f;  // chi-square of the whole run
  RandomSource random;      // the run's random source
};

// The run's data is reachable directly (job.run, job.patterns[ip]); the driver,
// console and file-set state outlive the runs of a process.
struct Job : RunData {
  DriverState driver;
  ConsoleState console;
  FileSet files;
};

}  // namespace corvinet
