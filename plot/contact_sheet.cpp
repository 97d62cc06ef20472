#include "plot/contact_sheet.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "formats/finite.h"
#include "plot/Canvas.h"
#include "plot/PoseImage.h"
#include "plot/axis.h"

namespace vexa::plot {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

using Vec3 = Oru::TVector3D<double>;
using Lines = std::vector<std::vector<UxZel::CZelPoint>>;

constexpr std::size_t kMostPictures = 12, kMostColumns = 4;
constexpr double kSheetWidth = 1280, kCaption = 18;
constexpr Ink kShades[] = {{0.72, 0.60, 0.46}, {0.45, 0.60, 0.72}, {0.62, 0.70, 0.45},
                           {0.75, 0.50, 0.50}, {0.60, 0.52, 0.70}, {0.70, 0.70, 0.70}};
constexpr Ink kGroundInk{0.955, 0.955, 0.945}, kGridInk{0.87, 0.87, 0.855};
constexpr Ink kLineInk{0.15, 0.35, 0.75}, kCaptionInk{0.3, 0.3, 0.3};

// The sheet: at most four pictures in a row, each 4 : 3, its caption below the pose.
//
//   +---------+---------+---------+---------+
//   |  pose   |  pose   |  pose   |  pose   |   kSheetWidth over all columns
//   | frame 0 | frame 9 |   ...   |         |   kCaption high
//   +---------+---------+---------+---------+

// A camera without perspective that looks down along (1, 2, -1): x to the right of the picture, y
// up in it, z towards the viewer.
constexpr double kRight[3] = {0.8944271909999159, -0.4472135954999579, 0};
constexpr double kUp[3] = {0.18257418583505536, 0.3651483716701107, 0.9128709291752769};
constexpr double kBack[3] = {-0.408248290463863, -0.816496580927726, 0.408248290463863};
// Towards the light, which is high behind the viewer's left shoulder.
constexpr double kLight[3] = {-0.55, -0.35, 0.76};

double dot(const double (&a)[3], const Vec3& p) { return a[0] * p.x + a[1] * p.y + a[2] * p.z; }

Vec3 seen(const Vec3& p) { return {dot(kRight, p), dot(kUp, p), dot(kBack, p)}; }

using formats::isFinite;

Vec3 wide(const Oru::TVector3D<float>& p) { return {double(p.x), double(p.y), double(p.z)}; }

// The smallest box around what was included, along the axes of its points.
struct Box {
  Vec3 low{kInfinity, kInfinity, kInfinity}, high{-kInfinity, -kInfinity, -kInfinity};

  void include(const Vec3& p) {
    if (!isFinite(p)) return;
    low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
  }
  bool isEmpty() const { return low.x > high.x; }
};

Box seenBox(const std::vector<formats::MovingMesh>& meshes, std::size_t frame) {
  Box box;
  for (const formats::MovingMesh& mesh : meshes) {
    for (const auto& p : mesh.mFrames[frame]) box.include(seen(wide(p)));
  }
  return box;
}

// The height of the ground: that of the lowest point of any frame.
double groundHeight(const std::vector<formats::MovingMesh>& meshes) {
  Box box;
  for (const formats::MovingMesh& mesh : meshes) {
    for (const auto& points : mesh.mFrames) {
      for (const auto& p : points) box.include(wide(p));
    }
  }
  return box.isEmpty() ? 0 : box.low.z;
}

// How the pictures are laid out, and the scale that lets the largest pose fill its picture.
struct Sheet {
  std::size_t columns = 1, rows = 1;
  int width = 0, height = 0;  // of one picture
  double scale = 1;           // pixels per scene unit
  double ground = 0;
};

Sheet layOut(const std::vector<formats::MovingMesh>& meshes, std::size_t count) {
  Sheet sheet;
  sheet.columns = std::clamp<std::size_t>(count, 1, kMostColumns);
  sheet.rows = (std::max<std::size_t>(count, 1) + sheet.columns - 1) / sheet.columns;
  sheet.width = int(kSheetWidth) / int(sheet.columns);
  sheet.height = sheet.width * 3 / 4;
  sheet.ground = groundHeight(meshes);
  double width = 0, height = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const Box box = seenBox(meshes, i);
    if (box.isEmpty()) continue;
    width = std::max(width, box.high.x - box.low.x);
    height = std::max(height, box.high.y - box.low.y);
  }
  // A tenth of the picture stays free on each side, for the shadow.
  const double scale = std::min(0.8 * sheet.width / std::max(width, 1e-9),
                                0.8 * (sheet.height - kCaption) / std::max(height, 1e-9));
  if (width > 0 && std::isfinite(scale)) sheet.scale = scale;
  return sheet;
}

