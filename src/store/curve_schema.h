// The tables of a curve database, as data: the one home of their names, columns and indexes.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>
#include <pelmora/own_tables.h>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora {

struct SchemaIndex {
  std::string Name;
  std::vector<std::string> Columns;
  bool IsUnique = false;
};

// A column that names a row of another table by its ID.
struct RowReference {
  std::string Column, Table;
};

// In what order rows come where a statement does not sort them. Engines apply it, so that nothing
// depends on how one of them keeps its rows: `byKey` is the table's ID; `asStored` needs whatever
// an engine has to tell in which order rows came.
enum class ReadingOrder { asStored, byKey };

struct PELMORA_API SchemaTable {
  std::string Name;
  std::vector<OwnColumn> Columns;
  std::vector<SchemaIndex> Indexes;
  std::vector<RowReference> References;  // the first one names the row's owner
  ReadingOrder Order = ReadingOrder::asStored;

  // What createTable and createIndex take.
  [[nodiscard]] OwnTable design() const { return {Name, Columns}; }
  [[nodiscard]] std::vector<TableIndex> designIndexes() const;
};

inline constexpr std::array<const char*, 4> rawTables{"raw1", "raw2", "raw3", "raw4"};
// Tables of points, each with columns seriesID, Roshko and Strouhal.
inline constexpr std::array<const char*, 6> pointTables{"raw1", "raw2",  "raw3",
                                                        "raw4", "merge", "curve"};

// The stand's measured values of a point are columns V1 to V37.
inline constexpr std::size_t measuredValues = 37;
// JobRecordID, V1 ... V37: what a stand's table and the curve database's copy of it have in common.
[[nodiscard]] PELMORA_API const std::vector<OwnColumn>& standTableColumns();

// The tables that every curve database has, in the order in which a new one gets them.
[[nodiscard]] PELMORA_API const std::vector<SchemaTable>& curveTables();
// Our own tables, which hosts of old do not know: a database gets each of them when something is
// first stored there.
[[nodiscard]] PELMORA_API const std::vector<SchemaTable>& ownTables();

// A table of these lists, by its name without regard to case; null where there is none.
[[nodiscard]] PELMORA_API const SchemaTable* findSchemaTable(std::string_view name);
// The same. Errors: Error 5 where there is none.
[[nodiscard]] PELMORA_API const SchemaTable& schemaTable(std::string_view name);
// Whether the name is one of our own, also of a version that is newer than this one.
[[nodiscard]] PELMORA_API bool isOwnTableName(std::string_view name);

// Points left out of the raw parts, one table for each raw table: whatever keeps, replaces or
// brings back a raw part does the same with its excluded points.
inline constexpr std::array<const char*, 4> excludedTables{
    "pelmora_excluded1", "pelmora_excluded2", "pelmora_excluded3", "pelmora_excluded4"};
// What the stand contributes to the uncertainty of a calibration.
inline constexpr const char* standUncertaintyTable = "pelmora_stand_uncertainty";
// Viscosity laws of fluids, by name.
inline constexpr const char* fluidLawTable = "pelmora_fluid_law";
// What certificates state about a calibration and about the laboratory.
inline constexpr const char* detailTable = "pelmora_detail";
inline constexpr const char* laboratoryTable = "pelmora_laboratory";
inline constexpr const char* fitSettingsTable = "pelmora_fit_settings";
// Which parts of a series a salvage has left incomplete.
inline constexpr const char* salvagedPartTable = "pelmora_salvaged_part";
inline constexpr const char* signOffTable = "pelmora_sign_off";
inline constexpr const char* historyEntryTable = "pelmora_history_entry";
// Refits that many workers share: the jobs, their ranges of series, what came of each series.
inline constexpr const char* fleetJobTable = "pelmora_fleet_job";
inline constexpr const char* fleetRangeTable = "pelmora_fleet_range";
inline constexpr const char* fleetResultTable = "pelmora_fleet_result";
// How far a copy in portions into this database has come; empty in a database that is whole.
inline constexpr const char* copyTable = "pelmora_copy";

// The tables whose rows the history keeps: owners before what belongs to them.
inline constexpr std::array<const char*, 18> keptTableNames{"meter",
                                                            "series",
                                                            "CalSetup",
                                                            "CalDataPoint",
                                                            "raw1",
                                                            "raw2",
                                                            "raw3",
                                                            "raw4",
                                                            "merge",
                                                            "curve",
                                                            "DataFitResults",
                                                            fitSettingsTable,
                                                            excludedTables[0],
                                                            excludedTables[1],
                                                            excludedTables[2],
                                                            excludedTables[3],
                                                            standUncertaintyTable,
                                                            detailTable};
// The table that keeps rows of that one: its columns behind KeptID, the order of the rows, and the
// entry that they belong to.
[[nodiscard]] PELMORA_API std::string historyTableOf(std::string_view name);

// The tables whose rows belong to a series, those of points first.
[[nodiscard]] PELMORA_API std::vector<const SchemaTable*> seriesTables();

}  // namespace pelmora
