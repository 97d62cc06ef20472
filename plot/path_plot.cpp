#include "plot/path_plot.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "plot/Canvas.h"
#include "plot/axis.h"

namespace vexa::plot {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

using Points = std::vector<UxZel::CZelPoint>;

constexpr double kWidth = 760, kLeast = 160, kMost = 760;  // of the drawing, without its margins
constexpr double kLeft = 58, kRight = 20, kTop = 16, kBottom = 40, kLegendLine = 16;
constexpr Ink kCurve{0.15, 0.35, 0.75}, kControl{0.65, 0.65, 0.65}, kText{0.2, 0.2, 0.2};
constexpr Ink kGrey{0.45, 0.45, 0.45}, kPale{0.92, 0.92, 0.92};
constexpr Ink kTracks[] = {{0.85, 0.3, 0.1}, {0.1, 0.6, 0.3}, {0.6, 0.2, 0.6}, {0.7, 0.55, 0}};

// From scene units to the sheet, the same scale along both axes. The sheet is as high as the scene
// asks for, so that a long straight path does not lie in an empty square.
class View {
 public:
  void include(const Points& points) {
    for (const auto& p : points) {
      if (!std::isfinite(p.x) || !std::isfinite(p.y)) continue;
      mLow = {std::min(mLow.x, p.x), std::min(mLow.y, p.y), 0};
      mHigh = {std::max(mHigh.x, p.x), std::max(mHigh.y, p.y), 0};
    }
  }

  // Call once, after the last include(): adds room around what is drawn.
  void fit() {
    // Nothing was included.
    if (mLow.x > mHigh.x) mLow = {0, 0, 0}, mHigh = {1, 1, 0};
    double width = mHigh.x - mLow.x, height = mHigh.y - mLow.y;
    double room = 0.05 * std::max(width, height);
    // Everything is at one point, or the difference is out of range.
    if (!(room > 0) || !std::isfinite(room)) room = 0.5;
    mLow = {mLow.x - room, mLow.y - room, 0};
    mHigh = {mHigh.x + room, mHigh.y + room, 0};
    width += 2 * room, height += 2 * room;
    // The width is fixed; the height follows from it between its two limits.
    mScale = std::min((kWidth - kLeft - kRight) / width, kMost / height);
    mHeight = std::max(kLeast, height * mScale);
    // What the drawing does not need is shared out to both sides.
    const double spareX = ((kWidth - kLeft - kRight) / mScale - width) / 2;
    const double spareY = (mHeight / mScale - height) / 2;
    mLow = {mLow.x - spareX, mLow.y - spareY, 0};
    mHigh = {mHigh.x + spareX, mHigh.y + spareY, 0};
  }

  double bottom() const { return kTop + mHeight; }
  double x(const UxZel::CZelPoint& p) const { return kLeft + (p.x - mLow.x) * mScale; }
  // The sheet counts downwards, the scene upwards.
  double y(const UxZel::CZelPoint& p) const { return bottom() - (p.y - mLow.y) * mScale; }
  const UxZel::CZelPoint& low() const { return mLow; }
  const UxZel::CZelPoint& high() const { return mHigh; }

