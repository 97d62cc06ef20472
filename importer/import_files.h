#pragma once

#include <string>
#include <vector>

#include "importer/import_check.h"
#include "importer/model_import.h"

namespace vexa::importer {

/// What writeImport wrote and found.
struct ImportFiles {
  std::vector<std::string> mFiles;  ///< STEM.amo, STEM.obj, STEM.json and what else there is
  ImportCheck mCheck;
};

/// Writes an imported model as animation file, rest mesh and a scene that plays its first take in
/// place, and materials (STEM.mtl, pictures that lie within the model file) where it has colours,
/// after reading the first two back through the library and comparing every pose.
///
/// The files appear together once the comparison is done, or not at all. Throws std::runtime_error
/// "PATH: what is wrong", also when a pose is farther off than kImportTolerance.
ImportFiles writeImport(const ImportedModel& model, const std::string& stem,
                        const ImportProgress& progress = nullptr);

}  // namespace vexa::importer
