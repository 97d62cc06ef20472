#pragma once

#include <string>

#include "importer/SourceModel.h"

namespace vexa::importer {

/// Turns the textures that a model names into paths of files that are there; others are noted and
/// left out. Pictures within the model file stay as they are.
void findTextures(const std::string& modelFile, SourceModel& ioModel);

}  // namespace vexa::importer
