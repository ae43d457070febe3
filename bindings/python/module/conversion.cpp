// SPDX-License-Identifier: MIT
#include "bindings/python/module/conversion.h"

#include <algorithm>
#include <utility>

namespace pelmora::python {

py::str textOf(const std::string& text) {
  PyObject* decoded =
      PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "replace");
  if (decoded == nullptr) throw py::error_already_set();
  return py::reinterpret_steal<py::str>(decoded);
}

py::list textsOf(const std::vector<std::string>& texts) {
  py::list list;
  for (const std::string& text : texts) list.append(textOf(text));
  return list;
}

py::object orNone(const std::string& text) {
  if (text.empty()) return py::none();
  return textOf(text);
}

void takeTurns() {
  if (PyErr_CheckSignals() != 0) throw py::error_already_set();
  const py::gil_scoped_release others;
}

PointArray pointsOf(const Column& roshko, const Column& strouhal) {
  if (roshko.ndim() != 1 || strouhal.ndim() != 1 || roshko.size() != strouhal.size())
    throw py::value_error("roshko and strouhal must be one-dimensional and of equal length");
  const auto size = static_cast<std::size_t>(roshko.size());
  PointArray points(size);
  std::copy_n(roshko.data(), size, points.column(0).begin());
  std::copy_n(strouhal.data(), size, points.column(1).begin());
  return points;
}

py::array viewOf(const double* numbers, std::vector<py::ssize_t> shape,
                 std::vector<py::ssize_t> strides, const py::object& owner) {
  py::array view(py::dtype::of<double>(), std::move(shape), std::move(strides), numbers, owner);
  view.attr("setflags")(py::arg("write") = false);
  return view;
}

py::array viewOf(const PointArray& points, const py::object& owner) {
  const auto size = static_cast<py::ssize_t>(points.size());
  if (size == 0) return py::array_t<double>(std::vector<py::ssize_t>{0, 2});
  constexpr auto number = static_cast<py::ssize_t>(sizeof(double));
  return viewOf(points.column(0).data(), {size, 2}, {number, number * size}, owner);
}

}  // namespace pelmora::python
