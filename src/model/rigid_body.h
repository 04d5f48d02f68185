// Rigid-body groups: where their atoms stand, the displacements of the TLS option, the slopes
// of both in the groups' parameters, and the structure factor of a phase built of them.
#pragma once

#include <array>
#include <span>

#include "model/structure_factor.h"
#include "records/cell_metric.h"
#include "records/rigid_model.h"

namespace corvinet {

using Matrix3 = std::array<std::array<double, 3>, 3>;

// The rotation of a group frame: theta about x, then phi about y, then chi
// about z (degrees), R = Rz(chi) Ry(phi) Rx(theta).
Matrix3 GroupRotation(double theta, double phi, double chi);

// The position of an atom in its group's frame (A) from the three numbers of
// its line: x, y, z as they stand, or r (A), alpha, beta (degrees) as
// r (sin alpha cos beta, sin alpha sin beta, cos alpha).
std::array<double, 3> FramePosition(RigidOption option, double p1, double p2, double p3);

// A group's options that take the polar form, and those with T, L and S.
bool IsPolarOption(RigidOption option);
bool IsTlsOption(RigidOption option);

// The frame of a group: its origin (fractional) and its rotation from the
// group axes to the Cartesian axes of the cell. A main group's origin and
// angles are as typed; a satellite's origin is an offset (A) and its angles a
// rotation in the frame of its main group.
struct GroupFrame {
  std::array<double, 3> origin{};
  Matrix3 R{};
};
GroupFrame GroupFrameOf(const RigidModel& model, int g, std::span<const AtomSite> rows,
                        const CellMetric& metric);

// The TLS tensors of a group as typed: T (100 x A^2), L (degrees^2) and S
// (degrees x A), in the Cartesian frame of the cell.
struct TlsTensors {
  std::array<double, 6> T{};  // 11 22 33 12 13 23
  std::array<double, 6> L{};  // 11 22 33 12 13 23
  std::array<double, 9> S{};  // 11 12 13 21 22 23 31 32 33
};

// U = T + A L A^t + A S + S^t A^t (A^2, Cartesian) of an atom at r (A) from
// the group origin, with A = [[0, z, -y], [-z, 0, x], [y, -x, 0]]: the
// displacement t + lambda x r of a body in rigid libration and translation.
Matrix3 TlsDisplacement(const TlsTensors& tls, const std::array<double, 3>& r);

// beta11 beta22 beta33 beta12 beta13 beta23 of a Cartesian U: 2 pi^2 F U F^t,
// F the Cartesian-to-fractional matrix.
std::array<double, 6> BetasOfDisplacement(const Matrix3& U, const Table2<double, 3, 3>& F);

// The betas of an atom at r (A, Cartesian) from the origin of a TLS group:
// the displacement U of the tensors turned into betas of the cell.
std::array<double, 6> TlsToBetas(const TlsTensors& tls, const std::array<double, 3>& r,
                                 const Table2<double, 3, 3>& F);

// Places the atoms of a phase: fills model.effective (one atom for every line
// that scatters, in order, with its row in model.source) from the lines
// `rows` (the phase's atom lines, row r at rows[r - 1]) by the groups of the
// model, in the cell `metric`.
void RigidGroupCoordinates(RigidModel& model, std::span<const AtomSite> rows,
                           const CellMetric& metric);

// The slopes of the placed atoms' fields in every slot of the lines that has a
// code, by central differences of the placement: fills model.links.
void BuildRigidLinks(RigidModel& model, std::span<const AtomSite> rows, const CellMetric& metric);

// Scratch of the rigid-body structure factor: the derivatives of F^2 in every
// field of every placed atom.
struct RigidBodyScratch {
  Table1<float, DimensionLimits::NATS * kRigidFields> fieldDerivatives;
};

// F^2 of a reflection of a rigid-body phase: the structure factor of the
// placed atoms; its derivatives in the lines' refined slots are added to
// dF2[0..fitted) through the links, by the codes of `rows`.
StructureFactorValue EvaluateRigidBodyStructureFactor(
    const RigidModel& model, std::span<const AtomSite> rows, const StructureFactorInputs& in,
    const StructureFactorRequest& q, Reflection& r, StructureFactorScratch& scratch,
    RigidBodyScratch& rigid, float* dF2, int fitted);

}  // namespace corvinet
