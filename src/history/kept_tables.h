// The given tables whose rows are kept, and the tables of our own that keep them.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>
#include <pelmora/own_tables.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::history {

// What the rows of a table belong to.
enum class Owner { meter, series, setup };

struct KeptTable {
  std::string Name;  // of the given table
  Owner RowsBelongTo = Owner::series;
  std::string KeyColumn;           // that names the owner
  std::vector<OwnColumn> Columns;  // of the given table
  std::string HistoryName;         // of our own table, which keeps them
  bool MayBeMissing = false;       // a table that some databases have

  // "[a], [b]": all columns, for a statement.
  [[nodiscard]] std::string columnList() const;
};

// In the order in which rows are brought back: meter, series and set-ups before what belongs to
// them.
[[nodiscard]] PELMORA_API const std::vector<KeptTable>& keptTables();
// Errors: Error 5 for a name that is none of them.
[[nodiscard]] PELMORA_API const KeptTable& keptTable(std::string_view name);

// Makes the tables, columns and indexes of the history where they are missing, and the columns of
// own tables that it keeps.
PELMORA_API void createHistoryTables(const ConnectionPtr& curves);
[[nodiscard]] PELMORA_API bool hasHistoryTables(const ConnectionPtr& curves);

// Whether both the given table and its history are there.
[[nodiscard]] PELMORA_API bool isThere(const ConnectionPtr& curves, const KeptTable& table);

}  // namespace pelmora::history
