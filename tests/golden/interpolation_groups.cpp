// The timed curves: each kind with each type of value, as a function and as an object.
#include <cmath>

#include "tests/golden/Group.h"

namespace vexa::tests {

namespace {

using namespace Norvel::Vexa;
using V3 = UXS::uxs_generic_vec3<float>;

template <class V>
V drawValue(Numbers& n) {
  if constexpr (std::is_same_v<V, V3>) {
    return n.triple<V3>([&] { return n.any<float>(); });
  } else if constexpr (std::is_same_v<V, UXS::uxs_color>) {
    const float red = n.any<float>(), green = n.unit<float>(), blue = n.unit<float>();
    return {red, green, blue, n.any<float>()};
  } else if constexpr (std::is_floating_point_v<V>) {
    return n.any<V>();
  } else if constexpr (sizeof(V) == 8) {
    const int factor = n.between(1, 100000);
    return n.oneIn(4) ? V(n.bits()) : V(n.anyInt()) * factor;
  } else {
    return n.anyInt();
  }
}

struct Times {
  double mStart, mEnd, mTime;
};

// Mostly a time inside; else an end, beside an end, outside, or an interval that is none.
Times drawTimes(Numbers& n) {
  Times t{};
  t.mStart = n.oneIn(3) ? 0 : n.oneIn(2) ? double(n.between(-50, 500)) : n.any<double>();
  const double lengths[] = {0, 1, 2, 100, -1, std::fabs(t.mStart), 0.25};
  t.mEnd = t.mStart + (n.oneIn(3) ? n.oneOf(lengths) : std::fabs(n.plain<double>()));
  if (n.oneIn(20)) t.mEnd = n.edge<double>();
  const double far = HUGE_VAL;
  const double odd[] = {t.mStart,
                        t.mEnd,
                        std::nextafter(t.mStart, far),
                        std::nextafter(t.mStart, -far),
                        std::nextafter(t.mEnd, far),
                        std::nextafter(t.mEnd, -far),
                        (t.mEnd - t.mStart) / 2,
                        std::nextafter((t.mEnd - t.mStart) / 2, far),
                        std::nextafter((t.mEnd - t.mStart) / 2, -far),
                        double(NAN)};
  t.mTime = n.oneIn(3) ? n.oneOf(odd) : t.mStart + n.unit<double>() * (t.mEnd - t.mStart);
  return t;
}

// The object's state after any setter, and what it then gives.
template <class Curve, class V>
void outAll(Recorder& r, const Curve& curve, double time) {
  r.out(curve.getStartTime(), curve.getEndTime(), curve.getStartValue(), curve.getEndValue());
  r.outOf([&] { return V(curve.valueAt(time)); });
}

template <class Curve>
constexpr bool kHasCoeff = false;
template <class V, class W, class S>
constexpr bool kHasCoeff<XTLinearInterpolation<V, W, S>> = true;

template <class Curve, class V, class Function>
void runCurve(Recorder& r, Function function) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 2500; ++i) {
    r.begin();
    const Times t = drawTimes(n);
    const V a = drawValue<V>(n), b = n.oneIn(6) ? a : drawValue<V>(n);
    r.in("t0", t.mStart).in("t1", t.mEnd).in("a", a).in("b", b).in("t", t.mTime);
    r.outOf([&] { return V(function(t.mStart, t.mEnd, a, b, t.mTime)); });
    if (!n.oneIn(4)) continue;
    const Times other = drawTimes(n);
    const V value = drawValue<V>(n);
    r.in("t0'", other.mStart).in("t1'", other.mEnd).in("value", value);
    r.outOf([&] {
      Curve curve(t.mStart, t.mEnd, a, b);
      outAll<Curve, V>(r, curve, t.mTime);
      if constexpr (kHasCoeff<Curve>) r.out(curve.getCoeff());
      curve.setStartValue(value);
      outAll<Curve, V>(r, curve, t.mTime);
      r.outOf([&] { curve.setEndTime(other.mEnd); });
      outAll<Curve, V>(r, curve, t.mTime);
      r.outOf([&] { curve.setStartTime(other.mStart); });
      outAll<Curve, V>(r, curve, other.mTime);
      curve.setEndValue(value);
      outAll<Curve, V>(r, curve, other.mTime);
    });
  }
}

template <class V, class S>
void addOf(Groups& out, const std::string& type) {
  const auto add = [&](const char* name, Kind kind, auto run) {
    out.push_back({std::string("timed_") + name + type, kind, run});
  };
  add("linear_", Kind::kArithmetic, [](Recorder& r) {
    runCurve<XTLinearInterpolation<V, V, S>, V>(r, [](auto... x) { return Lerp(x...); });
  });
  if constexpr (!std::is_same_v<V, Long>) {
    add("sinus_", Kind::kLibm, [](Recorder& r) {
      runCurve<XTSinusInterpolation<V, V, S>, V>(r, [](auto... x) { return Sinerp(x...); });
    });
    add("square_", Kind::kLibm, [](Recorder& r) {
      runCurve<XTSquareInterpolation<V, V, S>, V>(r, [](auto... x) { return Sqerp(x...); });
    });
    add("one_minus_square_", Kind::kLibm, [](Recorder& r) {
      runCurve<XTOneMinusSquareInterpolation<V, V, S>, V>(
          r, [](auto... x) { return OneMinSqerp(x...); });
    });
  }
}

void runInterval(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 1000; ++i) {
    r.begin();
    const Times t = drawTimes(n), other = drawTimes(n);
    r.in("t0", t.mStart).in("t1", t.mEnd).in("t0'", other.mStart).in("t1'", other.mEnd);
    r.outOf([&] {
      XCInterpolation interval(t.mStart, t.mEnd);
      r.outOf([&] { interval.setStartTime(other.mStart); });
      r.outOf([&] { interval.setEndTime(other.mEnd); });
      r.out(interval.getStartTime(), interval.getEndTime());
    });
  }
}

}  // namespace

void addInterpolationGroups(Groups& out) {
  addOf<double, double>(out, "double");
  addOf<float, float>(out, "float");
  addOf<int, int>(out, "int");
  addOf<V3, float>(out, "vector");
  addOf<UXS::uxs_color, float>(out, "colour");
  addOf<Long, Long>(out, "long");
  out.push_back({"time_interval", Kind::kArithmetic, runInterval});
}

}  // namespace vexa::tests
