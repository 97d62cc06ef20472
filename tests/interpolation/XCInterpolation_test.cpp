#include "vexa/interpolation/XCInterpolation.h"

#include <gtest/gtest.h>

#include "tests/helpers/compare.h"
#include "tests/helpers/vtable_slot.h"
#include "vexa/interpolation/XTLinearInterpolation.h"
#include "vexa/interpolation/XTOneMinusSquareInterpolation.h"
#include "vexa/interpolation/XTSinusInterpolation.h"
#include "vexa/interpolation/XTSquareInterpolation.h"

using namespace Norvel::Vexa;
using vexa::tests::sameBits;
using vexa::tests::slotOf;
using vexa::tests::whatOf;
using Vec3 = UXS::uxs_generic_vec3<float>;
using UXS::uxs_color;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// One curve of every kind and value type that exists, with its name.
template <class V, class S, class Check>
void forEachKind(Check check, V a, V b) {
  check(XTLinearInterpolation<V, V, S>(0, 2, a, b), "XTLinearInterpolation");
  if constexpr (!std::is_same_v<V, long>) {
    check(XTSinusInterpolation<V, V, S>(0, 2, a, b), "XTSinusInterpolation");
    check(XTSquareInterpolation<V, V, S>(0, 2, a, b), "XTSquareInterpolation");
    check(XTOneMinusSquareInterpolation<V, V, S>(0, 2, a, b), "XTOneMinusSquareInterpolation");
  }
}
template <class Check>
void forEachCurve(Check check) {
  forEachKind<double, double>(check, 1, 9);
  forEachKind<float, float>(check, 1, 9);
  forEachKind<int, int>(check, 1, 9);
  forEachKind<long, long>(check, 1, 9);
  forEachKind<Vec3, float>(check, {1, -0.0f, 3}, {9, 8, 7});
  forEachKind<uxs_color, float>(check, {1, 2, 3, 4}, {9, 8, 7, 6});
}

template <class V>
bool same(const V& a, const V& b) {
  return sameBits(a, b);
}

}  // namespace

TEST(Curves, OrderOfTheVirtualOperations) {
  EXPECT_EQ(slotOf(&XCInterpolation::getStartTime), 2);
  EXPECT_EQ(slotOf(&XCInterpolation::getEndTime), 3);
  EXPECT_EQ(slotOf(&XCInterpolation::setStartTime), 4);
  EXPECT_EQ(slotOf(&XCInterpolation::setEndTime), 5);
  forEachCurve([](auto curve, const std::string& name) {
    using C = decltype(curve);
    const bool linear = name == "XTLinearInterpolation";
    EXPECT_EQ(slotOf(&C::setStartTime), 4);
    EXPECT_EQ(slotOf(&C::setEndTime), 5);
    EXPECT_EQ(slotOf(&C::getStartValue), 6);
    EXPECT_EQ(slotOf(&C::getEndValue), 7);
    EXPECT_EQ(slotOf(&C::setStartValue), linear ? 9 : 8);
    EXPECT_EQ(slotOf(&C::setEndValue), linear ? 10 : 9);
    EXPECT_EQ(slotOf(&C::valueAt), linear ? 11 : 10);
  });
  EXPECT_EQ(slotOf(&XTLinearInterpolation<double, double, double>::getCoeff), 8);
}

// The fields follow the table pointer: times, values, then what is computed from them.
TEST(Curves, OrderOfTheFields) {
  const XTLinearInterpolation<double, double, double> linear(1, 3, 5, 9);
  const double expectedLinear[] = {1, 3, 5, 9, 2};
  EXPECT_EQ(sizeof(linear), 48u);
  EXPECT_EQ(std::memcmp(reinterpret_cast<const char*>(&linear) + 8, expectedLinear, 40), 0);
  const XTSquareInterpolation<int, int, int> square(1, 3, 5, 9);
  const int values[] = {5, 9}, difference = 4;
  const double inverseDuration = 0.5;
  const char* bytes = reinterpret_cast<const char*>(&square);
  EXPECT_EQ(std::memcmp(bytes + 24, values, 8), 0);
  EXPECT_EQ(std::memcmp(bytes + 32, &inverseDuration, 8), 0);
  EXPECT_EQ(std::memcmp(bytes + 40, &difference, 4), 0);
}

