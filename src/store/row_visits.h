// Reading rows one by one, without keeping them.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>
#include <pelmora/types.h>

#include <functional>
#include <span>
#include <string>

namespace pelmora {

class Connection;

// The values of one row, in the order of the SELECT; valid only during the call.
using RowVisitor = std::function<void(std::span<const Value>)>;

// A connection that keeps only some rows of a SELECT in memory at a time fills this role too.
class PELMORA_API RowVisits {
 public:
  virtual ~RowVisits() = default;
  // Runs a SELECT and calls `visit` with each of its rows, all of one moment. `visit` may read
  // through the connection, but not change anything; what it throws ends the reading.
  //
  // Errors: Error as those of a record set; rows may have been delivered before it.
  virtual void visitRows(const std::string& statement, const RowVisitor& visit) = 0;
};

// The same through any connection; without the role, all rows are in memory.
PELMORA_API void visitRows(Connection& connection, const std::string& statement,
                           const RowVisitor& visit);

}  // namespace pelmora
