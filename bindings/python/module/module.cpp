// The module `_pelmora`: the calibration service as the package `pelmora` uses it.
// SPDX-License-Identifier: MIT
#include "bindings/python/module/bindings.h"
#include "bindings/python/module/crew.h"
#include "bindings/python/module/errors.h"

PYBIND11_MODULE(_pelmora, module) {
  using namespace pelmora::python;
  module.doc() = "The calibration service; use the package pelmora.";
  module.attr("__version__") = PELMORA_VERSION;
  py::module_::import("os").attr("register_at_fork")(py::arg("after_in_child") =
                                                         py::cpp_function(&beginWithoutThreads));
  translateErrors();
  bindCurve(module);
  bindFit(module);
  bindValues(module);
  bindDetailFields(module);
  bindDatabase(module);
}
