// Reports of a calibration.
// SPDX-License-Identifier: MIT
#include "bindings/python/module/database_parts.h"

#include <pelmora/calibration/report.h>

#include <pybind11/stl.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::python {
namespace {

namespace cal = pelmora::calibration;
using py::literals::operator""_a;

// A key and its certificate.
using SignerFiles = std::optional<std::pair<std::string, std::string>>;

// Result: what the reader of the report should know besides.
py::list writeReport(Laboratory& lab, const cal::Meter& meter, const std::string& file,
                     const std::vector<std::string>& series, const SignerFiles& signer) {
  std::vector<std::string> notes;
  cal::ReportOptions options{.series = series};
  if (signer) options.signer = cal::Signer{signer->first, signer->second};
  options.note = [&notes](const std::string& words) { notes.push_back(words); };
  lab.use({}, [&](cal::Database& database, const cal::Observer& observer) {
    options.observer = observer;
    cal::writeReport(database, meter, file, options);
  });
  return textsOf(notes);
}

py::str picture(Laboratory& lab, const cal::Meter& meter, const std::vector<std::string>& series) {
  return textOf(lab.use({}, [&](cal::Database& database, const cal::Observer& observer) {
    return cal::makeReport(database, meter, cal::ReportKind::svg,
                           {.series = series, .observer = observer});
  }));
}

}  // namespace

void bindReports(py::class_<Laboratory>& type) {
  type.def("write_report", &writeReport, "meter"_a, "file"_a, "series"_a, "signer"_a)
      .def("picture", &picture, "meter"_a, "series"_a);
}

}  // namespace pelmora::python
