#include "scene/scene_output.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include "formats/glb.h"
#include "formats/obj.h"
#include "formats/write_file.h"
#include "plot/contact_sheet.h"
#include "plot/path_plot.h"
#include "scene/path_curve.h"
#include "scene/scene_csv.h"
#include "scene/value_parts.h"
#include "scene/value_plots.h"

namespace vexa::scene {
namespace {

using Samples = std::vector<ScenePlayer::Sample>;

UxZel::CZelPoint sum(const UxZel::CZelPoint& p, const UxZel::CZelVector& v) {
  return {p.x + v.x, p.y + v.y, p.z + v.z};
}

plot::PathDrawing drawingOf(const refhost::Path& path) {
  plot::PathDrawing drawing;
  drawing.mName = path.mName;
  for (const auto& point : path.mPoints.mElements) {
    drawing.mControls.push_back(sum(point.mPassage, point.mBefore));
    drawing.mControls.push_back(point.mPassage);
    drawing.mControls.push_back(sum(point.mPassage, point.mAfter));
  }
  drawing.mCurve = curveOf(path);
  return drawing;
}

/// Everything that moves, in the world: values that are positions, and instances; of a walker
/// without a parent its anchor, which is on the path.
std::vector<plot::Track> emptyTracks(const refhost::Scene& scene) {
  std::vector<plot::Track> tracks;
  for (const auto& value : scene.mProperties) {
    if (partNames(value).size() == 6) tracks.push_back({value.mName, {}});
  }
  for (const auto& instance : scene.mInstances.mElements) tracks.push_back({instance.mName, {}});
  return tracks;
}

void extendTracks(const ScenePlayer& player, std::vector<plot::Track>& ioTracks) {
  std::size_t next = 0;
  const auto& values = player.scene().mProperties;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (partNames(values[i]).size() != 6) continue;
    const double* p = player.samples()[i].mValue.mVector;
    ioTracks[next++].mPositions.push_back({p[0], p[1], p[2]});
  }
  const auto& instances = player.scene().mInstances.mElements;
  for (std::size_t i = 0; i < instances.size(); ++i) {
    const bool walks = std::any_of(values.begin(), values.end(), [i](const auto& value) {
      return value.mPropertyType == UxZel::kPropertyAnimatedWalk && value.mInstance == i;
    });
    ioTracks[next++].mPositions.push_back(walks && UxZel::isNone(instances[i].mParent)
                                              ? instances[i].mAnchor
                                              : player.worldPosition(instances[i]));
  }
}

/// The last pose of all meshes as one model.
formats::ObjModel asObj(const std::vector<formats::MovingMesh>& meshes) {
  formats::ObjModel model;
  for (const formats::MovingMesh& mesh : meshes) {
    const auto first = static_cast<unsigned int>(model.points.size());
    const formats::MovingMesh::Points& points = mesh.mFrames.back();
    model.points.insert(model.points.end(), points.begin(), points.end());
    for (std::size_t t = 0; t < mesh.mTriangles.size(); ++t) {
      const auto& c = mesh.mTriangles[t];
      const auto uv = mesh.mUvs.empty() ? Oru::TVector3D<Oru::TVector2D<float>>() : mesh.mUvs[t];
      model.triangles.push_back({{{{first + c.x, uv.x.x, uv.x.y},
                                   {first + c.y, uv.y.x, uv.y.y},
                                   {first + c.z, uv.z.x, uv.z.y}}},
                                 mesh.mMaterials[t]});
    }
  }
  return model;
}

/// Collects what is asked for while the frames go by, and writes it at the end.
class SceneWriter {
 public:
  SceneWriter(ScenePlayer& player, const SceneOutput& output)
      : mPlayer(player),
        mOutput(output),
        mValues(valuesHeader(player.scene())),
        mPlacements(placementsHeader()),
        mTracks(emptyTracks(player.scene())),
        mMoving(player.meshes()),
        mPosed(mMoving),
        mPictured(plot::contactSheetFrames(output.mFrames.size())) {}

  std::vector<std::string> write() {
    std::error_code error;
    const bool isNew = std::filesystem::create_directories(mOutput.mFolder, error);
    if (error) throw std::runtime_error(mOutput.mFolder + ": " + error.message());
    try {
      writeFrames();
    } catch (...) {
      for (const std::string& file : mFiles) std::remove(file.c_str());
      if (isNew) std::filesystem::remove(mOutput.mFolder, error);
      throw;
    }
    return mFiles;
  }

