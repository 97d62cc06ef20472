#include "importer/model_import.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <random>

#include "tests/helpers/compare.h"
#include "tests/importer/small_models.h"

namespace vexa::tests {
namespace {

using importer::ImportedModel;
using importer::importModel;
using importer::ImportOptions;
using importer::kImportTolerance;
using importer::UpAxis;
using Point = Oru::TVector3D<double>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

void expectNear(const Point& actual, const Point& expected) {
  EXPECT_NEAR(actual.x, expected.x, 1e-12);
  EXPECT_NEAR(actual.y, expected.y, 1e-12);
  EXPECT_NEAR(actual.z, expected.z, 1e-12);
}

// Six times the volume within the triangles; positive when they face outwards.
template <class Points>
double volume(const formats::ObjModel& mesh, const Points& points) {
  double sum = 0;
  for (const auto& t : mesh.triangles) {
    const auto &a = points[t.corners[0].point], &b = points[t.corners[1].point],
               &c = points[t.corners[2].point];
    sum += double(a.x) * (double(b.y) * double(c.z) - double(b.z) * double(c.y)) -
           double(a.y) * (double(b.x) * double(c.z) - double(b.z) * double(c.x)) +
           double(a.z) * (double(b.x) * double(c.y) - double(b.y) * double(c.x));
  }
  return sum;
}

// A corner at the origin and one on each axis, outward faces, on a node that moves by 1 along +X.
SourceModel tetrahedron(const Matrix& place) {
  SourceModel model;
  model.mNodes = {{"root", SourceModel::kNone, {}}, {"body", 0, place}};
  SourceModel::Mesh mesh;
  mesh.mPoints = {{0, 0, 0}, {1, 0, 0}, {0, 2, 0}, {0, 0, 3}};
  mesh.mTriangles = {{0, 2, 1}, {0, 1, 3}, {0, 3, 2}, {1, 2, 3}};
  model.mMeshes = {mesh};
  model.mInstances = {{1, 0}};
  SourceModel::Channel channel;
  channel.mNode = 1;
  channel.mTranslations.mKeys = {{0, {0, 0, 0}}, {1, {1, 0, 0}}};
  model.mClips = {{"slide", {channel}}};
  return model;
}

// Model (x, y, z) is host (x, -z, y): up is +Z, right stays right, what faced +Z faces -Y.
TEST(ModelImport, AnArmBendsInTheHostsSpace) {
  const ImportedModel model = importModel(arm());
  ASSERT_EQ(model.mTakes.size(), 1u);
  EXPECT_EQ(model.mTakes[0].mFrameCount, 31);
  ASSERT_EQ(model.mMesh.points.size(), 4u);  // root, elbow, finger tip, thumb: as first met
  expectNear(model.mReference.pose(0, 0)[2], {0, -1, 2});
  const auto bent = model.mReference.pose(0, 30);
  expectNear(bent[0], {0, 0, 0});
  expectNear(bent[1], {0, 0, 1});
  expectNear(bent[2], {-1, -1, 1});
  expectNear(bent[3], {-1, 0, 1});
  EXPECT_LT(checkThroughFile(model).mLargestDifference, 1e-6);
}

TEST(ModelImport, NamesThatAreNotUtf8AreSpelledOut) {
  SourceModel source = arm();
  source.mClips[0].mName = "b\xffnd";
  const ImportedModel model = importModel(source);
  EXPECT_EQ(model.mTakes.at(0).mName, "b\\xffnd");
  EXPECT_EQ(model.mNotes.size(), 1u);
}

TEST(ModelImport, RotationGoesTheShorterWayAtConstantSpeed) {
  SourceModel source = arm();
  const double h = std::sqrt(0.5), third = std::acos(-1.0) / 6;
  for (const double sign : {1.0, -1.0}) {  // of a quaternion, which turns the same either way
    source.mClips[0].mChannels[0].mRotations.mKeys[1].mValue = {0, 0, sign * h, sign * h};
    const ImportedModel model = importModel(source);
    expectNear(model.mReference.pose(0, 10)[3], {-std::sin(third), 0, 1 + std::cos(third)});
    expectNear(model.mReference.pose(0, 15)[3], {-h, 0, 1 + h});
  }
}

TEST(ModelImport, NothingIsMirroredAndFacesStayOutward) {
  Matrix mirror, flat;
  mirror.scale(-1, 1, 1);
  flat.scale(1, 0, 1);
  for (const Matrix& place : {Matrix{}, translation(3, 4, 5), mirror}) {
    const ImportedModel model = importModel(tetrahedron(place));
    EXPECT_NEAR(volume(model.mMesh, model.mMesh.points), 6, 1e-5);
    EXPECT_NEAR(volume(model.mMesh, model.mReference.pose(0, 10)), 6, 1e-9);
    EXPECT_LT(checkThroughFile(model).mLargestDifference, 1e-6);
  }
  const ImportedModel model = importModel(tetrahedron(flat));
  EXPECT_EQ(model.mNotes.size(), 1u);
  EXPECT_LT(checkThroughFile(model).mLargestDifference, 1e-6);
}

TEST(ModelImport, UpIsAsTheFileOrTheCallerSays) {
  SourceModel source = tetrahedron({});
  // Where the corners on the model's X, Y and Z axes are in the host, as first met: Y, X, Z.
  using Corners = std::vector<Oru::TVector3D<float>>;
  const auto corners = [&](UpAxis up) -> Corners {
    ImportOptions options;
    options.mUp = up;
    const auto points = importModel(source, options).mMesh.points;
    return {points[2], points[1], points[3]};
  };
  const Corners yUp = {{1, 0, 0}, {0, 0, 2}, {0, -3, 0}};
  EXPECT_EQ(corners(UpAxis::AsStated), yUp);
  EXPECT_EQ(corners(UpAxis::Z), (Corners{{1, 0, 0}, {0, 2, 0}, {0, 0, 3}}));
  for (int i : {0, 5, 10}) source.mAxes.e[i] = 0;
  source.mAxes(0, 2) = source.mAxes(1, 0) = source.mAxes(2, 1) = 1;  // +X is up, +Y front
  EXPECT_EQ(corners(UpAxis::AsStated), (Corners{{0, 0, 1}, {0, -2, 0}, {3, 0, 0}}));
  EXPECT_EQ(corners(UpAxis::Y), yUp);
}

TEST(ModelImport, KeysComeInAnyOrderAndTheFirstHoldsBeforeItsTime) {
  SourceModel source = arm();
  auto& keys = source.mClips[0].mChannels[0].mRotations.mKeys;
  keys[0].mTime = 0.5;
  std::swap(keys[0], keys[1]);
  const ImportedModel model = importModel(source);
  expectNear(model.mReference.pose(0, 0)[3], {0, 0, 2});
  expectNear(model.mReference.pose(0, 30)[3], {-1, 0, 1});
}

// The mesh's node is turned on its back; bones that agree on a place do not care.
TEST(ModelImport, AtRestAMeshLiesWhereItsBonesAgreeElseAtItsNode) {
  SourceModel source = arm();
  source.mNodes[3].mLocal.rot(1, 0, 0, std::acos(0.0));
  EXPECT_EQ(importModel(source).mMesh.points[3], (Oru::TVector3D<float>{0, 0, 2}));
  source.mNodes[2].mLocal.rot(1, 0, 0, 1);
  source.mNodes[3].mLocal.trans(0, 5, 0);
  const ImportedModel model = importModel(source);
  EXPECT_EQ(model.mMesh.points[3], (Oru::TVector3D<float>{0, 0, 7}));
  EXPECT_LT(checkThroughFile(model).mLargestDifference, 1e-6);
}

TEST(ModelImport, VerticesAreWeldedByPositionAndLinks) {
  SourceModel source = arm();
  auto& mesh = source.mMeshes[0];
  // Twins of the elbow: one the same, but for the sign of a zero, one with other weights.
  mesh.mPoints.insert(mesh.mPoints.end(), {{-0.0f, 1, 0}, {0, 1, 0}});
  mesh.mTriangles = {{0, 1, 3}, {4, 2, 3}, {5, 2, 3}};
  mesh.mBones[0].mInfluences.insert(mesh.mBones[0].mInfluences.end(), {{4, 0.5}, {5, 0.75}});
  mesh.mBones[1].mInfluences.insert(mesh.mBones[1].mInfluences.end(), {{4, 0.5}, {5, 0.25}});
  const ImportedModel model = importModel(source);
  EXPECT_EQ(model.mMesh.points.size(), 5u);
  EXPECT_EQ(model.mMesh.triangles[0].corners[1].point, model.mMesh.triangles[1].corners[0].point);
  EXPECT_NE(model.mMesh.triangles[0].corners[1].point, model.mMesh.triangles[2].corners[0].point);
}

TEST(ModelImport, WeightsAreKeptAndBadOnesRepairedWithANote) {
  SourceModel source = arm();
  auto& bones = source.mMeshes[0].mBones;
  for (auto& influence : bones[1].mInfluences) influence.mWeight *= 0.25;
  const ImportedModel light = importModel(source);
  EXPECT_EQ(light.mAnimation.mNodes[1].mLinks[1].mWeight, 0.25);
  expectNear(light.mReference.pose(0, 30)[3], {-1, 0, 1});  // the finger tip has one link
  EXPECT_LT(checkThroughFile(light).mLargestDifference, 1e-6);

  bones[0].mInfluences.insert(bones[0].mInfluences.end(),
                              {{0, -1.0}, {1, kNan}, {99, 1.0}, {2, 0}});
  EXPECT_EQ(importModel(source).mNotes.size(), 1u);
  bones[1].mNode = SourceModel::kNone;  // the forearm goes with the mesh, and so stays
  const ImportedModel lost = importModel(source);
  EXPECT_EQ(lost.mNotes.size(), 3u);  // weights, lost bone, nothing moves
  expectNear(lost.mReference.pose(0, 30)[3], {0, 0, 2});
  EXPECT_LT(checkThroughFile(lost).mLargestDifference, 1e-6);
}

TEST(ModelImport, TakesAreTheChosenClipsFromZeroToTheirLastKey) {
  SourceModel source = arm();
  source.mClips.push_back(source.mClips[0]);
  source.mClips[1].mName = "slow";
  source.mClips[1].mChannels[0].mRotations.mKeys[1].mTime = 2.5 - 1e-7;
  source.mClips.push_back({"nothing", {}});
  ImportOptions options;
  options.mFramesPerSecond = 10;
  const ImportedModel all = importModel(source, options);
  ASSERT_EQ(all.mTakes.size(), 2u);
  EXPECT_EQ(all.mAnimation.mFrameCounts, (std::vector<std::uint32_t>{11, 26}));
  EXPECT_EQ(all.mNotes.size(), 1u);
  options.mClips = {"slow", "bend"};
  const ImportedModel chosen = importModel(source, options);
  EXPECT_EQ(chosen.mTakes[0].mName, "slow");
  EXPECT_EQ(chosen.mAnimation.mFrameCounts, (std::vector<std::uint32_t>{26, 11}));
  options.mClips = {"run"};
  EXPECT_EQ(whatOf([&] { importModel(source, options); }),
            "it has no clip 'run'; its clips are 'bend', 'slow', 'nothing'");
}

TEST(ModelImport, AClipInPlaceIsLedAwayEvenly) {
  ImportOptions options;
  options.mTravel = {3, -6, 0};
  const ImportedModel model = importModel(arm(), options);
  expectNear(model.mReference.pose(0, 0)[2], {0, -1, 2});
  expectNear(model.mReference.pose(0, 10)[0], {1, -2, 0});
  expectNear(model.mReference.pose(0, 30)[2], {-1 + 3, -1 - 6, 1});
  EXPECT_LT(checkThroughFile(model).mLargestDifference, 1e-6);
}

TEST(ModelImport, WhatCannotBeImportedIsRefusedWithAReason) {
  using Damage = std::function<void(SourceModel&, ImportOptions&)>;
  const std::vector<std::pair<std::string, Damage>> cases = {
      {"it has bones but no animation", [](auto& m, auto&) { m.mClips.clear(); }},
      {"it has neither bones nor animation",
       [](auto& m, auto&) {
         m.mClips.clear();
         m.mMeshes[0].mBones.clear();
       }},
      {"its animation moves neither bones nor other nodes",
       [](auto& m, auto&) { m.mClips[0].mChannels.clear(); }},
      {"it has no triangles", [](auto& m, auto&) { m.mMeshes[0].mTriangles.clear(); }},
      {"it has no nodes", [](auto& m, auto&) { m.mNodes.clear(); }},
      {"node 'elbow' has a wrong parent", [](auto& m, auto&) { m.mNodes[2].mParent = 2; }},
      {"node 'root' has a matrix that is not of finite numbers",
       [](auto& m, auto&) { m.mNodes[0].mLocal(1, 1) = kNan; }},
      {"bone 'elbow' has a wrong node", [](auto& m, auto&) { m.mMeshes[0].mBones[1].mNode = 4; }},
      {"mesh 'skin' has coordinates that are not finite numbers",
       [](auto& m, auto&) { m.mMeshes[0].mPoints[0].x = float(kNan); }},
      {"mesh 'skin' has a triangle with a corner past its last vertex",
       [](auto& m, auto&) { m.mMeshes[0].mTriangles[0].x = 4; }},
      {"mesh 'skin' has texture coordinates for some of its vertices only",
       [](auto& m, auto&) { m.mMeshes[0].mUvs.resize(3); }},
      {"it hangs a mesh where there is none", [](auto& m, auto&) { m.mInstances[0].mMesh = 1; }},
      {"clip 'bend' moves a node that the model does not have",
       [](auto& m, auto&) { m.mClips[0].mChannels[0].mNode = -1; }},
      {"clip 'bend' has a key that is not of finite numbers",
       [](auto& m, auto&) { m.mClips[0].mChannels[0].mRotations.mKeys[1].mTime = kNan; }},
      {"clip 'bend' is too long to be sampled",
       [](auto& m, auto&) { m.mClips[0].mChannels[0].mRotations.mKeys[1].mTime = 1e18; }},
      {"its animation of 150001 frames would take 38 MB; choose fewer clips or frames per second",
       [](auto& m, auto& o) {
         m.mClips[0].mChannels[0].mRotations.mKeys[1].mTime = 5000;
         o.mLargestAnimation = 10'000'000;
       }},
      {"its motion leads further away than the runtime's numbers reach",
       [](auto& m, auto&) {
         m.mClips[0].mChannels[0].mTranslations.mKeys = {{0, {1e39, 0, 0}}};
       }},
      {"frames per second must be above 0 and at most 1000000",
       [](auto&, auto& o) { o.mFramesPerSecond = 0; }},
  };
  for (const auto& [reason, damage] : cases) {
    SourceModel model = arm();
    ImportOptions options;
    damage(model, options);
    EXPECT_EQ(whatOf([&] { importModel(model, options); }), reason);
  }
}

// Deep trees of turned, stretched and mirrored nodes, several bones per vertex, weights of any sum.
SourceModel randomModel(unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> unit(-1, 1), factor(0.5, 1.5);
  std::uniform_int_distribution<std::uint32_t> vertex(0, 19);
  const auto placed = [&] {
    Matrix m;
    m.rot(0.6, 0, 0.8, 3 * unit(random));
    m.add_scale(factor(random) * (unit(random) < -0.7 ? -1 : 1), factor(random), factor(random));
    m.add_trans(unit(random), unit(random), unit(random));
    return m;
  };
  SourceModel model;
  SourceModel::Clip clip{"clip", {}};
  SourceModel::Mesh mesh;
  for (int i = 0; i < 20; ++i) {
    mesh.mPoints.push_back({float(unit(random)), float(unit(random)), float(unit(random))});
    mesh.mTriangles.push_back({vertex(random), vertex(random), vertex(random)});
  }
  for (std::int32_t i = 0; i < 8; ++i) {
    model.mNodes.push_back({"", i == 0 ? SourceModel::kNone : i / 2, placed()});
    model.mNodes.back().mParent = i == 0 ? SourceModel::kNone : (i - 1) / 2;
    SourceModel::Bone bone{"", i, placed(), {}};
    for (int k = 0; k < 8; ++k) bone.mInfluences.push_back({vertex(random), factor(random)});
    mesh.mBones.push_back(bone);
    SourceModel::Channel channel;
    channel.mNode = i;
    channel.mTranslations.mKeys = {{0, {0, 0, 0}}, {0.3, {unit(random), unit(random), 1}}};
    channel.mRotations.mKeys = {{0, {0, 0, 0, 1}},
                                {0.3, {unit(random), unit(random), 0.5, unit(random)}}};
    if (i % 2 == 1)
      channel.mScales.mKeys = {{0, {1, 1, 1}}, {0.2, {factor(random), -1, factor(random)}}};
    clip.mChannels.push_back(channel);
  }
  model.mMeshes = {mesh};
  model.mInstances = {{7, 0}};
  model.mClips = {clip};
  return model;
}

TEST(ModelImport, TheRuntimeAgreesWithTheReferenceForAnyModel) {
  for (unsigned seed = 0; seed < 100; ++seed) {
    EXPECT_LT(checkThroughFile(importModel(randomModel(seed))).mLargestDifference, kImportTolerance)
        << "seed " << seed;
  }
}

TEST(ModelImport, TheCheckSeesADamagedFile) {
  ImportedModel model = importModel(arm());
  model.mAnimation.mNodes[1].mMatrices[7][12] += 0.001;
  const importer::ImportCheck check = checkThroughFile(model);
  EXPECT_NEAR(check.mLargestDifference * check.mSize, 0.001, 1e-6);
  EXPECT_EQ(check.mFrame, 7u);
  model.mAnimation.mNodes[1].mMatrices[7][12] = kNan;
  EXPECT_TRUE(std::isinf(checkThroughFile(model).mLargestDifference));
  model.mMesh.points.pop_back();
  EXPECT_EQ(whatOf([&] { checkThroughFile(model); }), "the rest mesh has 3 points, the model 4");
}

}  // namespace
}  // namespace vexa::tests
