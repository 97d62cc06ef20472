#include "vexa/math/ux_vect3.h"

#include <gtest/gtest.h>
#include <type_traits>

#include "vexa/math/ux_point3.h"

using namespace Norvel::Vexa;
using V = ux_vect3<double>;
using P = ux_point3<double>;

static_assert(!std::is_default_constructible_v<TUxUnitVector<float>>, "made by conversion only");
static_assert(std::is_trivially_copyable_v<P> && sizeof(P) == 3 * sizeof(double));

TEST(Vect3, InPlaceOperationsChain) {
  V v(1, 2, 3);
  ((v += V(1, 0, 0)) -= V(0, 1, 0)) *= 2;
  EXPECT_EQ(v, V(4, 2, 6));
  EXPECT_EQ((v /= 49).x, 4 * (1.0 / 49));  // the reciprocal is rounded first
  v.set(3, 0, 4);
  const TUxUnitVector<double> unit = v;
  EXPECT_EQ(unit, V(3 * 0.2, 0, 4 * 0.2));
  EXPECT_EQ(v.normalize_with(2), V(6, 0, 8));  // required: only scales
  EXPECT_EQ(&v.normalize(), &v);
  EXPECT_EQ(v, V(6 * 0.1, 0, 8 * 0.1));
  EXPECT_EQ(V(P(1, 1, 1), P(3, 4, 5)), V(2, 3, 4));
}

// Out of line, so that the compiler has only the types to tell whether the two overlap.
[[gnu::noinline]] double sumAroundWrite(V& vector, const P& point) {
  const double before = point.x;
  vector.x = before + 1;
  return before + point.x;
}

TEST(Vect3, APointIsAViewOfTheSameStorage) {
  V v(1, 2, 3);
  EXPECT_EQ(sumAroundWrite(v, v.as_point()), 3);
  EXPECT_EQ(&v.as_point().as_vector(), &v);
}
