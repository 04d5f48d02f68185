// Rigid-body groups: where their atoms stand, the displacements of the TLS option, the slopes
// of both in the groups' parameters, and the structure factor of a phase built of them.
#include "model/rigid_body.h"

#include <cmath>
#include <cstdlib>
#include <string>

namespace corvinet {

namespace {

constexpr double kDegree = 0.017453292519943295;
constexpr double kTwoPiSquared = 2.0 * 9.869604401089358;

Matrix3 Product(const Matrix3& a, const Matrix3& b) {
  Matrix3 c{};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      for (int k = 0; k < 3; ++k) c[i][j] += a[i][k] * b[k][j];
    }
  }
  return c;
}

std::array<double, 3> Apply(const Matrix3& a, const std::array<double, 3>& v) {
  std::array<double, 3> w{};
  for (int i = 0; i < 3; ++i) {
    for (int k = 0; k < 3; ++k) w[i] += a[i][k] * v[k];
  }
  return w;
}

std::array<double, 3> ToFractional(const Table2<double, 3, 3>& F, const std::array<double, 3>& c) {
  std::array<double, 3> x{};
  for (int i = 1; i <= 3; ++i) {
    for (int k = 1; k <= 3; ++k) x[i - 1] += F(i, k) * c[k - 1];
  }
  return x;
}

Matrix3 Symmetric(const std::array<double, 6>& v, double factor) {
  return {{{v[0] * factor, v[3] * factor, v[4] * factor},
           {v[3] * factor, v[1] * factor, v[5] * factor},
           {v[4] * factor, v[5] * factor, v[2] * factor}}};
}

Matrix3 Transpose(const Matrix3& a) {
  Matrix3 t{};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) t[i][j] = a[j][i];
  }
  return t;
}

// The sixteen slots of every line of the phase in double precision, so that
// the slopes can move one of them by a step below the resolution of a float.
using LineValues = std::vector<std::array<double, 17>>;

LineValues ValuesOf(std::span<const AtomSite> rows) {
  LineValues v(rows.size());
  for (std::size_t r = 0; r < rows.size(); ++r) {
    for (int s = 1; s <= 16; ++s) v[r][static_cast<std::size_t>(s)] = rows[r].ATP[s];
  }
  return v;
}

double At(const LineValues& v, int row, int slot) {
  return v[static_cast<std::size_t>(row - 1)][static_cast<std::size_t>(slot)];
}

TlsTensors TensorsOf(const RigidGroup& g, const LineValues& v) {
  TlsTensors t;
  for (int i = 0; i < 6; ++i) t.T[i] = At(v, g.line, GroupSlot::T + i);
  if (g.tlsLine == 0) return t;
  for (int i = 0; i < 6; ++i) t.L[i] = At(v, g.tlsLine, TlsSlot::L + i);
  for (int i = 0; i < 9; ++i) t.S[i] = At(v, g.tlsLine, TlsSlot::S + i);
  return t;
}

GroupFrame FrameOfValues(const RigidModel& model, int g, const LineValues& v,
                         const CellMetric& metric) {
  const RigidGroup& group = model.groups[static_cast<std::size_t>(g)];
  GroupFrame f;
  f.R =
      GroupRotation(At(v, group.line, GroupSlot::Angles), At(v, group.line, GroupSlot::Angles + 1),
                    At(v, group.line, GroupSlot::Angles + 2));
  const std::array<double, 3> typed{At(v, group.line, GroupSlot::Origin),
                                    At(v, group.line, GroupSlot::Origin + 1),
                                    At(v, group.line, GroupSlot::Origin + 2)};
  if (group.reference < 0) {
    f.origin = typed;
    return f;
  }
  const GroupFrame main = FrameOfValues(model, group.reference, v, metric);
  const std::array<double, 3> offset = ToFractional(metric.fractional, Apply(main.R, typed));
  for (int i = 0; i < 3; ++i) f.origin[i] = main.origin[i] + offset[i];
  f.R = Product(main.R, f.R);
  return f;
}

