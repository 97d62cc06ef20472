// Keys: curves between two keys, dates, and which keys and frames a request comes down to.
#include <cmath>

#include "refhost/Property.h"
#include "refhost/Scene.h"
#include "tests/golden/Group.h"
#include "tests/golden/QuietErrors.h"
#include "tests/helpers/managed.h"

namespace vexa::tests {

namespace {

using namespace Norvel::Vexa;
using refhost::Key;
using uValue = UxZel::IZelKeyFrame::uValue;

constexpr unsigned int kOtherType = 9;

std::int64_t drawSeconds(Numbers& n) {
  constexpr std::int64_t kDay = 86400;
  constexpr std::int64_t kEnds[] = {0,     1,          -1,         kDay,       kDay - 1,
                                    -kDay, 2147483647, 2147483648, -2147483648};
  switch (n.below(6)) {
    case 0:
      return n.oneOf(kEnds);
    case 1:
      return std::int64_t(n.bits() >> (n.oneIn(2) ? 0 : 20));
    case 2:
      return std::int64_t(n.between(-30000, 30000)) * kDay;
    default:
      return std::int64_t(n.between(-1000000000, 2000000000));
  }
}

Key drawKey(Numbers& n, unsigned int type, int frame) {
  Key key;
  key.mFrame = frame;
  key.mValueType = type;
  for (int i = 0; i < 24; ++i) key.mValue.mBytes[i] = static_cast<unsigned char>(n.below(256));
  key.mInterpolationType = n.between(-1, 6);
  switch (type) {
    case UxZel::kValueVector:
      for (double& c : key.mValue.mVector) c = n.oneIn(6) ? n.edge<double>() : n.any<double>();
      break;
    case UxZel::kValueReal:
      key.mValue.mReal = n.any<double>();
      break;
    case UxZel::kValueInteger:
      key.mValue.mInteger = n.anyInt();
      break;
    case UxZel::kValueDate:
      key.mValue.mDate = drawSeconds(n);
      break;
    default:
      break;
  }
  return key;
}

// By its type where numbers in it may be NaN, else by its bytes.
void outValue(Recorder& r, unsigned int type, const uValue& value) {
  if (type == UxZel::kValueVector) {
    r.out(value.mVector[0], value.mVector[1], value.mVector[2]);
  } else if (type == UxZel::kValueReal) {
    uValue rest = value;
    rest.mReal = 0;
    r.out(value.mReal, rest);
  } else if (type == UxZel::kValueInteger) {
    uValue rest = value;
    rest.mInteger = 0;
    r.out(value.mInteger, rest);
  } else if (type == UxZel::kValueDate) {
    uValue rest = value;
    rest.mDate = 0;
    r.out(value.mDate, rest);
  } else {
    r.out(value);
  }
}

void inKey(Recorder& r, const char* name, const Key& key) {
  r.in(name, key.mFrame).in("type", key.mValueType).in("curve", key.mInterpolationType);
  switch (key.mValueType) {
    case UxZel::kValueVector:
      r.in("x", key.mValue.mVector[0]).in("y", key.mValue.mVector[1]);
      r.in("z", key.mValue.mVector[2]);
      break;
    case UxZel::kValueReal:
      r.in("value", key.mValue.mReal);
      break;
    case UxZel::kValueInteger:
      r.in("value", key.mValue.mInteger);
      break;
    case UxZel::kValueDate:
      r.in("value", key.mValue.mDate);
      break;
    default:
      r.in("value", key.mValue);
  }
}

int frameNear(Numbers& n, int first, int second) {
  if (n.oneIn(6)) return n.oneIn(2) ? first : second;
  if (n.oneIn(20)) return n.anyInt();
  return first < second ? n.between(first, second) : n.between(first - 3, first + 3);
}

using KeyCurve = void (*)(UxZel::IZelKeyFrame*, UxZel::IZelKeyFrame*, int, uValue&);

void runKeyCurve(Recorder& r, KeyCurve curve, unsigned int type) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 800; ++i) {
    r.begin();
    const int frame0 = n.oneIn(2) ? 0 : n.between(-20, 300);
    const int frame1 = n.oneIn(8) ? frame0 : frame0 + n.between(-2, 100);
    Key first = drawKey(n, type, frame0),
        second = drawKey(n, n.oneIn(9) ? kOtherType : type, frame1);
    if (n.oneIn(6)) second.mValue = first.mValue;
    const int frame = frameNear(n, frame0, frame1);
    inKey(r, "first", first);
    inKey(r, "second", second);
    r.in("frame", frame);
    uValue value;
    for (unsigned char& byte : value.mBytes) byte = 0xA5;  // what is not written stays
    r.outOf([&] { curve(&first, &second, frame, value); });
    outValue(r, type, value);
  }
}

