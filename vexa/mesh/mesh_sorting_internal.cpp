#include "vexa/mesh/mesh_sorting_internal.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <numeric>

namespace UXS {

namespace {

// The positions of the keys in ascending order, equal ones as they were: a radix sort, from the
// lowest byte to the highest that any key has. Material numbers are small as a rule, so one pass is
// enough. Each pass counts the values of a byte, sums the counts to where each value starts, and
// moves the positions there.
std::vector<unsigned int> ascendingOrder(const std::vector<unsigned int>& keys) {
  std::vector<unsigned int> order(keys.size()), next(keys.size());
  std::iota(order.begin(), order.end(), 0U);
  const unsigned int highest = *std::max_element(keys.begin(), keys.end());
  for (unsigned int shift = 0; shift < 32 && highest >> shift != 0; shift += 8) {
    std::array<std::size_t, 257> starts{};
    const auto digit = [&](unsigned int i) { return keys[i] >> shift & 0xFF; };
    for (const unsigned int i : order) ++starts[digit(i) + 1];
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    for (const unsigned int i : order) next[starts[digit(i)]++] = i;
    order.swap(next);
  }
  return order;
}

// Entry k is the one that was at order[k].
template <class T>
std::vector<T> reordered(const std::vector<T>& values, const std::vector<unsigned int>& order) {
  std::vector<T> sorted;
  if (values.empty()) return sorted;
  sorted.reserve(order.size());
  for (const unsigned int i : order) sorted.push_back(values[i]);
  return sorted;
}

// Zeros of either sign; a NaN is not zero. An empty array counts as all zero.
template <class T>
bool isAllZero(const std::vector<T>& values) {
  return std::all_of(values.begin(), values.end(), [](const T& value) { return value == T(); });
}

}  // namespace

TriangleArrays fittedTriangles(const Mesh::Impl& mesh) {
  const std::size_t count = mesh.mTriangles.size();
  TriangleArrays arrays{mesh.mTriangles, mesh.mMaterialIDs, mesh.mUVCoords, false, {}};
  arrays.mMaterialIDs.resize(count);
  if (!arrays.mUVCoords.empty()) arrays.mUVCoords.resize(count);
  if (!mesh.mSmoothNormals.empty() && mesh.mSmoothNormals.size() != count) {
    arrays.mHasNewNormals = true;
    arrays.mSmoothNormals = mesh.mSmoothNormals;
    arrays.mSmoothNormals.resize(count);
  }
  return arrays;
}

TriangleArrays trimmedTriangles(const Mesh::Impl& mesh) {
  TriangleArrays arrays = fittedTriangles(mesh);
  if (isAllZero(arrays.mUVCoords.get())) arrays.mUVCoords.clear();
  if (isAllZero(arrays.mHasNewNormals ? arrays.mSmoothNormals : mesh.mSmoothNormals)) {
    arrays.mHasNewNormals = true;
    arrays.mSmoothNormals.clear();
  }
  return arrays;
}

TriangleArrays sortedTriangles(const Mesh::Impl& mesh) {
  TriangleArrays arrays = trimmedTriangles(mesh);
  const std::vector<unsigned int>& materials = arrays.mMaterialIDs;
  if (std::is_sorted(materials.begin(), materials.end())) return arrays;
  const std::vector<unsigned int> order = ascendingOrder(materials);
  const auto& normals = arrays.mHasNewNormals ? arrays.mSmoothNormals : mesh.mSmoothNormals;
  arrays.mSmoothNormals = reordered(normals, order);
  arrays.mHasNewNormals = true;
  arrays.mTriangles = reordered(arrays.mTriangles.get(), order);
  arrays.mUVCoords = reordered(arrays.mUVCoords.get(), order);
  arrays.mMaterialIDs = reordered(materials, order);  // last: `materials` is this array
  return arrays;
}

std::vector<unsigned int> findSections(const std::vector<unsigned int>& materials) {
  std::vector<unsigned int> sections;
  sections.reserve(200);  // Required behaviour: at least so many
  for (std::size_t i = 0; i < materials.size(); ++i) {
    if (i == 0 || materials[i] != materials[i - 1]) sections.push_back(unsigned(i));
  }
  return sections;
}

}  // namespace UXS
