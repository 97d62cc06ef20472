#include <algorithm>
#include <stdexcept>
#include <tuple>

#include "formats/finite.h"
#include "formats/glb_shape_internal.h"

namespace vexa::formats {

using Float2 = Oru::TVector2D<float>;
using Float3 = Oru::TVector3D<float>;

GlbShape shapeOf(const MovingMesh& mesh) {
  GlbShape shape;
  const bool hasUvs = !mesh.mUvs.empty();
  // glTF has one index per vertex where OBJ has one for the point and one for the uv, so a point
  // with two uvs becomes two vertices.
  std::map<std::tuple<std::uint32_t, float, float>, std::uint32_t> known;
  const auto vertexOf = [&](std::uint32_t point, Float2 uv) {
    if (!isFinite(uv)) uv = {};
    const auto next = std::uint32_t(shape.mPoints.size());
    const auto [place, isNew] = known.try_emplace({point, uv.x, uv.y}, next);
    if (isNew) {
      shape.mPoints.push_back(point);
      if (hasUvs) shape.mUvs.emplace_back(uv.x, 1 - uv.y);  // the format counts v downwards
    }
    return place->second;
  };
  for (std::size_t t = 0; t < mesh.mTriangles.size(); ++t) {
    const auto& corners = mesh.mTriangles[t];
    const auto uv = hasUvs ? mesh.mUvs[t] : Oru::TVector3D<Float2>();
    auto& indices = shape.mIndicesByMaterial[mesh.mMaterials[t]];
    for (const std::uint32_t vertex :
         {vertexOf(corners.x, uv.x), vertexOf(corners.y, uv.y), vertexOf(corners.z, uv.z)}) {
      indices.push_back(vertex);
    }
  }
  turnInto(shape, mesh.mFrames[0], shape.mRest);
  return shape;
}

void turnInto(const GlbShape& shape, const MovingMesh::Points& points,
              MovingMesh::Points& outPositions) {
  outPositions.clear();
  for (const std::uint32_t point : shape.mPoints) {
    const Float3& p = points[point];
    outPositions.emplace_back(p.x, p.z, -p.y);
  }
}

GlbBounds boundsOf(const MovingMesh::Points& points) {
  Float3 low = points[0], high = points[0];
  for (const Float3& p : points) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
  }
  return {low.x, low.y, low.z, high.x, high.y, high.z};
}

void addArrays(GlbArrays& ioArrays, GlbShape& ioShape) {
  const GlbBounds bounds = boundsOf(ioShape.mRest);
  ioShape.mFirstArray =
      ioArrays.add(kVertexPlaces, ioShape.mPoints.size(), {bounds.begin(), bounds.end()});
  if (!ioShape.mUvs.empty()) ioArrays.add(kVertexUvs, ioShape.mUvs.size());
  for (const auto& [material, indices] : ioShape.mIndicesByMaterial) {
    ioArrays.add(kIndexList, indices.size());
  }
}

void writeArrays(NewFile& file, std::size_t binaryAt, const GlbArrays& arrays,
                 const GlbShape& shape) {
  std::size_t array = shape.mFirstArray;
  const auto put = [&](const auto& values) {
    file.writeAt(binaryAt + arrays.offsetOf(array++), values.data(),
                 values.size() * sizeof(values[0]));
  };
  put(shape.mRest);
  if (!shape.mUvs.empty()) put(shape.mUvs);
  for (const auto& [material, indices] : shape.mIndicesByMaterial) put(indices);
}

void putMesh(JsonText& json, const GlbShape& shape, const std::string& name,
             const PutJson& putMoreAttributes, const PutJson& putTargets) {
  const std::size_t uvs = shape.mUvs.empty() ? 0 : 1;
  std::size_t indices = shape.mFirstArray + 1 + uvs;
  json << R"({"name":)" << quoted(name) << R"(,"primitives":[)";
  bool isFirst = true;
  for (const auto& [material, list] : shape.mIndicesByMaterial) {
    json.next(isFirst) << R"({"attributes":{"POSITION":)" << shape.mFirstArray;
    if (uvs > 0) json << R"(,"TEXCOORD_0":)" << shape.mFirstArray + 1;
    putMoreAttributes(json);
    json << R"(},"indices":)" << indices++ << R"(,"material":)" << shape.mMaterials.at(material);
    putTargets(json);
    json << "}";
  }
  json << "]}";
}

void checkPoints(const std::string& name, const MovingMesh::Points& points, const std::string& mesh,
                 std::size_t frame) {
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (isFinite(points[i])) continue;
    throw std::runtime_error(name + ": vertex " + std::to_string(i) + " of \"" + mesh +
                             "\" is no finite point in sampled frame " + std::to_string(frame) +
                             "; is it linked to a node?");
  }
}

}  // namespace vexa::formats
