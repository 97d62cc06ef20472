#pragma once

#include <cstdint>

namespace UxZel {

/// How the bytes of a key's value are read.
enum EValueType : unsigned int {
  kValueVector = 0,   ///< three doubles; interpolated in float
  kValueColor = 1,    ///< four bytes: red, green, blue, alpha
  kValueReal = 2,     ///< one double
  kValueInteger = 4,  ///< one 32-bit integer
  kValueDate = 5,     ///< seconds since 1970-01-01 00:00 UTC in the first 8 bytes, the rest zero
  kValueStep = 7,     ///< one 32-bit value that changes in a step
};                    // any other code: held, never interpolated

/// The curve from a key to the next.
enum EInterpolationType : int {
  kInterpolationLinear = 0,
  kInterpolationSquare = 1,          ///< ease-in
  kInterpolationOneMinusSquare = 2,  ///< ease-out
  kInterpolationSinus = 3,           ///< ease-in and ease-out
  kInterpolationConstant = 4,        ///< hold the earlier key's value; so does any other code
  kInterpolationDate = 5,            ///< a calendar date and time
};

/// One key of an animated property. Positions of virtual operations are fixed.
class IZelKeyFrame {
 public:
  /// The value of a key or of a property: 24 bytes, read by the value type.
  union uValue {
    double mVector[3];        ///< x, y, z
    unsigned char mColor[4];  ///< red, green, blue, alpha
    double mReal;
    std::int32_t mInteger;
    std::int64_t mDate;  ///< seconds since 1970-01-01 00:00 UTC
    std::uint32_t mStep;
    unsigned char mBytes[24];  ///< the whole value, as it is copied and compared
  };

  virtual void reserved0() {}
  virtual void reserved1() {}
  /// 2: how GetValue() is read, see EValueType.
  virtual unsigned int GetValueType() const = 0;
  virtual void reserved3() {}
  /// 4: the key's value, 24 bytes, never null; owned by the key.
  virtual const uValue* GetValue() const = 0;
  virtual void reserved5() {}
  /// 6: the key's frame; -1 marks a key without a frame, which the search for keys ignores.
  virtual int GetFrame() const = 0;
  virtual void reserved7() {}
  virtual void reserved8() {}
  virtual void reserved9() {}

  /// 10: the curve towards the next key, see EInterpolationType.
  virtual int GetInterpolationType() const = 0;

 protected:
  ~IZelKeyFrame() = default;
};

static_assert(sizeof(IZelKeyFrame::uValue) == 24, "hosts copy 24 bytes");

}  // namespace UxZel
