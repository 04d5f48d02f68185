// f' and f'' at a photon energy, interpolated in log E within the energy table.
#include "model/anomalous_energy.h"

#include <algorithm>
#include <cmath>

#include "model/scattering_tables.h"

namespace corvinet {

namespace {

const AnomalousEnergyRow* RowsBegin() {
  return kAnomalousEnergyRows;
}

const AnomalousEnergyRow* RowsEnd() {
  return kAnomalousEnergyRows + kAnomalousEnergyRowCount;
}

AnomalousPair ValuesOf(const AnomalousEnergyRow& r) {
  return {r.fp, r.fpp};
}

// Linear in log E between two rows of one element.
AnomalousPair Interpolate(const AnomalousEnergyRow& lo, const AnomalousEnergyRow& hi, double e) {
  const double t = (std::log(e) - std::log(double(lo.energy))) /
                   (std::log(double(hi.energy)) - std::log(double(lo.energy)));
  return {static_cast<float>(lo.fp + t * (hi.fp - lo.fp)),
          static_cast<float>(lo.fpp + t * (hi.fpp - lo.fpp))};
}

}  // namespace

std::optional<AnomalousPair> AnomalousAtEnergy(int Z, double energyKeV) {
  const auto byZ = [](const AnomalousEnergyRow& r, int z) { return r.Z < z; };
  const AnomalousEnergyRow* first = std::lower_bound(RowsBegin(), RowsEnd(), Z, byZ);
  const AnomalousEnergyRow* last = first;
  while (last != RowsEnd() && last->Z == Z) ++last;
  if (first == last) return std::nullopt;
  if (energyKeV <= first->energy) return ValuesOf(*first);
  if (energyKeV >= (last - 1)->energy) return ValuesOf(*(last - 1));
  const auto byEnergy = [](double e, const AnomalousEnergyRow& r) { return e < r.energy; };
  const AnomalousEnergyRow* hi = std::upper_bound(first, last, energyKeV, byEnergy);
  const AnomalousEnergyRow* lo = hi - 1;
  if (lo->edgeSide < 0 && hi->edgeSide > 0) {
    const double edge = 0.5 * (double(lo->energy) + double(hi->energy));
    return ValuesOf(energyKeV < edge ? *lo : *hi);
  }
  return Interpolate(*lo, *hi, energyKeV);
}

bool AnomalousFromEnergy(float lambda) {
  const ScatteringTables& t = FixedScatteringTables();
  for (int i = 1; i <= ScatteringTables::Wavelengths; ++i) {
    if (std::fabs(t.referenceWavelengths[i] - lambda) <= kReferenceWavelengthTolerance) {
      return false;
    }
  }
  return true;
}

}  // namespace corvinet
