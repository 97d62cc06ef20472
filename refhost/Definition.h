#pragma once

#include <memory>
#include <string>

#include "refhost/AnimatedObject.h"
#include "vexa/host/IZelZelObjectDefinition.h"

namespace vexa::refhost {

/// What instances are instances of.
struct Definition final : UxZel::IZelZelObjectDefinition {
  std::string mName;
  UxZel::sSizeRecord mSizes;
  /// Null for an object without animation. Apart from the definition, because the library keeps
  /// its address once an instance of it is registered.
  std::unique_ptr<AnimatedObject> mAnimatedObject;

  const UxZel::sSizeRecord* GetSizeRecord() const override { return &mSizes; }
  UxZel::IZelAnimatedObject* GetAnimatedObject() const override { return mAnimatedObject.get(); }
};

}  // namespace vexa::refhost
