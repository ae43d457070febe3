// Values of the service as dictionaries, from which the package makes its records.
// SPDX-License-Identifier: MIT
#pragma once

#include "bindings/python/module/conversion.h"

#include <pelmora/calibration/fit.h>
#include <pelmora/calibration/history.h>
#include <pelmora/calibration/import.h>
#include <pelmora/calibration/points.h>
#include <pelmora/calibration/refit.h>
#include <pelmora/calibration/values.h>

#include <cstddef>

namespace pelmora::python {

[[nodiscard]] py::dict recordOf(const calibration::Run& run);
[[nodiscard]] py::dict recordOf(const calibration::Imported& imported);
[[nodiscard]] py::dict recordOf(const calibration::StoredPoints& stored);
[[nodiscard]] py::dict recordOf(const calibration::RawPoint& point);
[[nodiscard]] py::dict recordOf(const calibration::ChangedPoint& point);
[[nodiscard]] py::dict recordOf(const calibration::DroppedExclusion& dropped);
[[nodiscard]] py::dict recordOf(const calibration::JudgedPoint& point);
[[nodiscard]] py::dict recordOf(const calibration::ExclusionChange& change);
[[nodiscard]] py::dict recordOf(const calibration::Trust& trust);
[[nodiscard]] py::dict recordOf(const calibration::HistoryEntry& entry);
[[nodiscard]] py::dict recordOf(const calibration::Restored& restored);
[[nodiscard]] py::dict recordOf(const calibration::RefitResult& result);
[[nodiscard]] py::dict recordOf(const calibration::RankedEquation& equation);
[[nodiscard]] py::dict recordOf(const CurveWarning& warning);
[[nodiscard]] py::dict recordOf(const CurveSettings& settings);

template <class Values>
[[nodiscard]] py::list recordsOf(const Values& values) {
  constexpr std::size_t portion = 1024;
  py::list list;
  for (const auto& value : values) {
    list.append(recordOf(value));
    if (list.size() % portion == 0) takeTurns();
  }
  return list;
}

}  // namespace pelmora::python
