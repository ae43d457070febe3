// SPDX-License-Identifier: MIT
#include "store/curve_schema.h"

#include "base/run_time_error.h"
#include "base/text_case.h"
#include "store/fleet_tables.h"

#include <utility>

namespace pelmora {
namespace {

using enum OwnColumnType;
using enum ReadingOrder;

constexpr std::string_view prefix = "pelmora_";

SchemaTable pointTable(const std::string& name) {
  return {name,
          {{"seriesID", whole}, {"Roshko", real}, {"Strouhal", real}},
          {{name + "_series", {"seriesID"}}},
          {{"seriesID", "series"}},
          asStored};
}

// JobRecordID keeps the form, number or text, that the stand gave it.
std::vector<OwnColumn> measuredColumns() {
  std::vector<OwnColumn> columns{{"JobRecordID", anything}};
  for (std::size_t i = 1; i <= measuredValues; ++i)
    columns.push_back({"V" + std::to_string(i), real});
  return columns;
}

SchemaTable dataPoints() {
  SchemaTable points{"CalDataPoint",
                     {{"CalSetupID", whole}},
                     {{"cal_data_point_setup", {"CalSetupID", "JobRecordID"}}},
                     {{"CalSetupID", "CalSetup"}},
                     asStored};
  points.Columns.insert(points.Columns.end(), standTableColumns().begin(),
                        standTableColumns().end());
  return points;
}

std::vector<SchemaTable> givenTables() {
  std::vector<SchemaTable> tables{
      {"meter",
       {{"ID", key}, {"SerialNumber", text}, {"SerialNumberAdjusted", text}, {"ReCalID", whole}},
       {{"meter_serial_number", {"SerialNumber", "ReCalID"}}},
       {},
       byKey},
      {"masterMeterList",
       {{"ID", key}, {"SerialNumber", text}, {"ReCalID", whole}},
       {{"master_meter_list_serial_number", {"SerialNumber", "ReCalID"}}},
       {},
       byKey},
      {"series",
       {{"ID", key}, {"name", text}, {"meterid", whole}},
       {{"series_meter", {"meterid", "name"}}},
       {{"meterid", "meter"}},
       byKey},
      {"DataFitResults",
       {{"seriesID", whole}, {"summary", text}},
       {{"data_fit_results_series", {"seriesID"}}},
       {{"seriesID", "series"}},
       asStored},
      {"Fluids", {{"ID", key}, {"Name", text}}, {{"fluids_name", {"Name"}}}, {}, byKey},
      {"Operator", {{"ID", key}, {"Name", text}}, {{"operator_name", {"Name"}}}, {}, byKey},
      {"CalSetup",
       {{"ID", key},
        {"MeterID", whole},
        {"Stand", whole},
        {"MeterPosition", whole},
        {"OperatorID", whole},
        {"FluidID", whole},
        {"DateTaken", text}},
       {{"cal_setup_meter", {"MeterID", "Stand"}}},
       {{"MeterID", "meter"}, {"OperatorID", "Operator"}, {"FluidID", "Fluids"}},
       byKey}};
  for (const char* name : pointTables) tables.push_back(pointTable(name));
  tables.push_back(dataPoints());
  return tables;
}

SchemaTable fitSettings() {
  return {fitSettingsTable,
          {{"SeriesID", whole},       {"BandPercent", real},       {"Points", whole},
           {"MinRoshko", real},       {"MaxRoshko", real},         {"RatioCurve", whole},
           {"Inverted", whole},       {"IgnoreResiduals", whole},  {"Equations", text},
           {"SoftwareVersion", text}, {"FittedAt", text},          {"MergeBand", real},
           {"KeepsOverlap", whole},   {"PointsFingerprint", text}, {"CurveFingerprint", text},
           {"Choice", text},          {"FitMinRoshko", real},      {"FitMaxRoshko", real},
           {"OnlyEquations", text},   {"WithoutEquations", text},  {"MaxOrder", whole},
           {"Spacing", text}},
          {{std::string(fitSettingsTable) + "_series", {"SeriesID"}}},
          {{"SeriesID", "series"}},
          asStored};
}

// Number is the place in the whole part, Rest the fingerprint of the points that the raw table
// still has.
SchemaTable excludedPoints(const std::string& name) {
  return {name,
          {{"SeriesID", whole},
           {"Number", whole},
           {"Roshko", real},
           {"Strouhal", real},
           {"Job", text},
           {"Reason", text},
           {"ExcludedBy", text},
           {"ExcludedAt", text},
           {"Rest", text}},
          {{name + "_series", {"SeriesID"}}},
          {{"SeriesID", "series"}},
          asStored};
}

SchemaTable standUncertainty() {
  return {standUncertaintyTable,
          {{"MeterID", whole},
           {"SourceFile", text},
           {"Content", text},
           {"StoredAt", text},
           {"UserName", text}},
          {{std::string(standUncertaintyTable) + "_meter", {"MeterID"}}},
          {{"MeterID", "meter"}},
          asStored};
}

SchemaTable details() {
  return {detailTable,
          {{"MeterID", whole}, {"Name", text}, {"Value", text}},
          {{std::string(detailTable) + "_meter", {"MeterID"}}},
          {{"MeterID", "meter"}},
          asStored};
}

SchemaTable historyEntries() {
  return {historyEntryTable,
          {{"ID", key},
           {"ChangedAt", text},
           {"Command", text},
           {"SerialNumber", text},
           {"ReCalID", whole},
           {"MeterID", whole},
           {"SeriesID", whole},
           {"SeriesName", text},
           {"KeptTables", text},
           {"UserName", text},
           {"Version", text}},
          {},
          {},
          byKey};
}

SchemaTable unfinishedCopies() {
  return {copyTable,
          {{"Kind", whole},
           {"Name", text},
           {"Place", text},
           {"AfterID", whole},
           {"RowsRead", whole},
           {"RowsWritten", whole},
           {"EmptyValues", whole},
           {"ChecksumRead", whole},
           {"ChecksumWritten", whole},
           {"Reason", text}},
          {},
          {},
          asStored};
}

SchemaTable historyOf(const SchemaTable& kept) {
  const std::string name = historyTableOf(kept.Name);
  SchemaTable history{
      name, {{"KeptID", key}, {"EntryID", whole}}, {{name + "_entry", {"EntryID"}}}, {}, asStored};
  for (const OwnColumn& column : kept.Columns)
    history.Columns.push_back({column.Name, column.Type == key ? whole : column.Type});
  // The ids that come back with restored rows.
  if (kept.Columns.front().Type == key) history.References.push_back({"ID", kept.Name});
  return history;
}

const SchemaTable* tableNamed(const std::vector<SchemaTable>& tables, std::string_view name) {
  for (const SchemaTable& table : tables) {
    if (equalNames(table.Name, name)) return &table;
  }
  return nullptr;
}

// Marks of a salvage are not rows of the series that they name: they go with no change of it.
std::vector<SchemaTable> allOwnTables() {
  std::vector<SchemaTable> tables{
      fitSettings(),
      {salvagedPartTable,
       {{"SeriesID", whole}, {"Part", text}, {"RowsRead", whole}, {"RowsLost", whole}},
       {},
       {},
       asStored},
      standUncertainty(),
      {fluidLawTable,
       {{"Name", text}, {"Content", text}, {"StoredAt", text}, {"UserName", text}},
       {},
       {},
       asStored},
      {laboratoryTable, {{"Name", text}, {"Value", text}}, {}, {}, asStored},
      details(),
      // Without a reference: a series that is deleted and restored keeps its signatures.
      {signOffTable,
       {{"SignOffID", key},
        {"SeriesID", whole},
        {"Name", text},
        {"Remark", text},
        {"SignedAt", text},
        {"UserName", text},
        {"Fingerprint", text},
        {"SoftwareVersion", text}},
       {{std::string(signOffTable) + "_series", {"SeriesID"}}},
       {},
       asStored},
      unfinishedCopies(),
      historyEntries()};
  for (SchemaTable& table : fleetTables()) tables.push_back(std::move(table));
  for (const char* name : excludedTables) tables.push_back(excludedPoints(name));
  for (const char* name : keptTableNames) {
    const SchemaTable* given = tableNamed(curveTables(), name);
    tables.push_back(historyOf(given != nullptr ? *given : *tableNamed(tables, name)));
  }
  return tables;
}

}  // namespace

std::vector<TableIndex> SchemaTable::designIndexes() const {
  std::vector<TableIndex> indexes;
  for (const SchemaIndex& index : Indexes)
    indexes.push_back({index.Name, Name, index.Columns, index.IsUnique});
  return indexes;
}

const std::vector<OwnColumn>& standTableColumns() {
  static const std::vector<OwnColumn> columns = measuredColumns();
  return columns;
}

const std::vector<SchemaTable>& curveTables() {
  static const std::vector<SchemaTable> tables = givenTables();
  return tables;
}

const std::vector<SchemaTable>& ownTables() {
  static const std::vector<SchemaTable> tables = allOwnTables();
  return tables;
}

const SchemaTable* findSchemaTable(std::string_view name) {
  const SchemaTable* given = tableNamed(curveTables(), name);
  return given != nullptr ? given : tableNamed(ownTables(), name);
}

const SchemaTable& schemaTable(std::string_view name) {
  if (const SchemaTable* table = findSchemaTable(name)) return *table;
  throw Error(static_cast<std::int32_t>(RunTimeError::invalidArgument), "Pelmora",
              "There is no table '" + std::string(name) + "' in the schema of a curve database.");
}

bool isOwnTableName(std::string_view name) {
  return equalNames(name.substr(0, prefix.size()), prefix);
}

std::string historyTableOf(std::string_view name) {
  return "pelmora_history_" + std::string(isOwnTableName(name) ? name.substr(prefix.size()) : name);
}

std::vector<const SchemaTable*> seriesTables() {
  std::vector<const SchemaTable*> tables;
  for (const char* name : keptTableNames) {
    const SchemaTable& table = schemaTable(name);
    if (!table.References.empty() && table.References.front().Table == "series")
      tables.push_back(&table);
  }
  return tables;
}

}  // namespace pelmora
