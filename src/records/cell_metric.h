// Direct and reciprocal metric of a cell, as a phase keeps it.
#pragma once

#include "records/table1.h"

namespace corvinet {

// Direct and reciprocal metric tensors of a cell, with the Cartesian frame
// (a along x, b in the xy plane) and its inverse.
struct CellMetric {
  Table2<double, 3, 3> G;            // direct metric
  Table2<double, 3, 3> Gstar;        // reciprocal metric, the inverse of G
  Table2<double, 3, 3> orthonormal;  // fractional to Cartesian
  Table2<double, 3, 3> fractional;   // Cartesian to fractional
  double volume = 0.0;
};

}  // namespace corvinet
