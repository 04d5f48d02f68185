// Per-pattern record: flags and instrument values of the control file, and the per-point arrays.
#pragma once

#include <string>

#include "run/dimension_limits.h"
#include "run/table1.h"

namespace corvinet {

struct Pattern {
  float W_PAT = 1.0f;          // relative weight, normalised at reading
  std::string DatCode;         // data-file stem
  std::string ResolutionFile;  // resolution-file name
  int JOBTYP = 0;              // job type (Job)
  int NPROF = 6;               // profile function as stored: the typed number plus 1 (Npr)
  int NBCKGD = 0;              // magnitude of the background code (Nba)
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
  int IXUNIT = 0;              // abscissa unit (Uni)
  int ICORR = 0;               // intensity corrections from file (Cor)
  int IOT = 0;                 // print observed and calculated intensities (Ipr)
  int IPL = 0;                 // plot and background file output (Ppl)
  int IPC = 1;                 // integrated intensities output (Ioc)
  int LST1 = 0, LST2 = 0, LST3 = 0;
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

  // Intensity-correction table of the .cor file.
  int corrMode = 1;
  int corrForm = 1;
  int corrCount = 0;
  Table1<float, DimensionLimits::NPRC> corrX;
  Table1<float, DimensionLimits::NPRC> corrY;

  // Per-point arrays.
  int NPTS = 0;
  Table1<float, DimensionLimits::IDSZ> X;
  Table1<float, DimensionLimits::IDSZ> Ytotal;
  Table1<float, DimensionLimits::IDSZ> Variance;
  Table1<float, DimensionLimits::IDSZ> Backg;
  Table1<float, DimensionLimits::IDSZ> Ycalc;
  Table1<float, DimensionLimits::IDSZ> CountNorm;
  Table1<int, DimensionLimits::IDSZ> OrderCode;
};

// Numerical peak shapes of the .shp file, shared by all patterns.
struct NumericalProfile {
  int shapePoints = 0;
  int shapeCount = 0;
  Table1<float, DimensionLimits::INPR> shapeAngle;
  Table1<float, DimensionLimits::NPR> shapeX;
  Table2<float, DimensionLimits::NPR, DimensionLimits::INPR> shapeY;
  Table2<float, DimensionLimits::NPR, DimensionLimits::INPR> shapeDy;
};

}  // namespace corvinet
