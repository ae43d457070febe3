// SPDX-License-Identifier: MIT
#include "store/excluded_points.h"

#include "base/number_text.h"
#include "store/curve_schema.h"
#include "store/field_value.h"
#include "store/reading.h"
#include "store/table_design.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace pelmora {
namespace {

const char* tableOf(int part) { return excludedTables.at(static_cast<std::size_t>(part - 1)); }

std::string rowsOfPart(int part, std::int32_t SeriesID) {
  return std::string(" from ") + tableOf(part) + " where SeriesID=" + numberText(SeriesID);
}

void createTables(Connection& curves) {
  auto* design = dynamic_cast<TableDesign*>(&curves);
  constexpr std::int32_t notSupported = 3251;
  if (design == nullptr)
    throw Error(notSupported, "Pelmora", "This database cannot keep points that are left out.");
  for (const char* name : excludedTables) {
    const SchemaTable& table = schemaTable(name);
    design->createTable(table.design());
    for (const TableIndex& index : table.designIndexes()) design->createIndex(index);
  }
}

std::string textOf(const Value& value) { return isNull(value) ? "" : toText(value); }

}  // namespace

bool hasExcludedPoints(Connection& curves) {
  const auto* design = dynamic_cast<const TableDesign*>(&curves);
  return design != nullptr && design->hasTable(excludedTables.front());
}

std::vector<ExcludedRow> readExcludedPoints(Connection& curves, int part, std::int32_t SeriesID) {
  std::vector<ExcludedRow> list;
  if (!hasExcludedPoints(curves)) return list;
  const auto rows =
      readRows(curves, "Select *" + rowsOfPart(part, SeriesID) + " ORDER BY Number ASC");
  for (; !rows->atEnd(); rows->moveNext()) {
    list.push_back({toInt32(rows->value("Number")), rows->value("Roshko"), rows->value("Strouhal"),
                    textOf(rows->value("Job")), textOf(rows->value("Reason")),
                    textOf(rows->value("ExcludedBy")), textOf(rows->value("ExcludedAt")),
                    textOf(rows->value("Rest"))});
  }
  return list;
}

bool areInForce(const std::vector<ExcludedRow>& excluded, std::size_t restPoints,
                const std::string& restFingerprint) {
  const std::size_t all = restPoints + excluded.size();
  return std::ranges::all_of(excluded, [&](const ExcludedRow& row) {
    return row.Rest == restFingerprint && row.Number >= 1 &&
           static_cast<std::size_t>(row.Number) <= all;
  });
}

void replaceExcludedPoints(Connection& curves, int part, std::int32_t SeriesID,
                           const std::vector<ExcludedRow>& rows) {
  if (!rows.empty()) createTables(curves);
  if (!hasExcludedPoints(curves)) return;
  curves.execute("Delete *" + rowsOfPart(part, SeriesID));
  if (rows.empty()) return;
  const auto to = openForBatch(curves, "Select *" + rowsOfPart(part, SeriesID));
  // In the order of the table's columns.
  std::vector<std::string_view> fields;
  for (const OwnColumn& column : schemaTable(tableOf(part)).Columns) fields.push_back(column.Name);
  for (const ExcludedRow& row : rows) {
    const std::array values{Value(std::int64_t{SeriesID}),
                            Value(std::int64_t{row.Number}),
                            row.Roshko,
                            row.Strouhal,
                            Value(row.Job),
                            Value(row.Reason),
                            Value(row.ExcludedBy),
                            Value(row.ExcludedAt),
                            Value(row.Rest)};
    to->addRow(fields, values);
  }
  to->updateBatch();
}

}  // namespace pelmora
