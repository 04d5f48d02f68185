// The fixed scattering tables gathered into one record, and the searches of their keys.
#include "model/scattering_tables.h"

#include <algorithm>

#include "format/text.h"

namespace corvinet {

namespace {

ScatteringTables BuildTables() {
  ScatteringTables t;
  for (int i = 1; i <= ScatteringTables::NeutronRows; ++i) t.neutron[i] = kNeutronRows[i - 1];
  for (int i = 1; i <= ScatteringTables::XrayRows; ++i) t.xray[i] = kXrayRows[i - 1];
  for (int i = 1; i <= ScatteringTables::AnomalousRows; ++i) {
    for (int j = 1; j <= ScatteringTables::AnomalousColumns; ++j) {
      t.anomalous(i, j) = kAnomalousRows[i - 1][j - 1];
    }
  }
  for (int i = 1; i <= ScatteringTables::Wavelengths; ++i) {
    t.referenceWavelengths[i] = kReferenceWavelengths[i - 1];
  }
  for (int i = 1; i <= ScatteringTables::MagneticRows; ++i) t.magnetic[i] = kMagneticRows[i - 1];
  return t;
}

// Keys and labels compare as blank-padded fields of four characters.
bool SameKey(const char* key, const std::string& label4) {
  return FixedText(key, 4) == label4;
}

template <typename Row, std::size_t N>
int FindFirst(const Table1<Row, N>& rows, std::string_view label, int lastRow) {
  const std::string label4 = FixedText(label, 4);
  const int last = std::min(lastRow, static_cast<int>(N));
  for (int i = 1; i <= last; ++i) {
    if (SameKey(rows[i].key, label4)) return i;
  }
  return 0;
}

}  // namespace

const ScatteringTables& FixedScatteringTables() {
  static const ScatteringTables tables = BuildTables();
  return tables;
}

int FindNeutronRow(std::string_view label, int lastRow) {
  return FindFirst(FixedScatteringTables().neutron, label, lastRow);
}

int FindXrayRow(std::string_view label) {
  return FindFirst(FixedScatteringTables().xray, label, ScatteringTables::XrayRows);
}

int FindMagneticRow(std::string_view label) {
  return FindFirst(FixedScatteringTables().magnetic, label, ScatteringTables::MagneticRows);
}

}  // namespace corvinet
