// Texts, points and optional values between C++ and Python.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/types.h>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <optional>
#include <string>
#include <vector>

namespace pelmora::python {

namespace py = pybind11;

// A column of numbers as Python passes it: float64, one-dimensional, contiguous.
using Column = py::array_t<double, py::array::c_style | py::array::forcecast>;

// Bytes that are not UTF-8 become U+FFFD: a name from a foreign database must not end a listing.
[[nodiscard]] py::str textOf(const std::string& text);
[[nodiscard]] py::list textsOf(const std::vector<std::string>& texts);

template <class T>
[[nodiscard]] py::object orNone(const std::optional<T>& value) {
  return value ? py::cast(*value) : py::none();
}
[[nodiscard]] py::object orNone(const std::string& text);

// Between the portions of long work under the interpreter lock: a signal ends it, and other threads
// get their turn. Errors: what the signal's handler raised.
void takeTurns();

// Copies two columns of equal length. Errors: ValueError for anything else.
[[nodiscard]] PointArray pointsOf(const Column& roshko, const Column& strouhal);

// An (n, 2) view of the points, read-only; it keeps `owner` alive. (0, 2) if there are none.
[[nodiscard]] py::array viewOf(const PointArray& points, const py::object& owner);
// A view of numbers, shaped and read-only; it keeps `owner` alive.
[[nodiscard]] py::array viewOf(const double* numbers, std::vector<py::ssize_t> shape,
                               std::vector<py::ssize_t> strides, const py::object& owner);

}  // namespace pelmora::python