// The eleven fields of a placed atom (x, y, z, Biso, Occ, six betas).
using PlacedFields = std::array<double, kRigidFields>;

// The fields of the atom of line `row`, member `member` of group g.
PlacedFields PlaceMember(const RigidGroup& g, int member, const GroupFrame& f,
                         const TlsTensors& tls, const LineValues& v, int row,
                         const CellMetric& metric) {
  PlacedFields out{};
  const std::array<double, 3> local =
      g.option == RigidOption::Chain
          ? g.chain[static_cast<std::size_t>(member)]
          : FramePosition(g.option, At(v, row, 1), At(v, row, 2), At(v, row, 3));
  const std::array<double, 3> r = Apply(f.R, local);
  const std::array<double, 3> x = ToFractional(metric.fractional, r);
  for (int i = 0; i < 3; ++i) out[static_cast<std::size_t>(i)] = f.origin[i] + x[i];
  out[3] = At(v, row, MemberSlot::Biso);
  out[4] = At(v, row, MemberSlot::Occ);
  if (!IsTlsOption(g.option)) return out;
  // The group's T, L and S hold the whole displacement of its atoms.
  out[3] = 0.0;
  const std::array<double, 6> b = TlsToBetas(tls, r, metric.fractional);
  for (int i = 0; i < 6; ++i) out[static_cast<std::size_t>(5 + i)] = b[static_cast<std::size_t>(i)];
  return out;
}

// The placed atom of line `row`, its fields as typed and its codes those of
// its place in the derivative buffer.
AtomSite PlacedCopy(const AtomSite& line, int index) {
  AtomSite a;
  a.label = line.label;
  a.species = line.species;
  a.nuclearSpecies = line.nuclearSpecies;
  a.In = line.In;
  a.Fin = line.Fin;
  for (int s = 1; s <= 5; ++s) a.ATP[s] = line.ATP[s];
  for (int s = 19; s <= DimensionLimits::NAT_P; ++s) a.ATP[s] = line.ATP[s];
  for (int k = 0; k < kRigidFields; ++k) {
    a.ATC[kRigidFieldSlot[k]] = Codeword{(index - 1) * kRigidFields + k + 1, 1.0f};
  }
  return a;
}

// The group a line belongs to as an atom, or -1 for a free atom.
int GroupOfRow(const RigidModel& model, int row) {
  for (std::size_t g = 0; g < model.groups.size(); ++g) {
    const std::vector<int>& atoms = model.groups[g].atoms;
    for (std::size_t m = 0; m < atoms.size(); ++m) {
      if (atoms[m] == row) return static_cast<int>(g);
    }
  }
  return -1;
}

}  // namespace

Matrix3 GroupRotation(double theta, double phi, double chi) {
  const double ct = std::cos(theta * kDegree), st = std::sin(theta * kDegree);
  const double cp = std::cos(phi * kDegree), sp = std::sin(phi * kDegree);
  const double cc = std::cos(chi * kDegree), sc = std::sin(chi * kDegree);
  const Matrix3 Rx{{{1, 0, 0}, {0, ct, -st}, {0, st, ct}}};
  const Matrix3 Ry{{{cp, 0, sp}, {0, 1, 0}, {-sp, 0, cp}}};
  const Matrix3 Rz{{{cc, -sc, 0}, {sc, cc, 0}, {0, 0, 1}}};
  return Product(Rz, Product(Ry, Rx));
}

bool IsPolarOption(RigidOption option) {
  return option == RigidOption::Polar || option == RigidOption::TlsPolar;
}

bool IsTlsOption(RigidOption option) {
  return option == RigidOption::TlsCartesian || option == RigidOption::TlsPolar;
}

std::array<double, 3> FramePosition(RigidOption option, double p1, double p2, double p3) {
  if (!IsPolarOption(option)) return {p1, p2, p3};
  const double a = p2 * kDegree, b = p3 * kDegree;
  return {p1 * std::sin(a) * std::cos(b), p1 * std::sin(a) * std::sin(b), p1 * std::cos(a)};
}

