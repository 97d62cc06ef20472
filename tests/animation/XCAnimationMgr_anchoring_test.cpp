#include <cmath>
#include <gtest/gtest.h>

#include "refhost/Scene.h"
#include "tests/helpers/compare.h"
#include "vexa/animation/CZelObjectInstanceTool.h"
#include "vexa/animation/XCAnimationMgr.h"

using namespace vexa::refhost;
using Norvel::Vexa::ux_matrix44;
using Norvel::Vexa::XCAnimationMgr;
using UxZel::CZelObjectInstanceTool;
using Matrix = ux_matrix44<double>;
using Point = Norvel::Vexa::ux_point3<double>;

namespace {

constexpr double kPi = 3.141592653589793;

Instance instanceAt(std::uint32_t number, UxZel::CZelPoint position, std::uint32_t parent = 0) {
  Instance instance;
  instance.mIdentity.mUUID = numberedUUID(number);
  instance.mParent = numberedUUID(parent);
  instance.mPosition = position;
  return instance;
}

void expectPoint(const Point& p, double x, double y, double z) {
  EXPECT_NEAR(p.x, x, 1e-12);
  EXPECT_NEAR(p.y, y, 1e-12);
  EXPECT_NEAR(p.z, z, 1e-12);
}

Matrix placed(const Instance& instance, float scale = 1, const Matrix& parent = {},
              const UxZel::CZelPoint* viewer = nullptr) {
  return CZelObjectInstanceTool::getObjectTransformToWorld(&instance, scale, parent, viewer,
                                                           nullptr, false, true, false, true);
}

}  // namespace

// Scaled by 2 and 3 along x and y, turned a quarter to the left, put at (10, 20, 30).
TEST(ObjectInstanceTool, ScalesThenTurnsThenMoves) {
  Instance instance = instanceAt(1, {10, 20, 30});
  instance.mScale[0] = 2;
  instance.mScale[1] = 3;
  instance.mRotation = kPi / 2;
  expectPoint(placed(instance) * Point(1, 1, 1), 7, 22, 31);
  expectPoint(placed(instance, 2) * Point(1, 1, 1), 4, 24, 32);
  instance.mDirection = {0, -1, 9};  // a direction turns +Y into it, on top
  expectPoint(placed(instance) * Point(1, 1, 1), 13, 18, 31);
  instance.mDirection = {0, 0, 9};
  expectPoint(placed(instance) * Point(1, 1, 1), 7, 22, 31);
  EXPECT_EQ(CZelObjectInstanceTool::getHeading(1, {0, -0.0, 9}), 1);
}

TEST(ObjectInstanceTool, ABillboardFacesItsViewer) {
  Instance board = instanceAt(1, {10, 0, 0});
  board.mClassName = "Billboard";
  board.mRotation = 1;
  const UxZel::CZelPoint viewer{30, 0, 5}, above{10, 0, 5};
  const Point front(0, 1, 0), unturned = placed(board) * front;
  const auto keepsItsHeading = [&](const UxZel::CZelPoint* seenFrom) {
    expectPoint(placed(board, 1, {}, seenFrom) * front, unturned.x, unturned.y, unturned.z);
  };
  keepsItsHeading(&viewer);
  board.mBillboardEnabled = true;
  keepsItsHeading(nullptr);
  keepsItsHeading(&above);
  Matrix parent;  // the viewer is a point of the world, whatever the parent
  parent.rot(0, 0, 1, 0.7);
  parent.add_trans(1, 2, 0);
  const Matrix inside = placed(board, 1, parent, &viewer);
  const Point foot = inside * Point(0, 0, 0), nose = inside * front;
  const double away = std::hypot(viewer.x - foot.x, viewer.y - foot.y);
  expectPoint(nose, foot.x + (viewer.x - foot.x) / away, foot.y + (viewer.y - foot.y) / away, 0);
  board.mClassName = "ObjectInstance";
  keepsItsHeading(&viewer);
}

TEST(Anchoring, OnlyTheFirstInstanceIsFound) {
  Scene scene;
  const XCAnimationMgr manager;
  EXPECT_EQ(manager.GetZelObjectInstance(&scene, numberedUUID(1)), nullptr);
  scene.mInstances.add(instanceAt(1, {10, 0, 0}));
  scene.mInstances.add(instanceAt(2, {0, 5, 0}, 1));
  EXPECT_EQ(manager.GetZelObjectInstance(&scene, numberedUUID(1)), scene.mInstances.GetAt(0));
  EXPECT_EQ(manager.GetZelObjectInstance(&scene, numberedUUID(2)), nullptr);
  const auto origin = [&](int instance) {
    return manager.GetLocal2WorldMatrix(&scene, scene.mInstances.GetAt(instance)) * Point(0, 0, 0);
  };
  expectPoint(origin(0), 10, 0, 0);
  expectPoint(origin(1), 0, 0, 0);  // it is not found, hence no chain at all
  scene.mInstances.mElements[0].mParent = numberedUUID(1);  // its own parent
  expectPoint(origin(0), 10, 0, 0);
}

TEST(Anchoring, AnchorsGoIntoTheParentsSpace) {
  Scene scene;
  const XCAnimationMgr manager;
  Instance house = instanceAt(1, {10, 0, 0});
  house.mScale[0] = house.mScale[1] = house.mScale[2] = 2;
  scene.mInstances.add(house);
  scene.mInstances.add(instanceAt(2, {}));
  Instance& lamp = scene.mInstances.mElements[1];
  const auto anchorFor = [&](std::uint32_t parent) {
    lamp.mParent = numberedUUID(parent);
    manager.SetAnchorPos(&scene, &lamp, {14, 2, 6});
    return Point(lamp.mAnchor.x, lamp.mAnchor.y, lamp.mAnchor.z);
  };
  expectPoint(anchorFor(0), 14, 2, 6);
  expectPoint(anchorFor(1), 2, 1, 3);
  expectPoint(anchorFor(2), 14, 2, 6);  // a parent that is not found counts as none
  scene.mInstances.mElements[0].mScale[2] = 0;
  EXPECT_EQ(vexa::tests::whatOf([&] { anchorFor(1); }),
            "ux_matrix44<Type>::invert() - Matrix cannot be inverted");
}