void runDispatch(Recorder& r, bool passesLibm) {
  Numbers& n = r.numbers();
  constexpr unsigned int kTypes[] = {0, 1, 2, 3, 4, 6, 7, 8};
  for (int i = 0; i < 3000; ++i) {
    r.begin();
    const int frame0 = n.between(-1, 50), frame1 = frame0 + n.between(0, 60);
    const bool isDate = n.oneIn(3);  // a linear date is computed in long
    const unsigned int type = isDate ? unsigned(UxZel::kValueDate) : n.oneOf(kTypes);
    Key first = drawKey(n, type, frame0), second = drawKey(n, type, frame1);
    const int codes[] = {isDate ? 5 : 0, 4, isDate ? 5 : 6, isDate ? 5 : 0};
    const int curved[] = {1, 2, 3};
    first.mInterpolationType = passesLibm ? n.oneOf(curved) : n.oneOf(codes);
    const int forced = n.oneIn(2)   ? -n.between(1, 9)
                       : passesLibm ? n.oneOf(curved)
                                    : n.oneOf(codes);
    const int frame = frameNear(n, frame0, frame1);
    inKey(r, "first", first);
    inKey(r, "second", second);
    r.in("frame", frame).in("forced", forced);
    uValue value{};
    r.outOf([&] { uxInterpolate(&first, &second, frame, value, forced); });
    outValue(r, type, value);
  }
}

void runDates(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 4000; ++i) {
    r.begin();
    const int length = n.between(0, 300);
    const double t0 = n.plain<double>(), t1 = t0 + n.unit<double>() * length;
    uValue a{}, b{};
    a.mDate = drawSeconds(n);
    const int near = n.oneIn(2) ? n.between(-90000, 90000) : 86400 + n.between(-2, 2);
    b.mDate = n.oneIn(2) && a.mDate < 1000000000000 ? a.mDate + near : drawSeconds(n);
    const double time = n.oneIn(9) ? n.oneIn(2) ? t0 : t1 : t0 + n.unit<double>() * (t1 - t0);
    r.in("t0", t0).in("t1", t1).in("a", a.mDate).in("b", b.mDate).in("t", time);
    r.outOf([&] {
      XCDateInterpolation curve(t0, t1, a, b);
      r.outOf([&] { return curve.valueAt(time); });
      r.outOf([&] { return curve.valueAt(n.any<double>()); });
      r.outOf([&] { curve.setStartTime(n.plain<double>()); });
      r.outOf([&] { curve.setEndTime(n.plain<double>()); });
      r.out(curve.getStartTime(), curve.getEndTime());
      curve.setEndValue(a);
      curve.setStartValue(b);
      r.out(curve.getStartValue()->mDate, curve.getEndValue()->mDate);
      r.outOf([&] { return curve.valueAt(time); });
    });
  }
}

void runCalendar(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 3000; ++i) {
    r.begin();
    uValue date{};
    date.mDate = drawSeconds(n);
    XCTimeImpl time, fields;
    fields.setYear(n.between(-300, 4000));
    fields.setMonth(n.between(-20, 30));
    fields.setDay(n.between(-50, 400));
    fields.setHour(n.between(-50, 50));
    fields.setMinute(n.between(-2000, 2000));
    r.in("date", date.mDate).in("year", fields.getYear()).in("month", fields.getMonth());
    r.in("day", fields.getDay()).in("hour", fields.getHour()).in("minute", fields.getMinute());
    UxZel::CKeyFrameTool::GetTime(date, &time);
    r.out(time.getYear(), time.getMonth(), time.getDay(), time.getHour(), time.getMinute());
    r.out(UxZel::CKeyFrameTool::ComputeValue(time), UxZel::CKeyFrameTool::ComputeValue(fields));
    Key a, b;
    a.mValue = b.mValue = date;
    if (n.oneIn(2)) b.mValue.mBytes[n.below(24)] ^= static_cast<unsigned char>(1u << n.below(8));
    r.out(UxZel::CKeyFrameTool::AreKeyFrameDifferents(a, b));
    r.out(UxZel::CKeyFrameTool::AreValueDifferents(a.mValue, b.mValue));
  }
}

// Few frames, so that keys meet; some have none, and some are at the ends of the integers.
int drawFrame(Numbers& n) { return n.oneIn(12) ? n.anyInt() : n.between(-3, 12); }

void runKeyRanges(Recorder& r) {
  Numbers& n = r.numbers();
  const XCAnimationMgr manager;
  for (int i = 0; i < 5000; ++i) {
    r.begin();
    refhost::Property property;
    std::vector<int> frames(n.below(n.oneIn(40) ? 400 : 9));
    const bool isSorted = n.oneIn(2);
    for (std::size_t k = 0; k < frames.size(); ++k) {
      frames[k] = isSorted ? int(3 * k) - n.between(0, 3) : drawFrame(n);
      property.mKeys.add().mFrame = frames[k];
    }
    const int frame = isSorted ? n.between(-3, int(3 * frames.size())) : drawFrame(n);
    int low = -1, high = -1;
    manager.GetKeyFrameRange(frame, low, high, &property.mKeys);
    r.in("keys", frames).in("frame", frame);
    r.out(low, high);
  }
}

