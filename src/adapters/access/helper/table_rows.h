// All rows of a table.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/access/helper/table_definition.h"
#include "adapters/access/message.h"

#include <functional>

namespace pelmora::access {

struct RowReceiver {
  std::function<void(const TableRow&)> row;
  std::function<void(const LeftOutNote&)> leftOut;
};

// The values of `columns` in every row, in the order of the pages; a row that has moved comes where
// it was first. A value that cannot be read is null and has a note; so has a row or a page of rows
// that cannot be read, and a table with fewer or more rows than its own count says.
// Returns the number of rows.
std::uint64_t readRows(const PageFile& file, const AccessTable& table,
                       const std::vector<AccessColumn>& columns, const RowReceiver& into);

}  // namespace pelmora::access
