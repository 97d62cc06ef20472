#include "vexa/mesh/MeshEditor.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "models/mesh_walks.h"
#include "tests/mesh/mesh_fixtures.h"
#include "vexa/mesh/MeshImpl.h"

using namespace UXS;
using namespace vexa::tests;

namespace {

/// A mesh as a list of whole triangles, which cannot get out of step.
struct NaiveMesh {
  struct sRecord {
    Corners mCorners;
    unsigned int mMaterial = 0;
    Mesh::CornerUVs mUV;
    Mesh::CornerPositions mNormals;
  };
  std::vector<Position> mVertices;
  std::vector<sRecord> mRecords;
  std::vector<unsigned int> mSections, mGroups;
  bool mHasUV = false, mHasNormals = false;

  std::vector<Corners> triangles() const {
    std::vector<Corners> all;
    for (const sRecord& r : mRecords) all.push_back(r.mCorners);
    return all;
  }

  void copy(const NaiveMesh& source, bool skipNormals) {
    std::vector<sRecord> records = source.mRecords;
    for (std::size_t i = 0; skipNormals && i < records.size(); ++i) {
      records[i].mNormals = i < mRecords.size() ? mRecords[i].mNormals : Mesh::CornerPositions();
    }
    mVertices = source.mVertices;
    mRecords = records;
    mHasUV = source.mHasUV;
    if (!skipNormals) mHasNormals = source.mHasNormals;
  }

  void merge(const std::vector<unsigned int>& list) {
    std::vector<unsigned int> met;
    for (const unsigned int t : list) {
      Corners& c = mRecords[t].mCorners;
      for (unsigned int* const corner : {&c.x, &c.y, &c.z}) {
        const auto isHere = [&](unsigned int v) { return mVertices[v] == mVertices[*corner]; };
        const auto known = std::find_if(met.begin(), met.end(), isHere);
        if (known == met.end()) {
          met.push_back(*corner);
        } else {
          *corner = *known;
        }
      }
    }
  }

  void mergeMaterial(unsigned int material) {
    for (std::size_t s = 0; s < mSections.size(); ++s) {
      const std::size_t next = s + 1 < mSections.size() ? mSections[s + 1] : mRecords.size();
      std::vector<unsigned int> list;
      for (auto t = mSections[s]; t < std::min(next, mRecords.size()); ++t) list.push_back(t);
      if (!list.empty() && mRecords[list[0]].mMaterial == material) merge(list);
    }
  }

  void commit(bool isFull) {
    if (isFull) sort();
    mHasUV = mHasUV && !mRecords.empty();
    const Walks walks(mVertices, triangles());
    if (isFull) mGroups = walks.groups(mSections);
    mGroups.resize(mRecords.size(), Mesh::Impl::kNoGroup);
    if (mHasNormals && !mRecords.empty()) return;
    for (std::size_t t = 0; t < mRecords.size(); ++t) {
      mRecords[t].mNormals = {walks.mNormals[t], walks.mNormals[t], walks.mNormals[t]};
    }
    mHasNormals = !mRecords.empty();
  }

