// The definition of a table.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/access/helper/page_file.h"

#include <string>
#include <vector>

namespace pelmora::access {

struct AccessColumn {
  std::string name;
  int type = 0;            // MDB_BOOL ...
  std::size_t size = 0;    // in bytes
  std::size_t number = 0;  // of its bit in a row
  bool isFixed = false;
  std::size_t fixedAt = 0;   // where a fixed field lies in a row
  std::size_t variable = 0;  // its index among the variable fields
  unsigned scale = 0;        // of a decimal: digits after the point
};

struct AccessTable {
  std::uint32_t page = 0;
  std::uint64_t rows = 0;
  std::size_t mostColumns = 0;  // that a row can have, deleted columns included
  std::vector<AccessColumn> columns;
  std::vector<std::uint32_t> dataPages;  // in ascending order
};

// Reads the definition through the library, and checks that it is consistent.
// Errors: Damage.
[[nodiscard]] AccessTable readDefinition(const PageFile& file, const std::string& name,
                                         std::uint32_t page);

// The bytes of a value, for types of a fixed size; 0 for all others.
[[nodiscard]] std::size_t sizeOfType(int type);

}  // namespace pelmora::access
