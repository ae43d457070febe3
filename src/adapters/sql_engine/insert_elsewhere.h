// INSERT ... IN 'location' where another engine keeps what is at the location.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/syntax_tree.h"
#include "adapters/sql_engine/row_store.h"
#include "store/connection.h"

#include <string>
#include <vector>

namespace pelmora::sql {

// The SELECT whose rows the statement inserts; of a list of values, one that delivers these.
[[nodiscard]] SelectStatement insertedRows(const InsertStatement& insert);

// Stores the rows in the statement's table of `target`, all of them or none. `fields`: the names
// under which they were selected.
//
// Errors: Error of the target.
void insertElsewhere(const InsertStatement& insert, const std::vector<std::string>& fields,
                     const RowStore& rows, Connection& target);

}  // namespace pelmora::sql
