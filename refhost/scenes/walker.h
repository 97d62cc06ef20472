#pragma once

#include "refhost/Scene.h"

namespace vexa::refhost::scenes {

/// A walker of three boxes, 1.5 units tall, that strides along its own +X: a body, carried evenly
/// forward, and two feet that rest in turn while the other swings ahead.
///
/// One take of 25 frames goes from a first step of the left foot to the next, 1.5 units on, so each
/// further cycle begins where the last one ended. Vertices 0 to 7 belong to the body, 8 to 15 to
/// the left foot, 16 to 23 to the right. The anchor is vertex 0, a corner of the body's lower side.
inline constexpr int kWalkerFrames = 25;
inline constexpr double kWalkerStride = 1.5;

/// How far the parts of the walker have come since the take's first frame, scene units.
struct WalkerFrame {
  double mBody = 0;
  double mLeftFoot = 0, mLeftLift = 0;    ///< along +X and +Z
  double mRightFoot = 0, mRightLift = 0;  ///< likewise
};
WalkerFrame walkerFrame(int frame);

/// Instances of one walker, numbered from 101, that all walk along a path, one host frame per take
/// frame, from frame 0 to `lastFrame`: one property "walk K" for each.
Scene walk(Path path, int count, int lastFrame);

/// Instances of one walker in a row along +Y, 2 units apart, that show their take: instance K is
/// 5 K host frames ahead. One property "show K" for each, cyclic, over frames 0 to 25.
Scene parade(int count);

}  // namespace vexa::refhost::scenes
