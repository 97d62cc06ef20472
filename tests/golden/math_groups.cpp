// Vectors, points, matrices, conversions.
#include <cmath>

#include "tests/golden/Group.h"

namespace vexa::tests {

namespace {

using namespace Norvel::Vexa;

template <class T>
const char* suffix() {
  return sizeof(T) == sizeof(float) ? "_float" : "_double";
}

// Often along an axis, of exactly unit length, near the limit of zero, or equal to another.
template <class V, class T>
V drawVector(Numbers& n) {
  switch (n.below(8)) {
    case 0: {
      T c[3] = {};
      c[n.below(3)] = n.oneIn(2) ? T(1) : T(-1);
      return V(c[0], c[1], c[2]);
    }
    case 1: {
      const T small = T(3.452669830012439e-04);  // its square is 2^-23
      const T c[] = {0, small, std::nextafter(small, T(0)), std::nextafter(small, T(1)), -small};
      const T x = n.oneOf(c), y = n.oneIn(4) ? n.oneOf(c) : T(0);
      return V(x, y, T(0));
    }
    case 2:
      return n.triple<V>([&] { return n.any<T>(); });
    case 3:
      return n.triple<V>([&] { return T(n.between(-2, 2)); });
    default:
      return n.triple<V>([&] { return n.plain<T>(); });
  }
}

template <class T>
void runVectors(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 4000; ++i) {
    r.begin();
    const auto a = drawVector<ux_vect3<T>, T>(n), b = drawVector<ux_vect3<T>, T>(n);
    const T s = n.any<T>();
    r.in("a", a).in("b", b).in("s", s);
    const TUxBaseVector<T> base = a;
    r.out(-base, base + b, base - b, base * s, base / s, base ^ b, base * b, base == b, base != b);
    r.out(-a, a + b, a - b, a * s, a / s, a ^ b, a * b);
    r.out(a.sqr_length(), a.length(), a.not_null());
    r.outOf([&] { return a.invlength(); });
    TUxBaseVector<T> normal = a;
    normal.Normalize();
    ux_vect3<T> scaled = a;
    r.out(normal, !a);
    r.out(scaled.normalize_with(s));
    r.out(scaled += b);
    r.out(scaled -= a);
    r.out(scaled *= s);
    r.out(scaled /= s);
    T x, y, z;
    a.get(x, y, z);
    ux_vect3<T> set;
    set.set(z, x, y);
    r.out(set, ux_vect3<T>(a.as_point(), b.as_point()));
    r.out(set.normalize());
  }
}

template <class T>
void runPoints(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 4000; ++i) {
    r.begin();
    auto p = drawVector<ux_point3<T>, T>(n), q = drawVector<ux_point3<T>, T>(n);
    if (n.oneIn(12)) {  // in double less than 0.001 apart; in float the difference rounds up to it
      p.set(T(-6e-11), 1, 2);
      q.set(std::nextafter(T(0.001f), T(0)), 1, 2);
    }
    if (n.oneIn(3)) {  // as near as counts for equal, or just not
      const T steps[] = {T(0), T(0.001), T(-0.001), T(0.000999), T(0.00100001)};
      q = p;
      q[n.between(0, 2)] += n.oneOf(steps);
    }
    const T t = n.any<T>();
    const auto v = drawVector<ux_vect3<T>, T>(n);
    r.in("p", p).in("q", q).in("v", v).in("t", t);
    r.out(p.lerp(q, t), p.distance(q), p - q, p + v, p - v, p + q, p * t, p / t, p == q, p != q);
    ux_point3<T> moved = p;
    r.out(moved += v);
    r.out(moved -= q.as_vector());
    r.out(moved, moved[0], moved[1], moved[2]);
    moved.set(t, p[1], q[2]);
    r.out(moved);
  }
}

// Identities, permutations, singular ones, small integers, anything.
template <class M, class T>
M drawMatrix(Numbers& n) {
  M m;
  const std::uint32_t kind = n.below(8);
  if (kind == 0) return m;
  for (T& e : m.e) e = kind == 1 ? T(n.between(-1, 1)) : kind == 2 ? n.any<T>() : n.plain<T>();
  if (kind == 3) {
    const std::uint32_t from = n.below(4), to = n.below(4);
    for (std::uint32_t row = 0; row < 4; ++row) m.e[4 * to + row] = m.e[4 * from + row];
  }
  if (kind >= 4 && kind < 7) {
    for (int i = 3; i < 16; i += 4) m.e[i] = i == 15 ? T(1) : T(0);
  }
  return m;
}

