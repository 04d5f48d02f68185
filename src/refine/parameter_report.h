// The printed tables of the parameter update: values, shifts and standard deviations of each class.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "records/abscissa_unit.h"
#include "records/table1.h"

namespace corvinet {

// One parameter as the tables show it.
struct ReportedValue {
  float value = 0.0f;
  float shift = 0.0f;
  float sigma = 0.0f;
};

// Pass headings.
std::string CycleHeading(int cycle);
std::string PhaseHeading(int phase, std::string_view title);
std::string PeakHeading(int phase, int ip);
std::string GlobalHeading(int ip);

// The column words over ParameterLine rows.
std::string ParameterColumns();
// Name, value, shift and sigma of one parameter.
std::string ParameterLine(std::string_view name, const ReportedValue& v);

// The atom table of positions, B and occupancy: column words (or user
// parameters p1..p5 for a user-defined model) and one line per atom with
// value, shift and sigma of slots 1 to 5.
std::string AtomPositionColumns(bool userDefined);
std::string AtomPositionLine(std::string_view label, const ReportedValue (&slots)[5]);

// A block of named parameters of an atom (betas, moments, form-factor or user
// parameters): a row of names and rows of values, shifts and sigmas, seven
// columns at a time.
std::vector<std::string> ParameterBlockLines(std::string_view label,
                                             const std::vector<std::string>& names,
                                             const std::vector<ReportedValue>& values);

// The norm of a moment and its sigma; `which` is "Real" or "Imag".
std::string MomentLine(std::string_view label, std::string_view which, float moment, float sigma);

// The cell volume with its sigma.
std::string CellVolumeLine(double volume, float sigma);

// Names of the slots as the report shows them.
std::string PeakSlotName(int slot, int irf, AbscissaUnit ixunit, std::string_view furtherName);
std::string GlobalSlotName(int slot, AbscissaUnit ixunit);
const char* CellConstantName(int i);  // a, b, c, alpha, beta, gamma

}  // namespace corvinet
