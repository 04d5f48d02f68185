// Test helper: control texts of magnetic phases on a constant-wavelength neutron pattern, a
// LaMnO3-like nuclear and magnetic phase (k = 0) and a helix (one propagation vector).
#pragma once

#include <string>

#include "format/fortran_format.h"

namespace corvinet::testing {

// The head of a neutron job over 10 to 150 degrees in steps of 0.05 with a
// flat background of 200: job 1 refines, job 3 calculates (with `dum` -1 a
// simulated pattern with noise is written).
inline std::string NeutronHead(const std::string& title, int job, int cycles, int refined,
                               int dum = 0) {
  return title + "\n" +
         Fmt("(I4,A,I4,A)", job, "   5   1   0   0   0   0", dum,
             "   0   0   0   0   0   0   0   0   0") +
         "\n   0   0   1   0   0   0   0   0   0   0   0   0   0   0   0   1   0\n"
         " 1.540300 1.540300  0.00000   60.000 12.0000  0.0000  0.0000    0.00    0.0000\n" +
         Fmt("(I3,A)", cycles,
             "  0.01  1.00  1.00  1.00  1.00     10.0000   0.0500   150.0000   0.000   0.000") +
         "\n" + Fmt("(I5)", refined) +
         "\n  0.0000 0.00  0.0000 0.00  0.0000 0.00 0.000000 0.00   0\n"
         "  200.00  0.0  0.0  0.0  0.0  0.0\n0.00 0.00 0.00 0.00 0.00 0.00\n";
}

// LaMnO3 in P n m a with its A-type order (moments along a): a |Jbt| 10 phase
// with the four operators of the reduced set typed with their moment
// matrices (those of Pn'ma'), reflections generated from P m m m so that the
// purely magnetic ones are kept.
struct LaMnO3Case {
  int job = 3;
  int cycles = 1;
  int refined = 0;
  int dum = 0;
  float scale = 1.0f;
  float moment = 3.7f;
  float bMn = 0.18f;
  std::string scaleCode = "0.00", momentCode = "0.00", bMnCode = "0.00";
  std::string Text() const {
    return NeutronHead("LaMnO3 A-type", job, cycles, refined, dum) +
           "LaMnO3\n4 0 0 0.0 0.0 1.0 10 0 1 0 0 0.0 0 5 0\nP m m m\n"
           "!Nsym Cen Laue MagMat\n4 2 3 1\n"
           " 1  0  0 0.0   0  1  0 0.0   0  0  1 0.0\n 1  0  0   0  1  0   0  0  1  0.0\n"
           "-1  0  0 0.5   0 -1  0 0.0   0  0  1 0.5\n 1  0  0   0  1  0   0  0 -1  0.0\n"
           "-1  0  0 0.0   0  1  0 0.5   0  0 -1 0.0\n-1  0  0   0  1  0   0  0 -1  0.0\n"
           " 1  0  0 0.5   0 -1  0 0.5   0  0 -1 0.5\n-1  0  0   0  1  0   0  0  1  0.0\n"
           "La   LA   0 0  0.0482  0.2500 -0.0078 0.17 0.5 0\n0 0 0 0 0\n" +
           Fmt("(A,F8.4,A)", "Mn   MMN3 1 0  0.0 0.0 0.5 ", bMn, " 0.5 1") + "\n0 0 0 " + bMnCode +
           " 0\n" + Fmt("(F8.4,A)", moment, " 0.0 0.0 0.0 0.0 0.0 0.0") + "\n" + momentCode +
           " 0 0 0 0 0 0\n"
           "O1   O    0 0  0.4878  0.2500  0.0744 0.26 0.5 0\n0 0 0 0 0\n"
           "O2   O    0 0  0.3053  0.0387  0.7248 0.30 1.0 0\n0 0 0 0 0\n" +
           Fmt("(F12.6,A)", scale, " 0.3 0.0 0.0 0.0 0.0 0") + "\n" + scaleCode +
           " 0 0 0 0 0\n0.13 -0.165 0.10 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0 0\n"
           "5.7327 7.6738 5.5354 90 90 90\n0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n";
  }
};

// A helix of Co moments in a primitive orthorhombic cell: a |Jbt| 1 phase
// (`Jbt` -1 gives the spherical form of the same moments) with two typed
// operators and their moment matrices, one propagation vector, satellites only.
struct HelixCase {
  int job = 1;
  int cycles = 1;
  int refined = 0;
  int Jbt = 1;
  std::string moments = "2.0 0.0 0.0";         // Rx Ry Rz (or Rm Rphi Rtheta)
  std::string imaginary = "0.0 2.0 0.0 0.05";  // Ix Iy Iz (or Im Iphi Itheta), MagPh
  std::string vector = "0.1 0.0 0.3";
  std::string Text() const {
    return NeutronHead("Helix", job, cycles, refined) + "Helix\n1 0 0 0.0 0.0 1.0 " +
           std::to_string(Jbt) +
           " -1 1 0 0 0.0 1 5 0\nP m m m\n"
           "!Nsym Cen Laue MagMat\n2 1 3 1\n"
           " 1  0  0 0.0   0  1  0 0.0   0  0  1 0.0\n 1  0  0   0  1  0   0  0  1  0.0\n"
           "-1  0  0 0.0   0 -1  0 0.0   0  0  1 0.5\n-1  0  0   0 -1  0   0  0  1  0.1\n"
           "Co   MCO2 1 1  0.1 0.2 0.3 0.5 1.0 " +
           moments + "\n0 0 0 0 0 0 0 0\n" + imaginary.substr(0, imaginary.rfind(' ')) +
           " 0.0 0.0 0.0" + imaginary.substr(imaginary.rfind(' ')) +
           "\n0 0 0 0 0 0 0\n"
           "200.0 0.3 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0\n"
           "0.13 -0.165 0.10 0.0 0.0 0.0 0.0 0\n0 0 0 0 0 0 0\n"
           "5.0 6.0 4.0 90 90 90\n0 0 0 0 0 0\n0 0 0 0 0 0\n0 0 0 0 0 0\n" +
           vector + "\n0 0 0\n";
  }
};

}  // namespace corvinet::testing
