#include <algorithm>
#include <array>
#include <map>
#include <stdexcept>
#include <tuple>

#include "importer/fbx_parts_internal.h"
#include "importer/polygon_internal.h"

namespace vexa::importer {

namespace {

[[noreturn]] void refuse(const std::string& reason) { throw std::runtime_error(reason); }

// An index that a file states as a number; SIZE_MAX for one that is none.
std::size_t indexOf(double number) {
  return number >= 0 && number < 4294967296.0 ? std::size_t(number) : SIZE_MAX;
}

// A list with one value per corner, point or polygon, perhaps by way of indices:
// "MappingInformationType" says which of the three counts, and an index list makes it one step
// longer.
class Layer {
 public:
  Layer(const FbxRecord* record, const char* values, const char* indices, std::size_t width)
      : mWidth(width) {
    if (record == nullptr) return;
    mValues = record->numbers(values);
    mIndices = record->numbers(indices);
    if (const FbxRecord* mapping = record->find("MappingInformationType")) {
      mMapping = mapping->text(0);
    }
  }

  bool isEmpty() const { return mValues.empty(); }

  // The first number of the value for a corner, or null.
  const double* at(std::size_t corner, std::size_t point, std::size_t polygon) const {
    std::size_t index = corner;
    if (mMapping == "AllSame") index = 0;
    if (mMapping == "ByPolygon") index = polygon;
    if (mMapping.rfind("ByVert", 0) == 0 || mMapping == "ByControlPoint") index = point;
    if (!mIndices.empty()) {
      if (index >= mIndices.size()) return nullptr;
      index = indexOf(mIndices[index]);
    }
    if (index >= mValues.size() / mWidth) return nullptr;
    return &mValues[index * mWidth];
  }

 private:
  std::size_t mWidth;
  std::vector<double> mValues, mIndices;
  std::string mMapping;
};

// One Geometry object as meshes of one material each, without bones.
class GeometryReader {
 public:
  // Stands for the material of a node without one.
  static constexpr std::uint32_t kNoMaterial = UINT32_MAX;

  GeometryReader(const FbxObject& geometry, const std::vector<std::uint32_t>& materials,
                 std::vector<Vec3> points)
      : mName(geometry.mName),
        mMaterials(materials),
        mPoints(std::move(points)),
        mCorners(geometry.mRecord->numbers("PolygonVertexIndex")),
        mUvs(geometry.mRecord->find("LayerElementUV"), "UV", "UVIndex", 2),
        mMaterialIds(geometry.mRecord->find("LayerElementMaterial"), "Materials", "", 1) {}

  // A polygon ends with an index below 0: minus the index, minus 1.
  void read() {
    std::size_t first = 0, polygon = 0;
    for (std::size_t i = 0; i < mCorners.size(); ++i) {
      if (mCorners[i] >= 0) continue;
      // -1 is corner 0 at the end of a polygon, -2 is corner 1, and so on.
      mCorners[i] = -mCorners[i] - 1;
      addPolygon(first, i + 1, polygon++);
      first = i + 1;
    }
  }

  std::map<std::uint32_t, SourceModel::Mesh>& meshes() { return mMeshes; }
  // Per mesh the geometry's point of each of its points.
  const std::vector<std::size_t>& origins(std::uint32_t material) const {
    return mOrigins.at(material);
  }

 private:
  void addPolygon(std::size_t first, std::size_t end, std::size_t polygon) {
    std::vector<Vec3> places;
    for (std::size_t i = first; i < end; ++i) {
      const std::size_t point = indexOf(mCorners[i]);
      if (point >= mPoints.size()) {
        refuse("mesh '" + mName + "' has a polygon with a corner past its last vertex");
      }
      places.push_back(mPoints[point]);
    }
    const std::uint32_t material = materialOf(polygon, first);
    SourceModel::Mesh& mesh = mMeshes[material];
    // Polygons may be concave, so a fan will not do.
    for (const auto& [a, b, c] : trianglesOf(places)) {
      mesh.mTriangles.emplace_back(vertex(material, mesh, first + a, polygon),
                                   vertex(material, mesh, first + b, polygon),
                                   vertex(material, mesh, first + c, polygon));
    }
  }

  // A node without a material gets one more.
  std::uint32_t materialOf(std::size_t polygon, std::size_t corner) const {
    if (mMaterials.empty()) return kNoMaterial;
    const double* id = mMaterialIds.at(corner, 0, polygon);
    const std::size_t index = id == nullptr ? 0 : indexOf(*id);
    return mMaterials[index < mMaterials.size() ? index : 0];
  }

