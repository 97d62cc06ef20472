#pragma once

#include <string>

#include "refhost/List.h"
#include "vexa/host/CZelPoint.h"
#include "vexa/host/IZelAnimatedObject.h"
#include "vexa/host/IZelPolygon.h"

namespace vexa::refhost {

/// One clip of an animated object.
struct Take final : UxZel::IZelTake {
  std::string mName;
  int mFrameCount = 1;
  int mFrameRate = 25;    ///< frames per time unit
  double mElevation = 0;  ///< scene units; 0 means the definition's

  int GetFrameCount() const override { return mFrameCount; }
  int GetFrameRate() const override { return mFrameRate; }
  double GetElevation() const override { return mElevation; }
};

/// One polygon of a mesh.
struct Polygon final : UxZel::IZelPolygon {
  unsigned int mMaterialIndex = 0;
  List<UxZel::sPolygonCorner> mCorners;

  unsigned int GetMaterialIndex() const override { return mMaterialIndex; }
  const UxZel::TZelObjectMgr<UxZel::sPolygonCorner>* GetVertices() const override {
    return &mCorners;
  }
};

/// An object with an animation of its own: its takes, its mesh at rest and its animation file.
struct AnimatedObject final : UxZel::IZelAnimatedObject {
  int mAnimationKind = 0;  ///< 0: stored in mAnimationFile
  unsigned int mAnchorVertex = 0;
  mutable List<UxZel::IZelTake, Take> mTakes;  // the interface hands out a writable list

  std::string mAnimationFile;  ///< path or "file://" URL
  std::string mMeshFile;       ///< where the mesh was read from; empty for one built in code
  List<UxZel::CZelPoint> mPoints;
  List<UxZel::IZelPolygon, Polygon> mPolygons;

  int GetAnimationKind() const override { return mAnimationKind; }
  UxZel::TZelObjectMgr<UxZel::IZelTake>* GetTakes() const override { return &mTakes; }
  unsigned int GetAnchorVertex() const override { return mAnchorVertex; }
};

/// A triangle of three points, without texture coordinates.
inline Polygon triangle(unsigned int a, unsigned int b, unsigned int c, unsigned int material = 0) {
  Polygon polygon;
  polygon.mMaterialIndex = material;
  for (const unsigned int point : {a, b, c}) polygon.mCorners.add().mPointIndex = point;
  return polygon;
}

}  // namespace vexa::refhost
