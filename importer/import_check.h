#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "importer/model_import.h"

namespace vexa::importer {

/// Called with the number of poses compared so far, and that of all poses.
using ImportProgress = std::function<void(std::size_t done, std::size_t count)>;

/// How far the runtime's poses are from the importer's own.
struct ImportCheck {
  /// Largest distance between a vertex and where it should be, divided by `mSize`; infinite when a
  /// coordinate is no number.
  double mLargestDifference = 0;
  /// Where that is.
  std::size_t mTake = 0, mFrame = 0, mVertex = 0;
  /// The model's size in its own units: the diagonal of the box around its smallest pose.
  double mSize = 0;
  std::size_t mPoseCount = 0;
};

/// The bound of the largest difference for a model that is well inside the range of the runtime's
/// single-precision numbers.
constexpr double kImportTolerance = 1e-5;

/// Reads an imported animation file back through the library, onto a mesh of the given rest points,
/// and compares every vertex of every frame of every take with ImportedModel::reference.
///
/// Give it what was written and read back, not what was meant to be written. Throws
/// std::runtime_error when the number of points is another than the model's, and what the library's
/// reader throws.
ImportCheck verifyImport(const ImportedModel& model, const std::string& animationFile,
                         const std::vector<Oru::TVector3D<float>>& restPoints,
                         const ImportProgress& progress = nullptr);

}  // namespace vexa::importer
