// A drawing page that records every call as a line of text, for the tests of the plot pages.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "surface/drawing_page.h"

namespace corvinet::testing {

// Each call becomes one line: the operation and its arguments, reals with four decimals.
class RecordingPage final : public DrawingPage {
 public:
  std::vector<std::string> calls;

  void BeginPage() override { calls.push_back("begin"); }
  void EndPage() override { calls.push_back("end"); }
  void SetPen(PlotColour colour, float width) override {
    calls.push_back("pen " + Hex(colour) + " " + Num(width));
  }
  void SetFill(PlotColour colour) override { calls.push_back("fill " + Hex(colour)); }
  void Rectangle(float left, float top, float right, float bottom, bool filled) override {
    calls.push_back(std::string(filled ? "box " : "rect ") + Num(left) + " " + Num(top) + " " +
                    Num(right) + " " + Num(bottom));
  }
  void Circle(float x, float y, float radius, bool filled) override {
    calls.push_back(std::string(filled ? "disc " : "circle ") + Num(x) + " " + Num(y) + " " +
                    Num(radius));
  }
  void MoveTo(float x, float y) override { calls.push_back("move " + Num(x) + " " + Num(y)); }
  void LineTo(float x, float y) override { calls.push_back("line " + Num(x) + " " + Num(y)); }
  void SelectFont(std::string_view name, float size, bool bold) override {
    calls.push_back("font " + std::string(name) + " " + Num(size) + (bold ? " bold" : ""));
  }
  void Text(float x, float y, std::string_view text, TextAlign align, float rotation) override {
    calls.push_back("text " + Num(x) + " " + Num(y) + " " +
                    (align == TextAlign::kCenter ? "centre " : "left ") + Num(rotation) + " " +
                    std::string(text));
  }

  // The calls that start with `prefix`.
  std::vector<std::string> Starting(std::string_view prefix) const {
    std::vector<std::string> out;
    for (const std::string& c : calls) {
      if (c.rfind(prefix, 0) == 0) out.push_back(c);
    }
    return out;
  }

  static std::string Num(float v) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.4f", static_cast<double>(v) + 0.0);
    return buffer;
  }
  static std::string Hex(PlotColour c) {
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "%06X", static_cast<unsigned>(c));
    return buffer;
  }
};

}  // namespace corvinet::testing
