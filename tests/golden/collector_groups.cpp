// The frame collector and the reader of animation files.
#include <cmath>

#include "tests/golden/Group.h"
#include "tests/golden/animation_bytes.h"
#include "tests/golden/meshes.h"
#include "tests/helpers/recording_reporter.h"
#include "tests/helpers/scratch_directory.h"

namespace vexa::tests {

namespace {

using Norvel::Vexa::XCFrameCollector;
using Point = Oru::TVector3D<float>;

// How a collector is filled: as a file fills it, with nodes of unequal length, with links that lead
// nowhere.
struct Filling {
  bool mIsHostile = false, mIsUneven = false, mHasAbsentNodes = false;
};

DrawnAnimation fill(Numbers& n, XCFrameCollector& collector, unsigned int vertices,
                    const Filling& how) {
  DrawnAnimation drawn = drawAnimation(n, vertices, how.mIsHostile);
  for (std::size_t t = 0; t < drawn.mFrames.size(); ++t) collector.CreateTake();
  collector.SetGlobalTransformation(drawn.mGlobal);
  for (const auto& takes : drawn.mNodes) {
    int node = -1;
    for (unsigned int take = 0; take < takes.size(); ++take) {
      std::size_t frames = takes[take].size();
      if (how.mIsUneven && n.oneIn(3)) frames = n.below(std::uint32_t(frames) + 1);
      for (std::size_t f = 0; f < frames; ++f) {
        node = int(collector.AddTransformation(takes[take][f], take, node));
      }
    }
  }
  for (DrawnLink& link : drawn.mLinks) {
    if (how.mHasAbsentNodes && n.oneIn(5)) link.mNode = n.oneIn(2) ? -1 : link.mNode + 3;
    collector.AddLink(link.mNode, {{1, 2, 3, n.below(3)}}, link.mVertex, link.mWeight);
  }
  return drawn;
}

void inAnimation(Recorder& r, const DrawnAnimation& drawn) {
  r.in("nodes", drawn.mNodes.size()).in("links", drawn.mLinks.size()).in("global", drawn.mGlobal);
  for (const std::uint32_t frames : drawn.mFrames) r.in("frames", frames);
  for (std::size_t i = 0; i < drawn.mLinks.size() && i < 6; ++i) {
    r.in("node", drawn.mLinks[i].mNode).in("vertex", drawn.mLinks[i].mVertex);
    r.in("weight", drawn.mLinks[i].mWeight);
  }
}

struct Deformable {
  UXS::uxs_autoptr<UXS::Mesh> mMesh = newMesh();
  DrawnMesh mDrawn;

