// Benchmarks of the plot pages: a page of 6000 and of 20000 points drawn with cairo into PNG and
// SVG (the cost of the live plot per cycle), and the same page on a page that draws nothing.
#include <benchmark/benchmark.h>

#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "surface/drawing_page.h"
#include "surface/pattern_plot.h"

namespace corvinet {
namespace {

// A pattern of n points with a peak every 2 degrees and 60 reflections.
struct BenchPattern {
  std::vector<float> x, yobs, ycalc;
  std::vector<PlotTick> ticks;
  explicit BenchPattern(int n) {
    for (int i = 0; i < n; ++i) {
      const float t = 10.0f + 120.0f * static_cast<float>(i) / static_cast<float>(n);
      const float peak = 1000.0f * std::exp(-std::pow(std::fmod(t, 2.0f) - 1.0f, 2.0f) / 0.01f);
      x.push_back(t);
      ycalc.push_back(200.0f + peak);
      yobs.push_back(200.0f + peak + 10.0f * std::sin(37.0f * t));
    }
    for (int k = 0; k < 60; ++k) ticks.push_back({11.0f + 2.0f * static_cast<float>(k), 1});
  }
  PatternPlotView View() const {
    PatternPlotView v;
    v.x = x;
    v.yobs = yobs;
    v.ycalc = ycalc;
    v.ticks = ticks;
    v.title = "Bench";
    v.dataFile = "bench.dat";
    return v;
  }
};

// A page that takes the calls and draws nothing: the cost of the page code itself.
class NullPage final : public DrawingPage {
 public:
  void BeginPage() override {}
  void EndPage() override {}
  void SetPen(PlotColour, float) override {}
  void SetFill(PlotColour) override {}
  void Rectangle(float, float, float, float, bool) override {}
  void Circle(float x, float, float, bool) override { benchmark::DoNotOptimize(x); }
  void MoveTo(float, float) override {}
  void LineTo(float x, float) override { benchmark::DoNotOptimize(x); }
  void SelectFont(std::string_view, float, bool) override {}
  void Text(float, float, std::string_view, TextAlign, float) override {}
};

void BM_PlotPageCalls(benchmark::State& state) {
  const BenchPattern pattern(static_cast<int>(state.range(0)));
  NullPage page;
  for (auto _ : state) DrawPatternPanel(page, PlotFrame{}, pattern.View());
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_PlotPageCalls)->Arg(6000)->Arg(20000);

void BM_PlotPagePictures(benchmark::State& state) {
  if (!PicturesAvailable()) {
    state.SkipWithError("built without cairo");
    return;
  }
  const BenchPattern pattern(static_cast<int>(state.range(0)));
  const std::string stem =
      (std::filesystem::temp_directory_path() / "corvinet_bench_plot").string();
  auto page = CreatePicturePage(stem, {1000, 700});
  for (auto _ : state) {
    page->BeginPage();
    DrawPatternPanel(*page, PlotFrame{}, pattern.View());
    page->EndPage();
  }
  std::filesystem::remove(stem + ".png");
  std::filesystem::remove(stem + ".svg");
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_PlotPagePictures)->Arg(6000)->Arg(20000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace corvinet
