#include <utility>

#include "formats/glb_arrays_internal.h"

namespace vexa::formats {

void putBounds(JsonText& json, const float* bounds, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    if (i == 0) json << R"(,"min":[)";
    if (i == count / 2) json << R"(],"max":[)";
    json << (i % (count / 2) == 0 ? "" : ",") << bounds[i];
  }
  json << "]";
}

void putView(JsonText& json, std::size_t offset, std::size_t bytes, int target) {
  json << R"({"buffer":0,"byteOffset":)" << offset << R"(,"byteLength":)" << bytes;
  if (target != 0) json << R"(,"target":)" << target;
  json << "}";
}

std::size_t GlbArrays::add(const GlbKind& kind, std::size_t count, Bounds bounds) {
  mArrays.push_back({kind, mBytes, count, std::move(bounds)});
  mBytes += (count * kind.mBytesEach + 3) & ~std::size_t{3};
  return mArrays.size() - 1;
}

void GlbArrays::putAccessors(JsonText& json) const {
  bool isFirst = true;
  for (std::size_t a = 0; a < mArrays.size(); ++a) {
    const Array& array = mArrays[a];
    if (array.mKind.mType == nullptr) continue;
    json.next(isFirst) << R"({"bufferView":)" << a << R"(,"componentType":)"
                       << array.mKind.mComponentType << R"(,"count":)" << array.mCount
                       << R"(,"type":")" << array.mKind.mType << "\"";
    if (!array.mBounds.empty()) putBounds(json, array.mBounds.data(), array.mBounds.size());
    json << "}";
  }
}

void GlbArrays::putViews(JsonText& json) const {
  bool isFirst = true;
  for (const Array& array : mArrays) {
    json.next(isFirst);
    putView(json, array.mOffset, array.mCount * array.mKind.mBytesEach, array.mKind.mTarget);
  }
}

}  // namespace vexa::formats
