// SPDX-License-Identifier: MIT
#include "store/operation_connection.h"

#include "store/location.h"

namespace pelmora {

OwnConnection::~OwnConnection() {
  try {
    if (connection_->isOpen()) connection_->close();
  } catch (...) {  // the operation has its result; a connection that will not close is dropped
  }
}

OperationConnection::OperationConnection(const OperationContext& context,
                                         const ConnectionPtr& passed)
    : context_(context), connection_(passed), own_(context, nullptr) {
  if (passed) return;
  std::string location;
  connection_ = getConnection(location, context.shared(), context.platform());
  own_ = {context, std::make_shared<OwnConnection>(connection_)};
  connection_->open();
}

OperationRows OperationConnection::open(const std::string& statement, CursorType cursor,
                                        LockType lock) const {
  return {context_, connection_->openRecordset(statement, cursor, lock)};
}

OperationRows OperationConnection::read(const std::string& statement) const {
  return open(statement, CursorType::forwardOnly, LockType::optimistic);
}

OperationRows OperationConnection::openForBatch(const std::string& statement) const {
  return open(statement, CursorType::dynamic, LockType::batchOptimistic);
}

}  // namespace pelmora
