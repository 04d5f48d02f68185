// Atom rows of a written control file, in the layout of each kind of phase, with codes composed.
#include <cstdlib>
#include <initializer_list>
#include <vector>

#include "control/control_writer.h"
#include "run/fortran_format.h"
#include "run/text.h"

namespace corvinet {

using control_writer::Head;
using control_writer::Put;

namespace {

// The code of slot j as it goes to the file. A search run keeps the codes as
// typed: they name the searched parameters.
float AtomCode(const Job& job, const AtomSite& a, int j) {
  return job.run.ICRYG == 2 ? a.ATCtyped[j] : ComposeCode(a.ATC[j]);
}

// Values of the slots, then their codes, written under one format.
std::string Slots(const Job& job, const AtomSite& a, std::initializer_list<int> values,
                  std::initializer_list<int> codes, const char* format) {
  std::vector<FormatValue> all;
  for (int j : values) all.emplace_back(a.ATP[j]);
  for (int j : codes) all.emplace_back(AtomCode(job, a, j));
  return FormatText(format, all);
}

// Labels stand in fields of four characters, filled with blanks.
std::string Label(const std::string& text) {
  return FixedText(text, 4);
}

// The first row of phase k in the table of atoms of all phases.
int AtomOffset(const Job& job, int k) {
  int offset = 0;
  for (int q = 1; q < k; ++q) offset += job.phases[q].Nat;
  return offset;
}

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
    const std::string label = Label(a.label);
    const std::string species = Label(a.species);
    std::vector<FormatValue> row{FormatValue(label), FormatValue(species)};
    for (int j = 1; j <= 5; ++j) row.emplace_back(a.ATP[j]);
    row.insert(row.end(), {FormatValue(a.In), FormatValue(a.Fin), FormatValue(a.N_t)});
    for (int j = 1; j <= 5; ++j) row.emplace_back(AtomCode(job, a, j));
    Put(lines, FormatText("(A4,1x,a4,2X,5F9.5,3I4/11X,5F9.2)", row));
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
    const std::string label = Label(a.label);
    const std::string species = Label(a.species);
    std::vector<FormatValue> row{FormatValue(label), FormatValue(species)};
    for (int j = 1; j <= 8; ++j) row.emplace_back(a.ATP[j]);
    for (int j = 1; j <= 8; ++j) row.emplace_back(AtomCode(job, a, j));
    for (int j = 9; j <= 16; ++j) row.emplace_back(a.ATP[j]);
    for (int j = 9; j <= 15; ++j) row.emplace_back(AtomCode(job, a, j));
    Put(lines, FormatText("(A4,1x,a4,2X,5F9.5,3F8.3/11X,5F9.2,3f8.2/2x,8F9.5/ 2X,7F9.2)", row));
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
    const std::string label = Label(a.label);
    const std::string species = Label(a.species);
    std::vector<FormatValue> row{FormatValue(label), FormatValue(species), FormatValue(a.Mag),
                                 FormatValue(a.Vek)};
    for (int j = 1; j <= 8; ++j) row.emplace_back(a.ATP[j]);
    for (int j = 1; j <= 8; ++j) row.emplace_back(AtomCode(job, a, j));
    for (int j : {9, 10, 11, 13, 14, 15, 12}) row.emplace_back(a.ATP[j]);
    for (int j : {9, 10, 11, 13, 14, 15, 12}) row.emplace_back(AtomCode(job, a, j));
    Put(lines, FormatText("(A4,1x,a4,I3,1X,I2,1X,5F8.5,3F8.3/16X,8F8.2/6F8.3,f8.5/7F8.2)", row));
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
    const std::string label = Label(a.label);
    const std::string species = Label(a.species);
    std::vector<FormatValue> row{FormatValue(label), FormatValue(species), FormatValue(a.Mag),
                                 FormatValue(a.Vek)};
    for (int j = 1; j <= 5; ++j) row.emplace_back(a.ATP[j]);
    row.emplace_back(a.N_t);
    Put(lines, FormatText("(A4,1X,A4,3X,I4,1X,I2,1X,5F10.5,I5)", row));
    std::vector<FormatValue> codes;
    for (int j = 1; j <= 5; ++j) codes.emplace_back(AtomCode(job, a, j));
    Put(lines, FormatText("(20X,5F10.2)", codes));
    if (a.N_t == 1 || a.N_t == 3) {
      Put(lines, Slots(job, a, {6, 7, 8, 9, 10, 11, 12}, {}, "(7F10.5,' <-MagPar')"));
      Put(lines, Slots(job, a, {}, {6, 7, 8, 9, 10, 11, 12}, "(7F10.2)"));
    }
    if (a.N_t == 2 || a.N_t == 3) {
      Put(lines, Slots(job, a, {13, 14, 15, 16, 17, 18}, {}, "(6F10.5,' <-Betas')"));
      Put(lines, Slots(job, a, {}, {13, 14, 15, 16, 17, 18}, "(6F10.2)"));
    }
  }
}

}  // namespace

void AppendAtomLines(const Job& job, int k, ControlLines& lines) {
  const Phase& ph = job.phases[k];
  const int jbt = std::abs(ph.Jbt);
  const int offset = AtomOffset(job, k);
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
