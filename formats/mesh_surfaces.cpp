#include "formats/mesh_surfaces.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <stdexcept>

#include "formats/obj.h"
#include "formats/read_file.h"

namespace vexa::formats {
namespace {

// Files may state any number of materials; nobody can tell more apart.
constexpr unsigned int kMostMaterials = 1000;

}  // namespace

MaterialsById meshMaterials(const std::string& objText, const std::string& objFile) {
  const std::string folder = std::filesystem::path(objFile).parent_path().string();
  const auto known = readMaterialsOf(objText, folder);
  MaterialsById materials;
  if (known.empty()) return materials;
  const ObjModel model = parseObj(objText, objFile);
  unsigned int count = 0;
  for (const auto& triangle : model.triangles) count = std::max(count, triangle.material + 1);
  for (unsigned int id = 0; id < std::min(count, kMostMaterials); ++id) {
    const std::string name = id < model.materials.size() ? model.materials[id] : std::to_string(id);
    // An MTL file may state a name twice; the first one counts.
    const auto found = std::find_if(known.begin(), known.end(),
                                    [&name](const auto& each) { return each.name == name; });
    if (found == known.end()) {
      materials.emplace_back();
    } else {
      materials.emplace_back(*found);
    }
  }
  return materials;
}

// Colours are decoration: a file that is gone or damaged by now gives none.
MaterialsById materialsOfFile(const std::string& objFile) {
  try {
    return meshMaterials(readFile(objFile), objFile);
  } catch (const std::runtime_error&) {
    return {};
  }
}

void addSurfaces(std::vector<MovingMesh>& ioMeshes) {
  std::map<std::string, MaterialsById> known;
  for (MovingMesh& mesh : ioMeshes) {
    if (mesh.mFile.empty()) continue;
    const auto [place, isNew] = known.try_emplace(mesh.mFile);
    if (isNew) {
      place->second = materialsOfFile(mesh.mFile);
      const std::filesystem::path folder = std::filesystem::path(mesh.mFile).parent_path();
      for (auto& material : place->second) {
        if (!material || material->texture.empty()) continue;
        material->texture = (folder / material->texture).string();
      }
    }
    mesh.mSurfaces = place->second;
  }
}

}  // namespace vexa::formats
