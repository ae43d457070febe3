// Opening record sets the two ways that operations use.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"

#include <memory>
#include <string>

namespace pelmora {

// For reading, or for adding single rows: forward-only, optimistic.
[[nodiscard]] inline std::unique_ptr<Recordset> readRows(Connection& connection,
                                                         const std::string& statement) {
  return connection.openRecordset(statement, CursorType::forwardOnly, LockType::optimistic);
}

// For adding many rows: dynamic cursor, batch-optimistic.
[[nodiscard]] inline std::unique_ptr<Recordset> openForBatch(Connection& connection,
                                                             const std::string& statement) {
  return connection.openRecordset(statement, CursorType::dynamic, LockType::batchOptimistic);
}

}  // namespace pelmora