Matrix3 TlsDisplacement(const TlsTensors& tls, const std::array<double, 3>& r) {
  const double x = r[0], y = r[1], z = r[2];
  const Matrix3 A{{{0, z, -y}, {-z, 0, x}, {y, -x, 0}}};
  const Matrix3 T = Symmetric(tls.T, 0.01);
  const Matrix3 L = Symmetric(tls.L, kDegree * kDegree);
  Matrix3 S{};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) S[i][j] = tls.S[static_cast<std::size_t>(3 * i + j)] * kDegree;
  }
  const Matrix3 ALA = Product(Product(A, L), Transpose(A));
  const Matrix3 AS = Product(A, S);
  Matrix3 U{};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) U[i][j] = T[i][j] + ALA[i][j] + AS[i][j] + AS[j][i];
  }
  return U;
}

std::array<double, 6> BetasOfDisplacement(const Matrix3& U, const Table2<double, 3, 3>& F) {
  Matrix3 f{};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) f[i][j] = F(i + 1, j + 1);
  }
  const Matrix3 B = Product(Product(f, U), Transpose(f));
  return {kTwoPiSquared * B[0][0], kTwoPiSquared * B[1][1], kTwoPiSquared * B[2][2],
          kTwoPiSquared * B[0][1], kTwoPiSquared * B[0][2], kTwoPiSquared * B[1][2]};
}

std::array<double, 6> TlsToBetas(const TlsTensors& tls, const std::array<double, 3>& r,
                                 const Table2<double, 3, 3>& F) {
  return BetasOfDisplacement(TlsDisplacement(tls, r), F);
}

GroupFrame GroupFrameOf(const RigidModel& model, int g, std::span<const AtomSite> rows,
                        const CellMetric& metric) {
  return FrameOfValues(model, g, ValuesOf(rows), metric);
}

namespace {

// The fields of every placed atom (model.source must be filled) from the values of the lines.
std::vector<PlacedFields> PlaceAll(const RigidModel& model, const LineValues& v,
                                   const CellMetric& metric) {
  std::vector<GroupFrame> frames;
  std::vector<TlsTensors> tensors;
  for (std::size_t g = 0; g < model.groups.size(); ++g) {
    frames.push_back(FrameOfValues(model, static_cast<int>(g), v, metric));
    tensors.push_back(TensorsOf(model.groups[g], v));
  }
  std::vector<PlacedFields> placed;
  for (int row : model.source) {
    PlacedFields f{};
    f[0] = At(v, row, 1), f[1] = At(v, row, 2), f[2] = At(v, row, 3);
    f[3] = At(v, row, MemberSlot::Biso), f[4] = At(v, row, MemberSlot::Occ);
    const int g = GroupOfRow(model, row);
    if (g >= 0) {
      const RigidGroup& group = model.groups[static_cast<std::size_t>(g)];
      int member = 0;
      while (group.atoms[static_cast<std::size_t>(member)] != row) ++member;
      f = PlaceMember(group, member, frames[static_cast<std::size_t>(g)],
                      tensors[static_cast<std::size_t>(g)], v, row, metric);
    }
    placed.push_back(f);
  }
  return placed;
}

}  // namespace

void RigidGroupCoordinates(RigidModel& model, std::span<const AtomSite> rows,
                           const CellMetric& metric) {
  model.effective.clear();
  model.source.clear();
  for (int row = 1; row <= static_cast<int>(rows.size()); ++row) {
    const AtomSite& line = rows[static_cast<std::size_t>(row - 1)];
    if (IsRigidGroupLine(line)) continue;
    model.source.push_back(row);
    model.effective.push_back(PlacedCopy(line, static_cast<int>(model.source.size())));
  }
  const std::vector<PlacedFields> placed = PlaceAll(model, ValuesOf(rows), metric);
  for (std::size_t i = 0; i < placed.size(); ++i) {
    for (int k = 0; k < kRigidFields; ++k) {
      model.effective[i].ATP[kRigidFieldSlot[k]] =
          static_cast<float>(placed[i][static_cast<std::size_t>(k)]);
    }
  }
}

