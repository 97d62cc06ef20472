#include "scene/mesh_materials.h"

#include <filesystem>
#include <map>

#include "formats/mesh_surfaces.h"
#include "plot/Picture.h"

namespace vexa::scene {
namespace {

using Color = Oru::TVector3D<float>;

// The materials of one mesh file with their textures.
class Palette {
 public:
  explicit Palette(const std::string& objFile) : mMaterials(formats::materialsOfFile(objFile)) {
    const std::filesystem::path folder = std::filesystem::path(objFile).parent_path();
    for (const auto& material : mMaterials) {
      const bool isPictured = material && !material->texture.empty();
      mTextures.push_back(isPictured ? plot::Picture::read((folder / material->texture).string())
                                     : plot::Picture());
    }
  }

  bool isEmpty() const { return mMaterials.empty(); }

  Color at(unsigned int material, double u, double v) const {
    // A material without a colour is a light grey, in which shading can still be seen.
    constexpr Color kUnstated{0.7F, 0.7F, 0.7F};
    if (material >= mMaterials.size() || !mMaterials[material]) return kUnstated;
    const auto& color = mMaterials[material]->color;
    const plot::Picture& texture = mTextures[material];
    const plot::Ink ink = texture.isEmpty() ? plot::Ink{1, 1, 1} : texture.at(u, v);
    return {float(color[0] * ink.r), float(color[1] * ink.g), float(color[2] * ink.b)};
  }

 private:
  formats::MaterialsById mMaterials;
  std::vector<plot::Picture> mTextures;
};

}  // namespace

void addColors(std::vector<formats::MovingMesh>& ioMeshes) {
  // Instances of one object share their file, whose textures are decoded once.
  std::map<std::string, Palette> palettes;
  for (formats::MovingMesh& mesh : ioMeshes) {
    if (mesh.mFile.empty()) continue;
    const Palette& palette = palettes.try_emplace(mesh.mFile, mesh.mFile).first->second;
    if (palette.isEmpty()) continue;
    for (std::size_t t = 0; t < mesh.mTriangles.size(); ++t) {
      // A triangle of a picture covers few pixels, so one colour is enough.
      double u = 0, v = 0;
      if (!mesh.mUvs.empty()) {
        const auto& uv = mesh.mUvs[t];
        u = (double(uv.x.x) + double(uv.y.x) + double(uv.z.x)) / 3;
        v = (double(uv.x.y) + double(uv.y.y) + double(uv.z.y)) / 3;
      }
      mesh.mColors.push_back(palette.at(mesh.mMaterials[t], u, v));
    }
  }
}

}  // namespace vexa::scene
