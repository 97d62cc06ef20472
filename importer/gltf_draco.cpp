#include <draco/compression/decode.h>
#include <memory>
#include <stdexcept>

#include "importer/gltf_draco_internal.h"

namespace vexa::importer {

namespace {

std::unique_ptr<draco::Mesh> decode(const std::string& bytes) {
  draco::DecoderBuffer buffer;
  buffer.Init(bytes.data(), bytes.size());
  draco::Decoder decoder;
  auto mesh = decoder.DecodeMeshFromBuffer(&buffer);
  if (!mesh.ok()) throw std::runtime_error("its mesh compression (Draco) cannot be read");
  return std::move(mesh).value();
}

}  // namespace

std::vector<std::uint32_t> dracoIndices(const std::string& bytes) {
  const auto mesh = decode(bytes);
  std::vector<std::uint32_t> indices;
  for (draco::FaceIndex face(0); face < mesh->num_faces(); ++face) {
    for (const draco::PointIndex& corner : mesh->face(face)) indices.push_back(corner.value());
  }
  return indices;
}

std::vector<double> dracoAttribute(const std::string& bytes, std::uint32_t id, int components) {
  const auto mesh = decode(bytes);
  const draco::PointAttribute* attribute = mesh->GetAttributeByUniqueId(id);
  if (attribute == nullptr) throw std::runtime_error("a compressed mesh lacks an attribute");
  std::vector<double> numbers;
  // A float holds every number that an attribute of a mesh has, and 16 is the widest element.
  float element[16] = {};
  // Points may share an entry of the attribute; glTF wants one for each.
  for (draco::PointIndex point(0); point < mesh->num_points(); ++point) {
    if (!attribute->ConvertValue<float>(attribute->mapped_index(point), std::int8_t(components),
                                        element)) {
      throw std::runtime_error("a compressed mesh has an attribute that cannot be converted");
    }
    for (int c = 0; c < components; ++c) numbers.push_back(double(element[c]));
  }
  return numbers;
}

}  // namespace vexa::importer
