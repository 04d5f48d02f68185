// Test helper: the control text of an X-ray PbSO4 phase built as a user model, its SO4
// tetrahedron one rigid-body group and its Pb a free atom.
#pragma once

#include <array>
#include <cmath>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "format/fortran_format.h"

namespace corvinet::testing {

struct RigidCase {
  int option = 1;      // P6 of the group
  int job = 2;         // 2 X-ray calculation, 0 refinement
  int cycles = 1;      // NCY
  int refined = 0;     // MAXS
  float scale = 1.0f;  // of the phase
  std::string scaleCode = "0.00";
  std::array<float, 3> origin{0.0654f, 0.25f, 0.6845f};
  std::array<float, 3> angles{10.0f, 20.0f, 30.0f};
  std::array<float, 6> T{};  // 100 x A^2
  std::array<float, 6> L{};  // degrees^2
  std::array<float, 9> S{};  // degrees x A
  std::string groupLabel = "SO4";
  std::string memberLabel = "SO4";
  int reference = 0;
  // A second group hanging from the first: its line (offset 1.5 A along the
  // first group's x, angles 5, 10, 15) and one O, after the atoms of the first.
  bool satellite = false;
  // Codes by (line, slot): line 1 Pb, 2 the group line, then the TLS line
  // when the option has one, then S and the four O.
  std::map<std::pair<int, int>, std::string> codes;
};

inline bool HasTlsLine(const RigidCase& c) {
  return c.option == 4 || c.option == 5;
}

// The internal coordinates of the SO4 tetrahedron (S-O 1.47 A) in the group's form.
inline std::vector<std::array<float, 3>> Tetrahedron(int option) {
  const float d = 1.47f / std::sqrt(3.0f);
  if (option == 2 || option == 5) {
    const float a = 54.7356103f, b = 180.0f - a;
    return {{0, 0, 0}, {1.47f, a, 45}, {1.47f, b, -45}, {1.47f, b, 135}, {1.47f, a, -135}};
  }
  return {{0, 0, 0}, {d, d, d}, {d, -d, -d}, {-d, d, -d}, {-d, -d, d}};
}

// One user-model line: label, species, 16 values and the codes of 1..15.
inline std::string ModelLine(const RigidCase& c, int line, const std::string& label,
                             const std::string& species, const std::array<float, 16>& p) {
  std::string text = label + " " + species;
  for (int s = 0; s < 8; ++s) text += Fmt("(F11.5)", p[static_cast<std::size_t>(s)]);
  text += "\n";
  auto code = [&](int slot) {
    const auto it = c.codes.find({line, slot});
    return " " + (it == c.codes.end() ? std::string("0.00") : it->second);
  };
  for (int s = 1; s <= 8; ++s) text += code(s);
  text += "\n";
  for (int s = 8; s < 16; ++s) text += Fmt("(F11.5)", p[static_cast<std::size_t>(s)]);
  text += "\n";
  for (int s = 9; s <= 15; ++s) text += code(s);
  return text + "\n";
}

inline std::string AtomLines(const RigidCase& c) {
  std::string text = ModelLine(c, 1, "Pb", "PB", {0.1879f, 0.25f, 0.1667f, 1.2f, 0.5f});
  std::array<float, 16> g{c.origin[0],
                          c.origin[1],
                          c.origin[2],
                          1.0f,
                          static_cast<float>(c.reference),
                          static_cast<float>(c.option),
                          c.angles[0],
                          c.angles[1],
                          c.angles[2]};
  for (int i = 0; i < 6; ++i) g[static_cast<std::size_t>(9 + i)] = c.T[static_cast<std::size_t>(i)];
  text += ModelLine(c, 2, c.groupLabel, "RBG", g);
  int line = 3;
  if (HasTlsLine(c)) {
    std::array<float, 16> t{};
    for (int i = 0; i < 6; ++i) t[static_cast<std::size_t>(i)] = c.L[static_cast<std::size_t>(i)];
    for (int i = 0; i < 9; ++i)
      t[static_cast<std::size_t>(6 + i)] = c.S[static_cast<std::size_t>(i)];
    t[15] = 1.0f;
    text += ModelLine(c, line++, c.groupLabel, "TLS", t);
  }
  const std::vector<std::array<float, 3>> at = Tetrahedron(c.option);
  for (std::size_t i = 0; i < at.size(); ++i) {
    const std::string species = i == 0 ? "S" : "O";
    const std::string label = i == 0 ? c.groupLabel : c.memberLabel;
    text += ModelLine(c, line++, label, species,
                      {at[i][0], at[i][1], at[i][2], i == 0 ? 0.6f : 1.0f, 0.5f, 1.0f});
  }
  if (c.satellite) {
    text += ModelLine(c, line++, "SAT", "RBG",
                      {1.5f, 0.0f, 0.0f, 2.0f, 1.0f, 1.0f, 5.0f, 10.0f, 15.0f});
    text += ModelLine(c, line++, "SAT", "O", {0.9f, 0.3f, 0.2f, 1.0f, 0.5f, 2.0f});
  }
  return text;
}

inline int LineCount(const RigidCase& c) {
  return (HasTlsLine(c) ? 8 : 7) + (c.satellite ? 2 : 0);
}

inline std::string RigidControlText(const RigidCase& c) {
  return "Simulated PbSO4 with a rigid SO4\n" +
         Fmt("(I4,A)", c.job, "   0   1   0   0   0   0   0   0   0   0   0   0   0   0   0   0") +
         "\n   0   0   1   0   0   0   0   0   0   0   0   0   0   0   0   1   0\n"
         " 1.540560 1.540560  0.00000   60.000 10.0000  0.0000  0.0000    0.00    0.0000\n" +
         Fmt("(I3,A)", c.cycles,
             "  0.01  1.00  1.00  1.00  1.00     15.0000   0.0200   100.0000   0.000   0.000") +
         "\n" + Fmt("(I5)", c.refined) + "\n" +
         "  0.0000 0.00  0.0000 0.00  0.0000 0.00 0.000000 0.00   0\n"
         "   40.00  0.0  0.0  0.0  0.0  0.0\n0.00 0.00 0.00 0.00 0.00 0.00\n"
         "PbSO4\n" +
         Fmt("(I3,A)", LineCount(c), " 0 0 0.0 0.0 1.0 4 0 0 0 0 0.0 0 0 0") + "\nP n m a\n" +
         AtomLines(c) + Fmt("(F12.6,A)", c.scale, " 0.0 0.0 0.0 0.0 0.0 0") + "\n" + c.scaleCode +
         " 0 0 0 0 0\n0.012 -0.008 0.010 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0 0\n"
         "8.4800 5.3980 6.9580 90 90 90\n0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n";
}

}  // namespace corvinet::testing
