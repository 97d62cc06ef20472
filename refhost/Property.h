#pragma once

#include <optional>
#include <string>

#include "refhost/Identity.h"
#include "refhost/Key.h"
#include "refhost/List.h"
#include "vexa/host/IZelInterpolatedValue.h"

namespace vexa::refhost {

/// An animated property: its keys, how they repeat, and what it belongs to.
struct Property final : UxZel::IZelInterpolatedValue {
  std::string mName;
  unsigned int mPropertyType = 0;  ///< see UxZel::EPropertyType; 0 is an ordinary property
  List<UxZel::IZelKeyFrame, Key> mKeys;
  bool mCyclic = false;
  int mRepeatCount = 0;
  UxZel::CZelUUID mPath;  ///< the path that a position or a walker follows
  /// Handed along with a request, see XIAnimationMgr::InterpolateValue: how far to look ahead on
  /// the path of a position, or how many frames the animation behind a frame number has.
  std::optional<double> mRate;
  std::size_t mInstance = kNone;  ///< the instance that it drives, an index into the scene's list

  unsigned int GetPropertyType() const override { return mPropertyType; }
  const UxZel::TZelObjectMgr<UxZel::IZelKeyFrame>* GetKeyFrames() const override { return &mKeys; }
  bool IsCyclic() const override { return mCyclic; }
  int GetRepeatCount() const override { return mRepeatCount; }
  const UxZel::CZelUUID* GetPathUUID() const override { return &mPath; }
};

}  // namespace vexa::refhost
