// f' and f'' at any photon energy from the energy table, and the choice between that table and
// the columns of the five reference wavelengths.
#pragma once

#include <optional>

namespace corvinet {

inline constexpr int kAnomalousEnergyRowCount = 20124;  // rows of the energy table
inline constexpr double kKeVAngstrom = 12.398419843;    // E (keV) = kKeVAngstrom / lambda (A)

// One row of the energy table.
struct AnomalousEnergyRow {
  int Z;         // atomic number
  float energy;  // photon energy (keV)
  float fp;      // f' (electrons)
  float fpp;     // f'' (electrons, positive)
  int edgeSide;  // -1 just below an absorption edge, +1 just above, 0 elsewhere
};

// Rows by Z, then by rising energy (defined in anomalous_energy_rows.cpp).
extern const AnomalousEnergyRow kAnomalousEnergyRows[kAnomalousEnergyRowCount];

// f' and f'' of one element at one energy.
struct AnomalousPair {
  float fp = 0.0f;
  float fpp = 0.0f;
};

// f' and f'' of element Z at `energyKeV`: linear in log E between the rows that bracket the
// energy, never across an edge (between the rows just below and just above an edge, the side
// of the edge the energy lies on). Below the first or above the last row, that row's values.
// Nothing for a Z outside the table.
std::optional<AnomalousPair> AnomalousAtEnergy(int Z, double energyKeV);

// Farthest distance (A) from a reference wavelength at which its column is still used.
inline constexpr float kReferenceWavelengthTolerance = 0.005f;

// Whether the wavelength lies more than the tolerance from every reference wavelength, so that
// f' and f'' are taken at its own energy.
bool AnomalousFromEnergy(float lambda);

}  // namespace corvinet
