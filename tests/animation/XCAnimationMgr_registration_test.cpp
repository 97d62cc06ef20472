#include <gtest/gtest.h>

#include "refhost/scenes/paths.h"
#include "refhost/scenes/walker.h"
#include "scene/fixtures/walker_animation.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/managed.h"
#include "tests/helpers/registered.h"
#include "tests/helpers/scratch_directory.h"
#include "vexa/animation/XCAnimationMgr.h"
#include "vexa/mesh/Mesh.h"

using namespace vexa::refhost;
using vexa::tests::makeManager;
using vexa::tests::Manager;
using vexa::tests::registerInstance;
using vexa::tests::whatOf;

namespace {

// The records are private: their meshes at rest are what an address of a vertex is found in.
auto recordsOf();
template <auto Member>
struct Records {
  friend auto recordsOf() { return Member; }
};
template struct Records<&Norvel::Vexa::XCAnimationMgr::mInstancesByUUID>;

class Registration : public testing::Test {
 protected:
  Registration() {
    std::filesystem::create_directory(mScratch / "files");
    writeAnimationFile(vexa::scene::walkerAnimation(), file());
  }
  std::string file() const { return mScratch / "files/walker.amo"; }
  AnimatedObject& walker() { return *mScene.mDefinitions[0].mAnimatedObject; }
  /// The mesh of an instance at the take's last frame, a stride ahead; null when it is unknown.
  const UXS::Mesh* meshOf(std::size_t instance) const {
    return mManager->GetCurrentDefinition(0, 24,
                                          mScene.mInstances.mElements[instance].mIdentity.mUUID);
  }
  void enroll(std::size_t instance, const std::string& path, const std::string& fallback = "") {
    registerInstance(*mManager, mScene, instance, path, fallback);
  }

  const vexa::tests::ScratchDirectory mScratch;
  Scene mScene = scenes::walk(scenes::straightPath(30), 2, 100);
  Manager mManager = makeManager();
};

}  // namespace

TEST_F(Registration, BuildsTheMeshAndReadsTheFile) {
  walker().mPolygons.mElements[0].mCorners.mElements[1].mU = 0.25f;
  walker().mPolygons.mElements[0].mCorners.add().mPointIndex = 9999;  // a fourth is not read
  enroll(0, file());
  const UXS::Mesh* mesh = meshOf(0);
  ASSERT_NE(mesh, nullptr);
  ASSERT_EQ(mesh->GetVerticesArray().size(), 24u);
  ASSERT_EQ(mesh->GetTrianglesArray().size(), 36u);
  EXPECT_EQ(mesh->GetVerticesArray()[0], Oru::TVector3D<float>(-0.15f + 1.5f, -0.25f, 0.8f));
  EXPECT_EQ(mesh->GetTrianglesArray()[0], Oru::TVector3D<unsigned int>(0, 2, 3));
  EXPECT_EQ(mesh->GetTriangleUVCoords(0).y.x, 0.25f);
  EXPECT_EQ(mesh->GetTriangleMaterialID(35), 2u);
  EXPECT_EQ(mManager->TransformPoint(0u, 0, 24, numberedUUID(101)), Oru::TVector3D<float>());
}

// A vertex goes by its address in the mesh at rest, which stays when the manager is gone.
TEST_F(Registration, AVertexOfTheMeshAtRestIsDeformed) {
  enroll(0, file());
  const UxZel::CZelUUID id = mScene.mInstances.mElements[0].mIdentity.mUUID;
  const auto& own = dynamic_cast<const Norvel::Vexa::XCAnimationMgr&>(*mManager);
  const UXS::Mesh& rest = *(own.*recordsOf()).at(id)->mMesh;
  const Oru::TVector3D<float> first = rest.GetVerticesArray()[0];
  for (const unsigned int frame : {0u, 1u, 24u}) {
    const UXS::Mesh* const shown = mManager->GetCurrentDefinition(0, frame, id);
    EXPECT_EQ(mManager->TransformPoint(rest.GetVerticesArray().data(), 0, frame, id),
              shown->GetVerticesArray()[0]);
  }
  mManager.reset();
  ASSERT_EQ(rest.GetVerticesArray().size(), 24u);
  EXPECT_EQ(rest.GetVerticesArray()[0], first);
}

