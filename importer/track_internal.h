#pragma once

#include "importer/SourceModel.h"

namespace vexa::importer {

/// The value of a track or curve that has keys, at a time in seconds.
Vec3 valueAt(const SourceModel::Track<SourceModel::VectorKey>& track, double seconds);
/// A unit quaternion.
Quaternion valueAt(const SourceModel::Track<SourceModel::RotationKey>& track, double seconds);
double valueAt(const SourceModel::Curve& curve, double seconds);

}  // namespace vexa::importer
