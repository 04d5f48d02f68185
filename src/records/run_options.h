// Run-level options of a job, named by the control file's upper-case fields.
#pragma once

#include <string>

#include "records/table1.h"

namespace corvinet {

struct RunOptions {
  std::string Title;  // control-file title, at most 70 characters
  int NPATT = 1;      // number of patterns
  int NPHASE = 1;     // number of phases (Nph)
  int IDUM = 0;       // cycle control (Dum)
  int IASG = 0;       // rebuild the reflection order every cycle (Ias)
  int NRELL = 0;      // hard limits to read / parameters to search (Nre)
  int ICRYG = 0;      // 0 profiles, 1 integrated intensities, 2/-2 search (Cry)
  int MAT = 0;        // correlation-matrix output (Mat)
  int NXT = 1;        // control-file output (Pcr)
  int IPL1 = 1;       // first symmetry-output option (Syo)
  int JCIL = 0;       // .rpa output (Rpa)
  int JSY = 0;        // .sym output (Sym)
  int ISHOR = 0;      // short output (Sho)
  int NCY = 1;        // number of cycles
  float EPS = 0.2f;   // convergence value
  int MAXS = 0;       // number of refined parameters
  Table1<float, 5> relaxationFactor{{1.0f, 1.0f, 1.0f, 1.0f, 1.0f}};  // R_at, R_an, R_pr, R_gl
  int Nconfg = 0;                       // Monte Carlo: configurations to test
  int Nsolu = 0;                        // Monte Carlo: solutions to print
  int Num_Ref = 0;                      // Monte Carlo: observations used
  int Nscalef = 0;                      // Monte Carlo: scale factor calculated automatically
  float rpaRangeLow = 0.0f;             // angular range of the .rpa statistics (2Th1)
  float rpaRangeHigh = 0.0f;            // (2Th2)
  int commentedOutput = 1;              // 1: the control file is written with comment lines
  int firstFurtherParameter = 59;       // slot before the first further parameter
  bool ConvergenceTestActive = false;   // the cycles stop on convergence
  bool integratedObservations = false;  // some phase has |Irf| 4
  bool restraintsPresent = false;       // some phase has distance or moment restraints
  bool singlePatternForm = true;        // the head had no NPATT line
  bool controlFileComplete = false;     // the whole control file was read
};

}  // namespace corvinet
