#include <limits>

#include "python/bindings_internal.h"

namespace vexa::python {
namespace {

constexpr long long kLast = std::numeric_limits<int>::max();

int frameOf(long long frame) {
  require(frame >= 0 && frame <= kLast, "frame " + std::to_string(frame) + " is out of range");
  return int(frame);
}

// A range is read by its three numbers: a million of Python's integers take longer than sampling.
std::vector<int> framesOfRange(const py::object& range) {
  const auto start = range.attr("start").cast<long long>();
  const auto step = range.attr("step").cast<long long>();
  std::vector<int> frames(py::len(range));
  if (frames.empty()) return frames;
  // The ends of a range bound everything between them.
  frameOf(start);
  frameOf(start + step * (static_cast<long long>(frames.size()) - 1));
  for (std::size_t i = 0; i < frames.size(); ++i) {
    frames[i] = int(start + step * static_cast<long long>(i));
  }
  return frames;
}

}  // namespace

std::vector<int> framesOf(const py::object& frames) {
  if (PyRange_Check(frames.ptr()) != 0) return framesOfRange(frames);
  if (PyLong_Check(frames.ptr()) != 0) return {frameOf(frames.cast<long long>())};
  // A list of floats is refused: a frame of 1.5 would silently become 1.
  const py::array numbers = py::array::ensure(frames);
  require(
      bool(numbers) && numbers.ndim() == 1 &&
          (numbers.size() == 0 || numbers.dtype().kind() == 'i' || numbers.dtype().kind() == 'u'),
      "frames: expected a whole number, a range or a sequence of whole numbers");
  const auto whole = py::array_t<long long, py::array::c_style | py::array::forcecast>(numbers);
  std::vector<int> result(std::size_t(whole.size()));
  for (std::size_t i = 0; i < result.size(); ++i) result[i] = frameOf(whole.data()[i]);
  return result;
}

}  // namespace vexa::python
