#include "vexa/interpolation/XCInterpolation.h"

#include <gtest/gtest.h>

#include "tests/helpers/compare.h"
#include "vexa/interpolation/XTLinearInterpolation.h"
#include "vexa/interpolation/XTSinusInterpolation.h"

using namespace Norvel::Vexa;
using vexa::tests::whatOf;

TEST(Curves, AnEmptyIntervalIsReportedByTheBase) {
  const std::string text = "XCInterpolation::XCInterpolation - startTime superior to endtime";
  EXPECT_EQ(whatOf([] { XCInterpolation(1, 1); }), text);
  EXPECT_EQ(whatOf([] { XTSinusInterpolation<int, int, int>(2, 1, 0, 0); }), text);
}

TEST(Curves, ARefusedTimeChangesNothing) {
  XTLinearInterpolation<double, double, double> line(0, 2, 0, 4);
  EXPECT_EQ(whatOf([&] { line.setStartTime(2); }),
            "XTLinearInterpolation::setStartTime - inStartTime superior at end Time");
  EXPECT_EQ(line.valueAt(1), 2);
  line.setEndTime(4);
  EXPECT_EQ(line.getCoeff(), 1);
  EXPECT_EQ(line.valueAt(1), 1);
}
