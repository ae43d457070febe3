// SPDX-License-Identifier: MIT
#include "store/own_rows.h"

#include "store/curve_schema.h"
#include "store/reading.h"
#include "store/table_design.h"

#include <cstdint>
#include <string>

namespace pelmora {

bool hasOwnTable(const Connection& curves, std::string_view table) {
  const auto* design = dynamic_cast<const TableDesign*>(&curves);
  return design != nullptr && design->hasTable(table);
}

void createOwnTable(Connection& curves, std::string_view table, const char* lack) {
  auto* design = dynamic_cast<TableDesign*>(&curves);
  constexpr std::int32_t noOwnTables = 3251;
  if (design == nullptr) throw Error(noOwnTables, "Pelmora", lack);
  const SchemaTable& schema = schemaTable(table);
  design->createTable(schema.design());
  for (const TableIndex& index : schema.designIndexes()) design->createIndex(index);
}

std::vector<std::string_view> columnNames(std::string_view table) {
  std::vector<std::string_view> names;
  for (const OwnColumn& column : schemaTable(table).Columns) names.emplace_back(column.Name);
  return names;
}

void addOwnRow(Connection& curves, std::string_view table, std::span<const Value> values) {
  // A record set rather than a statement: texts may hold anything.
  readRows(curves, "Select * from " + std::string(table) + " where 1=0")
      ->addRow(columnNames(table), values);
}

}  // namespace pelmora
