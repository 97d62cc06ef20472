#include <gtest/gtest.h>

#include "importer/fbx_document_internal.h"
#include "importer/fbx_reader_internal.h"
#include "importer/model_motion.h"
#include "importer/polygon_internal.h"
#include "tests/helpers/compare.h"
#include "tests/importer/small_models.h"

namespace vexa::tests {
namespace {

using importer::readFbx;
using importer::Vec3;

constexpr double kSecond = 46186158000.0;

std::string property(const std::string& name, double x, double y, double z) {
  return "P: \"" + name + "\", \"\", \"\", \"A\"," + std::to_string(x) + "," + std::to_string(y) +
         "," + std::to_string(z) + "\n";
}

// A triangle on the node "leaf" below the node "stem"; a clip of one second, one curve of two keys.
struct Fbx {
  std::string mStem, mLeaf;  // properties
  std::string mMoved = "Lcl Translation", mAxis = "d|X";
  std::string mAttributes = "KeyAttrFlags: *1 { a: 4 }\nKeyAttrDataFloat: *4 { a: 0,0,0,0 }";
  std::string mUses = "2";
  double mTo = 6;

  std::string text() const {
    return "; FBX 7.4.0 project file\nFBXHeaderExtension:  {\n FBXVersion: 7400\n}\nObjects:  {\n"
           "Geometry: 1, \"Geometry::\", \"Mesh\" {\nVertices: *9 { a: 0,0,0,1,0,0,0,1,0 }\n"
           "PolygonVertexIndex: *3 { a: 0,1,-3 }\n}\n"
           "Model: 2, \"Model::stem\", \"Null\" {\nProperties70:  {\n" +
           mStem + "}\n}\nModel: 3, \"Model::leaf\", \"Mesh\" {\nProperties70:  {\n" + mLeaf +
           "}\n}\nAnimationStack: 4, \"AnimStack::go\", \"\" {\n}\n"
           "AnimationLayer: 5, \"AnimLayer::base\", \"\" {\n}\n"
           "AnimationCurveNode: 6, \"AnimCurveNode::T\", \"\" {\n}\n"
           "AnimationCurve: 7, \"AnimCurve::\", \"\" {\nKeyTime: *2 { a: 0," +
           std::to_string(std::int64_t(kSecond)) + " }\nKeyValueFloat: *2 { a: 0," +
           std::to_string(mTo) + " }\n" + mAttributes + "\nKeyAttrRefCount: *1 { a: " + mUses +
           " }\n}\n}\nConnections:  {\nC: \"OO\",1,3\nC: \"OO\",2,0\nC: \"OO\",3,2\nC: \"OO\",5,4\n"
           "C: \"OO\",6,5\nC: \"OP\",6,3, \"" +
           mMoved + "\"\nC: \"OP\",7,6, \"" + mAxis + "\"\n}\n";
  }
  // The corners at a frame, 30 a second; host space has (x, -z, y).
  std::vector<Vec3> corners(std::size_t frame) const {
    return importer::importModel(readFbx(text())).mReference.pose(0, frame);
  }
};

void expectAt(const Vec3& actual, double x, double y, double z) {
  EXPECT_NEAR(actual.x, x, 1e-6);
  EXPECT_NEAR(actual.y, -z, 1e-6);
  EXPECT_NEAR(actual.z, y, 1e-6);
}

TEST(FbxReader, CurvesRunAsTheirFlagsSay) {
  const auto at = [](const std::string& flags, const std::string& data, std::size_t frame) {
    Fbx file;
    file.mAttributes =
        "KeyAttrFlags: *1 { a: " + flags + " }\nKeyAttrDataFloat: *4 { a: " + data + " }";
    return file.corners(frame)[0].x;
  };
  EXPECT_NEAR(at("4", "0,0,0,0", 10), 2, 1e-6);     // straight
  EXPECT_NEAR(at("2", "0,0,0,0", 29), 0, 1e-6);     // held
  EXPECT_NEAR(at("258", "0,0,0,0", 1), 6, 1e-6);    // the next key's value at once
  EXPECT_NEAR(at("1032", "0,0,0,0", 15), 3, 1e-6);  // level at both ends: 3 t^2 - 2 t^3
  EXPECT_NEAR(at("1032", "0,0,0,0", 10), 6 * 7.0 / 27, 1e-6);
  EXPECT_NEAR(at("1032", "6,0,0,0", 15), 3.75, 1e-6);  // leaving at 6 per second: 3 + 6 / 8
  EXPECT_NEAR(at("264", "0,0,0,0", 10), 2, 1e-6);      // automatic at two ends: straight
  // Weights of 0.9 on the right and 0.1 before the next key (900 and 100 of 10000 packed): level
  // at both ends, half the value is reached where the time is (3 * 0.9 + 3 * 0.9 + 1) / 8 = 24
  // / 30.
  const auto packed = std::to_string(9000 + 65536 * 1000);
  EXPECT_NEAR(at("50332680", "0,0," + packed + ",0", 24), 3, 1e-6);
}

TEST(FbxReader, ANodeTurnsAboutItsPivotsInItsOrder) {
  Fbx file;
  file.mMoved = "Lcl Rotation";
  file.mAxis = "d|Z";
  file.mTo = 90;
  file.mLeaf = property("RotationPivot", 1, 0, 0);
  expectAt(file.corners(30)[0], 1, -1, 0);
  file.mLeaf = property("PreRotation", 90, 0, 0);
  expectAt(file.corners(30)[1], 0, 0, 1);  // X to Y by the curve, then Y to Z
  file.mLeaf = property("PostRotation", 0, 0, 90);
  expectAt(file.corners(30)[1], 1, 0, 0);  // undone before the curve turns
  file.mLeaf = property("Lcl Rotation", 90, 0, 0) + property("RotationOrder", 5, 0, 0);
  expectAt(file.corners(30)[1], 0, 0, 1);  // ZYX: Z turns first
}

TEST(FbxReader, GeometryIsMovedApartFromItsNodeAndScaleIsTakenOverAsStated) {
  Fbx file;
  file.mLeaf = property("GeometricTranslation", 0, 0, 5);
  expectAt(file.corners(0)[1], 1, 0, 5);
  file.mStem = property("Lcl Scaling", 2, 3, 1);
  file.mLeaf = property("Lcl Translation", 0, 1, 0) + property("Lcl Rotation", 0, 0, 90);
  file.mTo = 0;
  const auto inherit = [&](int type) {
    Fbx other = file;
    other.mLeaf += property("InheritType", type, 0, 0);
    return other.corners(0)[1];
  };
  expectAt(inherit(1), 0, 6, 0);  // (0, 2) in the stem, times 3
  expectAt(inherit(0), 0, 5, 0);  // moved by 3, then its own X is doubled
  expectAt(inherit(2), 0, 4, 0);  // moved by 3, not sized
}

TEST(FbxReader, ClipsOfAnotherFileMoveNodesOfTheSameName) {
  Fbx body, clip;
  body.mLeaf = property("Lcl Rotation", 0, 0, 90);
  clip.mLeaf = property("PreRotation", 45, 0, 0);  // not moved by the clip, so the body's stays
  importer::SourceModel model = readFbx(body.text());
  model.mClips.clear();
  importer::addMotion(readFbx(clip.text()), "dir/clip.fbx", model);
  const auto pose = importer::importModel(model).mReference.pose(0, 30);
  expectAt(pose[1], 6, 1, 0);
  importer::SourceModel other = readFbx(body.text());
  for (auto& node : other.mNodes) node.mName += "x";
  EXPECT_EQ(whatOf([&] { importer::addMotion(readFbx(clip.text()), "clip.fbx", other); }),
            "'clip.fbx' moves no node that the model has: 'leaf'");
}

TEST(FbxReader, WhatItCannotShowIsNoted) {
  Fbx file;
  file.mMoved = "RotationPivot";
  ASSERT_EQ(readFbx(file.text()).mNotes.size(), 1u);
  EXPECT_EQ(readFbx(file.text()).mNotes[0],
            "clip 'go' animates RotationPivot of 'leaf': it stays as it is at rest");
}

// Every cut and every changed byte ends in a model or in one exception.
TEST(FbxReader, DamagedTextIsReadOrRefused) {
  const std::string text = Fbx().text();
  for (std::size_t i = 0; i < text.size(); i += 3) {
    for (const char c : {'{', '9', '\n', '*'}) {
      std::string damaged = text;
      damaged[i] = c;
      for (const std::string& each : {damaged, text.substr(0, i)}) {
        try {
          importer::importModel(readFbx(each));
        } catch (const std::runtime_error&) {
        }
      }
    }
  }
}

TEST(Polygon, AnArrowHeadIsCutAlongItsNotch) {
  const std::vector<Vec3> arrow = {{0, 0, 0}, {2, 2, 0}, {0, 1, 0}, {-2, 2, 0}};
  double area = 0;
  for (const auto& [a, b, c] : importer::trianglesOf(arrow)) {
    const Vec3 u = arrow[b] - arrow[a], v = arrow[c] - arrow[a];
    EXPECT_GT(u.x * v.y - u.y * v.x, 0);
    area += (u.x * v.y - u.y * v.x) / 2;
  }
  EXPECT_DOUBLE_EQ(area, 2);
}

}  // namespace
}  // namespace vexa::tests
