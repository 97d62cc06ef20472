#include "plot/curve_plot.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <utility>

#include "plot/Canvas.h"
#include "plot/axis.h"

namespace vexa::plot {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

constexpr double kWidth = 760, kPlotHeight = 190;
constexpr double kLeft = 78, kRight = 16, kTop = 30, kBottom = 30, kStrip = 10;
constexpr double kRightEdge = kWidth - kRight;
constexpr Ink kText{0.15, 0.15, 0.15}, kGrey{0.45, 0.45, 0.45}, kPale{0.92, 0.92, 0.92};
constexpr Ink kKey{0.80, 0.72, 0.50};

// The range of an axis, never empty, with a little room so that no curve runs along an edge.
std::pair<double, double> rangeOf(const CurvePlot& plot) {
  double low = kInfinity, high = -kInfinity;
  for (const Series& series : plot.mSeries) {
    for (const double value : series.mValues) {
      if (!std::isfinite(value)) continue;
      low = std::min(low, value);
      high = std::max(high, value);
    }
  }
  if (low > high) return {0, 1};
  // A constant runs in the middle.
  if (low == high) return {low - 0.5, high + 0.5};
  const double room = 0.04 * (high - low);
  return {low - room, high + room};
}

// Draws one plot with its upper edge at `top`:
//
//          kLeft                        kRightEdge
//     top    title (unit)        keys - x - y - z       kTop
//            [colours, kStrip high]
//     mTop   |                                  |
//            |            curves                |
//  bottom()  +----|-------|-------|-------|-----+
//            0   25      50      75     100  frame      kBottom
class Panel {
 public:
  Panel(Canvas& canvas, const std::vector<int>& frames, const CurvePlot& plot, double top)
      : mCanvas(canvas), mFrames(frames), mPlot(plot), mTop(top + kTop), mRange(rangeOf(plot)) {}

  void draw() {
    drawFrameAxis();
    drawValueAxis();
    drawKeys();
    drawSwatches();
    for (const Series& series : mPlot.mSeries) drawSeries(series);
    drawTitle();
    drawLegend();
  }

 private:
  double bottom() const { return mTop + kPlotHeight - kTop - kBottom; }
  double x(double frame) const {
    const double first = mFrames.front(), last = mFrames.back();
    // A single frame is in the middle.
    const double part = last == first ? 0.5 : (frame - first) / (last - first);
    return kLeft + part * (kRightEdge - kLeft);
  }
  double y(double value) const {
    return bottom() - (value - mRange.first) / (mRange.second - mRange.first) * (bottom() - mTop);
  }

  void drawFrameAxis() {
    const Ticks ticks = roundTicks(mFrames.front(), mFrames.back(), 12);
    for (int i = 0; i < ticks.mCount; ++i) {
      const double at = x(ticks.at(i));
      mCanvas.setInk(kPale);
      mCanvas.line(at, mTop, at, bottom());
      mCanvas.setInk(kGrey);
      mCanvas.text(at, bottom() + 13, tickText(ticks.at(i), ticks.mStep), 9, 0.5);
    }
    mCanvas.setInk(kGrey);
    mCanvas.line(kLeft, bottom(), kRightEdge, bottom());
    if (ticks.mCount == 0) {
      mCanvas.text(x(mFrames.front()), bottom() + 13, std::to_string(mFrames.front()), 9, 0.5);
    }
    mCanvas.text(kRightEdge, bottom() + 25, "frame", 9, 1);
  }

  void drawValueAxis() {
    mCanvas.setInk(kGrey);
    mCanvas.line(kLeft, mTop, kLeft, bottom());
    // Dates have no round marks in seconds: two texts name the ends.
    if (!mPlot.mLow.empty() || !mPlot.mHigh.empty()) {
      mCanvas.text(kLeft - 6, bottom() - 2, mPlot.mLow, 9, 1);
      mCanvas.text(kLeft - 6, mTop + 12, mPlot.mHigh, 9, 1);
      return;
    }
    const Ticks ticks = roundTicks(mRange.first, mRange.second, 6);
    for (int i = 0; i < ticks.mCount; ++i) {
      const double at = y(ticks.at(i));
      mCanvas.setInk(kPale);
      mCanvas.line(kLeft, at, kRightEdge, at);
      mCanvas.setInk(kGrey);
      mCanvas.text(kLeft - 6, at + 3, tickText(ticks.at(i), ticks.mStep), 9, 1);
    }
  }

