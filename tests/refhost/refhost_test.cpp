#include <gtest/gtest.h>

#include "refhost/Scene.h"
#include "refhost/scenes/paths.h"
#include "refhost/scenes/properties.h"

using namespace vexa::refhost;

// Seen as the library sees it: through the interface.
TEST(List, InsertsAndRemovesAnywhereAndForgivesBadIndices) {
  Path path = scenes::straightPath(30);
  UxZel::TZelObjectMgr<UxZel::IZelBezierPoint>& points =
      *static_cast<UxZel::IZel3DPath&>(path).GetBezierPoints();
  points.InsertAt(1);
  const UxZel::CZelPoint middle{15, 5, 0};
  points.GetAt(1)->SetPassagePoint(&middle);
  points.InsertAt(99);  // appends
  ASSERT_EQ(points.GetCount(), 4);
  EXPECT_EQ(path.mPoints.mElements[1].mPassage.y, 5);
  EXPECT_EQ(points.GetAt(2)->GetPassagePoint()->x, 30);
  points.RemoveAt(0);
  points.RemoveAt(99);
  ASSERT_EQ(points.GetCount(), 3);
  EXPECT_EQ(points.GetAt(0)->GetPassagePoint()->x, 15);
  EXPECT_EQ(points.GetAt(-1), nullptr);
  EXPECT_EQ(points.GetAt(3), nullptr);
}

TEST(Path, CanLackItsListAndCanBeClosed) {
  Path path = scenes::circlePath(2);
  UxZel::IZel3DPath& seen = path;
  seen.SetPathClosed(true);
  EXPECT_TRUE(seen.IsPathClosed());
  EXPECT_NE(seen.GetBezierPoints(), nullptr);
  path.mHasPointList = false;
  EXPECT_EQ(seen.GetBezierPoints(), nullptr);
  EXPECT_EQ(static_cast<const UxZel::IZel3DPath&>(path).GetBezierPoints(), nullptr);
}

// The library keeps the address of an animated object; everything else may move with its list.
TEST(Scene, MovesWithoutMovingAnimatedObjects) {
  Scene scene;
  scene.mDefinitions.emplace_back().mAnimatedObject = std::make_unique<AnimatedObject>();
  scene.mInstances.add().mDefinition = 0;
  scene.mDefinitions[0].mAnimatedObject->mPolygons.add(triangle(0, 1, 2, 3));
  const UxZel::IZelAnimatedObject* before = scene.mDefinitions[0].GetAnimatedObject();
  const Scene moved = std::move(scene);
  EXPECT_EQ(moved.mDefinitions[0].GetAnimatedObject(), before);
  const UxZel::IZelMgr& seen = moved;
  EXPECT_EQ(seen.GetSettingsList()->GetAt(0)->GetTimeScale(), 25);
  EXPECT_EQ(seen.GetObjectInstances()->GetCount(), 1);
  const UxZel::IZelPolygon& face = moved.mDefinitions[0].mAnimatedObject->mPolygons.mElements[0];
  EXPECT_EQ(face.GetVertices()->GetAt(2)->mPointIndex, 2u);
  EXPECT_EQ(face.GetMaterialIndex(), 3u);
}
