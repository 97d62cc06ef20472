#include "scene/mesh_names.h"

#include <algorithm>
#include <set>

namespace vexa::scene {
namespace {

bool isPlain(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
}

}  // namespace

std::vector<std::string> meshNames(const std::vector<formats::MovingMesh>& meshes) {
  std::vector<std::string> names;
  std::set<std::string> taken;
  for (const formats::MovingMesh& mesh : meshes) {
    // File systems allow 255 bytes; a number and an ending are still to come.
    std::string name = mesh.mName.substr(0, 100);
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !isPlain(c); }, '_');
    if (name.empty()) name = "mesh";
    std::string unique = name;
    // Names that differ in signs only, such as "a b" and "a?b", are the same by now.
    for (int i = 2; !taken.insert(unique).second; ++i) unique = name + "_" + std::to_string(i);
    names.push_back(unique);
  }
  return names;
}

double framesPerSecond(int timeScale, const std::vector<int>& frames) {
  const double step = frames.size() < 2 ? 1 : double(frames[1]) - frames[0];
  return timeScale / step;
}

}  // namespace vexa::scene
