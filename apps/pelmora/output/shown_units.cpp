// SPDX-License-Identifier: MIT
#include "apps/pelmora/output/shown_units.h"

#include "apps/pelmora/output/text_table.h"
#include "apps/pelmora/trouble.h"
#include "base/text_case.h"
#include "report/json_null.h"

#include <nlohmann/json.hpp>

namespace pelmora::cli {
namespace {

// Any unit of each quantity, to find out which one a unit belongs to.
constexpr const char *anyRoshko = "Hz/cSt", *anyStrouhal = "pulses/gal";

bool isUnitOf(const std::string& unit, const std::string& any) {
  try {
    (void)calibration::conversionFactor(any, unit);
    return true;
  } catch (const calibration::BadData&) {
    return false;
  }
}

void requestUnit(ShownUnit& unit, const std::string& wanted, const std::string& name,
                 const std::string& key) {
  if (unit.recorded.empty()) {
    throw Trouble(ExitCode::usage,
                  "--unit " + wanted + ": the unit of the " + name + " numbers is not recorded",
                  "record it with 'pelmora meter set CURVES --meter SN --" + key + " UNIT'");
  }
  if (unit.shown != unit.recorded) {
    throw Trouble(ExitCode::usage,
                  "--unit: '" + unit.shown + "' and '" + wanted + "' are both units of " + name,
                  "give one of them");
  }
  unit.factor = calibration::conversionFactor(unit.recorded, wanted);
  unit.shown = wanted;
}

std::string unitText(const std::string& name, const ShownUnit& unit) {
  if (unit.shown.empty()) return {};
  return name + " " + unit.shown +
         (unit.shown == unit.recorded ? "" : " (converted from " + unit.recorded + ")");
}

}  // namespace

void addUnits(Command& command, std::vector<std::string>& units) {
  command.addTexts({"--unit", "UNIT",
                    "Convert Roshko or Strouhal numbers to this unit, such as pulses/l; repeat for "
                    "both (default: as they are stored)"},
                   units);
}

ShownUnits shownUnits(const calibration::Database& lab, const calibration::StoredSeries& series,
                      const std::vector<std::string>& wanted) {
  ShownUnits units;
  units.isQuotient = equalNames(series.name, "Ratio") || equalNames(series.name, "Rotor Sum") ||
                     (series.settings && series.settings->RatioCurve);
  const calibration::Details details = lab.details(series.meter);
  const auto recorded = [&](const char* key) {
    const auto found = details.find(key);
    return found == details.end() ? std::string() : found->second;
  };
  units.roshko.recorded = units.roshko.shown = recorded("roshko-unit");
  if (!units.isQuotient) units.strouhal.recorded = units.strouhal.shown = recorded("strouhal-unit");
  for (const std::string& unit : wanted) {
    if (isUnitOf(unit, anyRoshko)) {
      requestUnit(units.roshko, unit, "Roshko", "roshko-unit");
    } else if (!isUnitOf(unit, anyStrouhal)) {
      throw Trouble(ExitCode::usage,
                    "--unit: '" + unit + "' is not a unit of Roshko or Strouhal numbers",
                    "give one such as Hz/(m2/s) or pulses/l");
    } else if (units.isQuotient) {
      throw Trouble(ExitCode::usage,
                    "--unit " + unit + ": the values of '" + series.name + "' have no unit",
                    "leave it out, or choose the series of a rotor");
    } else {
      requestUnit(units.strouhal, unit, "Strouhal", "strouhal-unit");
    }
  }
  return units;
}

void convert(PointArray& points, const ShownUnits& units) {
  for (std::size_t i = 0; i < points.size(); ++i) {
    points(i, 0) *= units.roshko.factor;
    points(i, 1) *= units.strouhal.factor;
  }
}

void convert(calibration::StoredSeries& series, const ShownUnits& units) {
  for (PointArray& part : series.raw) convert(part, units);
  convert(series.merged, units);
  convert(series.curve, units);
  for (auto* list : {&series.excluded, &series.excludedBefore}) {
    for (calibration::ExcludedPoint& point : *list) {
      point.roshko *= units.roshko.factor;
      point.strouhal *= units.strouhal.factor;
    }
  }
}

void convert(std::vector<calibration::RawPoint>& points, const ShownUnits& units) {
  for (calibration::RawPoint& point : points) {
    point.roshko *= units.roshko.factor;
    point.strouhal *= units.strouhal.factor;
  }
}

std::string unitsLine(const ShownUnits& units) {
  const std::string roshko = unitText("Roshko", units.roshko),
                    strouhal = unitText("Strouhal", units.strouhal);
  if (roshko.empty() && strouhal.empty()) return {};
  return wrapped(
      "Units: " + roshko + (roshko.empty() || strouhal.empty() ? "" : ", ") + strouhal + ".", 0);
}

nlohmann::json unitsJson(const ShownUnits& units) {
  return {
      {"roshko", report::orNull(units.roshko.shown)},
      {"strouhal", units.isQuotient ? nlohmann::json("1") : report::orNull(units.strouhal.shown)}};
}

}  // namespace pelmora::cli
