#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "formats/NewFile.h"
#include "formats/glb_json_internal.h"

namespace vexa::formats {

// What an array of a GLB file is made of, in the numbers that the format fixes.
struct GlbKind {
  int mComponentType;
  const char* mType;  // null for bytes without an accessor
  std::size_t mBytesEach;
  int mTarget;  // 0 for none
};
constexpr GlbKind kVertexPlaces{5126, "VEC3", 12, 34962}, kVertexUvs{5126, "VEC2", 8, 34962};
constexpr GlbKind kVertexJoints{5123, "VEC4", 8, 34962}, kVertexWeights{5126, "VEC4", 16, 34962};
constexpr GlbKind kIndexList{5125, "SCALAR", 4, 34963}, kNumbers{5126, "SCALAR", 4, 0};
constexpr GlbKind kPlaces{5126, "VEC3", 12, 0}, kRotations{5126, "VEC4", 16, 0};
constexpr GlbKind kMatrices{5126, "MAT4", 64, 0}, kPlainBytes{0, nullptr, 1, 0};

// The arrays at the start of the binary bytes of a GLB file, one after the other. Array i is buffer
// view i, and accessor i where only arrays with accessors stand before it.
class GlbArrays {
 public:
  using Bounds = std::vector<float>;  // lows, then highs; empty for none

  std::size_t add(const GlbKind& kind, std::size_t count, Bounds bounds = {});

  std::size_t size() const { return mArrays.size(); }
  std::size_t bytes() const { return mBytes; }
  std::size_t offsetOf(std::size_t array) const { return mArrays[array].mOffset; }

  // Elements of commas between them, for the lists "accessors" and "bufferViews".
  void putAccessors(JsonText& json) const;
  void putViews(JsonText& json) const;

 private:
  struct Array {
    GlbKind mKind;
    std::size_t mOffset, mCount;
    Bounds mBounds;
  };

  std::vector<Array> mArrays;
  std::size_t mBytes = 0;
};

// ,"min":[...],"max":[...]
void putBounds(JsonText& json, const float* bounds, std::size_t count);
void putView(JsonText& json, std::size_t offset, std::size_t bytes, int target);

}  // namespace vexa::formats
