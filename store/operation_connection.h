// The connection rule: use the connection that was passed, or open an own one and close it.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"
#include "store/operation_context.h"

#include <string>

namespace pelmora {

// The connection of one operation.
class OperationConnection {
 public:
  // A null `passed` is absent: the shared location is opened instead.
  OperationConnection(const OperationContext& context, const ConnectionPtr& passed);
  ~OperationConnection();
  OperationConnection(const OperationConnection&) = delete;
  OperationConnection& operator=(const OperationConnection&) = delete;

  Connection* operator->() const { return connection_.get(); }
  [[nodiscard]] const ConnectionPtr& pointer() const { return connection_; }

  // A record set for reading, or for adding single rows: forward-only, optimistic.
  [[nodiscard]] std::unique_ptr<Recordset> read(const std::string& statement) const;
  // A record set for adding many rows: dynamic cursor, batch-optimistic.
  [[nodiscard]] std::unique_ptr<Recordset> openForBatch(const std::string& statement) const;

 private:
  ConnectionPtr connection_;
  bool own_;
};

}  // namespace pelmora
