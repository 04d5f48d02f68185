// The drawing page on cairo: every page is drawn into a PNG image and an SVG file side by side.
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "surface/drawing_page.h"

#ifdef CORVINET_HAVE_CAIRO
#include <cairo-svg.h>
#include <cairo.h>
#endif

namespace corvinet {

#ifdef CORVINET_HAVE_CAIRO

namespace {

constexpr double kPi = 3.14159265358979323846;
// Font sizes are points on a page of this width.
constexpr double kPointsPerPage = 800.0;

void SetColour(cairo_t* cr, PlotColour colour) {
  const auto v = static_cast<std::uint32_t>(colour);
  cairo_set_source_rgb(cr, (v & 0xFF) / 255.0, ((v >> 8) & 0xFF) / 255.0,
                       ((v >> 16) & 0xFF) / 255.0);
}

// One cairo target of the page: an image or a vector file.
struct Target {
  cairo_surface_t* surface = nullptr;
  cairo_t* cr = nullptr;
};

class CairoPage final : public DrawingPage {
 public:
  CairoPage(std::string stem, PageSize size) : stem_(std::move(stem)), size_(size) {}
  ~CairoPage() override { Release(); }

  void BeginPage() override {
    Release();
    image_.surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, size_.width, size_.height);
    vector_.surface =
        cairo_svg_surface_create((stem_ + ".svg.part").c_str(), size_.width, size_.height);
    for (Target* t : {&image_, &vector_}) {
      t->cr = cairo_create(t->surface);
      cairo_set_source_rgb(t->cr, 1.0, 1.0, 1.0);
      cairo_paint(t->cr);
      cairo_set_line_join(t->cr, CAIRO_LINE_JOIN_ROUND);
    }
    SetPen(PlotColour::kBlack, 0.001f);
    SelectFont("Times", 10.0f, false);
  }

  void EndPage() override {
    if (image_.cr == nullptr) return;
    Flush();
    const std::string png = stem_ + ".png";
    cairo_surface_flush(image_.surface);
    cairo_surface_write_to_png(image_.surface, (png + ".part").c_str());
    Release();
    std::error_code ignored;
    std::filesystem::rename(png + ".part", png, ignored);
    std::filesystem::rename(stem_ + ".svg.part", stem_ + ".svg", ignored);
  }

  void SetPen(PlotColour colour, float width) override {
    Flush();
    pen_ = colour;
    penWidth_ = width;
  }

  void SetFill(PlotColour colour) override { fill_ = colour; }

  void Rectangle(float left, float top, float right, float bottom, bool filled) override {
    Flush();
    for (Target* t : Targets()) {
      cairo_rectangle(t->cr, X(left), Y(top), X(right) - X(left), Y(bottom) - Y(top));
      Finish(t->cr, filled);
    }
  }

  void Circle(float x, float y, float radius, bool filled) override {
    Flush();
    for (Target* t : Targets()) {
      cairo_new_sub_path(t->cr);
      cairo_arc(t->cr, X(x), Y(y), radius * size_.width, 0.0, 2.0 * kPi);
      Finish(t->cr, filled);
    }
  }

  void MoveTo(float x, float y) override {
    Flush();
    for (Target* t : Targets()) cairo_move_to(t->cr, X(x), Y(y));
  }

  void LineTo(float x, float y) override {
    for (Target* t : Targets()) {
      if (!cairo_has_current_point(t->cr)) cairo_move_to(t->cr, X(x), Y(y));
      cairo_line_to(t->cr, X(x), Y(y));
    }
    pathOpen_ = true;
  }

  void SelectFont(std::string_view name, float size, bool bold) override {
    Flush();
    const std::string face(name);
    for (Target* t : Targets()) {
      cairo_select_font_face(t->cr, face.c_str(), CAIRO_FONT_SLANT_NORMAL,
                             bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
      cairo_set_font_size(t->cr, size * size_.width / kPointsPerPage);
    }
  }

  void Text(float x, float y, std::string_view text, TextAlign align, float rotation) override {
    Flush();
    const std::string shown(text);
    for (Target* t : Targets()) {
      cairo_text_extents_t extents;
      cairo_font_extents_t font;
      cairo_text_extents(t->cr, shown.c_str(), &extents);
      cairo_font_extents(t->cr, &font);
      cairo_save(t->cr);
      SetColour(t->cr, pen_);
      cairo_translate(t->cr, X(x), Y(y));
      cairo_rotate(t->cr, -rotation * kPi / 180.0);
      const double start = align == TextAlign::kCenter ? -0.5 * extents.x_advance : 0.0;
      cairo_move_to(t->cr, start, font.ascent);
      cairo_show_text(t->cr, shown.c_str());
      cairo_restore(t->cr);
      cairo_new_path(t->cr);
    }
  }

 private:
  std::vector<Target*> Targets() {
    if (image_.cr == nullptr) return {};
    return {&image_, &vector_};
  }
  double X(float x) const { return static_cast<double>(x) * size_.width; }
  double Y(float y) const { return static_cast<double>(y) * size_.height; }

  // Strokes or fills the path just built.
  void Finish(cairo_t* cr, bool filled) {
    if (filled) {
      SetColour(cr, fill_);
      cairo_fill(cr);
      return;
    }
    SetColour(cr, pen_);
    cairo_set_line_width(cr, penWidth_ * size_.width);
    cairo_stroke(cr);
  }

  // Strokes an open polyline before anything else is drawn.
  void Flush() {
    if (!pathOpen_) return;
    pathOpen_ = false;
    for (Target* t : Targets()) Finish(t->cr, false);
  }

  void Release() {
    for (Target* t : {&image_, &vector_}) {
      if (t->cr != nullptr) cairo_destroy(t->cr);
      if (t->surface != nullptr) {
        cairo_surface_finish(t->surface);
        cairo_surface_destroy(t->surface);
      }
      *t = Target{};
    }
    pathOpen_ = false;
  }

  std::string stem_;
  PageSize size_;
  Target image_;
  Target vector_;
  PlotColour pen_ = PlotColour::kBlack;
  PlotColour fill_ = PlotColour::kBlack;
  float penWidth_ = 0.001f;
  bool pathOpen_ = false;
};

}  // namespace

bool PicturesAvailable() {
  return true;
}

std::unique_ptr<DrawingPage> CreatePicturePage(const std::string& stem, PageSize size) {
  return std::make_unique<CairoPage>(stem, size);
}

#else

bool PicturesAvailable() {
  return false;
}

std::unique_ptr<DrawingPage> CreatePicturePage(const std::string&, PageSize) {
  return nullptr;
}

#endif

}  // namespace corvinet