// One record for all instances of an object: the file may go once the first is known.
TEST_F(Registration, InstancesOfAnObjectShareItsFile) {
  enroll(0, file());
  std::filesystem::remove(file());
  enroll(0, file());
  enroll(1, "no such file");
  ASSERT_NE(meshOf(1), nullptr);
  EXPECT_NE(meshOf(0), meshOf(1)) << "deformed copies are kept per instance";
}

// The host frees an object and makes another one at its address, with another mesh.
TEST_F(Registration, AForgottenAddressMayServeAnotherObject) {
  using Norvel::Vexa::XIAnimationMgr;
  EXPECT_FALSE(XIAnimationMgr::ForgetAnimatedObject(mManager.get(), &walker()));
  enroll(0, file());
  enroll(1, file());
  const UXS::Mesh* kept = meshOf(1);
  EXPECT_TRUE(XIAnimationMgr::ForgetAnimatedObject(mManager.get(), &walker()));
  EXPECT_FALSE(XIAnimationMgr::ForgetAnimatedObject(mManager.get(), &walker()));
  EXPECT_FALSE(XIAnimationMgr::ForgetAnimatedObject(nullptr, &walker()));
  EXPECT_EQ(meshOf(0), nullptr);
  EXPECT_EQ(meshOf(1), nullptr);
  EXPECT_EQ(kept->GetVerticesArray().size(), 24u) << "meshes stay in memory";
  walker().mPoints.add();
  enroll(0, file());
  ASSERT_NE(meshOf(0), nullptr);
  EXPECT_EQ(meshOf(0)->GetVerticesArray().size(), 25u);
}

TEST_F(Registration, FindsTheFile) {
  const std::string directory = mScratch / "files";
  std::filesystem::create_directory(directory + "/inner");
  vexa::tests::writeText(directory + "/inner/walker.amo", "no animation");
  const struct {
    std::string mFile, mFallback;
    bool mFound;
  } cases[] = {
      {file(), "", true},
      {"file://" + file(), "", true},
      {"/gone/walker.amo", directory + "/", true},
      {"/gone/walker.amo", directory + "/other.zel", true},  // a file beside it
      {"/gone/walker.amo", directory, true},                 // the directory itself
      {"/gone/walker.amo", "file://" + directory + "/", true},
      {"walker.amo", directory + "/", true},
      {"/gone/other.amo", directory + "/", false},
      {"/gone/walker.amo", directory + "/inner", true},  // beside it, not in it
      {"/gone/walker.amo", "nowhere", false},
      {"/gone/walker.amo", "file:nowhere", false},  // no URL
      {"/gone/walker.amo", "", false},
      {"", directory + "/", false},
  };
  for (const auto& c : cases) {
    mManager = makeManager();
    enroll(0, c.mFile, c.mFallback);
    EXPECT_EQ(meshOf(0) != nullptr, c.mFound) << c.mFile << " in " << c.mFallback;
  }
}

// After every failure nothing is known, and the next try works.
TEST_F(Registration, FailsWithoutATrace) {
  const auto error = [&](const std::string& path) {
    const std::string text = whatOf([&] { enroll(0, path); });
    EXPECT_EQ(meshOf(0), nullptr);
    return text;
  };
  Polygon& polygon = walker().mPolygons.mElements[7];
  const Polygon good = polygon;
  polygon.mCorners.mElements.pop_back();
  EXPECT_EQ(error(file()),
            "XCAnimationMgr::RegisterAnimatedObject : polygon 7 has fewer than three corners");
  polygon = triangle(0, 1, 24);
  EXPECT_EQ(error(file()),
            "XCAnimationMgr::RegisterAnimatedObject : polygon 7 has a corner past the last point");
  polygon = good;
  vexa::tests::writeText(mScratch / "bad.amo", "no animation");
  EXPECT_EQ(error(mScratch / "bad.amo"), "XCAMOFileIOTool : This file has not the good version!");
  walker().mPoints.mElements.pop_back();
  walker().mPolygons.mElements.resize(24);
  EXPECT_EQ(error(file()), "XCFrameCollector::AddLink : bad vertex index (assertion failed)");
  walker().mPoints.add();
  walker().mAnimationKind = 1;
  EXPECT_EQ(error(file()), "nothing was thrown") << "other kinds are left alone";
  walker().mAnimationKind = 0;
  enroll(0, file());
  EXPECT_NE(meshOf(0), nullptr);
}
