#include "scene/recorded_results.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "scene/value_kind.h"
#include "scene/value_parts.h"
#include "vexa/mesh/Mesh.h"

namespace vexa::scene {
namespace {

// The start of FNV-1a with 64 bits; 1099511628211 below is its prime.
constexpr std::uint64_t kEmptyDigest = 14695981039346656037u;

void addBytes(std::uint64_t& ioDigest, std::uint64_t word, int count) {
  // From the lowest byte up, so that the order of bytes in memory has no influence.
  for (int i = 0; i < count; ++i) {
    ioDigest = (ioDigest ^ (word >> (8 * i) & 0xff)) * 1099511628211u;
  }
}

std::uint64_t digestOf(const std::vector<Oru::TVector3D<float>>& points) {
  std::uint64_t digest = kEmptyDigest;
  for (const auto& point : points) {
    for (const float number : {point.x, point.y, point.z}) {
      // By its bits: equal numbers may differ in the sign of a zero.
      std::uint32_t bits;
      std::memcpy(&bits, &number, sizeof(bits));
      addBytes(digest, bits, 4);
    }
  }
  return digest;
}

std::string hexadecimal(std::uint64_t digest) {
  char text[17];
  std::snprintf(text, sizeof(text), "%016llx", static_cast<unsigned long long>(digest));
  return text;
}

bool isOnClosedPath(const refhost::Scene& scene, const refhost::Property& value) {
  const auto& paths = scene.mPaths.mElements;
  return std::any_of(paths.begin(), paths.end(), [&value](const auto& path) {
    return path.mIdentity.mUUID == value.mPath && path.mClosed;
  });
}

}  // namespace

bool isArithmeticOnly(const refhost::Scene& scene, const refhost::Property& value) {
  const auto& keys = value.mKeys.mElements;
  // These three curves are made of sine and cosine. Sums, products, quotients and square roots are
  // exact to the last bit by IEEE 754; sines are what each library makes of them.
  const auto isCurved = [](const refhost::Key& key) {
    return key.mInterpolationType == UxZel::kInterpolationSquare ||
           key.mInterpolationType == UxZel::kInterpolationOneMinusSquare ||
           key.mInterpolationType == UxZel::kInterpolationSinus;
  };
  const auto isLinear = [](const refhost::Key& key) {
    return key.mInterpolationType == UxZel::kInterpolationLinear;
  };
  if (isPosition(value)) {
    // An open path eases in and out unless all its keys are linear.
    return isOnClosedPath(scene, value) || std::all_of(keys.begin(), keys.end(), isLinear);
  }
  return showsFrames(value) || std::none_of(keys.begin(), keys.end(), isCurved);
}

ResultRecorder::ResultRecorder(ScenePlayer& player)
    : mPlayer(player),
      mValues(player.scene().mProperties.size()),
      mInstances(player.scene().mInstances.mElements.size(), {{}, kEmptyDigest}) {}

void ResultRecorder::add(int frame) {
  mPlayer.setFrame(frame);
  mFrames.push_back(frame);
  const refhost::Scene& scene = mPlayer.scene();
  for (std::size_t i = 0; i < mValues.size(); ++i) {
    const std::vector<double> numbers = parts(scene.mProperties[i], mPlayer.samples()[i]);
    mValues[i].insert(mValues[i].end(), numbers.begin(), numbers.end());
  }
  for (std::size_t i = 0; i < mInstances.size(); ++i) {
    const refhost::Instance& instance = scene.mInstances.mElements[i];
    const auto matrix = mPlayer.toWorld(instance);
    // The mesh is hashed in its own space: its placement may depend on sines, its pose does not.
    auto& numbers = mInstances[i].mNumbers;
    numbers.insert(numbers.end(), std::begin(matrix.e), std::end(matrix.e));
    addBytes(mInstances[i].mDigest, meshDigest(instance), 8);
  }
}

std::uint64_t ResultRecorder::meshDigest(const refhost::Instance& instance) {
  // Many instances often show the same frame of the same take: each is hashed once.
  const std::tuple key(instance.mDefinition, instance.mState.mTakeIndex,
                       instance.mState.mCurrentFrame);
  const auto known = mMeshDigests.find(key);
  if (known != mMeshDigests.end()) return known->second;
  const UXS::Mesh* mesh = mPlayer.mesh(instance);
  const std::uint64_t digest = mesh == nullptr ? 0 : digestOf(mesh->GetVerticesArray());
  return mMeshDigests.emplace(key, digest).first->second;
}

formats::JsonTree ResultRecorder::results() const {
  using Json = formats::JsonTree;
  const refhost::Scene& scene = mPlayer.scene();
  Json values = Json::list(), instances = Json::list();
  for (std::size_t i = 0; i < mValues.size(); ++i) {
    const refhost::Property& value = scene.mProperties[i];
    values.add(Json::object()
                   .with("name", value.mName)
                   .with("arithmeticOnly", isArithmeticOnly(scene, value))
                   .with("numbers", mValues[i]));
  }
  for (std::size_t i = 0; i < mInstances.size(); ++i) {
    const refhost::Instance& instance = scene.mInstances.mElements[i];
    // Told apart by the mesh, not by the digest: the hash of no points is a number as well.
    const bool hasMesh = mPlayer.mesh(instance) != nullptr;
    instances.add(Json::object()
                      .with("name", instance.mName)
                      .with("meshes", hasMesh ? hexadecimal(mInstances[i].mDigest) : "")
                      .with("placement", mInstances[i].mNumbers));
  }
  return Json::object()
      .with("frames", mFrames)
      .with("values", std::move(values))
      .with("instances", std::move(instances));
}

}  // namespace vexa::scene
