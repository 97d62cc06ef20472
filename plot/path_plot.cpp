#include "plot/path_plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "plot/Canvas.h"

namespace vexa::plot {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

using Points = std::vector<UxZel::CZelPoint>;

constexpr double kSide = 720, kMargin = 50;
constexpr Ink kCurve{0.15, 0.35, 0.75}, kControl{0.65, 0.65, 0.65}, kText{0.3, 0.3, 0.3};
constexpr Ink kTracks[] = {{0.85, 0.3, 0.1}, {0.1, 0.6, 0.3}, {0.6, 0.2, 0.6}, {0.7, 0.55, 0}};

/// From scene units to the sheet, the same scale along both axes.
class View {
 public:
  void include(const Points& points) {
    for (const auto& p : points) {
      if (!std::isfinite(p.x) || !std::isfinite(p.y)) continue;
      mLow = {std::min(mLow.x, p.x), std::min(mLow.y, p.y), 0};
      mHigh = {std::max(mHigh.x, p.x), std::max(mHigh.y, p.y), 0};
    }
  }
  double size() const {
    const double size = std::max(mHigh.x - mLow.x, mHigh.y - mLow.y);
    return size > 0 && std::isfinite(size) ? size : 1;
  }
  double scale() const { return (kSide - 2 * kMargin) / size(); }
  double x(const UxZel::CZelPoint& p) const { return kMargin + (p.x - mLow.x) * scale(); }
  double y(const UxZel::CZelPoint& p) const { return kSide - kMargin - (p.y - mLow.y) * scale(); }

 private:
  UxZel::CZelPoint mLow{kInfinity, kInfinity, 0}, mHigh{-kInfinity, -kInfinity, 0};
};

void drawPolyline(Canvas& canvas, const View& view, const Points& points, double width) {
  for (std::size_t i = 1; i < points.size(); ++i) {
    canvas.line(view.x(points[i - 1]), view.y(points[i - 1]), view.x(points[i]), view.y(points[i]),
                width);
  }
}

void drawPath(Canvas& canvas, const View& view, const PathDrawing& path) {
  canvas.setInk(kControl);
  for (std::size_t i = 0; i + 2 < path.mControls.size(); i += 3) {
    drawPolyline(canvas, view,
                 {path.mControls.begin() + std::ptrdiff_t(i),
                  path.mControls.begin() + std::ptrdiff_t(i) + 3},
                 1);
    canvas.dot(view.x(path.mControls[i]), view.y(path.mControls[i]), 2);
    canvas.dot(view.x(path.mControls[i + 2]), view.y(path.mControls[i + 2]), 2);
  }
  canvas.setInk(kCurve);
  drawPolyline(canvas, view, path.mCurve, 2);
  for (std::size_t i = 1; i < path.mControls.size(); i += 3) {
    canvas.dot(view.x(path.mControls[i]), view.y(path.mControls[i]), 4);
  }
  if (path.mCurve.empty()) return;
  canvas.text(view.x(path.mCurve.front()) + 8, view.y(path.mCurve.front()) + 16, path.mName);
}

/// A bar whose length in scene units is a round number.
void drawScaleBar(Canvas& canvas, const View& view) {
  const double length = std::pow(10, std::floor(std::log10(view.size() / 2)));
  const double y = kSide - 18, x = kMargin;
  canvas.setInk(kText);
  canvas.line(x, y, x + length * view.scale(), y, 2);
  char text[48];
  std::snprintf(text, sizeof(text), "%g %s", length, length == 1 ? "unit" : "units");
  canvas.text(x + length * view.scale() + 6, y + 4, text, 10);
}

}  // namespace

void writePathPlot(const std::string& path, const std::vector<PathDrawing>& paths,
                   const std::vector<Track>& tracks) {
  View view;
  for (const auto& each : paths) view.include(each.mCurve), view.include(each.mControls);
  for (const auto& each : tracks) view.include(each.mPositions);
  Canvas canvas(Canvas::Format::kSvg, kSide, kSide);
  for (const auto& each : paths) drawPath(canvas, view, each);
  for (std::size_t i = 0; i < tracks.size(); ++i) {
    canvas.setInk(kTracks[i % std::size(kTracks)]);
    for (const auto& p : tracks[i].mPositions) canvas.dot(view.x(p), view.y(p), 2.2);
    canvas.text(kSide - 12, 20 + 15 * double(i), tracks[i].mName, 11, 1);
  }
  drawScaleBar(canvas, view);
  canvas.write(path);
}

}  // namespace vexa::plot
