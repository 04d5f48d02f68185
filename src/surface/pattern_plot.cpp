// The page of a pattern plot: extents, nice scales, axes, points, difference, ticks and legend.
#include "surface/pattern_plot.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "format/fortran_format.h"
#include "format/text.h"

namespace corvinet {

namespace {

// Limits closer than this make a degenerate range.
constexpr float kDegenerateRange = 1.0e-6f;
// The pen of the frame and ticks, and of the data lines.
constexpr float kFramePen = 0.003f;
constexpr float kLinePen = 0.001f;
constexpr float kTickLength = 0.01f;
// Page width taken by one character of a label.
constexpr float kCharWidth = 0.01f;
constexpr float kPointMarkerSize = 1.5f;
constexpr float kTickMarkerSize = 2.5f;
constexpr float kAxisFontSize = 11.0f;
constexpr float kTitleFontSize = 14.0f;
constexpr float kLegendFontSize = 11.0f;

// Widens [low, high] by the value.
void Widen(float& low, float& high, float value) {
  low = std::min(low, value);
  high = std::max(high, value);
}

// The reaction to a degenerate range: one is taken from both limits.
void SeparateDegenerate(float& low, float& high) {
  if (std::fabs(high - low) < kDegenerateRange) {
    low -= 1.0f;
    high -= 1.0f;
  }
}

// A point given for the default frame (0.15 .. 0.85 both ways), placed in
// the same way relative to this frame.
struct PagePoint {
  float x = 0.0f;
  float y = 0.0f;
};
PagePoint InFrame(const PlotFrame& f, float x, float y) {
  constexpr float kDefaultEdge = 0.15f, kDefaultSize = 0.7f;
  return {f.LeftEdge + (x - kDefaultEdge) * f.FrameWidth / kDefaultSize,
          f.TopEdge + (y - kDefaultEdge) * f.FrameHeight / kDefaultSize};
}

std::string Label(std::string_view format, float value) {
  if (format.empty()) return std::to_string(static_cast<long>(std::lround(value)));
  return TrimmedCopy(Fmt(format, value));
}

// Points on the frame's sides count as inside, whatever the rounding of their page position.
bool InsideHorizontally(const PlotState& s, float px) {
  constexpr float kOnTheEdge = 1.0e-5f;
  return px >= s.frame.LeftEdge - kOnTheEdge && px <= s.frame.RightEdge + kOnTheEdge;
}

float ClampVertically(const PlotState& s, float py) {
  return std::clamp(py, s.frame.TopEdge, s.frame.BottomEdge);
}

// A polyline through the drawn points of (x, y(i)); excluded points break it.
template <typename YOf>
void DrawCurve(DrawingPage& page, const PlotState& s, const PatternPlotView& v, YOf y) {
  bool open = false;
  for (std::size_t i = 0; i < v.x.size(); ++i) {
    const float px = PageX(s, v.x[i]);
    if (InExcludedRegion(v.excluded, v.x[i]) || !InsideHorizontally(s, px)) {
      open = false;
      continue;
    }
    const float py = ClampVertically(s, PageY(s, y(i)));
    if (open) {
      page.LineTo(px, py);
    } else {
      page.MoveTo(px, py);
      open = true;
    }
  }
}

}  // namespace

PlotFrame FrameOf(float left, float top, float right, float bottom) {
  return {left, top, right, bottom, right - left, bottom - top};
}

void ResetPlot(PlotState& state) {
  state = PlotState{};
}

bool InExcludedRegion(std::span<const PlotRegion> regions, float x) {
  return std::any_of(regions.begin(), regions.end(),
                     [x](const PlotRegion& r) { return x >= r.low && x <= r.high; });
}

void ScanExtents(PlotState& s, const PatternPlotView& v) {
  for (std::size_t i = 0; i < v.x.size(); ++i) {
    if (InExcludedRegion(v.excluded, v.x[i])) continue;
    Widen(s.XMin, s.XMax, v.x[i]);
    Widen(s.YMin, s.YMax, v.yobs[i]);
    Widen(s.YMin, s.YMax, v.ycalc[i]);
    Widen(s.DMin, s.DMax, v.yobs[i] - v.ycalc[i]);
  }
  if (s.XMax < s.XMin) return;  // no point drawn: the extents stay as they were
  const float range = s.YMax - s.YMin;
  const float diffRange = s.DMax - s.DMin;
  s.Ybase = s.YMin;
  s.DiffShift = -diffRange - range * (1.0f + 0.15f * static_cast<float>(v.phaseCount)) * 0.2f;
  s.YMin = s.Ybase + s.DiffShift + s.DMin;
  SeparateDegenerate(s.XMin, s.XMax);
  SeparateDegenerate(s.YMin, s.YMax);
}

NiceAxis NiceScale(float min, float max, float tolerance) {
  NiceAxis a;
  const float d = (max - min) * 0.1f;
  // An empty or reversed range (a degenerate one, or a pattern with nothing
  // to draw) has no nice steps: it gets one unit step from its lower limit.
  if (!(d > 0.0f) || !std::isfinite(d)) {
    a.low = std::isfinite(min) && std::fabs(min) < 1.0e8f ? std::floor(min) : 0.0f;
    a.high = a.low + 1.0f;
    return a;
  }
  const int e = static_cast<int>(std::trunc(std::log10(static_cast<double>(d))));
  const float u = static_cast<float>(std::pow(10.0, e));
  int n = static_cast<int>(std::trunc(d / u));
  if (std::fabs(static_cast<float>(n) - d / u) > tolerance) n += 1;
  a.step = static_cast<float>(n) * u;
  int m = static_cast<int>(std::trunc(min / u));
  if (min < 0.0f && static_cast<float>(m) != min / u) m -= 1;
  a.low = u * static_cast<float>(m);
  int c = std::max(0, static_cast<int>(std::ceil((max - a.low) / a.step)) - 1);
  while (static_cast<float>(c) * a.step + a.low < max) ++c;
  a.count = c;
  a.high = static_cast<float>(c) * a.step + a.low;
  return a;
}

void ChooseScales(PlotState& s) {
  s.xAxis = NiceScale(s.XMin, s.XMax, s.NiceTolerance);
  s.yAxis = NiceScale(s.YMin, s.YMax, s.NiceTolerance);
  s.ScaleX = s.frame.FrameWidth / (s.xAxis.high - s.xAxis.low);
  s.ScaleY = s.frame.FrameHeight / (s.yAxis.high - s.yAxis.low);
}

float PageX(const PlotState& s, float x) {
  return (x - s.xAxis.low) * s.ScaleX + s.frame.LeftEdge;
}

float PageY(const PlotState& s, float y) {
  return s.frame.BottomEdge - (y - s.yAxis.low) * s.ScaleY;
}

std::string AxisLabelFormat(float step) {
  constexpr double kPart = 1.0e-5;
  double scaled = std::fabs(static_cast<double>(step));
  if (std::fabs(scaled - std::round(scaled)) < kPart) return "";
  int decimals = 1;
  for (; decimals < 7; ++decimals) {
    scaled *= 10.0;
    if (std::fabs(scaled - std::round(scaled)) < kPart * scaled) break;
  }
  return "(F16." + std::to_string(decimals) + ")";
}

PlotColour PhaseColour(int phase) {
  static constexpr PlotColour kColours[] = {
      PlotColour::kGreen, PlotColour::kBlue,  PlotColour::kMagenta, PlotColour::kOrange,
      PlotColour::kTeal,  PlotColour::kBrown, PlotColour::kGrey,    PlotColour::kBlack};
  const int n = static_cast<int>(std::size(kColours));
  return kColours[((phase - 1) % n + n) % n];
}

void DrawMarker(DrawingPage& page, MarkerType type, float size, float x, float y) {
  const float h = 0.002f * size;
  const auto plus = [&] {
    page.MoveTo(x - h, y);
    page.LineTo(x + h, y);
    page.MoveTo(x, y - h);
    page.LineTo(x, y + h);
  };
  const auto cross = [&] {
    page.MoveTo(x - h, y - h);
    page.LineTo(x + h, y + h);
    page.MoveTo(x - h, y + h);
    page.LineTo(x + h, y - h);
  };
  switch (type) {
    case MarkerType::kPlus:
      plus();
      break;
    case MarkerType::kCross:
      cross();
      break;
    case MarkerType::kStar:
      plus();
      cross();
      break;
    case MarkerType::kCircle:
      page.Circle(x, y, h, false);
      break;
    case MarkerType::kFilledCircle:
      page.Circle(x, y, h, true);
      break;
    case MarkerType::kSquare:
      page.Rectangle(x - h, y - h, x + h, y + h, false);
      break;
    case MarkerType::kFilledSquare:
      page.Rectangle(x - h, y - h, x + h, y + h, true);
      break;
    case MarkerType::kBar:
      page.MoveTo(x, y - 2.0f * h);
      page.LineTo(x, y + 2.0f * h);
      break;
  }
}

void DrawAxes(DrawingPage& page, const PlotState& s) {
  const PlotFrame& f = s.frame;
  page.SetPen(PlotColour::kBlack, kFramePen);
  page.SelectFont("Times New Roman", kAxisFontSize, false);
  page.Rectangle(f.LeftEdge, f.TopEdge, f.RightEdge, f.BottomEdge, false);
  const std::string xFormat = AxisLabelFormat(s.xAxis.step);
  for (int k = 0; k <= s.xAxis.count; ++k) {
    const float value = s.xAxis.low + static_cast<float>(k) * s.xAxis.step;
    const float px = PageX(s, value);
    page.MoveTo(px, f.TopEdge);
    page.LineTo(px, f.TopEdge + kTickLength);
    page.MoveTo(px, f.BottomEdge);
    page.LineTo(px, f.BottomEdge - kTickLength);
    const std::string label = Label(xFormat, value);
    const float half = 0.5f * static_cast<float>(label.size()) * kCharWidth;
    page.Text(px - half, f.BottomEdge + 0.015f, label, TextAlign::kLeft, 0.0f);
  }
  const std::string yFormat = AxisLabelFormat(s.yAxis.step);
  for (int k = 0; k <= s.yAxis.count; ++k) {
    const float value = s.yAxis.low + static_cast<float>(k) * s.yAxis.step;
    const float py = PageY(s, value);
    page.MoveTo(f.LeftEdge, py);
    page.LineTo(f.LeftEdge + kTickLength, py);
    page.MoveTo(f.RightEdge, py);
    page.LineTo(f.RightEdge - kTickLength, py);
    // Under zero the axis holds the Bragg ticks and the difference.
    if (value < 0.0f) continue;
    const std::string label = Label(yFormat, value);
    const float left = f.LeftEdge - 0.02f - kCharWidth * static_cast<float>(label.size());
    page.Text(left, py, label, TextAlign::kLeft, 0.0f);
  }
}

void DrawPattern(DrawingPage& page, const PlotState& s, const PatternPlotView& v) {
  page.SetPen(PlotColour::kRed, kLinePen);
  for (std::size_t i = 0; i < v.x.size(); ++i) {
    const float px = PageX(s, v.x[i]);
    if (InExcludedRegion(v.excluded, v.x[i]) || !InsideHorizontally(s, px)) continue;
    DrawMarker(page, MarkerType::kCircle, kPointMarkerSize, px,
               ClampVertically(s, PageY(s, v.yobs[i])));
  }
  page.SetPen(PlotColour::kBlack, kLinePen);
  DrawCurve(page, s, v, [&](std::size_t i) { return v.ycalc[i]; });
  page.SetPen(PlotColour::kBlack, kLinePen);
  DrawCurve(page, s, v,
            [&](std::size_t i) { return v.yobs[i] - v.ycalc[i] + s.Ybase + s.DiffShift; });
  int colouredPhase = 0;
  page.SetPen(PlotColour::kGreen, kLinePen);
  for (const PlotTick& tick : v.ticks) {
    const float px = PageX(s, tick.position);
    if (InExcludedRegion(v.excluded, tick.position) || !InsideHorizontally(s, px)) continue;
    if (v.phaseColours && tick.phase != colouredPhase) {
      colouredPhase = tick.phase;
      page.SetPen(PhaseColour(tick.phase), kLinePen);
    }
    const float y = s.Ybase - static_cast<float>(tick.phase) * (s.YMax - s.Ybase) * 0.05f;
    DrawMarker(page, MarkerType::kBar, kTickMarkerSize, px, ClampVertically(s, PageY(s, y)));
  }
}

void DrawAxisTitles(DrawingPage& page, const PlotState& s, const PatternPlotView& v) {
  const PlotFrame& f = s.frame;
  const float centreX = f.LeftEdge + 0.5f * f.FrameWidth;
  const float centreY = f.TopEdge + 0.5f * f.FrameHeight;
  page.SetPen(PlotColour::kBlack, kLinePen);
  page.SelectFont("Times New Roman", kAxisFontSize, false);
  page.Text(centreX, f.BottomEdge + 0.075f * f.FrameHeight / 0.7f,
            v.timeOfFlight ? "Time of flight (microsec.)" : "2 Theta (deg.)", TextAlign::kCenter,
            0.0f);
  page.Text(f.LeftEdge - v.yTitleOffset * f.FrameWidth / 0.7f, centreY, "Intensity (a.u.)",
            TextAlign::kCenter, 90.0f);
  page.SelectFont("Times New Roman", kTitleFontSize, false);
  page.Text(centreX, InFrame(f, 0.5f, 0.05f).y, TrimmedCopy(v.title), TextAlign::kCenter, 0.0f);
}

void DrawLegend(DrawingPage& page, const PlotState& s, const PatternPlotView& v) {
  struct Row {
    float y;
    std::string text;
    PlotColour colour;
  };
  std::vector<Row> rows = {{0.2f, TrimmedCopy(v.dataFile), PlotColour::kRed},
                           {0.235f, "Yobs", PlotColour::kRed},
                           {0.27f, "Ycalc", PlotColour::kBlack},
                           {0.305f, "Yobs-Ycalc", PlotColour::kBlack},
                           {0.34f, "Bragg positions", PlotColour::kGreen}};
  if (v.phaseColours) {
    for (std::size_t n = 0; n < v.phaseNames.size(); ++n) {
      rows.push_back({0.375f + 0.035f * static_cast<float>(n), v.phaseNames[n],
                      PhaseColour(static_cast<int>(n) + 1)});
    }
  }
  page.SelectFont("Times", kLegendFontSize, false);
  for (const Row& row : rows) {
    page.SetPen(row.colour, kLinePen);
    const PagePoint at = InFrame(s.frame, 0.7f, row.y);
    page.Text(at.x, at.y, row.text, TextAlign::kLeft, 0.0f);
  }
  page.SetPen(PlotColour::kBlack, kLinePen);
  for (std::size_t n = 0; n < v.cornerLines.size(); ++n) {
    const PagePoint at = InFrame(s.frame, 0.17f, 0.17f + 0.035f * static_cast<float>(n));
    page.Text(at.x, at.y, v.cornerLines[n], TextAlign::kLeft, 0.0f);
  }
}

void DrawPatternPanel(DrawingPage& page, const PlotFrame& frame, const PatternPlotView& view) {
  PlotState state;
  ResetPlot(state);
  state.frame = frame;
  state.ReflectionCount = static_cast<int>(view.ticks.size());
  ScanExtents(state, view);
  ChooseScales(state);
  DrawAxes(page, state);
  DrawPattern(page, state, view);
  DrawAxisTitles(page, state, view);
  DrawLegend(page, state, view);
}

}  // namespace corvinet
