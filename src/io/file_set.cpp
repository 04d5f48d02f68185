// Names, units and open modes of the files of a run.
#include "io/file_set.h"

#include <vector>

#include "format/fortran_format.h"
#include "surface/console.h"

namespace corvinet {

namespace {

// The parts the names of the files are made of.
struct NameParts {
  std::string pcr;         // control code
  std::string dat;         // data code of the pattern (pattern 1 for index 0)
  std::string resolution;  // resolution-file name of the pattern
  std::string suffix;      // "_n" in a multi-pattern run
  char phase = ' ';        // phase digit
  int index = 0;           // pattern number as asked
  bool hklFromFile = false;
};

using Names = std::vector<std::string>;

// How a file is opened.
enum class Mode {
  kOld,                // it must exist
  kUnknown,            // created or replaced
  kAppendIfExists,     // appended to when it exists
  kOldUnlessStarting,  // created only for a "starting" control code
};

// What the stop says when no name can be opened.
enum class Failure {
  kLastName,  // " => Error opening file: " and the last name tried
  kDataCode,  // the data code with the three extensions
  kAllNames,  // the three names of a reflection file
};

// One file of a kind: its unit, its names (the first that opens wins), how it
// opens and what the stop says.
struct FileRow {
  FileKind kind;
  int unit;
  Names (*names)(const NameParts&);
  Mode mode;
  Failure failure = Failure::kLastName;
  bool marksReflectionSource = false;  // records whether a name after the first opened
};

std::string Stem(const std::string& code) {
  return TrimmedCopy(code);
}

// Whether the file name of a code carries an extension of its own
// ("data.xye"): such a data file is opened as it is named first.
bool HasOwnExtension(const std::string& code) {
  const std::size_t slash = code.rfind('/');
  const std::size_t dot = code.rfind('.');
  return dot != std::string::npos && (slash == std::string::npos || dot > slash + 1) &&
         dot + 1 < code.size();
}

// The names tried for a data file: the code as it is when it has an
// extension, then the code with .dat, .uxd and .acq.
Names DataFileNames(const std::string& code) {
  Names names;
  if (HasOwnExtension(code)) names.push_back(code);
  for (const char* extension : {".dat", ".uxd", ".acq"}) names.push_back(code + extension);
  return names;
}

// The files of every kind; a kind with two rows opens two files.
const FileRow kFiles[] = {
    {FileKind::kControl, Unit::Control, [](const NameParts& n) { return Names{n.pcr + ".pcr"}; },
     Mode::kOldUnlessStarting},
    {FileKind::kOutput, Unit::Out, [](const NameParts& n) { return Names{n.pcr + ".out"}; },
     Mode::kUnknown},
    {FileKind::kOutput, Unit::Sum, [](const NameParts& n) { return Names{n.pcr + ".sum"}; },
     Mode::kUnknown},
    {FileKind::kSymmetry, Unit::Sym, [](const NameParts& n) { return Names{n.pcr + ".sym"}; },
     Mode::kUnknown},
    {FileKind::kRpa, Unit::Rpa, [](const NameParts& n) { return Names{n.pcr + ".rpa"}; },
     Mode::kAppendIfExists},
    {FileKind::kData, Unit::Data, [](const NameParts& n) { return DataFileNames(n.dat); },
     Mode::kOld, Failure::kDataCode},
    {FileKind::kReflectionInput, Unit::HklIn,
     [](const NameParts& n) {
       return Names{n.pcr + n.phase + n.suffix + ".hkl", n.dat + n.suffix + ".int",
                    std::string("hkl") + n.phase + n.suffix + ".hkl"};
     },
     Mode::kOld, Failure::kAllNames, true},
    {FileKind::kFourier, Unit::Fourier,
     [](const NameParts& n) { return Names{n.pcr + n.suffix + ".fou"}; }, Mode::kUnknown},
    {FileKind::kReflectionOutput, Unit::HklOut,
     [](const NameParts& n) { return Names{n.pcr + n.suffix + ".hkl"}; }, Mode::kUnknown},
    {FileKind::kSav, Unit::Sav, [](const NameParts& n) { return Names{n.pcr + ".sav"}; },
     Mode::kAppendIfExists},
    {FileKind::kReflectionBack, Unit::HklBack,
     [](const NameParts& n) {
       return Names{n.hklFromFile ? std::string("hkl") + n.phase + n.suffix + ".hkl"
                                  : n.pcr + n.phase + n.suffix + ".hkl"};
     },
     Mode::kUnknown},
    {FileKind::kProfile, Unit::Profile,
     [](const NameParts& n) { return Names{n.pcr + n.suffix + ".prf"}; }, Mode::kUnknown},
    {FileKind::kBackground, Unit::Background,
     [](const NameParts& n) { return Names{n.dat + n.suffix + ".bac"}; }, Mode::kUnknown},
    {FileKind::kResolution, Unit::Resolution,
     [](const NameParts& n) { return Names{n.resolution}; }, Mode::kOld},
    {FileKind::kSimulated, Unit::Simulated,
     [](const NameParts& n) { return Names{n.pcr + ".sim"}; }, Mode::kUnknown},
    {FileKind::kSchakal, Unit::Schakal,
     [](const NameParts& n) { return Names{n.pcr + n.phase + ".sch"}; }, Mode::kUnknown},
    {FileKind::kNewControl, Unit::NewControl,
     [](const NameParts& n) { return Names{n.pcr + ".new"}; }, Mode::kUnknown},
    {FileKind::kShelx, Unit::Shelx,
     [](const NameParts& n) { return Names{n.pcr + (n.index == 0 ? ".ins" : ".inp")}; },
     Mode::kUnknown},
    {FileKind::kAtoms, Unit::Atoms,
     [](const NameParts& n) { return Names{n.pcr + n.phase + ".atm"}; }, Mode::kUnknown},
    {FileKind::kPhasePattern, Unit::PhasePattern,
     [](const NameParts& n) { return Names{n.pcr + n.phase + n.suffix + ".sub"}; }, Mode::kUnknown},
    {FileKind::kShape, Unit::Shape,
     [](const NameParts& n) {
       return Names{n.pcr + ".shp", "global.shp"};
     },
     Mode::kOld},
    {FileKind::kCorrections, Unit::Corrections,
     [](const NameParts& n) {
       return Names{n.pcr + n.suffix + ".cor", "cor" + n.suffix + ".cor"};
     },
     Mode::kOld},
    {FileKind::kIntensities, Unit::IntensitiesOut,
     [](const NameParts& n) {
       return Names{n.index > 1 ? n.pcr + n.phase + n.suffix + ".int" : n.pcr + n.phase + ".int"};
     },
     Mode::kUnknown},
    // The regrouped clusters: a following run with Irf 4 reads them as the
    // data code <pcr><phase>_grp (CODFILn of its .int file).
    {FileKind::kRegrouped, Unit::IntensitiesOut,
     [](const NameParts& n) { return Names{n.pcr + n.phase + n.suffix + "_grp.int"}; },
     Mode::kUnknown},
    // The curves of the final report carry the control code: they never
    // replace the background file (.bac of the data code) that a run reads.
    {FileKind::kBackgroundCurve, Unit::Background,
     [](const NameParts& n) { return Names{n.pcr + n.suffix + "_bac.xy"}; }, Mode::kUnknown},
    {FileKind::kDifferenceCurve, Unit::Background,
     [](const NameParts& n) { return Names{n.pcr + n.suffix + "_dif.xy"}; }, Mode::kUnknown},
    {FileKind::kZeroDifference, Unit::Background,
     [](const NameParts& n) { return Names{n.pcr + n.suffix + "_zdif.xy"}; }, Mode::kUnknown},
    {FileKind::kJson, Unit::Json, [](const NameParts& n) { return Names{n.pcr + ".json"}; },
     Mode::kUnknown},
    {FileKind::kCif, Unit::Cif,
     [](const NameParts& n) { return Names{n.pcr + "_" + n.phase + n.suffix + ".cif"}; },
     Mode::kUnknown},
};

NameParts PartsOf(const Job& job, int index, int phase) {
  const Pattern& pattern = job.patterns[index < 1 ? 1 : index];
  NameParts n;
  n.pcr = Stem(job.driver.PcrCode);
  n.dat = Stem(pattern.DatCode);
  n.resolution = Stem(pattern.ResolutionFile);
  n.suffix = PatternSuffix(job, index);
  n.phase = PhaseDigit(phase);
  n.index = index;
  n.hklFromFile = job.files.hklFromFile;
  return n;
}

OpenStatus StatusOf(Mode mode, const NameParts& parts, const std::string& name) {
  switch (mode) {
    case Mode::kOld:
      return OpenStatus::Old;
    case Mode::kAppendIfExists:
      return FileExists(name) ? OpenStatus::Append : OpenStatus::Unknown;
    case Mode::kOldUnlessStarting:
      return IsStartingCode(parts.pcr) ? OpenStatus::Unknown : OpenStatus::Old;
    case Mode::kUnknown:
      break;
  }
  return OpenStatus::Unknown;
}

std::string FailureText(const FileRow& row, const NameParts& parts, const Names& names) {
  switch (row.failure) {
    case Failure::kDataCode:
      return Fmt("(A,A,A,I3)",
                 " ==> Error opening file CODEFIL.DAT(UXD,ACQ) with CODEFIL=", parts.dat,
                 " Unit:", row.unit);
    case Failure::kAllNames:
      return Fmt("(A,A,A,A,A,A,A,I3)", " => Error opening a (hkl)-file: ", names[0], ",", names[1],
                 ",", names[2], " Unit:", row.unit);
    case Failure::kLastName:
      break;
  }
  return Fmt("(A,A,A,I3)", " => Error opening file: ", names.back(), " Unit:", row.unit);
}

// Opens the first of the row's names that can be opened, or stops.
void OpenRow(Job& job, const FileRow& row, const NameParts& parts) {
  const Names names = row.names(parts);
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (!OpenUnit(job.files.units[row.unit], names[i], StatusOf(row.mode, parts, names[i]))) {
      continue;
    }
    if (row.marksReflectionSource) job.files.hklFromFile = i > 0;
    return;
  }
  StopBox(job, FailureText(row, parts, names));
}

}  // namespace

