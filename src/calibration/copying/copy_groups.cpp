// SPDX-License-Identifier: MIT
#include "calibration/copying/copy_groups.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace pelmora::calibration {
namespace {

constexpr std::string_view anyOwner;
constexpr std::array<std::string_view, 8> owners{"Fluids", "Operator",       "masterMeterList",
                                                 anyOwner, "meter",          "CalSetup",
                                                 "series", historyEntryTable};

// Table and column with the id of the owner.
std::pair<std::string, std::string> ownerOf(const SchemaTable& table) {
  const bool isOwner = std::ranges::find(owners, table.Name) != owners.end();
  if (isOwner) return {table.Name, table.Columns.front().Name};
  const bool isHistory = table.Columns.size() > 1 && table.Columns[1].Name == "EntryID";
  if (isHistory) return {historyEntryTable, "EntryID"};
  // Their rows name a series, but do not go with it.
  const bool namesSeries = table.Name == salvagedPartTable || table.Name == signOffTable;
  if (namesSeries) return {"series", "SeriesID"};
  if (table.References.empty()) return {std::string(anyOwner), ""};
  return {table.References.front().Table, table.References.front().Column};
}

// Belongs to one database rather than to its curves.
bool isWorkInProgress(std::string_view table) {
  return table == copyTable || table == fleetJobTable || table == fleetRangeTable ||
         table == fleetResultTable;
}

std::vector<CopyGroup> allGroups() {
  std::vector<CopyGroup> groups;
  for (const std::string_view owner : owners) {
    groups.push_back({std::string(owner), {}});
    if (!owner.empty()) {
      const SchemaTable& table = schemaTable(owner);
      groups.back().tables.push_back({&table, table.Columns.front().Name});
    }
  }
  for (const auto* tables : {&curveTables(), &ownTables()}) {
    for (const SchemaTable& table : *tables) {
      if (isWorkInProgress(table.Name)) continue;
      const auto [owner, column] = ownerOf(table);
      const std::string& name = owner;
      const auto group = std::ranges::find(groups, name, &CopyGroup::owner);
      const bool isFirst = !group->tables.empty() && group->tables.front().schema == &table;
      if (!isFirst) group->tables.push_back({&table, column});
    }
  }
  return groups;
}

}  // namespace

const std::vector<CopyGroup>& copyGroups() {
  static const std::vector<CopyGroup> groups = allGroups();
  return groups;
}

const CopyGroup& copyGroup(const std::string& owner) {
  return *std::ranges::find(copyGroups(), owner, &CopyGroup::owner);
}

}  // namespace pelmora::calibration
