#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "formats/glb_materials_internal.h"
#include "formats/read_file.h"

namespace vexa::formats {
namespace {

constexpr std::uint64_t kLargestImage = std::uint64_t{1} << 28;

// Shades that tell materials apart whose colour nobody states.
constexpr std::array<float, 3> kShades[] = {{0.72F, 0.60F, 0.46F}, {0.45F, 0.60F, 0.72F},
                                            {0.62F, 0.70F, 0.45F}, {0.75F, 0.50F, 0.50F},
                                            {0.60F, 0.52F, 0.70F}, {0.70F, 0.70F, 0.70F}};

// Material files state colours as a screen shows them, glTF states linear light.
float toLinear(double screen) {
  const double v = std::isfinite(screen) ? std::clamp(screen, 0.0, 1.0) : 1;
  return float(v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4));
}

// The two kinds of pictures that the format takes; null for any other.
const char* imageType(const std::string& bytes) {
  constexpr std::size_t kShortest = 24;
  if (bytes.size() < kShortest) return nullptr;
  if (bytes.compare(0, 8, "\x89PNG\r\n\x1a\n") == 0) return "image/png";
  return bytes.compare(0, 3, "\xFF\xD8\xFF") == 0 ? "image/jpeg" : nullptr;
}

std::string readOrNothing(const std::string& path) {
  try {
    return readFile(path, kLargestImage);
  } catch (const std::runtime_error&) {
    return "";
  }
}

}  // namespace

std::size_t GlbMaterials::imageOf(const std::string& path) {
  const auto [place, isNew] = mImageIndices.try_emplace(path, kNoImage);
  if (!isNew) return place->second;
  std::string bytes = readOrNothing(path);
  const char* type = imageType(bytes);
  if (type == nullptr) return kNoImage;
  place->second = mImages.size();
  mImages.push_back({std::move(bytes), type, 0});
  return place->second;
}

std::size_t GlbMaterials::indexOf(const MovingMesh& mesh, unsigned int id) {
  const bool isStated = id < mesh.mSurfaces.size() && mesh.mSurfaces[id].has_value();
  const bool hasUvs = !mesh.mUvs.empty();
  // Meshes of one file share its materials. A mesh without uvs cannot show a texture, so it gets a
  // material of its own.
  const auto [place, isNew] =
      mIndices.try_emplace({isStated ? mesh.mFile : "", id, isStated && hasUvs}, mMaterials.size());
  if (!isNew) return place->second;
  Material material{"material_" + std::to_string(id), kShades[id % std::size(kShades)], kNoImage};
  if (isStated) {
    const MtlMaterial& stated = *mesh.mSurfaces[id];
    const auto& c = stated.color;
    material.mName = stated.name;
    material.mColor = {toLinear(c[0]), toLinear(c[1]), toLinear(c[2])};
    if (hasUvs && !stated.texture.empty()) material.mImage = imageOf(stated.texture);
  }
  mMaterials.push_back(std::move(material));
  return place->second;
}

void GlbMaterials::addArrays(GlbArrays& ioArrays) {
  for (Image& image : mImages) image.mArray = ioArrays.add(kPlainBytes, image.mBytes.size());
}

void GlbMaterials::writeArrays(NewFile& file, std::size_t binaryAt, const GlbArrays& arrays) const {
  for (const Image& image : mImages) {
    std::string bytes = image.mBytes;
    // The padding of the last array counts to the length of the file, so it must be there.
    bytes.resize((bytes.size() + 3) & ~std::size_t{3});
    file.writeAt(binaryAt + arrays.offsetOf(image.mArray), bytes.data(), bytes.size());
  }
}

void GlbMaterials::putJson(JsonText& json) const {
  json << R"(,"materials":[)";
  bool isFirst = true;
  for (const Material& material : mMaterials) {
    const auto& c = material.mColor;
    json.next(isFirst) << R"({"name":)" << quoted(material.mName)
                       << R"(,"doubleSided":true,"pbrMetallicRoughness":{"baseColorFactor":[)"
                       << c[0] << "," << c[1] << "," << c[2] << ",1]";
    if (material.mImage != kNoImage) {
      json << R"(,"baseColorTexture":{"index":)" << material.mImage << "}";
    }
    json << R"(,"metallicFactor":0}})";
  }
  json << "]";
  if (mImages.empty()) return;
  json << R"(,"textures":[)";
  for (std::size_t i = 0; i < mImages.size(); ++i) {
    json << (i > 0 ? "," : "") << R"({"source":)" << i << "}";
  }
  json << R"(],"images":[)";
  isFirst = true;
  for (const Image& image : mImages) {
    json.next(isFirst) << R"({"mimeType":")" << image.mType << R"(","bufferView":)" << image.mArray
                       << "}";
  }
  json << "]";
}

}  // namespace vexa::formats
