// The file set: every file of a run named from the control and data codes and opened on its unit.
#pragma once

#include <string>

#include "records/job.h"

namespace corvinet {

// The kinds of file of a run, numbered as the options of the file set.
enum class FileKind : int {
  kControl = 1,           // .pcr, on Unit::Control
  kOutput = 2,            // .out and .sum
  kSymmetry = 3,          // .sym
  kRpa = 4,               // .rpa, appended to when it exists
  kData = 5,              // .dat, .uxd or .acq of the pattern
  kReflectionInput = 6,   // reflections read from a file
  kFourier = 7,           // .fou
  kReflectionOutput = 8,  // .hkl written by the final report
  kSav = 9,               // .sav, appended to when it exists
  kReflectionBack = 10,   // .hkl written back with the phase digit
  kProfile = 11,          // .prf
  kBackground = 12,       // .bac of the data code
  kResolution = 13,       // the resolution file named in the control file
  kSimulated = 14,        // .sim
  kSchakal = 15,          // .sch
  kNewControl = 16,       // .new
  kShelx = 17,            // .ins (index 0) or .inp
  kAtoms = 18,            // .atm
  kPhasePattern = 19,     // .sub
  kShape = 20,            // .shp of the run or global.shp
  kCorrections = 21,      // .cor of the pattern or the common one
  kIntensities = 22,      // .int written by the final report
  kBackgroundCurve = 23,  // _bac.xy: the background written by the final report
  kDifferenceCurve = 24,  // _dif.xy: the difference written by the final report
  kZeroDifference = 25,   // _zdif.xy: the zero-corrected difference with the background in
  kCif = 26,              // _<phase>.cif: the refined structure and its powder data
  kJson = 27,             // .json: the end and the results of the run, for scripts
  kRegrouped = 30,        // _grp.int: clusters of overlapped peaks of a matching phase
  kMultiPattern = 1000,   // no file: switches on the pattern suffix
};

// Opens the file of `kind` (pattern `index`, phase `phase`) on its unit.
// A file that cannot be opened stops the run with its message, as does a
// kind outside the list.
void OpenFiles(Job& job, FileKind kind, int index, int phase);

// The first name of the file of `kind` (pattern `index`, phase `phase`), for
// a file that is written without being opened on its unit.
std::string FileName(const Job& job, FileKind kind, int index, int phase);

// "_" and the pattern number in a multi-pattern run, otherwise empty.
std::string PatternSuffix(const Job& job, int index);

// A blank for phase 0, the digit of phases 1 to 8.
char PhaseDigit(int phase);

// True when the code's last eight characters are "starting".
bool IsStartingCode(const std::string& code);

}  // namespace corvinet
