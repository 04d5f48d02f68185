// Species tables of the phases: atom labels resolved against the fixed scattering tables and the
// scattering entries of the control file.
#pragma once

#include <string>
#include <string_view>

#include "records/chemical_species.h"
#include "records/job.h"

namespace corvinet {

// The ten labels of form-factor objects, in their order.
inline constexpr std::string_view kObjectLabels[10] = {"SPHS", "PARA", "ELLI", "CYLI", "SASH",
                                                       "TORE", "SPHE", "FUD2", "FUD3", "FUD4"};

// The 4-character label that names the nucleus of an atom: its species label, except that in a
// nuclear and magnetic phase (|Jbt| 10) an atom bearing a moment is typed by its magnetic label,
// such as MFE3, whose 2nd and 3rd characters name the nucleus (FE).
std::string NucleusLabel(const Phase& phase, const AtomSite& atom);

// Column of the anomalous table for an X-ray pattern: the first reference
// wavelength below lambda1 + 0.1, or 6 when none is (lambda1 below 0.4564 A).
int AnomalousColumn(float lambda1);

// Where the f' and f'' of an X-ray pattern come from: the column of the reference wavelengths,
// or, for a wavelength far from all of them, the energy table at the pattern's own energy.
struct AnomalousSource {
  int column = 0;          // column of the reference table (0: none, as for neutrons)
  bool atEnergy = false;   // f' and f'' taken from the energy table instead
  double energyKeV = 0.0;  // photon energy of the first wavelength (keV)
};

// The source of f' and f'' for a first wavelength `lambda1` (A).
AnomalousSource AnomalousSourceOf(float lambda1);

// f' and f'' of anomalous row `row` at reference column `column` (1 to 5); any other column
// (0 for neutrons, 6 for a wavelength below every reference, which takes the energy table
// instead) gives 0 and 0.
void AnomalousTerms(int row, int column, float& fp, float& fpp);

// Walks the atoms of phase k and gives each its species number in pattern ip,
// extending the species table of the phase. The table starts with the
// `speciesGiven` scattering entries of the pattern and with the species of the
// earlier phases of the pattern. `radiation` is |JOBTYP|: 1 and 3 neutron,
// any other X-ray. Stops the run on a label that no table holds or beyond
// N_SPE species.
void ResolveScatteringSpecies(Job& job, int ip, int k, int atomCount, int speciesGiven,
                              const AnomalousSource& anomalous, int radiation);

// Sets up the species of phase k in pattern ip, with the pattern's radiation and
// anomalous column. Called after the reflections of the phase are made in the
// pattern; does nothing for profile-matching phases (|Jbt| 2 or 3) or when the
// phase does not contribute to the pattern.
void SetUpPhaseSpecies(Job& job, int k, int ip);

// Fills an entry's nine coefficients from the X-ray table by its name, folded
// to lower case (the folded name is kept). Stops the run when no key matches.
void LookupScatteringByLabel(Job& job, ScatteringEntry& entry);
void LookupScatteringByLabel(Job& job, ChemicalSpecies& species);

}  // namespace corvinet