  // A point with one pair of texture coordinates.
  std::uint32_t vertex(std::uint32_t material, SourceModel::Mesh& ioMesh, std::size_t corner,
                       std::size_t polygon) {
    const std::size_t point = indexOf(mCorners[corner]);
    Oru::TVector2D<float> uv{};
    if (const double* values = mUvs.at(corner, point, polygon)) {
      uv = {float(values[0]), float(values[1])};
    }
    const auto next = std::uint32_t(ioMesh.mPoints.size());
    const auto [known, isNew] = mKnown[material].try_emplace({point, uv.x, uv.y}, next);
    if (!isNew) return known->second;
    const Vec3& p = mPoints[point];
    ioMesh.mPoints.emplace_back(float(p.x), float(p.y), float(p.z));
    if (!mUvs.isEmpty()) ioMesh.mUvs.push_back(uv);
    mOrigins[material].push_back(point);
    return next;
  }

  using Vertex = std::tuple<std::size_t, float, float>;

  const std::string& mName;
  const std::vector<std::uint32_t>& mMaterials;
  const std::vector<Vec3> mPoints;
  std::vector<double> mCorners;
  const Layer mUvs, mMaterialIds;
  std::map<std::uint32_t, SourceModel::Mesh> mMeshes;
  std::map<std::uint32_t, std::map<Vertex, std::uint32_t>> mKnown;
  std::map<std::uint32_t, std::vector<std::size_t>> mOrigins;
};

bool isIdentity(const Matrix& m) {
  const Matrix identity;
  return std::equal(std::begin(m.e), std::end(m.e), std::begin(identity.e));
}

class MeshReader {
 public:
  MeshReader(const FbxParts& parts, SourceModel& ioModel)
      : mParts(parts), mScene(parts.mScene), mModel(ioModel) {}

  void add(const FbxObject& geometry) {
    std::vector<const FbxObject*> nodes;
    for (const FbxScene::Link& link : mScene.above(geometry.mId)) {
      // A node in a ring of nodes is not part of the model.
      if (mParts.mNodes.count(link.mObject->mId) > 0) nodes.push_back(link.mObject);
    }
    const FbxObject* skin = deformer(geometry, "Skin");
    noteDeformers(geometry, skin);
    // Bones alone say where a skinned mesh is, and materials are the first node's.
    if (skin != nullptr && nodes.size() > 1) nodes.resize(1);
    for (const FbxObject* node : nodes) addOn(*node, geometry, skin);
  }

 private:
  void note(const FbxObject& geometry, const std::string& what) {
    const FbxObject* node = mScene.firstAbove(geometry.mId, "Model");
    const std::string& name = geometry.mName.empty() && node ? node->mName : geometry.mName;
    mModel.mNotes.push_back("mesh '" + name + "' " + what);
  }

  const FbxObject* deformer(const FbxObject& geometry, const char* sort) const {
    for (const FbxScene::Link& link : mScene.below(geometry.mId)) {
      if (link.mObject->mClass == "Deformer" && link.mObject->mSort == sort) return link.mObject;
    }
    return nullptr;
  }

  void noteDeformers(const FbxObject& geometry, const FbxObject* skin) {
    for (const FbxScene::Link& link : mScene.below(geometry.mId)) {
      if (link.mObject->mClass != "Deformer" || link.mObject == skin) continue;
      if (link.mObject->mSort == "Skin") note(geometry, "has a second skin, which is left out");
      if (link.mObject->mSort == "VertexCacheDeformer") {
        note(geometry, "is moved by a vertex cache, which is left out");
      }
    }
    if (skin == nullptr) return;
    const FbxRecord* type = skin->mRecord->find("SkinningType");
    const std::string sort = type == nullptr ? "" : type->text(0);
    const auto shares = skin->mRecord->numbers("BlendWeights");
    const bool blends = sort == "Blend" && std::any_of(shares.begin(), shares.end(),
                                                       [](double share) { return share != 0; });
    if (sort == "DualQuaternion" || blends) {
      note(geometry, "is skinned by dual quaternions; it is skinned linearly here");
    }
  }

  // The points with the shapes that have a weight at rest.
  std::vector<Vec3> pointsOf(const FbxObject& geometry) {
    const auto numbers = geometry.mRecord->numbers("Vertices");
    std::vector<Vec3> points;
    for (std::size_t i = 0; i + 2 < numbers.size(); i += 3) {
      points.emplace_back(numbers[i], numbers[i + 1], numbers[i + 2]);
    }
    for (const FbxScene::Link& link : mScene.below(geometry.mId)) {
      if (link.mObject->mSort != "BlendShape") continue;
      for (const FbxScene::Link& channel : mScene.below(link.mObject->mId)) {
        if (channel.mObject->mSort == "BlendShapeChannel") addShape(*channel.mObject, points);
      }
    }
    return points;
  }

