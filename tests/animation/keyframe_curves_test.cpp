#include "vexa/animation/keyframe_curves.h"

#include <gtest/gtest.h>

#include "refhost/Key.h"
#include "tests/helpers/compare.h"

using namespace Norvel::Vexa;
using namespace vexa::refhost;
using uValue = UxZel::IZelKeyFrame::uValue;
using vexa::tests::whatOf;

TEST(KeyCurves, VectorsAndColoursPassThroughFloat) {
  Key first = vectorKey(0, 0, 1, 0.1), second = vectorKey(10, 10, 3, 0.1);
  uValue out{};
  Lerp(&first, &second, 5, out);
  EXPECT_EQ(out.mVector[1], 2);
  EXPECT_EQ(out.mVector[2], double(0.1f));
  first = colorKey(0, 0, 0, 255, 7), second = colorKey(10, 255, 255, 0, 7);
  Lerp(&first, &second, 5, out);
  EXPECT_EQ(out.mColor[0], 127) << "127.5 truncated";
  EXPECT_EQ(out.mColor[3], 7);
}

/// A key whose value cannot be had.
struct BadKey final : UxZel::IZelKeyFrame {
  unsigned int GetValueType() const override { throw 42; }
  const uValue* GetValue() const override { throw 42; }
  int GetFrame() const override { return 0; }
  int GetInterpolationType() const override { return UxZel::kInterpolationLinear; }
};

TEST(KeyCurves, WhateverIsThrownBecomesOneText) {
  const char* const text = "XCInterpolation - uxInterpolate an error was detected";
  BadKey bad;
  Key first = realKey(0, 0), second = realKey(10, 1);
  uValue out;
  EXPECT_EQ(whatOf([&] { uxInterpolate(&bad, &second, 5, out, -1); }), text);
  EXPECT_EQ(whatOf([&] { uxInterpolate(&first, &second, 11, out, -1); }), text);
}
