// Tables that a reader of another file format delivers, as a database to read from.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>
#include <pelmora/own_tables.h>
#include <pelmora/types.h>

#include <functional>
#include <span>
#include <string>

namespace pelmora {

// Receives tables one after the other.
class MemoryTables {
 public:
  virtual ~MemoryTables() = default;
  virtual void beginTable(const OwnTable& table) = 0;
  // A row of the latest table, in the order of its columns.
  virtual void addRow(std::span<const Value> values) = 0;
};

struct MemoryDatabase {
  std::function<void(MemoryTables&)> read;  // delivers all tables; may throw Error
  // Ends the error of a statement that would change a table: why it cannot, and what to do instead.
  std::string whyReadOnly;
};

// Reads the tables on every open(), into memory. Their rows can be read and inserted into a
// database file (INSERT ... IN 'file'), not changed.
[[nodiscard]] ConnectionPtr memoryConnection(MemoryDatabase database);

}  // namespace pelmora
