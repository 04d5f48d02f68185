// One point of a constant-wavelength pattern: its calculated intensity and its row of the normal
// equations.
#pragma once

#include <cstdint>
#include <vector>

#include "observations/background_terms.h"
#include "records/job.h"
#include "refine/cycle_work.h"

namespace corvinet {

// Sums the contributions of the reflections K11..K21 that reach point i of
// pattern ip, adds the background rows, stores Ycalc and, for a refinement,
// sets the variance of maximum-likelihood weights and adds the point's
// weighted row to the normal equations.
void CalculatePoint(Job& job, CycleWork& work, int ip, int i);

// What a point gives the normal equations besides its row of derivatives.
struct PointTerms {
  float weight = 0.0f;    // 1/variance times the weight of the pattern
  float residual = 0.0f;  // observed - background - calculated
};

// The rows of consecutive points, in order, as the normal equations take them.
struct PointRows {
  const float* rows = nullptr;  // row p starts at rows + p * stride
  int stride = 0;
  const float* weight = nullptr;    // of each point
  const float* residual = nullptr;  // of each point
  const int* rowEnd = nullptr;      // past the last non-zero derivative of each row
  int count = 0;                    // points
  int pending = 0;                  // points already in the 32-bit block before the first
};

// Computes Ycalc of point i of pattern ip; for a refinement, also its row of
// derivatives (parameters 1..MAXS in row[1..]), its variance under
// maximum-likelihood weights, its weight and residual, and returns true.
// Writes only entries of point i: points may be computed side by side.
bool CalculatePointRow(Job& job, const CycleWork& work, int ip, int i, DerivativeVector& row,
                       PointTerms& terms);

// Past the last non-zero entry of row[0..fitted).
int RowEnd(const float* row, int fitted);

// Splits parameters 0..fitted-1 into runs of one family.
void BuildFamilyRuns(const std::uint8_t* family, int fitted, std::vector<FamilyRun>& runs);

// Adds the rows of the points to rows first..last-1 (from 0) of the normal
// equations, in blocks of points summed in 32 bits and then added to the
// double sums; touched[L] is past the last written entry of row L of the
// block. Each entry of the matrix takes the same sums in the same order
// whichever rows a call is given, so the rows may be shared among threads.
void AddPointRows(NormalMatrix& normal, const PointRows& rows, int first, int last, int* touched);

// The points left in the 32-bit block once the rows are added.
int PendingAfter(const PointRows& rows);

// Adds the block of rows held in A and B (upper triangle) to the double
// sums SumA and SumB and clears it; the cycle calls it once more after the
// last point.
void FlushNormalBlock(NormalMatrix& normal, int fitted);

// The peak value times the asymmetry factor of a computed reflection at the
// abscissa x, without its integrated intensity; 0 outside its base.
float PeakValueAt(const Job& job, const RingEntry& entry, int ip, float x);

}  // namespace corvinet
