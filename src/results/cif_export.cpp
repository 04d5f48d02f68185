// The CIF of a refined phase: one data block with the structure and the powder data of a pattern.
#include "results/cif_export.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "crystal/group_operators.h"
#include "format/date_time.h"
#include "format/text.h"
#include "io/file_set.h"
#include "model/elements.h"
#include "observations/background.h"
#include "records/profile_slots.h"
#include "results/cif_text.h"
#include "results/exported_atoms.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr double kEightPiSquared = 78.95683520871486;  // B = 8 pi^2 U
constexpr double kTwoPiSquared = 19.739208802178716;   // U_ij = beta_ij / (2 pi^2 a*_i a*_j)
constexpr double kSamePosition = 1.0e-3;               // images closer than this coincide

// The number of distinct images of a position under the operators.
int SiteMultiplicity(const std::vector<SymmetryOperator>& ops, const float* xyz) {
  std::vector<Table1<double, 3>> images;
  for (const SymmetryOperator& op : ops) {
    Table1<double, 3> p;
    for (int i = 1; i <= 3; ++i) {
      double v = op.translation[i];
      for (int j = 1; j <= 3; ++j) v += op.rotation(i, j) * static_cast<double>(xyz[j - 1]);
      v -= std::floor(v);
      p[i] = v;
    }
    bool seen = false;
    for (const auto& q : images) {
      bool same = true;
      for (int i = 1; i <= 3; ++i) {
        const double d = p[i] - q[i];
        same = same && std::fabs(d - std::round(d)) < kSamePosition;
      }
      seen = seen || same;
    }
    if (!seen) images.push_back(p);
  }
  return static_cast<int>(images.size());
}

const char* CrystalSystem(int laue) {
  if (laue <= 1) return "triclinic";
  if (laue == 2) return "monoclinic";
  if (laue == 3) return "orthorhombic";
  if (laue <= 5) return "tetragonal";
  if (laue <= 10) return "trigonal";
  if (laue <= 12) return "hexagonal";
  return "cubic";
}

class CifWriter {
 public:
  CifWriter(Job& job, int ip, int f)
      : job_(job),
        ip_(ip),
        f_(f),
        p_(job.patterns[ip]),
        ph_(job.phases[f]),
        pp_(ph_.pat[ip]),
        atoms_(ExportedAtoms(job, f)) {}

  void Write(const CifPhaseFactors& factors, const std::vector<CifReflection>& reflections);

 private:
  void Line(const std::string& text) { WriteLine(job_, Unit::Cif, text); }
  void Item(const std::string& tag, const std::string& value) { Line(tag + " " + value); }
  void Head();
  void Cell();
  void Symmetry(const std::vector<SymmetryOperator>& ops);
  void Atoms(const std::vector<SymmetryOperator>& ops);
  void AnisotropicAtoms();
  void Experiment();
  void Reliability(const CifPhaseFactors& factors);
  void Profile();
  void Reflections(const std::vector<CifReflection>& reflections);
  bool IsAnisotropic(const AtomSite& a) const;
  double Uij(const AtomSite& a, int slot, int i, int j) const;

  Job& job_;
  int ip_, f_;
  const Pattern& p_;
  const Phase& ph_;
  const PhasePattern& pp_;
  std::vector<ExportedAtom> atoms_;  // the atoms the phase writes, with their sigmas
};

void CifWriter::Head() {
  Line("# Refined structure and powder data of phase " + std::to_string(f_) + ", written by " +
       "Corvinet on " + DayText(DateTime()));
  std::string name = FileName(job_, FileKind::kCif, ip_, f_);
  name = name.substr(0, name.size() - 4);  // without ".cif"
  if (const std::size_t slash = name.rfind('/'); slash != std::string::npos)
    name.erase(0, slash + 1);
  for (char& c : name) {
    if (c == ' ' || c == '\t') c = '_';
  }
  Line("data_" + name);
  Item("_audit_creation_method", CifText("Corvinet Rietveld refinement"));
  const std::string title = TrimmedCopy(ph_.PhaseTitle);
  Item("_pd_phase_name", CifText(title.empty() ? "?" : title));
  Item("_pd_block_id", CifText(name));
}

void CifWriter::Cell() {
  static const char* const kTags[6] = {"_cell_length_a",   "_cell_length_b",
                                       "_cell_length_c",   "_cell_angle_alpha",
                                       "_cell_angle_beta", "_cell_angle_gamma"};
  const CellStatistics& stats = job_.limits.cells(f_, ip_);
  for (int i = 1; i <= 6; ++i) {
    Item(kTags[i - 1], CifNumber(pp_.CellConstants[i], stats.sigma[i]));
  }
  Item("_cell_volume", CifNumber(pp_.cellVolume, stats.volumeSigma));
}

