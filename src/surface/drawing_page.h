// The small drawing interface the plots need of a window toolkit: page, pens, shapes and texts.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace corvinet {

// Colours as the toolkit's RGB values: red in the low byte, then green, then
// blue (0x00BBGGRR).
enum class PlotColour : std::uint32_t {
  kBlack = 0x000000,
  kRed = 0x0000FF,
  kGreen = 0x008000,
  kBlue = 0xFF0000,
  kMagenta = 0xC000C0,
  kOrange = 0x0080FF,
  kTeal = 0x808000,
  kBrown = 0x204080,
  kGrey = 0x808080,
};

// Horizontal placement of a text at its point; the point is the top of the text.
enum class TextAlign {
  kLeft,    // the text starts at the point
  kCenter,  // the text is centred on the point
};

// A drawing page. Coordinates are fractions of the page, from 0 to 1, with y
// growing downward; pen widths are fractions of the page width; font sizes
// are points on a page 800 points wide. Drawing happens only between
// BeginPage and EndPage; EndPage delivers the page.
class DrawingPage {
 public:
  virtual ~DrawingPage() = default;
  virtual void BeginPage() = 0;
  virtual void EndPage() = 0;
  virtual void SetPen(PlotColour colour, float width) = 0;
  virtual void SetFill(PlotColour colour) = 0;
  // A rectangle by its edges, outlined with the pen or filled with the fill colour.
  virtual void Rectangle(float left, float top, float right, float bottom, bool filled) = 0;
  // A circle by its centre and radius (a fraction of the page width).
  virtual void Circle(float x, float y, float radius, bool filled) = 0;
  virtual void MoveTo(float x, float y) = 0;
  virtual void LineTo(float x, float y) = 0;
  virtual void SelectFont(std::string_view name, float size, bool bold) = 0;
  // A text at a point, in the pen's colour, turned counter-clockwise by
  // `rotation` degrees about the point.
  virtual void Text(float x, float y, std::string_view text, TextAlign align, float rotation) = 0;
};

// The size in pixels of a page drawn into pictures.
struct PageSize {
  int width = 0;
  int height = 0;
};

// Whether this build can draw pictures (it was built with cairo).
bool PicturesAvailable();

// A page drawn with cairo into `<stem>.png` and `<stem>.svg`, both rewritten
// at each EndPage; null when this build has no cairo.
std::unique_ptr<DrawingPage> CreatePicturePage(const std::string& stem, PageSize size);

}  // namespace corvinet
