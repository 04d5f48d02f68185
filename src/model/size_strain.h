// Size and strain broadening and the hkl-dependent shift of a reflection, with their derivatives.
#pragma once

#include <array>

#include "records/dimension_limits.h"
#include "records/pattern.h"
#include "records/phase.h"
#include "records/table1.h"

namespace corvinet {

// What the three operations read of a phase in a pattern.
struct BroadeningModel {
  int Str = 0;          // generalized size and strain block of the phase
  int strainModel = 0;  // Strain-Model
  int sizeModel = 0;    // Size-Model
  int ModS = 0;         // shift model
  int laue = 0;         // Laue class 1..14 of the phase
  const Table1<float, DimensionLimits::MPAR>* PAR = nullptr;  // profile parameters
  Table1<float, 6> cell;                                      // a, b, c, alpha, beta, gamma now
  Table1<float, 3> strainAxis;                                // axis of strain model 7
  Table1<float, 3> sizeAxis;                                  // platelet or needle axis
  Table1<float, 3> shiftAxis;                                 // axis of shift models 1 and -1
  double P2 = 0.0;         // variance to the squared abscissa unit (StrainP2)
  double sizeScale = 0.0;  // 57.29578 lambda for 2theta, Dtt1 for energy (ellipsoidal size)
};

// What they read of one reflection.
struct BroadeningReflection {
  std::array<double, 3> h{};     // h, k, l, shifted by the propagation vector
  double tanTheta = 0.0;         // tan(theta); the energy for an energy-dispersive pattern
  bool satellite = false;        // the reflection has a propagation vector
  float fileCoefficient = 0.0f;  // first extra number of the reflection file (shift models 2, -2)
};

// The three results and their derivatives with respect to the parameters of
// the models: strain slots Str1..Str10, size slots LorSiz..Size6, the
// harmonic coefficients SizeSH1..SizeSH9, and Shift1.
struct BroadeningTerms {
  double deltaU = 0.0;                 // addition to U
  double deltaY = 0.0;                 // addition to Y (Lorentzian width, profile code 8)
  double shift = 0.0;                  // shift of the position, in the abscissa unit
  std::array<double, 10> dU{};         // d(deltaU)/d(Str1..Str10)
  std::array<double, 6> dY{};          // d(deltaY)/d(LorSiz, Size2..Size6)
  std::array<double, 9> dYHarmonic{};  // d(deltaY)/d(SizeSH1..SizeSH9)
  double dShift = 0.0;                 // d(shift)/d(Shift1)
};

// The constant P² that turns a variance of 1/d² relative to 1/d² into the
// width unit of the pattern (2theta: (180/pi sqrt(8 ln2) 1e-3)²).
double StrainP2(const Pattern& pattern);

// The derivative of deltaU, deltaY or the shift with respect to profile slot
// s, 0 when the slot is none of the models' parameters.
double StrainSlotDerivative(const BroadeningTerms& t, int s);
double SizeSlotDerivative(const BroadeningTerms& t, int s);
double ShiftSlotDerivative(const BroadeningTerms& t, int s);

// The models of phase `ph` in pattern `p` (its part `c`) for reflections of
// wavelength index w, with the cell as it stands.
BroadeningModel BroadeningModelOf(const Phase& ph, const PhasePattern& c, const Pattern& p, int w);

// Runs StrainBroadening, SizeBroadening and BraggShift for one reflection.
BroadeningTerms SizeStrainBroadening(const BroadeningModel& m, const BroadeningReflection& r);

// Whether profile slot s is a parameter of the size, strain or shift model
// that `m` selects (slots that none of them reads are not used).
bool BroadeningUsesSlot(const BroadeningModel& m, int s);

// The report's name of a model, "" for a number with none.
const char* StrainModelText(int model);
const char* SizeModelText(int model);
const char* ShiftModelText(int model);
// The formula line of shift models 1 and -1, "" for the others.
const char* ShiftFormulaText(int model);

}  // namespace corvinet