  // A key is a line with a small flag at its foot.
  void drawKeys() {
    mCanvas.setInk(kKey);
    for (const int key : mPlot.mKeyFrames) {
      if (key < mFrames.front() || key > mFrames.back()) continue;
      mCanvas.line(x(key), mTop, x(key), bottom());
      mCanvas.dot(x(key), bottom(), 2.5);
    }
  }

  void drawSwatches() {
    const double step = (kRightEdge - kLeft) / double(std::max<std::size_t>(1, mFrames.size()));
    for (std::size_t i = 0; i < mPlot.mSwatches.size(); ++i) {
      mCanvas.setInk(mPlot.mSwatches[i]);
      // Half a point wider than its step: viewers would show a seam between two rectangles.
      mCanvas.rectangle(kLeft + double(i) * step, mTop - kStrip, step + 0.5, kStrip);
    }
  }

  void drawSeries(const Series& series) {
    cairo_t* cairo = mCanvas.cairo();
    mCanvas.setInk(series.mInk);
    cairo_set_line_width(cairo, 1.6);
    auto nextBreak = mPlot.mBreaks.begin();
    bool open = false;
    for (std::size_t i = 0; i < mFrames.size(); ++i) {
      // Breaks rise, as the frames do.
      while (nextBreak != mPlot.mBreaks.end() && *nextBreak < i) ++nextBreak;
      if (nextBreak != mPlot.mBreaks.end() && *nextBreak == i) open = false;
      const bool drawn = std::isfinite(series.mValues[i]);
      if (drawn && open) cairo_line_to(cairo, x(mFrames[i]), y(series.mValues[i]));
      if (drawn && !open) cairo_move_to(cairo, x(mFrames[i]), y(series.mValues[i]));
      // A sample between two breaks would be invisible without a line of no length.
      if (drawn && !open) cairo_line_to(cairo, x(mFrames[i]) + 0.01, y(series.mValues[i]));
      open = drawn;
    }
    cairo_stroke(cairo);
  }

  void drawTitle() {
    mCanvas.setInk(kText);
    const std::string unit = mPlot.mUnit.empty() ? "" : " (" + mPlot.mUnit + ")";
    mCanvas.text(kLeft, mTop - kStrip - 6, mPlot.mTitle + unit, 12);
  }

  // From the right: each name behind a stroke of its colour, then what marks the keys.
  void drawLegend() {
    double at = kRightEdge;
    const double foot = mTop - kStrip - 6;
    const auto entry = [&](const std::string& name, const Ink& ink) {
      if (name.empty()) return;
      mCanvas.setInk(kText);
      mCanvas.text(at, foot, name, 10, 1);
      at -= mCanvas.textWidth(name, 10) + 4;
      mCanvas.setInk(ink);
      mCanvas.line(at - 14, foot - 3.5, at, foot - 3.5, 2.5);
      at -= 26;
    };
    const bool hasKeys = std::any_of(mPlot.mKeyFrames.begin(), mPlot.mKeyFrames.end(), [&](int k) {
      return k >= mFrames.front() && k <= mFrames.back();
    });
    if (hasKeys) entry("keys", kKey);
    for (auto each = mPlot.mSeries.rbegin(); each != mPlot.mSeries.rend(); ++each) {
      entry(each->mName, each->mInk);
    }
  }

  Canvas& mCanvas;
  const std::vector<int>& mFrames;
  const CurvePlot& mPlot;
  const double mTop;
  const std::pair<double, double> mRange;
};

}  // namespace

void writeCurvePlots(const std::string& path, const std::vector<int>& frames,
                     const std::vector<CurvePlot>& plots) {
  const double height = kPlotHeight * double(std::max<std::size_t>(1, plots.size())) + 10;
  const bool isPng = std::filesystem::path(path).extension() == ".png";
  Canvas canvas(isPng ? Canvas::Format::kPng : Canvas::Format::kSvg, kWidth, height);
  double top = 5;
  for (const CurvePlot& plot : plots) {
    if (!frames.empty()) Panel(canvas, frames, plot, top).draw();
    top += kPlotHeight;
  }
  canvas.write(path);
}

}  // namespace vexa::plot
