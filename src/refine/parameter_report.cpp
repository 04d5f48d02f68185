// The printed tables of the parameter update: values, shifts and standard deviations of each class.
#include "refine/parameter_report.h"

#include <algorithm>
#include <cstdlib>

#include "format/fortran_format.h"
#include "records/profile_slots.h"

namespace corvinet {

namespace {

constexpr int kBlockColumns = 7;

std::string Numbered(std::string_view word, int n) {
  return Fmt("(A,I0)", word, n);
}

std::string BlockRow(std::string_view label, std::string_view word,
                     const std::vector<FormatValue>& values, std::string_view format) {
  std::vector<FormatValue> all{FormatValue(label), FormatValue(word)};
  all.insert(all.end(), values.begin(), values.end());
  return FormatText(format, all);
}

std::string IntegratedName(int slot) {
  using namespace IntegratedSlot;
  if (slot >= Sc1 && slot <= Sc5) return Numbered("Sc", slot);
  if (slot == Sc6) return "Sc6";
  if (slot >= Ext1 && slot <= Ext7) return Numbered("Ext", slot - Ext1 + 1);
  return Fmt("(A,I3.3)", "Par", slot);
}

}  // namespace

std::string CycleHeading(int cycle) {
  return Fmt("(A,I4)", " => CYCLE No.: ", cycle);
}

std::string PhaseHeading(int phase, std::string_view title) {
  return Fmt("(A,I3,2A)", " => Phase No.", phase, "  ", title);
}

std::string PeakHeading(int phase, int ip) {
  return Fmt("(A,I3,A,I3)", " => Profile parameters of phase", phase, " in pattern", ip);
}

std::string GlobalHeading(int ip) {
  return Fmt("(A,I3)", " => Global parameters of pattern", ip);
}

std::string ParameterColumns() {
  return Fmt("(1X,A20,3A15)", "Parameter", "Value", "Shift", "Sigma");
}

std::string ParameterLine(std::string_view name, const ReportedValue& v) {
  return Fmt("(1X,A20,3G15.6)", name, v.value, v.shift, v.sigma);
}

std::string AtomPositionColumns(bool userDefined) {
  if (userDefined) {
    return Fmt("(1X,A4,5(A9,A8,1X,A7))", "Atom", "p1", "dp1", "sp1", "p2", "dp2", "sp2", "p3",
               "dp3", "sp3", "p4", "dp4", "sp4", "p5", "dp5", "sp5");
  }
  return Fmt("(1X,A4,5(A9,A8,1X,A7))", "Atom", "x", "dx", "sx", "y", "dy", "sy", "z", "dz", "sz",
             "B", "dB", "sB", "occ.", "docc.", "socc.");
}

std::string AtomPositionLine(std::string_view label, const ReportedValue (&s)[5]) {
  return Fmt("(1X,A4,5(F9.5,F8.5,1X,F7.6))", label, s[0].value, s[0].shift, s[0].sigma, s[1].value,
             s[1].shift, s[1].sigma, s[2].value, s[2].shift, s[2].sigma, s[3].value, s[3].shift,
             s[3].sigma, s[4].value, s[4].shift, s[4].sigma);
}

std::vector<std::string> ParameterBlockLines(std::string_view label,
                                             const std::vector<std::string>& names,
                                             const std::vector<ReportedValue>& values) {
  std::vector<std::string> lines;
  const std::size_t n = std::min(names.size(), values.size());
  for (std::size_t first = 0; first < n; first += kBlockColumns) {
    const std::size_t last = std::min(n, first + kBlockColumns);
    std::vector<FormatValue> words, value, shift, sigma;
    for (std::size_t i = first; i < last; ++i) {
      words.emplace_back(names[i]);
      value.emplace_back(values[i].value);
      shift.emplace_back(values[i].shift);
      sigma.emplace_back(values[i].sigma);
    }
    lines.push_back(BlockRow(first == 0 ? label : "", "", words, "(1X,A4,1X,A6,7A12)"));
    lines.push_back(BlockRow("", "Value:", value, "(1X,A4,1X,A6,7F12.6)"));
    lines.push_back(BlockRow("", "Shift:", shift, "(1X,A4,1X,A6,7F12.6)"));
    lines.push_back(BlockRow("", "Sigma:", sigma, "(1X,A4,1X,A6,7F12.6)"));
  }
  return lines;
}

std::string MomentLine(std::string_view label, std::string_view which, float moment, float sigma) {
  return Fmt("(1X,A4,1X,A4,A,F10.5,A,F9.5,A)", label, which, " moment:", moment, " (", sigma, ")");
}

std::string CellVolumeLine(double volume, float sigma) {
  return Fmt("(A,F12.4,A,F10.4,A)", " => Cell volume:", volume, " (", sigma, ")");
}

std::string PeakSlotName(int slot, int irf, AbscissaUnit ixunit, std::string_view furtherName) {
  if (std::abs(irf) == 4) return IntegratedName(slot);
  if (const ProfileSlotRow* row = ProfileSlotRowOf(slot)) {
    return ixunit == AbscissaUnit::kTimeOfFlight ? row->timeOfFlight : row->name;
  }
  if (slot > ProfileSlot::Last && !furtherName.empty()) return std::string(furtherName);
  return Fmt("(A,I3.3)", "Par", slot);
}

std::string GlobalSlotName(int slot, AbscissaUnit ixunit) {
  const bool converted = IsTofOrEnergy(ixunit);
  if (slot == 1) return "Zero";
  if (slot >= 2 && slot <= 7) return Numbered("Bck", slot - 2);
  if (slot == 8) return converted ? "Dtt1" : "Sycos";
  if (slot == 9) return converted ? "Dtt2" : "Sysin";
  if (slot >= 10 && slot <= 15) return Numbered("Bc", slot - 9);
  if (slot >= 16 && slot <= 21) return Numbered("D", slot - 15);
  if (slot >= 22 && slot <= 25) {
    static constexpr const char* kTransform[] = {"Bk_a", "Bk_b", "Bk_c", "Bk_d"};
    return kTransform[slot - 22];
  }
  if (slot == 26) return converted ? "2Theta" : "Lambda";
  if (slot == 27) return "P0";
  if (slot == 28) return "Cp";
  if (slot == 29) return "Tau";
  if (slot >= 30 && slot <= 35) return Numbered("Bck", slot - 24);
  return Fmt("(A,I2.2)", "Glb", slot);
}

const char* CellConstantName(int i) {
  static constexpr const char* kNames[] = {"a", "b", "c", "alpha", "beta", "gamma"};
  return i >= 1 && i <= 6 ? kNames[i - 1] : "?";
}

}  // namespace corvinet