  void addShape(const FbxObject& channel, std::vector<Vec3>& ioPoints) {
    // In one of two places, by the version of the writer.
    double percent = fbxNumber(channel, "DeformPercent").value_or(0);
    if (const FbxRecord* stored = channel.mRecord->find("DeformPercent")) {
      if (!stored->mValues.empty() && percent == 0) percent = stored->mValues[0].number();
    }
    const FbxObject* shape = mScene.firstBelow(channel.mId, "Geometry");
    // The weight is in per cent of a full shape.
    if (percent == 0 || shape == nullptr) return;
    const auto full = channel.mRecord->numbers("FullWeights");
    const double weight = percent / (full.empty() || full[0] == 0 ? 100 : full[0]);
    const auto indices = shape->mRecord->numbers("Indexes");
    const auto moves = shape->mRecord->numbers("Vertices");
    for (std::size_t i = 0; i < indices.size() && 3 * i + 2 < moves.size(); ++i) {
      const std::size_t point = indexOf(indices[i]);
      if (point >= ioPoints.size()) continue;
      ioPoints[point] =
          ioPoints[point] + Vec3(moves[3 * i], moves[3 * i + 1], moves[3 * i + 2]) * weight;
    }
  }

  void addOn(const FbxObject& node, const FbxObject& geometry, const FbxObject* skin) {
    // A geometry counts the materials of its node in the order in which they are connected.
    std::vector<std::uint32_t> materials;
    for (const FbxScene::Link& link : mScene.below(node.mId)) {
      const auto found = mParts.mMaterials.find(link.mObject->mId);
      if (found != mParts.mMaterials.end()) materials.push_back(found->second);
    }
    GeometryReader reader(geometry, materials, pointsOf(geometry));
    reader.read();
    const Matrix geometric = fbxGeometricMatrix(node);
    const std::int32_t hangsOn = nodeFor(node, geometric);
    // One mesh per material, as everywhere else in a SourceModel.
    for (auto& [material, mesh] : reader.meshes()) {
      const bool isDefault = material == GeometryReader::kNoMaterial;
      mesh.mMaterial = isDefault ? std::uint32_t(mParts.mMaterials.size()) : material;
      mesh.mName = geometry.mName.empty() ? node.mName : geometry.mName;
      if (skin != nullptr) addBones(*skin, geometric, reader.origins(material), mesh);
      mModel.mInstances.push_back({hangsOn, std::int32_t(mModel.mMeshes.size())});
      mModel.mMeshes.push_back(std::move(mesh));
    }
  }

  // A geometric matrix becomes a node of its own, which has no children.
  std::int32_t nodeFor(const FbxObject& node, const Matrix& geometric) {
    const std::int32_t index = mParts.mNodes.at(node.mId);
    if (isIdentity(geometric)) return index;
    SourceModel::Node added;
    added.mName = node.mName;
    added.mParent = index;
    added.mLocal = geometric;
    mModel.mNodes.push_back(std::move(added));
    return std::int32_t(mModel.mNodes.size() - 1);
  }

  void addBones(const FbxObject& skin, const Matrix& geometric,
                const std::vector<std::size_t>& origins, SourceModel::Mesh& ioMesh) {
    // A point with several uvs is several vertices: its weight goes to each of them.
    std::map<std::size_t, std::vector<std::uint32_t>> copies;
    for (std::size_t i = 0; i < origins.size(); ++i) {
      copies[origins[i]].push_back(std::uint32_t(i));
    }
    for (const FbxScene::Link& link : mScene.below(skin.mId)) {
      if (link.mObject->mSort != "Cluster") continue;
      const FbxObject& cluster = *link.mObject;
      const FbxObject* node = mScene.firstBelow(cluster.mId, "Model");
      SourceModel::Bone bone;
      bone.mName = node == nullptr ? cluster.mName : node->mName;
      const auto found = node == nullptr ? mParts.mNodes.end() : mParts.mNodes.find(node->mId);
      if (found != mParts.mNodes.end()) bone.mNode = found->second;
      // "Transform" leads from the mesh to the bone in the pose of binding.
      bone.mOffset =
          fbxMatrix(cluster.mRecord->numbers("Transform")).value_or(Matrix()) * geometric;
      const auto indices = cluster.mRecord->numbers("Indexes");
      const auto weights = cluster.mRecord->numbers("Weights");
      for (std::size_t i = 0; i < std::min(indices.size(), weights.size()); ++i) {
        const auto places = copies.find(indexOf(indices[i]));
        // Only points that this material uses have become vertices.
        if (places == copies.end()) continue;
        for (const std::uint32_t v : places->second) bone.mInfluences.push_back({v, weights[i]});
      }
      ioMesh.mBones.push_back(std::move(bone));
    }
  }

  const FbxParts& mParts;
  const FbxScene& mScene;
  SourceModel& mModel;
};

}  // namespace

void addFbxMeshes(const FbxParts& parts, SourceModel& ioModel) {
  MeshReader reader(parts, ioModel);
  for (const FbxObject& object : parts.mScene.objects()) {
    if (object.mClass != "Geometry" || object.mSort == "Shape") continue;
    if (object.mSort == "Mesh") {
      reader.add(object);
    } else if (object.mSort != "Line") {
      ioModel.mNotes.push_back("'" + object.mName + "' is a " + object.mSort +
                               ", which is left out");
    }
  }
}

}  // namespace vexa::importer
