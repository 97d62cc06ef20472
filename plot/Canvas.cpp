#include "plot/Canvas.h"

#include <cairo-svg.h>
#include <stdexcept>

#include "formats/write_file.h"

namespace vexa::plot {
namespace {

// Cairo hands the file over in pieces. They are kept until the drawing is whole, so that writeFile
// can put it into its place in one step.
cairo_status_t append(void* bytes, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(bytes)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

void check(cairo_status_t status) {
  if (status != CAIRO_STATUS_SUCCESS) throw std::runtime_error(cairo_status_to_string(status));
}

}  // namespace

Canvas::Canvas(Format format, double width, double height) : mFormat(format) {
  mSurface = format == Format::kSvg
                 ? cairo_svg_surface_create_for_stream(append, &mBytes, width, height)
                 : cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(width),
                                              static_cast<int>(height));
  mCairo = cairo_create(mSurface);
  // Cairo does not return null: a sheet that is too large gives a context in an error state, which
  // still has to be freed. The destructor does not run for a constructor that throws.
  const cairo_status_t status = cairo_status(mCairo);
  if (status != CAIRO_STATUS_SUCCESS) {
    cairo_destroy(mCairo);
    cairo_surface_destroy(mSurface);
    check(status);
  }
  // scripts/setup installs this font; without it Cairo takes another one and texts differ in width.
  cairo_select_font_face(mCairo, "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
  // A mitred join of two nearly opposite lines sticks out far beyond them.
  cairo_set_line_join(mCairo, CAIRO_LINE_JOIN_ROUND);
  setInk({1, 1, 1});
  rectangle(0, 0, width, height);
}

Canvas::~Canvas() {
  cairo_destroy(mCairo);
  cairo_surface_destroy(mSurface);
}

void Canvas::setInk(const Ink& ink) { cairo_set_source_rgb(mCairo, ink.r, ink.g, ink.b); }

void Canvas::rectangle(double x, double y, double width, double height) {
  cairo_rectangle(mCairo, x, y, width, height);
  cairo_fill(mCairo);
}

void Canvas::line(double x0, double y0, double x1, double y1, double width) {
  cairo_set_line_width(mCairo, width);
  cairo_move_to(mCairo, x0, y0);
  cairo_line_to(mCairo, x1, y1);
  cairo_stroke(mCairo);
}

void Canvas::dot(double x, double y, double radius) {
  constexpr double kFullTurn = 6.283185307179586;
  // Without it Cairo draws a line from the last point to the start of the arc.
  cairo_new_sub_path(mCairo);
  cairo_arc(mCairo, x, y, radius, 0, kFullTurn);
  cairo_fill(mCairo);
}

double Canvas::textWidth(const std::string& text, double size) {
  cairo_set_font_size(mCairo, size);
  cairo_text_extents_t extents;
  cairo_text_extents(mCairo, text.c_str(), &extents);
  return extents.x_advance;
}

void Canvas::text(double x, double y, const std::string& text, double size, double align) {
  cairo_move_to(mCairo, x - align * textWidth(text, size), y);
  cairo_show_text(mCairo, text.c_str());
}

void Canvas::write(const std::string& path) {
  // A context keeps its first error and draws nothing afterwards, so one check at the end is
  // enough.
  check(cairo_status(mCairo));
  if (mFormat == Format::kPng) check(cairo_surface_write_to_png_stream(mSurface, append, &mBytes));
  // Only this writes the end of an SVG file.
  cairo_surface_finish(mSurface);
  check(cairo_surface_status(mSurface));
  formats::writeFile(path, mBytes);
}

}  // namespace vexa::plot
