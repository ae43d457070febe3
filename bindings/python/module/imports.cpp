// Runs of a stand, and points from elsewhere.
// SPDX-License-Identifier: MIT
#include "bindings/python/module/database_parts.h"
#include "bindings/python/module/records.h"

#include <pelmora/calibration/import.h>
#include <pelmora/calibration/stand.h>

#include <pybind11/stl.h>

#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::python {
namespace {

namespace cal = pelmora::calibration;
using py::literals::operator""_a;

struct WantedImport {
  std::string serial, stand;
  std::vector<cal::StandRun> runs;
  cal::ImportOptions options;
  sheets::Style style;
  std::chrono::milliseconds wait{};
};

struct Outcome {
  cal::Imported imported;
  std::string recognised;  // how a text file was read, in words
};

// The meter is registered only if the import succeeds.
Outcome importInto(cal::Database& database, WantedImport wanted, const cal::Observer& observer) {
  const cal::Stand stand(
      wanted.stand,
      {.limit = wanted.wait,
       .goesOn = [&observer](std::chrono::milliseconds) { return !observer.stop.stop_requested(); },
       .stopRequested = [&observer] { return observer.stop.stop_requested(); }},
      wanted.style);
  cal::Change change = database.begin("import");
  const bool isKnown = database.findMeter(wanted.serial).has_value();
  if (!isKnown) wanted.options.newCalibration = false;
  const cal::Meter meter = database.registerMeter(wanted.serial);
  Outcome outcome{database.importRuns(meter, stand, wanted.runs, wanted.options, observer), {}};
  outcome.imported.isNewCalibration = outcome.imported.isNewCalibration || !isKnown;
  if (stand.recognised()) outcome.recognised = stand.recognised()->words();
  change.commit();
  return outcome;
}

WantedImport wantedImportOf(const py::dict& values) {
  WantedImport wanted;
  wanted.serial = values["serial"].cast<std::string>();
  wanted.stand = values["stand"].cast<std::string>();
  wanted.wait = std::chrono::milliseconds(std::llround(values["wait"].cast<double>() * 1000));
  wanted.options.newCalibration = values["new_calibration"].cast<bool>();
  wanted.options.stand = values["stand_number"].cast<std::int16_t>();
  wanted.options.position = values["position"].cast<std::int16_t>();
  wanted.options.date = values["date"].cast<std::string>();
  wanted.options.update = values["update"].cast<bool>();
  wanted.style.separator = values["separator"].cast<char>();
  wanted.style.decimal = values["decimal"].cast<char>();
  using Run = std::array<std::string, 3>;
  for (const auto& [job, fluid, operatorName] : values["runs"].cast<std::vector<Run>>())
    wanted.runs.push_back({job, fluid, operatorName});
  return wanted;
}

py::dict importRuns(Laboratory& lab, const py::dict& values, const py::object& status) {
  WantedImport wanted = wantedImportOf(values);
  const Outcome outcome =
      lab.change({status, py::none()}, [&](cal::Database& database, const cal::Observer& observer) {
        return importInto(database, std::move(wanted), observer);
      });
  py::dict record = recordOf(outcome.imported);
  record["recognised"] = textOf(outcome.recognised);
  return record;
}

py::dict storeRaw(Laboratory& lab, const cal::Meter& meter, const std::string& series, int part,
                  const Column& roshko, const Column& strouhal) {
  const PointArray points = pointsOf(roshko, strouhal);
  return recordOf(lab.change(
      [&](cal::Database& database) { return database.storeRaw(meter, series, part, points); }));
}

}  // namespace

void bindImport(py::class_<Laboratory>& type) {
  type.def("import_runs", &importRuns, "wanted"_a, "status"_a)
      .def("store_raw", &storeRaw, "meter"_a, "series"_a, "part"_a, "roshko"_a, "strouhal"_a);
}

}  // namespace pelmora::python
