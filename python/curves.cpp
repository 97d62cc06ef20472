// Curves between two values, and Bezier paths, as plain functions over arrays.
#include <memory>

#include "python/bindings_internal.h"
#include "refhost/Path.h"
#include "vexa/interpolation/timed_curves.h"
#include "vexa/paths/XC3DPath.h"
#include "vexa/paths/XCZELPathInfo.h"

namespace vexa::python {
namespace {

// start time, end time, start value, end value, time: the order of the library's functions.
using Curve = double (*)(double, double, double, double, double);
using Vector = UXS::uxs_generic_vec3<float>;

Curve curveOf(const std::string& name) {
  if (name == "linear") return &Norvel::Vexa::Lerp;
  if (name == "square") return &Norvel::Vexa::Sqerp;
  if (name == "oneMinusSquare") return &Norvel::Vexa::OneMinSqerp;
  if (name == "sinus") return &Norvel::Vexa::Sinerp;
  throw std::invalid_argument("\"" + name + "\": expected linear, square, oneMinusSquare or sinus");
}

Doubles curve(const std::string& name, double startTime, double endTime, double start, double end,
              const Doubles& times) {
  const Curve function = curveOf(name);
  Doubles result(std::vector<py::ssize_t>(times.shape(), times.shape() + times.ndim()));
  const double* from = times.data();
  double* to = result.mutable_data();
  const auto count = times.size();
  // Pointers were taken before: without the interpreter's lock no Python object may be touched.
  const py::gil_scoped_release released;
  for (py::ssize_t i = 0; i < count; ++i) to[i] = function(startTime, endTime, start, end, from[i]);
  return result;
}

// A path and the host's points behind it, which it borrows.
class BezierPath {
 public:
  BezierPath(const Doubles& points, const Doubles& before, const Doubles& after, bool closed) {
    const std::size_t count = rowsOf(points, 3, "points");
    require(count >= 2, "points: a path has two or more");
    require(rowsOf(before, 3, "before") == count, "before: expected as many rows as points");
    require(rowsOf(after, 3, "after") == count, "after: expected as many rows as points");
    for (std::size_t i = 0; i < 3 * count; ++i) {
      // A NaN would spread through the arc lengths, and every fraction would then give NaN.
      require(std::isfinite(points.data()[i]) && std::isfinite(before.data()[i]) &&
                  std::isfinite(after.data()[i]),
              "points: a coordinate is not finite");
    }
    mHostPath.mClosed = closed;
    for (std::size_t i = 0; i < count; ++i) {
      const double *p = points.data() + 3 * i, *b = before.data() + 3 * i,
                   *a = after.data() + 3 * i;
      refhost::BezierPoint point;
      point.mPassage = {p[0], p[1], p[2]};
      point.mBefore = {b[0], b[1], b[2]};
      point.mAfter = {a[0], a[1], a[2]};
      mHostPath.mPoints.add(point);
    }
    // The path reads the host's points through this interface, now and later.
    mInfo = std::make_unique<Norvel::Vexa::XCZELPathInfo>(&mHostPath);
    mPath = std::make_unique<Norvel::Vexa::XC3DPath>(mInfo.get());
  }

  double length() const { return double(mPath->getTotalLength()); }

  Floats at(const Floats& fractions) const {
    return evaluate(fractions, [this](float f) { return mPath->valueAt(f); });
  }
  Floats direction(const Floats& fractions) const {
    return evaluate(fractions, [this](float f) { return mPath->directionAt(f); });
  }

 private:
  template <class Function>
  static Floats evaluate(const Floats& fractions, Function function) {
    std::vector<py::ssize_t> shape(fractions.shape(), fractions.shape() + fractions.ndim());
    // One more dimension than the fractions: x, y, z.
    shape.push_back(3);
    Floats result(shape);
    const float* from = fractions.data();
    float* to = result.mutable_data();
    const auto count = fractions.size();
    const py::gil_scoped_release released;
    for (py::ssize_t i = 0; i < count; ++i) {
      const Vector v = function(from[i]);
      to[3 * i] = v.x;
      to[3 * i + 1] = v.y;
      to[3 * i + 2] = v.z;
    }
    return result;
  }

  refhost::Path mHostPath;
  std::unique_ptr<Norvel::Vexa::XCZELPathInfo> mInfo;
  std::unique_ptr<Norvel::Vexa::XC3DPath> mPath;
};

}  // namespace

void bindCurves(py::module_& module) {
  module.def(
      "curve", &curve, py::arg("name"), py::arg("start_time"), py::arg("end_time"),
      py::arg("start"), py::arg("end"), py::arg("times"),
      "A timed curve at times between start_time and end_time, as float64 of the shape of\n"
      "times. The name is linear, square, oneMinusSquare or sinus. Raises RuntimeError for a\n"
      "time outside.");
  py::class_<BezierPath>(module, "BezierPath",
                         "A path of cubic segments, evaluated by fractions of its length, 0 to 1.")
      .def(py::init<const Doubles&, const Doubles&, const Doubles&, bool>(), py::arg("points"),
           py::arg("before"), py::arg("after"), py::arg("closed") = false,
           "Points of shape (n, 3), n >= 2, and their control points as offsets: where the path\n"
           "arrives from and where it leaves towards.")
      .def_property_readonly("length", &BezierPath::length, "In scene units.")
      .def("at", &BezierPath::at, py::arg("fractions"),
           "Positions, as float32 of the shape of fractions and 3.")
      .def("direction", &BezierPath::direction, py::arg("fractions"),
           "Directions there, not normalised.");
}

}  // namespace vexa::python
