#pragma once

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
  std::vector<Series> mSeries;
  std::vector<int> mKeyFrames;  ///< marked by a line; those outside the frames are left out
  std::vector<Ink> mSwatches;   ///< one colour per frame, drawn as a strip; empty for none
  std::string mLow, mHigh;      ///< texts for the lowest and the highest value; empty: the numbers
};

/// Draws the plots below each other, all over the same frames, and writes them as SVG. Values that
/// are not finite leave a gap.
void writeCurvePlots(const std::string& path, const std::vector<int>& frames,
                     const std::vector<CurvePlot>& plots);

}  // namespace vexa::plot
