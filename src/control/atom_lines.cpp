// Atom lines of a phase: reading them with their codes, and decoding the codes into parameters.
#include "control/atom_lines.h"

#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "control/codeword_check.h"
#include "format/fortran_format.h"
#include "format/text.h"
#include "io/field_reader.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr float kDegree = 0.017453292f;

// Reads one line of values into the slots of an atom (and optional leading
// targets), echoing the line as read behind `echo`.
void ReadValues(Job& job, AtomSite& a, std::string_view mask, std::vector<ReadTarget> targets,
                std::initializer_list<int> slots, std::string_view echo = "") {
  for (int s : slots) targets.emplace_back(&a.ATP[s]);
  std::string line;
  ReadMaskedLineList(job, Unit::Control, mask, job.LINE, targets, &line);
  WriteLine(job, Unit::Out, std::string(echo) + line);
}

// Reads the line of codes of the given slots; its echo begins with "Codes: ".
void ReadCodes(Job& job, AtomSite& a, std::initializer_list<int> slots) {
  std::vector<ReadTarget> targets;
  for (int s : slots) targets.emplace_back(&a.ATCtyped[s]);
  std::string line;
  ReadMaskedLineList(job, Unit::Control, std::string(slots.size(), 'f'), job.LINE, targets, &line);
  WriteLine(job, Unit::Out, "Codes: " + line);
}

// A line of values of the given slots and the line of their codes.
void ReadSlotLines(Job& job, AtomSite& a, std::initializer_list<int> slots,
                   std::string_view echo = "") {
  ReadValues(job, a, std::string(slots.size(), 'f'), {}, slots, echo);
  ReadCodes(job, a, slots);
}

// A crystal atom: values with operator range and kind, codes, then betas or
// form-factor parameters by the kind.
void ReadCrystalAtomLines(Job& job, AtomSite& a) {
  std::string line;
  ReadMaskedLine(job, Unit::Control, "44fffffiii", job.LINE,
                 {&a.label, &a.species, &a.ATP[1], &a.ATP[2], &a.ATP[3], &a.ATP[4], &a.ATP[5],
                  &a.In, &a.Fin, &a.N_t},
                 &line);
  WriteLine(job, Unit::Out, line);
  ReadCodes(job, a, {1, 2, 3, 4, 5});
  if (std::abs(a.N_t) == 2) {
    ReadSlotLines(job, a, {13, 14, 15, 16, 17, 18});
  }
  if (std::abs(a.N_t) == 4) {
    ReadSlotLines(job, a, {19, 20, 21, 22, 23, 24, 25});
    ReadSlotLines(job, a, {26, 27, 28, 29, 30, 31, 32});
  }
}

void ReadModelAtomLines(Job& job, AtomSite& a) {
  ReadValues(job, a, "44ffffffff", {&a.label, &a.species}, {1, 2, 3, 4, 5, 6, 7, 8});
  ReadCodes(job, a, {1, 2, 3, 4, 5, 6, 7, 8});
  ReadValues(job, a, "ffffffff", {}, {9, 10, 11, 12, 13, 14, 15, 16});
  // The code of the last model parameter cannot be given.
  ReadCodes(job, a, {9, 10, 11, 12, 13, 14, 15});
  a.N_t = 0;
}

void ReadMagneticAtomLines(Job& job, const Phase& ph, AtomSite& a) {
  ReadValues(job, a, "44iiffffffff", {&a.label, &a.species, &a.Mag, &a.Vek},
             {1, 2, 3, 4, 5, 6, 7, 8});
  ReadCodes(job, a, {1, 2, 3, 4, 5, 6, 7, 8});
  ReadSlotLines(job, a, {9, 10, 11, 13, 14, 15, 12}, std::abs(ph.Jbt) == 5 ? "P9-15->" : " Imm-> ");
  a.N_t = 1;
}

void ReadCombinedAtomLines(Job& job, AtomSite& a) {
  std::string line;
  ReadMaskedLine(job, Unit::Control, "44iifffffi", job.LINE,
                 {&a.label, &a.species, &a.Mag, &a.Vek, &a.ATP[1], &a.ATP[2], &a.ATP[3], &a.ATP[4],
                  &a.ATP[5], &a.N_t},
                 &line);
  WriteLine(job, Unit::Out, line);
  ReadCodes(job, a, {1, 2, 3, 4, 5});
  if (BearsMoment(a)) {
    ReadSlotLines(job, a, {6, 7, 8, 9, 10, 11, 12});
  }
  if (BearsBetas(a)) {
    ReadSlotLines(job, a, {13, 14, 15, 16, 17, 18});
  }
}

// The column heads of the atom echo, by the kind of phase.
void WriteAtomHead(Job& job, int Jbt) {
  WriteLine(job, Unit::Out, " => Initial parameters ==>");
  if (Jbt == 0) {
    WriteLine(job, Unit::Out,
              " Atom  Ntyp                  X         Y         Z         B         occ.      O");
  } else if (Jbt == 4 || Jbt == -4) {
    WriteLine(job, Unit::Out, " => The meaning of the following list of 15 atomic parameters");
    WriteLine(job, Unit::Out, "    is defined above from subroutine STRMOD");
  } else if (Jbt == 10 || Jbt == -10) {
    WriteLine(job, Unit::Out,
              " Atom  Ntyp  Imag  Ikv      x         y         z         B         occ.     Ico");
  } else {
    const char* last = std::abs(Jbt) == 5 ? "P6 " : (Jbt == -1 ? "Momr" : "Mxr ");
    WriteLine(job, Unit::Out,
              std::string(
                  " Atom  Ntyp   R-Mag          x         y         z         B      occ.      ") +
                  last);
  }
}

