// Bezier curves and paths, reading and editing of host paths, position along a path.
#include <cmath>

#include "refhost/Scene.h"
#include "tests/golden/Group.h"

namespace vexa::tests {

namespace {

using namespace Norvel::Vexa;
using V3 = UXS::uxs_generic_vec3<float>;
using Curve = XTBezierCurve<V3, V3, float>;
using BezierPath = XTBezierPath<V3, V3, float>;

V3 drawPoint(Numbers& n, bool isHostile) {
  if (n.oneIn(5)) return n.triple<V3>([&] { return float(n.between(-2, 2)); });
  if (isHostile) return n.triple<V3>([&] { return n.any<float>(); });
  return n.triple<V3>([&] { return n.plain<float>(); });
}

// Straight, of no length, a loop, with controls on the ends, hostile.
Curve drawCurve(Numbers& n) {
  const std::uint32_t kind = n.below(10);
  const bool isHostile = kind == 9;
  const V3 a = drawPoint(n, isHostile), b = drawPoint(n, isHostile), c = drawPoint(n, isHostile);
  const V3 d = drawPoint(n, isHostile);
  if (kind == 0) return {a, a, a, a};
  if (kind == 1) return {a, b, a, b};
  if (kind == 2) return {a, a + (b - a) * 3.0f, b, a + (b - a) * 2.0f};
  return {a, kind == 3 ? a : b, c, d};
}

void inCurve(Recorder& r, const Curve& curve) {
  r.in("P0", curve.getStartValue()).in("P3", curve.getEndValue());
  r.in("C1", curve.getStartControlPoint()).in("C2", curve.getEndControlPoint());
}
void outCurve(Recorder& r, const Curve& curve) {
  r.out(curve.getStartValue(), curve.getEndValue());
  r.out(curve.getStartControlPoint(), curve.getEndControlPoint());
}

// Mostly inside; else the ends, the tolerance around them, outside.
float drawParameter(Numbers& n) {
  constexpr float kOdd[] = {0,      -0.0f,    1,        1.0000001f, 0.99999994f, -1e-30f,
                            1e-30f, -0.9e-6f, -1.1e-6f, 1.0000009f, 1.0000012f,  2,
                            -1,     0.5f,     NAN,      HUGE_VALF};
  return n.oneIn(3) ? n.oneOf(kOdd) : n.unit<float>();
}

void runPlaces(Recorder& r, bool wantsDirections) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 4000; ++i) {
    r.begin();
    const Curve curve = drawCurve(n);
    const float t = drawParameter(n);
    inCurve(r, curve);
    r.in("t", t);
    r.outOf([&] { return wantsDirections ? curve.directionAt(t) : curve.pointAt(t); });
  }
}

void runLengths(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 4000; ++i) {
    r.begin();
    Curve curve = drawCurve(n), left, right;
    inCurve(r, curve);
    r.out(curve.getLengthAproximation(), curve.getFirstCPLengthProportion(),
          curve.getEndCPLengthProportion());
    curve.subdivideCurve(left, right);
    outCurve(r, left);
    outCurve(r, right);
    if (n.oneIn(2)) {
      curve.subdivideCurve(curve, right);
    } else {
      curve.subdivideCurve(left, curve);
    }
    outCurve(r, curve);
    curve.setStartValue(left.getEndValue());
    curve.setEndControlPoint(right.getStartControlPoint());
    outCurve(r, curve);
  }
}

void runSearch(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 300; ++i) {
    r.begin();
    const Curve curve = drawCurve(n);
    const V3 wanted = n.oneIn(3) ? curve.getEndValue() : drawPoint(n, n.oneIn(9));
    const bool isDeep = n.oneIn(30);  // 12 is the deepest
    const int depth = isDeep ? n.between(11, 14) : n.oneIn(9) ? n.anyInt() : n.between(-1, 8);
    inCurve(r, curve);
    r.in("wanted", wanted).in("depth", depth);
    if (depth > 14 && n.below(8) != 0) continue;
    r.out(curve.FindDistanceFromCoordinate(curve.getStartValue(), curve.getStartControlPoint(),
                                           curve.getEndControlPoint(), curve.getEndValue(), wanted,
                                           depth));
  }
}

void runTables(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 2000; ++i) {
    r.begin();
    const Curve curve = drawCurve(n);
    inCurve(r, curve);
    const auto table = BezierPath::CalculateCurveDistanceRepartition(curve);
    for (const float length : table) r.out(length);
    for (int k = 0; k < 4; ++k) r.out(BezierPath::GetTfromDistanceWanted(table, drawParameter(n)));
    r.out(BezierPath::GetTfromDistanceWanted(table, table[n.below(16)] / table[15]));
  }
}

UxZel::CZelVector drawOffset(Numbers& n, bool isHostile) {
  const auto draw = [&] { return isHostile ? n.any<double>() : n.plain<double>() / 4; };
  UxZel::CZelVector v;
  if (n.oneIn(6)) return v;
  v.x = draw();
  v.y = draw();
  v.z = draw();
  return v;
}

