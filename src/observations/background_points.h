// Background interpolated between the user's points: straight lines or a natural cubic spline.
#pragma once

#include "observations/background_terms.h"
#include "records/job.h"

namespace corvinet {

// Decodes the codes of the point heights (BackIntCode) into backPointWord and
// counts the refined ones. For the spline it also prepares backSplineY2 and,
// for each refined height k, row k of backSplineGain.
void PreparePointBackground(Pattern& pattern, bool spline);

// Backg at every point from the NBCKGD points (BackPos, BackInt), by straight
// lines between the bracketing points (the end segments continued outside)
// or by the spline of PreparePointBackground. A bracket of zero width stops
// the run with " => Problem with interpolation!, check your background points! ".
void FillLinearBackground(Job& job, int ip);
void FillSplineBackground(Job& job, int ip);

// Adds, for each refined height, the weight of that point in the value at
// point i: the linear weights, or for the spline the change of the spline per
// unit change of the height. Needs PreparePointBackground.
void AddPointDerivatives(const Pattern& pattern, int i, bool spline, float factor,
                         DerivativeVector& derivative);

}  // namespace corvinet
