#include "vexa/animation/keyframe_curves.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "refhost/Key.h"
#include "tests/helpers/compare.h"

using namespace Norvel::Vexa;
using namespace vexa::refhost;
using uValue = UxZel::IZelKeyFrame::uValue;
using vexa::tests::sameBits;
using vexa::tests::whatOf;

namespace {

using Function = void (*)(UxZel::IZelKeyFrame*, UxZel::IZelKeyFrame*, int, uValue&);

struct Curve {
  const char* mName;
  Function mFunction;
};
const Curve kCurves[] = {{"Lerp", Lerp},
                         {"Sqerp", Sqerp},
                         {"OneMinSqerp", OneMinSqerp},
                         {"Sinerp", Sinerp},
                         {"Daterp", Daterp}};

/// The value between two keys, on top of bytes that tell what was written.
uValue between(Function curve, Key first, Key second, int frame) {
  uValue out;
  std::memset(&out, 0xAB, sizeof(out));
  curve(&first, &second, frame, out);
  return out;
}

uValue between(int code, Key first, Key second, int frame) {
  uValue out;
  std::memset(&out, 0xAB, sizeof(out));
  uxInterpolate(&first, &second, frame, out, code);
  return out;
}

/// A key with a pattern in all 24 bytes, so that a copy shows.
Key keyOfType(unsigned int type, int frame, unsigned char firstByte) {
  Key key = realKey(frame, 0);
  key.mValueType = type;
  for (int i = 0; i < 24; ++i) key.mValue.mBytes[i] = static_cast<unsigned char>(firstByte + i);
  return key;
}

int bytesWritten(const uValue& value) {
  int count = 24;
  while (count > 0 && value.mBytes[count - 1] == 0xAB) --count;
  return count;
}

}  // namespace

TEST(KeyCurves, KeysAtOneFrameGiveTheFirstValue) {
  for (const Curve& curve : kCurves) {
    for (unsigned int type = 0; type <= 9; ++type) {
      if (curve.mFunction == Daterp && type == UxZel::kValueDate) continue;  // narrowed, see below
      const Key first = keyOfType(type, 7, 1), second = keyOfType(type, 7, 101);
      EXPECT_TRUE(sameBits(between(curve.mFunction, first, second, 99), first.mValue))
          << curve.mName << " " << type;
    }
  }
}

// Which curve holds which type, and how many bytes a curve writes otherwise.
TEST(KeyCurves, Coverage) {
  const int kHeld = 24;
  const int kWritten[][9] = {
      // vector, colour, real, 3, integer, date, 6, step, 8
      {24, 4, 8, kHeld, 4, 4, kHeld, 4, kHeld},          // Lerp
      {24, 4, 8, kHeld, 4, 4, kHeld, kHeld, kHeld},      // Sqerp
      {24, 4, 8, kHeld, 4, kHeld, kHeld, kHeld, kHeld},  // OneMinSqerp
      {24, 4, 8, kHeld, 4, kHeld, kHeld, kHeld, kHeld},  // Sinerp
  };
  for (int c = 0; c < 4; ++c) {
    for (unsigned int type = 0; type < 9; ++type) {
      const Key first = keyOfType(type, 0, 1), second = keyOfType(type, 10, 33);
      const uValue value = between(kCurves[c].mFunction, first, second, 3);
      EXPECT_EQ(bytesWritten(value), kWritten[c][type]) << kCurves[c].mName << " " << type;
      const bool held = kWritten[c][type] == kHeld && type != UxZel::kValueVector;
      EXPECT_EQ(sameBits(value, first.mValue), held) << kCurves[c].mName << " " << type;
    }
  }
}