template <class T>
void runMatrices(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 4000; ++i) {
    r.begin();
    const auto a = drawMatrix<ux_matrix44<T>, T>(n), b = drawMatrix<ux_matrix44<T>, T>(n);
    const auto v = drawVector<ux_vect3<T>, T>(n);
    const ux_point3<T> p = v;
    const T s = n.any<T>();
    r.in("a", a).in("b", b).in("v", v).in("s", s);
    r.out(a * b, a * v, a * p, a * ux_point4<T>(v.x, v.y, v.z, s), a * s, a + b);
    r.out(a.is_identity(), a.is_invertible(), a == b, a != b, a == a, a(1, 2));
    r.outOf([&] { return a.invert(); });
    ux_matrix44<T> m = a;
    m.transpose();
    r.out(m);
    r.outOf([&] { m.inverse(); });
    r.out(m);
    m.identity();
    r.out(m);
  }
}

template <class T>
void runBuilders(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 3000; ++i) {
    r.begin();
    T x[8];
    for (T& each : x) each = n.any<T>();
    const auto a = drawMatrix<ux_matrix44<T>, T>(n);
    r.in("a", a);
    for (const T each : x) r.in("x", each);
    ux_matrix44<T> m = a;
    m.add_trans(x[0], x[1], x[2]);
    r.out(m);
    m.add_scale(x[0], x[1], x[2]);
    r.out(m);
    m.trans(x[0], x[1], x[2]);
    r.out(m);
    m.scale(x[0], x[1], x[2]);
    r.out(m);
    m.ortho_proj(x[0], x[1], x[2], x[3], x[4], x[5]);
    r.out(m);
    m.oblique_proj(x[0], x[1], x[2], x[3], x[4], x[5], x[6], x[7]);
    r.out(m);
    m.frustum(x[0], x[1], x[2], x[3], x[4], x[5]);
    r.out(m);
    m.lookat({x[0], x[1], x[2]}, {x[3], x[4], x[5]}, {x[6], x[7], x[0]});
    r.out(m);
    r.out(ux_matrix44<T>::get_identity_matrix());
  }
}

template <class T>
void runTurnedBuilders(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 3000; ++i) {
    r.begin();
    const auto axis = drawVector<ux_vect3<T>, T>(n);
    const auto a = drawMatrix<ux_matrix44<T>, T>(n);
    const T angle = n.any<T>(), aspects[] = {1, T(0.5), 2, std::nextafter(T(1), T(0))};
    const T aspect = n.oneIn(2) ? n.oneOf(aspects) : n.any<T>();
    const T near = n.plain<T>(), far = n.any<T>();
    r.in("axis", axis).in("a", a).in("angle", angle).in("aspect", aspect);
    r.in("near", near).in("far", far);
    ux_matrix44<T> m = a;
    m.add_rot(axis.x, axis.y, axis.z, angle);
    r.out(m);
    m.rot(axis.x, axis.y, axis.z, angle);
    r.out(m);
    m.persp_proj(angle, aspect, near, far);
    r.out(m);
  }
}

// A view at, just below or just above the limit where +Y takes the place of +Z.
template <class T>
ux_vect3<T> drawView(Numbers& n) {
  if (!n.oneIn(3)) return drawVector<ux_vect3<T>, T>(n);
  const T c[] = {T(0.98), std::nextafter(T(0.98), T(0)), std::nextafter(T(0.98), T(1)), T(-0.98)};
  const T z = n.oneOf(c);
  return ux_vect3<T>(std::sqrt(1 - z * z), 0, z);
}

template <class T>
void runUpVectors(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 3000; ++i) {
    r.begin();
    const ux_vect3<T> d = drawView<T>(n);
    r.in("d", d);
    r.outOf([&] { return d.get_up_vector(0); });
  }
}

template <class T>
void runRolls(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 3000; ++i) {
    r.begin();
    const ux_vect3<T> d = drawView<T>(n);
    const T roll = n.oneIn(4) ? n.any<T>() : (n.unit<T>() - T(0.5)) * T(13);
    r.in("d", d).in("roll", roll);
    r.outOf([&] { return d.get_up_vector(roll); });
    r.outOf([&] { return d.RollForUpVector(d.get_up_vector(roll)); });
    r.outOf([&] { return d.RollForUpVector(drawVector<ux_vect3<T>, T>(n)); });
  }
}

