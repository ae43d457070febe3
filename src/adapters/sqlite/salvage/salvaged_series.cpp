// SPDX-License-Identifier: MIT
#include "adapters/sqlite/salvage/salvaged_series.h"

#include "adapters/sqlite/database_handle.h"
#include "adapters/sqlite/prepared_statement.h"
#include "adapters/sqlite/sqlite_design.h"
#include "store/curve_schema.h"

#include <sqlite3.h>

#include <string>
#include <string_view>

namespace pelmora::sqlite::salvage {
namespace {

std::uint64_t countAt(const PreparedStatement& statement, int column) {
  return static_cast<std::uint64_t>(sqlite3_column_int64(statement.get(), column));
}

std::uint64_t countOf(const DatabaseHandle& output, const std::string& from) {
  PreparedStatement count(output.get(), "SELECT COUNT(*) FROM " + from);
  count.step();
  return countAt(count, 0);
}

const SalvagedTable* tableOf(const SalvageReport& report, std::string_view name) {
  for (const SalvagedTable& table : report.Tables) {
    if (table.Name == name) return &table;
  }
  return nullptr;
}

// Temporary table salvage_parts: a row for each series and part that is not known to be whole.
void listParts(const DatabaseHandle& output, const SalvageReport& report) {
  output.run("CREATE TEMP TABLE salvage_parts (seriesID, part TEXT, rowsRead, rowsLost)");
  for (const SchemaTable* ofSeries : seriesTables()) {
    const std::string& part = ofSeries->Name;
    const SalvagedTable* table = tableOf(report, part);
    if (table == nullptr || table->isWhole()) continue;
    const std::string name = "main.\"" + part + "\"";
    const std::string known =
        "SELECT l.seriesID, l.part, (SELECT COUNT(*) FROM " + name +
        " WHERE seriesID = l.seriesID), l.rows FROM temp.salvage_lost AS l WHERE l.part = '" +
        part + "' AND l.seriesID IS NOT NULL";
    output.run(("INSERT INTO temp.salvage_parts " + known).c_str());
    if (table->Lost) continue;
    const std::string others =
        "SELECT s.ID, '" + part + "', (SELECT COUNT(*) FROM " + name +
        " WHERE seriesID = s.ID), NULL FROM main.series AS s WHERE s.ID NOT IN (SELECT seriesID "
        "FROM temp.salvage_lost WHERE part = '" +
        part + "' AND seriesID IS NOT NULL)";
    output.run(("INSERT INTO temp.salvage_parts " + others).c_str());
  }
  output.run("CREATE INDEX temp.salvage_parts_series ON salvage_parts (seriesID)");
}

void addSeries(const DatabaseHandle& output, SalvageReport& report) {
  PreparedStatement rows(output.get(),
                         "SELECT p.seriesID, s.name, m.SerialNumber, m.ReCalID, p.part, "
                         "p.rowsRead, p.rowsLost FROM temp.salvage_parts AS p "
                         "LEFT JOIN main.series AS s ON s.ID = p.seriesID "
                         "LEFT JOIN main.meter AS m ON m.ID = s.meterid "
                         "ORDER BY p.seriesID, p.rowid");
  while (rows.step()) {
    const std::int64_t id = sqlite3_column_int64(rows.get(), 0);
    if (report.Series.empty() || report.Series.back().SeriesID != id) {
      SalvagedSeries series{id, textAt(rows, 1), textAt(rows, 2), {}, {}};
      if (sqlite3_column_type(rows.get(), 3) != SQLITE_NULL)
        series.ReCalID = sqlite3_column_int64(rows.get(), 3);
      report.Series.push_back(std::move(series));
    }
    SalvagedPart part{textAt(rows, 4), countAt(rows, 5), {}};
    if (sqlite3_column_type(rows.get(), 6) != SQLITE_NULL) part.Lost = countAt(rows, 6);
    report.Series.back().Parts.push_back(std::move(part));
  }
}

void addMeters(const DatabaseHandle& output, SalvageReport& report) {
  PreparedStatement meters(
      output.get(),
      "SELECT m.SerialNumber, m.ReCalID, "
      "SUM(s.ID IS NOT NULL AND p.seriesID IS NULL), SUM(COALESCE(p.isKnown, 0)), "
      "SUM(p.seriesID IS NOT NULL AND NOT p.isKnown) "
      "FROM main.meter AS m LEFT JOIN main.series AS s ON s.meterid = m.ID "
      "LEFT JOIN (SELECT seriesID, MAX(rowsLost IS NOT NULL) AS isKnown FROM temp.salvage_parts "
      "GROUP BY seriesID) AS p ON p.seriesID = s.ID GROUP BY m.ID "
      // Damaged ones first.
      "ORDER BY COUNT(p.seriesID) = 0, m.ID");
  while (meters.step()) {
    report.Meters.push_back({textAt(meters, 0), sqlite3_column_int64(meters.get(), 1),
                             countAt(meters, 2), countAt(meters, 3), countAt(meters, 4)});
  }
}

void addOrphans(const DatabaseHandle& output, SalvageReport& report) {
  report.OrphanedRows =
      countOf(output, "main.series WHERE meterid NOT IN (SELECT ID FROM main.meter)") +
      countOf(output, "main.CalSetup WHERE MeterID NOT IN (SELECT ID FROM main.meter)") +
      countOf(output, "main.CalDataPoint WHERE CalSetupID NOT IN (SELECT ID FROM main.CalSetup)");
  for (const SchemaTable* table : seriesTables()) {
    if (tableOf(report, table->Name) == nullptr) continue;
    report.OrphanedRows += countOf(
        output, "main.\"" + table->Name + "\" WHERE seriesID NOT IN (SELECT ID FROM main.series)");
  }
}

}  // namespace

void describeSeries(const DatabaseHandle& output, SalvageReport& report) {
  listParts(output, report);
  addSeries(output, report);
  addMeters(output, report);
  addOrphans(output, report);
  if (report.Series.empty()) return;
  output.run(createTableStatement(schemaTable(salvagedPartTable).design()).c_str());
  const std::string marks = std::string("main.") + salvagedPartTable;
  output.run(("DELETE FROM " + marks +
              " WHERE (SeriesID, Part) IN (SELECT seriesID, part FROM temp.salvage_parts);"
              "INSERT INTO " +
              marks + " SELECT * FROM temp.salvage_parts")
                 .c_str());
}

}  // namespace pelmora::sqlite::salvage
