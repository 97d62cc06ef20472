#pragma once

#include "importer/SourceModel.h"

namespace vexa::importer {

/// A local matrix as its parts: translation * rotation * scale.
struct Placing {
  Vec3 mTranslation;
  Quaternion mRotation;
  Vec3 mScale;
};

/// The matrix of such parts.
Matrix matrixOf(const Placing& placing);

/// Where a node with pivots is relative to its parent. `channel` may be null.
Placing placingOf(const SourceModel::Pivots& pivots, const SourceModel::Channel* channel,
                  double seconds);

}  // namespace vexa::importer
