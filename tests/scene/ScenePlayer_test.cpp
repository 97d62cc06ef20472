#include "scene/ScenePlayer.h"

#include <gtest/gtest.h>
#include <string>

#include "formats/AnimationFile.h"
#include "formats/write_file.h"
#include "scene/scene_file.h"
#include "tests/helpers/compare.h"
#include "tests/helpers/scratch_directory.h"
#include "vexa/mesh/Mesh.h"

namespace {

using vexa::scene::ScenePlayer;
using vexa::tests::whatOf;

/// A scene of one triangle, which stands at `x` with a value that is `value`.
std::string sceneText(const std::string& name, double x, const std::string& keys) {
  return R"({"objects": [{"name": "o", "mesh": "a.obj", "animation": "a.amo",
                          "takes": [{"name": "t", "frames": 1, "rate": 25}]}],
             "instances": [{"name": ")" +
         name + R"(", "object": "o", "position": [)" + std::to_string(x) + R"(, 0, 0]}],
             "values": [{"name": "v", "type": "real", "keys": [)" +
         keys + "]}]}";
}

TEST(ScenePlayer, AnEditKeepsTheObjectsAndAFailedOneEverything) {
  const vexa::tests::ScratchDirectory folder;
  vexa::formats::AnimationFile file;
  file.mFrameCounts = {1};
  file.mNodes.resize(1);
  file.mNodes[0].mMatrices = {file.kIdentity};
  file.mNodes[0].mLinks = {{0, 1}, {1, 1}, {2, 1}};
  writeAnimationFile(file, folder / "a.amo");
  vexa::formats::writeFile(folder / "a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
  const std::string key = R"({"frame": 0, "value": )";
  ScenePlayer player(vexa::scene::readSceneText(sceneText("i", 1, key + "1}"), folder / ""));
  const auto expect = [&](double x, double value) {
    player.setFrame(0);
    const auto& instance = player.scene().mInstances.mElements[0];
    EXPECT_EQ(player.worldPosition(instance).x, x);
    EXPECT_EQ(player.samples().at(0).mValue.mReal, value);
    ASSERT_NE(player.mesh(instance), nullptr);
    EXPECT_EQ(player.mesh(instance)->GetVerticesArray().size(), 3u);
    EXPECT_EQ(player.scene().mDefinitions[0].mAnimatedObject->mPoints.GetCount(), 3);
  };
  const auto edit = [&](const std::string& text) {
    return whatOf([&] { player.edit(vexa::scene::readEditedScene(text)); });
  };
  expect(1, 1);
  EXPECT_EQ(edit(sceneText("i", 2, key + "5}")), "nothing was thrown");
  expect(2, 5);
  EXPECT_EQ(edit(sceneText("other", 3, key + "6}")),
            "the instances are not those of the scene that is played");
  EXPECT_EQ(edit(sceneText("i", 3, R"({"frame": -1, "value": 6})")),
            "value \"v\": has no key at a frame from 0 on");
  expect(2, 5);
}

}  // namespace
