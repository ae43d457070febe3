// The connection rule: use the connection that was passed, or open an own one and close it.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"
#include "store/operation_context.h"

#include <exception>
#include <memory>
#include <string>

namespace pelmora {

// What an operation opened. It is released at the end of its scope; where an error ends the scope,
// after that error has been shown.
template <class Opened>
class OpenedByOperation {
 public:
  OpenedByOperation(const OperationContext& context, std::shared_ptr<Opened> opened)
      : context_(&context), opened_(std::move(opened)) {}
  ~OpenedByOperation() {
    if (!opened_ || std::uncaught_exceptions() <= exceptionsBefore_) return;
    try {
      context_->closeAfterReport(std::move(opened_));
    } catch (...) {  // no memory to keep it: it is closed at once
    }
  }
  OpenedByOperation(OpenedByOperation&&) noexcept = default;
  OpenedByOperation& operator=(OpenedByOperation&&) noexcept = default;

  Opened* operator->() const { return opened_.get(); }
  Opened& operator*() const { return *opened_; }

 private:
  const OperationContext* context_;
  std::shared_ptr<Opened> opened_;
  int exceptionsBefore_ = std::uncaught_exceptions();
};

using OperationRows = OpenedByOperation<Recordset>;

// Closes the connection at its end, if it is open then.
class OwnConnection {
 public:
  explicit OwnConnection(ConnectionPtr connection) : connection_(std::move(connection)) {}
  ~OwnConnection();
  OwnConnection(const OwnConnection&) = delete;
  OwnConnection& operator=(const OwnConnection&) = delete;

 private:
  ConnectionPtr connection_;
};

// The connection of one operation.
class OperationConnection {
 public:
  // A null `passed` is absent: the shared location is opened instead.
  OperationConnection(const OperationContext& context, const ConnectionPtr& passed);

  Connection* operator->() const { return connection_.get(); }
  [[nodiscard]] const ConnectionPtr& pointer() const { return connection_; }

  // A record set for reading, or for adding single rows: forward-only, optimistic.
  [[nodiscard]] OperationRows read(const std::string& statement) const;
  // A record set for adding many rows: dynamic cursor, batch-optimistic.
  [[nodiscard]] OperationRows openForBatch(const std::string& statement) const;
  [[nodiscard]] OperationRows open(const std::string& statement, CursorType cursor,
                                   LockType lock) const;

 private:
  const OperationContext& context_;
  ConnectionPtr connection_;
  OpenedByOperation<OwnConnection> own_;  // nothing where a connection was passed
};

}  // namespace pelmora
