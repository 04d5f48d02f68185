// Reflections of a phase read from its file: titles, propagation vectors, records by Irf.
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "crystal/metric.h"
#include "crystal/reflection_generation.h"
#include "crystal/slot_error_stop.h"
#include "crystal/space_group_symbol.h"
#include "format/fortran_format.h"
#include "format/text.h"
#include "io/file_set.h"
#include "surface/console.h"

namespace corvinet {
namespace {

constexpr float kSameVector = 0.00001f;
constexpr std::size_t kTitleLength = 72;

TextUnit& HklUnit(Job& job) {
  return job.files.units[Unit::HklIn];
}

// The next record that holds something; false at the end of the file.
bool NextDataRecord(Job& job, std::string& record) {
  while (ReadRecord(HklUnit(job), record) == RecordRead::Ok) {
    if (!Trim(record).empty()) return true;
  }
  return false;
}

[[noreturn]] void StopUnreadable(Job& job, const std::string& record) {
  ConsoleLine(job, " => Unreadable record of the reflection file:");
  ConsoleLine(job, record);
  StopBox(job, " Error reading the reflection file ");
}

std::string ReadTitle(Job& job) {
  std::string title;
  if (ReadRecord(HklUnit(job), title, kTitleLength) != RecordRead::Ok) {
    StopBox(job, " Error reading the title of the reflection file ");
  }
  return title;
}

void CheckVectorCount(Job& job, const Phase& ph, const std::string& title) {
  std::string record;
  int count = -1;
  if (!NextDataRecord(job, record)) StopUnreadable(job, record);
  const ReadTarget target[] = {&count};
  if (ReadListLine(record, target) != ReadStatus::Ok) StopUnreadable(job, record);
  if (count == ph.Nvk) return;
  ConsoleLine(job, " => Header: " + title);
  StopBox(job, " Wrong number of k-vectors!! ");
}

void CompareVectors(Job& job, const Phase& ph) {
  for (int n = 1; n <= ph.Nvk; ++n) {
    std::string record;
    int number = 0;
    Table1<float, 3> read;
    const ReadTarget targets[] = {&number, &read[1], &read[2], &read[3]};
    if (!NextDataRecord(job, record) || ReadListLine(record, targets) != ReadStatus::Ok) {
      StopUnreadable(job, record);
    }
    const Table1<float, 3>& given = ph.vectors[n].KVEC;
    bool differs = false;
    for (int i = 1; i <= 3; ++i) differs = differs || std::fabs(read[i] - given[i]) >= kSameVector;
    if (!differs) continue;
    WriteLine(job, Unit::Out, " Warning! difference between read and supplied K-vectors:");
    WriteLine(
        job, Unit::Out,
        Fmt("(I4,3F10.5,4X,3F10.5)", n, read[1], read[2], read[3], given[1], given[2], given[3]));
  }
}

// Reads one record of the form of |Irf| into the source; false when it cannot be read.
bool ReadSource(const std::string& record, int form, bool withVectors, ReflectionSource& source) {
  std::vector<ReadTarget> targets = {&source.h, &source.k, &source.l};
  if (withVectors) targets.emplace_back(&source.satelliteIndex);
  targets.emplace_back(&source.multiplicity);
  if (form >= 2) targets.emplace_back(&source.fileValue1);
  if (form >= 3) targets.emplace_back(&source.fileValue2);
  return ReadListLine(record, targets) == ReadStatus::Ok;
}

// The real indices: the vector of the satellite index added with its sign.
void AddVector(const Phase& ph, ReflectionSource& source) {
  source.real = {static_cast<double>(source.h), static_cast<double>(source.k),
                 static_cast<double>(source.l)};
  const int n = std::abs(source.satelliteIndex);
  if (n == 0 || n > ph.Nvk) return;
  const double sign = source.satelliteIndex > 0 ? 1.0 : -1.0;
  for (int i = 0; i < 3; ++i) source.real[i] += sign * ph.vectors[n].KVEC[i + 1];
}

}  // namespace

int ReflectionsFromFile(Job& job, int k, int ip, LorentzFactor lorentz, const HklShift& shift) {
  const Phase& ph = job.phases[k];
  const int form = std::abs(ph.pat[ip].Irf);
  OpenFiles(job, FileKind::kReflectionInput, ip, k);
  const std::string title = ReadTitle(job);
  ReadTitle(job);
  WriteLine(job, Unit::Out, title);
  WriteLine(job, Unit::Out,
            " => Given Laue symmetry  " + std::string(PrintedLaueClass(ph.group.LAUE)));
  WriteLine(job, Unit::Out, " Indices are read from file");
  const bool withVectors = ph.Nvk > 0;
  if (withVectors) {
    CheckVectorCount(job, ph, title);
    CompareVectors(job, ph);
  }
  const SlotContext context = MakeSlotContext(job, k, ip, lorentz, shift);
  Pattern& p = job.patterns[ip];
  int taken = 0;
  std::string record;
  while (NextDataRecord(job, record)) {
    ReflectionSource source;
    if (!ReadSource(record, form, withVectors, source)) StopUnreadable(job, record);
    AddVector(ph, source);
    if (!InsideRange(context, InverseDSquared(context.coefficients, source.real))) continue;
    try {
      taken += StoreReflection(p, p.reflections, context, source);
    } catch (const SlotError& error) {
      StopOnSlotError(job, ip, error);
    }
  }
  CloseUnit(HklUnit(job));
  return taken;
}

}  // namespace corvinet
