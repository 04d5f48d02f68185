// Per-pattern record: flags and instrument values of the control file, and the per-point arrays.
#pragma once

#include <cstdlib>
#include <string>

#include "records/abscissa_unit.h"
#include "records/codeword.h"
#include "records/dimension_limits.h"
#include "records/intensity_list.h"
#include "records/profile_code.h"
#include "records/reflection.h"
#include "records/resolution_function.h"
#include "records/run_table.h"
#include "records/table1.h"

namespace corvinet {

// An additional scattering entry of a pattern: a species with its anomalous
// terms, or a neutron scattering length, or a form factor by coefficients or
// by a table of points.
struct ScatteringEntry {
  std::string NAM;           // species name, at most 4 characters
  float Fprime = 0.0f;       // f', or the scattering length
  float Fsecond = 0.0f;      // f''
  int ITAB = 0;              // entry type
  Table1<float, 9> coef;     // form-factor coefficients
  int tablePoints = 0;       // points of a table, at most 59
  Table1<float, 59> tableX;  // abscissae of a table of points
  Table1<float, 59> tableY;  // form factors at tableX
};

struct Pattern {
  float W_PAT = 1.0f;             // relative weight, normalised at reading
  std::string DatCode;            // data-file stem
  std::string ResolutionFile;     // resolution-file name
  ResolutionFunction resolution;  // instrumental widths read from the resolution file
  int JOBTYP = 0;                 // job type (Job)
  int NPROF = 6;   // profile function (Npr): as typed while read, then its ProfileCode number
  int NBCKGD = 0;  // magnitude of the background code (Nba)
  int backgroundSign = 1;      // sign of the typed background code
  int noBackgroundPoints = 0;  // 1 for the background forms that read no points
  int NEXCRG = 0;              // excluded regions (Nex)
  int NSCAT = 0;               // scattering entries; negative: tables of points (Nsc)
  int scatteringCount = 0;     // |NSCAT|
  int NORI = 0;                // preferred orientation model (Nor)
  int IWGT = 0;                // weighting (Iwg)
  int ILOR = 0;                // geometry (Ilo)
  int IASYM = 0;               // asymmetry model (Asym)
  int IRESO = 0;               // resolution function (Res)
  int ISTEP = 0;               // point reduction factor (Ste)
  AbscissaUnit IXUNIT = AbscissaUnit::kTwoTheta;  // abscissa unit (Uni)
  int ICORR = 0;                                  // intensity corrections from file (Cor)
  int IOT = 0;                                    // print observed and calculated intensities (Ipr)
  int IPL = 0;                                    // plot and background file output (Ppl)
  int IPC = 1;                                    // integrated intensities output (Ioc)
  int LST1 = 0;                                   // print the reflection list (Ls1)
  int LST2 = 0;                // 1 print corrected data, 2 plot the pattern each cycle (Ls2)
  int LST3 = 0;                // print the merged reflection list (Ls3)
  int IPL2 = 1;                // .prf file (Prf)
  int INSTR = 0;               // data-file format (Ins)
  int JLKH = 0;                // reflection file (Hkl)
  int JFOU = 0;                // Fourier file (Fou)
  int IANALY = 0;              // final analysis (Ana)
  int isXray = 0;              // 1 when JOBTYP is 0 or 2
  float idumScale = 0.0f;      // 1.0 when IDUM is 3
  int Iabscor = 2;             // absorption correction type of non-angle data
  float Temperature = 293.0f;  // sample temperature
  float Cnorm = 1.0f;          // count normalisation of the variances

  // Instrument and range (instrument and cycle lines).
  Table1<float, 2> LAMBDA;                        // the two wavelengths
  Table1<float, 2> RATIO;                         // intensity of each wavelength; RATIO[1] is 1
  bool separateUVW2 = false;                      // Ratio typed negative: own U,V,W for LAMBDA[2]
  float Bkpos = 0.0f;                             // origin of the background polynomial
  float Wdt = 0.0f;                               // peak range in half widths
  float Cthm = 0.0f;                              // cos of the monochromator angle
  float muR = 0.0f;                               // effective absorption
  float AsyLim = 0.0f;                            // asymmetry applied below this angle
  float Rpolarz = 0.0f;                           // polarisation
  float THMIN = 0.0f, STEP = 0.0f, THMAX = 0.0f;  // range and step
  float PSD = 0.0f;      // incidence angle of a position-sensitive detector
  float Sent0 = 0.0f;    // low-angle limit of the scale correction
  int MORE = 0;          // microabsorption line follows
  int equalStep = 1;     // 1 when the abscissa is equidistant
  int stepKind = 0;      // 0 constant step, 1 interpolated at read, 2 listed points
  float TSET = 0.0f;     // regulation temperature from the data header
  float MONITOR = 0.0f;  // monitor from the data header
  float Dtt1 = 0.0f, Dtt2 = 0.0f, TwoSinTh = 0.0f;  // TOF / energy conversion constants

  // Global parameters with their typed codes and decoded codewords.
  Table1<float, DimensionLimits::NGL> GLB;         // global values: zero, background, Dtt...
  Table1<float, DimensionLimits::NGL> GLBcode;     // their codes as typed
  Table1<Codeword, DimensionLimits::NGL> GLBword;  // decoded codes

