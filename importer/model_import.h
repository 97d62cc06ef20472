#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "formats/AnimationFile.h"
#include "formats/obj.h"
#include "importer/child_process.h"
#include "importer/model_reference.h"

namespace vexa::importer {

/// Which way a model's "up" points.
enum class UpAxis {
  /// As the file says, else +Y, to which the format's reader turns.
  AsStated,
  /// The axis named, of the model as its reader gives it, whatever the file says.
  Y,
  Z,
};

struct ImportOptions {
  /// Names of the clips to take, in this order; all of them when empty.
  std::vector<std::string> mClips;
  /// Files of clips for the nodes of the model; then the model's own clips are only taken by name.
  std::vector<std::string> mMotions;
  /// How densely clips are sampled.
  double mFramesPerSecond = 30;
  UpAxis mUp = UpAxis::AsStated;
  /// All lengths are multiplied by this.
  double mScale = 1;
  /// The rate of keys that are counted in ticks; 0 for the rate that the file states.
  double mTicksPerSecond = 0;
  /// Refuses a model that gets notes.
  bool mStrict = false;
  /// How far each take leads away, evenly, in host space; for clips that walk in place.
  Oru::TVector3D<double> mTravel;
  /// Bytes that the animation file may have.
  std::uint64_t mLargestAnimation = std::uint64_t{4} << 30;
  ChildLimits mLimits;
};

/// A model made ready for the runtime.
struct ImportedModel {
  struct Take {
    std::string mName;
    int mFrameCount = 0;
    double mFramesPerSecond = 0;
  };

  /// The rest mesh, in host space: +Z up, right-handed, the model's own units. Vertices are welded
  /// where position and links are the same; outward faces run counter-clockwise.
  formats::ObjModel mMesh;
  /// Its matrices lead from host space into the file's, which has Y and Z exchanged.
  formats::AnimationFile mAnimation;
  /// In the order of the animation file.
  std::vector<Take> mTakes;
  /// What was repaired, left out or assumed, one line each.
  std::vector<std::string> mNotes;
  /// For verifyImport.
  ModelReference mReference;
};

/// Imports a model file of any format that readModel reads; skinned, or with moving nodes only.
///
/// Frame k of a take is the clip at k / framesPerSecond seconds, from 0 to its last key. Bones that
/// name no node leave their vertices with the mesh's own node, as do vertices without weights; each
/// such repair is noted. Throws std::runtime_error with one line that does not repeat the file's
/// name, when the model cannot be read, has no triangles or no animation, when a clip of that name
/// is not there, or when the animation would be too large.
ImportedModel importModel(const std::string& file, const ImportOptions& options = {});

/// The same for a model that is already read. It is checked and repaired first.
ImportedModel importModel(SourceModel model, const ImportOptions& options = {});

}  // namespace vexa::importer
