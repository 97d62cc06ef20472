#include "importer/import_check.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "vexa/framecollector/XCAMOFileIOTool.h"
#include "vexa/framecollector/XCFrameCollector.h"
#include "vexa/mesh/Mesh.h"
#include "vexa/mesh/MeshEditor.h"

namespace vexa::importer {

namespace {

using Reference = std::vector<Oru::TVector3D<double>>;
using Posed = std::vector<Oru::TVector3D<float>>;

// Points alone: without triangles the runtime has nothing else to work out for each pose.
void addPoints(const Posed& points, UXS::Mesh& outMesh) {
  UXS::Mesh::Editor editor(outMesh, false);
  for (const auto& point : points) editor.AddVertex(point);
}

double diagonal(const Reference& points) {
  if (points.empty()) return 0;
  auto low = points.front(), high = points.front();
  for (const auto& p : points) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
  }
  return std::hypot(high.x - low.x, high.y - low.y, high.z - low.z);
}

double distance(const Oru::TVector3D<double>& a, const Oru::TVector3D<float>& b) {
  // NaN compares as false with everything and would pass as no difference.
  const double d = std::hypot(a.x - double(b.x), a.y - double(b.y), a.z - double(b.z));
  return std::isnan(d) ? std::numeric_limits<double>::infinity() : d;
}

// Notes the distances of one pose, not yet divided by the size.
void compare(const Reference& expected, const Posed& actual, std::size_t take, std::size_t frame,
             ImportCheck& ioCheck) {
  for (std::size_t v = 0; v < expected.size(); ++v) {
    const double d = distance(expected[v], actual[v]);
    if (d <= ioCheck.mLargestDifference) continue;
    ioCheck.mLargestDifference = d;
    ioCheck.mTake = take;
    ioCheck.mFrame = frame;
    ioCheck.mVertex = v;
  }
  const double size = diagonal(expected);
  // The smallest pose: a clip that leads far away must not make errors look small.
  ioCheck.mSize = ioCheck.mPoseCount == 0 ? size : std::min(ioCheck.mSize, size);
  ++ioCheck.mPoseCount;
}

}  // namespace

ImportCheck verifyImport(const ImportedModel& model, const std::string& animationFile,
                         const std::vector<Oru::TVector3D<float>>& restPoints,
                         const ImportProgress& progress) {
  if (restPoints.size() != model.mReference.mBound.size()) {
    throw std::runtime_error("the rest mesh has " + std::to_string(restPoints.size()) +
                             " points, the model " +
                             std::to_string(model.mReference.mBound.size()));
  }
  UXS::Mesh rest;
  addPoints(restPoints, rest);
  Norvel::Vexa::XCFrameCollector collector(&rest);
  Norvel::XCAMOFileIOTool(Norvel::CChemin(animationFile.c_str())).Read(&collector);

  ImportCheck check;
  std::size_t poses = 0;
  for (const auto& take : model.mTakes) poses += std::size_t(take.mFrameCount);
  for (std::size_t take = 0; take < model.mTakes.size(); ++take) {
    for (std::size_t frame = 0; frame < std::size_t(model.mTakes[take].mFrameCount); ++frame) {
      const UXS::Mesh* posed = collector.GetCurrentDefinition(unsigned(take), unsigned(frame), {});
      compare(model.mReference.pose(take, frame), posed->GetVerticesArray(), take, frame, check);
      if (progress) progress(check.mPoseCount, poses);
    }
  }
  // A model of no size is compared as it is.
  if (check.mSize > 0) check.mLargestDifference /= check.mSize;
  return check;
}

}  // namespace vexa::importer
