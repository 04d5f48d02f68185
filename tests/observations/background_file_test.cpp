// Tests of the .bac background: reading, the transform, the interpolation and its derivatives.
#include "observations/background_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "background_test_support.h"
#include "observations/background.h"
#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::CentralDifference;
using testing::DerivativesAt;
using testing::Refine;
using testing::ScratchDir;
using testing::SetGrid;
using testing::SetTypedBackground;

double HeightAt(double x) {
  return (x - 20.0) * (x - 20.0) + 50.0;
}

// A .bac text: a title, then `count` pairs at the given positions.
std::string BacText(const Pattern& p, int count) {
  std::string text = "Background of a simulated pattern\n";
  char line[64];
  for (int i = 1; i <= count; ++i) {
    const double x = p.X[i];
    std::snprintf(line, sizeof line, "%12.5f %14.6f\n", x, HeightAt(x));
    text += line;
  }
  return text;
}

void SetFilePattern(Pattern& p) {
  p.DatCode = "abc";
  SetGrid(p, 20.0f, 0.1f, 101);
  SetTypedBackground(p, 1);
  p.GLB[kFileScaleSlot] = 1.5f;
  p.GLB[kFileOffsetSlot] = 10.0f;
  p.GLB[kFileStretchSlot] = 0.002f;
  p.GLB[kFileShiftSlot] = 0.03f;
}

// a*BackRead[(1+c)x+d]+b with BackRead the straight line between the two file
// points that hold the transformed abscissa (the end segments continued).
double TransformedByHand(const Pattern& p, int i) {
  const double t = (1.0 + p.GLB[kFileStretchSlot]) * p.X[i] + p.GLB[kFileShiftSlot];
  int k = 1;
  while (k < p.NPTS - 1 && p.X[k + 1] <= t) ++k;
  const double x0 = p.X[k];
  const double x1 = p.X[k + 1];
  const double y0 = HeightAt(x0);
  const double y1 = HeightAt(x1);
  const double read = y0 + (y1 - y0) * (t - x0) / (x1 - x0);
  return p.GLB[kFileScaleSlot] * read + p.GLB[kFileOffsetSlot];
}

TEST(FileBackground, EvaluationReadsTheFileAndAppliesTheTransform) {
  ScratchDir dir;
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetFilePattern(p);
  dir.Write("abc.bac", BacText(p, p.NPTS));
  EvaluateBackground(*job, 1);
  EXPECT_EQ(p.backReadCount, 101);
  EXPECT_FLOAT_EQ(p.backReadPos[51], 25.0f);
  EXPECT_FLOAT_EQ(p.backRead[51], 75.0f);
  EXPECT_FALSE(IsOpen(job->files.units[Unit::Background]));
  for (int i : {1, 2, 37, 51, 90, 100}) {
    EXPECT_NEAR(p.Backg[i], TransformedByHand(p, i), 2e-3) << "point " << i;
  }
}

TEST(FileBackground, BeyondTheLastPointTheEndSegmentIsContinued) {
  ScratchDir dir;
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetFilePattern(p);
  dir.Write("abc.bac", BacText(p, p.NPTS));
  EvaluateBackground(*job, 1);
  // X' = 1.002*30 + 0.03 = 30.09 lies beyond 30: the line of 29.9 and 30.0.
  const double slope = (HeightAt(30.0) - HeightAt(29.9)) / 0.1;
  const double read = HeightAt(30.0) + slope * (30.09 - 30.0);
  EXPECT_NEAR(p.Backg[101], 1.5 * read + 10.0, 2e-3);
}