namespace {

// The step of the central difference of a slot: angles in degrees, the
// tensors in their typed units, lengths and fractions.
double StepOf(const AtomSite& line, int slot) {
  if (!IsRigidGroupLine(line)) return 1e-5;
  if (!IsGroupHeadLine(line)) return 1e-4;
  return slot >= GroupSlot::Angles ? 1e-4 : 1e-6;
}

// Adds the links of slot `slot` of row `row` by placing the atoms with the
// slot moved both ways.
void AddSlotLinks(RigidModel& model, LineValues& v, const AtomSite& line, int row, int slot,
                  const CellMetric& metric) {
  double& value = v[static_cast<std::size_t>(row - 1)][static_cast<std::size_t>(slot)];
  const double saved = value;
  const double h = StepOf(line, slot);
  value = saved + h;
  const std::vector<PlacedFields> plus = PlaceAll(model, v, metric);
  value = saved - h;
  const std::vector<PlacedFields> minus = PlaceAll(model, v, metric);
  value = saved;
  for (std::size_t i = 0; i < plus.size(); ++i) {
    for (int k = 0; k < kRigidFields; ++k) {
      const std::size_t f = static_cast<std::size_t>(k);
      const double slope = (plus[i][f] - minus[i][f]) / (2.0 * h);
      if (std::fabs(slope) > 1e-12)
        model.links.push_back({static_cast<int>(i) + 1, k, row, slot, slope});
    }
  }
}

}  // namespace

void BuildRigidLinks(RigidModel& model, std::span<const AtomSite> rows, const CellMetric& metric) {
  model.links.clear();
  LineValues v = ValuesOf(rows);
  for (int row = 1; row <= static_cast<int>(rows.size()); ++row) {
    const AtomSite& line = rows[static_cast<std::size_t>(row - 1)];
    // The typed coordinates of a chain's atoms only fix its frame at input.
    const int g = GroupOfRow(model, row);
    const bool chain =
        g >= 0 && model.groups[static_cast<std::size_t>(g)].option == RigidOption::Chain;
    for (int slot = 1; slot <= 16; ++slot) {
      if (line.ATC[slot].parameterNumber == 0) continue;
      if (chain && slot <= 3) continue;
      AddSlotLinks(model, v, line, row, slot, metric);
    }
  }
}

StructureFactorValue EvaluateRigidBodyStructureFactor(
    const RigidModel& model, std::span<const AtomSite> rows, const StructureFactorInputs& in,
    const StructureFactorRequest& q, Reflection& r, StructureFactorScratch& scratch,
    RigidBodyScratch& rigid, float* dF2, int fitted) {
  StructureFactorInputs placed = in;
  placed.atoms = std::span<const AtomSite>(model.effective);
  const int fields = static_cast<int>(model.effective.size()) * kRigidFields;
  float* d = dF2 != nullptr ? rigid.fieldDerivatives.ptr() : nullptr;
  if (d != nullptr) {
    for (int i = 0; i < fields; ++i) d[i] = 0.0f;
  }
  const StructureFactorValue value = EvaluateStructureFactor(placed, q, r, scratch, d, fields);
  if (d == nullptr) return value;
  for (const RigidLink& link : model.links) {
    const Codeword& w = rows[static_cast<std::size_t>(link.row - 1)].ATC[link.slot];
    const int n = w.parameterNumber;
    if (n <= 0 || n > fitted) continue;
    dF2[n - 1] += static_cast<float>(w.multiplier * link.value *
                                     d[(link.atom - 1) * kRigidFields + link.field]);
  }
  return value;
}

}  // namespace corvinet
