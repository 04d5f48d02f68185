// Rigid-body groups of a user-model phase (|Jbt| 4) and the atoms they place.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "records/phase.h"

namespace corvinet {

// The rule by which a group places its atoms: P6 of its group line.
enum class RigidOption {
  Cartesian = 1,     // internal coordinates x, y, z in A in the group frame
  Polar = 2,         // internal coordinates r (A), alpha, beta (degrees)
  Chain = 3,         // atoms typed at their fractional positions, the frame fixed at input
  TlsCartesian = 4,  // as 1, with displacements from the group's T, L and S
  TlsPolar = 5,      // as 2, with displacements from T, L and S
};

// What the species of a user-model line makes of it: the line of a group
// ("RBG": origin, number, reference, option, angles, T), the line of its L and
// S ("TLS"), or an atom.
inline constexpr const char* kGroupLineSpecies = "RBG";
inline constexpr const char* kTlsLineSpecies = "TLS";

// A line of a user-model phase that holds a group's parameters, not an atom.
inline bool IsRigidGroupLine(const AtomSite& a) {
  const std::string typed = a.species.substr(0, a.species.find_last_not_of(' ') + 1);
  return typed == kGroupLineSpecies || typed == kTlsLineSpecies;
}

// Its kind: the group line itself.
inline bool IsGroupHeadLine(const AtomSite& a) {
  return a.species.substr(0, a.species.find_last_not_of(' ') + 1) == kGroupLineSpecies;
}

// Slots of the group line.
namespace GroupSlot {
inline constexpr int Origin = 1;     // 1..3: fractional coordinates of the origin
inline constexpr int Number = 4;     // group number, from 1
inline constexpr int Reference = 5;  // main group of a satellite, 0 for a main group
inline constexpr int Option = 6;     // P6
inline constexpr int Angles = 7;     // 7..9: theta, phi, chi (degrees)
inline constexpr int T = 10;         // 10..15: T11 T22 T33 T12 T13 T23 (100 x A^2)
}  // namespace GroupSlot

// Slots of the TLS line: L11 L22 L33 L12 L13 L23 (degrees^2), S11 S12 S13 S21
// S22 S23 S31 S32 S33 (degrees x A), and the group number in the last slot.
namespace TlsSlot {
inline constexpr int L = 1;
inline constexpr int S = 7;
inline constexpr int Number = 16;
}  // namespace TlsSlot

// Slots of an atom line of a user-model phase: internal coordinates (or
// fractional ones for a free atom), Biso, occupancy and the group number.
namespace MemberSlot {
inline constexpr int Coordinates = 1;
inline constexpr int Biso = 4;
inline constexpr int Occ = 5;
inline constexpr int Group = 6;  // 0: a free atom
}  // namespace MemberSlot

// The group number an atom line of a user-model phase gives, 0 for a free atom.
inline int GroupOfLine(const AtomSite& a) {
  const float g = a.ATP[MemberSlot::Group];
  return static_cast<int>(g < 0.0f ? g - 0.5f : g + 0.5f);
}

struct RigidGroup {
  int number = 0;                               // from 1
  RigidOption option = RigidOption::Cartesian;  // |P6|
  int reference = -1;      // index in the groups of a satellite's main group; -1 for a main group
  int line = 0;            // row of the group line among the phase's lines, from 1
  int tlsLine = 0;         // row of its TLS line, 0 when none
  std::string label;       // the label all its lines carry
  std::vector<int> atoms;  // rows of its atoms among the phase's lines
  std::vector<std::array<double, 3>> chain;  // option 3: the atoms' Cartesian frame coordinates
  double mass = 0.0;                         // sum of the atomic masses
  std::array<double, 3> centreOfMass{};      // fractional
};

// Effective atom fields that the structure factor reads, in the order of the
// derivative buffer: x, y, z, Biso, Occ, beta11..beta23.
inline constexpr int kRigidFields = 11;
inline constexpr int kRigidFieldSlot[kRigidFields] = {1, 2, 3, 4, 5, 13, 14, 15, 16, 17, 18};

// One slope of the placement: effective atom `atom` (from 1), field index
// `field` (0..10) moves by `value` per unit of slot `slot` of row `row`.
struct RigidLink {
  int atom = 0;
  int field = 0;
  int row = 0;
  int slot = 0;
  double value = 0.0;
};

// The model of a phase: its groups, the atoms as the structure factor sees
// them (every atom line that scatters, at its placed position) and the
// slopes of their fields in the lines' slots.
struct RigidModel {
  std::vector<RigidGroup> groups;
  std::vector<AtomSite> effective;
  std::vector<int> source;  // row of each effective atom in the atom table
  std::vector<RigidLink> links;
  std::array<float, 6> cell{};  // the cell the placement used
};

}  // namespace corvinet
