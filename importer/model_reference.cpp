#include "importer/model_reference.h"

#include "importer/model_pose.h"

namespace vexa::importer {

namespace {

using Point = Norvel::Vexa::ux_point3<double>;

Oru::TVector3D<double> posed(const ModelReference::Point& point, const std::vector<Matrix>& skins) {
  const Point source(double(point.source.x), double(point.source.y), double(point.source.z));
  Point sum(0, 0, 0);
  double weights = 0;
  for (const ModelReference::Influence& influence : point.influences) {
    sum = sum + skins[influence.joint] * source * influence.weight;
    weights += influence.weight;
  }
  return {sum.x / weights, sum.y / weights, sum.z / weights};
}

}  // namespace

std::vector<Oru::TVector3D<double>> ModelReference::pose(std::size_t take,
                                                         std::size_t frame) const {
  const double seconds = double(frame) / double(framesPerSecond);
  const std::vector<Matrix> nodes = nodeTransforms(source, &source.clips[clips[take]], seconds);
  std::vector<Matrix> skins;
  skins.reserve(joints.size());
  for (const Joint& joint : joints) {
    skins.push_back(toHost * nodes[static_cast<std::size_t>(joint.node)] * joint.offset);
  }
  std::vector<Oru::TVector3D<double>> result;
  result.reserve(points.size());
  for (const Point& point : points) result.push_back(posed(point, skins));
  return result;
}

}  // namespace vexa::importer
