// SPDX-License-Identifier: MIT
#include "bindings/python/module/database_parts.h"

#include "bindings/python/module/records.h"

#include <pelmora/calibration/points.h>

#include <pybind11/stl.h>

namespace pelmora::python {
namespace {

namespace cal = pelmora::calibration;
using py::literals::operator""_a;

struct Wanted {
  cal::PointSelection selection;
  cal::ExclusionOptions options;
};

Wanted wantedOf(const py::dict& values) {
  Wanted wanted;
  wanted.selection.part = values["part"].cast<std::optional<int>>();
  wanted.selection.numbers = values["numbers"].cast<std::vector<std::size_t>>();
  wanted.selection.below = values["below"].cast<std::optional<double>>();
  wanted.selection.above = values["above"].cast<std::optional<double>>();
  wanted.selection.between = values["between"].cast<std::optional<std::pair<double, double>>>();
  wanted.selection.all = values["all"].cast<bool>();
  wanted.options.alsoIn = values["also_in"].cast<std::vector<std::string>>();
  wanted.options.inDerivedSeries = values["in_derived_series"].cast<bool>();
  return wanted;
}

}  // namespace

void bindPoints(py::class_<Laboratory>& type) {
  type.def(
          "points",
          [](Laboratory& lab, const cal::Meter& meter, const std::string& series) {
            return recordsOf(
                lab.use({}, [&](cal::Database& database, const cal::Observer& observer) {
                  return database.points(database.series(meter, series), observer);
                }));
          },
          "meter"_a, "series"_a)
      .def(
          "exclude",
          [](Laboratory& lab, const cal::Meter& meter, const std::string& series,
             const py::dict& selection, const std::string& reason) {
            const Wanted wanted = wantedOf(selection);
            return recordOf(lab.change([&](auto& database) {
              return database.exclude(meter, series, wanted.selection, reason, wanted.options);
            }));
          },
          "meter"_a, "series"_a, "selection"_a, "reason"_a)
      .def(
          "include",
          [](Laboratory& lab, const cal::Meter& meter, const std::string& series,
             const py::dict& selection) {
            const Wanted wanted = wantedOf(selection);
            return recordOf(lab.change([&](auto& database) {
              return database.include(meter, series, wanted.selection, wanted.options);
            }));
          },
          "meter"_a, "series"_a, "selection"_a);
}

}  // namespace pelmora::python