 private:
  UxZel::CZelPoint mLow{kInfinity, kInfinity, 0}, mHigh{-kInfinity, -kInfinity, 0};
  double mScale = 1, mHeight = kLeast;
};

void drawAxes(Canvas& canvas, const View& view) {
  const double right = kWidth - kRight;
  const Ticks across = roundTicks(view.low().x, view.high().x, 10);
  // One step for both axes: the grid consists of squares.
  Ticks upwards = across;
  upwards.mFirst = std::ceil(view.low().y / across.mStep) * across.mStep;
  upwards.mCount = int(std::floor((view.high().y - upwards.mFirst) / across.mStep)) + 1;
  for (int i = 0; i < across.mCount; ++i) {
    const double at = view.x({across.at(i), 0, 0});
    canvas.setInk(kPale);
    canvas.line(at, kTop, at, view.bottom());
    canvas.setInk(kGrey);
    canvas.text(at, view.bottom() + 13, tickText(across.at(i), across.mStep), 9, 0.5);
  }
  for (int i = 0; i < upwards.mCount; ++i) {
    const double at = view.y({0, upwards.at(i), 0});
    canvas.setInk(kPale);
    canvas.line(kLeft, at, right, at);
    canvas.setInk(kGrey);
    canvas.text(kLeft - 6, at + 3, tickText(upwards.at(i), upwards.mStep), 9, 1);
  }
  canvas.setInk(kGrey);
  canvas.line(kLeft, view.bottom(), right, view.bottom());
  canvas.line(kLeft, kTop, kLeft, view.bottom());
  canvas.text(right, view.bottom() + 27, "x, scene units", 9, 1);
  canvas.text(8, kTop - 4, "y", 9);
}

void drawPolyline(Canvas& canvas, const View& view, const Points& points, double width) {
  for (std::size_t i = 1; i < points.size(); ++i) {
    canvas.line(view.x(points[i - 1]), view.y(points[i - 1]), view.x(points[i]), view.y(points[i]),
                width);
  }
}

void drawPath(Canvas& canvas, const View& view, const PathDrawing& path) {
  canvas.setInk(kControl);
  for (std::size_t i = 0; i + 2 < path.mControls.size(); i += 3) {
    const auto first = path.mControls.begin() + std::ptrdiff_t(i);
    drawPolyline(canvas, view, {first, first + 3}, 1);
    canvas.dot(view.x(path.mControls[i]), view.y(path.mControls[i]), 2);
    canvas.dot(view.x(path.mControls[i + 2]), view.y(path.mControls[i + 2]), 2);
  }
  canvas.setInk(kCurve);
  drawPolyline(canvas, view, path.mCurve, 2);
  for (std::size_t i = 1; i < path.mControls.size(); i += 3) {
    canvas.dot(view.x(path.mControls[i]), view.y(path.mControls[i]), 4);
  }
}

const Ink& trackInk(std::size_t index) { return kTracks[index % std::size(kTracks)]; }

// One line per kind of thing, below the drawing.
void drawLegend(Canvas& canvas, double top, const std::vector<PathDrawing>& paths,
                const std::vector<Track>& tracks) {
  double y = top;
  const auto entry = [&](const std::string& text) {
    canvas.setInk(kText);
    canvas.text(kLeft + 26, y + 4, text, 10);
    y += kLegendLine;
  };
  for (const PathDrawing& path : paths) {
    canvas.setInk(kCurve);
    canvas.line(kLeft, y, kLeft + 18, y, 2);
    canvas.dot(kLeft + 9, y, 3.5);
    entry("path " + path.mName + ", passage points and, in grey, control points");
  }
  for (std::size_t i = 0; i < tracks.size(); ++i) {
    canvas.setInk(trackInk(i));
    for (const double at : {2.0, 9.0, 16.0}) canvas.dot(kLeft + at, y, 2.2);
    entry(tracks[i].mName + ", one dot per frame");
  }
}

}  // namespace

void writePathPlot(const std::string& path, const std::vector<PathDrawing>& paths,
                   const std::vector<Track>& tracks) {
  View view;
  for (const auto& each : paths) view.include(each.mCurve), view.include(each.mControls);
  for (const auto& each : tracks) view.include(each.mPositions);
  view.fit();
  const double legend = kLegendLine * double(paths.size() + tracks.size());
  Canvas canvas(Canvas::Format::kSvg, kWidth, view.bottom() + kBottom + legend);
  drawAxes(canvas, view);
  for (const auto& each : paths) drawPath(canvas, view, each);
  for (std::size_t i = 0; i < tracks.size(); ++i) {
    canvas.setInk(trackInk(i));
    for (const auto& p : tracks[i].mPositions) canvas.dot(view.x(p), view.y(p), 2.2);
  }
  drawLegend(canvas, view.bottom() + kBottom - 2, paths, tracks);
  canvas.write(path);
}

}  // namespace vexa::plot
