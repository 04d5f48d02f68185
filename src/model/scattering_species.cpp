// Resolution of atom labels into the species table of a phase in a pattern: X-ray form
// factors, neutron scattering lengths, magnetic form factors and form-factor objects.
#include "model/scattering_species.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <string>

#include "format/fortran_format.h"
#include "format/text.h"
#include "io/field_reader.h"
#include "model/anomalous_energy.h"
#include "model/elements.h"
#include "model/scattering_tables.h"
#include "records/rigid_model.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr const char* kCoefficientsNotFound = " => Scattering coefficients NOT FOUND for ";
constexpr const char* kCoefficientsStop = " Some scattering coefficients NOT FOUND";
constexpr const char* kLengthNotFound = " => scattering length NOT FOUND for ";
constexpr const char* kLengthStop = " Some scattering length NOT FOUND";

// The species table of one phase in one pattern while its atoms are resolved.
struct SpeciesWork {
  Job& job;
  Phase& phase;
  PhasePattern& table;
  int pattern = 1;  // the pattern whose species these are
  int count = 0;    // running count of species
  AnomalousSource anomalous;
};

void Out(Job& job, std::string_view text) {
  WriteLine(job, Unit::Out, text);
}

// The line is shown on the report and the console, then the stop box ends the run.
[[noreturn]] void ReportAndStop(Job& job, const std::string& line, const char* stop) {
  Out(job, line);
  ConsoleLine(job, line);
  StopBox(job, stop);
}

[[noreturn]] void StopNotFound(Job& job, const char* line, const std::string& label,
                               const char* stop) {
  ReportAndStop(job, Fmt("(A,A4)", line, FixedText(label, 4)), stop);
}

int FindSpecies(const SpeciesWork& w, const std::string& label4) {
  for (int i = 1; i <= w.count; ++i) {
    if (FixedText(w.table.species[i].label, 4) == label4) return i;
  }
  return 0;
}

// Takes the next species number, within the capacity of the table.
ChemicalSpecies& NewSpecies(SpeciesWork& w, const std::string& label4) {
  ++w.count;
  if (w.count > DimensionLimits::N_SPE) {
    ReportAndStop(w.job,
                  Fmt("(A,I3)", " => Maximum number of chemical species: ", DimensionLimits::N_SPE),
                  " Too many chemical species");
  }
  ChemicalSpecies& sp = w.table.species[w.count];
  sp = ChemicalSpecies{};
  sp.label = label4;
  return sp;
}

int ObjectIndex(const std::string& label4) {
  for (int i = 0; i < 10; ++i) {
    if (label4 == kObjectLabels[i]) return i + 1;
  }
  return 0;
}

// An object label gives a new species whose negative number marks the atom as an object.
bool TryObject(SpeciesWork& w, const std::string& label4, int& number) {
  if (ObjectIndex(label4) == 0) return false;
  ++w.table.objectCount;
  NewSpecies(w, label4);
  number = -w.count;
  Out(w.job, Fmt("(1X,A4,A)", label4, "  Form-factor of an user-supplied object"));
  return true;
}

// f' and f'' of a species of the X-ray table: from the energy table at the pattern's energy,
// or from row `row` of the table of reference wavelengths.
void SetAnomalousTerms(const AnomalousSource& source, const std::string& key, int row,
                       ChemicalSpecies& sp) {
  if (!source.atEnergy) {
    AnomalousTerms(row, source.column, sp.fp, sp.fpp);
    return;
  }
  const std::optional<AnomalousPair> terms =
      AnomalousAtEnergy(ElementOfLabel(key).Z, source.energyKeV);
  sp.fp = terms ? terms->fp : 0.0f;
  sp.fpp = terms ? terms->fpp : 0.0f;
}

void AddXraySpecies(SpeciesWork& w, const std::string& label4, int row) {
  const XrayRow& r = FixedScatteringTables().xray[row];
  ChemicalSpecies& sp = NewSpecies(w, label4);
  sp.kind = SpeciesKind::ByLabel;
  for (int j = 1; j <= 9; ++j) sp.coeff[j] = r.v[j - 1];
  SetAnomalousTerms(w.anomalous, label4, static_cast<int>(r.v[9] + 0.5f), sp);
  std::string upper = label4;
  ToUpper(upper);
  const Table1<float, DimensionLimits::N_FORM>& c = sp.coeff;
  Out(w.job, Fmt("(1X,A4,9F10.5,2F9.4)", upper, c[1], c[2], c[3], c[4], c[5], c[6], c[7], c[8],
                 c[9], sp.fp, sp.fpp));
}

