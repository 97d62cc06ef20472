#include "python/bindings_internal.h"

PYBIND11_MODULE(_vexa, module) {
  module.attr("__version__") = VEXA_VERSION;
  vexa::python::bindScene(module);
  vexa::python::bindCurves(module);
  vexa::python::bindTools(module);
  vexa::python::bindFiles(module);
}
