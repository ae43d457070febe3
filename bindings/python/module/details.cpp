// What certificates state besides the measured numbers.
// SPDX-License-Identifier: MIT
#include "bindings/python/module/bindings.h"
#include "bindings/python/module/database_parts.h"

#include <pelmora/calibration/details.h>

#include <pybind11/stl.h>

#include <optional>
#include <string>

namespace pelmora::python {
namespace {

namespace cal = pelmora::calibration;
using py::literals::operator""_a;

const char* ownerKey(cal::DetailOf of) {
  switch (of) {
    case cal::DetailOf::laboratory: return "laboratory";
    case cal::DetailOf::meter: return "meter";
    case cal::DetailOf::calibration: return "calibration";
  }
  return "";
}

const char* kindKey(cal::DetailKind kind) {
  switch (kind) {
    case cal::DetailKind::text: return "text";
    case cal::DetailKind::list: return "list";
    case cal::DetailKind::date: return "date";
    case cal::DetailKind::country: return "country";
    case cal::DetailKind::measure: return "measure";
    case cal::DetailKind::unit: return "unit";
    case cal::DetailKind::column: return "column";
  }
  return "";
}

py::list detailFields() {
  py::list fields;
  for (const cal::DetailField& field : cal::detailFields()) {
    fields.append(py::dict("key"_a = textOf(field.key), "label"_a = textOf(field.label),
                           "help"_a = textOf(field.help), "of"_a = ownerKey(field.of),
                           "kind"_a = kindKey(field.kind), "quantity"_a = textOf(field.quantity)));
  }
  return fields;
}

py::dict dictOf(const cal::Details& details) {
  py::dict values;
  for (const auto& [key, text] : details) values[textOf(key)] = textOf(text);
  return values;
}

std::optional<std::string> standUncertainty(Laboratory& lab, const cal::Meter& meter) {
  const auto statement =
      lab.use([&](cal::Database& database) { return database.standUncertainty(meter); });
  return statement ? std::optional(statement->text) : std::nullopt;
}

cal::HistoryEntryId setStandUncertainty(Laboratory& lab, const cal::Meter& meter,
                                        const std::string& text, const std::string& file) {
  return lab.change([&](cal::Database& database) {
    return text.empty() ? database.removeStandUncertainty(meter)
                        : database.setStandUncertainty(meter, {text, file});
  });
}

}  // namespace

void bindDetails(py::class_<Laboratory>& type) {
  type.def("laboratory",
           [](Laboratory& lab) {
             return dictOf(lab.use([](cal::Database& database) { return database.laboratory(); }));
           })
      .def(
          "set_laboratory",
          [](Laboratory& lab, const cal::Details& changes) {
            lab.change([&](cal::Database& database) { database.setLaboratory(changes); });
          },
          "changes"_a)
      .def(
          "details",
          [](Laboratory& lab, const cal::Meter& meter) {
            return dictOf(
                lab.use([&](cal::Database& database) { return database.details(meter); }));
          },
          "meter"_a)
      .def(
          "set_details",
          [](Laboratory& lab, const cal::Meter& meter, const cal::Details& changes) {
            return lab.change(
                [&](cal::Database& database) { return database.setDetails(meter, changes); });
          },
          "meter"_a, "changes"_a)
      .def("stand_uncertainty", &standUncertainty, "meter"_a)
      .def("set_stand_uncertainty", &setStandUncertainty, "meter"_a, "text"_a, "file"_a);
}

void bindDetailFields(py::module_& module) { module.def("detail_fields", &detailFields); }

}  // namespace pelmora::python
