#pragma once

#include <vector>

#include "importer/SourceModel.h"

namespace vexa::importer {

/// Where every node of a checked model is: its matrix to the world, root transform included.
///
/// `clip` moves the nodes to where they are at a time in seconds; null leaves the stored pose.
/// Before the first and after the last key of a part that key holds. All in double precision.
std::vector<Matrix> nodeTransforms(const SourceModel& model, const SourceModel::Clip* clip,
                                   double seconds);

/// Time of the last key of a clip in seconds, not below 0. Lengths that files state beside their
/// keys are not used: some readers get them wrong.
double clipLength(const SourceModel::Clip& clip);

}  // namespace vexa::importer
