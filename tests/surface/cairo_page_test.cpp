// The cairo drawing page: the PNG decodes with the requested size, points are red where they were
// plotted, the frame is black at its corners, and the SVG is well-formed XML.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "surface/drawing_page.h"
#include "surface/pattern_plot.h"
#include "test_support.h"

#ifdef CORVINET_HAVE_CAIRO
#include <cairo.h>
#endif

namespace corvinet {
namespace {

using testing::ScratchDir;

#ifdef CORVINET_HAVE_CAIRO

struct Rgb {
  int r = 0, g = 0, b = 0;
};

// A decoded PNG and its pixels.
class Picture {
 public:
  explicit Picture(const std::string& path)
      : surface_(cairo_image_surface_create_from_png(path.c_str())) {}
  ~Picture() { cairo_surface_destroy(surface_); }
  bool Ok() const { return cairo_surface_status(surface_) == CAIRO_STATUS_SUCCESS; }
  int Width() const { return cairo_image_surface_get_width(surface_); }
  int Height() const { return cairo_image_surface_get_height(surface_); }
  Rgb At(int x, int y) const {
    if (!Ok() || x < 0 || y < 0 || x >= Width() || y >= Height()) return {-1, -1, -1};
    const unsigned char* data = cairo_image_surface_get_data(surface_);
    const int stride = cairo_image_surface_get_stride(surface_);
    const auto pixel = *reinterpret_cast<const std::uint32_t*>(data + y * stride + 4 * x);
    return {static_cast<int>((pixel >> 16) & 0xFF), static_cast<int>((pixel >> 8) & 0xFF),
            static_cast<int>(pixel & 0xFF)};
  }
  // Whether a clearly red pixel lies within `reach` pixels of (x, y).
  bool RedNear(int x, int y, int reach) const {
    for (int j = y - reach; j <= y + reach; ++j) {
      for (int i = x - reach; i <= x + reach; ++i) {
        const Rgb c = At(i, j);
        if (c.r >= 200 && c.g >= 0 && c.g <= 100 && c.b <= 100) return true;
      }
    }
    return false;
  }

 private:
  cairo_surface_t* surface_;
};

bool IsBlack(const Rgb& c) {
  return c.r < 40 && c.g < 40 && c.b < 40;
}
bool IsWhite(const Rgb& c) {
  return c.r > 240 && c.g > 240 && c.b > 240;
}

// The small pattern of the page tests on a page of 1000 by 700.
void DrawSmallPage(const std::string& stem) {
  const std::vector<float> x = {10.0f, 20.0f, 30.0f}, yobs = {100.0f, 300.0f, 200.0f};
  const std::vector<float> ycalc = {110.0f, 280.0f, 200.0f};
  const std::vector<PlotTick> ticks = {{20.0f, 1}};
  PatternPlotView v;
  v.x = x;
  v.yobs = yobs;
  v.ycalc = ycalc;
  v.ticks = ticks;
  v.title = "Cairo page";
  v.dataFile = "small.dat";
  std::unique_ptr<DrawingPage> page = CreatePicturePage(stem, {1000, 700});
  ASSERT_NE(page, nullptr);
  page->BeginPage();
  DrawPatternPanel(*page, PlotFrame{}, v);
  page->EndPage();
}

TEST(CairoPage, PngHasItsSizeRedPointsAndABlackFrame) {
  ScratchDir dir;
  DrawSmallPage((dir.path / "small").string());
  Picture png((dir.path / "small.png").string());
  ASSERT_TRUE(png.Ok());
  EXPECT_EQ(png.Width(), 1000);
  EXPECT_EQ(png.Height(), 700);
  // The frame runs from 0.15 to 0.85 of the page: pixels 150..850 and 105..595.
  EXPECT_TRUE(IsBlack(png.At(150, 105)));
  EXPECT_TRUE(IsBlack(png.At(849, 105)));
  EXPECT_TRUE(IsBlack(png.At(150, 594)));
  EXPECT_TRUE(IsBlack(png.At(849, 594)));
  // The point (20, 300) is plotted at page (0.5, 0.1733): red around it.
  EXPECT_TRUE(png.RedNear(500, 121, 4));
  // Away from every curve, text and point the page is white.
  EXPECT_TRUE(IsWhite(png.At(250, 150)));
  EXPECT_FALSE(png.RedNear(250, 150, 4));
}

TEST(CairoPage, SvgIsWellFormedXml) {
  ScratchDir dir;
  DrawSmallPage((dir.path / "small").string());
  ASSERT_TRUE(dir.Exists("small.svg"));
  const std::string command =
      "python3 -c \"import sys, xml.etree.ElementTree as E; "
      "r = E.parse(sys.argv[1]).getroot(); "
      "sys.exit(0 if r.tag.endswith('svg') else 1)\" " +
      (dir.path / "small.svg").string();
  EXPECT_EQ(std::system(command.c_str()), 0);
}

TEST(CairoPage, EachPageRewritesThePictures) {
  ScratchDir dir;
  const std::string stem = (dir.path / "again").string();
  std::unique_ptr<DrawingPage> page = CreatePicturePage(stem, {200, 100});
  page->BeginPage();
  page->SetFill(PlotColour::kRed);
  page->Rectangle(0.0f, 0.0f, 1.0f, 1.0f, true);
  page->EndPage();
  EXPECT_EQ(Picture(stem + ".png").At(100, 50).r, 255);
  page->BeginPage();
  page->EndPage();
  EXPECT_TRUE(IsWhite(Picture(stem + ".png").At(100, 50)));
  EXPECT_FALSE(dir.Exists("again.png.part"));
}

#else

TEST(CairoPage, SkippedWithoutCairo) {
  EXPECT_FALSE(PicturesAvailable());
  GTEST_SKIP() << "built without cairo";
}

#endif

}  // namespace
}  // namespace corvinet
