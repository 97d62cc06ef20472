#pragma once

#include <string>

#include "scene/ScenePlayer.h"

namespace vexa::scene {

/// All that a page needs to play the scene without any other file, as JSON that can stand in a
/// script element:
///
///   {"name": FILE NAME, "scene": DOCUMENT, "first": FRAME, "last": FRAME, "extent": CORNERS,
///    "results": RESULTS, "files": {NAME IN THE SCENE: BASE64}, "materials": {MESH NAME: [{"color",
///    "texture"}]}}
///
/// CORNERS are two opposite ones of the box around the meshes over the frames, [] without meshes.
/// RESULTS are those of ResultRecorder for the frames, or for every n-th where there are very many
/// numbers. Throws std::runtime_error that names the file which cannot be read.
std::string pageData(const std::string& sceneFile, ScenePlayer& player, int first, int last);

}  // namespace vexa::scene
