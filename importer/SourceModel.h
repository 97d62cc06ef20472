#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "vexa/math/TQuaternion.h"
#include "vexa/math/TVector2D.h"
#include "vexa/math/TVector3D.h"
#include "vexa/math/ux_matrix44.h"

namespace vexa::importer {

using Matrix = Norvel::Vexa::ux_matrix44<double>;
using Vec3 = Oru::TVector3D<double>;
using Quaternion = Oru::TQuaternion<double>;

/// A model as its file has it: plain data, nothing converted yet.
///
/// Matrices act on column vectors; lengths are in the file's units, times in seconds. Indices that
/// reach the users of this header have been checked (see checkModel).
struct SourceModel {
  static constexpr std::int32_t kNone = -1;

  /// Which scale of its parent a node takes over.
  enum class Inherit : std::uint8_t {
    All,       ///< world = parent's world * local
    OwnAxes,   ///< the parent's scale acts along the node's own axes
    NoParent,  ///< the parent's scale moves the node, but does not size it
  };

  /// How an FBX node forms its local matrix, with the parts it has when no clip moves them:
  /// T Roff Rp Rpre R Rpost^-1 Rp^-1 Soff Sp S Sp^-1. Angles are in degrees.
  struct Pivots {
    Vec3 mTranslation, mRotation, mScale{1, 1, 1};
    Vec3 mPreRotation, mPostRotation;
    Vec3 mRotationOffset, mRotationPivot, mScaleOffset, mScalePivot;
    /// Which axis turns first, second, third: XYZ, XZY, YZX, YXZ, ZXY, ZYX. The pre- and
    /// post-rotation are always XYZ.
    std::int32_t mRotationOrder = 0;
  };

  struct Node {
    std::string mName;
    /// Comes before its children; kNone for the root.
    std::int32_t mParent = kNone;
    /// From this node to its parent, as stored: the pose without animation. Unused when the node
    /// has pivots.
    Matrix mLocal;
    /// Index into mPivots, or kNone.
    std::int32_t mPivots = kNone;
    Inherit mInherit = Inherit::All;
  };

  struct Influence {
    std::uint32_t mVertex = 0;
    double mWeight = 0;
  };

  struct Bone {
    std::string mName;
    /// kNone when the file has no node of that name.
    std::int32_t mNode = kNone;
    /// From the mesh to the bone, in the pose in which they were bound.
    Matrix mOffset;
    std::vector<Influence> mInfluences;
  };

  struct Mesh {
    std::string mName;
    std::vector<Oru::TVector3D<float>> mPoints;
    /// One per point, or none. The origin is the lower left corner of the picture.
    std::vector<Oru::TVector2D<float>> mUvs;
    std::vector<Oru::TVector3D<std::uint32_t>> mTriangles;
    std::vector<Bone> mBones;
    std::uint32_t mMaterial = 0;
  };

  /// A mesh hung on a node. The same mesh may hang on several.
  struct Instance {
    std::int32_t mNode = 0;
    std::int32_t mMesh = 0;
  };

  struct Material {
    std::string mName;
    /// Base colour as a screen shows it (sRGB): red, green, blue, alpha from 0 to 1.
    std::array<double, 4> mColor = {1, 1, 1, 1};
    /// False when the file states no colour.
    bool mHasColor = false;
    /// The picture of the base colour: a path relative to the model's folder, or empty.
    std::string mTexture;
    /// The bytes of that picture when it lies within the model file.
    std::string mTextureBytes;
  };

  struct VectorKey {
    double mTime = 0;
    Vec3 mValue{};
  };

  struct RotationKey {
    double mTime = 0;
    Quaternion mValue{};
  };

  /// What lies between two keys.
  enum class Interpolation : std::uint8_t {
    Linear,  ///< a straight line; for rotations the shorter arc at constant speed
    Step,    ///< the earlier key
    Cubic,   ///< a Hermite curve; rotations are made unit quaternions afterwards
  };

  template <class Key>
  struct Track {
    std::vector<Key> mKeys;
    /// For Cubic: two per key, the tangents on arrival and on departure, per second.
    std::vector<decltype(Key::mValue)> mTangents;
    Interpolation mInterpolation = Interpolation::Linear;
  };

  /// A key of a curve of single numbers.
  struct CurveKey {
    enum class Next : std::uint8_t { Linear, Cubic, Hold, Jump };  // Jump: to the next key at once

    double mTime = 0, mValue = 0;
    /// Where the control points of the Bezier curves before and after this key are, from the key.
    double mLeftTime = 0, mLeftValue = 0, mRightTime = 0, mRightValue = 0;
    Next mNext = Next::Linear;
  };

  /// The curve of one part of a node with pivots: 0 to 2 translation, 3 to 5 rotation in degrees,
  /// 6 to 8 scale.
  struct Curve {
    std::uint32_t mPart = 0;
    std::vector<CurveKey> mKeys;
  };

  /// The motion of one node. A part without keys stays as the node has it. Times rise.
  struct Channel {
    std::int32_t mNode = 0;
    /// The local matrix is translation * rotation * scale.
    Track<VectorKey> mTranslations;
    Track<RotationKey> mRotations;
    Track<VectorKey> mScales;
    /// The motion of a node with pivots.
    std::vector<Curve> mCurves;
    /// The pivots that the curves are about, when they come from another file than the node; else
    /// kNone, for the node's own.
    std::int32_t mPivots = kNone;
  };

  struct Clip {
    /// Unique within the model.
    std::string mName;
    std::vector<Channel> mChannels;
  };

  std::vector<Node> mNodes;
  std::vector<Pivots> mPivots;
  std::vector<Mesh> mMeshes;
  std::vector<Instance> mInstances;
  /// A material is its index here.
  std::vector<Material> mMaterials;
  std::vector<Clip> mClips;
  /// From the file's axes to right-handed ones with +Y up, over and above what the nodes do.
  Matrix mAxes;
  /// Metres per unit of length; 0 when the file does not say.
  double mMetresPerUnit = 0;
  /// Why there are no clips although the file is animated; empty for any other reason.
  std::string mUnreadAnimation;
  /// What was left out or repaired, one line each.
  std::vector<std::string> mNotes;
};

}  // namespace vexa::importer