std::string PatternSuffix(const Job& job, int index) {
  if (!job.files.multiPattern) return "";
  return "_" + std::to_string(index);
}

char PhaseDigit(int phase) {
  static constexpr char kDigits[] = "_   12345678";
  if (phase < 0 || phase > 8) return ' ';
  return kDigits[3 + phase];
}

bool IsStartingCode(const std::string& code) {
  std::string_view c = TrimRight(code);
  return c.size() >= 8 && c.substr(c.size() - 8) == "starting";
}

std::string FileName(const Job& job, FileKind kind, int index, int phase) {
  for (const FileRow& row : kFiles) {
    if (row.kind == kind) return row.names(PartsOf(job, index, phase)).front();
  }
  return std::string();
}

void OpenFiles(Job& job, FileKind kind, int index, int phase) {
  if (kind == FileKind::kMultiPattern) {
    job.files.multiPattern = true;
    return;
  }
  const NameParts parts = PartsOf(job, index, phase);
  bool known = false;
  for (const FileRow& row : kFiles) {
    if (row.kind != kind) continue;
    known = true;
    OpenRow(job, row, parts);
  }
  if (!known) StopBox(job, Fmt("(A,I6)", " => Illegal option nopf:", static_cast<int>(kind)));
}

}  // namespace corvinet
