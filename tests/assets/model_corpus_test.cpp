#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <iostream>

#include "tests/assets/small_models.h"

namespace vexa::tests {
namespace {

namespace fs = std::filesystem;
using assets::ImportedModel;
using assets::importModel;
using assets::kImportTolerance;

// Where Debian's package assimp-testmodels puts its models.
const fs::path kModels = "/usr/share/assimp/models";

std::vector<fs::path> allModels() {
  std::vector<fs::path> files;
  if (!fs::is_directory(kModels)) return files;
  for (const auto& entry : fs::recursive_directory_iterator(kModels)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

class ModelCorpus : public testing::Test {
 protected:
  void SetUp() override {
    if (!fs::is_directory(kModels)) GTEST_SKIP() << "the package assimp-testmodels is absent";
  }
};

TEST_F(ModelCorpus, EveryFileIsImportedOrRefusedWithAReason) {
  const std::vector<fs::path> files = allModels();
  std::size_t skinned = 0, rigid = 0, refused = 0;
  double worst = 0;
  for (const fs::path& file : files) {
    SCOPED_TRACE(file);
    try {
      const ImportedModel model = importModel(file.string());
      const double difference = checkThroughFile(model).largestDifference;
      EXPECT_LT(difference, kImportTolerance);
      worst = std::max(worst, difference);
      const auto& meshes = model.reference.source.meshes;
      const bool hasBones = std::any_of(meshes.begin(), meshes.end(),
                                        [](const auto& mesh) { return !mesh.bones.empty(); });
      ++(hasBones ? skinned : rigid);
    } catch (const std::runtime_error& e) {
      const std::string reason = e.what();
      EXPECT_TRUE(!reason.empty() && reason.find('\n') == std::string::npos) << reason;
      ++refused;
    }
  }
  EXPECT_EQ(skinned + rigid + refused, files.size());
  EXPECT_GE(skinned, 27u);
  EXPECT_GE(rigid, 26u);
  std::cout << files.size() << " files: " << skinned << " skinned and " << rigid
            << " rigid models imported, " << refused << " refused; largest difference " << worst
            << " of the model's size\n";
}

struct Expected {
  const char* file;
  std::size_t vertices, triangles, links;
  std::vector<std::uint32_t> frames;
};

TEST_F(ModelCorpus, KnownModelsHaveTheirVerticesLinksAndTakes) {
  const Expected cases[] = {
      {"X/Testwuson.X", 2124, 3732, 3497, {30, 109, 1}},
      {"X/BCN_Epileptic.X", 2633, 5126, 3949, {100}},
      {"FBX/huesitos.fbx", 62, 120, 156, {47}},
      {"FBX/animation_with_skeleton.fbx", 1058, 2112, 5020, {26}},
      {"MDL/MDL (HL1)/man.mdl", 111, 190, 111, {2, 26, 2, 2, 2, 2}},
      {"glTF2/simple_skin/simple_skin.gltf", 10, 8, 16, {166}},
  };
  for (const Expected& expected : cases) {
    SCOPED_TRACE(expected.file);
    const ImportedModel model = importModel((kModels / expected.file).string());
    std::size_t links = 0;
    for (const auto& node : model.animation.mNodes) links += node.mLinks.size();
    EXPECT_EQ(model.mesh.points.size(), expected.vertices);
    EXPECT_EQ(model.mesh.triangles.size(), expected.triangles);
    EXPECT_EQ(links, expected.links);
    EXPECT_EQ(model.animation.mFrameCounts, expected.frames);
  }
}

// Where the vertices of a bone are on average.
Oru::TVector3D<double> middleOf(const ImportedModel& model, const std::string& bone) {
  const auto pose = model.reference.pose(0, 0);
  Oru::TVector3D<double> sum{};
  double weights = 0;
  for (std::size_t v = 0; v < pose.size(); ++v) {
    for (const auto& influence : model.reference.points[v].influences) {
      const auto& joint = model.reference.joints[influence.joint];
      if (model.reference.source.nodes[std::size_t(joint.node)].name != bone) continue;
      sum = sum + pose[v] * influence.weight;
      weights += influence.weight;
    }
  }
  return sum * (1 / weights);
}

// The bison stands on the ground, its head above its feet; what it calls right is on the right hand
// of somebody who looks from its tail to its head.
TEST_F(ModelCorpus, TheBisonStandsUprightAndIsNotMirrored) {
  const ImportedModel model = importModel((kModels / "X/Testwuson.X").string());
  double low = 1e9, high = -1e9;
  for (const auto& p : model.reference.pose(0, 0)) {
    low = std::min(low, p.z);
    high = std::max(high, p.z);
  }
  EXPECT_NEAR(low, 0, 0.01);
  EXPECT_NEAR(high, 1.515, 0.01);
  const auto forward = middleOf(model, "Spine_Back01") - middleOf(model, "Tail05");
  const auto side = middleOf(model, "HindLeg_R_01") - middleOf(model, "HindLeg_L_01");
  EXPECT_GT(forward.y * side.x - forward.x * side.y, 0);  // (forward x up) . side
}

}  // namespace
}  // namespace vexa::tests