refhost::Path drawPath(Numbers& n, int points) {
  refhost::Path path;
  const bool isHostile = n.oneIn(4);
  path.mClosed = n.oneIn(4);
  path.mHasPointList = !(isHostile && n.oneIn(9));
  for (int i = 0; i < points; ++i) {
    refhost::BezierPoint& point = path.mPoints.add();
    const UxZel::CZelVector place = drawOffset(n, isHostile && n.oneIn(9));
    point.mPassage = {4 * place.x, 4 * place.y, 4 * place.z};
    if (i > 0 && n.oneIn(12)) point = path.mPoints.mElements[std::size_t(i) - 1];
    point.mBefore = drawOffset(n, isHostile && n.oneIn(9));
    point.mAfter = drawOffset(n, isHostile && n.oneIn(9));
    point.mTangentLocked = n.oneIn(2);
  }
  return path;
}

int drawPointCount(Numbers& n) { return n.oneIn(6) ? n.between(0, 2) : n.between(2, 40); }

void inPath(Recorder& r, const refhost::Path& path) {
  r.in("points", path.mPoints.GetCount()).in("closed", path.mClosed);
  for (int i = 0; i < path.mPoints.GetCount() && i < 3; ++i) {
    const refhost::BezierPoint& point = path.mPoints.mElements[std::size_t(i)];
    r.in("p", point.mPassage).in("before", point.mBefore).in("after", point.mAfter);
  }
}

void runPaths(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 500; ++i) {
    r.begin();
    const refhost::Path host = drawPath(n, drawPointCount(n));
    inPath(r, host);
    r.outOf([&] {
      const XCZELPathInfo info(&host);
      const XC3DPath path(&info);
      r.out(path.getTotalLength());
      for (const Curve& curve : path.getCurves()) outCurve(r, curve);
      for (const auto& table : path.getRepartitions()) {
        for (const float length : table) r.out(length);
      }
      r.out(path.getProportions());
      for (int k = 0; k < 24; ++k) {
        const std::size_t joints = path.getProportions().size();
        const bool atJoint = joints > 0 && n.oneIn(6);
        const float at =
            atJoint ? path.getProportions()[n.below(std::uint32_t(joints))] : drawParameter(n);
        r.outOf([&] { return path.valueAt(at); });
        r.outOf([&] { return path.directionAt(at); });
      }
    });
  }
}

// What an agent or an info tells of one point, the one after the last included.
template <class Reader>
void outPoint(Recorder& r, const Reader& reader, unsigned int index) {
  r.outOf([&] { return reader.getPassagePointPositionAt(index); });
  r.outOf([&] { return reader.getBeforeControlPointAt(index); });
  r.outOf([&] { return reader.getAfterControlPointAt(index); });
  r.outOf([&] { return reader.getToBeforeCtrlPtAt(index); });
  r.outOf([&] { return reader.getToAfterCtrlPtAt(index); });
  r.outOf([&] { return reader.getBeforeControlPointWeightAt(index); });
  r.outOf([&] { return reader.getAfterControlPointWeightAt(index); });
  r.outOf([&] { return reader.getTangentLockedAt(index); });
}

template <class Reader>
void outReader(Recorder& r, const Reader& reader, int points) {
  r.out(reader.PointsMgrExist(), reader.getPathClosed());
  r.outOf([&] { return reader.getNbBezierPoints(); });
  for (int i = 0; i <= points; ++i) outPoint(r, reader, unsigned(i));
}

void outHostPath(Recorder& r, const refhost::Path& host) {
  r.out(host.mClosed, host.mPoints.GetCount());
  for (const refhost::BezierPoint& p : host.mPoints.mElements) {
    r.out(p.mPassage, p.mBefore, p.mAfter, p.mTangentLocked);
  }
}

void edit(Numbers& n, Recorder& r, XCZELPathAgent& agent, int points) {
  const unsigned int at = n.below(std::uint32_t(points) + 1), call = n.below(9);
  const V3 v = drawPoint(n, n.oneIn(4));
  const bool flag = n.oneIn(2);
  r.in("call", call).in("at", at).in("v", v);
  r.outOf([&] {
    if (call == 0) return agent.addNewPointAt(at);
    if (call == 1) return agent.removePointAt(at);
    if (call == 2) agent.setPassagePointPositionAt(at, v);
    if (call == 3) agent.setBeforeControlPointAt(at, v);
    if (call == 4) agent.setAfterControlPointAt(at, v);
    if (call == 5) agent.setToBeforeCtrlPtAt(at, v);
    if (call == 6) agent.setToAfterCtrlPtAt(at, v);
    if (call == 7) agent.setTangentLockedAt(at, flag);
    if (call == 8) agent.setPathClosed(flag);
    return flag;
  });
}

