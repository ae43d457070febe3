// Fits and what results from them.
// SPDX-License-Identifier: MIT
#include "bindings/python/module/bindings.h"
#include "bindings/python/module/curve_handle.h"
#include "bindings/python/module/fit_result.h"
#include "bindings/python/module/fit_settings.h"
#include "bindings/python/module/pickling.h"
#include "bindings/python/module/records.h"
#include "bindings/python/module/watched.h"

#include <pelmora/calibration/report.h>

#include <pybind11/stl.h>

#include <limits>
#include <optional>
#include <stop_token>
#include <string>

namespace pelmora::python {
namespace {

namespace cal = pelmora::calibration;
using py::literals::operator""_a;

using Part = std::pair<Column, Column>;

FitResult fitOf(const std::vector<Part>& parts, const py::dict& settings, const py::object& status,
                const py::object& progress) {
  std::vector<PointArray> points;
  for (const auto& [roshko, strouhal] : parts) points.push_back(pointsOf(roshko, strouhal));
  const cal::FitSettings wanted = fitSettingsOf(settings);
  std::optional<cal::Fit> fit;
  watched({status, progress},
          [&](const cal::Observer& observer) { fit = cal::fit(points, wanted, observer); });
  return FitResult(std::move(*fit));
}

// Rows of part, number, Roshko, Strouhal and how far off the merged points, in per cent.
py::array cutOf(const FitResult& fit) {
  constexpr double beyondEnds = std::numeric_limits<double>::quiet_NaN();
  py::array_t<double> rows({static_cast<py::ssize_t>(fit->cut.size()), py::ssize_t{5}});
  auto cells = rows.mutable_unchecked<2>();
  py::ssize_t row = 0;
  for (const cal::CutPoint& point : fit->cut) {
    cells(row, 0) = point.part;
    cells(row, 1) = static_cast<double>(point.number);
    cells(row, 2) = point.roshko;
    cells(row, 3) = point.strouhal;
    cells(row++, 4) = point.offPercent.value_or(beyondEnds);
  }
  return rows;
}

// The rank of the equation nearest to passing and the band that it would pass, each or None.
py::tuple nearestOf(const FitResult& fit) {
  const EquationOutcome* nearest = nullptr;
  std::optional<double> band;
  watched({}, [&](const cal::Observer& observer) {
    nearest = cal::nearestEquation(*fit, observer.stop);
    if (nearest != nullptr) band = cal::passingBand(*fit, *nearest, observer.stop);
  });
  if (nearest == nullptr) return py::make_tuple(py::none(), py::none());
  return py::make_tuple(textOf(nearest->Name), orNone(band));
}

// make(stop) gives a text, beside the interpreter.
template <class Make>
py::str watchedText(Make&& make) {
  std::string text;
  watched({}, [&](const cal::Observer& observer) { text = make(observer.stop); });
  return textOf(text);
}

py::list equationsOf(const cal::EquationList& list) {
  py::list equations;
  for (const ModelDefinition& equation : list.equations())
    equations.append(py::make_tuple(textOf(equation.Name), textOf(equation.Expression)));
  return equations;
}

}  // namespace

void bindFit(py::module_& module) {
  py::class_<FitResult>(module, "Fit")
      .def_property_readonly("accepted", [](const FitResult& fit) { return fit->accepted(); })
      .def_property_readonly("chosen",
                             [](const FitResult& fit) {
                               return fit->accepted() ? textOf(fit->chosen().Name) : py::str();
                             })
      .def_property_readonly(
          "reason",
          [](const FitResult& fit) {
            return watchedText([&](const std::stop_token& stop) { return fit->reason(stop); });
          })
      .def_property_readonly("series", [](const FitResult& fit) { return textOf(fit->series); })
      // None if the points came from no database.
      .def_property_readonly("meter",
                             [](const FitResult& fit) -> py::object {
                               if (fit->seriesID == 0) return py::none();
                               return py::cast(fit->meter);
                             })
      .def_property_readonly("report", [](const FitResult& fit) { return textOf(fit->report); })
      .def_property_readonly(
          "range", [](const FitResult& fit) { return py::make_tuple(fit->min, fit->max); })
      .def_property_readonly("raw_points",
                             [](const FitResult& fit) {
                               const auto& points = fit->rawPoints;
                               return py::make_tuple(points[0], points[1], points[2], points[3]);
                             })
      .def_property_readonly("merged",
                             [](const py::object& self) {
                               return viewOf(self.cast<const FitResult&>()->merged, self);
                             })
      .def_property_readonly("cut", &cutOf)
      .def_property_readonly("band", [](const FitResult& fit) { return fit->settings.band; })
      .def_property_readonly("trust",
                             [](const FitResult& fit) -> py::object {
                               if (!fit->trust) return py::none();
                               return recordOf(*fit->trust);
                             })
      .def("curve", [](const FitResult& fit) { return CurveHandle(fit); })
      .def("nearest", &nearestOf)
      .def("equations", [](const FitResult& fit) { return recordsOf(fit->equations()); })
      .def("warnings", [](const FitResult& fit) { return recordsOf(fit->outcome.Warnings); })
      .def("picture",
           [](const FitResult& fit) {
             return watchedText(
                 [&](const std::stop_token& stop) { return cal::plotOf(*fit, stop); });
           })
      .def("to_bytes", [](const FitResult& fit) { return py::bytes(bytesOf(fit)); });

  module.def(
      "fit_from", [](const std::string& pickled) { return fitFrom(pickled); }, "pickled"_a);
  module.def("fit", &fitOf, "parts"_a, "settings"_a, "status"_a, "progress"_a);
  module.def(
      "built_in_equations",
      [](const std::string& choose) {
        return equationsOf(cal::EquationList::builtIn(choiceNamed(choose)));
      },
      "choose"_a);
  module.def(
      "read_equations",
      [](const std::string& text, const std::string& place) {
        return equationsOf(cal::EquationList::parse(text, place));
      },
      "text"_a, "place"_a);
  module.def(
      "parameter_count",
      [](const std::string& expression) { return cal::parameterCount(expression); },
      "expression"_a);
}

}  // namespace pelmora::python