void ResolveXrayAtom(SpeciesWork& w, AtomSite& atom) {
  const std::string typed = FixedText(atom.species, 4);
  std::string label = typed;
  ToLower(label);
  if (const int n = FindSpecies(w, label); n != 0) {
    atom.nuclearSpecies = n;
    return;
  }
  if (const int row = FindXrayRow(label); row != 0) {
    AddXraySpecies(w, label, row);
    atom.nuclearSpecies = w.count;
    return;
  }
  if (TryObject(w, typed, atom.nuclearSpecies)) return;
  StopNotFound(w.job, kCoefficientsNotFound, label, kCoefficientsStop);
}

// One attempt of the neutron search: the species so far, the first 86 rows of
// the neutron table, the object labels.
bool TryNeutronLabel(SpeciesWork& w, const std::string& label4, AtomSite& atom) {
  if (const int n = FindSpecies(w, label4); n != 0) {
    atom.nuclearSpecies = n;
    return true;
  }
  if (const int row = FindNeutronRow(label4, ScatteringTables::NeutronSearchRows); row != 0) {
    ChemicalSpecies& sp = NewSpecies(w, label4);
    sp.kind = SpeciesKind::ByLabel;
    sp.fp = FixedScatteringTables().neutron[row].b;
    atom.nuclearSpecies = w.count;
    Out(w.job, Fmt("(1X,A4,F10.4)", label4, sp.fp));
    return true;
  }
  return TryObject(w, label4, atom.nuclearSpecies);
}

void ResolveNeutronAtom(SpeciesWork& w, AtomSite& atom) {
  const std::string typed = FixedText(atom.species, 4);
  if (TryNeutronLabel(w, NucleusLabel(w.phase, atom), atom)) return;
  // Magnetic labels of one-letter elements: MV2 gives V.
  if (TryNeutronLabel(w, FixedText(typed.substr(1, 1), 4), atom)) return;
  StopNotFound(w.job, kLengthNotFound, typed, kLengthStop);
}

void ResolveMagneticAtom(SpeciesWork& w, AtomSite& atom) {
  const std::string label = FixedText(atom.species, 4);
  int n = FindSpecies(w, label);
  if (n == 0) {
    const int row = FindMagneticRow(label);
    if (row == 0) StopNotFound(w.job, kCoefficientsNotFound, label, kCoefficientsStop);
    const MagneticRow& r = FixedScatteringTables().magnetic[row];
    ChemicalSpecies& sp = NewSpecies(w, label);
    sp.kind = SpeciesKind::ByLabel;
    for (int j = 1; j <= 7; ++j) sp.coeff[j] = r.v[j - 1];
    const Table1<float, DimensionLimits::N_FORM>& c = sp.coeff;
    Out(w.job, Fmt("(1X,A4,7F10.5)", label, c[1], c[2], c[3], c[4], c[5], c[6], c[7]));
    n = w.count;
  }
  atom.magneticSpecies = n;
  // A purely magnetic phase has no nuclear species: its one species is the magnetic one.
  if (std::abs(w.phase.Jbt) != 10) atom.nuclearSpecies = n;
}

// A line of a rigid-body phase that holds a group's parameters: it has no species.
bool IsGroupParameterLine(const Phase& ph, const AtomSite& atom) {
  return std::abs(ph.Jbt) == 4 && IsRigidGroupLine(atom);
}

int FirstAtom(const Phase& ph) {
  return ph.atomOffset + 1;
}

int LastAtom(const Phase& ph, int atomCount) {
  return std::min(ph.atomOffset + atomCount, DimensionLimits::NATS);
}

// Which table the f' and f'' of the species come from.
void ReportAnomalousSource(Job& job, const AnomalousSource& source, float lambda) {
  if (source.atEnergy) {
    Out(job, Fmt("(A,F8.3,A,F8.5,A)", " => Anomalous terms f', f'' at", source.energyKeV,
                 " keV (lambda", lambda, " A), from the energy table (Kissel)"));
    return;
  }
  const float reference = FixedScatteringTables().referenceWavelengths[source.column];
  Out(job, Fmt("(A,F8.5,A,I1,A)", " => Anomalous terms f', f'' for the reference wavelength",
               reference, " A (column ", source.column, " of the internal table)"));
}

