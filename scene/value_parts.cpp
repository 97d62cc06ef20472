#include "scene/value_parts.h"

namespace vexa::scene {
namespace {

enum class Shape { kPosition, kVector, kColor, kInteger, kDate, kStep, kReal };

Shape shapeOf(const refhost::Property& value) {
  switch (value.mPropertyType) {
    case UxZel::kPropertyPosition:
    case UxZel::kPropertyPositionTarget:
    case UxZel::kPropertyPositionObject:
      return Shape::kPosition;
    case UxZel::kPropertyAnimatedFrame:
    case UxZel::kPropertyAnimatedWalk:
    case UxZel::kPropertyAnimatedFrameRate:
      return Shape::kInteger;
    default:
      break;
  }
  switch (value.mKeys.mElements.front().mValueType) {
    case UxZel::kValueVector:
      return Shape::kVector;
    case UxZel::kValueColor:
      return Shape::kColor;
    case UxZel::kValueInteger:
      return Shape::kInteger;
    case UxZel::kValueDate:
      return Shape::kDate;
    case UxZel::kValueStep:
      return Shape::kStep;
    default:
      return Shape::kReal;
  }
}

}  // namespace

std::vector<std::string> partNames(const refhost::Property& value) {
  switch (shapeOf(value)) {
    case Shape::kPosition:
      return {"x", "y", "z", "directionX", "directionY", "directionZ"};
    case Shape::kVector:
      return {"x", "y", "z"};
    case Shape::kColor:
      return {"r", "g", "b", "a"};
    default:
      return {""};
  }
}

std::vector<double> parts(const refhost::Property& value, const ScenePlayer::Sample& sample) {
  const UxZel::IZelKeyFrame::uValue& v = sample.mValue;
  const UxZel::CZelVector& d = sample.mDirection;
  switch (shapeOf(value)) {
    case Shape::kPosition:
      return {v.mVector[0], v.mVector[1], v.mVector[2], d.x, d.y, d.z};
    case Shape::kVector:
      return {v.mVector[0], v.mVector[1], v.mVector[2]};
    case Shape::kColor:
      return {double(v.mColor[0]), double(v.mColor[1]), double(v.mColor[2]), double(v.mColor[3])};
    case Shape::kInteger:
      return {double(v.mInteger)};
    case Shape::kDate:
      return {double(v.mDate)};
    case Shape::kStep:
      return {double(v.mStep)};
    case Shape::kReal:
      return {v.mReal};
  }
  return {};
}

bool isDate(const refhost::Property& value) { return shapeOf(value) == Shape::kDate; }
bool isColor(const refhost::Property& value) { return shapeOf(value) == Shape::kColor; }

}  // namespace vexa::scene
