#pragma once

#include "refhost/Scene.h"

namespace vexa::refhost::scenes {

/// A lamp that is switched on, frames 0 to 100, one property of each kind of value:
///
///   brightness  real     0 at 0, 1 at 100, sinus
///   colour      colour   black at 0, white at 100, linear
///   place       vector   (0, 0, 0) at 0, (10, 20, 30) at 100, linear
///   switches    integer  0 at 0, 3 at 100, sinus
///   mode        step     7 at 0, 9 at 50, linear
///   pulse       real     0 at 0, 1 at 10, linear; cyclic, three passes
Scene lamp();

/// Noon at the first frame, three weeks later at frame 210: the property "date", by the date curve.
///
///   date        2024-03-01 12:00 UTC at 0, 2024-03-22 18:00 UTC at 210
Scene calendar();

/// A real property of `count` keys, one per 10 frames from 0 on, whose values are their numbers.
Property manyKeys(int count);

}  // namespace vexa::refhost::scenes
