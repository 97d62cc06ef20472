#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "importer/gltf_draco_internal.h"
#include "importer/gltf_numbers_internal.h"

namespace vexa::importer {

namespace {

[[noreturn]] void refuse(const std::string& reason) { throw std::runtime_error(reason); }

template <class T>
double numberAs(const unsigned char* from) {
  // Copied: a buffer view may start at any byte.
  T value;
  std::memcpy(&value, from, sizeof(T));
  return double(value);
}

// All numbers become doubles, which hold each of these types exactly.
double numberAt(const unsigned char* from, int componentType) {
  switch (componentType) {
    case TINYGLTF_COMPONENT_TYPE_BYTE:
      return numberAs<std::int8_t>(from);
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE:
      return numberAs<std::uint8_t>(from);
    case TINYGLTF_COMPONENT_TYPE_SHORT:
      return numberAs<std::int16_t>(from);
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT:
      return numberAs<std::uint16_t>(from);
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT:
      return numberAs<std::uint32_t>(from);
    case TINYGLTF_COMPONENT_TYPE_FLOAT:
      return numberAs<float>(from);
    default:
      refuse("an accessor has numbers of an unknown type");
  }
}

std::size_t sizeOf(int componentType) {
  switch (componentType) {
    case TINYGLTF_COMPONENT_TYPE_BYTE:
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE:
      return 1;
    case TINYGLTF_COMPONENT_TYPE_SHORT:
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT:
      return 2;
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT:
    case TINYGLTF_COMPONENT_TYPE_FLOAT:
      return 4;
    default:
      refuse("an accessor has numbers of an unknown type");
  }
}

// What a normalised integer is divided by.
double largest(int componentType) {
  switch (componentType) {
    case TINYGLTF_COMPONENT_TYPE_BYTE:
      return 127;
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE:
      return 255;
    case TINYGLTF_COMPONENT_TYPE_SHORT:
      return 32767;
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT:
      return 65535;
    default:
      return 1;
  }
}

int componentsOf(const tinygltf::Accessor& accessor) {
  switch (accessor.type) {
    case TINYGLTF_TYPE_SCALAR:
      return 1;
    case TINYGLTF_TYPE_VEC2:
      return 2;
    case TINYGLTF_TYPE_VEC3:
      return 3;
    case TINYGLTF_TYPE_VEC4:
      return 4;
    case TINYGLTF_TYPE_MAT4:
      return 16;
    default:
      return 0;
  }
}

void normalize(const tinygltf::Accessor& accessor, std::vector<double>& ioNumbers) {
  if (!accessor.normalized) return;
  const double factor = 1 / largest(accessor.componentType);
  // -128 of a byte is a little below -1; the format says to cut it there.
  for (double& number : ioNumbers) number = std::max(number * factor, -1.0);
}

// Numbers that an accessor without bytes of its own may have: zeros until something replaces them.
constexpr std::size_t kMostZeros = std::size_t{1} << 26;

// The compressed form of a primitive, or null.
const tinygltf::Value* dracoOf(const tinygltf::Primitive& primitive) {
  const auto found = primitive.extensions.find("KHR_draco_mesh_compression");
  if (found == primitive.extensions.end()) return nullptr;
  const tinygltf::Value& draco = found->second;
  if (!draco.Has("bufferView") || !draco.Get("bufferView").IsInt() || !draco.Has("attributes") ||
      !draco.Get("attributes").IsObject()) {
    refuse("a compressed mesh does not say where its data are");
  }
  return &draco;
}

}  // namespace

const tinygltf::Accessor& GltfNumbers::accessorAt(int index) const {
  return gltfItem(mFile.accessors, index, "accessor");
}

GltfNumbers::Bytes GltfNumbers::bytesOf(int bufferView, std::size_t offset) const {
  const auto& view = gltfItem(mFile.bufferViews, bufferView, "buffer view");
  const auto& buffer = gltfItem(mFile.buffers, view.buffer, "buffer").data;
  // Differences instead of sums: offsets from the file could overflow.
  if (view.byteOffset > buffer.size() || view.byteLength > buffer.size() - view.byteOffset ||
      offset > view.byteLength) {
    refuse("a buffer view reaches past the end of its buffer");
  }
  return {buffer.data() + view.byteOffset + offset, view.byteLength - offset};
}

std::string GltfNumbers::bytes(int bufferView) const {
  const Bytes all = bytesOf(bufferView, 0);
  return {reinterpret_cast<const char*>(all.mData), all.mSize};
}

std::vector<double> GltfNumbers::read(int index, int components) const {
  const tinygltf::Accessor& accessor = accessorAt(index);
  if (componentsOf(accessor) != components) {
    refuse("accessor " + std::to_string(index) + " has elements of another size than expected");
  }
  const auto width = std::size_t(components), size = sizeOf(accessor.componentType);
  std::vector<double> numbers;
  // The format allows it: zeros, which a sparse part usually replaces in places.
  if (accessor.bufferView < 0) {
    // No bytes of the file bound this count.
    if (accessor.count > kMostZeros / width) refuse("an accessor is too large");
    numbers.assign(accessor.count * width, 0);
  } else {
    const Bytes from = bytesOf(accessor.bufferView, accessor.byteOffset);
    const std::size_t stated = mFile.bufferViews[std::size_t(accessor.bufferView)].byteStride;
    // Elements may lie apart, with those of other accessors between them.
    const std::size_t stride = stated > 0 ? stated : width * size;
    // Only the last element counts to the end: behind it there need be no gap.
    const std::size_t last = width * size;
    if (accessor.count > 0 &&
        (from.mSize < last || accessor.count - 1 > (from.mSize - last) / stride)) {
      refuse("accessor " + std::to_string(index) + " reaches past the end of its buffer view");
    }
    numbers.reserve(accessor.count * width);
    for (std::size_t i = 0; i < accessor.count; ++i) {
      for (std::size_t c = 0; c < width; ++c) {
        numbers.push_back(numberAt(from.mData + i * stride + c * size, accessor.componentType));
      }
    }
  }
  // First all elements, then those that the sparse part replaces, then integers as fractions.
  if (accessor.sparse.isSparse) addSparse(accessor, components, numbers);
  normalize(accessor, numbers);
  return numbers;
}

void GltfNumbers::addSparse(const tinygltf::Accessor& accessor, int components,
                            std::vector<double>& ioNumbers) const {
  const auto& sparse = accessor.sparse;
  if (sparse.count < 0 || sparse.indices.byteOffset < 0 || sparse.values.byteOffset < 0) {
    refuse("a sparse accessor has negative counts");
  }
  const auto count = std::size_t(sparse.count), width = std::size_t(components);
  const std::size_t indexSize = sizeOf(sparse.indices.componentType);
  const std::size_t size = sizeOf(accessor.componentType);
  const Bytes places = bytesOf(sparse.indices.bufferView, std::size_t(sparse.indices.byteOffset));
  const Bytes values = bytesOf(sparse.values.bufferView, std::size_t(sparse.values.byteOffset));
  if (count > places.mSize / indexSize || count > values.mSize / (size * width)) {
    refuse("a sparse accessor reaches past the end of its buffer view");
  }
  for (std::size_t i = 0; i < count; ++i) {
    const double place = numberAt(places.mData + i * indexSize, sparse.indices.componentType);
    if (!(place >= 0 && place < double(accessor.count))) {
      refuse("a sparse accessor replaces an element that is not there");
    }
    for (std::size_t c = 0; c < width; ++c) {
      ioNumbers[std::size_t(place) * width + c] =
          numberAt(values.mData + (i * width + c) * size, accessor.componentType);
    }
  }
}

std::vector<double> GltfNumbers::attribute(const tinygltf::Primitive& primitive,
                                           const std::string& name, int components) const {
  const auto found = primitive.attributes.find(name);
  if (found == primitive.attributes.end()) return {};
  if (const tinygltf::Value* draco = dracoOf(primitive)) {
    // Attributes that the extension does not list are stored as usual.
    const tinygltf::Value& id = draco->Get("attributes").Get(name);
    if (id.IsInt()) {
      auto numbers = dracoAttribute(bytes(draco->Get("bufferView").GetNumberAsInt()),
                                    std::uint32_t(id.GetNumberAsInt()), components);
      normalize(accessorAt(found->second), numbers);
      return numbers;
    }
  }
  return read(found->second, components);
}

std::vector<std::uint32_t> GltfNumbers::indices(const tinygltf::Primitive& primitive,
                                                std::size_t pointCount) const {
  if (const tinygltf::Value* draco = dracoOf(primitive)) {
    return dracoIndices(bytes(draco->Get("bufferView").GetNumberAsInt()));
  }
  std::vector<std::uint32_t> result;
  // Without indices the vertices are taken in their order.
  if (primitive.indices < 0) {
    for (std::size_t i = 0; i < pointCount; ++i) result.push_back(std::uint32_t(i));
    return result;
  }
  for (const double index : read(primitive.indices, 1)) {
    if (!(index >= 0 && index < double(pointCount))) {
      refuse("a primitive has index " + std::to_string(std::int64_t(std::min(index, 1e9))) +
             " of " + std::to_string(pointCount) + " vertices");
    }
    result.push_back(std::uint32_t(index));
  }
  return result;
}

}  // namespace vexa::importer
