// Names, units and open modes of the files of a run.
#include "io/file_set.h"

#include <initializer_list>
#include <vector>

#include "format/fortran_format.h"
#include "surface/console.h"

namespace corvinet {

namespace {

struct UnitFile {
  int unit;
  OpenStatus status;
};

std::string Stem(const std::string& code) {
  return TrimmedCopy(code);
}

bool TryOpen(Job& job, int unit, const std::string& name, OpenStatus status) {
  return OpenUnit(job.files.units[unit], name, status);
}

// Opens the one name of an option, or stops with the single-name message.
void OpenSingle(Job& job, int unit, const std::string& name, OpenStatus status) {
  if (TryOpen(job, unit, name, status)) return;
  StopBox(job, Fmt("(A,A,A,I3)", " => Error opening file: ", name, " Unit:", unit));
}

// Opens the first of the names that can be opened; -1 when none can.
int OpenFirst(Job& job, int unit, const std::vector<std::string>& names, OpenStatus status) {
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (TryOpen(job, unit, names[i], status)) return static_cast<int>(i);
  }
  return -1;
}

OpenStatus AppendIfExists(const std::string& name) {
  return FileExists(name) ? OpenStatus::Append : OpenStatus::Unknown;
}

void OpenDataFile(Job& job, int index) {
  const std::string d = Stem(job.patterns[index].DatCode);
  if (OpenFirst(job, Unit::Data, {d + ".dat", d + ".uxd", d + ".acq"}, OpenStatus::Old) >= 0) {
    return;
  }
  StopBox(job, Fmt("(A,A,A,I3)", " ==> Error opening file CODEFIL.DAT(UXD,ACQ) with CODEFIL=", d,
                   " Unit:", Unit::Data));
}

void OpenReflectionInput(Job& job, int index, int phase) {
  const std::string p = Stem(job.driver.PcrCode);
  const std::string d = Stem(job.patterns[index].DatCode);
  const std::string s = PatternSuffix(job, index);
  const char f = PhaseDigit(phase);
  const std::vector<std::string> names = {p + f + s + ".hkl", d + s + ".int",
                                          std::string("hkl") + f + s + ".hkl"};
  int found = OpenFirst(job, Unit::HklIn, names, OpenStatus::Old);
  if (found >= 0) {
    job.files.hklFromFile = found > 0;
    return;
  }
  StopBox(job, Fmt("(A,A,A,A,A,A,A,I3)", " => Error opening a (hkl)-file: ", names[0], ",",
                   names[1], ",", names[2], " Unit:", Unit::HklIn));
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

void OpenFiles(Job& job, int nopf, int index, int phase) {
  const std::string p = Stem(job.driver.PcrCode);
  const std::string s = PatternSuffix(job, index);
  const char f = PhaseDigit(phase);
  auto d = [&]() { return Stem(job.patterns[index < 1 ? 1 : index].DatCode); };
  switch (nopf) {
    case 1:
      OpenSingle(job, Unit::Control, p + ".pcr",
                 IsStartingCode(p) ? OpenStatus::Unknown : OpenStatus::Old);
      return;
    case 2:
      OpenSingle(job, Unit::Out, p + ".out", OpenStatus::Unknown);
      OpenSingle(job, Unit::Sum, p + ".sum", OpenStatus::Unknown);
      return;
    case 3:
      OpenSingle(job, Unit::Sym, p + ".sym", OpenStatus::Unknown);
      return;
    case 4:
      OpenSingle(job, Unit::Rpa, p + ".rpa", AppendIfExists(p + ".rpa"));
      return;
    case 5:
      OpenDataFile(job, index);
      return;
    case 6:
      OpenReflectionInput(job, index, phase);
      return;
    case 7:
      OpenSingle(job, Unit::Fourier, p + s + ".fou", OpenStatus::Unknown);
      return;
    case 8:
      OpenSingle(job, Unit::HklOut, p + s + ".hkl", OpenStatus::Unknown);
      return;
    case 9:
      OpenSingle(job, Unit::Sav, p + ".sav", AppendIfExists(p + ".sav"));
      return;
    case 10:
      OpenSingle(job, Unit::HklBack,
                 job.files.hklFromFile ? std::string("hkl") + f + s + ".hkl" : p + f + s + ".hkl",
                 OpenStatus::Unknown);
      return;
    case 11:
      OpenSingle(job, Unit::Profile, p + s + ".prf", OpenStatus::Unknown);
      return;
    case 12:
      OpenSingle(job, Unit::Background, d() + s + ".bac", OpenStatus::Unknown);
      return;
    case 13:
      OpenSingle(job, Unit::Resolution, Stem(job.patterns[index < 1 ? 1 : index].ResolutionFile),
                 OpenStatus::Old);
      return;
    case 14:
      OpenSingle(job, Unit::Simulated, p + ".sim", OpenStatus::Unknown);
      return;
    case 15:
      OpenSingle(job, Unit::Schakal, p + f + ".sch", OpenStatus::Unknown);
      return;
    case 16:
      OpenSingle(job, Unit::NewControl, p + ".new", OpenStatus::Unknown);
      return;
    case 17:
      OpenSingle(job, Unit::Shelx, p + (index == 0 ? ".ins" : ".inp"), OpenStatus::Unknown);
      return;
    case 18:
      OpenSingle(job, Unit::Atoms, p + f + ".atm", OpenStatus::Unknown);
      return;
    case 19:
      OpenSingle(job, Unit::PhasePattern, p + f + s + ".sub", OpenStatus::Unknown);
      return;
    case 20:
      if (OpenFirst(job, Unit::Shape, {p + ".shp", "global.shp"}, OpenStatus::Old) < 0) {
        StopBox(job,
                Fmt("(A,A,A,I3)", " => Error opening file: ", "global.shp", " Unit:", Unit::Shape));
      }
      return;
    case 21:
      if (OpenFirst(job, Unit::Corrections, {p + s + ".cor", "cor" + s + ".cor"}, OpenStatus::Old) <
          0) {
        StopBox(job, Fmt("(A,A,A,I3)", " => Error opening file: ", "cor" + s + ".cor",
                         " Unit:", Unit::Corrections));
      }
      return;
    case 22:
      OpenSingle(job, Unit::IntensitiesOut, index > 1 ? p + f + s + ".int" : p + f + ".int",
                 OpenStatus::Unknown);
      return;
    case 1000:
      job.files.multiPattern = true;
      return;
    default:
      StopBox(job, Fmt("(A,I6)", " => Illegal option nopf:", nopf));
  }
}

}  // namespace corvinet
