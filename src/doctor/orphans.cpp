// SPDX-License-Identifier: MIT
#include "doctor/orphans.h"

#include <set>

namespace pelmora::doctor {
namespace {

using history::idsOf;
using history::KeptTable;
using history::keptTables;
using history::Owner;

// The ids that `key` of the table names and that table `owners` does not have.
void addMissing(const ConnectionPtr& curves, const KeptTable& table, const std::string& owners,
                std::set<std::int64_t>& missing) {
  const std::string key = table.Name + "." + table.KeyColumn;
  const auto ids =
      idsOf(curves, "Select DISTINCT " + key + " from " + table.Name + " LEFT JOIN " + owners +
                        " ON " + key + "=" + owners + ".ID where " + owners + ".ID IS NULL");
  missing.insert(ids.begin(), ids.end());
}

}  // namespace

std::vector<OrphanGroup> orphanGroups(const ConnectionPtr& curves) {
  std::set<std::int64_t> meters, series;
  for (const KeptTable& table : keptTables()) {
    if (table.Name == "meter" || (table.MayBeMissing && !hasTable(curves, table.Name))) continue;
    if (table.RowsBelongTo == Owner::meter) addMissing(curves, table, "meter", meters);
    if (table.RowsBelongTo == Owner::series) addMissing(curves, table, "series", series);
  }
  std::vector<OrphanGroup> groups;
  for (const std::int64_t id : meters) {
    history::Scope rows = history::wholeCalibration(static_cast<std::int32_t>(id));
    std::erase(rows.Tables, "meter");
    groups.push_back({rows, "meter " + std::to_string(id)});
  }
  for (const std::int64_t id : series) {
    history::Scope rows = history::wholeSeries(0, static_cast<std::int32_t>(id));
    std::erase(rows.Tables, "series");
    if (id != 0)
      groups.push_back(
          {rows, "series " + std::to_string(id)});  // series 0 would mean all of a meter
  }
  return groups;
}

std::size_t rowCount(const ConnectionPtr& curves, const std::vector<OrphanGroup>& groups) {
  std::size_t count = 0;
  for (const OrphanGroup& group : groups) {
    for (const std::string& name : group.Rows.Tables) {
      const KeptTable& table = history::keptTable(name);
      if (table.MayBeMissing && !hasTable(curves, name)) continue;
      count += static_cast<std::size_t>(history::countOf(
          curves, "[" + name + "]" + history::condition(curves, group.Rows, table)));
    }
  }
  return count;
}

}  // namespace pelmora::doctor
