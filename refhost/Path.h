#pragma once

#include <string>

#include "refhost/Identity.h"
#include "refhost/List.h"
#include "vexa/host/IZel3DPath.h"

namespace vexa::refhost {

/// One point of a path with its two control points, stored as offsets from it.
struct BezierPoint final : UxZel::IZelBezierPoint {
  UxZel::CZelPoint mPassage;
  UxZel::CZelVector mBefore;  ///< where the curve arrives from, relative to the passage point
  UxZel::CZelVector mAfter;   ///< where it leaves towards, likewise
  bool mTangentLocked = false;

  const UxZel::CZelPoint* GetPassagePoint() const override { return &mPassage; }
  void SetPassagePoint(const UxZel::CZelPoint* point) override { mPassage = *point; }
  const UxZel::CZelVector* GetBeforeControlOffset() const override { return &mBefore; }
  void SetBeforeControlOffset(const UxZel::CZelVector* offset) override { mBefore = *offset; }
  const UxZel::CZelVector* GetAfterControlOffset() const override { return &mAfter; }
  void SetAfterControlOffset(const UxZel::CZelVector* offset) override { mAfter = *offset; }
  bool GetTangentLocked() const override { return mTangentLocked; }
  void SetTangentLocked(bool locked) override { mTangentLocked = locked; }
};

/// A point that a path passes smoothly, with the tangent `after` on both sides.
inline BezierPoint smoothPoint(const UxZel::CZelPoint& passage, const UxZel::CZelVector& after) {
  BezierPoint point;
  point.mPassage = passage;
  point.mBefore = {-after.x, -after.y, -after.z};
  point.mAfter = after;
  point.mTangentLocked = true;
  return point;
}

/// A 3D path of the scene.
struct Path final : UxZel::IZel3DPath {
  std::string mName;
  Identity mIdentity;
  bool mClosed = false;
  bool mHasPointList = true;  ///< false: the path hands out no list at all
  List<UxZel::IZelBezierPoint, BezierPoint> mPoints;

  const UxZel::IZelIdentity* GetIdentity() const override { return &mIdentity; }
  bool IsPathClosed() const override { return mClosed; }
  void SetPathClosed(bool closed) override { mClosed = closed; }
  const UxZel::TZelObjectMgr<UxZel::IZelBezierPoint>* GetBezierPoints() const override {
    return mHasPointList ? &mPoints : nullptr;
  }
  UxZel::TZelObjectMgr<UxZel::IZelBezierPoint>* GetBezierPoints() override {
    return mHasPointList ? &mPoints : nullptr;
  }
};

}  // namespace vexa::refhost
