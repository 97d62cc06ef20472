#pragma once

#include "assets/AnimationFile.h"

namespace vexa::assets {

/// The animation file of the walker in refhost/scenes/walker.h: its three parts as nodes, rigidly
/// linked to eight vertices each, and a global matrix that undoes the exchange of Y and Z.
AnimationFile walkerAnimation();

}  // namespace vexa::assets
