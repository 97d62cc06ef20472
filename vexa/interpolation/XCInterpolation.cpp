#include "vexa/interpolation/XCInterpolation.h"

#include <stdexcept>

namespace Norvel::Vexa {

double XCInterpolation::getStartTime() const { return mStartTime; }

double XCInterpolation::getEndTime() const { return mEndTime; }

// Both comparisons are false for a NaN, so a NaN is refused. They are strict: an interval without
// length would divide by 0. The texts name parameters as hosts' logs have always had them.
void XCInterpolation::setStartTime(double startTime) {
  if (!(mEndTime > startTime)) {
    fail("XCInterpolation::setStartTime - inStartTime superior at end Time");
  }
  mStartTime = startTime;
}

void XCInterpolation::setEndTime(double endTime) {
  if (!(endTime > mStartTime)) {
    fail("XCInterpolation::setEndTime - inEndTime inferior at start Time");
  }
  mEndTime = endTime;
}

void XCInterpolation::fail(const char* text) { throw std::runtime_error(text); }

}  // namespace Norvel::Vexa