// One picture: where scene points fall in it.
class Picture {
 public:
  Picture(const Sheet& sheet, const Box& box) : mSheet(sheet) {
    if (!box.isEmpty()) mCentre = (box.low + box.high) * 0.5;
  }

  Vec3 place(const Vec3& p) const {
    const Vec3 s = seen(p) - mCentre;
    return {mSheet.width / 2.0 + s.x * mSheet.scale,
            (mSheet.height - kCaption) / 2.0 - s.y * mSheet.scale, s.z};
  }

  // The point of the ground that a point of the picture shows.
  Vec3 groundAt(double x, double y) const {
    const double right = (x - mSheet.width / 2.0) / mSheet.scale + mCentre.x;
    const double up = ((mSheet.height - kCaption) / 2.0 - y) / mSheet.scale + mCentre.y;
    // right = R.x X + R.y Y and up - U.z Z = U.x X + U.y Y, solved for X and Y.
    const double rest = up - kUp[2] * mSheet.ground;
    const double determinant = kRight[0] * kUp[1] - kRight[1] * kUp[0];
    return {(right * kUp[1] - kRight[1] * rest) / determinant,
            (kRight[0] * rest - right * kUp[0]) / determinant, mSheet.ground};
  }

 private:
  const Sheet& mSheet;
  Vec3 mCentre{0, 0, 0};
};

void drawLine(Canvas& canvas, const Picture& picture, const Vec3& a, const Vec3& b, double width) {
  if (!isFinite(a) || !isFinite(b)) return;
  const Vec3 p = picture.place(a), q = picture.place(b);
  canvas.line(p.x, p.y, q.x, q.y, width);
}

// The lines of a grid whose squares have a round size, as far as the picture shows them.
void drawGrid(Canvas& canvas, const Sheet& sheet, const Picture& picture) {
  Box shown;
  for (const double x : {0.0, double(sheet.width)}) {
    for (const double y : {0.0, double(sheet.height)}) shown.include(picture.groundAt(x, y));
  }
  const double step = roundBelow(sheet.width / sheet.scale / 4);
  if (!(step > 0) || !std::isfinite(step)) return;
  canvas.setInk(kGridInk);
  const auto lines = [&](double low, double high, auto ends) {
    const double first = std::ceil(low / step) * step;
    // Far from the origin a step may be lost in rounding: the count is bounded by itself.
    const int count = int(std::min(100.0, (high - first) / step)) + 1;
    for (int i = 0; i < count; ++i) ends(first + i * step);
  };
  const double z = sheet.ground;
  lines(shown.low.x, shown.high.x, [&](double x) {
    drawLine(canvas, picture, {x, shown.low.y, z}, {x, shown.high.y, z}, 1);
  });
  lines(shown.low.y, shown.high.y, [&](double y) {
    drawLine(canvas, picture, {shown.low.x, y, z}, {shown.high.x, y, z}, 1);
  });
}

// Shaded by how much it faces the light; both sides are lit.
Ink shaded(const Ink& ink, const Vec3 (&p)[3]) {
  const Vec3 a = p[1] - p[0], b = p[2] - p[0];
  const Vec3 n(a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x);
  const double length = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
  // The side that the viewer sees counts.
  const double side = dot(kBack, n) < 0 ? -1 : 1;
  const double facing = length > 0 ? side * dot(kLight, n) / length : 0;
  const double light = 0.45 + 0.55 * std::clamp(facing, 0.0, 1.0);
  return {ink.r * light, ink.g * light, ink.b * light};
}