  // Background points and excluded regions.
  Table1<float, DimensionLimits::IBACP + 1> BackPos;
  Table1<float, DimensionLimits::IBACP + 1> BackInt;
  Table1<float, DimensionLimits::IBACP + 1> BackIntCode;
  Table1<float, DimensionLimits::IEXCL> ExclLow;   // low end of each excluded region
  Table1<float, DimensionLimits::IEXCL> ExclHigh;  // high end of each excluded region
  float FourierWindow = 0.0f;                      // window of the Fourier filtering, in points

  // Additional scattering entries.
  Table1<ScatteringEntry, DimensionLimits::N_SPE> scattering;  // entries 1..scatteringCount
  int scatteringTypeSum = 0;                                   // sum of ITAB over the entries

  // Scales of the line-printer plot, read from the end lines.
  int Iscale = 100;  // counts per column of the plotted pattern
  int Idif = 100;    // counts per column of the plotted difference

  // Intensity-correction table of the .cor file.
  int corrMode = 1;                            // 1 coefficients, 2 a table of points
  int corrForm = 1;                            // form of the correction
  int corrCount = 0;                           // coefficients or points read
  Table1<float, DimensionLimits::NPRC> corrX;  // abscissae of the points (mode 2)
  Table1<float, DimensionLimits::NPRC> corrY;  // coefficients, or the corrections at corrX

  // Per-point arrays: room for the default capacity, grown by GrowPointTables
  // when the data of a large run hold more points.
  int NPTS = 0;                                               // points of the pattern
  RunTable1<float> X{DimensionLimits::kDefaultIDSZ};          // abscissa of each point
  RunTable1<float> Ytotal{DimensionLimits::kDefaultIDSZ};     // observed intensity
  RunTable1<float> Variance{DimensionLimits::kDefaultIDSZ};   // variance of the observed intensity
  RunTable1<float> Backg{DimensionLimits::kDefaultIDSZ};      // background
  RunTable1<float> Ycalc{DimensionLimits::kDefaultIDSZ};      // calculated intensity
  RunTable1<float> CountNorm{DimensionLimits::kDefaultIDSZ};  // count normalisation of each point
  RunTable1<int> OrderCode{
      DimensionLimits::kDefaultIDSZ};  // reflections under the point, or excluded

  // Background model state.
  int backReadCount = 0;                                        // pairs read from the .bac file
  RunTable1<float> backReadPos{DimensionLimits::kDefaultIDSZ};  // positions of the .bac file
  RunTable1<float> backRead{DimensionLimits::kDefaultIDSZ};  // heights of the .bac file (BackRead)
  Table1<Codeword, DimensionLimits::IBACP + 1> backPointWord;  // decoded BackIntCode
  int backRefinedPoints = 0;                                   // point heights with a parameter
  Table1<float, DimensionLimits::IBACP + 1> backSplineY2;      // spline second derivatives
  // Row k: the change of each spline second derivative per unit change of height k.
  Table2<float, DimensionLimits::IBACP + 1, DimensionLimits::IBACP + 1> backSplineGain;

  // Reflections of all phases.
  ReflectionTable reflections;  // reflections of all phases in this pattern
  IntensityTable intensities;   // observed integrated intensities of the |Irf| 4 phases
};

// The profile function of a pattern, once the run block is read.
inline ProfileCode ProfileOf(const Pattern& p) {
  return ProfileCodeOf(p.NPROF);
}

// Numerical peak shapes of the .shp file, shared by all patterns.
struct NumericalProfile {
  int shapePoints = 0;                                                 // points of each shape
  int shapeCount = 0;                                                  // shapes, one per angle
  Table1<float, DimensionLimits::INPR> shapeAngle;                     // angle of each shape
  Table1<float, DimensionLimits::NPR> shapeX;                          // abscissae of the points
  Table2<float, DimensionLimits::NPR, DimensionLimits::INPR> shapeY;   // shape values
  Table2<float, DimensionLimits::NPR, DimensionLimits::INPR> shapeDy;  // their slopes
};

// A neutron job type: |JOBTYP| 1 (refinement, -1 time of flight) or 3 (calculation).
// Every other job type is an X-ray one.
inline bool IsNeutronJob(int jobtyp) {
  return std::abs(jobtyp) == 1 || std::abs(jobtyp) == 3;
}

inline bool IsNeutronPattern(const Pattern& p) {
  return IsNeutronJob(p.JOBTYP);
}

// Whether a height of the background points carries a refinement code.
inline bool AnyBackgroundHeightCode(const Pattern& p) {
  for (int j = 1; j <= p.NBCKGD && j <= DimensionLimits::IBACP + 1; ++j) {
    if (p.BackIntCode[j] != 0.0f) return true;
  }
  return false;
}

// A pattern that is calculated, not refined: |JOBTYP| 2 (X-rays) or 3 (neutrons).
inline bool IsCalculatedPattern(const Pattern& p) {
  return std::abs(p.JOBTYP) > 1;
}

// Makes room for n points in every per-point table of the pattern; the
// values held keep their places.
inline void GrowPointTables(Pattern& p, int n) {
  for (RunTable1<float>* t : {&p.X, &p.Ytotal, &p.Variance, &p.Backg, &p.Ycalc, &p.CountNorm,
                              &p.backReadPos, &p.backRead}) {
    t->Grow(n);
  }
  p.OrderCode.Grow(n);
}

}  // namespace corvinet
