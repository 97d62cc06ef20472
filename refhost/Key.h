#pragma once

#include <cstdint>

#include "vexa/host/IZelKeyFrame.h"

namespace vexa::refhost {

/// One key of a property.
struct Key final : UxZel::IZelKeyFrame {
  int mFrame = 0;
  unsigned int mValueType = UxZel::kValueReal;
  uValue mValue{};
  int mInterpolationType = UxZel::kInterpolationLinear;

  unsigned int GetValueType() const override { return mValueType; }
  const uValue* GetValue() const override { return &mValue; }
  int GetFrame() const override { return mFrame; }
  int GetInterpolationType() const override { return mInterpolationType; }
};

/// A key of each value type; `curve` is an UxZel::EInterpolationType.
Key realKey(int frame, double value, int curve = UxZel::kInterpolationLinear);
Key vectorKey(int frame, double x, double y, double z, int curve = UxZel::kInterpolationLinear);
Key colorKey(int frame, unsigned char red, unsigned char green, unsigned char blue,
             unsigned char alpha, int curve = UxZel::kInterpolationLinear);
Key integerKey(int frame, std::int32_t value, int curve = UxZel::kInterpolationLinear);
Key stepKey(int frame, std::uint32_t value, int curve = UxZel::kInterpolationLinear);
/// `seconds` since 1970-01-01 00:00 UTC.
Key dateKey(int frame, std::int64_t seconds, int curve = UxZel::kInterpolationDate);

}  // namespace vexa::refhost
