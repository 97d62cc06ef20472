#include "plot/axis.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace vexa::plot {

double roundBelow(double value) {
  const double power = std::pow(10, std::floor(std::log10(value)));
  // value = digit * power, and digit is at least 1 and below 10.
  const double digit = value / power;
  return (digit >= 5 ? 5 : digit >= 2 ? 2 : 1) * power;
}

Ticks roundTicks(double low, double high, int most) {
  if (!(high > low) || !std::isfinite(high - low) || most < 1) return {};
  double step = roundBelow((high - low) / most);
  Ticks ticks;
  // The step may have to grow: rounding it down gave more marks than wanted. 2.5 leads from 1 to 2,
  // from 2 to 5 and from 5 to 10.
  for (int rounds = 0; rounds < 4; ++rounds) {
    // A mark that misses the end by a rounding error still counts.
    const double slack = 1e-9 * (high - low);
    ticks.mStep = step;
    ticks.mFirst = std::ceil((low - slack) / step) * step;
    ticks.mCount = std::max(0, int(std::floor((high + slack - ticks.mFirst) / step)) + 1);
    if (ticks.mCount <= most) break;
    step = roundBelow(step * 2.5);
  }
  return ticks;
}

std::string tickText(double value, double step) {
  const int decimals = std::clamp(int(-std::floor(std::log10(step) + 1e-9)), 0, 12);
  const double magnitude = std::max(std::abs(value), step);
  char text[48];
  // Others are written with an exponent, which an axis has room for.
  const bool isPlain = magnitude < 1e6 && decimals <= 5;
  std::snprintf(text, sizeof(text), isPlain ? "%.*f" : "%.*g", isPlain ? decimals : 4,
                std::abs(value) < step * 1e-6 ? 0.0 : value);
  return text;
}

}  // namespace vexa::plot
