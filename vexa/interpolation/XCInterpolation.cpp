#include "vexa/interpolation/XCInterpolation.h"

#include <stdexcept>

namespace Norvel::Vexa {

double XCInterpolation::getStartTime() const { return mStartTime; }

double XCInterpolation::getEndTime() const { return mEndTime; }

void XCInterpolation::setStartTime(double inStartTime) {
  if (!(mEndTime > inStartTime)) {
    fail("XCInterpolation::setStartTime - inStartTime superior at end Time");
  }
  mStartTime = inStartTime;
}

void XCInterpolation::setEndTime(double inEndTime) {
  if (!(inEndTime > mStartTime)) {
    fail("XCInterpolation::setEndTime - inEndTime inferior at start Time");
  }
  mEndTime = inEndTime;
}

void XCInterpolation::fail(const char* inText) { throw std::runtime_error(inText); }

}  // namespace Norvel::Vexa