// A fifth of the way in and a fifth before the end tell all four curves apart.
TEST(KeyCurves, EachCodeHasItsCurve) {
  const Key first = realKey(0, 0, 9), second = realKey(10, 1);
  const double early[] = {0.2, 0.0954915, 0.2, 0.0954915};
  const double late[] = {0.8, 0.8, 0.9045085, 0.9045085};
  for (int code = 0; code < 4; ++code) {
    EXPECT_NEAR(between(code, first, second, 2).mReal, early[code], 1e-7) << code;
    EXPECT_NEAR(between(code, first, second, 8).mReal, late[code], 1e-7) << code;
  }
  for (const int code : {4, 6, 9, 1000, -1, -7}) {  // the key's own code is 9
    EXPECT_TRUE(sameBits(between(code, first, second, 2), first.mValue)) << code;
  }
  Key eased = first;
  eased.mInterpolationType = UxZel::kInterpolationSinus;
  EXPECT_EQ(between(-1, eased, second, 5).mReal, 0.5);
}

TEST(KeyCurves, VectorsAndColoursPassThroughFloat) {
  const uValue middle = between(Lerp, vectorKey(0, 0, 1, 0.1), vectorKey(10, 10, 3, 0.1), 5);
  EXPECT_EQ(middle.mVector[1], 2);
  EXPECT_EQ(middle.mVector[2], double(0.1f));
  const uValue grey = between(Lerp, colorKey(0, 0, 0, 255, 7), colorKey(10, 255, 255, 0, 7), 5);
  EXPECT_EQ(grey.mColor[0], 127);  // 127.5 truncated
  EXPECT_EQ(grey.mColor[3], 7);
}

TEST(KeyCurves, IntegersJumpExceptBySinusAndStepsAtTheSecondKey) {
  EXPECT_EQ(between(Lerp, integerKey(0, 0), integerKey(10, 10), 9).mInteger, 0);
  EXPECT_EQ(between(Sinerp, integerKey(0, 0), integerKey(2, 10), 1).mInteger, 5);
  EXPECT_EQ(between(Lerp, stepKey(0, 7), stepKey(10, 9), 9).mStep, 7u);
  EXPECT_EQ(between(Lerp, stepKey(0, 7), stepKey(10, 9), 10).mStep, 9u);
}

// Dates by other curves: the low 32 bits only.
TEST(KeyCurves, ShortDates) {
  const Key first = dateKey(0, 1000), second = dateKey(10, 2000);
  EXPECT_EQ(between(Lerp, first, second, 10).mInteger, 2000);
  EXPECT_EQ(between(Sqerp, dateKey(0, -1000), dateKey(10, -2000), 8).mInteger, -1800);
}

TEST(KeyCurves, DateCurve) {
  const uValue middle = between(Daterp, dateKey(0, -100), dateKey(10, -201), 5);
  EXPECT_EQ(middle.mDate, -150) << "truncated toward zero, sign kept";
  EXPECT_EQ(middle.mVector[2], 0);
  // Past 32 bits: held values keep the low half, computed ones become the most negative.
  constexpr std::int64_t kFar = (std::int64_t{1} << 33) + 5;
  EXPECT_EQ(between(Daterp, dateKey(3, kFar), dateKey(3, 0), 3).mDate, 5);
  EXPECT_EQ(between(Daterp, dateKey(0, kFar), dateKey(9, kFar), 3).mDate, -2147483648LL);
  Key first = dateKey(1 << 24, 0), second = dateKey((1 << 24) + 1, 1);
  uValue out;
  EXPECT_EQ(whatOf([&] { Daterp(&first, &second, 1 << 24, out); }),
            "XCInterpolation::XCInterpolation - startTime superior to endtime")
      << "the same frame as a float";
  const Key real = realKey(0, 2.5);
  EXPECT_TRUE(sameBits(between(Daterp, real, realKey(10, 3), 5), real.mValue));
}

TEST(KeyCurves, FramesOutsideTheKeys) {
  Key first = realKey(0, 0), second = realKey(10, 1);
  uValue out;
  EXPECT_EQ(whatOf([&] { Lerp(&first, &second, 11, out); }),
            "XTLinearInterpolation::valueAt - inTime is out of range");
  for (const int code : {0, 1, 2, 3, 5}) {
    first = code == 5 ? dateKey(0, 0) : realKey(0, 0);
    EXPECT_EQ(whatOf([&] { uxInterpolate(&first, &second, 11, out, code); }),
              "XCInterpolation - uxInterpolate an error was detected");
  }
}