void CifWriter::Symmetry(const std::vector<SymmetryOperator>& ops) {
  const std::string symbol = TrimmedCopy(ph_.SpaceGroupSymbol);
  Item("_space_group_crystal_system", CrystalSystem(ph_.group.LAUE));
  Item("_space_group_name_H-M_alt", CifText(symbol));
  Item("_symmetry_space_group_name_H-M", CifText(symbol));
  Line("loop_");
  Line("_space_group_symop_id");
  Line("_space_group_symop_operation_xyz");
  for (std::size_t n = 0; n < ops.size(); ++n) {
    Line(std::to_string(n + 1) + " " + CifText(OperatorXyz(ops[n])));
  }
}

bool CifWriter::IsAnisotropic(const AtomSite& a) const {
  for (int s = 13; s <= 18; ++s) {
    if (a.ATP[s] != 0.0f) return true;
  }
  return false;
}

// U(i,j) of the betas in slot `slot` (13 to 18).
double CifWriter::Uij(const AtomSite& a, int slot, int i, int j) const {
  const Table2<double, 3, 3>& gs = pp_.metric.Gstar;
  return a.ATP[slot] / (kTwoPiSquared * std::sqrt(gs(i, i) * gs(j, j)));
}

void CifWriter::Atoms(const std::vector<SymmetryOperator>& ops) {
  Line("loop_");
  for (const char* tag :
       {"_atom_site_label", "_atom_site_type_symbol", "_atom_site_fract_x", "_atom_site_fract_y",
        "_atom_site_fract_z", "_atom_site_occupancy", "_atom_site_adp_type",
        "_atom_site_U_iso_or_equiv", "_atom_site_symmetry_multiplicity"}) {
    Line(tag);
  }
  const double order = static_cast<double>(ops.size());
  for (const ExportedAtom& e : atoms_) {
    const AtomSite& a = e.site;
    const LabelledElement element = ElementOfLabel(a.species);
    if (element.Z == 0 || a.nuclearSpecies < 0) continue;  // objects have no site of their own
    const float xyz[3] = {a.ATP[1], a.ATP[2], a.ATP[3]};
    const int m = SiteMultiplicity(ops, xyz);
    const double toChemical = order / m;
    std::string row = CifText(TrimmedCopy(a.label)) + " " + kElementRows[element.Z - 1].symbol;
    for (int s = 1; s <= 3; ++s) row += " " + CifNumber(a.ATP[s], e.sigma[s]);
    row += " " + CifNumber(a.ATP[5] * toChemical, e.sigma[5] * toChemical);
    if (IsAnisotropic(a)) {
      const Table2<double, 3, 3>& g = pp_.metric.G;
      const Table2<double, 3, 3>& gs = pp_.metric.Gstar;
      static const int kSlot[3][3] = {{13, 16, 17}, {16, 14, 18}, {17, 18, 15}};
      double ueq = 0.0;
      for (int i = 1; i <= 3; ++i) {
        for (int j = 1; j <= 3; ++j) {
          ueq += Uij(a, kSlot[i - 1][j - 1], i, j) * std::sqrt(gs(i, i) * gs(j, j)) * g(i, j);
        }
      }
      row += " Uani " + CifNumber(ueq / 3.0, 0.0, 5);
    } else {
      row += " Uiso " + CifNumber(a.ATP[4] / kEightPiSquared, e.sigma[4] / kEightPiSquared);
    }
    Line(row + " " + std::to_string(m));
  }
}

void CifWriter::AnisotropicAtoms() {
  bool any = false;
  for (const ExportedAtom& e : atoms_) any = any || IsAnisotropic(e.site);
  if (!any) return;
  Line("loop_");
  for (const char* tag : {"_atom_site_aniso_label", "_atom_site_aniso_U_11",
                          "_atom_site_aniso_U_22", "_atom_site_aniso_U_33", "_atom_site_aniso_U_12",
                          "_atom_site_aniso_U_13", "_atom_site_aniso_U_23"}) {
    Line(tag);
  }
  static const int kPair[6][2] = {{1, 1}, {2, 2}, {3, 3}, {1, 2}, {1, 3}, {2, 3}};
  for (const ExportedAtom& e : atoms_) {
    const AtomSite& a = e.site;
    if (!IsAnisotropic(a)) continue;
    std::string row = CifText(TrimmedCopy(a.label));
    for (int s = 0; s < 6; ++s) {
      const double u = Uij(a, 13 + s, kPair[s][0], kPair[s][1]);
      const double ratio = a.ATP[13 + s] != 0.0f ? u / a.ATP[13 + s] : 0.0;
      row += " " + CifNumber(u, std::fabs(ratio) * e.sigma[13 + s], 5);
    }
    Line(row);
  }
}

