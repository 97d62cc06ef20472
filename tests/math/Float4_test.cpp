#include "vexa/math/simd/Float4.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

#include "tests/helpers/compare.h"
#include "tests/helpers/precisions.h"
#include "vexa/math/matrix_inverse_internal.h"

using namespace Norvel::Vexa;
using vexa::tests::sameOrNaN;

#if defined(__SSE2__)

template <class T>
struct WideForm {
  using Plain = PlainFloat4;
  using Wide = SseFloat4;
};
template <>
struct WideForm<double> {
  using Plain = PlainDouble4;
  using Wide = SseDouble4;
};

template <class T>
class Float4Forms : public testing::Test {};
TYPED_TEST_SUITE(Float4Forms, vexa::tests::Precisions, vexa::tests::PrecisionName);

// Elements that hold ordinary values, zeros of both signs, huge, tiny and infinite ones.
TYPED_TEST(Float4Forms, PlainAndWideInverseHaveTheSameBits) {
  using T = TypeParam;
  using Limits = std::numeric_limits<T>;
  const T special[] = {T(0), -T(0), Limits::max(), Limits::denorm_min(), Limits::infinity(), T(1)};
  std::uint32_t state = 1;
  const auto next = [&] { return (state = state * 1664525 + 1013904223) >> 8; };
  for (int round = 0; round < 20000; ++round) {
    T e[16], plainResult[16], wideResult[16];
    for (T& element : e) {
      element = round % 2 && next() % 4 == 0 ? special[next() % 6] : T(next()) / T(1 << 23) - 1;
    }
    const MatrixInverse<T, typename WideForm<T>::Plain> plain(e);
    const MatrixInverse<T, typename WideForm<T>::Wide> wide(e);
    ASSERT_TRUE(sameOrNaN(plain.determinant(), wide.determinant()));
    plain.store(plain.determinant(), plainResult);
    wide.store(wide.determinant(), wideResult);
    for (int i = 0; i < 16; ++i) {
      ASSERT_TRUE(sameOrNaN(plainResult[i], wideResult[i])) << "round " << round << " at " << i;
    }
  }
}

#endif
