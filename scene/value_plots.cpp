#include "scene/value_plots.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

#include "formats/calendar.h"
#include "plot/curve_plot.h"
#include "scene/value_kind.h"
#include "scene/value_parts.h"

namespace vexa::scene {
namespace {

using Samples = std::vector<ScenePlayer::Sample>;

constexpr plot::Ink kInks[] = {{0.80, 0.20, 0.15}, {0.15, 0.55, 0.25}, {0.15, 0.35, 0.75},
                               {0.45, 0.45, 0.45}, {0.60, 0.20, 0.60}, {0.70, 0.55, 0.00}};
constexpr std::size_t kPlaceParts = 3;  // of a position; its direction follows

// How often a cyclic value has started anew before a frame.
std::int64_t passOf(const refhost::Property& value, int frame) {
  const int first = value.mKeys.mElements.front().mFrame,
            last = value.mKeys.mElements.back().mFrame;
  return last == first ? 0 : (std::int64_t{frame} - first) / (std::int64_t{last} - first);
}

// Whether the value jumps at a key that lies behind `from` and not behind `to`: the curve that ends
// there holds the value of the key before.
bool stepsBetween(const refhost::Property& value, int from, int to) {
  const auto& keys = value.mKeys.mElements;
  for (std::size_t k = 1; k < keys.size(); ++k) {
    const int curve = keys[k - 1].mInterpolationType;
    // Codes below 0 and above 5 hold the value like the constant curve.
    const bool holds = curve < 0 || curve == UxZel::kInterpolationConstant || curve > 5;
    if (holds && keys[k].mFrame > from && keys[k].mFrame <= to) return true;
  }
  return false;
}

// The samples that do not continue the one before.
std::vector<std::size_t> breaksOf(const refhost::Property& value, const std::vector<int>& frames,
                                  const plot::Series& series) {
  std::vector<std::size_t> breaks;
  for (std::size_t i = 1; i < frames.size(); ++i) {
    // A line across one of these would show values that no frame has.
    const bool wraps = value.mCyclic && passOf(value, frames[i]) != passOf(value, frames[i - 1]);
    // A frame number falls only where its animation starts anew.
    const bool restarts = showsFrames(value) && series.mValues[i] < series.mValues[i - 1];
    if (wraps || restarts || stepsBetween(value, frames[i - 1], frames[i])) breaks.push_back(i);
  }
  return breaks;
}

// A plot of some of a value's numbers.
plot::CurvePlot plotOfParts(const refhost::Property& value, std::size_t index,
                            const std::vector<int>& frames, const std::vector<Samples>& samples,
                            std::size_t firstPart, std::size_t endPart) {
  plot::CurvePlot plot;
  plot.mTitle = value.mName;
  const std::vector<std::string> names = partNames(value);
  // Three numbers have the colours of the axes: x red, y green, z blue.
  for (std::size_t part = firstPart; part < endPart; ++part) {
    plot::Series series{names[part], kInks[(part - firstPart) % std::size(kInks)], {}};
    for (const Samples& frame : samples) series.mValues.push_back(parts(value, frame[index])[part]);
    plot.mSeries.push_back(std::move(series));
  }
  for (const refhost::Key& key : value.mKeys.mElements) plot.mKeyFrames.push_back(key.mFrame);
  // All numbers of a value step at the same frames, so one of them tells where.
  plot.mBreaks = breaksOf(value, frames, plot.mSeries.front());
  return plot;
}

void addSwatches(plot::CurvePlot& ioPlot, std::size_t index, const std::vector<Samples>& samples) {
  for (const Samples& frame : samples) {
    const auto& c = frame[index].mValue.mColor;
    ioPlot.mSwatches.push_back({c[0] / 255.0, c[1] / 255.0, c[2] / 255.0});
  }
}

// Dates as text: the time alone within one day, else the day alone.
void addDates(plot::CurvePlot& ioPlot) {
  const auto& dates = ioPlot.mSeries[0].mValues;
  const auto [low, high] = std::minmax_element(dates.begin(), dates.end());
  const std::string first = formats::dateOfSeconds(std::int64_t(*low));
  const std::string last = formats::dateOfSeconds(std::int64_t(*high));
  const bool isOneDay = first.substr(0, 10) == last.substr(0, 10);
  ioPlot.mUnit = isOneDay ? first.substr(0, 10) : "";
  ioPlot.mLow = isOneDay ? first.substr(11) : first.substr(0, 10);
  ioPlot.mHigh = isOneDay ? last.substr(11) : last.substr(0, 10);
}

void addPlots(const refhost::Property& value, std::size_t index, const std::vector<int>& frames,
              const std::vector<Samples>& samples, std::vector<plot::CurvePlot>& ioPlots) {
  const std::size_t count = partNames(value).size();
  plot::CurvePlot plot =
      plotOfParts(value, index, frames, samples, 0, isPosition(value) ? kPlaceParts : count);
  if (isColor(value)) addSwatches(plot, index, samples);
  if (isDate(value)) addDates(plot);
  if (isPosition(value)) plot.mUnit = "scene units";
  if (showsFrames(value)) plot.mUnit = "frame of the animation";
  ioPlots.push_back(std::move(plot));
  if (!isPosition(value)) return;
  ioPlots.push_back(plotOfParts(value, index, frames, samples, kPlaceParts, count));
  ioPlots.back().mTitle += ": direction";
}

}  // namespace

void writeValuePlots(const std::string& path, const std::vector<const refhost::Property*>& values,
                     const std::vector<int>& frames, const std::vector<Samples>& samples) {
  std::vector<plot::CurvePlot> plots;
  for (std::size_t i = 0; i < values.size(); ++i) addPlots(*values[i], i, frames, samples, plots);
  plot::writeCurvePlots(path, frames, plots);
}

}  // namespace vexa::scene
