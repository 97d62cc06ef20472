// Matrices, sun, camera and render presets.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "formats/calendar.h"
#include "python/bindings_internal.h"
#include "vexa/math/ux_matrix44.h"
#include "vexa/tools/uxs_camera_tool.h"
#include "vexa/tools/uxs_final_options_converter.h"
#include "vexa/tools/uxs_heliodon_tool.h"

namespace vexa::python {
namespace {

using Matrix = Norvel::Vexa::ux_matrix44<double>;
using Converter = UXS::uxs_final_options_converter;

// numpy keeps m[..., row, column] row by row; the library stores columns. Both functions go by row
// and column, so neither order matters to them.
Matrix matrixAt(const double* numbers) {
  Matrix m;
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) m(r, c) = numbers[4 * r + c];
  }
  return m;
}

void put(const Matrix& m, double* numbers) {
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) numbers[4 * r + c] = m(r, c);
  }
}

py::ssize_t matrixCount(const Doubles& matrices) {
  const auto n = matrices.ndim();
  require(n >= 2 && matrices.shape(n - 1) == 4 && matrices.shape(n - 2) == 4,
          "matrices: expected an array of shape (..., 4, 4)");
  return matrices.size() / 16;
}

Doubles sameShape(const Doubles& array) {
  return Doubles(std::vector<py::ssize_t>(array.shape(), array.shape() + array.ndim()));
}

Doubles inverse(const Doubles& matrices) {
  // Any number of leading dimensions: (4, 4), (n, 4, 4), (frames, nodes, 4, 4).
  const auto count = matrixCount(matrices);
  Doubles result = sameShape(matrices);
  const double* from = matrices.data();
  double* to = result.mutable_data();
  const py::gil_scoped_release released;
  for (py::ssize_t i = 0; i < count; ++i) put(matrixAt(from + 16 * i).invert(), to + 16 * i);
  return result;
}

Doubles transform(const Doubles& matrix, const Doubles& points) {
  require(matrix.ndim() == 2 && matrixCount(matrix) == 1,
          "matrix: expected an array of shape (4, 4)");
  require(points.ndim() >= 1 && points.shape(points.ndim() - 1) == 3,
          "points: expected an array of shape (..., 3)");
  Doubles result = sameShape(points);
  const Matrix m = matrixAt(matrix.data());
  const double* from = points.data();
  double* to = result.mutable_data();
  const auto count = points.size() / 3;
  const py::gil_scoped_release released;
  for (py::ssize_t i = 0; i < count; ++i) {
    const double* p = from + 3 * i;
    const auto q = m * Norvel::Vexa::ux_point3<double>(p[0], p[1], p[2]);
    to[3 * i] = q.x;
    to[3 * i + 1] = q.y;
    to[3 * i + 2] = q.z;
  }
  return result;
}

// The library's builders set a matrix that is there already.
template <class Build>
Doubles built(Build build) {
  Matrix m;
  build(m);
  Doubles result({4, 4});
  put(m, result.mutable_data());
  return result;
}

using Three = std::array<double, 3>;

Doubles rotation(const Three& axis, double angle) {
  return built([&](Matrix& m) { m.rot(axis[0], axis[1], axis[2], angle); });
}

Doubles lookAt(const Three& eye, const Three& center, const Three& up) {
  return built([&](Matrix& m) {
    m.lookat({eye[0], eye[1], eye[2]}, {center[0], center[1], center[2]},
             Norvel::Vexa::TUxBaseVector<double>(up[0], up[1], up[2]));
  });
}

Doubles perspective(double fovyDegrees, double aspect, double nearest, double farthest) {
  return built([&](Matrix& m) { m.persp_proj(fovyDegrees, aspect, nearest, farthest); });
}

// Directions to the sun for seconds of the local clock since 1970.
Floats sunDirection(
    double latitude, double longitude,
    const py::array_t<std::int64_t, py::array::c_style | py::array::forcecast>& clock, int timezone,
    bool summertime, double north) {
  require(std::fabs(latitude) <= 90, "latitude: expected -90 to 90 degrees");
  require(std::fabs(longitude) <= 180, "longitude: expected -180 to 180 degrees");
  require(std::abs(timezone) <= 1440, "timezone: expected -1440 to 1440 minutes");
  require(std::isfinite(north), "north is not finite");
  // The tool takes whole minutes of arc.
  const UXS::uxs_heliodon_tool::place place{
      int(std::lround(longitude * 60)), int(std::lround(latitude * 60)), timezone, float(north)};
  std::vector<py::ssize_t> shape(clock.shape(), clock.shape() + clock.ndim());
  shape.push_back(3);
  Floats result(shape);
  const std::int64_t* from = clock.data();
  float* to = result.mutable_data();
  for (py::ssize_t i = 0; i < clock.size(); ++i) {
    // "2024-03-01T12:30:00Z"
    const std::string text = formats::dateOfSeconds(from[i]);
    // Outside of these years the text has another length, and its numbers are elsewhere.
    require(text.size() == 20 && text[0] != '-', "clock: expected dates of the years 0 to 9999");
    const auto number = [&text](std::size_t at, std::size_t count) {
      return std::uint32_t(std::stoul(text.substr(at, count)));
    };
    const UXS::uxs_heliodon_tool::date date{number(0, 4),  number(5, 2),  number(8, 2),
                                            number(11, 2), number(14, 2), summertime};
    const auto d = UXS::uxs_heliodon_tool::get_sun_direction(place, date);
    to[3 * i] = d.x;
    to[3 * i + 1] = d.y;
    to[3 * i + 2] = d.z;
  }
  return result;
}

