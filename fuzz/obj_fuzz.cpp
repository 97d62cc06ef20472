// A mesh file: what is read becomes a mesh, and its text reads back as the same model.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "formats/finite.h"
#include "formats/obj.h"
#include "fuzz/scratch_folder.h"
#include "vexa/mesh/MeshEditor.h"

using vexa::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  vexa::formats::ObjModel model;
  try {
    model = vexa::formats::parseObj(std::string(reinterpret_cast<const char*>(data), size), "f");
  } catch (const std::runtime_error&) {
    return 0;
  }
  const std::string text = vexa::formats::formatObj(model, "f.mtl");
  bool isFinite = true;
  for (const auto& point : model.points) isFinite = isFinite && vexa::formats::isFinite(point);
  try {
    require(vexa::formats::formatObj(vexa::formats::parseObj(text, "f"), "f.mtl") == text);
  } catch (const std::runtime_error&) {
    require(!isFinite);
  }
  UXS::Mesh mesh;
  {
    UXS::Mesh::Editor editor(mesh, false);
    vexa::formats::addTo(editor, model);
  }
  require(mesh.GetVerticesArray().size() == model.points.size());
  require(vexa::formats::objOf(mesh).triangles.size() == model.triangles.size());
  return 0;
}
