// One table that a reader of another file format delivers, as a database to read from.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/database.h>
#include <pelmora/types.h>

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace pelmora {

struct MemoryTable {
  struct Column {
    std::string name;
    bool isNumber = true;  // otherwise values stay as they come
  };
  using AddRow = std::function<void(std::span<const Value>)>;

  std::string name;
  std::vector<Column> columns;
  std::function<void(const AddRow&)> read;  // delivers all rows; may throw Error
};

// Reads the table on every open(), into memory. Its rows can be read and inserted into a database
// file (INSERT ... IN 'file'), not changed.
[[nodiscard]] ConnectionPtr memoryTableConnection(MemoryTable table);

}  // namespace pelmora
