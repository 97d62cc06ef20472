#include "refhost/Key.h"

namespace vexa::refhost {

namespace {

// All 24 bytes of the value are 0, whichever of them a type uses: values are compared byte by byte.
Key emptyKey(int frame, unsigned int valueType, int curve) {
  Key key;
  key.mFrame = frame;
  key.mValueType = valueType;
  key.mInterpolationType = curve;
  return key;
}

}  // namespace

Key realKey(int frame, double value, int curve) {
  Key key = emptyKey(frame, UxZel::kValueReal, curve);
  key.mValue.mReal = value;
  return key;
}

Key vectorKey(int frame, double x, double y, double z, int curve) {
  Key key = emptyKey(frame, UxZel::kValueVector, curve);
  key.mValue = {{x, y, z}};
  return key;
}

Key colorKey(int frame, unsigned char red, unsigned char green, unsigned char blue,
             unsigned char alpha, int curve) {
  Key key = emptyKey(frame, UxZel::kValueColor, curve);
  const unsigned char color[4] = {red, green, blue, alpha};
  for (int i = 0; i < 4; ++i) key.mValue.mBytes[i] = color[i];
  return key;
}

Key integerKey(int frame, std::int32_t value, int curve) {
  Key key = emptyKey(frame, UxZel::kValueInteger, curve);
  key.mValue.mInteger = value;
  return key;
}

Key stepKey(int frame, std::uint32_t value, int curve) {
  Key key = emptyKey(frame, UxZel::kValueStep, curve);
  key.mValue.mStep = value;
  return key;
}

Key dateKey(int frame, std::int64_t seconds, int curve) {
  Key key = emptyKey(frame, UxZel::kValueDate, curve);
  key.mValue.mDate = seconds;
  return key;
}

}  // namespace vexa::refhost
