#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <iostream>

#include "tests/importer/small_models.h"

namespace vexa::tests {
namespace {

namespace fs = std::filesystem;
using importer::ImportedModel;
using importer::importModel;
using importer::kImportTolerance;

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

// A process is slow to fork under the address sanitizer: every fourth file has to do.
#ifdef __SANITIZE_ADDRESS__
constexpr std::size_t kStep = 4;
#else
constexpr std::size_t kStep = 1;
#endif

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
  for (std::size_t i = 0; i < files.size(); i += kStep) {
    const fs::path& file = files[i];
    SCOPED_TRACE(file);
    try {
      const ImportedModel model = importModel(file.string());
      const double difference = checkThroughFile(model).mLargestDifference;
      EXPECT_LT(difference, kImportTolerance);
      worst = std::max(worst, difference);
      const auto& meshes = model.mReference.mSource.mMeshes;
      const bool hasBones = std::any_of(meshes.begin(), meshes.end(),
                                        [](const auto& mesh) { return !mesh.mBones.empty(); });
      ++(hasBones ? skinned : rigid);
    } catch (const std::runtime_error& e) {
      const std::string reason = e.what();
      EXPECT_TRUE(!reason.empty() && reason.find('\n') == std::string::npos) << reason;
      ++refused;
    }
  }
  EXPECT_EQ(skinned + rigid + refused, (files.size() + kStep - 1) / kStep);
  EXPECT_GE(skinned, kStep == 1 ? 27u : 1u);
  EXPECT_GE(rigid, kStep == 1 ? 26u : 1u);
  std::cout << files.size() << " files, of " << kStep << " each one: " << skinned << " skinned and "
            << rigid << " rigid models imported, " << refused << " refused; largest difference "
            << worst << " of the model's size\n";
}

struct Expected {
  const char* file;
  std::size_t vertices, triangles, links;
  double height;
  std::vector<std::uint32_t> frames;
};

// From the lowest to the highest vertex of the first pose.
double heightOf(const ImportedModel& model) {
  const auto pose = model.mReference.pose(0, 0);
  const auto [low, high] = std::minmax_element(
      pose.begin(), pose.end(), [](const auto& a, const auto& b) { return a.z < b.z; });
  return high->z - low->z;
}

TEST_F(ModelCorpus, KnownModelsStandUprightWithAllTheyHave) {
  const Expected cases[] = {
      {"X/Testwuson.X", 2124, 3732, 3497, 1.514, {30, 109, 1}},
      {"X/BCN_Epileptic.X", 2633, 5126, 3949, 1.814, {100}},
      {"FBX/huesitos.fbx", 62, 120, 156, 544.2, {47}},
      {"FBX/animation_with_skeleton.fbx", 1058, 2112, 5020, 183.3, {26}},
      {"MDL/MDL (HL1)/man.mdl", 111, 190, 111, 9.748, {2, 26, 2, 2, 2, 2}},
      {"glTF2/simple_skin/simple_skin.gltf", 10, 8, 16, 2, {166}},
  };
  for (const Expected& expected : cases) {
    SCOPED_TRACE(expected.file);
    const ImportedModel model = importModel((kModels / expected.file).string());
    std::size_t links = 0;
    for (const auto& node : model.mAnimation.mNodes) links += node.mLinks.size();
    EXPECT_NEAR(heightOf(model), expected.height, 1e-3 * expected.height);
    EXPECT_EQ(model.mMesh.points.size(), expected.vertices);
    EXPECT_EQ(model.mMesh.triangles.size(), expected.triangles);
    EXPECT_EQ(links, expected.links);
    EXPECT_EQ(model.mAnimation.mFrameCounts, expected.frames);
  }
}

// Where the vertices of a bone are on average.
Oru::TVector3D<double> middleOf(const ImportedModel& model, const std::string& bone) {
  const auto pose = model.mReference.pose(0, 0);
  Oru::TVector3D<double> sum{};
  double weights = 0;
  for (std::size_t v = 0; v < pose.size(); ++v) {
    for (const auto& influence : model.mReference.mBound[v].mInfluences) {
      const auto& joint = model.mReference.mJoints[influence.mJoint];
      if (model.mReference.mSource.mNodes[std::size_t(joint.mNode)].mName != bone) continue;
      sum = sum + pose[v] * influence.mWeight;
      weights += influence.mWeight;
    }
  }
  return sum * (1 / weights);
}

// What the bison calls right is on the right hand of somebody who looks from its tail to its head.
TEST_F(ModelCorpus, TheBisonIsNotMirrored) {
  const ImportedModel model = importModel((kModels / "X/Testwuson.X").string());
  const auto forward = middleOf(model, "Spine_Back01") - middleOf(model, "Tail05");
  const auto side = middleOf(model, "HindLeg_R_01") - middleOf(model, "HindLeg_L_01");
  EXPECT_GT(forward.y * side.x - forward.x * side.y, 0);  // (forward x up) . side
}

}  // namespace
}  // namespace vexa::tests