  void sort() {
    const auto isSet = [](const auto& value) { return value != std::decay_t<decltype(value)>(); };
    const auto any = [this](auto test) {
      return std::any_of(mRecords.begin(), mRecords.end(), test);
    };
    mHasUV = mHasUV && any([&](const sRecord& r) { return isSet(r.mUV); });
    for (sRecord& r : mRecords) r.mUV = mHasUV ? r.mUV : Mesh::CornerUVs();  // no -0 either
    mHasNormals = mHasNormals && any([&](const sRecord& r) { return isSet(r.mNormals); });
    const auto isBefore = [](const auto& a, const auto& b) { return a.mMaterial < b.mMaterial; };
    std::stable_sort(mRecords.begin(), mRecords.end(), isBefore);
    mSections.clear();
    for (unsigned int t = 0; t < mRecords.size(); ++t) {
      if (t == 0 || isBefore(mRecords[t - 1], mRecords[t])) mSections.push_back(t);
    }
  }
};

/// A mesh and its model, edited alike.
struct Pair {
  Mesh mMesh;
  NaiveMesh mModel;
};

/// A random call that reads or writes one of the triangles.
void editTriangle(Dice& dice, NaiveMesh& io, Mesh::EditorBase& editor) {
  const auto count = static_cast<unsigned int>(io.mRecords.size());
  const unsigned int t = dice(count), call = dice(6);
  NaiveMesh::sRecord& record = io.mRecords[t];
  if (call == 0) {
    editor.SetTriangleMaterialID(t, record.mMaterial = dice(4));
  } else if (call == 1) {
    record.mUV.y = {dice.coordinate(), dice.coordinate()};
    editor.SetTriangleUVCoords(t, record.mUV);
    io.mHasUV = true;
  } else if (call == 2) {
    record.mNormals.z = dice.position();
    editor.SetTriangleSmoothNormals(t, record.mNormals);
    io.mHasNormals = true;
  } else if (call < 5) {
    editor.RemoveTriangle(t);
    io.mRecords.erase(io.mRecords.begin() + t);
    io.mHasUV = io.mHasUV && count > 1;
    io.mHasNormals = io.mHasNormals && count > 1;
  } else {
    const std::vector<unsigned int> list{t, dice(count), dice(count)};
    editor.MergeTriangleVertices(list);
    io.merge(list);
  }
}

/// Any random call. Triangles use vertices that exist.
void edit(Dice& dice, Pair& io, const Pair& other, Mesh::EditorBase& editor) {
  NaiveMesh& model = io.mModel;
  const auto vertices = static_cast<unsigned int>(model.mVertices.size());
  const unsigned int call = dice(20);
  if (call < 4 || vertices < 3) {
    model.mVertices.push_back(dice.position());
    EXPECT_EQ(editor.AddVertex(model.mVertices.back()), vertices);
  } else if (call < 11) {
    const Corners corners{dice(vertices), dice(vertices), dice(vertices)};
    model.mRecords.push_back({corners, dice(4), {}, {}});
    model.mHasUV = model.mHasNormals = true;
    EXPECT_EQ(editor.AddTriangle(corners, model.mRecords.back().mMaterial),
              model.mRecords.size() - 1);
  } else if (call == 11) {
    const unsigned int v = dice(vertices);
    editor.SetVertex(v, model.mVertices[v] = dice.position());
  } else if (call == 12) {
    const bool skipNormals = dice(2) == 0;
    editor.Copy(other.mMesh, skipNormals);
    model.copy(other.mModel, skipNormals);
    editor.Copy(io.mMesh, false);  // onto itself: nothing
  } else if (call == 13) {
    editor.MergeTriangleVertices(2u);
    model.mergeMaterial(2);
  } else if (call == 14 && dice(4) == 0) {
    editor.RemoveAllTriangles();
    model.mRecords.clear();
    model.mHasUV = model.mHasNormals = false;
  } else if (!model.mRecords.empty()) {
    editTriangle(dice, model, editor);
  }
}

void extend(Oru::TBox3D<float>& io, const Position& p) {
  const Position lo = io.mMin, hi = io.mMax;
  const auto low = [](float a, float b) { return b <= a ? b : a; };
  const auto high = [](float a, float b) { return b <= a ? a : b; };
  io = io.mIsValid ? Oru::TBox3D<float>{{low(lo.x, p.x), low(lo.y, p.y), low(lo.z, p.z)},
                                        {high(hi.x, p.x), high(hi.y, p.y), high(hi.z, p.z)},
                                        true}
                   : Oru::TBox3D<float>{p, p, true};
}

void expectSame(const Mesh& mesh, const NaiveMesh& model, bool isFull) {
  const Walks walks(model.mVertices, model.triangles());
  ASSERT_TRUE(same(mesh.GetVerticesArray(), model.mVertices));
  ASSERT_TRUE(same(mesh.GetTrianglesArray(), walks.mTriangles));
  ASSERT_EQ(mesh.HasUVCoords(), model.mHasUV);
  ASSERT_TRUE(same(mesh.GetEdgesArray(), walks.edges()));
  Oru::TBox3D<float> boxes[5] = {};  // the last for all
  for (unsigned int t = 0; t < model.mRecords.size(); ++t) {
    const NaiveMesh::sRecord& r = model.mRecords[t];
    ASSERT_EQ(mesh.GetTriangleMaterialID(t), r.mMaterial);
    ASSERT_EQ(mesh.GetTriangleGroupID(t), model.mGroups[t]);
    ASSERT_TRUE(!model.mHasUV || same(mesh.GetTriangleUVCoords(t), r.mUV));
    ASSERT_TRUE(same(mesh.GetTriangleSmoothNormals(t), r.mNormals));
    ASSERT_TRUE(same(mesh.GetTriangleNormal(t), walks.mNormals[t]));
    for (const unsigned int v : {r.mCorners.x, r.mCorners.y, r.mCorners.z}) {
      extend(boxes[r.mMaterial], model.mVertices[v]);
      extend(boxes[4], model.mVertices[v]);
    }
  }
  if (!isFull) return;
  ASSERT_EQ(mesh.GetSectionsCount(), model.mSections.size());
  ASSERT_TRUE(same(mesh.GetAABB(), boxes[4]));
  for (unsigned int m = 0; m < 4; ++m) ASSERT_TRUE(same(mesh.GetMaterialAABB(m), boxes[m]));
}

template <class Editor>
void editAndCommit(Dice& dice, Pair& io, const Pair& other, bool isFull) {
  {
    Editor editor(io.mMesh, true);
    for (unsigned int calls = dice(50); calls > 0; --calls) edit(dice, io, other, editor);
    io.mModel.commit(isFull);
  }
  expectSame(io.mMesh, io.mModel, isFull);
}

}  // namespace

