// SPDX-License-Identifier: MIT
#include "base/number_text.h"
#include "base/run_time_error.h"
#include "store/connection.h"
#include "store/curve_settings_rows.h"
#include "store/curve_schema.h"
#include "store/field_value.h"
#include "store/own_rows.h"

#include <pelmora/curve_settings.h>
#include <pelmora/own_tables.h>

#include <string_view>
#include <vector>

namespace pelmora {
namespace {

std::string rowsOf(std::int32_t SeriesID) {
  return std::string(" from ") + fitSettingsTable + " where SeriesID=" + numberText(SeriesID);
}

Value valueOf(bool flag) { return Value(std::int64_t{flag}); }
bool flag(const Value& value) { return !isNull(value) && toInt32(value) != 0; }

Value valueOf(const std::string& text) { return text.empty() ? Value() : Value(text); }

// Names hold no line break.
Value valueOf(const std::vector<std::string>& list) {
  std::string text;
  for (const std::string& line : list) text += (text.empty() ? "" : "\n") + line;
  return valueOf(text);
}

// Null for a column that the table, made by an earlier version, does not have yet.
Value laterColumn(const Recordset& rows, std::string_view name) {
  constexpr std::int32_t noSuchField = 3265;
  try {
    return rows.value(name);
  } catch (const Error& error) {
    if (error.number() != noSuchField) throw;
    return {};
  }
}

}  // namespace

CurveSettings settingsInRow(const Recordset& rows) {
  CurveSettings settings;
  settings.BandPercent = toDouble(rows.value("BandPercent"));
  settings.Points = toInt32(rows.value("Points"));
  settings.Min = toOptionalDouble(rows.value("MinRoshko"));
  settings.Max = toOptionalDouble(rows.value("MaxRoshko"));
  settings.RatioCurve = flag(rows.value("RatioCurve"));
  settings.Inverted = flag(rows.value("Inverted"));
  settings.IgnoreResiduals = flag(rows.value("IgnoreResiduals"));
  if (!isNull(rows.value("Equations"))) settings.Equations = toText(rows.value("Equations"));
  settings.SoftwareVersion = toText(rows.value("SoftwareVersion"));
  settings.FittedAt = toText(rows.value("FittedAt"));
  settings.MergeBandPercent = toOptionalDouble(laterColumn(rows, "MergeBand"));
  settings.KeepsOverlap = flag(laterColumn(rows, "KeepsOverlap"));
  settings.PointsFingerprint = toText(laterColumn(rows, "PointsFingerprint"));
  settings.CurveFingerprint = toText(laterColumn(rows, "CurveFingerprint"));
  settings.Choice = toText(laterColumn(rows, "Choice"));
  settings.FitMin = toOptionalDouble(laterColumn(rows, "FitMinRoshko"));
  settings.FitMax = toOptionalDouble(laterColumn(rows, "FitMaxRoshko"));
  settings.Only = toLines(laterColumn(rows, "OnlyEquations"));
  settings.Without = toLines(laterColumn(rows, "WithoutEquations"));
  const Value order = laterColumn(rows, "MaxOrder");
  if (!isNull(order)) settings.MaxOrder = toInt32(order);
  settings.Spacing = toText(laterColumn(rows, "Spacing"));
  return settings;
}

std::vector<Value> rowOfSettings(std::int32_t SeriesID, const CurveSettings& settings) {
  return {Value(std::int64_t{SeriesID}),
          Value(settings.BandPercent),
          Value(std::int64_t{settings.Points}),
          toValue(settings.Min),
          toValue(settings.Max),
          valueOf(settings.RatioCurve),
          valueOf(settings.Inverted),
          valueOf(settings.IgnoreResiduals),
          settings.Equations ? Value(*settings.Equations) : Value(),
          Value(settings.SoftwareVersion),
          Value(settings.FittedAt),
          toValue(settings.MergeBandPercent),
          valueOf(settings.KeepsOverlap),
          valueOf(settings.PointsFingerprint),
          valueOf(settings.CurveFingerprint),
          valueOf(settings.Choice),
          toValue(settings.FitMin),
          toValue(settings.FitMax),
          valueOf(settings.Only),
          valueOf(settings.Without),
          settings.MaxOrder ? Value(std::int64_t{*settings.MaxOrder}) : Value(),
          valueOf(settings.Spacing)};
}

std::optional<CurveSettings> keptCurveSettings(const ConnectionPtr& curves, std::int32_t SeriesID) {
  if (!hasTable(curves, fitSettingsTable)) return std::nullopt;
  const auto rows = curves->openRecordset("Select *" + rowsOf(SeriesID), CursorType::forwardOnly,
                                          LockType::optimistic);
  if (rows->atEnd()) return std::nullopt;
  return settingsInRow(*rows);
}

void createSettingsTable(const ConnectionPtr& curves) {
  const SchemaTable& table = schemaTable(fitSettingsTable);
  createTable(curves, table.design());
  for (const TableIndex& index : table.designIndexes()) createIndex(curves, index);
}

void keepCurveSettings(const ConnectionPtr& curves, std::int32_t SeriesID,
                       const CurveSettings& settings) {
  createSettingsTable(curves);
  curves->execute("Delete *" + rowsOf(SeriesID));
  addOwnRow(*curves, fitSettingsTable, rowOfSettings(SeriesID, settings));
}

}  // namespace pelmora
