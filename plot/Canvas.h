#pragma once

#include <cairo.h>
#include <memory>
#include <string>

#include "plot/Ink.h"

namespace vexa::plot {

/// A white sheet to draw on, which becomes an SVG or a PNG file.
///
/// Units are SVG points or PNG pixels, the origin is the upper left corner, y points down. Throws
/// std::runtime_error when the sheet cannot be made or written.
class Canvas {
 public:
  enum class Format { kSvg, kPng };

  Canvas(Format format, double width, double height);
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;
  ~Canvas();

  /// For drawing operations that have no name here.
  cairo_t* cairo() { return mCairo; }

  void setInk(const Ink& ink);
  void rectangle(double x, double y, double width, double height);  ///< filled
  void line(double x0, double y0, double x1, double y1, double width = 1);
  void dot(double x, double y, double radius);
  /// Text whose first letter's foot is at (x, y); `align` 0 starts, 0.5 centres, 1 ends it there.
  void text(double x, double y, const std::string& text, double size = 11, double align = 0);
  /// How far a text reaches at that size.
  double textWidth(const std::string& text, double size = 11);

  /// Ends the drawing and writes the file; nothing can be drawn afterwards.
  void write(const std::string& path);

 private:
  const Format mFormat;
  std::string mBytes;
  cairo_surface_t* mSurface = nullptr;
  cairo_t* mCairo = nullptr;
};

}  // namespace vexa::plot
