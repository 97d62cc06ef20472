#include "plot/contact_sheet.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "formats/finite.h"
#include "plot/Canvas.h"

namespace vexa::plot {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

using Vec3 = Oru::TVector3D<double>;

constexpr int kColumns = 4;
constexpr std::size_t kMostPictures = 12;
constexpr double kWidth = 320, kHeight = 240, kMargin = 14, kCaption = 16;
constexpr Ink kShades[] = {{0.72, 0.60, 0.46}, {0.45, 0.60, 0.72}, {0.62, 0.70, 0.45},
                           {0.75, 0.50, 0.50}, {0.60, 0.52, 0.70}, {0.70, 0.70, 0.70}};

// A camera without perspective that looks down along (1, 2, -1): x to the right of the picture, y
// up in it, z towards the viewer.
constexpr double kRight[3] = {0.8944271909999159, -0.4472135954999579, 0};
constexpr double kUp[3] = {0.18257418583505536, 0.3651483716701107, 0.9128709291752769};
constexpr double kBack[3] = {-0.408248290463863, -0.816496580927726, 0.408248290463863};

double dot(const double (&a)[3], const Vec3& p) { return a[0] * p.x + a[1] * p.y + a[2] * p.z; }

Vec3 seen(double x, double y, double z) {
  const Vec3 p(x, y, z);
  return {dot(kRight, p), dot(kUp, p), dot(kBack, p)};
}

using formats::isFinite;

/// One triangle as the camera sees it.
struct Face {
  Vec3 corners[3];
  Ink ink;
  double depth() const { return corners[0].z + corners[1].z + corners[2].z; }
};

/// Shaded by how much it faces the light, which stands behind the viewer's left shoulder.
Ink shaded(const Ink& ink, const Vec3 (&p)[3]) {
  const Vec3 a = p[1] - p[0], b = p[2] - p[0];
  const Vec3 n(a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x);
  const double length = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
  const double facing = length > 0 ? std::abs(-0.4 * n.x + 0.5 * n.y + 0.77 * n.z) / length : 0;
  const double light = 0.35 + 0.65 * std::min(1.0, facing);
  return {ink.r * light, ink.g * light, ink.b * light};
}

/// All triangles of one frame, the farthest first.
std::vector<Face> facesOf(const std::vector<formats::MovingMesh>& meshes, std::size_t frame) {
  std::vector<Face> faces;
  for (const formats::MovingMesh& mesh : meshes) {
    const formats::MovingMesh::Points& points = mesh.mFrames[frame];
    const auto see = [&](unsigned int i) {
      return seen(double(points[i].x), double(points[i].y), double(points[i].z));
    };
    for (std::size_t t = 0; t < mesh.mTriangles.size(); ++t) {
      const auto& corners = mesh.mTriangles[t];
      Face face{{see(corners.x), see(corners.y), see(corners.z)}, {}};
      if (!std::all_of(face.corners, face.corners + 3, [](const Vec3& p) { return isFinite(p); }))
        continue;
      face.ink = shaded(kShades[mesh.mMaterials[t] % std::size(kShades)], face.corners);
      faces.push_back(face);
    }
  }
  std::stable_sort(faces.begin(), faces.end(),
                   [](const Face& a, const Face& b) { return a.depth() < b.depth(); });
  return faces;
}

/// From what the camera sees to a picture of the sheet.
struct View {
  double lowX = kInfinity, lowY = kInfinity, highX = -kInfinity, highY = -kInfinity;

  void include(const Vec3& p) {
    if (!isFinite(p)) return;
    lowX = std::min(lowX, p.x), highX = std::max(highX, p.x);
    lowY = std::min(lowY, p.y), highY = std::max(highY, p.y);
  }
  double scale() const {
    const double width = std::max(highX - lowX, 1e-9), height = std::max(highY - lowY, 1e-9);
    const double scale =
        std::min((kWidth - 2 * kMargin) / width, (kHeight - 2 * kMargin - kCaption) / height);
    return std::isfinite(scale) ? scale : 1;
  }
  double x(const Vec3& p) const { return kWidth / 2 + (p.x - (lowX + highX) / 2) * scale(); }
  double y(const Vec3& p) const {
    return (kHeight - kCaption) / 2 - (p.y - (lowY + highY) / 2) * scale();
  }
};

View viewOf(const std::vector<formats::MovingMesh>& meshes,
            const std::vector<std::vector<UxZel::CZelPoint>>& ground) {
  View view;
  for (const formats::MovingMesh& mesh : meshes) {
    for (const auto& points : mesh.mFrames) {
      for (const auto& p : points) view.include(seen(double(p.x), double(p.y), double(p.z)));
    }
  }
  for (const auto& line : ground) {
    for (const auto& p : line) view.include(seen(p.x, p.y, p.z));
  }
  return view;
}

void drawGround(Canvas& canvas, const View& view,
                const std::vector<std::vector<UxZel::CZelPoint>>& ground) {
  canvas.setInk({0.15, 0.35, 0.75});
  for (const auto& line : ground) {
    for (std::size_t i = 1; i < line.size(); ++i) {
      const Vec3 a = seen(line[i - 1].x, line[i - 1].y, line[i - 1].z);
      const Vec3 b = seen(line[i].x, line[i].y, line[i].z);
      if (isFinite(a) && isFinite(b)) {
        canvas.line(view.x(a), view.y(a), view.x(b), view.y(b), 1.2);
      }
    }
  }
}

void drawFaces(Canvas& canvas, const View& view, const std::vector<Face>& faces) {
  cairo_t* cairo = canvas.cairo();
  cairo_set_line_width(cairo, 0.4);
  for (const Face& face : faces) {
    canvas.setInk(face.ink);
    cairo_move_to(cairo, view.x(face.corners[0]), view.y(face.corners[0]));
    cairo_line_to(cairo, view.x(face.corners[1]), view.y(face.corners[1]));
    cairo_line_to(cairo, view.x(face.corners[2]), view.y(face.corners[2]));
    cairo_close_path(cairo);
    cairo_fill_preserve(cairo);
    cairo_stroke(cairo);  // closes the hairlines between neighbours
  }
}

}  // namespace

std::vector<std::size_t> contactSheetFrames(std::size_t count) {
  std::vector<std::size_t> chosen;
  const std::size_t pictures = std::min(count, kMostPictures);
  for (std::size_t i = 0; i < pictures; ++i) {
    chosen.push_back(pictures == 1 ? 0 : i * (count - 1) / (pictures - 1));
  }
  return chosen;
}

void writeContactSheet(const std::string& path, const std::vector<formats::MovingMesh>& meshes,
                       const std::vector<int>& frames,
                       const std::vector<std::vector<UxZel::CZelPoint>>& ground) {
  const View view = viewOf(meshes, ground);
  const double rows = std::ceil(std::max(1.0, double(frames.size())) / kColumns);
  Canvas canvas(Canvas::Format::kPng, kWidth * kColumns, kHeight * rows);
  for (std::size_t i = 0; i < frames.size(); ++i) {
    cairo_save(canvas.cairo());
    cairo_translate(canvas.cairo(), kWidth * double(i % kColumns), kHeight * double(i / kColumns));
    drawGround(canvas, view, ground);
    drawFaces(canvas, view, facesOf(meshes, i));
    canvas.setInk({0.3, 0.3, 0.3});
    canvas.text(kWidth / 2, kHeight - 6, "frame " + std::to_string(frames[i]), 11, 0.5);
    cairo_restore(canvas.cairo());
  }
  canvas.write(path);
}

}  // namespace vexa::plot
