#include "scene/scene_plots.h"

#include <algorithm>

#include "plot/contact_sheet.h"
#include "plot/path_plot.h"
#include "scene/mesh_materials.h"
#include "scene/path_curve.h"
#include "scene/value_kind.h"
#include "scene/value_plots.h"

namespace vexa::scene {
namespace {

UxZel::CZelPoint sum(const UxZel::CZelPoint& p, const UxZel::CZelVector& v) {
  return {p.x + v.x, p.y + v.y, p.z + v.z};
}

plot::PathDrawing drawingOf(const refhost::Path& path) {
  plot::PathDrawing drawing;
  drawing.mName = path.mName;
  for (const auto& point : path.mPoints.mElements) {
    // Control points are stored relative to their passage point.
    drawing.mControls.push_back(sum(point.mPassage, point.mBefore));
    drawing.mControls.push_back(point.mPassage);
    drawing.mControls.push_back(sum(point.mPassage, point.mAfter));
  }
  drawing.mCurve = curveOf(path);
  return drawing;
}

// Everything that moves, in the world: values that are positions, and instances; of a walker
// without a parent its anchor, which is on the path.
std::vector<plot::Track> emptyTracks(const refhost::Scene& scene) {
  std::vector<plot::Track> tracks;
  for (const auto& value : scene.mProperties) {
    if (isPosition(value)) tracks.push_back({value.mName, {}});
  }
  for (const auto& instance : scene.mInstances.mElements) tracks.push_back({instance.mName, {}});
  return tracks;
}

// Where each of them is in the frame that the player shows.
std::vector<UxZel::CZelPoint> trackPoints(const ScenePlayer& player) {
  std::vector<UxZel::CZelPoint> points;
  const auto& values = player.scene().mProperties;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (!isPosition(values[i])) continue;
    const double* p = player.samples()[i].mValue.mVector;
    points.push_back({p[0], p[1], p[2]});
  }
  const auto& instances = player.scene().mInstances.mElements;
  for (std::size_t i = 0; i < instances.size(); ++i) {
    const bool walks = std::any_of(values.begin(), values.end(), [i](const auto& value) {
      return value.mPropertyType == UxZel::kPropertyAnimatedWalk && value.mInstance == i;
    });
    // The anchor of a walker is in the space of its parent; without a parent that is the world.
    points.push_back(walks && UxZel::isNone(instances[i].mParent)
                         ? instances[i].mAnchor
                         : player.worldPosition(instances[i]));
  }
  return points;
}

}  // namespace

SceneRecord::SceneRecord(const ScenePlayer& player, std::vector<int> frames)
    : mFrames(std::move(frames)),
      mPictured(plot::contactSheetFrames(mFrames.size())),
      mSamples(mFrames.size()),
      mPoints(mFrames.size()),
      mPosed(player.meshes()) {
  addColors(mPosed);
  // Points are kept for the frames of the sheet alone, so the poses of a long run take no more
  // memory.
  for (formats::MovingMesh& mesh : mPosed) mesh.mFrames.resize(mPictured.size());
}

void SceneRecord::add(const ScenePlayer& player, std::size_t i) {
  // Each frame has its own elements, which were made beforehand: threads do not meet.
  mSamples[i] = player.samples();
  mPoints[i] = trackPoints(player);
  // mPictured rises, as contactSheetFrames makes it.
  const auto picture = std::lower_bound(mPictured.begin(), mPictured.end(), i);
  if (picture == mPictured.end() || *picture != i) return;
  std::vector<formats::MovingMesh::Points> poses;
  player.getPoses(poses);
  for (std::size_t m = 0; m < poses.size(); ++m) {
    mPosed[m].mFrames[std::size_t(picture - mPictured.begin())] = std::move(poses[m]);
  }
}

std::vector<std::string> SceneRecord::write(const refhost::Scene& scene, const PathFor& pathFor) {
  std::vector<std::string> names;
  const auto next = [&](const char* name) {
    names.emplace_back(name);
    return pathFor(name);
  };
  std::vector<const refhost::Property*> values;
  for (const auto& value : scene.mProperties) values.push_back(&value);
  if (!values.empty()) writeValuePlots(next("curves.svg"), values, mFrames, mSamples);
  std::vector<plot::PathDrawing> paths;
  std::vector<std::vector<UxZel::CZelPoint>> ground;
  for (const auto& path : scene.mPaths.mElements) {
    paths.push_back(drawingOf(path));
    ground.push_back(paths.back().mCurve);
  }
  std::vector<plot::Track> tracks = emptyTracks(scene);
  for (const auto& points : mPoints) {
    for (std::size_t k = 0; k < tracks.size(); ++k) tracks[k].mPositions.push_back(points[k]);
  }
  if (!paths.empty() || !tracks.empty()) plot::writePathPlot(next("paths.svg"), paths, tracks);
  if (mPosed.empty()) return names;
  std::vector<int> pictured;
  for (const std::size_t i : mPictured) pictured.push_back(mFrames[i]);
  plot::writeContactSheet(next("poses.png"), mPosed, pictured, ground);
  return names;
}

}  // namespace vexa::scene
