#include "formats/mtl.h"

#include <filesystem>
#include <locale>
#include <map>
#include <sstream>
#include <stdexcept>
#include <tiny_obj_loader.h>

#include "formats/read_file.h"

namespace vexa::formats {
namespace {

void appendMaterials(const std::string& file, std::vector<MtlMaterial>& ioMaterials) {
  // Not by the loader's own opening: readFile refuses devices, pipes and huge files.
  std::istringstream stream(readFile(file));
  std::map<std::string, int> indices;
  std::vector<tinyobj::material_t> materials;
  std::string warning, error;
  tinyobj::LoadMtl(&indices, &materials, &stream, &warning, &error);
  for (const tinyobj::material_t& each : materials) {
    const auto& c = each.diffuse;
    ioMaterials.push_back(
        {each.name, {double(c[0]), double(c[1]), double(c[2])}, each.diffuse_texname});
  }
}

std::string withoutBlanksAround(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

}  // namespace

std::vector<MtlMaterial> readMaterialsOf(const std::string& objText, const std::string& folder) {
  std::vector<MtlMaterial> materials;
  std::istringstream lines(objText);
  for (std::string line; std::getline(lines, line);) {
    if (line.compare(0, 7, "mtllib ") != 0) continue;
    const std::string name = withoutBlanksAround(line.substr(7));
    try {
      appendMaterials((std::filesystem::path(folder) / name).string(), materials);
    } catch (const std::runtime_error&) {
      continue;
    }
  }
  return materials;
}

std::string formatMtl(const std::vector<MtlMaterial>& materials) {
  std::ostringstream text;
  // In another locale a number could have a comma or be grouped.
  text.imbue(std::locale::classic());
  for (const MtlMaterial& each : materials) {
    text << "newmtl " << each.name << "\nKd " << each.color[0] << ' ' << each.color[1] << ' '
         << each.color[2] << '\n';
    if (!each.texture.empty()) text << "map_Kd " << each.texture << '\n';
  }
  return text.str();
}

}  // namespace vexa::formats
