// The instrumental widths of a pattern as its resolution file gives them: a law or a table.
#pragma once

#include <string>

#include "records/table1.h"

namespace corvinet {

// The laws of a resolution file (IRESOL).
enum class ResolutionLaw : int {
  kNone = 0,
  kTangent = 1,        // G^2 = U t^2 + V t + W, L = X t + Z (t = tan theta)
  kTangentSquare = 2,  // G^2 as 1, L = t (t X + Y) + Z
  kPosition = 3,       // G^2 = x (x U + V) + W, L = x (x X + Y) + Z (x = position)
  kTable = 4,          // both widths interpolated in a table of positions
};

// The resolution function of one pattern.
struct ResolutionFunction {
  static constexpr int kTableRows = 30;  // rows a table may hold
  static constexpr int kLawTerms = 6;    // gaussU gaussV gaussW lorentzX lorentzY lorentzZ

  ResolutionLaw IRESOL = ResolutionLaw::kNone;  // law of the file
  std::string resolutionTitle;                  // first line of the file, 40 characters
  Table2<float, kLawTerms, 2> law;              // (term, wavelength) of laws 1 to 3
  int nTable = 0;                               // rows of the table of law 4
  Table1<float, kTableRows> tablePosition;      // positions of the rows, rising
  Table1<float, kTableRows> tableGaussian;      // Gaussian full width at half maximum
  Table1<float, kTableRows> tableLorentzian;    // Lorentzian full width at half maximum
};

}  // namespace corvinet
