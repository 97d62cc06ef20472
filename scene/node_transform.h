#pragma once

#include "formats/glb_skin.h"
#include "vexa/math/TVector3D.h"
#include "vexa/math/ux_matrix44.h"

namespace vexa::scene {

using Matrix44 = Norvel::Vexa::ux_matrix44<double>;

/// A scale, then a rotation (a unit quaternion x, y, z, w), then a translation.
struct NodeTransform {
  double mTranslation[3] = {0, 0, 0};
  double mRotation[4] = {0, 0, 0, 1};
  double mScale[3] = {1, 1, 1};
};

/// The transform whose matrix is `matrix`; of one whose columns are not at right angles, no
/// transform has the matrix, and the result is merely near. A mirror becomes a negative scale.
NodeTransform transformOf(const Matrix44& matrix);

Matrix44 matrixOf(const NodeTransform& transform);
/// The matrix that a viewer forms, apart from its own rounding.
Matrix44 matrixOf(const formats::GlbTransform& transform);

formats::GlbTransform rounded(const NodeTransform& transform);

/// The axes, as columns, along which a symmetric matrix of rows and columns 0 to 2 stretches.
Matrix44 mainAxes(const Matrix44& symmetric);

}  // namespace vexa::scene
