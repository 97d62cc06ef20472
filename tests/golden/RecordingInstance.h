#pragma once

#include <string>

#include "refhost/Instance.h"

namespace vexa::tests {

/// An instance of a scene, and its state, that write down what is set on them.
struct RecordingInstance final : UxZel::IZelObjectInstance, UxZel::IZelAnimationState {
  refhost::Instance& mTo;
  std::string mCalls;

  explicit RecordingInstance(refhost::Instance& to) : mTo(to) {}

  const UxZel::IZelIdentity* GetIdentity() const override { return &mTo.mIdentity; }
  const char* GetClassName() const override { return mTo.GetClassName(); }
  const UxZel::CZelUUID* GetParentUUID() const override { return &mTo.mParent; }
  const double* GetScale() const override { return mTo.mScale; }
  const UxZel::CZelPoint* GetPosition() const override { return &mTo.mPosition; }
  double GetRotation() const override { return mTo.mRotation; }
  UxZel::IZelAnimationState* GetAnimationState() const override {
    return const_cast<RecordingInstance*>(this);
  }
  const UxZel::CZelVector* GetDirection() const override { return &mTo.mDirection; }
  bool GetPlantGroupFlag() const override { return mTo.mPlantGroupFlag; }
  bool GetBillboardEnabled() const override { return mTo.mBillboardEnabled; }
  int GetCurrentFrame() const override { return mTo.mState.mCurrentFrame; }
  unsigned int GetTakeIndex() const override { return mTo.mState.mTakeIndex; }
  int GetStartOffset() const override { return mTo.mState.mStartOffset; }
  int GetFrameOffset() const override { return mTo.mState.mFrameOffset; }

  void SetAnchor(const UxZel::CZelPoint* point) override {
    mCalls += "anchor ";
    mTo.mAnchor = *point;
  }
  void SetPosition(const UxZel::CZelPoint* position) override {
    mCalls += "position ";
    mTo.mPosition = *position;
  }
  void SetRotation(double radians) override {
    mCalls += "rotation ";
    mTo.mRotation = radians;
  }
  void SetDirection(const UxZel::CZelVector* direction) override {
    mCalls += "direction ";
    mTo.mDirection = *direction;
  }
  void SetCurrentFrame(int frame) override {
    mCalls += "frame ";
    mTo.mState.mCurrentFrame = frame;
  }
  void SetStartOffset(int frames) override {
    mCalls += "offset ";
    mTo.mState.mStartOffset = frames;
  }
};

}  // namespace vexa::tests
