#include "python/bindings_internal.h"

// One module in several sources, one per subject. It translates: arrays in, arrays out, no
// algorithms. std::invalid_argument becomes ValueError, std::runtime_error becomes RuntimeError.
PYBIND11_MODULE(_vexa, module) {
  module.attr("__version__") = VEXA_VERSION;
  vexa::python::bindScene(module);
  vexa::python::bindCurves(module);
  vexa::python::bindTools(module);
  vexa::python::bindFiles(module);
}
