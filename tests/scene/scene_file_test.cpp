#include "scene/scene_file.h"

#include <gtest/gtest.h>
#include <string>

#include "formats/write_file.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/scratch_directory.h"

namespace {

using vexa::formats::writeFile;
using vexa::scene::readSceneFile;
using vexa::tests::ScratchDirectory;

class SceneFile : public testing::Test {
 protected:
  vexa::refhost::Scene read(const std::string& text) {
    writeFile(mFile, text);
    return readSceneFile(mFile);
  }
  /// The fault that the reader finds, without the file's name.
  std::string faultOf(const std::string& text) {
    const std::string what = vexa::tests::whatOf([&] { read(text); });
    const std::string prefix = mFile + ": ";
    return what.substr(0, prefix.size()) == prefix ? what.substr(prefix.size()) : what;
  }

  ScratchDirectory mFolder;
  const std::string mFile = (mFolder / "scene.json").string();
};

TEST_F(SceneFile, EveryPartOfASceneArrives) {
  writeFile((mFolder / "flag.obj").string(), "v 0 0 0\nv 1 0 0\nv 0 0 1\nf 1 2 3\n");
  const auto scene = read(R"({
    "settings": {"timeScale": 30},
    "paths": [{"name": "track", "closed": true,
               "points": [{"position": [1, 2, 3], "after": [4, 5, 6], "tangentLocked": true}]}],
    "objects": [{"name": "flag", "mesh": "flag.obj", "animation": "flag.amo", "anchorVertex": 2,
                 "takes": [{"name": "calm", "frames": 5, "rate": 30},
                           {"name": "storm", "frames": 9, "rate": 60, "elevation": 2}]}],
    "instances": [{"name": "mast", "position": [7, 8, 9]},
                  {"name": "red", "object": "flag", "parent": "mast", "take": "storm",
                   "rotationDegrees": 180, "scale": 2}],
    "values": [{"name": "sky", "type": "color", "cyclic": true, "repeat": 3,
                "keys": [{"frame": 0, "value": [1, 2, 3, 255], "curve": "sinus"}]},
               {"name": "day", "type": "date", "keys": [{"frame": 4, "value": "1970-01-02"}]},
               {"name": "way", "kind": "position", "path": "track", "rate": 1.5,
                "keys": [{"frame": 0, "value": 0.25, "curve": 9}]}]})");
  EXPECT_EQ(scene.mSettings.mElements[0].mTimeScale, 30);
  const auto& path = scene.mPaths.mElements.at(0);
  EXPECT_TRUE(path.mClosed && path.mPoints.mElements.at(0).mTangentLocked);
  EXPECT_EQ(path.mPoints.mElements[0].mAfter.z, 6);
  const auto& object = *scene.mDefinitions.at(0).mAnimatedObject;
  EXPECT_EQ(object.mAnimationFile, (mFolder / "flag.amo").string());
  EXPECT_EQ(object.mPoints.mElements.at(2).z, 1);
  EXPECT_EQ(object.mPolygons.mElements.at(0).mCorners.mElements.at(1).mPointIndex, 1u);
  const auto& red = scene.mInstances.mElements.at(1);
  EXPECT_EQ(red.mParent, scene.mInstances.mElements[0].mIdentity.mUUID);
  EXPECT_NE(red.mIdentity.mUUID, red.mParent);
  EXPECT_EQ(red.mState.mTakeIndex, 1u);
  EXPECT_DOUBLE_EQ(red.mRotation, 3.141592653589793);
  EXPECT_EQ(red.mScale[2], 2);
  EXPECT_EQ(scene.mProperties.at(0).mKeys.mElements.at(0).mValue.mColor[3], 255);
  EXPECT_EQ(scene.mProperties.at(1).mKeys.mElements.at(0).mValue.mDate, 86400);
  EXPECT_EQ(scene.mProperties.at(2).mPath, path.mIdentity.mUUID);
  EXPECT_EQ(scene.mProperties[2].mRate, 1.5);
  EXPECT_EQ(scene.mProperties[2].mKeys.mElements.at(0).mInterpolationType, 9);
}

TEST_F(SceneFile, FaultsSayWhereTheyAreAndWhatWasExpected) {
  const std::pair<const char*, const char*> faults[] = {
      {"[]", "/: expected an object"},
      {R"({"path": []})",
       "/: unknown member \"path\"; known are $schema, settings, paths, objects, instances, "
       "values"},
      {R"({"settings": {"timeScale": 0}})",
       "/settings/timeScale: expected a whole number from 1 to 2147483647"},
      {R"({"paths": [{"name": "p", "points": [{"position": [0, 1]}]}]})",
       "/paths/0/points/0/position: expected a list of 3 numbers"},
      {R"({"paths": [{"points": []}]})", "/paths/0: lacks \"name\""},
      {R"({"instances": [{"name": "a"}, {"name": "a"}]})", "/instances/1/name: is used twice"},
      {R"({"instances": [{"name": "a", "parent": "a"}]})",
       "/instances/0/parent: there is no earlier instance \"a\""},
      {R"({"values": [{"name": "v", "keys": [{"frame": 1.5, "value": 0}]}]})",
       "/values/0/keys/0/frame: expected a whole number from -1 to 2147483647"},
      {R"({"values": [{"name": "v", "type": "date", "keys": [{"frame": 0, "value": "2023-02-29"}]}]})",
       "/values/0/keys/0/value: expected a date such as \"2024-03-01T12:30:00Z\""},
      {R"({"values": [{"name": "v", "kind": "walk", "keys": []}]})", "/values/0: lacks \"path\""},
      {R"({"values": [{"name": "v", "type": "colour", "keys": []}]})",
       "/values/0/type: expected a number or one of color, date, integer, real, step, vector"},
  };
  for (const auto& [text, fault] : faults) EXPECT_EQ(faultOf(text), fault) << text;
  EXPECT_NE(faultOf("{\n  \"paths\": [,]\n}").find("line 2, column 13"), std::string::npos);
  EXPECT_NE(faultOf(R"({"objects": [{"name": "o", "mesh": "absent.obj"}]})").find("absent.obj"),
            std::string::npos);
}

}  // namespace
