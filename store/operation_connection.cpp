// SPDX-License-Identifier: MIT
#include "store/operation_connection.h"

#include "store/location.h"

namespace pelmora {

OperationConnection::OperationConnection(const OperationContext& context,
                                         const ConnectionPtr& passed)
    : connection_(passed), own_(passed == nullptr) {
  if (own_) {
    std::string location;
    connection_ = getConnection(location, context.shared(), context.platform());
    connection_->open();
  }
}

OperationConnection::~OperationConnection() {
  if (!own_) return;
  try {
    if (connection_->isOpen()) connection_->close();
  } catch (...) {  // the operation has its result; a connection that will not close is dropped
  }
}

std::unique_ptr<Recordset> OperationConnection::read(const std::string& statement) const {
  return connection_->openRecordset(statement, CursorType::forwardOnly, LockType::optimistic);
}

std::unique_ptr<Recordset> OperationConnection::openForBatch(const std::string& statement) const {
  return connection_->openRecordset(statement, CursorType::dynamic, LockType::batchOptimistic);
}

}  // namespace pelmora