std::array<float, 3> cameraUp(const std::array<float, 3>& position,
                              const std::array<float, 3>& target, float rollDegrees) {
  const auto up = UXS::uxs_camera_tool::get_upvector(
      {position[0], position[1], position[2]}, {target[0], target[1], target[2]}, rollDegrees);
  return {up.x, up.y, up.z};
}

// Checked here: the library takes enumerators, which are never out of range in C++.
std::array<int, 5> presetLevels(std::uint32_t engine, std::uint32_t ambiance,
                                std::uint32_t settings) {
  require(engine <= 2 && ambiance <= 2 && settings <= 2, "a preset is 0, 1 or 2");
  std::array<int, 5> levels{};
  Converter().presets_to_options(Converter::engine(engine), Converter::ambiance(ambiance),
                                 Converter::settings(settings), levels.data());
  return levels;
}

void requireLevels(const std::array<int, 5>& levels) {
  for (const int level : levels) require(level >= 1 && level <= 6, "a level is 1 to 6");
}

std::pair<std::uint32_t, std::uint32_t> levelPresets(std::uint32_t engine,
                                                     const std::array<int, 5>& levels) {
  require(engine <= 2, "an engine is 0, 1 or 2");
  requireLevels(levels);
  Converter::ambiance ambiance{};
  Converter::settings settings{};
  Converter().options_to_presets(Converter::engine(engine), levels.data(), ambiance, settings);
  return {ambiance, settings};
}

std::array<int, 5> levelValues(std::uint32_t engine, std::array<int, 5> levels) {
  require(engine <= 2, "an engine is 0, 1 or 2");
  requireLevels(levels);
  Converter().decode_options(Converter::engine(engine), levels.data());
  return levels;
}

}  // namespace

void bindTools(py::module_& module) {
  module.def(
      "inverse", &inverse, py::arg("matrices"),
      "Inverses of matrices of shape (..., 4, 4). Raises OverflowError for a determinant of 0.");
  module.def("transform", &transform, py::arg("matrix"), py::arg("points"),
             "A matrix of shape (4, 4) applied to points of shape (..., 3).");
  module.def("rotation", &rotation, py::arg("axis"), py::arg("angle"),
             "The right-handed rotation about a unit axis, in radians; shape (4, 4).");
  module.def("look_at", &lookAt, py::arg("eye"), py::arg("center"), py::arg("up"),
             "From the world to a camera that looks along its own -Z; shape (4, 4).");
  module.def("perspective", &perspective, py::arg("fovy_degrees"), py::arg("aspect"),
             py::arg("near"), py::arg("far"),
             "A perspective projection; the angle spans the larger side of the image.");
  module.def(
      "sun_direction", &sunDirection, py::arg("latitude"), py::arg("longitude"), py::arg("clock"),
      py::arg("timezone") = 0, py::arg("summertime") = false, py::arg("north") = 0.0,
      "Unit vectors to the sun, +Z up, as float32 of the shape of clock and 3. Angles are in\n"
      "degrees; clock is what a local clock shows, in seconds since 1970-01-01 00:00 (a\n"
      "datetime64[s] array, or whole numbers); timezone is in minutes.");
  module.def("camera_up", &cameraUp, py::arg("position"), py::arg("target"),
             py::arg("roll_degrees") = 0.0f, "The unit up vector of a camera.");
  module.def("preset_levels", &presetLevels, py::arg("engine"), py::arg("ambiance"),
             py::arg("settings"), "The five option levels of a pair of render presets.");
  module.def("level_presets", &levelPresets, py::arg("engine"), py::arg("levels"),
             "The presets (ambiance, settings) with these five levels, or (3, 3).");
  module.def("level_values", &levelValues, py::arg("engine"), py::arg("levels"),
             "The five values that these levels stand for.");
}

}  // namespace vexa::python
