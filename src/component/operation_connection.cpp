// SPDX-License-Identifier: MIT
#include "component/operation_connection.h"

#include "component/location.h"

namespace pelmora {
namespace {

// A record set as it is, but for its end.
class OperationRecordset : public Recordset {
 public:
  OperationRecordset(const OperationContext& context, std::unique_ptr<Recordset> rows)
      : rows_(context, std::move(rows)) {}

  [[nodiscard]] std::int32_t recordCount() const override { return rows_->recordCount(); }
  [[nodiscard]] std::size_t fieldCount() const override { return rows_->fieldCount(); }
  [[nodiscard]] std::size_t fieldIndex(std::string_view name) const override {
    return rows_->fieldIndex(name);
  }
  [[nodiscard]] bool atEnd() const override { return rows_->atEnd(); }
  void moveNext() override { rows_->moveNext(); }
  [[nodiscard]] const Value& value(std::size_t field) const override { return rows_->value(field); }
  void addRow(std::span<const std::string_view> fields, std::span<const Value> values) override {
    rows_->addRow(fields, values);
  }
  bool addNewRow(std::string_view field, std::span<const std::string_view> fields,
                 std::span<const Value> values) override {
    return rows_->addNewRow(field, fields, values);
  }
  void updateBatch() override { rows_->updateBatch(); }
  void requery() override { rows_->requery(); }
  void close() override { rows_->close(); }

 private:
  OpenedByOperation<Recordset> rows_;
};

}  // namespace

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

std::unique_ptr<Recordset> OperationConnection::openRecordset(const std::string& statement,
                                                              CursorType cursor, LockType lock) {
  return std::make_unique<OperationRecordset>(context_,
                                              connection_->openRecordset(statement, cursor, lock));
}

}  // namespace pelmora
