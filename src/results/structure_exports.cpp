// The refined structure of a phase as Schakal, STRUPLO, SHELX and map-program input, and the rows
// of the Fourier reflection file.
#include "results/structure_exports.h"

#include <cctype>
#include <cmath>
#include <cstdlib>

#include "crystal/group_operators.h"
#include "format/fortran_format.h"
#include "format/text.h"
#include "results/cif_text.h"
#include "results/exported_atoms.h"

namespace corvinet {

namespace {

constexpr float kBToShelxU = 0.012665148f;  // 1 / (8 pi^2)
constexpr float kShelxFixed = 10.0f;        // added to a value that SHELX is to keep fixed

bool IsIdentity(const SymmetryOperator& op) {
  for (int i = 1; i <= 3; ++i) {
    if (std::fabs(op.translation[i] - std::round(op.translation[i])) > 1.0e-4f) return false;
    for (int j = 1; j <= 3; ++j) {
      if (op.rotation(i, j) != (i == j ? 1 : 0)) return false;
    }
  }
  return true;
}

std::string Upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

// The operator as SHELX and the plot programs write it: "-X+1/2, Y, Z+1/2".
std::string OperatorText(const SymmetryOperator& op) {
  std::string text = Upper(OperatorXyz(op));
  std::string out;
  for (char c : text) out += c == ',' ? std::string(", ") : std::string(1, c);
  return out;
}

const std::vector<std::string>& CentringRows(char lattice) {
  static const std::vector<std::string> kNone;
  static const std::vector<std::string> kR = {"DUPL  1/3+X, 2/3+Y, 2/3+Z",
                                              "DUPL  2/3+X, 1/3+Y, 1/3+Z"};
  static const std::vector<std::string> kA = {"DUPL  X, 1/2+Y, 1/2+Z    "};
  static const std::vector<std::string> kB = {"DUPL  1/2+X, Y, 1/2+Z    "};
  static const std::vector<std::string> kC = {"DUPL  1/2+X, 1/2+Y, Z    "};
  static const std::vector<std::string> kI = {"DUPL  1/2+X, 1/2+Y, 1/2+Z"};
  static const std::vector<std::string> kF = {kA[0], kB[0], kC[0]};
  switch (std::toupper(static_cast<unsigned char>(lattice))) {
    case 'R':
      return kR;
    case 'A':
      return kA;
    case 'B':
      return kB;
    case 'C':
      return kC;
    case 'I':
      return kI;
    case 'F':
      return kF;
    default:
      return kNone;
  }
}

std::string CellText(const Table1<float, 6>& c) {
  return Fmt("(3F10.5,3F10.4)", c[1], c[2], c[3], c[4], c[5], c[6]);
}

void SchakalLines(const Job& job, int ip, int f, std::vector<std::string>& lines) {
  const Phase& ph = job.phases[f];
  const SpaceGroup& g = ph.group;
  lines.push_back("TITL " + CutText(ph.PhaseTitle, 70));
  lines.push_back("Remark: " + TrimmedCopy(ph.SpaceGroupSymbol));
  lines.push_back("CELL " + CellText(ph.pat[ip].CellConstants));
  for (const ExportedAtom& e : ExportedAtoms(job, f)) {
    const AtomSite& a = e.site;
    lines.push_back(
        Fmt("(A4,1X,A4,1X,3F10.5)", "ATOM", FixedText(a.label, 4), a.ATP[1], a.ATP[2], a.ATP[3]));
  }
  for (int n = 1; n <= g.NSYM; ++n) {
    const SymmetryOperator op = ReducedOperator(g, n);
    if (IsIdentity(op)) continue;
    std::string row = "SYMM ";
    for (int i = 1; i <= 3; ++i) {
      row += Fmt("(F12.6,3I4)", op.translation[i], op.rotation(i, 1), op.rotation(i, 2),
                 op.rotation(i, 3));
    }
    lines.push_back(row);
  }
  if (g.ICENT == 2) lines.push_back("DUPL  1-X,1-Y,1-Z");
  for (const std::string& row : CentringRows(g.latticeLetter)) lines.push_back(row);
  lines.push_back("BOX    0.05  0.05  0.05");
  lines.push_back("ADD");
  lines.push_back("END");
}

// The element part and the number part of an atom name: "O12" gives "O" and "12".
std::pair<std::string, std::string> SplitName(const std::string& name) {
  const std::string trimmed = TrimmedCopy(name);
  std::size_t cut = 0;
  while (cut < trimmed.size() && std::isalpha(static_cast<unsigned char>(trimmed[cut]))) ++cut;
  return {trimmed.substr(0, cut), trimmed.substr(cut)};
}

void StruploLines(const Job& job, int ip, int f, std::vector<std::string>& lines) {
  const Phase& ph = job.phases[f];
  lines.push_back("TITLE " + CutText(ph.PhaseTitle, 70));
  lines.push_back("CELL  " + CellText(ph.pat[ip].CellConstants));
  for (const char* fixed :
       {"FORM 4", "VIEW 1 0 0", "XYZR  -0.2 1.2 -0.2 1.2 -0.20 1.20", "OCTA 90 10 2.1 0.1",
        "TETR 109 10 1.7 0.36", "SHAD -1 ", "BZRR 3.25 !Put here the correct information",
        "PARA 1 1 1 1 1 1 1 3.3"}) {
    lines.push_back(fixed);
  }
  for (const ExportedAtom& e : ExportedAtoms(job, f)) {
    const AtomSite& a = e.site;
    const auto [element, number] = SplitName(a.label);
    lines.push_back(Fmt("(A4,1X,A4,3F10.5)", FixedText(element, 4), FixedText(number, 4), a.ATP[1],
                        a.ATP[2], a.ATP[3]));
  }
}

// SHELX lattice number: P 1, I 2, R 3, F 4, A 5, B 6, C 7; negative for a group without a
// centre of symmetry at the origin.
int ShelxLattice(const SpaceGroup& g) {
  static const char kLetters[] = "PIRFABC";
  int n = 1;
  for (int i = 0; i < 7; ++i) {
    if (std::toupper(static_cast<unsigned char>(g.latticeLetter)) == kLetters[i]) n = i + 1;
  }
  return g.ICENT == 1 ? -n : n;
}

// A coordinate brought to [0, 1).
float InCell(float x) {
  if (x < 0.0f) x += 1.0f;
  if (x > 1.0f - 1.0e-5f) x -= 1.0f;
  return x;
}

void ShelxPhaseLines(const Job& job, int ip, int f, std::vector<std::string>& lines) {
  const Phase& ph = job.phases[f];
  const PhasePattern& pp = ph.pat[ip];
  const SpaceGroup& g = ph.group;
  const Table1<float, 6>& c = pp.CellConstants;
  lines.push_back("TITL " + CutText(ph.PhaseTitle, 70));
  lines.push_back(Fmt("(A,F8.4,6F10.4)", "CELL ", job.patterns[ip].LAMBDA[1], c[1], c[2], c[3],
                      c[4], c[5], c[6]));
  lines.push_back(Fmt("(A,I4,6F10.4)", "ZERR ", 1, 0.001f, 0.001f, 0.001f, 0.0f, 0.0f, 0.0f));
  lines.push_back(Fmt("(A,I3)", "LATT ", ShelxLattice(g)));
  for (int n = 1; n <= g.NSYM; ++n) {
    const SymmetryOperator op = ReducedOperator(g, n);
    if (!IsIdentity(op)) lines.push_back("SYMM " + FixedText(OperatorText(op), 35));
  }
  const int order = g.NSYM * g.NLAT * (g.ICENT == 2 ? 2 : 1);
  std::string unit = "UNIT";
  for (int s = 1; s <= pp.speciesCount; ++s) {
    const ChemicalSpecies& sp = pp.species[s];
    std::string row = "SFAC " + Upper(TrimmedCopy(sp.label));
    for (int j = 1; j <= 9; ++j) row += Fmt("(F10.5)", sp.coeff[j]);
    lines.push_back(row + Fmt("(2F9.4)", sp.fp, sp.fpp));
    double count = 0.0;
    for (const ExportedAtom& e : ExportedAtoms(job, f)) {
      if (e.site.nuclearSpecies == s) count += e.site.ATP[5] * order;
    }
    unit += Fmt("(I6)", static_cast<int>(std::lround(count)));
  }
  lines.push_back(unit);
  for (const char* fixed :
       {"HKLF 3", "OMIT  ", "L.S.  3 ", "WGHT  0.000 ", "FMAP  2  -3  28  60  0 ",
        "GRID -2  -2  -2   2   2   2", "FVAR  1.0"}) {
    lines.push_back(fixed);
  }
  for (const ExportedAtom& e : ExportedAtoms(job, f)) {
    const AtomSite& a = e.site;
    lines.push_back(Fmt("(A4,1X,I2,1X,5F12.5)", FixedText(a.label, 4), std::abs(a.nuclearSpecies),
                        InCell(a.ATP[1]) + kShelxFixed, InCell(a.ATP[2]) + kShelxFixed,
                        InCell(a.ATP[3]) + kShelxFixed, a.ATP[5] + kShelxFixed,
                        kBToShelxU * a.ATP[4] + kShelxFixed));
  }
  lines.push_back("END  ");
}

}  // namespace

std::vector<std::string> StructurePlotLines(const Job& job, int ip, int f) {
  std::vector<std::string> lines;
  if (job.phases[f].Jvi == 1) SchakalLines(job, ip, f, lines);
  if (job.phases[f].Jvi == 2) StruploLines(job, ip, f, lines);
  return lines;
}

std::vector<std::string> ShelxLines(const Job& job, int ip) {
  std::vector<std::string> lines;
  for (int f = 1; f <= job.run.NPHASE; ++f) {
    const Phase& ph = job.phases[f];
    if (ph.pat[ip].Contribution == 0 || !HasStructure(ph) || ph.Nat <= 0) continue;
    ShelxPhaseLines(job, ip, f, lines);
  }
  return lines;
}

std::vector<std::string> FourierTemplateLines(const Job& job, int ip,
                                              const std::string& fourierName,
                                              const std::string& binaryName) {
  std::vector<std::string> lines;
  const int jfou = std::abs(job.patterns[ip].JFOU);
  for (int f = 1; f <= job.run.NPHASE; ++f) {
    const Phase& ph = job.phases[f];
    if (ph.pat[ip].Contribution == 0 || !HasStructure(ph) || ph.Nat <= 0) continue;
    lines.push_back("  ! Template file to be used with the program SYNTHMAP");
    lines.push_back("  ! Title of the job");
    lines.push_back("Titl " + CutText(ph.PhaseTitle, 70));
    lines.push_back("  ! Cell parameters");
    lines.push_back("Cell " + CellText(ph.pat[ip].CellConstants));
    lines.push_back("  ! Atoms in the asymmetric unit ");
    for (const ExportedAtom& e : ExportedAtoms(job, f)) {
      const AtomSite& a = e.site;
      lines.push_back(
          Fmt("(A,A4,3F10.5)", "Atom ", FixedText(a.label, 4), a.ATP[1], a.ATP[2], a.ATP[3]));
    }
    lines.push_back("  ! Space group symbol");
    lines.push_back("Spgr " + TrimmedCopy(ph.SpaceGroupSymbol));
    lines.push_back("  ! Type of Fourier synthesis ");
    lines.push_back("Fourier Fobs ");
    lines.push_back("  ! Name of the Fourier-reflection file");
    lines.push_back("File  fou " + fourierName);
    lines.push_back("  ! Format of the Fourier-reflection file");
    lines.push_back(jfou == 3 ? "Form    h k l fo fc phase" : "Form    h k l   A  B  fo ");
    lines.push_back("  ! Standard output binary file");
    lines.push_back("File   bin " + binaryName);
    lines.push_back("  ! Peak search ");
    lines.push_back("Scan  5");
    lines.push_back("  ! End of file");
    lines.push_back("End ");
    break;  // the map program takes one structure: the first phase with atoms
  }
  return lines;
}

std::string FourierFileRow(int jfou, const FourierRow& r) {
  switch (std::abs(jfou)) {
    case 3:
      return Fmt("(3I4,2F12.4,F9.2)", r.h, r.k, r.l, r.Fobs, r.Fcalc, r.phase);
    case 4:
      return Fmt("(3I4,3F12.4)", r.h, r.k, r.l, r.A, r.B, r.Fobs);
    default:
      return Fmt("(3I4,2F8.2)", r.h, r.k, r.l, r.Fobs, r.sigmaF);
  }
}

}  // namespace corvinet
