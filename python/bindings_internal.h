#pragma once

#include <cstddef>
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>
#include <stdexcept>
#include <string>
#include <vector>

/// What the parts of the Python module share. Computing releases the interpreter's lock; arrays are
/// made before that and filled in place.
namespace vexa::python {

namespace py = pybind11;

using Doubles = py::array_t<double, py::array::c_style | py::array::forcecast>;
using Floats = py::array_t<float, py::array::c_style | py::array::forcecast>;
using Indices = py::array_t<std::uint32_t, py::array::c_style | py::array::forcecast>;

void bindScene(py::module_& module);
void bindCurves(py::module_& module);
void bindTools(py::module_& module);
void bindFiles(py::module_& module);

/// Throws std::invalid_argument (ValueError) unless the condition holds.
inline void require(bool holds, const std::string& text) {
  if (!holds) throw std::invalid_argument(text);
}

/// The rows of an array of shape (n, columns). Throws std::invalid_argument for another shape.
template <class Array>
std::size_t rowsOf(const Array& array, py::ssize_t columns, const char* what) {
  require(array.ndim() == 2 && array.shape(1) == columns,
          std::string(what) + ": expected an array of shape (n, " + std::to_string(columns) + ")");
  return std::size_t(array.shape(0));
}

/// Frames from a whole number, a range or a sequence of whole numbers, each 0 or more.
std::vector<int> framesOf(const py::object& frames);

}  // namespace vexa::python
