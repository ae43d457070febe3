// What is stored for a meter and a series.
// SPDX-License-Identifier: MIT
#include "bindings/python/module/bindings.h"
#include "bindings/python/module/records.h"

#include <pelmora/calibration/sign_off.h>
#include <pelmora/calibration/values.h>

namespace pelmora::python {
namespace {

namespace cal = pelmora::calibration;
using py::literals::operator""_a;

const char* ageKey(cal::CurveAge age) {
  switch (age) {
    case cal::CurveAge::none: return "none";
    case cal::CurveAge::current: return "current";
    case cal::CurveAge::outdated: return "outdated";
    case cal::CurveAge::unknown: return "unknown";
  }
  return "";
}

}  // namespace

void bindValues(py::module_& module) {
  py::class_<cal::Meter>(module, "Meter")
      .def_property_readonly("serial", [](const cal::Meter& meter) { return textOf(meter.serial); })
      .def_property_readonly("adjusted",
                             [](const cal::Meter& meter) { return textOf(meter.adjusted); })
      .def_readonly("calibration", &cal::Meter::calibration)
      .def_readonly("id", &cal::Meter::id);

  py::class_<cal::StoredSeries>(module, "StoredSeries")
      .def_readonly("meter", &cal::StoredSeries::meter)
      .def_property_readonly("name",
                             [](const cal::StoredSeries& series) { return textOf(series.name); })
      .def_readonly("id", &cal::StoredSeries::id)
      .def(
          "raw",
          [](const py::object& self, int part) {
            const auto& series = self.cast<const cal::StoredSeries&>();
            return viewOf(series.raw.at(static_cast<std::size_t>(part - 1)), self);
          },
          "part"_a)
      .def_property_readonly("merged",
                             [](const py::object& self) {
                               return viewOf(self.cast<const cal::StoredSeries&>().merged, self);
                             })
      .def_property_readonly("table",
                             [](const py::object& self) {
                               return viewOf(self.cast<const cal::StoredSeries&>().curve, self);
                             })
      .def_property_readonly("report",
                             [](const cal::StoredSeries& series) { return textOf(series.report); })
      .def_property_readonly(
          "equation", [](const cal::StoredSeries& series) { return textOf(series.equation); })
      .def_property_readonly("settings",
                             [](const cal::StoredSeries& series) -> py::object {
                               if (!series.settings) return py::none();
                               return recordOf(*series.settings);
                             })
      .def_property_readonly("age",
                             [](const cal::StoredSeries& series) { return ageKey(series.age); })
      .def_property_readonly(
          "fingerprint",
          [](const cal::StoredSeries& series) { return cal::signedFingerprint(series); })
      .def_property_readonly("age_warning", [](const cal::StoredSeries& series) {
        return textOf(series.ageWarning());
      });
}

}  // namespace pelmora::python
