#include "plot/curve_plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "plot/Canvas.h"

namespace vexa::plot {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

constexpr double kWidth = 760, kPlotHeight = 170;
constexpr double kLeft = 90, kRight = 20, kTop = 30, kBottom = 25, kStrip = 12;
constexpr Ink kGrey{0.45, 0.45, 0.45}, kPale{0.88, 0.88, 0.88};

std::string shortNumber(double value) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.6g", value);
  return text;
}

/// Lowest and highest finite value of all series; never equal.
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
  if (low == high) return {low - 0.5, high + 0.5};
  return {low, high};
}

/// Draws one plot with its upper edge at `top`.
class Panel {
 public:
  Panel(Canvas& canvas, const std::vector<int>& frames, const CurvePlot& plot, double top)
      : mCanvas(canvas), mFrames(frames), mPlot(plot), mTop(top + kTop), mRange(rangeOf(plot)) {}

  void draw() {
    drawFrame();
    drawSwatches();
    for (const Series& series : mPlot.mSeries) drawSeries(series);
    drawTexts();
  }

 private:
  double bottom() const { return mTop + kPlotHeight - kTop - kBottom; }
  double x(double frame) const {
    const double first = mFrames.front(), last = mFrames.back();
    const double part = last == first ? 0.5 : (frame - first) / (last - first);
    return kLeft + part * (kWidth - kLeft - kRight);
  }
  double y(double value) const {
    return bottom() - (value - mRange.first) / (mRange.second - mRange.first) * (bottom() - mTop);
  }

  void drawFrame() {
    mCanvas.setInk(kPale);
    for (const int key : mPlot.mKeyFrames) {
      const bool inside = key >= mFrames.front() && key <= mFrames.back();
      if (inside) mCanvas.line(x(key), mTop, x(key), bottom());
    }
    mCanvas.setInk(kGrey);
    mCanvas.line(kLeft, bottom(), kWidth - kRight, bottom());
    mCanvas.line(kLeft, mTop, kLeft, bottom());
  }

  void drawSwatches() {
    const double step =
        (kWidth - kLeft - kRight) / double(std::max<std::size_t>(1, mFrames.size()));
    for (std::size_t i = 0; i < mPlot.mSwatches.size(); ++i) {
      mCanvas.setInk(mPlot.mSwatches[i]);
      mCanvas.rectangle(kLeft + double(i) * step, mTop - kStrip - 3, step + 0.5, kStrip);
    }
  }

  void drawSeries(const Series& series) {
    cairo_t* cairo = mCanvas.cairo();
    mCanvas.setInk(series.mInk);
    cairo_set_line_width(cairo, 1.6);
    bool open = false;
    for (std::size_t i = 0; i < mFrames.size(); ++i) {
      const bool drawn = std::isfinite(series.mValues[i]);
      if (drawn && open) cairo_line_to(cairo, x(mFrames[i]), y(series.mValues[i]));
      if (drawn && !open) cairo_move_to(cairo, x(mFrames[i]), y(series.mValues[i]));
      open = drawn;
    }
    cairo_stroke(cairo);
  }

  void drawTexts() {
    mCanvas.setInk({0, 0, 0});
    mCanvas.text(kLeft, mTop - kStrip - 7, mPlot.mTitle, 12);
    mCanvas.setInk(kGrey);
    const std::string low = mPlot.mLow.empty() ? shortNumber(mRange.first) : mPlot.mLow;
    const std::string high = mPlot.mHigh.empty() ? shortNumber(mRange.second) : mPlot.mHigh;
    mCanvas.text(kLeft - 6, bottom(), low, 9, 1);
    mCanvas.text(kLeft - 6, mTop + 8, high, 9, 1);
    mCanvas.text(kLeft, bottom() + 14, "frame " + std::to_string(mFrames.front()), 9);
    mCanvas.text(kWidth - kRight, bottom() + 14, std::to_string(mFrames.back()), 9, 1);
    double right = kWidth - kRight;
    for (auto series = mPlot.mSeries.rbegin(); series != mPlot.mSeries.rend(); ++series) {
      mCanvas.setInk(series->mInk);
      mCanvas.text(right, mTop - kStrip - 7, series->mName, 10, 1);
      right -= 12 + 7 * double(series->mName.size());
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
  Canvas canvas(Canvas::Format::kSvg, kWidth, height);
  double top = 5;
  for (const CurvePlot& plot : plots) {
    if (!frames.empty()) Panel(canvas, frames, plot, top).draw();
    top += kPlotHeight;
  }
  canvas.write(path);
}

}  // namespace vexa::plot
