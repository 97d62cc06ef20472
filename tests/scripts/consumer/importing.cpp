// Imports a model, writes it with a scene, and plays that scene. usage: importing MODEL STEM
#include <cstdio>
#include <exception>
#include <string>

#include "importer/import_files.h"
#include "scene/ScenePlayer.h"
#include "scene/scene_file.h"

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  try {
    const std::string stem = argv[2];
    vexa::importer::writeImport(vexa::importer::importModel(argv[1]), stem);
    vexa::scene::ScenePlayer player(vexa::scene::readSceneFile(stem + ".json"));
    player.setFrame(1);
    std::printf("importing: %zu meshes\n", player.meshes().size());
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "importing: %s\n", error.what());
    return 1;
  }
}