 private:
  void writeFrames() {
    for (std::size_t i = 0; i < mOutput.mFrames.size(); ++i) {
      addFrame(i);
      mOutput.mProgress(i + 1);
    }
    put("values.csv", [this](const auto& path) { formats::writeFile(path, mValues); });
    put("placements.csv", [this](const auto& path) { formats::writeFile(path, mPlacements); });
    if (mOutput.mMeshes == SceneOutput::Meshes::kGlb) {
      const int timeScale = mPlayer.scene().mSettings.mElements[0].mTimeScale;
      put("scene.glb",
          [&](const auto& path) { formats::writeGlb(path, mMoving, timeScale / frameStep()); });
    }
    if (mOutput.mPlots) writePlots();
  }

  /// Writes a file of the folder, and notes it once it stands there.
  template <class Write>
  void put(const std::string& name, Write write) {
    const std::string path = (std::filesystem::path(mOutput.mFolder) / name).string();
    write(path);
    mFiles.push_back(path);
  }

  /// Scene frames from one frame written to the next.
  double frameStep() const {
    const auto& frames = mOutput.mFrames;
    return frames.size() < 2 ? 1 : double(frames[1]) - frames[0];
  }

  void addFrame(std::size_t i) {
    const int frame = mOutput.mFrames[i];
    mPlayer.setFrame(frame);
    mValues += valuesRow(mPlayer, frame);
    mPlacements += placementsRows(mPlayer, frame);
    if (mOutput.mMeshes == SceneOutput::Meshes::kGlb) mPlayer.appendPoses(mMoving);
    if (mOutput.mMeshes == SceneOutput::Meshes::kObj) writePose(frame);
    if (!mOutput.mPlots) return;
    mSamples.push_back(mPlayer.samples());
    extendTracks(mPlayer, mTracks);
    if (std::binary_search(mPictured.begin(), mPictured.end(), i)) {
      mPlayer.appendPoses(mPosed);
      mPosedFrames.push_back(frame);
    }
  }

  void writePose(int frame) {
    std::vector<formats::MovingMesh> meshes = mPlayer.meshes();
    if (meshes.empty()) return;
    mPlayer.appendPoses(meshes);
    char name[32];
    std::snprintf(name, sizeof(name), "frame_%06d.obj", frame);
    put(name, [&](const auto& path) { formats::writeObj(path, asObj(meshes)); });
  }

  void writePlots() {
    std::vector<const refhost::Property*> values;
    for (const auto& value : mPlayer.scene().mProperties) values.push_back(&value);
    if (!values.empty()) {
      put("curves.svg",
          [&](const auto& path) { writeValuePlots(path, values, mOutput.mFrames, mSamples); });
    }
    std::vector<plot::PathDrawing> paths;
    std::vector<std::vector<UxZel::CZelPoint>> ground;
    for (const auto& path : mPlayer.scene().mPaths.mElements) {
      paths.push_back(drawingOf(path));
      ground.push_back(paths.back().mCurve);
    }
    if (!paths.empty() || !mTracks.empty()) {
      put("paths.svg", [&](const auto& path) { plot::writePathPlot(path, paths, mTracks); });
    }
    if (mPosed.empty()) return;
    put("poses.png",
        [&](const auto& path) { plot::writeContactSheet(path, mPosed, mPosedFrames, ground); });
  }

  ScenePlayer& mPlayer;
  const SceneOutput& mOutput;
  std::vector<std::string> mFiles;
  std::string mValues, mPlacements;
  std::vector<Samples> mSamples;
  std::vector<plot::Track> mTracks;
  std::vector<formats::MovingMesh> mMoving;  ///< with all poses, for one file
  std::vector<formats::MovingMesh> mPosed;   ///< with the poses that are drawn
  const std::vector<std::size_t> mPictured;
  std::vector<int> mPosedFrames;
};

}  // namespace

std::vector<std::string> writeScene(ScenePlayer& player, const SceneOutput& output) {
  return SceneWriter(player, output).write();
}

}  // namespace vexa::scene
