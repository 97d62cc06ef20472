#include <cmath>
#include <cstring>
#include <limits>

#include "c/conversion_internal.h"
#include "c/fault_internal.h"

namespace vexa::c {
namespace {

refhost::Take takeOf(const vexa_take& take) {
  require(take.frame_count >= 1, "frame_count of a take is less than 1");
  require(take.frame_rate >= 1, "frame_rate of a take is less than 1");
  requireFinite(&take.elevation, 1, "elevation of a take");
  refhost::Take result;
  result.mName = textOf(take.name, "name of a take");
  result.mFrameCount = take.frame_count;
  result.mFrameRate = take.frame_rate;
  result.mElevation = take.elevation;
  return result;
}

// A wrong index is found here, before the scene has changed.
refhost::Polygon polygonOf(const vexa_object& object, std::size_t triangle) {
  refhost::Polygon polygon;
  if (object.materials != nullptr) polygon.mMaterialIndex = object.materials[triangle];
  for (std::size_t corner = 0; corner < 3; ++corner) {
    UxZel::sPolygonCorner each;
    each.mPointIndex = object.triangles[3 * triangle + corner];
    require(each.mPointIndex < object.point_count, "a triangle names a point that does not exist");
    if (object.uvs != nullptr) {
      each.mU = object.uvs[6 * triangle + 2 * corner];
      each.mV = object.uvs[6 * triangle + 2 * corner + 1];
    }
    polygon.mCorners.add(each);
  }
  return polygon;
}

}  // namespace

const char* textOf(const char* text, const char* what) {
  if (text == nullptr) refuse(std::string(what) + " is null");
  return text;
}

void requireFinite(const double* numbers, std::size_t count, const char* what) {
  for (std::size_t i = 0; i < count; ++i) {
    if (!std::isfinite(numbers[i])) refuse(std::string(what) + " is not finite");
  }
}

void requireFinite(const float* numbers, std::size_t count, const char* what) {
  for (std::size_t i = 0; i < count; ++i) {
    if (!std::isfinite(numbers[i])) refuse(std::string(what) + " is not finite");
  }
}

// A triangle has three indices and a point three numbers, and all of them are counted in int
// further on: hence the third of the largest int.
void requireArray(const void* array, std::size_t count, const char* what) {
  if (array == nullptr && count > 0) refuse(std::string(what) + " is null");
  constexpr std::size_t kMost = std::numeric_limits<std::int32_t>::max() / 3;
  if (count > kMost) refuse(std::string(what) + ": the count is too large");
}

refhost::BezierPoint pointOf(const vexa_path_point& point) {
  requireFinite(point.position, 3, "position of a path point");
  requireFinite(point.before, 3, "before of a path point");
  requireFinite(point.after, 3, "after of a path point");
  refhost::BezierPoint result;
  result.mPassage = {point.position[0], point.position[1], point.position[2]};
  result.mBefore = {point.before[0], point.before[1], point.before[2]};
  result.mAfter = {point.after[0], point.after[1], point.after[2]};
  return result;
}

refhost::Key keyOf(const vexa_key& key) {
  require(key.frame >= -1, "frame of a key is less than -1");
  // Only the members that the type names are read: the others may hold anything.
  if (key.type == VEXA_VECTOR) requireFinite(key.value.vector, 3, "vector of a key");
  if (key.type == VEXA_REAL) requireFinite(&key.value.real, 1, "real of a key");
  refhost::Key result;
  result.mFrame = key.frame;
  result.mValueType = key.type;
  result.mInterpolationType = key.curve;
  static_assert(sizeof(result.mValue) == sizeof(key.value), "both are 24 bytes");
  std::memcpy(&result.mValue, &key.value, sizeof(key.value));
  return result;
}

refhost::Definition definitionOf(const vexa_object& object) {
  // Everything is checked before anything is built. Counts come before the arrays that they bound.
  requireArray(object.points, object.point_count, "points of an object");
  requireArray(object.triangles, object.triangle_count, "triangles of an object");
  requireArray(object.takes, object.take_count, "takes of an object");
  require(object.point_count > 0 && object.triangle_count > 0, "an object without triangles");
  require(object.anchor_vertex < object.point_count, "anchor_vertex does not exist");
  requireFinite(object.points, 3 * object.point_count, "a point of an object");
  requireFinite(&object.elevation, 1, "elevation of an object");
  refhost::Definition result;
  result.mName = textOf(object.name, "name of an object");
  result.mSizes.mElevation = object.elevation;
  // On the heap: the library knows an object by its address, and definitions move in their list.
  result.mAnimatedObject = std::make_unique<refhost::AnimatedObject>();
  refhost::AnimatedObject& animated = *result.mAnimatedObject;
  animated.mAnimationFile = textOf(object.animation_file, "animation_file of an object");
  animated.mAnchorVertex = object.anchor_vertex;
  for (std::size_t i = 0; i < object.point_count; ++i) {
    const float* p = object.points + 3 * i;
    animated.mPoints.add({double(p[0]), double(p[1]), double(p[2])});
  }
  for (std::size_t i = 0; i < object.triangle_count; ++i)
    animated.mPolygons.add(polygonOf(object, i));
  for (std::size_t i = 0; i < object.take_count; ++i) animated.mTakes.add(takeOf(object.takes[i]));
  return result;
}

refhost::Instance instanceOf(const vexa_instance& instance) {
  requireFinite(instance.position, 3, "position of an instance");
  requireFinite(instance.scale, 3, "scale of an instance");
  requireFinite(&instance.rotation, 1, "rotation of an instance");
  refhost::Instance result;
  result.mName = textOf(instance.name, "name of an instance");
  if (instance.class_name != nullptr) result.mClassName = instance.class_name;
  result.mPosition = {instance.position[0], instance.position[1], instance.position[2]};
  result.mRotation = instance.rotation;
  std::memcpy(result.mScale, instance.scale, sizeof(result.mScale));
  result.mState.mFrameOffset = instance.frame_offset;
  result.mState.mStartOffset = instance.start_offset;
  result.mBillboardEnabled = instance.billboard != 0;
  return result;
}

// Meshes are handed out without a copy: the vectors' own memory is read as plain numbers.
static_assert(sizeof(Oru::TVector3D<float>) == 3 * sizeof(float), "x, y, z and nothing else");
static_assert(sizeof(Oru::TVector3D<unsigned int>) == 3 * sizeof(std::uint32_t), "likewise");

void setPoints(const std::vector<Oru::TVector3D<float>>& points, vexa_mesh& outMesh) {
  outMesh.points = points.empty() ? nullptr : &points[0].x;
  outMesh.point_count = points.size();
}

void setTriangles(const std::vector<Oru::TVector3D<unsigned int>>& triangles, vexa_mesh& outMesh) {
  outMesh.triangles = triangles.empty() ? nullptr : &triangles[0].x;
  outMesh.triangle_count = triangles.size();
}

vexa_placement placementOf(const refhost::Instance& instance) {
  const auto &p = instance.mPosition, &a = instance.mAnchor;
  const auto& d = instance.mDirection;
  return {{p.x, p.y, p.z},
          {d.x, d.y, d.z},
          {a.x, a.y, a.z},
          instance.mRotation,
          instance.mState.mTakeIndex,
          instance.mState.mCurrentFrame};
}

}  // namespace vexa::c
