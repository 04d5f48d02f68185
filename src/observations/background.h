// The background of a pattern: choice of model, per-point values, derivatives of its parameters.
#pragma once

#include "observations/background_terms.h"
#include "records/job.h"

namespace corvinet {

// The models, by the typed background code NBCKGD * backgroundSign.
enum class BackgroundModel {
  Polynomial,    // 0: B0..B5 in u = X/Bkpos - 1
  File,          // +1: the .bac file under the transform a, b, c, d
  Debye,         // -1: polynomial plus six Debye-like terms
  Fourier,       // -2: Fourier filter of the residual
  Polynomial12,  // -3: B0..B11
  Linear,        // +2 or more: straight lines between the points
  Spline,        // -4 or less: natural cubic spline through the points
};

BackgroundModel BackgroundModelOf(const Pattern& pattern);

// Evaluation of the background when a pattern has been read: reads the .bac
// file for the file model, starts the Fourier-filter background at 0 (it is
// built after each cycle, once a calculated pattern exists), and fills Backg.
// The polynomial models rely on the reader's refusal of a Bkpos of 0.
void EvaluateBackground(Job& job, int ip);

// Recomputes Backg at all points of pattern ip from the present parameters;
// called at the start of each cycle. The Fourier-filter background keeps the
// values of its last pass (FourierFilter).
void FillBackground(Job& job, int ip);

// Whether the cycle refills Backg before its points (FillBackground): the
// closed forms and the interpolated points, whose heights may be refined. The
// file model is interpolated at each call and the Fourier filter keeps its
// last pass.
bool RefilledEachCycle(const Pattern& pattern);

// The background at point i as the point loop uses it: the stored Backg[i],
// except for the file model, which interpolates at each call.
float BackgroundAt(const Pattern& pattern, int i);

// Adds to derivative[L], for each refined background parameter L of the
// pattern's model, scaleSin times its codeword multiplier times the derivative
// of the background at point i with respect to the parameter's value
// (scaleSin is a common factor of the terms; 1 gives the plain derivatives).
// Called once per point in the point loop: it allocates nothing and touches
// only the entries of refined parameters. The point models need the state
// prepared by the last FillBackground.
void BackgroundDerivatives(const Pattern& pattern, int i, float scaleSin,
                           DerivativeVector& derivative);

}  // namespace corvinet
