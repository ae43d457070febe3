// Which tables and indexes a damaged file has.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sqlite/salvage/tree_walk.h"

#include <string>
#include <vector>

namespace pelmora::sqlite::salvage {

struct StoredIndex {
  std::string name, sql;
  PageNumber root = 0;
  std::vector<std::size_t> columns;  // of the table
};

struct StoredTable {
  std::string name, sql;
  PageNumber root = 0;
  std::vector<std::string> columns;
  std::vector<std::string> types;  // as declared
  int key = -1;                    // the column that is the row's id; -1: none
  std::vector<StoredIndex> indexes;
};

struct StoredSchema {
  std::vector<StoredTable> tables;
  bool isWhole = false;             // false: there may have been more
  std::vector<std::string> others;  // what is not brought over: views, triggers, other tables
};

// From the pages where the schema stands, and where those are damaged from all pages that look like
// them. Claims the pages of the schema.
[[nodiscard]] StoredSchema storedSchema(const PageFile& file, PageClaims& claims);

}  // namespace pelmora::sqlite::salvage
