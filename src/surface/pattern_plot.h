// The page of a pattern plot: extents, nice scales, axes, points, difference, ticks and legend.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "surface/drawing_page.h"

namespace corvinet {

// The frame of the plot in the page, in page fractions (y grows downward).
struct PlotFrame {
  float LeftEdge = 0.15f;
  float TopEdge = 0.15f;
  float RightEdge = 0.85f;
  float BottomEdge = 0.85f;
  float FrameWidth = 0.7f;
  float FrameHeight = 0.7f;
};

// A frame from its edges.
PlotFrame FrameOf(float left, float top, float right, float bottom);

// One nice axis: `count` steps of `step` from `low` to `high`.
struct NiceAxis {
  float step = 1.0f;
  int count = 1;
  float low = 0.0f;
  float high = 1.0f;
};

// The plot state of one pattern, reset before each pattern.
struct PlotState {
  PlotFrame frame;
  float XMin = 1.0e9f, YMin = 1.0e9f, DMin = 1.0e9f;     // lowest x, y and difference
  float XMax = -1.0e9f, YMax = -1.0e9f, DMax = -1.0e9f;  // highest x, y and difference
  float Ybase = 1.0e9f;                                  // lowest y before the difference room
  float DiffShift = 0.0f;                                // added to every difference
  int ReflectionCount = 0;                               // reflections of the pattern
  float NiceTolerance = 1.0e-6f;                         // used by the axis rounding
  NiceAxis xAxis;                                        // XStep, XCount, XLow, XHigh
  NiceAxis yAxis;                                        // YStep, YCount, YLow, YHigh
  float ScaleX = 1.0f;                                   // page fraction per unit of x
  float ScaleY = 1.0f;                                   // page fraction per unit of y
};

// An excluded region of the abscissa, both ends inside.
struct PlotRegion {
  float low = 0.0f;
  float high = 0.0f;
};

// A Bragg position and the number of its phase.
struct PlotTick {
  float position = 0.0f;
  int phase = 1;
};

// What the page shows of one pattern. The spans hold the points in order;
// `ycalc` is the calculated intensity with the background in.
struct PatternPlotView {
  int patternNumber = 1;
  std::span<const float> x;
  std::span<const float> yobs;
  std::span<const float> ycalc;
  std::span<const PlotRegion> excluded;
  std::span<const PlotTick> ticks;
  int phaseCount = 1;         // NPHASE of the run
  bool timeOfFlight = false;  // JOBTYP of the pattern is negative
  std::string title;          // the control file's title
  std::string dataFile;       // the data file's name
  // The final-fit picture: ticks in the colour of their phase, the phase
  // names in the legend, and lines of figures in the frame's upper left corner.
  bool phaseColours = false;
  float yTitleOffset = 0.05f;  // the y title stands this far left of the frame
  std::vector<std::string> phaseNames;
  std::vector<std::string> cornerLines;
};

// The kinds of marker.
enum class MarkerType : int {
  kPlus = 1,
  kCross = 2,
  kStar = 3,
  kCircle = 4,
  kFilledCircle = 5,
  kSquare = 6,
  kFilledSquare = 7,
  kBar = 8,
};

void ResetPlot(PlotState& state);

// Whether x lies inside one of the regions.
bool InExcludedRegion(std::span<const PlotRegion> regions, float x);

// Widens the extents over the points outside the excluded regions, then makes
// room below the pattern for the ticks and the difference.
void ScanExtents(PlotState& state, const PatternPlotView& view);

// Rounds [min, max] out to about ten nice steps.
NiceAxis NiceScale(float min, float max, float tolerance);

// The nice axes and the page scale factors of the extents.
void ChooseScales(PlotState& state);

// Page coordinates of a data point.
float PageX(const PlotState& state, float x);
float PageY(const PlotState& state, float y);

// The format of the labels of an axis of this step: whole numbers, or just
// the decimals the step needs.
std::string AxisLabelFormat(float step);

// The colour of the ticks of phase f in the final-fit picture.
PlotColour PhaseColour(int phase);

void DrawMarker(DrawingPage& page, MarkerType type, float size, float x, float y);
void DrawAxes(DrawingPage& page, const PlotState& state);
void DrawPattern(DrawingPage& page, const PlotState& state, const PatternPlotView& view);
void DrawAxisTitles(DrawingPage& page, const PlotState& state, const PatternPlotView& view);
void DrawLegend(DrawingPage& page, const PlotState& state, const PatternPlotView& view);

// A whole pattern in the frame: reset, extents, scales, axes, pattern, titles,
// legend (the page must be begun).
void DrawPatternPanel(DrawingPage& page, const PlotFrame& frame, const PatternPlotView& view);

}  // namespace corvinet
