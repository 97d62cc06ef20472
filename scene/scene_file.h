#pragma once

#include <string>

#include "refhost/Scene.h"

namespace vexa::scene {

/// Reads a scene file: JSON with settings, paths, objects, instances and values, as
/// docs/scene_format.md describes it.
///
/// File names in it are relative to the scene file; the animation files are named, not read. Throws
/// std::runtime_error "FILE: JSON PATH: what was expected".
refhost::Scene readSceneFile(const std::string& file);

/// Reads an edited scene for ScenePlayer::edit from a text: as readSceneFile, except that the
/// meshes of the objects are not read. Throws std::runtime_error "JSON PATH: what was expected".
refhost::Scene readEditedScene(const std::string& text);

/// Reads a scene from the text of a scene file; file names in it are relative to `folder`. Throws
/// std::runtime_error "JSON PATH: what was expected".
refhost::Scene readSceneText(const std::string& text, const std::string& folder);

}  // namespace vexa::scene
