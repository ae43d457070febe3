// SPDX-License-Identifier: MIT
#include "bindings/python/module/fit_settings.h"

#include <pelmora/calibration/failure.h>

#include <pybind11/stl.h>

#include <utility>

namespace pelmora::python {
namespace {

namespace cal = pelmora::calibration;

template <class T>
T valueOf(const py::dict& values, const char* key) {
  return values[key].cast<T>();
}

cal::RangePolicy policyOf(const std::string& name) {
  if (name == "refuse") return cal::RangePolicy::refuse;
  if (name == "whole") return cal::RangePolicy::wholeRange;
  if (name == "extrapolate") return cal::RangePolicy::extrapolate;
  throw cal::BadData({"there is no rule '" + name + "' for a range beyond the points", "outside",
                      "use 'refuse', 'whole' or 'extrapolate'"});
}

cal::PointSpacing spacingNamed(const std::string& name) {
  if (const auto spacing = cal::spacingOf(name)) return *spacing;
  throw cal::BadData({"there is no spacing '" + name + "'", "spacing", "use 'usual' or 'optimal'"});
}

}  // namespace

cal::Choice choiceNamed(const std::string& name) {
  if (const auto choice = cal::choiceOf(name)) return *choice;
  throw cal::BadData(
      {"there is no rule of choice '" + name + "'", "choose", "use 'trusted' or 'adjusted-r2'"});
}

cal::FitSettings fitSettingsOf(const py::dict& values) {
  cal::FitSettings settings;
  settings.min = valueOf<std::optional<double>>(values, "min");
  settings.max = valueOf<std::optional<double>>(values, "max");
  settings.fitMin = valueOf<std::optional<double>>(values, "fit_min");
  settings.fitMax = valueOf<std::optional<double>>(values, "fit_max");
  settings.points = valueOf<std::int16_t>(values, "points");
  settings.band = valueOf<double>(values, "band");
  settings.ratio = valueOf<bool>(values, "ratio");
  settings.inverted = valueOf<bool>(values, "inverted");
  settings.mergeBand = valueOf<std::optional<double>>(values, "merge_band");
  settings.cutsOverlap = valueOf<bool>(values, "cut_overlap");
  settings.spacing = spacingNamed(valueOf<std::string>(values, "spacing"));
  settings.ignoreResiduals = valueOf<bool>(values, "ignore_residuals");
  settings.outside = policyOf(valueOf<std::string>(values, "outside"));
  settings.choice = choiceNamed(valueOf<std::string>(values, "choose"));
  settings.only = valueOf<std::vector<std::string>>(values, "only");
  settings.without = valueOf<std::vector<std::string>>(values, "without");
  settings.maxOrder = valueOf<std::optional<int>>(values, "max_order");
  if (!values["equations"].is_none()) {
    const auto [text, place] = valueOf<std::pair<std::string, std::string>>(values, "equations");
    settings.equations = cal::EquationList::parse(text, place);
  }
  return settings;
}

}  // namespace pelmora::python
