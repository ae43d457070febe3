// Running the library beside the interpreter: signals and callbacks are answered meanwhile.
// SPDX-License-Identifier: MIT
#pragma once

#include "bindings/python/module/conversion.h"

#include <pelmora/calibration/observer.h>

#include <functional>

namespace pelmora::python {

// Each is a Python function or None.
struct Callbacks {
  py::object status = py::none();    // status(text)
  py::object progress = py::none();  // progress(done, of)
};

// Runs `work` in another thread with the interpreter lock released. The calling thread waits,
// calls the callbacks and answers signals; an exception from either requests a stop and is raised
// once `work` has ended. Of progress that comes faster than the callback takes it, only the latest
// is passed on.
//
// Needs the interpreter lock. `work` must not touch Python.
void watched(const Callbacks& callbacks,
             const std::function<void(const calibration::Observer&)>& work);

}  // namespace pelmora::python
