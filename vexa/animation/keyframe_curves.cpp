#include "vexa/animation/keyframe_curves.h"

#include <stdexcept>

#include "vexa/animation/XCDateInterpolation.h"
#include "vexa/interpolation/timed_curves.h"
#include "vexa/math/conversion.h"
#include "vexa/support/forced_unwind_internal.h"

using UxZel::IZelKeyFrame;
using uValue = IZelKeyFrame::uValue;
using Vector = UXS::uxs_generic_vec3<float>;

namespace Norvel::Vexa {

namespace {

Vector unpackVector(const uValue& value) {
  const double* v = value.mVector;
  return {float(v[0]), float(v[1]), float(v[2])};
}

void packVector(const Vector& vector, uValue& out) {
  out.mVector[0] = double(vector.x);
  out.mVector[1] = double(vector.y);
  out.mVector[2] = double(vector.z);
}

UXS::uxs_color unpackColor(const uValue& value) {
  constexpr float kByteToUnit = 0.003921569f;
  const unsigned char* c = value.mColor;
  return {float(c[0]) * kByteToUnit, float(c[1]) * kByteToUnit, float(c[2]) * kByteToUnit,
          float(c[3]) * kByteToUnit};
}

// Truncated, not rounded; of a number past 255 the low 8 bits.
unsigned char colorByte(float unit) {
  return static_cast<unsigned char>(truncToInt(double(unit * 255.0f)));
}

void packColor(const UXS::uxs_color& color, uValue& out) {
  out.mColor[0] = colorByte(color.r);
  out.mColor[1] = colorByte(color.g);
  out.mColor[2] = colorByte(color.b);
  out.mColor[3] = colorByte(color.a);
}

// Two keys at different frames, and the frame asked for.
struct Segment {
  IZelKeyFrame* mFirst;
  IZelKeyFrame* mSecond;
  double mStart, mEnd, mTime;

  unsigned int valueType() const { return mFirst->GetValueType(); }
  const uValue& a() const { return *mFirst->GetValue(); }
  const uValue& b() const { return *mSecond->GetValue(); }
};

// Calls `interior` with the segment between two keys; keys at one frame hold the first value.
template <class Interior>
void onSegment(IZelKeyFrame* first, IZelKeyFrame* second, int frame, uValue& out,
               Interior interior) {
  const int start = first->GetFrame(), end = second->GetFrame();
  if (start == end) {
    out = *first->GetValue();
  } else {
    interior(Segment{first, second, double(start), double(end), double(frame)});
  }
}

// The value types that every curve covers; `curve` maps (start value, end value) of one type.
template <class Curve>
void interpolateCommonTypes(const Segment& s, Curve curve, uValue& out) {
  switch (s.valueType()) {
    case UxZel::kValueVector:
      return packVector(curve(unpackVector(s.a()), unpackVector(s.b())), out);
    case UxZel::kValueColor:
      return packColor(curve(unpackColor(s.a()), unpackColor(s.b())), out);
    case UxZel::kValueReal:
      out.mReal = curve(s.a().mReal, s.b().mReal);
      return;
    case UxZel::kValueInteger:
      out.mInteger = curve(s.a().mInteger, s.b().mInteger);
      return;
    default:
      out = s.a();
  }
}

// Seconds as the curves other than the date curve see them: the low 32 bits of a date.
std::int32_t shortSeconds(const uValue& date) { return wrapToInt(date.mDate); }

uValue dateOfShortSeconds(std::int32_t seconds) {
  uValue value{};
  value.mDate = seconds;
  return value;
}

// Frames from 2^24 on lose their last bits here.
double throughFloat(int frame) { return double(float(frame)); }

}  // namespace

void Lerp(IZelKeyFrame* first, IZelKeyFrame* second, int frame, uValue& out) {
  onSegment(first, second, frame, out, [&](const Segment& s) {
    switch (s.valueType()) {
      case UxZel::kValueDate: {
        const Long a = shortSeconds(s.a()), b = shortSeconds(s.b());
        out.mInteger = wrapToInt(Lerp(s.mStart, s.mEnd, a, b, s.mTime));
        return;
      }
      // The second key counts from its own frame on, which is the end of this segment.
      case UxZel::kValueStep:
        out.mStep = (s.mEnd <= s.mTime ? s.b() : s.a()).mStep;
        return;
      default:
        interpolateCommonTypes(
            s, [&](auto a, auto b) { return Lerp(s.mStart, s.mEnd, a, b, s.mTime); }, out);
    }
  });
}

void Sqerp(IZelKeyFrame* first, IZelKeyFrame* second, int frame, uValue& out) {
  onSegment(first, second, frame, out, [&](const Segment& s) {
    const auto curve = [&](auto a, auto b) { return Sqerp(s.mStart, s.mEnd, a, b, s.mTime); };
    if (s.valueType() == UxZel::kValueDate) {
      const double a = shortSeconds(s.a()), b = shortSeconds(s.b());
      out.mInteger = truncToInt(curve(a, b));
    } else {
      interpolateCommonTypes(s, curve, out);
    }
  });
}

void OneMinSqerp(IZelKeyFrame* first, IZelKeyFrame* second, int frame, uValue& out) {
  onSegment(first, second, frame, out, [&](const Segment& s) {
    interpolateCommonTypes(
        s, [&](auto a, auto b) { return OneMinSqerp(s.mStart, s.mEnd, a, b, s.mTime); }, out);
  });
}

void Sinerp(IZelKeyFrame* first, IZelKeyFrame* second, int frame, uValue& out) {
  onSegment(first, second, frame, out, [&](const Segment& s) {
    interpolateCommonTypes(
        s, [&](auto a, auto b) { return Sinerp(s.mStart, s.mEnd, a, b, s.mTime); }, out);
  });
}

void Daterp(IZelKeyFrame* first, IZelKeyFrame* second, int frame, uValue& out) {
  const uValue& start = *first->GetValue();
  const int startFrame = first->GetFrame(), endFrame = second->GetFrame();
  if (first->GetValueType() != UxZel::kValueDate) {
    out = start;
  } else if (startFrame == endFrame) {
    out = dateOfShortSeconds(shortSeconds(start));
  } else {
    const XCDateInterpolation dates(throughFloat(startFrame), throughFloat(endFrame), start,
                                    *second->GetValue());
    out = dateOfShortSeconds(truncToInt(dates.valueAt(double(frame))));
  }
}

// The text of the curve is replaced: hosts know the one text. Thread cancellation is caught through
// a null reference; the undefined-behaviour sanitizer must not stop on it.
__attribute__((no_sanitize("null"))) void uxInterpolate(IZelKeyFrame* first, IZelKeyFrame* second,
                                                        int frame, uValue& out, int forcedType) {
  const int curve = forcedType >= 0 ? forcedType : first->GetInterpolationType();
  try {
    switch (curve) {
      case UxZel::kInterpolationLinear:
        return Lerp(first, second, frame, out);
      case UxZel::kInterpolationSquare:
        return Sqerp(first, second, frame, out);
      case UxZel::kInterpolationOneMinusSquare:
        return OneMinSqerp(first, second, frame, out);
      case UxZel::kInterpolationSinus:
        return Sinerp(first, second, frame, out);
      case UxZel::kInterpolationDate:
        return Daterp(first, second, frame, out);
      default:
        out = *first->GetValue();
    }
  } catch (const ForcedUnwind&) {
    throw;
  } catch (...) {
    throw std::runtime_error("XCInterpolation - uxInterpolate an error was detected");
  }
}

}  // namespace Norvel::Vexa
