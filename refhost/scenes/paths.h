#pragma once

#include "refhost/Scene.h"

namespace vexa::refhost::scenes {

/// A straight path from (0, 0, 0) to (length, 0, 0), walked at constant speed in its parameter.
Path straightPath(double length);

/// A winding path of `segments` S-shaped segments: it passes (10 i, 0 or 5, 0) in the direction of
/// +X, so each segment's middle is halfway between its ends.
Path windingPath(int segments);

/// A circle about the origin in the plane z = 0, counterclockwise from (radius, 0, 0) and back to
/// it, in four segments; off a true circle by at most 0.03 % of the radius.
Path circlePath(double radius);

/// A cart on a path: property "place" (a position) runs along it in frames 0 to 100, resting for
/// frames 40 to 60 in the middle; its first key asks for easing.
Scene ride(Path path);

}  // namespace vexa::refhost::scenes
