#include <algorithm>

#include "importer/polygon_internal.h"

namespace vexa::importer {

namespace {

Vec3 cross(const Vec3& a, const Vec3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

double dot(const Vec3& a, const Vec3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

// Twice the area of the triangle as seen against `normal`: below 0 where the corner b is reflex.
double turn(const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& normal) {
  return dot(cross(b - a, c - b), normal);
}

Vec3 normalOf(const std::vector<Vec3>& corners) {
  // Newell's sum: each cross product is twice the area of a triangle with the origin, and what is
  // outside the polygon cancels out. Corners need not be in one plane.
  Vec3 sum;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    sum = sum + cross(corners[i], corners[(i + 1) % corners.size()]);
  }
  return sum;
}

bool isConvex(const std::vector<Vec3>& corners, const Vec3& normal) {
  const std::size_t n = corners.size();
  for (std::size_t i = 0; i < n; ++i) {
    if (turn(corners[i], corners[(i + 1) % n], corners[(i + 2) % n], normal) < 0) return false;
  }
  return true;
}

// A polygon of which ears are cut off until a triangle is left. An ear is a convex corner whose
// triangle holds no other corner. Every simple polygon has two; where rounding hides them, the last
// candidate is cut, so the loop ends for any input.
class EarCutter {
 public:
  EarCutter(const std::vector<Vec3>& corners, const Vec3& normal)
      : mCorners(corners), mNormal(normal) {
    for (std::size_t i = 0; i < corners.size(); ++i) mLeft.push_back(i);
  }

  std::vector<std::array<std::size_t, 3>> cut() {
    while (mLeft.size() >= 3) {
      std::size_t ear = 0;
      while (ear + 1 < mLeft.size() && !isEar(ear)) ++ear;
      mTriangles.push_back({at(ear), at(ear + 1), at(ear + 2)});
      mLeft.erase(mLeft.begin() + std::ptrdiff_t((ear + 1) % mLeft.size()));
    }
    return std::move(mTriangles);
  }

 private:
  std::size_t at(std::size_t i) const { return mLeft[i % mLeft.size()]; }

  bool isEar(std::size_t i) const {
    const Vec3 &a = mCorners[at(i)], &b = mCorners[at(i + 1)], &c = mCorners[at(i + 2)];
    if (turn(a, b, c, mNormal) <= 0) return false;
    const auto isInside = [&](std::size_t other) {
      if (other == at(i) || other == at(i + 1) || other == at(i + 2)) return false;
      const Vec3& p = mCorners[other];
      return turn(a, b, p, mNormal) > 0 && turn(b, c, p, mNormal) > 0 && turn(c, a, p, mNormal) > 0;
    };
    return std::none_of(mLeft.begin(), mLeft.end(), isInside);
  }

  const std::vector<Vec3>& mCorners;
  const Vec3 mNormal;
  std::vector<std::size_t> mLeft;
  std::vector<std::array<std::size_t, 3>> mTriangles;
};

// Cutting ears takes time that grows with the cube; larger polygons become fans.
constexpr std::size_t kMostCut = 256;

}  // namespace

std::vector<std::array<std::size_t, 3>> trianglesOf(const std::vector<Vec3>& corners) {
  const Vec3 normal = normalOf(corners);
  if (corners.size() > 3 && corners.size() <= kMostCut && !isConvex(corners, normal)) {
    return EarCutter(corners, normal).cut();
  }
  std::vector<std::array<std::size_t, 3>> fan;
  for (std::size_t i = 1; i + 1 < corners.size(); ++i) fan.push_back({0, i, i + 1});
  return fan;
}

}  // namespace vexa::importer
