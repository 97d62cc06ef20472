#pragma once

#include <string>

#include "refhost/Identity.h"
#include "vexa/host/IZelObjectInstance.h"

namespace vexa::refhost {

/// What an instance shows of its object's animation.
struct AnimationState final : UxZel::IZelAnimationState {
  int mCurrentFrame = 0;
  unsigned int mTakeIndex = 0;
  int mStartOffset = 0;
  int mFrameOffset = 0;

  int GetCurrentFrame() const override { return mCurrentFrame; }
  void SetCurrentFrame(int frame) override { mCurrentFrame = frame; }
  unsigned int GetTakeIndex() const override { return mTakeIndex; }
  int GetStartOffset() const override { return mStartOffset; }
  void SetStartOffset(int frames) override { mStartOffset = frames; }
  int GetFrameOffset() const override { return mFrameOffset; }
};

/// A placed instance of a definition.
struct Instance final : UxZel::IZelObjectInstance {
  std::string mName;
  Identity mIdentity;
  std::string mClassName = "ObjectInstance";
  UxZel::CZelUUID mParent;          ///< all zero: none
  std::size_t mDefinition = kNone;  ///< an index into the scene's definitions
  UxZel::CZelPoint mPosition;       ///< in the parent's space
  double mRotation = 0;             ///< about +Z, radians
  double mScale[3] = {1, 1, 1};
  UxZel::CZelVector mDirection;
  UxZel::CZelPoint mAnchor;
  mutable AnimationState mState;  // the interface hands out a writable state
  bool mPlantGroupFlag = false;
  bool mBillboardEnabled = false;

  const UxZel::IZelIdentity* GetIdentity() const override { return &mIdentity; }
  const char* GetClassName() const override { return mClassName.c_str(); }
  const UxZel::CZelUUID* GetParentUUID() const override { return &mParent; }
  void SetAnchor(const UxZel::CZelPoint* point) override { mAnchor = *point; }
  const double* GetScale() const override { return mScale; }
  const UxZel::CZelPoint* GetPosition() const override { return &mPosition; }
  void SetPosition(const UxZel::CZelPoint* position) override { mPosition = *position; }
  double GetRotation() const override { return mRotation; }
  void SetRotation(double radians) override { mRotation = radians; }
  UxZel::IZelAnimationState* GetAnimationState() const override { return &mState; }
  const UxZel::CZelVector* GetDirection() const override { return &mDirection; }
  void SetDirection(const UxZel::CZelVector* direction) override { mDirection = *direction; }
  bool GetPlantGroupFlag() const override { return mPlantGroupFlag; }
  bool GetBillboardEnabled() const override { return mBillboardEnabled; }
};

}  // namespace vexa::refhost
