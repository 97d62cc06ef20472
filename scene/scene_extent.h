#pragma once

#include <string>

#include "refhost/Scene.h"

namespace vexa::scene {

/// Lets every instance whose object has a take of that name show it. A "takeFrame" value of such an
/// instance then plays that take once between its first two keys, at the take's own rate.
/// Throws std::runtime_error when no instance can show it.
void showTake(refhost::Scene& ioScene, const std::string& take);

/// The last frame at which something new is played: the highest key of all values, without the key
/// at which a cyclic "takeFrame" shows its first frame again; 0 for a scene without values.
int lastFrame(const refhost::Scene& scene);

}  // namespace vexa::scene