void ResolveXray(SpeciesWork& w, int atomCount) {
  Out(w.job, " => Scattering coefficients from internal table");
  ReportAnomalousSource(w.job, w.anomalous, w.job.patterns[w.pattern].LAMBDA[1]);
  Out(w.job, " => X-ray scattering coeff. (A1,B1,A2,...C,Dfp,Dfpp)");
  for (int i = FirstAtom(w.phase); i <= LastAtom(w.phase, atomCount); ++i) {
    if (IsGroupParameterLine(w.phase, w.job.atoms[i])) continue;
    ResolveXrayAtom(w, w.job.atoms[i]);
  }
}

void ResolveNeutron(SpeciesWork& w, int atomCount) {
  Out(w.job, " => Scattering lengths:");
  for (int i = FirstAtom(w.phase); i <= LastAtom(w.phase, atomCount); ++i) {
    if (IsGroupParameterLine(w.phase, w.job.atoms[i])) continue;
    ResolveNeutronAtom(w, w.job.atoms[i]);
  }
}

// In a nuclear and magnetic phase only the atoms that bear a moment have a
// magnetic form factor.
void ResolveMagnetic(SpeciesWork& w, int atomCount) {
  Out(w.job, " => Magnetic form-factor coeff. (A,a,B,b,C,c,D)");
  const bool both = std::abs(w.phase.Jbt) == 10;
  for (int i = FirstAtom(w.phase); i <= LastAtom(w.phase, atomCount); ++i) {
    AtomSite& atom = w.job.atoms[i];
    if (both && !BearsMoment(atom)) continue;
    ResolveMagneticAtom(w, atom);
  }
}

// The latest earlier phase of the pattern that holds species, or 0. Its count
// is the running count of the pattern: phases that do not contribute to the
// pattern, or have no structure, hold none.
int PreviousPhaseWithSpecies(const Job& job, int ip, int k) {
  for (int j = k - 1; j >= 1; --j) {
    if (job.phases[j].pat[ip].speciesCount > 0) return j;
  }
  return 0;
}

ChemicalSpecies SpeciesOfEntry(const Pattern& p, const ScatteringEntry& e) {
  ChemicalSpecies sp;
  sp.label = FixedText(e.NAM, 4);
  sp.fp = e.Fprime;
  sp.fpp = e.Fsecond;
  sp.kind = e.ITAB;
  for (int j = 1; j <= 9; ++j) sp.coeff[j] = e.coef[j];
  if (p.NSCAT < 0) {
    sp.nTable = e.tablePoints;
    for (int j = 1; j <= e.tablePoints; ++j) {
      sp.sTable[j] = e.tableX[j];
      sp.coeff[j] = e.tableY[j];
    }
  }
  return sp;
}

// The table starts with the species of the earlier phases of the pattern, which
// begin with the pattern's scattering entries; the entries beyond them are
// added. Returns the running count.
int StartSpeciesTable(Job& job, int ip, int k, int speciesGiven) {
  PhasePattern& table = job.phases[k].pat[ip];
  int running = 0;
  if (const int previous = PreviousPhaseWithSpecies(job, ip, k); previous != 0) {
    const PhasePattern& before = job.phases[previous].pat[ip];
    running = before.speciesCount;
    for (int j = 1; j <= running; ++j) table.species[j] = before.species[j];
  }
  const Pattern& p = job.patterns[ip];
  const int given = std::min(speciesGiven, DimensionLimits::N_SPE);
  for (int j = running + 1; j <= given; ++j) {
    table.species[j] = SpeciesOfEntry(p, p.scattering[j]);
  }
  table.objectCount = 0;
  return std::max(running, given);
}

// The objects of a phase: its atoms typed with an object label. More than
// N_FORM stop; any opens the report of objects.
void CheckObjectCount(Job& job, const Phase& ph, int atomCount) {
  int objects = 0;
  for (int i = FirstAtom(ph); i <= LastAtom(ph, atomCount); ++i) {
    if (ObjectIndex(FixedText(job.atoms[i].species, 4)) != 0) ++objects;
  }
  if (objects == 0) return;
  if (objects > DimensionLimits::N_FORM) {
    Out(job,
        Fmt("(A,I4)", " => Number of objects greater than the maximum:", DimensionLimits::N_FORM));
    ConsoleLine(
        job,
        Fmt("(A,I4)", " => Number of objects greater than the maximum:", DimensionLimits::N_FORM));
    StopBox(job, " Too many form factors ");
  }
  const std::string rule(60, '=');
  Out(job, " " + rule);
  Out(job, " Form factor option");
  Out(job, " " + rule);
}

}  // namespace

