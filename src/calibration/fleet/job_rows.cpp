// SPDX-License-Identifier: MIT
#include "calibration/fleet/job_rows.h"

#include "base/time_text.h"
#include "base/version.h"
#include "calibration/fleet/leases.h"
#include "history/row_access.h"
#include "store/curve_schema.h"
#include "store/field_value.h"
#include "store/own_rows.h"
#include "store/reading.h"

#include <array>
#include <string_view>

namespace pelmora::calibration {
namespace {

using history::wholeOf;

Value valueOf(const std::optional<std::vector<std::string>>& names) {
  if (!names) return {};
  std::string text;  // a name holds no line break
  for (const std::string& name : *names) text += name + "\n";
  return text;
}

std::optional<std::vector<std::string>> namesOrNone(const Value& value) {
  if (isNull(value)) return std::nullopt;
  return toLines(value);
}

SettingsChange changeIn(const Recordset& row) {
  SettingsChange change;
  change.choice = choiceOf(toText(row.value("Choice")));
  change.fitMin = toOptionalDouble(row.value("FitMinRoshko"));
  change.fitMax = toOptionalDouble(row.value("FitMaxRoshko"));
  change.only = namesOrNone(row.value("OnlyEquations"));
  change.without = namesOrNone(row.value("WithoutEquations"));
  if (!isNull(row.value("MaxOrder"))) change.maxOrder = toInt32(row.value("MaxOrder"));
  change.mergeBand = toOptionalDouble(row.value("MergeBand"));
  if (!isNull(row.value("CutsOverlap")))
    change.cutsOverlap = toInt32(row.value("CutsOverlap")) != 0;
  change.spacing = spacingOf(toText(row.value("Spacing")));
  return change;
}

FleetJob jobIn(const Recordset& row) {
  FleetJob job;
  job.id = wholeOf(row.value("ID"));
  job.state = static_cast<FleetState>(wholeOf(row.value("State")));
  job.version = toText(row.value("Version"));
  job.options.changedPercent = toDouble(row.value("ChangedPercent"));
  job.options.isStrict = wholeOf(row.value("Strict")) != 0;
  job.options.change = changeIn(row);
  return job;
}

std::unique_ptr<Recordset> jobRows(Session& session, const std::string& condition) {
  return readRows(session.connection(),
                  std::string("Select * from ") + fleetJobTable + " where " + condition);
}

}  // namespace

FleetJobId addJob(Session& session, const FleetOptions& options) {
  const SettingsChange& change = options.change;
  constexpr std::array<std::string_view, 16> fields{
      "State",     "StartedAt",   "BeganAt",      "UserName",        "Version",  "ChangedPercent",
      "Strict",    "Choice",      "FitMinRoshko", "FitMaxRoshko",    "MaxOrder", "OnlyEquations",
      "MergeBand", "CutsOverlap", "Spacing",      "WithoutEquations"};
  const std::array<Value, 16> values{
      Value(static_cast<std::int64_t>(FleetState::running)),
      Value(utcText()),
      Value(secondsNow(session)),
      Value(session.userName()),
      Value(std::string(version)),
      Value(options.changedPercent),
      Value(std::int64_t{options.isStrict}),
      change.choice ? Value(choiceKey(*change.choice)) : Value(),
      toValue(change.fitMin),
      toValue(change.fitMax),
      change.maxOrder ? Value(std::int64_t{*change.maxOrder}) : Value(),
      valueOf(change.only),
      toValue(change.mergeBand),
      change.cutsOverlap ? Value(std::int64_t{*change.cutsOverlap}) : Value(),
      change.spacing ? Value(spacingKey(*change.spacing)) : Value(),
      valueOf(change.without)};
  const auto rows = jobRows(session, "1=0");
  rows->addRow(fields, values);
  return wholeOf(rows->value("ID"));
}

std::optional<FleetJob> openJob(Session& session) {
  if (!hasOwnTable(session.connection(), fleetJobTable)) return std::nullopt;
  const auto rows = jobRows(session, "State in (0, 1) ORDER BY ID");
  if (rows->atEnd()) return std::nullopt;
  return jobIn(*rows);
}

FleetJob storedJob(Session& session, FleetJobId id) {
  const auto missing = [&] {
    return NotFound({"'" + session.location() + "' has no job " + std::to_string(id),
                     session.location(), "look at the status of the fleet"});
  };
  if (!hasOwnTable(session.connection(), fleetJobTable)) throw missing();
  const auto rows = jobRows(session, "ID=" + std::to_string(id));
  if (rows->atEnd()) throw missing();
  return jobIn(*rows);
}

}  // namespace pelmora::calibration