  explicit Deformable(Numbers& n) : mDrawn(drawMesh(n)) {
    UXS::Mesh::Editor editor(*mMesh, false);
    add(mDrawn, editor);
    const bool hasUV = n.oneIn(3);
    if (!hasUV || mDrawn.mTriangles.empty()) return;
    editor.SetTriangleUVCoords(0, {{0.25f, 0.5f}, {1, 0}, {n.unit<float>(), 1}});
  }
  const std::vector<Point>& vertices() const { return mMesh->GetVerticesArray(); }
};

using Ask = void (*)(Recorder&, XCFrameCollector&, const std::vector<Point>&, unsigned int,
                     unsigned int);

void askBlends(Recorder& r, XCFrameCollector& collector, const std::vector<Point>& vertices,
               unsigned int take, unsigned int frame) {
  for (const Point& vertex : vertices) {
    double sum = 7;
    r.out(collector.GetVertexTransformation(&vertex, take, frame, sum), sum);
  }
}

void askPoints(Recorder& r, XCFrameCollector& collector, const std::vector<Point>& vertices,
               unsigned int take, unsigned int frame) {
  for (const Point& vertex : vertices) r.out(collector.TransformPoint(&vertex, take, frame));
}

void askClones(Recorder& r, XCFrameCollector& collector, const std::vector<Point>& /*vertices*/,
               unsigned int take, unsigned int frame) {
  const UXS::Mesh& clone = *collector.GetCurrentDefinition(take, frame, {{0, 0, 0, frame % 2}});
  outMesh(r, clone);
  r.out(clone.GetStaticMesh(), clone.GetMainMesh() == nullptr);
}

void runCollector(Recorder& r, Filling how, Ask ask) {
  Numbers& n = r.numbers();
  RecordingReporter reporter;
  const Norvel::XStPushReporter scope(&reporter, false);
  for (int i = 0; i < 160; ++i) {
    r.begin();
    const Deformable rest(n);
    XCFrameCollector collector(rest.mMesh.get());
    const auto vertices = unsigned(rest.vertices().size());
    const DrawnAnimation drawn = fill(n, collector, vertices, how);
    inMesh(r, rest.mDrawn);
    inAnimation(r, drawn);
    r.out(collector.GetSize(), collector.GetNbrTakes(), collector.GetGlobalTransformation());
    for (int k = 0; k < 4; ++k) {
      const unsigned int takes = unsigned(drawn.mFrames.size()) + (how.mHasAbsentNodes ? 1 : 0);
      const unsigned int take = n.below(takes), frame = n.oneIn(6) ? 1000 : n.below(6);
      r.in("take", take).in("frame", frame);
      ask(r, collector, rest.vertices(), take, frame);
    }
    r.out(collector.TransformPoint(0u, 0u, 0u));
  }
}

// The messages about links that cannot be followed, for few links.
void runReports(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 300; ++i) {
    r.begin();
    RecordingReporter reporter;
    const Norvel::XStPushReporter scope(&reporter, false);
    const auto mesh = newMesh();
    {
      UXS::Mesh::Editor editor(*mesh, false);
      editor.AddVertex({1, 2, 3});
    }
    XCFrameCollector collector(mesh.get());
    inAnimation(r, fill(n, collector, 1, {false, true, true}));
    const unsigned int take = n.below(4);
    double sum = 0;
    r.out(collector.GetVertexTransformation(&mesh->GetVerticesArray()[0], take, n.below(4), sum));
    for (const std::string& line : reporter.lines) r.out(line);
  }
}

// A file as it is written, cut short, of another version, with a vertex that is not there.
void runReader(Recorder& r) {
  Numbers& n = r.numbers();
  const ScratchDirectory scratch;
  RecordingReporter reporter;
  const Norvel::XStPushReporter scope(&reporter, false);
  for (int i = 0; i < 300; ++i) {
    r.begin();
    const Deformable rest(n);
    const auto vertices = unsigned(rest.vertices().size());
    DrawnAnimation drawn = drawAnimation(n, vertices, n.oneIn(3));
    if (n.oneIn(20)) drawn.mLinks.push_back({0, vertices, 1});
    std::string bytes = drawn.bytes().mBytes;
    if (n.oneIn(4)) bytes.resize(n.below(std::uint32_t(bytes.size())));
    if (n.oneIn(20) && !bytes.empty()) bytes[0] = 100;
    if (n.oneIn(9)) bytes += "more";
    inAnimation(r, drawn);
    r.in("bytes", bytes.size());
    const auto path = scratch / std::to_string(i);
    writeText(path, bytes);
    XCFrameCollector collector(rest.mMesh.get());
    r.outOf([&] { Norvel::XCAMOFileIOTool(path.c_str()).Read(&collector); });
    std::filesystem::remove(path);
    r.out(collector.GetSize(), collector.GetNbrTakes(), collector.GetGlobalTransformation());
    for (unsigned int take = 0; take < drawn.mFrames.size(); ++take) {
      for (unsigned int frame = 0; frame <= drawn.mFrames[take]; ++frame) {
        for (int node = 0; node < int(drawn.mNodes.size()); ++node) {
          r.outOf([&] { return collector.GetTransformation(take, frame, node); });
        }
      }
      if (vertices < 60) askBlends(r, collector, rest.vertices(), take, 0);
    }
  }
}

}  // namespace

void addCollectorGroups(Groups& out) {
  const auto add = [&](const std::string& name, Filling how) {
    const struct {
      const char* mName;
      Ask mAsk;
    } kAsks[] = {{"collector_blends", askBlends},
                 {"collector_points", askPoints},
                 {"collector_clones", askClones}};
    for (const auto& each : kAsks) {
      const Ask ask = each.mAsk;
      out.push_back(
          {each.mName + name, Kind::kArithmetic, [=](Recorder& r) { runCollector(r, how, ask); }});
    }
  };
  add("", {false, false, false});
  add("_hostile", {true, false, false});
  add("_uneven", {false, true, false});
  add("_absent_nodes", {true, true, true});
  out.push_back({"collector_reports", Kind::kArithmetic, runReports});
  out.push_back({"file_reader", Kind::kArithmetic, runReader});
}

}  // namespace vexa::tests
