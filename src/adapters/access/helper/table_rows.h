// All rows of a table.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/access/helper/long_value.h"
#include "adapters/access/helper/table_definition.h"
#include "adapters/access/message.h"

#include <functional>

namespace pelmora::access {

struct RowReceiver {
  std::function<void(const TableRow&)> row;
  std::function<void(const LeftOutNote&)> leftOut;
};

// Delivers the values of `columns` in every row, in the order of the pages; a moved row comes at
// its original place. A value that cannot be read is null and has a note. Rows and pages that
// cannot be read have a note too, and so has a table whose number of rows differs from the file's
// own count. Returns the number of rows.
std::uint64_t readRows(const PageFile& file, const AccessTable& table,
                       const std::vector<AccessColumn>& columns, LongValues& longValues,
                       const RowReceiver& into);

}  // namespace pelmora::access
