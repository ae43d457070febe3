// SPDX-License-Identifier: MIT
#include "store/excluded_points.h"

#include "base/number_text.h"
#include "store/curve_schema.h"
#include "store/field_value.h"
#include "store/own_rows.h"
#include "store/reading.h"

#include <algorithm>
#include <array>

namespace pelmora {
namespace {

const char* tableOf(int part) { return excludedTables.at(static_cast<std::size_t>(part - 1)); }

std::string rowsOfPart(int part, std::int32_t SeriesID) {
  return std::string(" from ") + tableOf(part) + " where SeriesID=" + numberText(SeriesID);
}

void createTables(Connection& curves) {
  for (const char* name : excludedTables)
    createOwnTable(curves, name, "This database cannot keep excluded points.");
}

}  // namespace

bool hasExcludedPoints(Connection& curves) { return hasOwnTable(curves, excludedTables.front()); }

std::vector<ExcludedRow> readExcludedPoints(Connection& curves, int part, std::int32_t SeriesID) {
  std::vector<ExcludedRow> list;
  if (!hasExcludedPoints(curves)) return list;
  const auto rows =
      readRows(curves, "Select *" + rowsOfPart(part, SeriesID) + " ORDER BY Number ASC");
  for (; !rows->atEnd(); rows->moveNext()) {
    list.push_back({toInt32(rows->value("Number")), rows->value("Roshko"), rows->value("Strouhal"),
                    toText(rows->value("Job")), toText(rows->value("Reason")),
                    toText(rows->value("ExcludedBy")), toText(rows->value("ExcludedAt")),
                    toText(rows->value("Rest"))});
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
  const auto fields = columnNames(tableOf(part));
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