// Whole requests for values that follow no path.
void runValues(Recorder& r, bool passesLibm, unsigned int propertyType) {
  const QuietErrors quiet;
  Numbers& n = r.numbers();
  const auto manager = makeManager();
  constexpr unsigned int kTypes[] = {2, 2, 2, 0, 1, 4, 7, 9};
  const int curved[] = {1, 2, 3, 3};
  for (int i = 0; i < 3000; ++i) {
    r.begin();
    refhost::Scene scene;
    if (n.oneIn(20)) scene.mSettings.mElements.clear();
    refhost::Property property;
    property.mPropertyType = propertyType;
    property.mCyclic = !n.oneIn(4);
    property.mRepeatCount = n.oneIn(8) ? n.anyInt() : n.between(-1, 5);
    // A linear date is computed in long, and so is the last pass of an eased one.
    const bool isDate = !passesLibm && n.oneIn(4);
    const unsigned int type = isDate ? 5u : n.oneOf(kTypes);
    int frame = n.oneIn(5) ? n.between(-2, 30) : 0;
    for (int k = n.between(n.oneIn(10) ? 0 : 2, 4); k > 0; --k) {
      Key& key = property.mKeys.add(drawKey(n, type, frame));
      key.mInterpolationType = isDate ? 5 : passesLibm ? n.oneOf(curved) : n.oneIn(9) ? 4 : 0;
      frame += n.oneIn(9) ? n.between(-3, 1) : n.between(1, 40);
      if (property.mCyclic && !passesLibm && !isDate) key.mInterpolationType = 0;
    }
    double rate = n.oneIn(5) ? n.any<double>() : double(n.between(0, 60));
    const int at = n.oneIn(12) ? n.anyInt() : n.between(-1, 200);
    for (const Key& key : property.mKeys.mElements) inKey(r, "key", key);
    r.in("cyclic", property.mCyclic).in("repeats", property.mRepeatCount).in("rate", rate);
    r.in("frame", at);
    UxZel::CZelVector direction{7, 8, 9};
    double* const given = n.oneIn(6) ? nullptr : &rate;
    outValue(r, type, manager->InterpolateValue(&scene, &property, at, &direction, given));
    r.out(direction);
  }
}

}  // namespace

void addKeyGroups(Groups& out) {
  const struct {
    const char* mName;
    KeyCurve mCurve;
    bool mIsExact, mIsLinear;
  } kCurves[] = {{"keys_linear_", Lerp, true, true},
                 {"keys_square_", Sqerp, false, false},
                 {"keys_one_minus_square_", OneMinSqerp, false, false},
                 {"keys_sinus_", Sinerp, false, false},
                 {"keys_date_", Daterp, true, false}};
  const struct {
    const char* mName;
    unsigned int mType;
  } kTypes[] = {{"vector", 0}, {"colour", 1}, {"real", 2},          {"integer", 4},
                {"date", 5},   {"step", 7},   {"other", kOtherType}};
  for (const auto& curve : kCurves) {
    for (const auto& type : kTypes) {
      const bool isExact = curve.mIsExact || type.mType > UxZel::kValueDate;
      // A linear date is computed in long.
      const bool isLong = curve.mIsLinear && type.mType == UxZel::kValueDate;
      if (isLong && sizeof(long) != 8) continue;
      out.push_back({std::string(curve.mName) + type.mName + (isLong ? "_long" : ""),
                     isExact ? Kind::kArithmetic : Kind::kLibm,
                     [=](Recorder& r) { runKeyCurve(r, curve.mCurve, type.mType); }});
    }
  }
  out.push_back({"keys_dispatch", Kind::kArithmetic, [](Recorder& r) { runDispatch(r, false); }});
  out.push_back({"keys_dispatch_eased", Kind::kLibm, [](Recorder& r) { runDispatch(r, true); }});
  out.push_back({"dates", Kind::kArithmetic, runDates});
  out.push_back({"calendar", Kind::kArithmetic, runCalendar});
  out.push_back({"key_ranges", Kind::kArithmetic, runKeyRanges});
  out.push_back({"values", Kind::kArithmetic, [](Recorder& r) { runValues(r, false, 0); }});
  out.push_back({"values_eased", Kind::kLibm, [](Recorder& r) { runValues(r, true, 0); }});
  out.push_back(
      {"frame_numbers", Kind::kArithmetic, [](Recorder& r) { runValues(r, false, 140); }});
}

}  // namespace vexa::tests