TEST(Curves, EndsComeBackAsStoredAndOutsideThrows) {
  forEachCurve([](auto curve, const std::string& name) {
    EXPECT_TRUE(same(curve.valueAt(0), curve.getStartValue())) << name;
    EXPECT_TRUE(same(curve.valueAt(-0.0), curve.getStartValue())) << name;
    EXPECT_TRUE(same(curve.valueAt(2), curve.getEndValue())) << name;
    EXPECT_TRUE(same(curve.valueAt(kNaN), curve.getEndValue())) << name;
    for (const double t : {std::nextafter(0.0, -1.0), std::nextafter(2.0, 3.0), -HUGE_VAL}) {
      EXPECT_EQ(whatOf([&] { curve.valueAt(t); }), name + "::valueAt - inTime is out of range");
    }
  });
}

TEST(Curves, ARefusedTimeChangesNothing) {
  const auto refuses = [](auto& curve, const std::string& name) {
    for (const double t : {2.0, 3.0, kNaN}) {
      EXPECT_EQ(whatOf([&] { curve.setStartTime(t); }),
                name + "::setStartTime - inStartTime superior at end Time");
    }
    for (const double t : {0.0, -1.0, kNaN}) {
      EXPECT_EQ(whatOf([&] { curve.setEndTime(t); }),
                name + "::setEndTime - inEndTime inferior at start Time");
    }
    EXPECT_EQ(curve.getStartTime(), 0);
    EXPECT_EQ(curve.getEndTime(), 2);
  };
  XCInterpolation base(0, 2);
  refuses(base, "XCInterpolation");
  base.setStartTime(1);
  base.setEndTime(1.5);
  EXPECT_EQ(base.getStartTime(), 1);
  EXPECT_EQ(base.getEndTime(), 1.5);
  forEachCurve([&](auto curve, const std::string& name) {
    const auto middle = curve.valueAt(1.25);
    refuses(curve, name);
    EXPECT_TRUE(same(curve.valueAt(1.25), middle)) << name;
  });
}

// Whatever was set, a curve equals one that was made so.
TEST(Curves, SettersKeepTheComputedFieldsUpToDate) {
  forEachCurve([](auto curve, const std::string& name) {
    const decltype(curve) made(-3, 0.5, curve.getEndValue(), curve.getStartValue());
    curve.setStartTime(-3);
    curve.setEndTime(0.5);
    curve.setStartValue(made.getStartValue());
    curve.setEndValue(made.getEndValue());
    for (const double t : {-3.0, -2.5, -0.1, 0.2, 0.5}) {
      EXPECT_TRUE(same(curve.valueAt(t), made.valueAt(t))) << name << t;
    }
  });
}

TEST(Curves, SlopeOfALine) {
  EXPECT_EQ((XTLinearInterpolation<double, double, double>(0, 4, 1, 3).getCoeff()), 0.5);
  EXPECT_EQ((XTLinearInterpolation<int, int, int>(0, 2, 1, 9).getCoeff()), 0);
  EXPECT_EQ((XTLinearInterpolation<int, int, int>(0, 0.4, 1, 9).getCoeff()), 16);  // int(2.5) * 8
  EXPECT_EQ((XTLinearInterpolation<long, long, long>(0, 1e-10, 0, 3).getCoeff()), 30000000000);
  EXPECT_TRUE(sameBits(XTLinearInterpolation<float, float, float>(0, 3, 0, 5).getCoeff(),
                       5 * float(1.0 / 3)));
}

TEST(Curves, AnEmptyIntervalIsReportedByTheBase) {
  const std::string text = "XCInterpolation::XCInterpolation - startTime superior to endtime";
  EXPECT_EQ(whatOf([] { XCInterpolation(1, 1); }), text);
  EXPECT_EQ(whatOf([] { XTLinearInterpolation<int, int, int>(2, 1, 0, 0); }), text);
  EXPECT_EQ(whatOf([] { XTSinusInterpolation<float, float, float>(1, 1, 0, 0); }), text);
}
