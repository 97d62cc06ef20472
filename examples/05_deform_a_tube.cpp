// Bends a tube: writes its animation to a file, as an importer would, reads the file into a frame
// collector as the library does, and exports deformed frames: tube_0.obj, tube_10.obj, ...
#include <cmath>
#include <cstdio>
#include <string>

#include "formats/AnimationFile.h"
#include "formats/obj.h"
#include "vexa/vexa.h"

namespace {

using vexa::formats::AnimationFile;

constexpr unsigned int kRings = 21, kSides = 16, kFrames = 31;
constexpr float kHeight = 4;

// The axis of the rest pose is +Y: the axes of the animation file, in which Y is up. Deformation
// exchanges Y and Z, which mirrors: seen from outside, the corners are clockwise here.
void buildTube(UXS::Mesh& mesh) {
  UXS::Mesh::Editor editor(mesh, false);
  for (unsigned int ring = 0; ring < kRings; ++ring) {
    for (unsigned int side = 0; side < kSides; ++side) {
      const float a = 6.2831853f * float(side) / kSides;
      editor.AddVertex({std::cos(a) / 2, kHeight * float(ring) / (kRings - 1), std::sin(a) / 2});
    }
  }
  for (unsigned int ring = 0; ring + 1 < kRings; ++ring) {
    for (unsigned int side = 0; side < kSides; ++side) {
      const unsigned int a = ring * kSides + side, b = ring * kSides + (side + 1) % kSides;
      editor.AddTriangle({a, b, b + kSides}, 0);
      editor.AddTriangle({a, b + kSides, a + kSides}, 0);
    }
  }
}

// A turn about +Z around the middle of the tube.
AnimationFile::Matrix turned(double radians) {
  const double c = std::cos(radians), s = std::sin(radians), middle = double(kHeight) / 2;
  AnimationFile::Matrix m = {c, s, 0, 0, -s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  m[12] = s * middle;
  m[13] = middle - c * middle;
  return m;
}

// Two nodes: the foot stays, the top turns by 90 degrees; in between vertices follow both.
AnimationFile animate(const UXS::Mesh& mesh) {
  AnimationFile file;
  file.mFrameCounts = {kFrames};
  file.mNodes.resize(2);
  for (unsigned int frame = 0; frame < kFrames; ++frame) {
    file.mNodes[0].mMatrices.push_back(AnimationFile::kIdentity);
    file.mNodes[1].mMatrices.push_back(turned(1.5707963 * frame / (kFrames - 1)));
  }
  const auto& vertices = mesh.GetVerticesArray();
  for (unsigned int v = 0; v < vertices.size(); ++v) {
    const double t = 0.5 - 0.5 * std::cos(3.1415927 * double(vertices[v].y / kHeight));
    file.mNodes[0].mLinks.push_back({v, 1 - t});
    file.mNodes[1].mLinks.push_back({v, t});
  }
  return file;
}

}  // namespace

int main() {
  UXS::Mesh rest;
  buildTube(rest);
  vexa::formats::writeAnimationFile(animate(rest), "tube.amo");

  Norvel::Vexa::XCFrameCollector collector(&rest);
  Norvel::XCAMOFileIOTool("tube.amo").Read(&collector);
  const UxZel::CZelUUID definition{{1, 0, 0, 0}};
  float top = 0;
  for (unsigned int frame = 0; frame < kFrames; frame += 10) {
    const UXS::Mesh* deformed = collector.GetCurrentDefinition(0, frame, definition);
    top = deformed->GetAABB().mMax.z;  // the scene's up is +Z
    std::printf("frame %2u: the tube reaches up to %.3f\n", frame, double(top));
    vexa::formats::writeObj("tube_" + std::to_string(frame) + ".obj",
                            vexa::formats::objOf(*deformed));
  }
  return top < 3 ? 0 : 1;
}
