// Atom rows of a written control file, in the layout of each kind of phase, with codes composed.
#include <cstdlib>
#include <initializer_list>
#include <vector>

#include "control/control_writer.h"
#include "format/fortran_format.h"
#include "format/text.h"

namespace corvinet {

using control_writer::Head;
using control_writer::Put;

namespace {

// The code of slot j as it goes to the file. A search run keeps the codes as
// typed: they name the searched parameters.
float AtomCode(const Job& job, const AtomSite& a, int j) {
  return job.run.ICRYG == 2 ? a.ATCtyped[j] : ComposeCode(a.ATC[j]);
}

void AddValues(std::vector<FormatValue>& row, const AtomSite& a, std::initializer_list<int> slots) {
  for (int j : slots) row.emplace_back(a.ATP[j]);
}

void AddCodes(std::vector<FormatValue>& row, const Job& job, const AtomSite& a,
              std::initializer_list<int> slots) {
  for (int j : slots) row.emplace_back(AtomCode(job, a, j));
}

// Values of the slots, then their codes, written under one format.
std::string Slots(const Job& job, const AtomSite& a, std::initializer_list<int> values,
                  std::initializer_list<int> codes, const char* format) {
  std::vector<FormatValue> all;
  AddValues(all, a, values);
  AddCodes(all, job, a, codes);
  return FormatText(format, all, FieldFit::kReadBack);
}

// What follows the species at the start of a row: nothing, or the Mag and Vek
// flags of an atom that carries a moment.
enum class RowHead { Plain, Magnetic };

// The values of one atom row, starting with the label and species in fields
// of four characters filled with blanks. FormatValue refers to a text without
// copying it, so the row keeps those two texts itself and is never copied.
struct AtomRow {
  std::string label;
  std::string species;
  std::vector<FormatValue> values;
  AtomRow(const AtomSite& a, RowHead head)
      : label(FixedText(a.label, 4)),
        species(FixedText(a.species, 4)),
        values{FormatValue(label), FormatValue(species)} {
    if (head == RowHead::Magnetic) values.insert(values.end(), {a.Mag, a.Vek});
  }
  AtomRow(const AtomRow&) = delete;
  AtomRow& operator=(const AtomRow&) = delete;
  std::string Text(const char* format) const {
    return FormatText(format, values, FieldFit::kReadBack);
  }
};

void AppendCrystalAtoms(const Job& job, const Phase& ph, int offset, ControlLines& lines) {
  Head(job, lines, "!Atom Typ       X        Y        Z     Biso      Occ     In Fin N_t  /Codes");
  bool anisotropic = false;
  for (int i = 1; i <= ph.Nat; ++i) anisotropic |= job.atoms[offset + i].N_t == 2;
  if (anisotropic) {
    Head(job, lines, "!    beta11   beta22   beta33   beta12   beta13   beta23  /Codes");
  }
  bool formFactorHeadDone = false;
  for (int i = 1; i <= ph.Nat; ++i) {
    const AtomSite& a = job.atoms[offset + i];
    AtomRow row(a, RowHead::Plain);
    AddValues(row.values, a, {1, 2, 3, 4, 5});
    row.values.insert(row.values.end(), {a.In, a.Fin, a.N_t});
    AddCodes(row.values, job, a, {1, 2, 3, 4, 5});
    Put(lines, row.Text("(A4,1x,a4,2X,5F9.5,3I4/11X,5F9.2)"));
    if (std::abs(a.N_t) == 2) {
      Put(lines,
          Slots(job, a, {13, 14, 15, 16, 17, 18}, {13, 14, 15, 16, 17, 18}, "(2X,6F9.5/2X,6F9.2)"));
    }
    if (std::abs(a.N_t) == 4) {
      if (!formFactorHeadDone) Head(job, lines, "! Form-factor refinable parameters");
      formFactorHeadDone = true;
      Put(lines, Slots(job, a, {19, 20, 21, 22, 23, 24, 25}, {19, 20, 21, 22, 23, 24, 25},
                       "(2X,7F9.5/2X,7F9.2)"));
      Put(lines, Slots(job, a, {26, 27, 28, 29, 30, 31, 32}, {26, 27, 28, 29, 30, 31, 32},
                       "(2X,7F9.5/2X,7F9.2)"));
    }
  }
}

void AppendModelAtoms(const Job& job, const Phase& ph, int offset, ControlLines& lines) {
  Head(job, lines, "!Atom Typ      p1       p2       p3      p4     p5      p6     p7     p8");
  Head(job, lines, "!     p9        p10     p11      p12       p13      p14      p15     p16");
  for (int i = 1; i <= ph.Nat; ++i) {
    const AtomSite& a = job.atoms[offset + i];
    AtomRow row(a, RowHead::Plain);
    AddValues(row.values, a, {1, 2, 3, 4, 5, 6, 7, 8});
    AddCodes(row.values, job, a, {1, 2, 3, 4, 5, 6, 7, 8});
    AddValues(row.values, a, {9, 10, 11, 12, 13, 14, 15, 16});
    AddCodes(row.values, job, a, {9, 10, 11, 12, 13, 14, 15});
    Put(lines, row.Text("(A4,1x,a4,2X,5F9.5,3F8.3/11X,5F9.2,3f8.2/2x,8F9.5/ 2X,7F9.2)"));
  }
}

void AppendMagneticHeads(const Job& job, int jbt, ControlLines& lines) {
  const std::string head = "!Atom Typ  Mag Vek    X      Y      Z    ";
  if (jbt == 1) {
    Head(job, lines, head + "   Biso   Occ      Rx      Ry      Rz");
    Head(job, lines, "!     Ix     Iy     Iz    beta11  beta22  beta33   MagPh");
  } else if (jbt == -1) {
    Head(job, lines, head + "   Biso   Occ      Rm      Rphi  Rtheta");
    Head(job, lines, "!     Im   Iphi   Itheta  beta11  beta22  beta33   MagPh");
  } else {
    Head(job, lines, head + "   Biso   Occ      Mom     beta   Phase");
    Head(job, lines, "!   Phi & Theta  of Cone-axis + unused params");
  }
}

// Magnetic atoms: the third line holds slots 9, 10, 11, 13, 14, 15 and MagPh (slot 12) last.
void AppendMagneticAtoms(const Job& job, const Phase& ph, int offset, ControlLines& lines) {
  AppendMagneticHeads(job, ph.Jbt, lines);
  for (int i = 1; i <= ph.Nat; ++i) {
    const AtomSite& a = job.atoms[offset + i];
    AtomRow row(a, RowHead::Magnetic);
    AddValues(row.values, a, {1, 2, 3, 4, 5, 6, 7, 8});
    AddCodes(row.values, job, a, {1, 2, 3, 4, 5, 6, 7, 8});
    AddValues(row.values, a, {9, 10, 11, 13, 14, 15, 12});
    AddCodes(row.values, job, a, {9, 10, 11, 13, 14, 15, 12});
    Put(lines, row.Text("(A4,1x,a4,I3,1X,I2,1X,5F8.5,3F8.3/16X,8F8.2/6F8.3,f8.5/7F8.2)"));
  }
}

void AppendNuclearMagneticHeads(const Job& job, int jbt, ControlLines& lines) {
  Head(job, lines, "!Atom Typ    Mag Vek      X         Y         Z       Biso      Occ    N_type");
  Head(job, lines, "!Line below:Codes");
  if (jbt < 0) {
    Head(job, lines, "!     Rm      Rphi   Rtheta        Im       Rphi     Rtheta      MagPh");
  } else {
    Head(job, lines, "!     Rx       Ry        Rz        Ix        Iy        Iz      MagPh");
  }
  Head(job, lines, "!Line below:Codes or...");
  Head(job, lines, "!    beta11   beta22   beta33   beta12   beta13   beta23  /Line below:Codes");
}

void AppendNuclearMagneticAtoms(const Job& job, const Phase& ph, int offset, ControlLines& lines) {
  AppendNuclearMagneticHeads(job, ph.Jbt, lines);
  for (int i = 1; i <= ph.Nat; ++i) {
    const AtomSite& a = job.atoms[offset + i];
    AtomRow row(a, RowHead::Magnetic);
    AddValues(row.values, a, {1, 2, 3, 4, 5});
    row.values.emplace_back(a.N_t);
    Put(lines, row.Text("(A4,1X,A4,3X,I4,1X,I2,1X,5F10.5,I5)"));
    Put(lines, Slots(job, a, {}, {1, 2, 3, 4, 5}, "(20X,5F10.2)"));
    if (BearsMoment(a)) {
      Put(lines, Slots(job, a, {6, 7, 8, 9, 10, 11, 12}, {}, "(7F10.5,' <-MagPar')"));
      Put(lines, Slots(job, a, {}, {6, 7, 8, 9, 10, 11, 12}, "(7F10.2)"));
    }
    if (BearsBetas(a)) {
      Put(lines, Slots(job, a, {13, 14, 15, 16, 17, 18}, {}, "(6F10.5,' <-Betas')"));
      Put(lines, Slots(job, a, {}, {13, 14, 15, 16, 17, 18}, "(6F10.2)"));
    }
  }
}

}  // namespace

void AppendAtomLines(const Job& job, int k, ControlLines& lines) {
  const Phase& ph = job.phases[k];
  const int jbt = std::abs(ph.Jbt);
  const int offset = ph.atomOffset;
  if (ph.Jbt == 0) {
    if (ph.Nat > 0) AppendCrystalAtoms(job, ph, offset, lines);
  } else if (jbt == 4) {
    AppendModelAtoms(job, ph, offset, lines);
  } else if (jbt == 10) {
    AppendNuclearMagneticAtoms(job, ph, offset, lines);
  } else if (jbt != 2 && jbt != 3) {
    AppendMagneticAtoms(job, ph, offset, lines);
  }
}

}  // namespace corvinet