void runHostValues(Recorder& r) {
  Numbers& n = r.numbers();
  using V3 = UXS::uxs_generic_vec3<float>;
  using Point = Oru::TVector3D<float>;
  for (int i = 0; i < 4000; ++i) {
    r.begin();
    const auto a = drawVector<V3, float>(n), b = drawVector<V3, float>(n);
    const auto p = drawVector<Point, float>(n), q = drawVector<Point, float>(n);
    const float s = n.any<float>();
    const UXS::uxs_color c(a.x, a.y, a.z, s), d(b.x, b.y, b.z, s);
    const auto m = drawMatrix<UXS::uxs_generic_mat4<float>, float>(n);
    const auto k = drawMatrix<UXS::uxs_generic_mat4<double>, double>(n);
    r.in("a", a).in("b", b).in("p", p).in("q", q).in("s", s).in("m", m);
    r.out(-a, a + b, a - b, a * s, s * b, a == b, a != b, a == a);
    r.out(c + d, c - d, c * s, s * d, c == d, c != c);
    r.out(p + q, p - q, -p, p * s, p == q, p != q);
    const Oru::TVector2D<float> u(a.x, p.y), w(n.oneIn(2) ? u : Oru::TVector2D<float>(a.x, q.z));
    r.out(u == w, u != w);
    r.out(m * p, m * m, k * k);
  }
}

void runConversions(Recorder& r) {
  Numbers& n = r.numbers();
  const double limits[] = {
      2147483647.0,           2147483648.0,  2147483647.5, -2147483648.0,
      -2147483649.0,          -2147483648.5, 9.2e18,       9223372036854775808.0,
      -9223372036854775808.0, -9.3e18,       0.9999,       -0.9999};
  for (int i = 0; i < 4000; ++i) {
    r.begin();
    const double factor = n.oneIn(2) ? 1 : 1e7;
    const double x = n.oneIn(3) ? n.oneOf(limits) : factor * n.any<double>();
    const std::int32_t a = n.anyInt(), b = n.anyInt();
    const auto c = std::int64_t(n.bits()), d = n.oneIn(2) ? std::int64_t(n.bits()) : a;
    r.in("x", x).in("a", a).in("b", b).in("c", c).in("d", d);
    r.out(truncToInt(x), truncToLong(x), wrapToInt(c), wrapToInt(d));
    r.out(wrapAdd(a, b), wrapSub(a, b), wrapMul(a, b), wrapAdd(c, d), wrapSub(c, d), wrapMul(c, d));
  }
}

// The constants, as they come out of the library.
void runConstants(Recorder& r) {
  using Axes = UXS::uxs_generic_vec3_consts<float>;
  r.begin();
  r.out(Axes::UXS_VEC3_ZERO, Axes::UXS_X_AXIS_UNIT, Axes::UXS_Y_AXIS_UNIT, Axes::UXS_Z_AXIS_UNIT);
  r.out(Axes::UXS_MINUS_X_AXIS_UNIT, Axes::UXS_MINUS_Y_AXIS_UNIT, Axes::UXS_MINUS_Z_AXIS_UNIT);
  r.out(Oru::TVector2D<float>::ZeroVector, Oru::TVector3D<float>::ZeroVector);
  const Oru::TQuaternion<float> q = Oru::TQuaternion<float>::Identity;
  const Oru::TQuaternion<double> p = Oru::TQuaternion<double>::Identity;
  r.out(Oru::TVector3D<double>::ZeroVector, q.x, q.y, q.z, q.w, p.x, p.y, p.z, p.w);
}

template <class T>
void addOf(Groups& out) {
  const std::string type = suffix<T>();
  out.push_back({"vectors" + type, Kind::kArithmetic, runVectors<T>});
  out.push_back({"points" + type, Kind::kArithmetic, runPoints<T>});
  out.push_back({"matrices" + type, Kind::kArithmetic, runMatrices<T>});
  out.push_back({"matrix_builders" + type, Kind::kArithmetic, runBuilders<T>});
  out.push_back({"matrix_turned_builders" + type, Kind::kLibm, runTurnedBuilders<T>});
  out.push_back({"up_vectors" + type, Kind::kArithmetic, runUpVectors<T>});
  out.push_back({"rolls" + type, Kind::kLibm, runRolls<T>});
}

}  // namespace

void addMathGroups(Groups& out) {
  addOf<float>(out);
  addOf<double>(out);
  out.push_back({"constants", Kind::kArithmetic, runConstants});
  out.push_back({"host_values", Kind::kArithmetic, runHostValues});
  out.push_back({"conversions", Kind::kArithmetic, runConversions});
}

}  // namespace vexa::tests
