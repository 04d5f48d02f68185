// Cell metric of a phase: the cell forced to its Laue class, direct and reciprocal metric, volume.
#pragma once

#include <array>

#include "records/cell_metric.h"
#include "records/table1.h"

namespace corvinet {

// Gives the cell the constraints of its Laue class (1..14).
void ForceCellToLaueClass(Table1<float, 6>& cell, int laue, int uniqueAxis);

// Volume a b c sqrt(1 - cos²α - cos²β - cos²γ + 2 cosα cosβ cosγ), cosines in double.
double CellVolume(const Table1<float, 6>& cell);

// Builds the metric of a cell; false when the cell is singular.
bool BuildCellMetric(const Table1<float, 6>& cell, CellMetric& metric);

// The six coefficients A = a*², B = b*², C = c*², D = 2b*c*cosα*,
// E = 2a*c*cosβ*, F = 2a*b*cosγ* of 1/d² = Ah² + Bk² + Cl² + Dkl + Ehl + Fhk.
Table1<float, 6> ReciprocalCoefficients(const CellMetric& metric);

// The reciprocal metric tensor G* from the six coefficients.
Table2<double, 3, 3> ReciprocalTensor(const Table1<float, 6>& coefficients);

// 1/d² of the vector h = (h, k, l) from the six coefficients.
double InverseDSquared(const Table1<float, 6>& coefficients, const std::array<double, 3>& h);

// The cell back from the six coefficients.
Table1<float, 6> CellFromCoefficients(const Table1<float, 6>& coefficients);

// Name of a Laue class: "-1", "2/m", "mmm", ... "m3m".
const char* LaueClassName(int laue);

}  // namespace corvinet
