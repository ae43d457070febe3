// SPDX-License-Identifier: MIT
#include "calibration/copying/copied_tables.h"

#include "store/reading.h"

#include <pelmora/calibration/failure.h>
#include <pelmora/own_tables.h>

namespace pelmora::calibration {

bool hasSchemaTable(const ConnectionPtr& curves, const SchemaTable& table) {
  return !isOwnTableName(table.Name) || hasTable(curves, table.Name);
}

void makeOwnTable(const ConnectionPtr& curves, const SchemaTable& table) {
  if (!isOwnTableName(table.Name)) return;
  createTable(curves, table.design());
  for (const TableIndex& index : table.designIndexes()) createIndex(curves, index);
}

std::uint64_t countOf(Connection& curves, const std::string& table, const std::string& where) {
  const auto rows = readRows(curves, "Select count(*) from " + table + where);
  return static_cast<std::uint64_t>(std::get<std::int64_t>(rows->value(0)));
}

void showStep(const Observer& observer, const std::string& table) {
  if (observer.status) observer.status("Copying table " + table);
  if (observer.stop.stop_requested()) throw Cancelled({"the copy was cancelled", "", ""});
}

}  // namespace pelmora::calibration