std::string NucleusLabel(const Phase& phase, const AtomSite& atom) {
  const std::string typed = FixedText(atom.species, 4);
  if (std::abs(phase.Jbt) == 10 && BearsMoment(atom)) return typed.substr(1, 2) + "  ";
  return typed;
}

int AnomalousColumn(float lambda1) {
  const ScatteringTables& t = FixedScatteringTables();
  int c = 1;
  while (c <= ScatteringTables::Wavelengths && !(t.referenceWavelengths[c] < lambda1 + 0.1f)) ++c;
  return c;
}

AnomalousSource AnomalousSourceOf(float lambda1) {
  AnomalousSource source;
  source.column = AnomalousColumn(lambda1);
  if (lambda1 > 0.0f && AnomalousFromEnergy(lambda1)) {
    source.atEnergy = true;
    source.energyKeV = kKeVAngstrom / lambda1;
  }
  return source;
}

void AnomalousTerms(int row, int column, float& fp, float& fpp) {
  fp = 0.0f;
  fpp = 0.0f;
  if (row < 1 || row > ScatteringTables::AnomalousRows) return;
  if (column < 1 || column > ScatteringTables::Wavelengths) return;
  const ScatteringTables& t = FixedScatteringTables();
  fp = t.anomalous(row, column);
  fpp = t.anomalous(row, column + ScatteringTables::Wavelengths);
}

void ResolveScatteringSpecies(Job& job, int ip, int k, int atomCount, int speciesGiven,
                              const AnomalousSource& anomalous, int radiation) {
  Phase& ph = job.phases[k];
  SpeciesWork w{job, ph, ph.pat[ip], ip, StartSpeciesTable(job, ip, k, speciesGiven), anomalous};
  const int jbt = std::abs(ph.Jbt);
  if (jbt != 1 && jbt != 5) CheckObjectCount(job, ph, atomCount);
  if (IsNeutronJob(radiation)) {
    if (jbt != 1 && jbt != 5) ResolveNeutron(w, atomCount);
    if (jbt == 10 || jbt == 1 || jbt == 5) ResolveMagnetic(w, atomCount);
  } else {
    ResolveXray(w, atomCount);
  }
  w.table.speciesCount = w.count;
}

void SetUpPhaseSpecies(Job& job, int k, int ip) {
  const Phase& ph = job.phases[k];
  if (std::abs(ph.Jbt) == 2 || std::abs(ph.Jbt) == 3) return;
  if (ph.pat[ip].Contribution == 0) return;
  const Pattern& p = job.patterns[ip];
  const int radiation = std::abs(p.JOBTYP);
  // A list of integrated intensities was measured at the wavelength of its file.
  const float lambda =
      std::abs(ph.pat[ip].Irf) == 4 ? p.intensities.phase[k].WAVELENGTH : p.LAMBDA[1];
  const AnomalousSource source =
      IsNeutronJob(radiation) ? AnomalousSource{} : AnomalousSourceOf(lambda);
  ResolveScatteringSpecies(job, ip, k, ph.Nat, p.scatteringCount, source, radiation);
}

namespace {

// Copies the nine coefficients of the X-ray row of `label`, folded to lower case.
void CopyXrayCoefficients(Job& job, std::string& label, float* coef) {
  ToLower(label);
  const int row = FindXrayRow(label);
  if (row == 0) StopNotFound(job, kCoefficientsNotFound, label, kCoefficientsStop);
  const XrayRow& r = FixedScatteringTables().xray[row];
  for (int j = 0; j < 9; ++j) coef[j] = r.v[j];
}

}  // namespace

void LookupScatteringByLabel(Job& job, ScatteringEntry& entry) {
  CopyXrayCoefficients(job, entry.NAM, entry.coef.ptr());
}

void LookupScatteringByLabel(Job& job, ChemicalSpecies& species) {
  CopyXrayCoefficients(job, species.label, species.coeff.ptr());
}

}  // namespace corvinet
