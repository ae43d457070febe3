// SPDX-License-Identifier: MIT
#include "history/kept_tables.h"

#include "store/curve_schema.h"

#include <pelmora/error.h>

namespace pelmora::history {
namespace {

constexpr std::int32_t invalidArgument = 5;

Owner ownerOf(const SchemaTable& table) {
  if (table.References.empty()) return Owner::meter;  // table meter itself
  const std::string& owner = table.References.front().Table;
  if (owner == "meter") return Owner::meter;
  return owner == "series" ? Owner::series : Owner::setup;
}

std::vector<KeptTable> allTables() {
  std::vector<KeptTable> tables;
  for (const char* name : keptTableNames) {
    const SchemaTable& table = schemaTable(name);
    tables.push_back({name, ownerOf(table),
                      table.References.empty() ? "ID" : table.References.front().Column,
                      table.Columns, historyTableOf(name), isOwnTableName(name)});
  }
  return tables;
}

void create(const ConnectionPtr& curves, const std::string& name) {
  const SchemaTable& table = schemaTable(name);
  createTable(curves, table.design());
  for (const TableIndex& index : table.designIndexes()) createIndex(curves, index);
}

}  // namespace

std::string KeptTable::columnList() const {
  std::string list;
  for (const OwnColumn& column : Columns) list += (list.empty() ? "[" : ", [") + column.Name + "]";
  return list;
}

const std::vector<KeptTable>& keptTables() {
  static const std::vector<KeptTable> tables = allTables();
  return tables;
}

const KeptTable& keptTable(std::string_view name) {
  for (const KeptTable& table : keptTables()) {
    if (table.Name == name) return table;
  }
  throw Error(invalidArgument, "pelmora:history",
              "No rows of table '" + std::string(name) + "' are kept");
}

void createHistoryTables(const ConnectionPtr& curves) {
  create(curves, historyEntryTable);
  for (const KeptTable& table : keptTables()) {
    // An earlier version may have made it with fewer columns.
    if (table.MayBeMissing && hasTable(curves, table.Name)) create(curves, table.Name);
    create(curves, table.HistoryName);
  }
}

bool hasHistoryTables(const ConnectionPtr& curves) {
  if (!hasTable(curves, historyEntryTable)) return false;
  for (const KeptTable& table : keptTables()) {
    if (!hasTable(curves, table.HistoryName)) return false;
  }
  return true;
}

bool isThere(const ConnectionPtr& curves, const KeptTable& table) {
  return hasTable(curves, table.HistoryName) &&
         (!table.MayBeMissing || hasTable(curves, table.Name));
}

}  // namespace pelmora::history
