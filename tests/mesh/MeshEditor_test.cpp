#include "vexa/mesh/MeshEditor.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "tests/helpers/compare.h"
#include "tests/mesh/mesh_fixtures.h"

using namespace UXS;
using namespace vexa::tests;

namespace {

Position positionOf(const Mesh& mesh, unsigned int triangle) {
  return mesh.GetTriangleCoords(triangle).x;
}

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
  std::vector<unsigned int> mSections;
  bool mHasUV = false, mHasNormals = false;

  Triangles triangles() const {
    Triangles all;
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
        const auto known = std::find_if(met.begin(), met.end(), [&](unsigned int v) {
          return mVertices[v] == mVertices[*corner];
        });
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
      if (mSections[s] >= mRecords.size()) continue;
      if (mRecords[mSections[s]].mMaterial != material) continue;
      const std::size_t end = s + 1 < mSections.size() ? mSections[s + 1] : mRecords.size();
      std::vector<unsigned int> list;
      for (unsigned int t = mSections[s]; t < std::min(end, mRecords.size()); ++t) {
        list.push_back(t);
      }
      merge(list);
    }
  }

  void dropZeros() {
    const auto isPlain = [](const sRecord& r) { return r.mUV == Mesh::CornerUVs(); };
    const auto isUnlit = [](const sRecord& r) { return r.mNormals == Mesh::CornerPositions(); };
    if (std::all_of(mRecords.begin(), mRecords.end(), isPlain)) mHasUV = false;
    if (std::all_of(mRecords.begin(), mRecords.end(), isUnlit)) mHasNormals = false;
  }

  void commitLight() {
    mHasUV = mHasUV && !mRecords.empty();
    if (mHasNormals && !mRecords.empty()) return;
    for (sRecord& r : mRecords) {
      const Position n = faceNormal(mVertices, r.mCorners);
      r.mNormals = {n, n, n};
    }
    mHasNormals = !mRecords.empty();
  }

  void commit() {
    dropZeros();
    std::stable_sort(mRecords.begin(), mRecords.end(),
                     [](const sRecord& a, const sRecord& b) { return a.mMaterial < b.mMaterial; });
    mSections.clear();
    for (unsigned int t = 0; t < mRecords.size(); ++t) {
      if (t == 0 || mRecords[t].mMaterial != mRecords[t - 1].mMaterial) mSections.push_back(t);
    }
    commitLight();
  }
};

/// A mesh and its model, edited alike.
struct Pair {
  Mesh mMesh;
  NaiveMesh mModel;
};

/// One random call. Triangles use vertices that exist; no vertex is ever removed but by a copy.
void editOnce(Dice& dice, Pair& io, const Pair& other, Mesh::EditorBase& editor) {
  NaiveMesh& model = io.mModel;
  const auto vertices = static_cast<unsigned int>(model.mVertices.size());
  const auto triangles = static_cast<unsigned int>(model.mRecords.size());
  const unsigned int call = dice(24);
  if (call < 6 || vertices < 3) {
    model.mVertices.push_back(dice.position(true));
    EXPECT_EQ(editor.AddVertex(model.mVertices.back()), vertices);
  } else if (call < 12) {
    NaiveMesh::sRecord record;
    record.mCorners = dice.corners(vertices);
    record.mMaterial = dice(4);
    model.mRecords.push_back(record);
    model.mHasUV = model.mHasNormals = true;
    EXPECT_EQ(editor.AddTriangle(record.mCorners, record.mMaterial), triangles);
  } else if (call == 12) {
    const unsigned int v = dice(vertices);
    editor.SetVertex(v, model.mVertices[v] = dice.position(true));
  } else if (call == 13 && dice(4) == 0) {
    editor.RemoveAllTriangles();
    model.mRecords.clear();
    model.mHasUV = model.mHasNormals = false;
  } else if (call == 14) {
    const bool skipNormals = dice(2) == 0;
    editor.Copy(other.mMesh, skipNormals);
    model.copy(other.mModel, skipNormals);
    editor.Copy(io.mMesh, false);  // onto itself: nothing
  } else if (call == 15) {
    editor.MergeTriangleVertices(2u);
    model.mergeMaterial(2);
  } else if (triangles > 0) {
    const unsigned int t = dice(triangles);
    NaiveMesh::sRecord& record = model.mRecords[t];
    if (call == 16) {
      editor.SetTriangleMaterialID(t, record.mMaterial = dice(4));
    } else if (call == 17) {
      record.mUV.y = {dice.coordinate(true), dice.coordinate(true)};
      editor.SetTriangleUVCoords(t, record.mUV);
      model.mHasUV = true;
    } else if (call == 18) {
      record.mNormals.z = dice.position(true);
      editor.SetTriangleSmoothNormals(t, record.mNormals);
      model.mHasNormals = true;
    } else if (call < 22) {
      editor.RemoveTriangle(t);
      model.mRecords.erase(model.mRecords.begin() + t);
      model.mHasUV = model.mHasUV && triangles > 1;
      model.mHasNormals = model.mHasNormals && triangles > 1;
    } else {
      const std::vector<unsigned int> list{t, dice(triangles), dice(triangles)};
      editor.MergeTriangleVertices(list);
      model.merge(list);
    }
  }
}

