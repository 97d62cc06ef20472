#pragma once

#include <string>

namespace vexa::plot {

/// The marks of an axis: multiples of a round step that lie inside the range.
struct Ticks {
  double mFirst = 0, mStep = 1;
  int mCount = 0;

  double at(int i) const { return mFirst + i * mStep; }
};

/// At most `most` marks inside [low, high], a step of 1, 2 or 5 times a power of ten apart. None
/// for a range that is empty or not finite.
Ticks roundTicks(double low, double high, int most);

/// A mark as text, with as many decimals as tell it from the next one.
std::string tickText(double value, double step);

/// The largest round number (1, 2 or 5 times a power of ten) that is not above a positive one.
double roundBelow(double value);

}  // namespace vexa::plot
