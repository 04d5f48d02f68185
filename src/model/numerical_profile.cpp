// The user's numerical peak shapes (code 9): interpolation in the table of the shape file.
#include "model/numerical_profile.h"

#include <cmath>

#include "format/bisection.h"

namespace corvinet {

namespace {

// Row i and the fraction r toward row i + 1 at the position; r is held in 0..1.
struct RowBlend {
  int row = 1;
  float r = 0.0f;
};

RowBlend BlendAt(const NumericalProfile& t, float pos) {
  RowBlend b;
  if (t.shapeCount < 2) return b;
  const auto angle = [&t](int i) { return t.shapeAngle[i]; };
  int i = LastAtOrBelow(t.shapeCount, angle, pos);
  if (i < 1) i = 1;
  if (i > t.shapeCount - 1) i = t.shapeCount - 1;
  b.row = i;
  b.r = (pos - t.shapeAngle[i]) / (t.shapeAngle[i + 1] - t.shapeAngle[i]);
  if (b.r < 0.0f) b.r = 0.0f;
  if (b.r > 1.0f) b.r = 1.0f;
  return b;
}

// Value, slope and derivative column of one shape in the abscissa interval j.
NumericalSample SampleRow(const NumericalProfile& t, int s, int j, float u) {
  const float width = t.shapeX[j + 1] - t.shapeX[j];
  const float offset = u - t.shapeX[j];
  NumericalSample n;
  n.slope = (t.shapeY(j + 1, s) - t.shapeY(j, s)) / width;
  const float dySlope = (t.shapeDy(j + 1, s) - t.shapeDy(j, s)) / width;
  n.y = t.shapeY(j, s) + n.slope * offset;
  n.dy = t.shapeDy(j, s) + dySlope * offset;
  n.inside = true;
  return n;
}

}  // namespace

NumericalSample NumericalShapeAt(const NumericalProfile& t, float pos, float u) {
  const auto abscissa = [&t](int i) { return t.shapeX[i]; };
  const int j = LastAtOrBelow(t.shapePoints, abscissa, u);
  if (j < 1 || j >= t.shapePoints) return {};
  const RowBlend b = BlendAt(t, pos);
  NumericalSample n = SampleRow(t, b.row, j, u);
  if (t.shapeCount < 2 || b.r == 0.0f) return n;
  const NumericalSample next = SampleRow(t, b.row + 1, j, u);
  n.y += b.r * (next.y - n.y);
  n.slope += b.r * (next.slope - n.slope);
  n.dy += b.r * (next.dy - n.dy);
  return n;
}

float NumericalLogSlope(const NumericalSample& n, float u) {
  if (!n.inside || std::fabs(u) < 1.0e-05f || n.y < 1.0e-05f) return 0.0f;
  return -0.5f * n.dy / (n.y * u);
}

}  // namespace corvinet
