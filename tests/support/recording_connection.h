// A connection that writes down everything that is sent through it to another one.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"
#include "store/field_value.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::test {

// What was sent, in order, one text each: "open", "close", "execute STATEMENT", "read STATEMENT"
// (forward-only, optimistic), "batch STATEMENT" (dynamic, batch-optimistic), "add field=value ...",
// "update batch", "requery".
using Log = std::vector<std::string>;

class RecordingRecordset : public Recordset {
 public:
  RecordingRecordset(std::unique_ptr<Recordset> rows, std::shared_ptr<Log> log)
      : rows_(std::move(rows)), log_(std::move(log)) {}

  std::int32_t recordCount() const override { return rows_->recordCount(); }
  std::size_t fieldCount() const override { return rows_->fieldCount(); }
  std::size_t fieldIndex(std::string_view name) const override { return rows_->fieldIndex(name); }
  bool atEnd() const override { return rows_->atEnd(); }
  void moveNext() override { rows_->moveNext(); }
  const Value& value(std::size_t field) const override { return rows_->value(field); }
  void addRow(std::span<const std::string_view> fields, std::span<const Value> values) override {
    std::string entry = "add";
    for (std::size_t i = 0; i < fields.size(); ++i) {
      entry += " " + std::string(fields[i]) + "=" + toText(values[i]);
    }
    log_->push_back(entry);
    rows_->addRow(fields, values);
  }
  void updateBatch() override {
    log_->push_back("update batch");
    rows_->updateBatch();
  }
  void requery() override {
    log_->push_back("requery");
    rows_->requery();
  }
  void close() override { rows_->close(); }

 private:
  std::unique_ptr<Recordset> rows_;
  std::shared_ptr<Log> log_;
};

class RecordingConnection : public Connection {
 public:
  explicit RecordingConnection(ConnectionPtr inner,
                               std::shared_ptr<Log> log = std::make_shared<Log>())
      : inner_(std::move(inner)), log_(std::move(log)) {}

  [[nodiscard]] const Log& log() const { return *log_; }

  void open() override {
    log_->push_back("open");
    inner_->open();
  }
  bool isOpen() const override { return inner_->isOpen(); }
  void close() override {
    log_->push_back("close");
    inner_->close();
  }
  void execute(const std::string& statement) override {
    log_->push_back("execute " + statement);
    inner_->execute(statement);
  }
  std::unique_ptr<Recordset> openRecordset(const std::string& statement, CursorType cursor,
                                           LockType lock) override {
    log_->push_back(kind(cursor, lock) + " " + statement);
    return std::make_unique<RecordingRecordset>(inner_->openRecordset(statement, cursor, lock),
                                                log_);
  }

 private:
  static std::string kind(CursorType cursor, LockType lock) {
    if (cursor == CursorType::forwardOnly && lock == LockType::optimistic) return "read";
    if (cursor == CursorType::dynamic && lock == LockType::batchOptimistic) return "batch";
    return "cursor " + std::to_string(static_cast<int>(cursor)) + " lock " +
           std::to_string(static_cast<int>(lock));
  }

  ConnectionPtr inner_;
  std::shared_ptr<Log> log_;
};

}  // namespace pelmora::test
