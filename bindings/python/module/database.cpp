// An open curve database.
// SPDX-License-Identifier: MIT
#include "bindings/python/module/bindings.h"
#include "bindings/python/module/curve_handle.h"
#include "bindings/python/module/database_parts.h"
#include "bindings/python/module/fit_result.h"
#include "bindings/python/module/fit_settings.h"
#include "bindings/python/module/records.h"

#include <pybind11/stl.h>

#include <cmath>
#include <memory>

namespace pelmora::python {
namespace {

namespace cal = pelmora::calibration;
using py::literals::operator""_a;

std::unique_ptr<Laboratory> openLaboratory(const std::string& location, bool isWritten, double wait,
                                           const std::string& userName, bool isNew) {
  Laboratory::Settings settings;
  settings.location = location;
  settings.mode = isWritten ? cal::Mode::write : cal::Mode::read;
  settings.wait = std::chrono::milliseconds(std::llround(wait * 1000));
  settings.userName = userName;
  settings.isNew = isNew;
  return std::make_unique<Laboratory>(settings);
}

FitResult fitSeries(Laboratory& lab, const cal::StoredSeries& series, const py::dict& settings,
                    const py::object& status, const py::object& progress) {
  const cal::FitSettings wanted = fitSettingsOf(settings);
  return FitResult(
      lab.use({status, progress}, [&](cal::Database& database, const cal::Observer& observer) {
        return database.fit(series, wanted, observer);
      }));
}

// With the fit behind it if that gives the curve again.
CurveHandle storedCurve(Laboratory& lab, const cal::Meter& meter, const std::string& series) {
  return lab.use({}, [&](cal::Database& database, const cal::Observer& observer) {
    const cal::StoredSeries stored = database.series(meter, series);
    (void)stored.storedCurve();
    cal::Repeated repeated = database.repeat(stored, {}, observer);
    if (!repeated.isStoredCurve())
      return CurveHandle(database.fittedCurve(stored, repeated, observer).table(), stored.name);
    repeated.fit.curve = stored.curve;  // to the last digit
    return CurveHandle(FitResult(std::move(repeated.fit)), database.standUncertainty(meter));
  });
}

py::tuple refit(Laboratory& lab, const std::vector<std::pair<cal::Meter, std::string>>& tasks,
                bool isAll, std::size_t threads, double changedPercent, bool isDryRun,
                const py::object& progress) {
  std::vector<cal::RefitTask> wanted;
  for (const auto& [meter, series] : tasks) wanted.push_back({meter, series});
  cal::RefitOptions options;
  options.threads = threads;
  options.changedPercent = changedPercent;
  options.isDryRun = isDryRun;
  const cal::RefitOutcome outcome =
      lab.use({py::none(), progress}, [&](cal::Database& database, const cal::Observer& observer) {
        return database.refit(isAll ? database.allSeries() : wanted, options, observer);
      });
  return py::make_tuple(recordsOf(outcome.results), outcome.isCancelled, outcome.kept);
}

py::list history(Laboratory& lab, const std::string& serial, const std::string& series,
                 std::optional<int> calibration) {
  return recordsOf(lab.use([&](cal::Database& database) {
    return database.history({.serial = serial, .series = series, .calibration = calibration});
  }));
}

void bindLookUps(py::class_<Laboratory>& type) {
  type.def(
          "meters",
          [](Laboratory& lab) { return lab.use([](auto& database) { return database.meters(); }); })
      .def(
          "calibrations",
          [](Laboratory& lab, const std::string& serial) {
            return lab.use([&](auto& database) { return database.calibrations(serial); });
          },
          "serial"_a)
      .def(
          "meter",
          [](Laboratory& lab, const std::string& serial, int calibration) {
            return lab.use([&](auto& database) { return database.meter(serial, calibration); });
          },
          "serial"_a, "calibration"_a)
      .def(
          "runs",
          [](Laboratory& lab, const cal::Meter& meter) {
            return recordsOf(lab.use([&](auto& database) { return database.runs(meter); }));
          },
          "meter"_a)
      .def(
          "series_of",
          [](Laboratory& lab, const cal::Meter& meter) {
            return textsOf(lab.use([&](auto& database) { return database.seriesOf(meter); }));
          },
          "meter"_a)
      .def(
          "series",
          [](Laboratory& lab, const cal::Meter& meter, const std::string& name) {
            return lab.use([&](auto& database) { return database.series(meter, name); });
          },
          "meter"_a, "name"_a)
      .def("curve", &storedCurve, "meter"_a, "series"_a)
      .def(
          "is_outdated",
          [](Laboratory& lab, const cal::StoredSeries& series) {
            return lab.use({}, [&](cal::Database& database, const cal::Observer& observer) {
              return database.curveAge(series, observer) == cal::CurveAge::outdated;
            });
          },
          "series"_a)
      .def("history", &history, "serial"_a, "series"_a, "calibration"_a);
}

void bindChanges(py::class_<Laboratory>& type) {
  type.def(
          "register",
          [](Laboratory& lab, const std::string& serial, bool newCalibration) {
            return lab.change(
                [&](auto& database) { return database.registerMeter(serial, newCalibration); });
          },
          "serial"_a, "new_calibration"_a)
      .def(
          "store",
          [](Laboratory& lab, const FitResult& fit) {
            return lab.change([&](auto& database) { return database.store(*fit); });
          },
          "fit"_a)
      .def(
          "remove",
          [](Laboratory& lab, const cal::Meter& meter, const std::optional<std::string>& series) {
            return recordOf(lab.change([&](auto& database) {
              return series ? database.remove(meter, *series) : database.remove(meter);
            }));
          },
          "meter"_a, "series"_a)
      .def(
          "restore",
          [](Laboratory& lab, cal::HistoryEntryId entry) {
            return recordOf(lab.change([&](auto& database) { return database.restore(entry); }));
          },
          "entry"_a)
      .def(
          "prune",
          [](Laboratory& lab, const std::optional<std::string>& before, std::size_t keep) {
            return recordsOf(lab.change([&](auto& database) {
              return database.prune(cal::HistoryPruning{.before = before, .keep = keep});
            }));
          },
          "before"_a, "keep"_a);
}

void bindFits(py::class_<Laboratory>& type) {
  type.def("fit", &fitSeries, "series"_a, "settings"_a, "status"_a, "progress"_a)
      .def("refit", &refit, "tasks"_a, "all"_a, "threads"_a, "changed_percent"_a, "dry_run"_a,
           "progress"_a);
}

}  // namespace

void bindDatabase(py::module_& module) {
  py::class_<Laboratory> type(module, "Database");
  type.def(py::init(&openLaboratory), "location"_a, "write"_a, "wait"_a, "user"_a, "create"_a)
      .def("close", &Laboratory::close)
      .def_property_readonly("is_open", &Laboratory::isOpen)
      .def_property_readonly("location",
                             [](const Laboratory& lab) { return textOf(lab.location()); });
  bindLookUps(type);
  bindChanges(type);
  bindFits(type);
  bindImport(type);
  bindPoints(type);
  bindDetails(type);
  bindSignOffs(type);
  bindReports(type);
}

}  // namespace pelmora::python
