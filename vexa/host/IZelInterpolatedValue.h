#pragma once

#include "vexa/host/CZelUUID.h"
#include "vexa/host/IZelKeyFrame.h"
#include "vexa/host/TZelObjectMgr.h"

namespace UxZel {

/// The property types that the library treats specially; any other is interpolated key to key.
enum EPropertyType : unsigned int {
  kPropertyPosition = 1,            ///< a position along a 3D path
  kPropertyPositionTarget = 38,     ///< likewise
  kPropertyPositionObject = 59,     ///< likewise
  kPropertyAnimatedFrame = 135,     ///< the frame shown of an animated object's own animation
  kPropertyAnimatedWalk = 136,      ///< an animated object that walks along a 3D path
  kPropertyAnimatedFrameRate = 140  ///< a frame number computed from a frame rate
};

/// Whether a property of that type is a position along a 3D path.
constexpr bool isPositionType(unsigned int propertyType) {
  return propertyType == kPropertyPosition || propertyType == kPropertyPositionTarget ||
         propertyType == kPropertyPositionObject;
}

/// An animated property: its keys and how they repeat. Positions of virtual operations are fixed.
class IZelInterpolatedValue {
 public:
  virtual void reserved0() {}
  virtual void reserved1() {}

  /// 2: what the property is, see EPropertyType.
  virtual unsigned int GetPropertyType() const = 0;
  virtual void reserved3() {}
  /// 4: the keys in any order; never null, owned by the host.
  virtual const TZelObjectMgr<IZelKeyFrame>* GetKeyFrames() const = 0;
  virtual void reserved5() {}
  virtual void reserved6() {}
  virtual void reserved7() {}

  /// 8: whether the key sequence repeats.
  virtual bool IsCyclic() const = 0;
  virtual void reserved9() {}
  /// 10: how many passes a cyclic sequence plays.
  virtual int GetRepeatCount() const = 0;
  virtual void reserved11() {}
  /// 12: for positions, the identifier of the 3D path to follow; never null.
  virtual const CZelUUID* GetPathUUID() const = 0;

 protected:
  ~IZelInterpolatedValue() = default;
};

}  // namespace UxZel