void runEditing(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 800; ++i) {
    r.begin();
    refhost::Path host = drawPath(n, n.between(0, 4));
    inPath(r, host);
    const int points = host.mPoints.GetCount();
    outReader(r, XCZELPathInfo(n.oneIn(9) ? nullptr : &host), points);
    UxZel::IZel3DPath* const path = n.oneIn(9) ? nullptr : &host;
    const bool fromList = n.oneIn(4);
    XCZELPathAgent agent = fromList ? XCZELPathAgent(host.GetBezierPoints()) : XCZELPathAgent(path);
    for (int k = 0; k < 6; ++k) edit(n, r, agent, host.mPoints.GetCount());
    outReader(r, agent, points);
    outHostPath(r, host);
    for (const refhost::BezierPoint& point : host.mPoints.mElements) {
      const XCBezierPointTool tool(&point);
      r.out(tool.getBeforeCtrlPoint(), tool.getAfterCtrlPoint());
      r.out(tool.getBeforeCtrlPtWeight(), tool.getAfterCtrlPtWeight());
    }
  }
}

struct Ride {
  refhost::List<UxZel::IZelKeyFrame, refhost::Key> mKeys;
  int mMin = 0, mMax = 0, mFrame = 0;
};

// Fractions that rest or nearly rest between neighbours, and frames around the two keys.
Ride drawRide(Numbers& n, bool eases) {
  Ride ride;
  const int count = n.between(1, 5);
  double fraction = n.oneIn(3) ? 0 : n.unit<double>();
  int frame = n.between(-5, 20);
  for (int i = 0; i < count; ++i) {
    refhost::Key key = refhost::realKey(frame, fraction);
    key.mInterpolationType = eases && (i == 0 || n.oneIn(2)) ? n.between(1, 5) : 0;
    ride.mKeys.add(key);
    frame += n.oneIn(8) ? 0 : n.between(1, 30);
    const double steps[] = {0, 0.9e-6, 1.1e-6, -0.9e-6, -1.1e-6, 1e-6};
    fraction = n.oneIn(2) ? fraction + n.oneOf(steps) : n.unit<double>();
    if (n.oneIn(30)) fraction = n.any<double>();
  }
  ride.mMin = n.between(0, count - 1);
  ride.mMax = n.oneIn(6) ? ride.mMin : ride.mMin + (ride.mMin + 1 < count ? 1 : 0);
  const auto at = [&](int i) { return ride.mKeys.GetAt(i)->GetFrame(); };
  ride.mFrame = n.between(at(ride.mMin), at(ride.mMax));
  if (n.oneIn(12)) ride.mFrame += n.between(-2, 2);
  return ride;
}

void inRide(Recorder& r, const Ride& ride) {
  for (const refhost::Key& key : ride.mKeys.mElements) {
    r.in("key", key.mFrame).in("fraction", key.mValue.mReal).in("curve", key.mInterpolationType);
  }
  r.in("min", ride.mMin).in("max", ride.mMax).in("frame", ride.mFrame);
}

void runPosition(Recorder& r, bool eases) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 3000; ++i) {
    r.begin();
    const Ride ride = drawRide(n, eases);
    const bool isClosed = n.oneIn(6);
    inRide(r, ride);
    r.in("closed", isClosed);
    r.outOf([&] {
      return getInterpolatedPathPosition(&ride.mKeys, ride.mMin, ride.mMax, ride.mFrame, isClosed);
    });
  }
}

void runFollowing(Recorder& r, bool eases) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 1500; ++i) {
    r.begin();
    const Ride ride = drawRide(n, eases);
    refhost::Path host = drawPath(n, n.oneIn(9) ? n.between(0, 2) : n.between(2, 6));
    const double ahead = n.oneIn(4) ? n.any<double>() : n.unit<double>() * 30;
    inRide(r, ride);
    inPath(r, host);
    r.in("ahead", ahead);
    for (const bool looks : {false, true}) {
      UxZel::IZelKeyFrame::uValue place{}, direction{};
      r.outOf([&] {
        if (looks) {
          uxInterpolated3DPath(&ride.mKeys, &host, ride.mMin, ride.mMax, ride.mFrame, place,
                               direction, ahead);
        } else {
          uxInterpolated3DPath(&ride.mKeys, &host, ride.mMin, ride.mMax, ride.mFrame, place,
                               direction);
        }
      });
      for (const double c : place.mVector) r.out(c);
      for (const double c : direction.mVector) r.out(c);
    }
  }
}

}  // namespace

void addPathGroups(Groups& out) {
  const auto add = [&](const char* name, Kind kind, auto run) { out.push_back({name, kind, run}); };
  constexpr Kind kExact = Kind::kArithmetic;
  add("bezier_values", kExact, [](Recorder& r) { runPlaces(r, false); });
  add("bezier_directions", kExact, [](Recorder& r) { runPlaces(r, true); });
  add("bezier_lengths", kExact, runLengths);
  add("bezier_search", kExact, runSearch);
  add("path_tables", kExact, runTables);
  add("path_values", kExact, runPaths);
  add("path_editing", kExact, runEditing);
  add("path_position", kExact, [](Recorder& r) { runPosition(r, false); });
  add("path_position_eased", Kind::kLibm, [](Recorder& r) { runPosition(r, true); });
  add("path_following", kExact, [](Recorder& r) { runFollowing(r, false); });
  add("path_following_eased", Kind::kLibm, [](Recorder& r) { runFollowing(r, true); });
}

}  // namespace vexa::tests