// Phases whose atoms carry moments: all kinds but crystal, rigid-body and
// profile-matching phases.
bool HasMagneticAtoms(int Jbt) {
  const int m = std::abs(Jbt);
  return Jbt != 0 && m != 2 && m != 3 && m != 4;
}

// Atoms beyond the capacity of the atom table (or of the magnetic atoms) are refused.
void CheckAtomCapacity(Job& job, int k, int offset) {
  const Phase& ph = job.phases[k];
  if (offset + ph.Nat > DimensionLimits::NATS) {
    ConsoleLine(job, Fmt("(A,I5,A,I4)", " => Number of atoms: ", offset + ph.Nat,
                         " exceeds the maximum of ", DimensionLimits::NATS));
    StopBox(job, " Too many atoms ");
  }
  if (!HasMagneticAtoms(ph.Jbt)) return;
  int magnetic = ph.Nat;
  for (int j = 1; j < k; ++j) {
    if (HasMagneticAtoms(job.phases[j].Jbt)) magnetic += job.phases[j].Nat;
  }
  if (magnetic > DimensionLimits::NATM) {
    ConsoleLine(job, Fmt("(A,I5,A,I4)", " => Number of magnetic atoms: ", magnetic,
                         " exceeds the maximum of ", DimensionLimits::NATM));
    StopBox(job, " Too many magnetic atoms ");
  }
}

// Fixes the third imaginary component so that the real and imaginary moments
// are perpendicular in the cell metric.
void FixImaginaryComponent(AtomSite& a, float ca, float cb, float cg) {
  const float R1 = a.ATP[6], R2 = a.ATP[7], R3 = a.ATP[8];
  const float I1 = a.ATP[9], I2 = a.ATP[10];
  a.ATP[11] = -(R1 * I1 + R2 * I2 + cg * (R1 * I2 + R2 * I1) + R3 * (cb * I1 + ca * I2)) /
              (R3 + cb * R1 + ca * R2);
  a.ATC[11] = Codeword{0, 0.0f};
  a.ATCtyped[11] = 0.0f;
}

// Fixes the azimuth of the imaginary moment of a spherical helix.
void FixImaginaryAzimuth(AtomSite& a) {
  const float phi = a.ATP[7], theta = a.ATP[8], thetaI = a.ATP[11];
  if (std::fabs(theta - thetaI) > 90.0f) {
    a.ATP[11] = theta + 90.0f;
    a.ATP[10] = phi;
  } else {
    const float p = (1.0f / std::tan(theta * kDegree)) * (1.0f / std::tan(thetaI * kDegree));
    a.ATP[10] = phi + std::atan2(std::sqrt((1.0f + p) * (1.0f - p)), -p) / kDegree;
  }
  a.ATC[10] = Codeword{0, 0.0f};
  a.ATCtyped[10] = 0.0f;
}

}  // namespace

void ReadAtoms(Job& job, int k) {
  Phase& ph = job.phases[k];
  int offset = 0;
  for (int j = 1; j < k; ++j) offset += job.phases[j].Nat;
  ph.atomOffset = offset;
  CheckAtomCapacity(job, k, offset);
  WriteAtomHead(job, ph.Jbt);
  for (int i = 1; i <= ph.Nat; ++i) {
    AtomSite& a = job.atoms[offset + i];
    a = AtomSite{};
    if (ph.Jbt == 0) {
      ReadCrystalAtomLines(job, a);
    } else if (std::abs(ph.Jbt) == 4) {
      ReadModelAtomLines(job, a);
    } else if (std::abs(ph.Jbt) == 10) {
      ReadCombinedAtomLines(job, a);
    } else {
      ReadMagneticAtomLines(job, ph, a);
    }
  }
}

void DecodeAtomCodes(Job& job, int k) {
  Phase& ph = job.phases[k];
  if (std::abs(ph.Jbt) == 2 || std::abs(ph.Jbt) == 3) return;
  float ca = 0.0f, cb = 0.0f, cg = 0.0f;
  if (ph.Hel == 1) {
    const Table1<float, 6>& cell = ph.pat[1].CellConstants;
    ca = std::cos(cell[4] * kDegree);
    cb = std::cos(cell[5] * kDegree);
    cg = std::cos(cell[6] * kDegree);
  }
  ph.phaseAtomKind = 0;
  for (int i = 1; i <= ph.Nat; ++i) {
    AtomSite& a = job.atoms[ph.atomOffset + i];
    if (BearsBetas(a)) ph.phaseAtomKind = 1;
    if (a.N_t == 4) ph.phaseAtomKind = 3;
    for (int j = 1; j <= DimensionLimits::NAT_P; ++j) {
      a.ATC[j] = DecodeCheckedCode(job, a.ATCtyped[j]);
      if (j >= 9 && j <= 11 && a.ATP[j] != 0.0f) ph.phaseAtomKind = 2;
    }
    if (ph.Jbt == 1 && ph.Hel == 1 && a.ATC[8].parameterNumber != 0) {
      FixImaginaryComponent(a, ca, cb, cg);
    }
    if (ph.Jbt == -1 && ph.Hel == 1 && a.ATC[7].parameterNumber != 0) FixImaginaryAzimuth(a);
  }
  if (std::abs(ph.Jbt) == 4 || ph.Nat == 0) ph.phaseAtomKind = 1;
}

}  // namespace corvinet
