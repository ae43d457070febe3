// The connection rule: use the connection that was passed, or open one and close it again.
// SPDX-License-Identifier: MIT
#pragma once

#include "component/operation_context.h"
#include "store/connection.h"

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

// The connection of one operation, for the building blocks below the component. A record set that
// an error ends is closed, like an own connection, after that error has been shown.
class OperationConnection : public Connection {
 public:
  // A null `passed` is absent: the shared location is opened instead.
  OperationConnection(const OperationContext& context, const ConnectionPtr& passed);

  // For an operation inside this one, which makes a connection like this of its own.
  [[nodiscard]] const ConnectionPtr& pointer() const { return connection_; }

  void open() override { connection_->open(); }
  [[nodiscard]] bool isOpen() const override { return connection_->isOpen(); }
  void close() override { connection_->close(); }
  void execute(const std::string& statement) override { connection_->execute(statement); }
  [[nodiscard]] std::unique_ptr<Recordset> openRecordset(const std::string& statement,
                                                         CursorType cursor, LockType lock) override;

 private:
  const OperationContext& context_;
  ConnectionPtr connection_;
  OpenedByOperation<OwnConnection> own_;  // nothing where a connection was passed
};

}  // namespace pelmora
