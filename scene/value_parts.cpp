#include "scene/value_parts.h"

#include <algorithm>

#include "scene/value_kind.h"

namespace vexa::scene {
namespace {

enum class Shape { kPosition, kVector, kColor, kInteger, kDate, kStep, kReal };

Shape shapeOf(const refhost::Property& value) {
  if (isPosition(value)) return Shape::kPosition;
  if (showsFrames(value)) return Shape::kInteger;
  // checkValue refuses a value without keys.
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

std::size_t partCount(const refhost::Property& value) {
  switch (shapeOf(value)) {
    case Shape::kPosition:
      return 6;
    case Shape::kVector:
      return 3;
    case Shape::kColor:
      return 4;
    default:
      return 1;
  }
}

void writeParts(const refhost::Property& value, const ScenePlayer::Sample& sample,
                double* outNumbers) {
  const UxZel::IZelKeyFrame::uValue& v = sample.mValue;
  const UxZel::CZelVector& d = sample.mDirection;
  // The manager answers with a union; the shape tells which member it has set.
  const Shape shape = shapeOf(value);
  switch (shape) {
    case Shape::kPosition:
    case Shape::kVector:
      std::copy_n(v.mVector, 3, outNumbers);
      if (shape == Shape::kVector) return;
      outNumbers[3] = d.x;
      outNumbers[4] = d.y;
      outNumbers[5] = d.z;
      return;
    case Shape::kColor:
      std::copy_n(v.mColor, 4, outNumbers);
      return;
    case Shape::kInteger:
      *outNumbers = double(v.mInteger);
      return;
    case Shape::kDate:
      *outNumbers = double(v.mDate);
      return;
    case Shape::kStep:
      *outNumbers = double(v.mStep);
      return;
    case Shape::kReal:
      *outNumbers = v.mReal;
      return;
  }
}

std::vector<double> parts(const refhost::Property& value, const ScenePlayer::Sample& sample) {
  // writeParts fills memory of others, too: a column of an array in Python.
  std::vector<double> numbers(partCount(value));
  writeParts(value, sample, numbers.data());
  return numbers;
}

bool isDate(const refhost::Property& value) { return shapeOf(value) == Shape::kDate; }
bool isColor(const refhost::Property& value) { return shapeOf(value) == Shape::kColor; }

}  // namespace vexa::scene