void expectSame(const Mesh& mesh, const NaiveMesh& model, bool full) {
  ASSERT_TRUE(same(mesh.GetVerticesArray(), model.mVertices));
  ASSERT_TRUE(same(mesh.GetTrianglesArray(), model.triangles()));
  ASSERT_EQ(mesh.HasUVCoords(), model.mHasUV);
  std::vector<Position> normals;
  for (unsigned int t = 0; t < model.mRecords.size(); ++t) {
    const NaiveMesh::sRecord& r = model.mRecords[t];
    ASSERT_EQ(mesh.GetTriangleMaterialID(t), r.mMaterial);
    ASSERT_TRUE(!model.mHasUV || same(mesh.GetTriangleUVCoords(t), r.mUV));
    ASSERT_TRUE(same(mesh.GetTriangleSmoothNormals(t), r.mNormals));
    normals.push_back(faceNormal(model.mVertices, r.mCorners));
  }
  const Lists lists = listTriangles(model.mVertices.size(), model.triangles());
  ASSERT_TRUE(same(mesh.GetEdgesArray(), walkEdges(model.triangles(), normals, lists)));
  if (!full) return;
  ASSERT_EQ(mesh.GetSectionsCount(), model.mSections.size());
  const std::vector<unsigned int> groups = walkGroups(model.triangles(), model.mSections, lists);
  for (unsigned int t = 0; t < groups.size(); ++t) ASSERT_EQ(mesh.GetTriangleGroupID(t), groups[t]);
}

}  // namespace

TEST(MeshEditor, CountsFromZeroAndDatesTheMesh) {
  Mesh mesh;
  const double created = mesh.GetDate();
  while (Mesh().GetDate() == created) {
  }
  {
    Mesh::Editor editor(mesh, true);
    editor.SetVerticesCount(3);
    editor.SetTrianglesCount(1);
    for (unsigned int v = 0; v < 3; ++v) EXPECT_EQ(editor.AddVertex(kSquare[v]), v);
    EXPECT_EQ(editor.AddTriangle({0, 1, 2}, 5), 0u);
    EXPECT_TRUE(mesh.HasUVCoords()) << "until the commit finds them all zero";
  }
  EXPECT_FALSE(mesh.HasUVCoords());
  EXPECT_EQ(mesh.GetTriangleSmoothNormals(0).y, Position(0, 0, 1));
  EXPECT_EQ(mesh.GetDate(), created);
  { const Mesh::EditorBase editor(mesh, false); }
  EXPECT_GT(mesh.GetDate(), created);
}

// Required: this commit does not drop normals of zero, and so does not replace them either.
TEST(MeshEditor, TheLightWeightCommitKeepsZeroNormals) {
  Mesh mesh;
  {
    Mesh::LightWeightEditor editor(mesh, false);
    for (const Position& p : kSquare) editor.AddVertex(p);
    editor.AddTriangle({0, 1, 2}, 0);
  }
  EXPECT_TRUE(same(mesh.GetTriangleSmoothNormals(0).x, {}));
  EXPECT_EQ(mesh.GetEdgesArray().size(), 3u);
  EXPECT_EQ(mesh.GetSectionsCount(), 0u);
}

TEST(MeshEditor, ACopyWithoutNormalsGetsFlatOnes) {
  Mesh source, target;
  build(source, kSquare, {{{0, 1, 2}, 0}, {{0, 2, 3}, 0}});
  {
    Mesh::Editor editor(source, false);
    editor.SetTriangleSmoothNormals(1, {{1, 0, 0}, {1, 0, 0}, {1, 0, 0}});
  }
  { Mesh::Editor(target, false).Copy(source, true); }
  EXPECT_EQ(target.GetTriangleSmoothNormals(1).x, Position(0, 0, 1));
  { Mesh::Editor(target, false).Copy(source, false); }
  EXPECT_EQ(target.GetTriangleSmoothNormals(1).x, Position(1, 0, 0));
}

// The square as two triangles with vertices of their own; one corner is at the other zero.
TEST(MeshEditor, MergingJoinsCornersAtTheSamePosition) {
  Mesh mesh;
  build(mesh, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {-0.0f, 0, 0}, {1, 1, 0}, {0, 1, 0}},
        {{{0, 1, 2}, 3}, {{3, 4, 5}, 3}});
  EXPECT_EQ(mesh.GetTriangleGroupID(1), 1u);
  { Mesh::Editor(mesh, false).MergeTriangleVertices(3u); }
  EXPECT_EQ(mesh.GetTrianglesArray()[1], Corners(0, 2, 5));
  EXPECT_EQ(mesh.GetVerticesArray().size(), 6u);
  EXPECT_EQ(mesh.GetTriangleGroupID(1), 0u);
  EXPECT_EQ(positionOf(mesh, 1), kSquare[0]);
}

// Two meshes edited at random, committed both ways and copied from each other.
TEST(MeshEditor, AnyOrderOfCallsKeepsTheArraysInStep) {
  for (unsigned int seed = 0; seed < 300; ++seed) {
    Dice dice(seed);
    Pair pairs[2];
    for (int commit = 0; commit < 12; ++commit) {
      const unsigned int which = dice(2);
      Pair &edited = pairs[which], &other = pairs[1 - which];
      const bool full = dice(3) != 0;
      const auto edit = [&](Mesh::EditorBase& editor) {
        for (unsigned int calls = dice(25); calls > 0; --calls) {
          editOnce(dice, edited, other, editor);
        }
      };
      if (full) {
        Mesh::Editor editor(edited.mMesh, true);
        edit(editor);
        edited.mModel.commit();
      } else {
        Mesh::LightWeightEditor editor(edited.mMesh, true);
        edit(editor);
        edited.mModel.commitLight();
      }
      expectSame(edited.mMesh, edited.mModel, full);
      if (HasFatalFailure()) FAIL() << "seed " << seed << ", commit " << commit;
    }
  }
}
