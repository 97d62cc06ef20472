#pragma once

#include "refhost/Property.h"

/// What the kind of a value says about it. Every source of scene/ asks here, so that a new kind
/// is added in one place.
namespace vexa::scene {

/// Whether its samples are places along a path, each with a direction.
inline bool isPosition(const refhost::Property& value) {
  return UxZel::isPositionType(value.mPropertyType);
}

/// Whether it chooses the frame that an instance shows; a walk also places the instance.
inline bool drivesAnInstance(const refhost::Property& value) {
  return value.mPropertyType == UxZel::kPropertyAnimatedFrame ||
         value.mPropertyType == UxZel::kPropertyAnimatedWalk;
}

/// Whether its samples are frame numbers of an animation.
inline bool showsFrames(const refhost::Property& value) {
  return drivesAnInstance(value) || value.mPropertyType == UxZel::kPropertyAnimatedFrameRate;
}

/// Whether it needs a path.
inline bool followsPath(const refhost::Property& value) {
  return isPosition(value) || value.mPropertyType == UxZel::kPropertyAnimatedWalk;
}

}  // namespace vexa::scene
