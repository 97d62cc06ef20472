// Making instances of animated objects known.
#include <cstring>
#include <memory>
#include <string>

#include "vexa/animation/XCAnimationMgr.h"
#include "vexa/animation/host_access_internal.h"
#include "vexa/framecollector/XCAMOFileIOTool.h"
#include "vexa/framecollector/XCFrameCollector.h"
#include "vexa/mesh/Mesh.h"
#include "vexa/mesh/MeshEditor.h"
#include "vexa/support/CChemin.h"

// Defined in a process that looks for leaks; it keeps a marked object from being reported.
extern "C" __attribute__((weak)) void __lsan_ignore_object(const void*);

namespace Norvel::Vexa {

namespace {

constexpr char kOperation[] = "XCAnimationMgr::RegisterAnimatedObject";

// A "file://" URL or a plain path.
CChemin pathOf(const char* text) {
  const bool isURL = text != nullptr && std::strncmp(text, "file://", 7) == 0;
  return isURL ? CChemin(CChemin::kTypeURL, text) : CChemin(text);
}

// The file of that name in a directory, when there is one; changes `path` then.
bool takeFileIn(const CChemin& directory, const std::string& name, CChemin& path) {
  const CChemin candidate = directory.Ajoute(name.c_str());
  if (!candidate.FichierExiste()) return false;
  path = candidate;
  return true;
}

// Replaces `path` by the file to read; false when no such file exists.
bool locate(CChemin& path, const char* fallbackDirectory) {
  const std::string name = path.DonneNom();
  if (name.empty()) return false;
  if (path.FichierExiste()) return true;
  const CChemin fallback = pathOf(fallbackDirectory);
  const std::string text = fallback.c_str();
  if (text.empty()) return false;
  // Required behaviour: a fallback without '/' at its end stands for the directory it is in.
  const bool hasParent = text.find('/') != std::string::npos;
  if (hasParent && takeFileIn(fallback.DonneChemin().c_str(), name, path)) return true;
  return takeFileIn(fallback, name, path);
}

[[noreturn]] void refusePolygon(int polygon, const char* fault) {
  raise(kOperation, ("polygon " + std::to_string(polygon) + fault).c_str());
}

// Adds the triangle of a polygon's first three corners.
void addTriangle(UXS::Mesh::Editor& editor, const UxZel::IZelPolygon& polygon, int index,
                 unsigned int pointCount) {
  const UxZel::TZelObjectMgr<UxZel::sPolygonCorner>& corners = *polygon.GetVertices();
  if (corners.GetCount() < 3) refusePolygon(index, " has fewer than three corners");
  const UxZel::sPolygonCorner c[3] = {*corners.GetAt(0), *corners.GetAt(1), *corners.GetAt(2)};
  for (const UxZel::sPolygonCorner& corner : c) {
    if (corner.mPointIndex >= pointCount) refusePolygon(index, " has a corner past the last point");
  }
  const unsigned int triangle = editor.AddTriangle(
      {c[0].mPointIndex, c[1].mPointIndex, c[2].mPointIndex}, polygon.GetMaterialIndex());
  editor.SetTriangleUVCoords(triangle,
                             {{c[0].mU, c[0].mV}, {c[1].mU, c[1].mV}, {c[2].mU, c[2].mV}});
}

// The points come first: a corner is checked against their number.
void fill(UXS::Mesh::Editor& editor, const UxZel::TZelObjectMgr<UxZel::CZelPoint>& points,
          const UxZel::TZelObjectMgr<UxZel::IZelPolygon>& polygons) {
  unsigned int pointCount = 0;
  for (int i = 0, count = points.GetCount(); i < count; ++i, ++pointCount) {
    const UxZel::CZelPoint& p = *points.GetAt(i);
    editor.AddVertex({float(p.x), float(p.y), float(p.z)});
  }
  for (int i = 0, count = polygons.GetCount(); i < count; ++i) {
    addTriangle(editor, *polygons.GetAt(i), i, pointCount);
  }
}

// Commits within its own scope: where memory runs out the caller gets to know.
std::unique_ptr<UXS::Mesh> buildMesh(const UxZel::TZelObjectMgr<UxZel::CZelPoint>& points,
                                     const UxZel::TZelObjectMgr<UxZel::IZelPolygon>& polygons) {
  auto mesh = std::make_unique<UXS::Mesh>();
  UXS::Mesh::Editor editor(*mesh, false);
  try {
    fill(editor, points, polygons);
    editor.Commit();
  } catch (...) {
    editor.Abandon();
    throw;
  }
  return mesh;
}

}  // namespace

void XCAnimationMgr::RegisterAnimatedObject(UxZel::IZelObjectInstance* instance,
                                            UxZel::IZelAnimatedObject* object,
                                            const char* animationFile,
                                            const char* fallbackDirectory,
                                            UxZel::TZelObjectMgr<UxZel::CZelPoint>* points,
                                            UxZel::TZelObjectMgr<UxZel::IZelPolygon>* polygons) {
  const UxZel::CZelUUID id = *instance->GetIdentity()->GetUUID();
  if (mInstancesByUUID.count(id) != 0) return;
  if (const auto known = mInstancesByAnimatedObject.find(object);
      known != mInstancesByAnimatedObject.end()) {
    mInstancesByUUID.emplace(id, known->second);
    return;
  }
  // The kind is asked before the file is looked for and judged after the mesh is built: a fault in
  // the points and polygons is raised for an object of any kind.
  const int kind = object->GetAnimationKind();
  CChemin path = pathOf(animationFile);
  if (!locate(path, fallbackDirectory)) return;
  std::unique_ptr<UXS::Mesh> mesh = buildMesh(*points, *polygons);
  if (kind != 0) return;
  auto collector = std::make_unique<XCFrameCollector>(mesh.get());
  XCAMOFileIOTool(path).Read(collector.get());

  auto record = std::make_unique<sAnimatedInstanceData>();
  *record = {object, collector.get(), mesh.get()};
  // All memory is taken once both nodes exist. Linking them cannot fail, so the two maps never
  // disagree.
  decltype(mInstancesByAnimatedObject) byObject{{object, record.get()}};
  decltype(mInstancesByUUID) byUUID{{id, record.get()}};
  mInstancesByAnimatedObject.merge(byObject);
  mInstancesByUUID.merge(byUUID);
  // Required behaviour: the record, its mesh and its frames outlive the manager.
  if (__lsan_ignore_object != nullptr) __lsan_ignore_object(record.get());
  static_cast<void>(record.release());
  static_cast<void>(collector.release());
  static_cast<void>(mesh.release());
}

}  // namespace Norvel::Vexa
