#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "plot/Ink.h"

namespace vexa::plot {

/// One line of a plot: a number per sampled frame.
struct Series {
  std::string mName;
  Ink mInk;
  std::vector<double> mValues;
};

/// One property over the frames.
struct CurvePlot {
  std::string mTitle;
  std::string mUnit;  ///< behind the title; empty for none
  std::vector<Series> mSeries;
  std::vector<int> mKeyFrames;  ///< marked by a line; those outside the frames are left out
  /// Indices of samples that no line joins to the sample before: the value steps or wraps there.
  std::vector<std::size_t> mBreaks;
  std::vector<Ink> mSwatches;  ///< one colour per frame, drawn as a strip; empty for none
  std::string mLow, mHigh;     ///< texts for the lowest and the highest value; empty: round marks
};

/// Draws the plots below each other, all over the same frames, and writes them as SVG.
///
/// The axes carry round marks. Values that are not finite leave a gap.
/// PNG for a name that ends in .png, else SVG.
void writeCurvePlots(const std::string& path, const std::vector<int>& frames,
                     const std::vector<CurvePlot>& plots);

}  // namespace vexa::plot
