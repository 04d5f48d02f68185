// The apparent size and strain of each reflection of a phase with a size or strain model, and
// their averages.
#pragma once

#include <string>
#include <vector>

#include "records/job.h"

namespace corvinet {

// The apparent size and strain of one reflection from the additions of its
// models to the widths, by integral breadths: the size D = lambda/(beta cos
// theta) of the Lorentzian size width deltaY/cos(theta), beta = (pi/2) FWHM,
// and the strain e = beta/(4 tan(theta)) of the Gaussian strain width
// sqrt(deltaU) tan(theta), beta = sqrt(pi/(4 ln 2)) FWHM. Widths in degrees.
struct ApparentBroadening {
  double size = 0.0;         // Angstroms; 0 when the size adds nothing (deltaY <= 1e-6)
  double strain = 0.0;       // relative, 0 when the strain adds nothing
  double strainWidth = 0.0;  // the Gaussian strain FWHM, degrees
  double sizeWidth = 0.0;    // the Lorentzian size FWHM, degrees
};

ApparentBroadening ApparentOf(double deltaU, double deltaY, double lambda, double tanTheta);

// The same on an energy-dispersive pattern of constant Dtt1 (E = Dtt1/d):
// the strain FWHM is sqrt(deltaU) E, so e = sqrt(pi/(4 ln 2)) sqrt(deltaU)/2;
// the size width deltaY keV is deltaY/Dtt1 in 1/d, so D = 2 Dtt1/(pi
// deltaY). Widths in keV.
ApparentBroadening ApparentOfEnergy(double deltaU, double deltaY, double dtt1, double energy);

// Whether phase f has a size or strain model that broadens its reflections.
bool HasMicrostructureModel(const Phase& ph, const PhasePattern& c);

// The block of .out for phase f in pattern ip (2theta or energy data): a row per
// reflection, then the average apparent size and strain with their standard
// deviations over the reflections, which measure the anisotropy. Empty for
// a phase without such a model or a pattern of another unit.
std::vector<std::string> ApparentSizeStrainLines(const Job& job, int ip, int f);

}  // namespace corvinet