// Two meshes of few vertices, edited at random, committed both ways and copied from each other.
// Their edges belong to many triangles, corners repeat, positions are NaN or infinite.
TEST(MeshEditor, AnyOrderOfCallsKeepsTheArraysInStep) {
  for (unsigned int seed = 0; seed < 300; ++seed) {
    Dice dice(seed);
    Pair pairs[2];
    for (int commit = 0; commit < 12; ++commit) {
      const unsigned int which = dice(2);
      if (dice(3) != 0) {
        editAndCommit<Mesh::Editor>(dice, pairs[which], pairs[1 - which], true);
      } else {
        editAndCommit<Mesh::LightWeightEditor>(dice, pairs[which], pairs[1 - which], false);
      }
      if (HasFatalFailure()) FAIL() << "seed " << seed << ", commit " << commit;
    }
  }
}

// More positions than fit at first, zeros of both signs and NaN among them.
TEST(MeshEditor, MergingFindsWhatTheHashTableFinds) {
  Dice dice(1);
  Mesh::Impl expected;
  for (unsigned int v = 0; v < 9000; ++v) {
    const auto coarse = [&] { return dice.coordinate() * static_cast<float>(dice(20)); };
    expected.mVertices.push_back({coarse(), coarse(), coarse()});
    expected.mTriangles.push_back({dice(v + 1), dice(v + 1), v});
  }
  Mesh mesh;
  {
    Mesh::Editor editor(mesh, false);
    for (const Position& p : expected.mVertices) editor.AddVertex(p);
    for (const Corners& c : expected.mTriangles) editor.AddTriangle(c, 3);
  }
  { Mesh::Editor(mesh, false).MergeTriangleVertices(3u); }
  uxs_hashtable<Position, unsigned int> table(1024);
  for (unsigned int t = 0; t < 9000; ++t) InternalMergeTriangleVertices(t, expected, table);
  EXPECT_TRUE(same(expected.mTriangles, mesh.GetTrianglesArray()));
}

// A fold of 30 degrees along the edge 0-1, the second face turned over. At vertex 0 the corners
// have 90 and 45 degrees, at vertex 1 45 and 90.
TEST(MeshEditor, SmoothedAndTurnedNormalsOutliveTheCommit) {
  const float s = 0.5f, c = std::sqrt(0.75f);
  const auto unit = [](const Position& p) { return p * (1 / std::sqrt(dotXYZ(p, p))); };
  const auto isNear = [](const Position& a, const Position& b) {
    return dotXYZ(a - b, a - b) < 1e-12f;
  };
  const Position up{0, 0, 1}, over{0, s, -c};
  const Position first = unit(up * 2.0f - over), second = unit(up - over * 2.0f);
  const std::vector<unsigned int> both{1, 0, 1};
  for (int way = 0; way < 4; ++way) {
    Mesh mesh;
    build(mesh, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, c, s}}, {{0, 1, 2}, {1, 0, 3}}, 5);
    if (way == 3) Mesh::Editor(mesh, false).SmoothTriangleNormals({20.0f, 40.0f});
    {
      Mesh::Editor editor(mesh, false);
      if (way == 0) editor.SmoothTriangleNormals(both, 40);
      if (way == 1) editor.SmoothTriangleNormals(5u, 40);
      if (way == 2) editor.SmoothTriangleNormals({40.0f, 0});
    }
    const auto [n0, n1, n2] = mesh.GetTriangleSmoothNormals(0);
    const auto [m1, m0, m2] = mesh.GetTriangleSmoothNormals(1);
    EXPECT_TRUE(isNear(n0, way == 3 ? up : first) && isNear(n1, way == 3 ? up : second)) << way;
    EXPECT_TRUE(isNear(m0, way == 3 ? over : -first) && isNear(m1, way == 3 ? over : -second));
    EXPECT_TRUE(isNear(n2, up) && isNear(m2, over)) << way;
  }
  Mesh mesh;
  {
    Mesh::Editor editor(mesh, false);
    for (const Position& p : kSquare) editor.AddVertex(p);
    editor.AddTriangle({0, 1, 2}, 1);
    editor.AddTriangle({0, 2, 3}, 2);
    editor.SmoothTriangleNormals({0}, 30);
    editor.SetTriangleSmoothNormals(1, {{0, 1, -1}, {0, 0, -2}, {1, 0, 1}});
    editor.ReorientTriangleSmoothNormals({0});
    editor.ReorientTriangleSmoothNormals(2u);
  }
  EXPECT_EQ(mesh.GetTriangleSmoothNormals(0).y, up);
  const auto [a, b, d] = mesh.GetTriangleSmoothNormals(1);
  EXPECT_TRUE(a == Position(0, -1, 1) && b == Position(0, 0, 2) && d == Position(1, 0, 1));
}

TEST(MeshEditor, TheEndDatesTheMeshUnlessToldToKeepTheDate) {
  Mesh mesh;
  const double created = mesh.GetDate();
  while (Mesh().GetDate() == created) {
  }
  { Mesh::Editor(mesh, true).SetTrianglesCount(5); }
  EXPECT_EQ(mesh.GetDate(), created);
  { const Mesh::EditorBase editor(mesh, false); }
  EXPECT_GT(mesh.GetDate(), created);
}