Ink inkOf(const formats::MovingMesh& mesh, std::size_t triangle) {
  if (triangle < mesh.mColors.size()) {
    const auto& c = mesh.mColors[triangle];
    return {double(c.x), double(c.y), double(c.z)};
  }
  return kShades[mesh.mMaterials[triangle] % std::size(kShades)];
}

// The shadow of a point on the ground, along the light.
Vec3 shadowOf(const Vec3& p, double ground) {
  // kLight points towards the light, so the shadow falls the other way.
  const double way = (p.z - ground) / kLight[2];
  return {p.x - way * kLight[0], p.y - way * kLight[1], ground};
}

void drawMesh(PoseImage& image, const Sheet& sheet, const Picture& picture,
              const formats::MovingMesh& mesh, std::size_t frame) {
  const formats::MovingMesh::Points& points = mesh.mFrames[frame];
  for (std::size_t t = 0; t < mesh.mTriangles.size(); ++t) {
    const auto& c = mesh.mTriangles[t];
    const Vec3 world[3] = {wide(points[c.x]), wide(points[c.y]), wide(points[c.z])};
    if (!std::all_of(world, world + 3, [](const Vec3& p) { return isFinite(p); })) continue;
    Vec3 corners[3], shadow[3];
    for (int i = 0; i < 3; ++i) {
      corners[i] = picture.place(world[i]);
      shadow[i] = picture.place(shadowOf(world[i], sheet.ground));
    }
    // Fills and shadows are kept apart: the shadow falls on the ground only, never on another mesh.
    image.fill(corners, shaded(inkOf(mesh, t), world));
    image.castShadow(shadow);
  }
}

void paint(Canvas& canvas, const PoseImage& image) {
  std::vector<std::uint32_t> pixels = image.pixels(std::max(1, image.width() / 160));
  cairo_surface_t* surface = cairo_image_surface_create_for_data(
      reinterpret_cast<unsigned char*>(pixels.data()), CAIRO_FORMAT_ARGB32, image.width(),
      image.height(), image.width() * 4);
  cairo_set_source_surface(canvas.cairo(), surface, 0, 0);
  cairo_paint(canvas.cairo());
  // `pixels` is borrowed by the surface and outlives it.
  cairo_surface_destroy(surface);
}

void drawPicture(Canvas& canvas, const Sheet& sheet, const std::vector<formats::MovingMesh>& meshes,
                 std::size_t frame, const Lines& ground) {
  // The middle of the pose is the middle of the picture, so a walker does not leave it.
  const Picture picture(sheet, seenBox(meshes, frame));
  canvas.setInk(kGroundInk);
  canvas.rectangle(0, 0, sheet.width, sheet.height);
  drawGrid(canvas, sheet, picture);
  canvas.setInk(kLineInk);
  for (const auto& line : ground) {
    for (std::size_t i = 1; i < line.size(); ++i) {
      drawLine(canvas, picture, {line[i - 1].x, line[i - 1].y, line[i - 1].z},
               {line[i].x, line[i].y, line[i].z}, 1.5);
    }
  }
  PoseImage image(sheet.width, sheet.height);
  for (const formats::MovingMesh& mesh : meshes) drawMesh(image, sheet, picture, mesh, frame);
  paint(canvas, image);
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
                       const std::vector<int>& frames, const Lines& ground) {
  const Sheet sheet = layOut(meshes, frames.size());
  Canvas canvas(Canvas::Format::kPng, sheet.width * double(sheet.columns),
                sheet.height * double(sheet.rows));
  for (std::size_t i = 0; i < frames.size(); ++i) {
    cairo_save(canvas.cairo());
    cairo_translate(canvas.cairo(), sheet.width * double(i % sheet.columns),
                    sheet.height * std::floor(double(i) / double(sheet.columns)));
    // Lines of the grid and long shadows must not reach into the next picture.
    cairo_rectangle(canvas.cairo(), 0, 0, sheet.width, sheet.height);
    cairo_clip(canvas.cairo());
    drawPicture(canvas, sheet, meshes, i, ground);
    canvas.setInk(kCaptionInk);
    canvas.text(sheet.width / 2.0, sheet.height - 7, "frame " + std::to_string(frames[i]), 12, 0.5);
    cairo_restore(canvas.cairo());
  }
  canvas.write(path);
}

}  // namespace vexa::plot