TEST(FileBackground, VariableStepFindsTheSegmentFromTheMeanStepUpToThePoint) {
  for (float shift : {0.02f, -0.02f}) {
    ScratchDir dir;
    CapturedJob job;
    Pattern& p = job->patterns[1];
    SetFilePattern(p);
    p.equalStep = 0;
    for (int i = 1; i <= p.NPTS; ++i) {
      const float k = static_cast<float>(i - 1);
      p.X[i] = 20.0f + 0.1f * k * (1.0f + 0.003f * k);
    }
    p.GLB[kFileStretchSlot] = 0.0f;
    p.GLB[kFileShiftSlot] = shift;
    dir.Write("abc.bac", BacText(p, p.NPTS));
    EvaluateBackground(*job, 1);
    for (int i : {1, 2, 30, 75, 100}) {
      EXPECT_NEAR(p.Backg[i], TransformedByHand(p, i), 3e-3) << "shift " << shift << " point " << i;
    }
  }
}

TEST(FileBackground, BackgroundAtInterpolatesAtEachCall) {
  ScratchDir dir;
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetFilePattern(p);
  dir.Write("abc.bac", BacText(p, p.NPTS));
  EvaluateBackground(*job, 1);
  const float stored = p.Backg[40];
  p.GLB[kFileScaleSlot] = 3.0f;
  EXPECT_EQ(p.Backg[40], stored);
  EXPECT_NEAR(BackgroundAt(p, 40), TransformedByHand(p, 40), 4e-3);
  EXPECT_GT(BackgroundAt(p, 40), stored + 50.0f);
}

TEST(FileBackground, DerivativesOfTheFourCoefficientsMatchCentralDifferences) {
  ScratchDir dir;
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetFilePattern(p);
  dir.Write("abc.bac", BacText(p, p.NPTS));
  EvaluateBackground(*job, 1);
  for (int n = 0; n < 4; ++n) Refine(p, kFileScaleSlot + n, n + 1);
  // X' sits 0.08 inside its segment at x = 25 and 0.076 at x = 23.
  for (int i : {51, 31}) {
    const DerivativeVector d = DerivativesAt(p, i);
    const float steps[4] = {0.25f, 1.0f, 2e-4f, 4e-3f};
    for (int n = 0; n < 4; ++n) {
      const double fd = CentralDifference(*job, 1, i, &p.GLB[kFileScaleSlot + n], steps[n]);
      EXPECT_NEAR(d[n + 1], fd, 1e-3 * std::fabs(fd) + 0.05) << "point " << i << " slot " << 22 + n;
    }
  }
  // The slope of the file on the segment of x = 25 is (h(25.1) - h(25))/0.1 = 10.1.
  const DerivativeVector d = DerivativesAt(p, 51);
  EXPECT_FLOAT_EQ(d[2], 1.0f);
  EXPECT_NEAR(d[4], 1.5 * 10.1, 2e-3);
  EXPECT_NEAR(d[3], 1.5 * 10.1 * 25.0, 5e-2);
}

TEST(FileBackground, TooFewPairsStopWithTheEndOfFileBox) {
  ScratchDir dir;
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetFilePattern(p);
  dir.Write("abc.bac", BacText(p, 50));
  EXPECT_THROW(EvaluateBackground(*job, 1), ProcessStop);
  EXPECT_NE(job.Console().find(" End of file *.BAC"), std::string::npos);
}

TEST(FileBackground, AMissingFileIsEmptyAndStopsWithTheEndOfFileBox) {
  ScratchDir dir;
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetFilePattern(p);
  EXPECT_THROW(EvaluateBackground(*job, 1), ProcessStop);
  EXPECT_NE(job.Console().find(" End of file *.BAC"), std::string::npos);
}

TEST(FileBackground, PairsAreReadInFreeFormat) {
  ScratchDir dir;
  CapturedJob job;
  Pattern& p = job->patterns[1];
  SetFilePattern(p);
  SetGrid(p, 20.0f, 0.1f, 3);
  dir.Write("abc.bac", "title line\n20.0, 5.5\n  20.1\t6.5\n20.2 7.5 an extra column\n");
  EvaluateBackground(*job, 1);
  EXPECT_FLOAT_EQ(p.backReadPos[2], 20.1f);
  EXPECT_FLOAT_EQ(p.backRead[1], 5.5f);
  EXPECT_FLOAT_EQ(p.backRead[3], 7.5f);
}

}  // namespace
}  // namespace corvinet
