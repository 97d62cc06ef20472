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

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Calls check(curve over [0, 2], its name) for every kind and value type that exists.
template <class Check>
void forEachCurve(Check check) {
  const auto kinds = [&](auto a, auto b, auto component) {
    using V = decltype(a);
    using S = decltype(component);
    check(XTLinearInterpolation<V, V, S>(0, 2, a, b), "XTLinearInterpolation");
    if constexpr (!std::is_same_v<V, Long>) {
      check(XTSinusInterpolation<V, V, S>(0, 2, a, b), "XTSinusInterpolation");
      check(XTSquareInterpolation<V, V, S>(0, 2, a, b), "XTSquareInterpolation");
      check(XTOneMinusSquareInterpolation<V, V, S>(0, 2, a, b), "XTOneMinusSquareInterpolation");
    }
  };
  kinds(1.0, 9.0, 0.0);
  kinds(1.0f, 9.0f, 0.0f);
  kinds(1, 9, 0);
  kinds(Long{1}, Long{9}, Long{0});
  kinds(UXS::uxs_generic_vec3<float>(1, -0.0f, 3), UXS::uxs_generic_vec3<float>(9, 8, 7), 0.0f);
  kinds(UXS::uxs_color(1, 2, 3, 4), UXS::uxs_color(9, 8, 7, 6), 0.0f);
}

}  // namespace

TEST(Curves, OrderOfTheVirtualOperations) {
  EXPECT_EQ(slotOf(&XCInterpolation::getStartTime), 2);
  EXPECT_EQ(slotOf(&XCInterpolation::getEndTime), 3);
  EXPECT_EQ(slotOf(&XCInterpolation::setStartTime), 4);
  EXPECT_EQ(slotOf(&XCInterpolation::setEndTime), 5);
  EXPECT_EQ(slotOf(&XTLinearInterpolation<double, double, double>::getCoeff), 8);
  forEachCurve([](auto curve, const std::string& name) {
    using C = decltype(curve);
    const int shift = name == "XTLinearInterpolation" ? 1 : 0;
    EXPECT_EQ(slotOf(&C::getStartValue), 6);
    EXPECT_EQ(slotOf(&C::getEndValue), 7);
    EXPECT_EQ(slotOf(&C::setStartValue), 8 + shift);
    EXPECT_EQ(slotOf(&C::setEndValue), 9 + shift);
    EXPECT_EQ(slotOf(&C::valueAt), 10 + shift);
  });
}

// The fields follow the table pointer: times, values, then what is computed from them.
TEST(Curves, OrderOfTheFields) {
  const auto expectFields = [](const auto& curve, const auto& fields, std::size_t size) {
    EXPECT_EQ(std::memcmp(reinterpret_cast<const char*>(&curve) + 8, &fields, size), 0);
  };
  const double line[] = {1, 3, 5, 9, 2};
  expectFields(XTLinearInterpolation<double, double, double>(1, 3, 5, 9), line, sizeof(line));
  const struct {
    double times[2];
    int values[2];
    double inverseDuration;
    int difference;
  } square = {{1, 3}, {5, 9}, 0.5, 4};
  expectFields(XTSquareInterpolation<int, int, int>(1, 3, 5, 9), square, 36);
}

TEST(Curves, EndsComeBackAsStoredAndOutsideThrows) {
  forEachCurve([](auto curve, const std::string& name) {
    EXPECT_TRUE(sameBits(curve.valueAt(-0.0), curve.getStartValue())) << name;
    EXPECT_TRUE(sameBits(curve.valueAt(2), curve.getEndValue())) << name;
    EXPECT_TRUE(sameBits(curve.valueAt(kNaN), curve.getEndValue())) << name;
    for (const double t : {std::nextafter(0.0, -1.0), std::nextafter(2.0, 3.0)}) {
      EXPECT_EQ(whatOf([&] { curve.valueAt(t); }), name + "::valueAt - inTime is out of range");
    }
  });
}

TEST(Curves, ARefusedTimeChangesNothing) {
  const auto refuse = [](auto curve, const std::string& name) {
    for (const double t : {2.0, kNaN}) {
      EXPECT_EQ(whatOf([&] { curve.setStartTime(t); }),
                name + "::setStartTime - inStartTime superior at end Time");
    }
    for (const double t : {0.0, kNaN}) {
      EXPECT_EQ(whatOf([&] { curve.setEndTime(t); }),
                name + "::setEndTime - inEndTime inferior at start Time");
    }
    EXPECT_EQ(curve.getStartTime(), 0);
    EXPECT_EQ(curve.getEndTime(), 2);
  };
  refuse(XCInterpolation(0, 2), "XCInterpolation");
  forEachCurve(refuse);
  XCInterpolation base(0, 2);
  base.setStartTime(1);
  base.setEndTime(1.5);
  EXPECT_EQ(base.getEndTime() - base.getStartTime(), 0.5);
}

TEST(Curves, EachSetterKeepsWhatIsComputedUpToDate) {
  forEachCurve([](auto curve, const std::string& name) {
    using C = decltype(curve);
    const auto a = curve.getStartValue(), b = curve.getEndValue();
    const auto expectAfter = [&](auto set, const C& made) {
      C changed = curve;
      set(changed);
      EXPECT_TRUE(sameBits(changed.valueAt(0.4), made.valueAt(0.4))) << name;
    };
    expectAfter([](C& c) { c.setStartTime(-3); }, C(-3, 2, a, b));
    expectAfter([](C& c) { c.setEndTime(0.5); }, C(0, 0.5, a, b));
    expectAfter([&](C& c) { c.setStartValue(b); }, C(0, 2, b, b));
    expectAfter([&](C& c) { c.setEndValue(a); }, C(0, 2, a, a));
    expectAfter([&](C& c) { c.calculateCoeff(); }, curve);
  });
}

TEST(Curves, AnEmptyIntervalIsReportedByTheBase) {
  const std::string text = "XCInterpolation::XCInterpolation - startTime superior to endtime";
  EXPECT_EQ(whatOf([] { XCInterpolation(1, 1); }), text);
  EXPECT_EQ(whatOf([] { XTSinusInterpolation<int, int, int>(2, 1, 0, 0); }), text);
}
