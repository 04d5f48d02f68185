// The control text of a simulated time-of-flight job for the tests: one cubic phase and its
// profile, with every value and code a test may change.
#pragma once

#include <sstream>
#include <string>

#include "format/fortran_format.h"

namespace corvinet {

// A cubic phase (a = 4.157, P m -3 m, one atom) on a time-of-flight pattern
// from 5000 to 20000 us, T = Zero + Dtt1 d + Dtt2 d^2.
struct TofModel {
  float zero = 3.0f, dtt1 = 5000.0f, dtt2 = -2.0f;
  float sig1 = 40.0f, gam1 = 1.5f;
  float alph0 = 0.0f, alph1 = 0.6f, beta0 = 0.03f, beta1 = 0.005f;
  float scale = 0.5f, background = 20.0f, a = 4.157f;
  float extinc = 0.0f, abs1 = 0.0f;
  int iabscor = 0;
  std::string globalCodes = "0.00 0.00 0.00";  // Zero, Dtt1, Dtt2
  std::string scaleCodes = "0.00 0.00";        // Scale, Extinc
  std::string widthCodes = "0.00";             // Sig-1
  std::string gammaCodes = "0.00";             // Gam-1
  std::string asymCodes = "0.00 0.00 0.00 0.00";
  std::string cellCode = "0.00";
  std::string absCode = "0.00";
  std::string backgroundCode = "0.00";
  int refined = 0;
  int job = -3;  // calculation of a neutron time-of-flight pattern
  int cycles = 1;
  std::string shapeLine = "0.0 0.0 0.0 0.0 0";  // Xt, Yt, Z1, Z0 and Size-Model
  std::string gammaTail = "0.0 0.0";            // LStr, LSiz
};

inline std::string TofText(const TofModel& m) {
  std::istringstream g(m.globalCodes);
  std::string cz, c1, c2;
  g >> cz >> c1 >> c2;
  std::istringstream s(m.scaleCodes);
  std::string cs, ce;
  s >> cs >> ce;
  return "Simulated time-of-flight pattern\n" +
         Fmt("(I4,A)", m.job, "   9   1   0   0   0   0   0   0   0   0   0   0   0   0   1   0") +
         "\n   0   0   1   0   0   0   0   0   0   1   0   0   0   0   0   0   0\n" +
         Fmt("(A,I3)", " 6000.0  6.0", m.iabscor) + "\n" +
         Fmt("(I3,A)", m.cycles,
             "  0.01  1.00  1.00  1.00  1.00   5000.0   4.0  20000.0   0.000   0.000") +
         "\n" + Fmt("(I5)", m.refined) + "\n" +
         Fmt("(F10.3,1X,A,F12.3,1X,A,F10.4,1X,A,A)", m.zero, cz, m.dtt1, c1, m.dtt2, c2,
             " 1.4142 0.00   0") +
         "\n" + Fmt("(F8.2,A)", m.background, "  0.0  0.0  0.0  0.0  0.0") + "\n" +
         m.backgroundCode + " 0.00 0.00 0.00 0.00 0.00\n" +
         "Cubic\n   1   0   0 0.0 0.0 1.0   0   0   0   0   0   0.000   0   9   0\nP m -3 m\n"
         "Ni NI 0.0 0.0 0.0 0.3 1.0 0 0 0\n 0.00 0.00 0.00 0.00 0.00\n" +
         Fmt("(F10.5,F10.5,A)", m.scale, m.extinc, " 0.0 0.0 0.0 0.0 0") + "\n" + cs + " " + ce +
         " 0 0 0 0\n" + Fmt("(A,F10.4,A,A)", "0.0 ", m.sig1, " 0.0 ", m.shapeLine) + "\n0 " +
         m.widthCodes + " 0 0 0 0 0\n" +
         Fmt("(A,F10.4,A,A)", "0.0 ", m.gam1, " 0.0 ", m.gammaTail) + "\n0 " + m.gammaCodes +
         " 0 0 0\n" + Fmt("(3F10.5,A)", m.a, m.a, m.a, " 90 90 90") + "\n" + m.cellCode + " " +
         m.cellCode + " " + m.cellCode + " 0 0 0\n" +
         Fmt("(A,4F10.5)", "0 0 ", m.alph0, m.beta0, m.alph1, m.beta1) + "\n0 0 " + m.asymCodes +
         "\n" + Fmt("(F10.5,1X,A,A)", m.abs1, m.absCode, " 0.0 0.00") + "\n";
}

}  // namespace corvinet