void CifWriter::Experiment() {
  const bool neutron = IsNeutronJob(p_.JOBTYP);
  Item("_diffrn_radiation_probe", neutron ? "neutron" : "x-ray");
  if (p_.IXUNIT == AbscissaUnit::kTwoTheta) {
    Item("_diffrn_radiation_wavelength", CifNumber(p_.LAMBDA[1], 0.0, 7));
    Item("_pd_proc_2theta_range_min", CifNumber(p_.X[1], 0.0, 7));
    Item("_pd_proc_2theta_range_max", CifNumber(p_.X[p_.NPTS], 0.0, 7));
    if (p_.NPTS > 1) {
      Item("_pd_proc_2theta_range_inc",
           CifNumber((p_.X[p_.NPTS] - p_.X[1]) / (p_.NPTS - 1), 0.0, 6));
    }
  }
}

void CifWriter::Reliability(const CifPhaseFactors& factors) {
  const ReliabilityFactors& r = job_.reliability.pattern[ip_].setA;
  Item("_pd_proc_ls_prof_R_factor", CifNumber(r.Rp / 100.0, 0.0, 5));
  Item("_pd_proc_ls_prof_wR_factor", CifNumber(r.Rwp / 100.0, 0.0, 5));
  Item("_pd_proc_ls_prof_wR_expected", CifNumber(r.Rexp / 100.0, 0.0, 5));
  Item("_refine_ls_goodness_of_fit_all", CifNumber(std::sqrt(std::fabs(r.Chi2)), 0.0, 5));
  Item("_refine_ls_R_I_factor", CifNumber(factors.RB / 100.0, 0.0, 5));
  Item("_refine_ls_R_F_factor", CifNumber(factors.RF / 100.0, 0.0, 5));
  Item("_refine_ls_number_parameters", std::to_string(FittedCount(job_)));
  Item("_pd_proc_number_of_points", std::to_string(p_.NPTS));
}

void CifWriter::Profile() {
  const char* abscissa = "_pd_meas_2theta_scan";
  if (p_.IXUNIT == AbscissaUnit::kTimeOfFlight) abscissa = "_pd_meas_time_of_flight";
  if (p_.IXUNIT == AbscissaUnit::kEnergy) abscissa = "_pd_proc_energy_detection";
  Line("loop_");
  for (const char* tag : {abscissa, "_pd_proc_intensity_total", "_pd_calc_intensity_total",
                          "_pd_proc_intensity_bkg_calc", "_pd_proc_ls_weight"}) {
    Line(tag);
  }
  char row[160];
  for (int i = 1; i <= p_.NPTS; ++i) {
    const double variance = p_.Variance[i];
    const double weight = variance > 0.0 ? 1.0 / variance : 0.0;
    std::snprintf(row, sizeof row, "%.5f %.3f %.3f %.3f %.6g", p_.X[i], p_.Ytotal[i], p_.Ycalc[i],
                  BackgroundAt(p_, i), weight);
    Line(row);
  }
}

void CifWriter::Reflections(const std::vector<CifReflection>& reflections) {
  Line("loop_");
  for (const char* tag :
       {"_refln_index_h", "_refln_index_k", "_refln_index_l", "_refln_symmetry_multiplicity",
        "_refln_d_spacing", "_pd_refln_peak_position", "_refln_F_squared_calc",
        "_refln_intensity_meas", "_refln_intensity_calc"}) {
    Line(tag);
  }
  char row[200];
  for (const CifReflection& r : reflections) {
    std::snprintf(row, sizeof row, "%d %d %d %d %.5f %.4f %.6g %.3f %.3f", r.h, r.k, r.l,
                  r.multiplicity, r.d, r.position, r.F2calc, r.Iobs, r.Icalc);
    Line(row);
  }
}

void CifWriter::Write(const CifPhaseFactors& factors,
                      const std::vector<CifReflection>& reflections) {
  const std::vector<SymmetryOperator> ops = GeneralPositionOperators(ph_.group);
  Head();
  Cell();
  Symmetry(ops);
  Atoms(ops);
  AnisotropicAtoms();
  Experiment();
  Reliability(factors);
  Profile();
  Reflections(reflections);
}

}  // namespace

bool WritesPhaseCif(const Job& job, int ip, int f) {
  const Phase& ph = job.phases[f];
  const Pattern& p = job.patterns[ip];
  return HasStructure(ph) && !IsMagneticKind(ph.Jbt) && ph.Nat > 0 &&
         ph.pat[ip].Contribution != 0 && std::abs(ph.pat[ip].Irf) != 4 && !IsCalculatedPattern(p) &&
         p.NPTS > 0;
}

void WritePhaseCif(Job& job, int ip, int f, const CifPhaseFactors& factors,
                   const std::vector<CifReflection>& reflections) {
  OpenFiles(job, FileKind::kCif, ip, f);
  CifWriter(job, ip, f).Write(factors, reflections);
  CloseUnit(job.files.units[Unit::Cif]);
}

}  // namespace corvinet
