// The reading and checking of the rigid-body groups of a user-model phase, and their report.
#include "control/rigid_groups.h"

#include <cmath>
#include <cstdlib>
#include <span>
#include <string>

#include "crystal/metric.h"
#include "format/fortran_format.h"
#include "model/elements.h"
#include "model/rigid_body.h"
#include "model/rigid_phase.h"
#include "surface/console.h"

namespace corvinet {

namespace {

constexpr double kDegree = 0.017453292519943295;

// The line is shown on the report and the console, then the stop box ends the run.
[[noreturn]] void Stop(Job& job, const std::string& line, const std::string& box) {
  WriteLine(job, Unit::Out, line);
  ConsoleLine(job, line);
  StopBox(job, box);
}

int Rounded(float v) {
  return static_cast<int>(std::lround(v));
}

AtomSite& Line(Job& job, int k, int row) {
  return job.atoms[job.phases[k].atomOffset + row];
}

int GroupIndex(const RigidModel& model, int number) {
  for (std::size_t g = 0; g < model.groups.size(); ++g) {
    if (model.groups[g].number == number) return static_cast<int>(g);
  }
  return -1;
}

// A satellite whose main group is not before it: the main group stands after
// it, is the satellite itself, or is missing.
[[noreturn]] void StopOnReference(Job& job, int k, int number, int reference) {
  bool later = false;
  for (int row = 1; row <= job.phases[k].Nat; ++row) {
    const AtomSite& line = Line(job, k, row);
    later |= IsGroupHeadLine(line) && Rounded(line.ATP[GroupSlot::Number]) == reference;
  }
  if (reference == number) {
    Stop(job, "   or the reference group is not correct",
         "   or the reference group is not correct");
  }
  if (later) {
    Stop(job, "Put Main Group before its satellites", "Put Main Group before its satellites");
  }
  WriteLine(job, Unit::Out,
            Fmt("(A,I3,A)", " => The satellite group No", number, " has not a reference group"));
  Stop(job, " Satellite group without ref. group", " Satellite group without ref. group");
}

void OpenGroup(Job& job, int k, int row, RigidModel& model) {
  const AtomSite& line = Line(job, k, row);
  if (static_cast<int>(model.groups.size()) >= DimensionLimits::NAT_P) {
    Stop(job, Fmt("(A,I4)", "  Number of groups greater than maximum: ", DimensionLimits::NAT_P),
         "  Number of groups greater than maximum: ");
  }
  const int option = std::abs(Rounded(line.ATP[GroupSlot::Option]));
  if (option < 1 || option > 5) {
    Stop(job, " abs(P6) must be equal to: 1, 2, 3, 4 OR 5",
         " abs(P6) must be equal to: 1, 2, 3, 4 OR 5");
  }
  RigidGroup g;
  g.number = Rounded(line.ATP[GroupSlot::Number]);
  g.option = static_cast<RigidOption>(option);
  g.line = row;
  g.label = line.label;
  const int reference = Rounded(line.ATP[GroupSlot::Reference]);
  if (reference != 0) {
    g.reference = GroupIndex(model, reference);
    if (g.reference < 0 || reference == g.number) StopOnReference(job, k, g.number, reference);
  }
  model.groups.push_back(g);
}

// Every atom of a group carries the label of its group line.
void JoinGroup(Job& job, int k, int row, RigidModel& model) {
  const AtomSite& line = Line(job, k, row);
  const int g = GroupIndex(model, GroupOfLine(line));
  if (g < 0) {
    Stop(job,
         Fmt("(A,A,A,I3)", " => The atom ", line.label, " names the missing group ",
             GroupOfLine(line)),
         " Atom of a group that is not defined ");
  }
  RigidGroup& group = model.groups[static_cast<std::size_t>(g)];
  if (line.label != group.label) {
    WriteLine(job, Unit::Out, " =>PB : Atoms in a group must have the same label ");
    ConsoleLine(job, "  Atoms in a group must have the same label");
    StopBox(job, "  Atoms in a group must have the same label");
  }
  if (static_cast<int>(group.atoms.size()) >= DimensionLimits::NAT_P) {
    Stop(job, Fmt("(A,I4)", " Number of atoms greater than the maximum:", DimensionLimits::NAT_P),
         " Number of atoms greater than the maximum:");
  }
  group.atoms.push_back(row);
}

void AttachTlsLine(Job& job, int k, int row, RigidModel& model) {
  const AtomSite& line = Line(job, k, row);
  const int g = GroupIndex(model, Rounded(line.ATP[TlsSlot::Number]));
  if (g < 0) {
    Stop(job,
         Fmt("(A,I3)", " => TLS line of the missing group ", Rounded(line.ATP[TlsSlot::Number])),
         " TLS line without its group ");
  }
  model.groups[static_cast<std::size_t>(g)].tlsLine = row;
}

void FrameLines(Job& job, int k) {
  const std::string rule(80, '=');
  WriteLine(job, Unit::Out, rule);
  WriteLine(job, Unit::Out, "Rigid-body-constraints / TLS option");
  WriteLine(job, Unit::Out, rule);
  WriteLine(job, Unit::Out, Fmt("(A,I2)", " ==========> Phase ", k));
}

// The mass and the centre of mass of every group, from the placed atoms.
void ReportMasses(Job& job, int k) {
  RigidModel& model = job.rigid[k];
  for (RigidGroup& g : model.groups) {
    g.mass = 0.0;
    g.centreOfMass = {};
    for (std::size_t i = 0; i < model.source.size(); ++i) {
      const AtomSite& line = Line(job, k, model.source[i]);
      if (GroupOfLine(line) != g.number) continue;
      const LabelledElement e = ElementOfLabel(line.species);
      if (e.Z == 0) {
        WriteLine(job, Unit::Out,
                  " => Undefined atom : " + line.species + " in centre of mass calculations");
        continue;
      }
      g.mass += e.weight;
      for (int c = 0; c < 3; ++c) g.centreOfMass[c] += e.weight * model.effective[i].ATP[1 + c];
    }
    if (g.mass > 0.0) {
      for (double& c : g.centreOfMass) c /= g.mass;
    }
    WriteLine(job, Unit::Out,
              Fmt("(A,I3,F12.4,A)", " => Mass of RBG no.: ", g.number, g.mass, " atomic units"));
    WriteLine(job, Unit::Out,
              Fmt("(A,3F10.5)", " => Fractional coordinates of the Center of Mass:",
                  g.centreOfMass[0], g.centreOfMass[1], g.centreOfMass[2]));
  }
}

std::array<double, 3> Minus(const std::array<double, 3>& a, const std::array<double, 3>& b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

double Dot(const std::array<double, 3>& a, const std::array<double, 3>& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

std::array<double, 3> Cross(const std::array<double, 3>& a, const std::array<double, 3>& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// acos of a cosine, clipped to [-1, 1] with a warning when it was outside.
double CheckedAcos(Job& job, double c) {
  if (c > 1.0 || c < -1.0) {
    WriteLine(job, Unit::Out, Fmt("(A,F12.6)", " => Warning! acos(V2(y)/V2):", c));
    c = c > 1.0 ? 1.0 : -1.0;
  }
  return std::acos(c) / kDegree;
}

// The chain coordinates of a group typed at fractional positions: each atom's
// position in the group frame, and its distance, angle and torsion along the chain.
void GenerateChain(Job& job, int k, RigidGroup& g, const CellMetric& metric, const Matrix3& R,
                   const std::array<double, 3>& origin) {
  WriteLine(job, Unit::Out,
            Fmt("(A,I3)", " ==> Generating chain coordinates for group ", g.number));
  WriteLine(job, Unit::Out, " Nr   X     Y     Z     Biso      D     Alpha     Rz");
  g.chain.clear();
  std::vector<std::array<double, 3>> cart;
  for (std::size_t m = 0; m < g.atoms.size(); ++m) {
    const AtomSite& line = Line(job, k, g.atoms[m]);
    std::array<double, 3> d{};
    for (int i = 1; i <= 3; ++i) {
      for (int j = 1; j <= 3; ++j)
        d[i - 1] += metric.orthonormal(i, j) * (line.ATP[j] - origin[j - 1]);
    }
    cart.push_back(d);
    g.chain.push_back({R[0][0] * d[0] + R[1][0] * d[1] + R[2][0] * d[2],
                       R[0][1] * d[0] + R[1][1] * d[1] + R[2][1] * d[2],
                       R[0][2] * d[0] + R[1][2] * d[1] + R[2][2] * d[2]});
    double D = 0.0, alpha = 0.0, rz = 0.0;
    if (m >= 1) {
      const std::array<double, 3> b = Minus(d, cart[m - 1]);
      D = std::sqrt(Dot(b, b));
      if (D < 0.1) {
        Stop(job, " *** PB of distance in the main chain ***",
             " *** PB of distance in the main chain ***");
      }
      if (m >= 2) {
        const std::array<double, 3> a = Minus(cart[m - 2], cart[m - 1]);
        alpha = CheckedAcos(job, Dot(a, b) / (std::sqrt(Dot(a, a)) * D));
      }
      if (m >= 3) {
        const std::array<double, 3> b1 = Minus(cart[m - 2], cart[m - 3]);
        const std::array<double, 3> b2 = Minus(cart[m - 1], cart[m - 2]);
        const std::array<double, 3> n1 = Cross(b1, b2), n2 = Cross(b2, b);
        const double nn = std::sqrt(Dot(n1, n1) * Dot(n2, n2));
        if (nn > 0.0) rz = CheckedAcos(job, Dot(n1, n2) / nn);
      }
    }
    WriteLine(job, Unit::Out,
              Fmt("(I3,4F8.4,3F9.3)", static_cast<int>(m) + 1, line.ATP[1], line.ATP[2],
                  line.ATP[3], line.ATP[4], D, alpha, rz));
  }
}

// A TLS group typed with no tensor starts from the mean Biso of its atoms: T
// isotropic with U = B/(8 pi^2).
void ConvertBisoOfEmptyTls(Job& job, int k, const RigidGroup& g) {
  AtomSite& line = Line(job, k, g.line);
  bool empty = true;
  for (int i = 0; i < 6; ++i) empty &= line.ATP[GroupSlot::T + i] == 0.0f;
  if (g.tlsLine != 0) {
    const AtomSite& tls = Line(job, k, g.tlsLine);
    for (int s = TlsSlot::L; s < TlsSlot::Number; ++s) empty &= tls.ATP[s] == 0.0f;
  }
  if (!empty || g.atoms.empty()) return;
  double B = 0.0;
  for (int row : g.atoms) B += Line(job, k, row).ATP[MemberSlot::Biso];
  B /= static_cast<double>(g.atoms.size());
  const float T = static_cast<float>(100.0 * B / (8.0 * 9.869604401089358));
  for (int i = 0; i < 3; ++i) line.ATP[GroupSlot::T + i] = T;
  WriteLine(job, Unit::Out, "==> Converting Biso factors into Betaij factors");
}

// The words of each group's option; the chains are generated and TLS groups
// with no tensor take T from the mean Biso of their atoms.
void ReportOptions(Job& job, int k, const CellMetric& metric) {
  RigidModel& model = job.rigid[k];
  const std::span<const AtomSite> rows(job.atoms.ptr() + job.phases[k].atomOffset,
                                       static_cast<std::size_t>(job.phases[k].Nat));
  for (std::size_t gi = 0; gi < model.groups.size(); ++gi) {
    RigidGroup& g = model.groups[gi];
    if (g.option == RigidOption::Chain) {
      WriteLine(job, Unit::Out, Fmt("(A,I3)", " ==> Chain option : rigid-body group ", g.number));
      const GroupFrame f = GroupFrameOf(model, static_cast<int>(gi), rows, metric);
      GenerateChain(job, k, g, metric, f.R, f.origin);
    } else if (!IsTlsOption(g.option)) {
      WriteLine(job, Unit::Out,
                Fmt("(A,I3)", " ==> Standard option : rigid-body group ", g.number));
    } else {
      WriteLine(
          job, Unit::Out,
          Fmt("(A,A,A,I3)", " ==> TLS option: coord. ",
              IsPolarOption(g.option) ? "polar" : "Cartesian", ", rigid-body group ", g.number));
      ConvertBisoOfEmptyTls(job, k, g);
    }
  }
}

}  // namespace

void BuildRigidBodyGroups(Job& job, int k) {
  Phase& ph = job.phases[k];
  if (std::abs(ph.Jbt) != 4) return;
  RigidModel& model = job.rigid[k];
  model = RigidModel{};
  FrameLines(job, k);
  for (int row = 1; row <= ph.Nat; ++row) {
    if (IsGroupHeadLine(Line(job, k, row))) OpenGroup(job, k, row, model);
  }
  // Satellites name main groups that stand before them.
  for (int row = 1; row <= ph.Nat; ++row) {
    const AtomSite& line = Line(job, k, row);
    if (IsGroupHeadLine(line)) continue;
    if (IsRigidGroupLine(line)) {
      AttachTlsLine(job, k, row, model);
    } else if (GroupOfLine(line) != 0) {
      JoinGroup(job, k, row, model);
    }
  }
  CellMetric metric;
  if (!BuildCellMetric(ph.pat[RigidCellPattern(job, k)].CellConstants, metric)) {
    StopBox(job, "Bad cell parameters!");
  }
  ReportOptions(job, k, metric);
  RefreshRigidModel(job, k);
  ReportMasses(job, k);
}

}  // namespace corvinet
