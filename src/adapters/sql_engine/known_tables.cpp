// SPDX-License-Identifier: MIT
#include "adapters/sql_engine/known_tables.h"

namespace pelmora::sql {

std::int64_t KnownTables::schemaVersion() const {
  const std::int64_t version = readVersion();
  if (version != version_) tables_.clear();
  version_ = version;
  return version;
}

void KnownTables::forget() const {
  tables_.clear();
  version_ = -1;
}

std::optional<TableShape> KnownTables::findTable(std::string_view database,
                                                 std::string_view name) const {
  if (database == main_) (void)schemaVersion();
  return findAsKnown(database, name);
}

std::optional<TableShape> KnownTables::findAsKnown(std::string_view database,
                                                   std::string_view name) const {
  if (database != main_) return readTable(database, name);
  if (const auto found = tables_.find(name); found != tables_.end()) return found->second;
  auto table = readTable(database, name);
  if (table || keepsAbsence_) tables_.emplace(name, table);
  return table;
}

}  // namespace pelmora::sql
