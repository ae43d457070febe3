// Everything that a damaged file holds, brought into a new curve database.
// SPDX-License-Identifier: MIT
#include "adapters/sqlite/sqlite_expression.h"
#include "base/text_case.h"
#include "adapters/sqlite/curve_schema.h"
#include "adapters/sqlite/database_handle.h"
#include "adapters/sqlite/prepared_statement.h"
#include "adapters/sqlite/salvage/free_pages.h"
#include "adapters/sqlite/salvage/key_sequences.h"
#include "adapters/sqlite/salvage/salvaged_series.h"
#include "adapters/sqlite/salvage/stored_schema.h"
#include "adapters/sqlite/salvage/table_salvage.h"
#include "adapters/sqlite/sqlite_database.h"
#include "adapters/sqlite/unfinished_file.h"

#include <sqlite3.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace pelmora {
namespace sqlite::salvage {
namespace {

std::vector<std::string> columnsOf(const DatabaseHandle& output, const std::string& table) {
  std::vector<std::string> names;
  PreparedStatement columns(output.get(), "SELECT name FROM pragma_table_info(?1, 'main')");
  columns.bind(1, std::string_view(table));
  while (columns.step())
    names.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(columns.get(), 0)));
  return names;
}

bool isAmong(const std::string& name, const std::vector<std::string>& names) {
  return std::any_of(names.begin(), names.end(),
                     [&](const std::string& other) { return equalNames(name, other); });
}

// The table as the damaged file had it, where a new curve database does not have it so.
void makeTable(const DatabaseHandle& output, const StoredTable& table) {
  const auto there = columnsOf(output, table.name);
  const bool fits = std::all_of(table.columns.begin(), table.columns.end(),
                                [&](const std::string& column) { return isAmong(column, there); });
  if (fits) return;
  output.run(("DROP TABLE IF EXISTS main." + quotedName(table.name)).c_str());
  // One statement each: what a hostile file has behind it is not run.
  PreparedStatement(output.get(), table.sql).step();
  for (const StoredIndex& index : table.indexes) PreparedStatement(output.get(), index.sql).step();
}

// All tables of one file.
class FileSalvage {
 public:
  FileSalvage(const PageFile& file, const DatabaseHandle& output)
      : file_(file), output_(output), claims_(file.pageCount()) {
    output_.run("CREATE TEMP TABLE salvage_lost (part TEXT COLLATE NOCASE, seriesID, rows)");
  }

  SalvageReport run() {
    if (!file_.hasHeader()) damage_.add("The header of the file is damaged");
    const StoredSchema schema = storedSchema(file_, claims_);
    if (!schema.isWhole) damage_.add("The list of tables is damaged");
    isSchemaWhole_ = schema.isWhole;
    claimAll(schema);
    bringOver(schema);
    adoptPages();
    SalvageReport report;
    report.Others = schema.others;
    for (auto& table : salvages_) {
      report.Tables.push_back(table->finish());
      for (std::string& name : table->lostNames()) report.LostNames.push_back(std::move(name));
    }
    countStrayPages(schema, report);
    addMissingTables(schema, report);
    raiseSequences();
    describeSeries(output_, report);
    report.Damage = damage_.take();
    return report;
  }

 private:
  void claimAll(const StoredSchema& schema) {
    TreeWalk walk(file_, claims_);
    for (const StoredTable& table : schema.tables) {
      walk.claim(table.root, TreeKind::table);
      for (const StoredIndex& index : table.indexes) walk.claim(index.root, TreeKind::index);
    }
    areFreePagesKnown_ = file_.hasHeader() && claimFreePages(file_, claims_);
    if (!areFreePagesKnown_) damage_.add("The list of free pages is damaged");
  }

  void bringOver(const StoredSchema& schema) {
    for (const StoredTable& table : schema.tables) {
      if (table.name == "sqlite_sequence") {
        sequences_.read(table, file_, claims_);
        continue;
      }
      makeTable(output_, table);
      salvages_.push_back(std::make_unique<TableSalvage>(table, static_cast<int>(salvages_.size()),
                                                         file_, claims_, output_, damage_));
      salvages_.back()->bringOver();
    }
  }

  // Every page belongs to a tree or is free. One that no tree leads to has lost the page above it,
  // and the indexes tell whose rows it holds. A free page may hold rows of the past.
  void adoptPages() {
    if (!areFreePagesKnown_ || !isSchemaWhole_) return;
    for (PageNumber page = 1; page <= file_.pageCount(); ++page) {
      if (!claims_.isFree(page)) continue;
      TableSalvage* owner = nullptr;
      int owners = 0;
      for (const auto& table : salvages_) {
        if (!table->isPageOfThis(page)) continue;
        owner = table.get();
        ++owners;
      }
      if (owners == 1) owner->adopt(page);
    }
  }

  void countStrayPages(const StoredSchema& schema, SalvageReport& report) {
    if (schema.isWhole) return;
    std::vector<std::uint8_t> bytes;
    for (PageNumber page = 1; page <= file_.pageCount(); ++page) {
      if (claims_.isFree(page) && file_.read(page, bytes) && readTreePage(bytes, page))
        ++report.StrayPages;
    }
  }

  // Tables that every curve database has and of which not even the place is known.
  void addMissingTables(const StoredSchema& schema, SalvageReport& report) {
    if (schema.isWhole) return;
    PreparedStatement names(output_.get(),
                            "SELECT name FROM main.sqlite_master WHERE type = 'table' AND name NOT "
                            "LIKE 'sqlite%' ORDER BY rowid");
    while (names.step()) {
      const std::string name = reinterpret_cast<const char*>(sqlite3_column_text(names.get(), 0));
      const bool isThere =
          std::any_of(report.Tables.begin(), report.Tables.end(),
                      [&](const SalvagedTable& table) { return equalNames(table.Name, name); });
      if (!isThere) report.Tables.push_back({name, 0, 0, std::nullopt, 0});
    }
  }

  void raiseSequences() {
    for (const auto& table : salvages_) sequences_.note(table->table().name, table->largestId());
    sequences_.store(output_);
  }

  const PageFile& file_;
  const DatabaseHandle& output_;
  PageClaims claims_;
  DamageList damage_;
  std::vector<std::unique_ptr<TableSalvage>> salvages_;
  KeySequences sequences_;
  bool areFreePagesKnown_ = false, isSchemaWhole_ = false;
};

SalvageReport salvageInto(const PageFile& file, const DatabaseHandle& output) {
  output.run("BEGIN");
  createCurveTables(output);
  SalvageReport report = FileSalvage(file, output).run();
  output.run("COMMIT");
  return report;
}

}  // namespace
}  // namespace sqlite::salvage

SalvageReport salvageSqliteFile(const std::string& path, const std::string& newPath,
                                const Patience& patience) {
  using sqlite::DatabaseHandle;
  using sqlite::OpenMode;
  std::optional<sqlite::UnfinishedFile> unfinished;
  if (!newPath.empty()) unfinished.emplace(newPath);
  const sqlite::salvage::PageFile file(path, patience);
  // Without a name SQLite makes a file that goes away with its connection.
  SalvageReport report;
  {
    const DatabaseHandle output(unfinished ? unfinished->path() : "", OpenMode::create);
    report = sqlite::salvage::salvageInto(file, output);
  }
  if (unfinished) unfinished->moveToItsPlace();
  return report;
}

}  // namespace pelmora
