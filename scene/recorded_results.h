#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "formats/JsonTree.h"
#include "scene/ScenePlayer.h"

namespace vexa::scene {

/// Whether a value is computed without sine and cosine, so that every machine gives the same bits;
/// the last bits of the others depend on the machine's mathematics library.
bool isArithmeticOnly(const refhost::Scene& scene, const refhost::Property& value);

/// Records what a scene gives over some frames, for a comparison with what another build gives.
class ResultRecorder {
 public:
  explicit ResultRecorder(ScenePlayer& player);

  /// Shows the frame and records it.
  void add(int frame);

  /// {"frames": [...],
  ///  "values": [{"name", "arithmeticOnly", "numbers": [...]}],
  ///  "instances": [{"name", "meshes": DIGEST, "placement": [...]}]}
  /// with the numbers of a value or a placement frame by frame, a placement as the sixteen elements
  /// of the matrix into the world, column by column. DIGEST is the FNV-1a hash (64 bits, 16
  /// hexadecimal digits) of the deformed points in the instance's own space, each float from its
  /// lowest byte up; "" for an instance without mesh.
  formats::JsonTree results() const;

 private:
  std::uint64_t meshDigest(const refhost::Instance& instance);

  struct Numbers {
    std::vector<double> mNumbers;
    std::uint64_t mDigest;
  };

  ScenePlayer& mPlayer;
  std::vector<int> mFrames;
  std::vector<std::vector<double>> mValues;
  std::vector<Numbers> mInstances;
  /// By object, take and frame, which is all that a deformed mesh depends on.
  std::map<std::tuple<std::size_t, unsigned int, int>, std::uint64_t> mMeshDigests;
};

}  // namespace vexa::scene
