#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "formats/tinygltf_internal.h"

namespace vexa::importer {

/// The numbers behind the accessors of a glTF file. Nothing in the file is trusted: each function
/// throws std::runtime_error for what does not fit.
class GltfNumbers {
 public:
  explicit GltfNumbers(const tinygltf::Model& file) : mFile(file) {}

  /// All elements of an accessor one after the other, normalised integers as fractions.
  std::vector<double> read(int index, int components) const;
  /// The indices of a primitive, also of a compressed one; 0, 1, 2, ... where it has none.
  std::vector<std::uint32_t> indices(const tinygltf::Primitive& primitive,
                                     std::size_t pointCount) const;
  /// The named attribute of a primitive, also of a compressed one; empty when it has none.
  std::vector<double> attribute(const tinygltf::Primitive& primitive, const std::string& name,
                                int components) const;
  /// The bytes of a buffer view.
  std::string bytes(int bufferView) const;

 private:
  struct Bytes {
    const unsigned char* mData = nullptr;
    std::size_t mSize = 0;
  };

  const tinygltf::Accessor& accessorAt(int index) const;
  Bytes bytesOf(int bufferView, std::size_t offset) const;
  void addSparse(const tinygltf::Accessor& accessor, int components,
                 std::vector<double>& ioNumbers) const;

  const tinygltf::Model& mFile;
};

/// The element of a list, or std::runtime_error "it has no WHAT INDEX".
template <class Item>
const Item& gltfItem(const std::vector<Item>& items, int index, const char* what) {
  if (index < 0 || std::size_t(index) >= items.size()) {
    throw std::runtime_error("it has no " + std::string(what) + " " + std::to_string(index));
  }
  return items[std::size_t(index)];
}

}  // namespace vexa::importer
