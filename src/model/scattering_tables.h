// The fixed scattering tables: neutron lengths, X-ray form factors, anomalous terms, magnetic
// form factors and the reference wavelengths of the anomalous columns.
#pragma once

#include <string_view>

#include "records/table1.h"

namespace corvinet {

// A neutron row: upper-case key and coherent scattering length (1E-12 cm).
struct NeutronRow {
  char key[5];
  float b;
};

// An X-ray row: lower-case key, a1 b1 a2 b2 a3 b3 a4 b4 c, and the anomalous row number.
struct XrayRow {
  char key[5];
  float v[10];
};

// A magnetic row: upper-case key and A a B b C c D of <j0>.
struct MagneticRow {
  char key[5];
  float v[7];
};

struct ScatteringTables {
  static constexpr int NeutronRows = 92;
  static constexpr int NeutronSearchRows = 86;  // rows behind D are reached by no label
  static constexpr int XrayRows = 213;
  static constexpr int AnomalousRows = 97;
  static constexpr int AnomalousColumns = 10;
  static constexpr int MagneticRows = 114;
  static constexpr int Wavelengths = 5;

  Table1<NeutronRow, NeutronRows> neutron;
  Table1<XrayRow, XrayRows> xray;
  // Columns 1 to 5: f' at the reference wavelengths; 6 to 10: f'' at the same.
  Table2<float, AnomalousRows, AnomalousColumns> anomalous;
  Table1<float, Wavelengths> referenceWavelengths;  // Cr, Fe, Cu, Mo, Ag K-alpha1, descending
  Table1<MagneticRow, MagneticRows> magnetic;
};

// The tables, filled once on first use and never changed.
const ScatteringTables& FixedScatteringTables();

// Row of the first key equal to the 4-character label, or 0. Keys compare as
// 4-character fields (blank-padded); no case folding.
int FindNeutronRow(std::string_view label, int lastRow = ScatteringTables::NeutronSearchRows);
int FindXrayRow(std::string_view label);
int FindMagneticRow(std::string_view label);

// The raw rows as compiled into the program (defined in the table sources).
extern const NeutronRow kNeutronRows[ScatteringTables::NeutronRows];
extern const XrayRow kXrayRows[ScatteringTables::XrayRows];
extern const float kAnomalousRows[ScatteringTables::AnomalousRows]
                                 [ScatteringTables::AnomalousColumns];
extern const MagneticRow kMagneticRows[ScatteringTables::MagneticRows];
extern const float kReferenceWavelengths[ScatteringTables::Wavelengths];

}  // namespace corvinet
