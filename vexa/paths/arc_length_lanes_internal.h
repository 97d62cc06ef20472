#pragma once

// The arc-length table of a segment: it is halved four times, and the running sum of the lengths of
// its sixteen pieces, in order from P0 to P3, is stored.
//
//   halving, de Casteljau        the length of a piece, with M the middle of C1 and C2
//
//       C1 ------- C2                 C1 --- M --- C2
//      /  l3 - m - r2  \              /    .   .    \        legs |C1 P0| + |C2 C1| + |P3 C2|
//     l2  /         \  r3           / .           . \      + 2 (|M P0| + |M P3|), all over 3
//    /  /             \  \         P0                 P3
//   P0                  P3
//
// F is a form of several lanes, each of which is a segment and does what XTBezierCurve does,
// operation for operation. Includes nothing and uses nothing but F, so that a source may be
// compiled for one machine.
namespace Norvel::Vexa::arc_length {

template <class F>
F scaled(const F& value, float factor) {
  return value * F::broadcast(factor);
}

// One coordinate of the control points of a piece.
template <class F>
struct Axis {
  F p0, c1, c2, p3;

  static Axis load(const float* rows) {
    return {F::load(rows), F::load(rows + F::kLanes), F::load(rows + 2 * F::kLanes),
            F::load(rows + 3 * F::kLanes)};
  }

  // As XTBezierCurve::subdivideCurve; the right half stays here.
  Axis splitOffLeft() {
    const F middle =
        scaled(scaled(c2, 3) + scaled(c1, 3) + p0 + p3, 0.125f);  // order: exact floats
    const Axis left = {p0, scaled(p0 + c1, 0.5f), scaled(scaled(c1, 2) + p0 + c2, 0.25f), middle};
    *this = {middle, scaled(scaled(c2, 2) + p3 + c1, 0.25f), scaled(p3 + c2, 0.5f), p3};
    return left;
  }
};

template <class F>
struct Piece {
  Axis<F> x, y, z;

  Piece splitOffLeft() { return {x.splitOffLeft(), y.splitOffLeft(), z.splitOffLeft()}; }
};

template <class F>
typename F::Wide norm(const F& x, const F& y, const F& z) {
  return (x * x + y * y + z * z).squareRoot().widened();  // order: exact floats
}

// As XTBezierCurve::getLengthAproximation, narrowed to float.
template <class F>
[[gnu::always_inline]] inline F lengthOf(const Piece<F>& piece) {
  const auto& [x, y, z] = piece;
  const F mx = scaled(x.c1 + x.c2, 0.5f);
  const F my = scaled(y.c1 + y.c2, 0.5f);
  const F mz = scaled(z.c1 + z.c2, 0.5f);
  const auto endLeg = norm(x.p3 - x.c2, y.p3 - y.c2, z.p3 - z.c2);
  const auto middleLeg = norm(x.c1 - x.c2, y.c1 - y.c2, z.c1 - z.c2);
  const auto startLeg = norm(x.c1 - x.p0, y.c1 - y.p0, z.c1 - z.p0);
  const auto toEnd = norm(mx - x.p3, my - y.p3, mz - z.p3);
  const auto toStart = norm(mx - x.p0, my - y.p0, mz - z.p0);
  const auto sum = endLeg + middleLeg + startLeg + (toEnd + toEnd) + (toStart + toStart);
  return (sum / F::Wide::broadcast(3.0)).narrowed();  // order: exact floats
}

// Inlined on purpose: calls would pass whole pieces through memory, at twice the time.
//
// Halves a piece `levels` times and stores the running length at the end of each part.
template <int levels, class F>
[[gnu::always_inline]] inline void storeLengths(Piece<F> piece, F& length, float*& row) {
  if constexpr (levels == 0) {
    length = length + lengthOf(piece);  // order: exact floats
    length.store(row);
    row += F::kLanes;
  } else {
    const Piece<F> left = piece.splitOffLeft();
    storeLengths<levels - 1>(left, length, row);
    storeLengths<levels - 1>(piece, length, row);
  }
}

// `controls` are twelve rows of a lane each: P0, C1, C2, P3 in x, then in y, then in z. `lengths`
// receives sixteen rows.
template <class F>
void measure(const float* controls, float* lengths) {
  F length = F::broadcast(0);
  storeLengths<4>(Piece<F>{Axis<F>::load(controls), Axis<F>::load(controls + 4 * F::kLanes),
                           Axis<F>::load(controls + 8 * F::kLanes)},
                  length, lengths);
}

// `measure` for eight lanes; only for machines with AVX2.
void measureEight(const float* controls, float* lengths);

}  // namespace Norvel::Vexa::arc_length
