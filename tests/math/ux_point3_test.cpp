#include "vexa/math/ux_point3.h"

#include <gtest/gtest.h>
#include <type_traits>

using namespace Norvel::Vexa;
using P = ux_point3<double>;
using V = ux_vect3<double>;

static_assert(!std::is_reference_v<decltype(std::declval<P&>() += V())>, "required: by value");
static_assert(!std::is_default_constructible_v<TUxUnitVector<float>>, "made by conversion only");
static_assert(std::is_trivially_copyable_v<P> && sizeof(P) == 3 * sizeof(double));

TEST(Point3, EqualWithinAThousandth) {
  EXPECT_TRUE(P(1, 2, 3) == P(1.0009999, 1.9990001, 3));
  EXPECT_TRUE(P(0, 0, 0) != P(0, 0.001, 0));
}

// Out of line, so that the compiler has only the types to tell whether the two overlap.
[[gnu::noinline]] double sumAroundWrite(V& vector, const P& point) {
  const double before = point.x;
  vector.x = before + 1;
  return before + point.x;
}

TEST(Point3, IsAViewOfTheSameStorage) {
  V v(1, 2, 3);
  EXPECT_EQ(sumAroundWrite(v, v.as_point()), 3);
  EXPECT_EQ(&v.as_point().as_vector(), &v);
}
