// A connection without a database: statements are answered by a script, word for word.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/run_time_error.h"
#include "store/connection.h"

#include <algorithm>
#include <cctype>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::test {

struct Rows {
  std::vector<std::string> fields;
  std::vector<std::vector<Value>> rows;
};

// Answers to statements. A statement without an answer has no rows; several answers are given one
// after the other, the last one from then on.
struct Script {
  std::map<std::string, std::deque<Rows>> answers;
  std::map<std::string, std::deque<Error>> failures;  // each is thrown once, before any answer
  std::int64_t generatedId = 0;                       // of the row added last

  void answer(const std::string& statement, Rows rows) {
    answers[statement].push_back(std::move(rows));
  }
  void fail(const std::string& statement, const Error& error) {
    failures[statement].push_back(error);
  }
  Rows ask(const std::string& statement) {
    throwPrepared(statement);
    auto& prepared = answers[statement];
    if (prepared.empty()) return {};
    Rows rows = prepared.front();
    if (prepared.size() > 1) prepared.pop_front();
    return rows;
  }
  void throwPrepared(const std::string& statement) {
    auto& prepared = failures[statement];
    if (prepared.empty()) return;
    const Error error = prepared.front();
    prepared.pop_front();
    throw error;
  }
};

class ScriptedRecordset : public Recordset {
 public:
  ScriptedRecordset(std::shared_ptr<Script> script, std::string statement)
      : script_(std::move(script)),
        statement_(std::move(statement)),
        rows_(script_->ask(statement_)) {}

  std::int32_t recordCount() const override { return static_cast<std::int32_t>(rows_.rows.size()); }
  std::size_t fieldCount() const override { return rows_.fields.size(); }
  std::size_t fieldIndex(std::string_view name) const override {
    const auto same = [](char a, char b) { return std::tolower(a) == std::tolower(b); };
    const auto found = std::ranges::find_if(rows_.fields, [&](const std::string& field) {
      return std::ranges::equal(field, name, same);
    });
    if (found == rows_.fields.end()) throw makeError(RunTimeError::noSuchField);
    return static_cast<std::size_t>(found - rows_.fields.begin());
  }
  bool atEnd() const override { return current_ >= rows_.rows.size(); }
  void moveNext() override {
    if (atEnd()) throw makeError(RunTimeError::endOfRows);
    ++current_;
  }
  const Value& value(std::size_t field) const override {
    if (atEnd()) throw makeError(RunTimeError::endOfRows);
    return rows_.rows[current_].at(field);
  }
  // The added row becomes the current one; its field "id" is generated.
  void addRow(std::span<const std::string_view> fields, std::span<const Value> values) override {
    rows_.fields.assign(fields.begin(), fields.end());
    rows_.fields.emplace_back("id");
    std::vector<Value> row(values.begin(), values.end());
    row.emplace_back(++script_->generatedId);
    rows_.rows.assign(1, row);
    current_ = 0;
  }
  void updateBatch() override { script_->throwPrepared("update batch"); }
  void requery() override {
    rows_ = script_->ask(statement_);
    current_ = 0;
  }
  void close() override {}

 private:
  std::shared_ptr<Script> script_;
  std::string statement_;
  Rows rows_;
  std::size_t current_ = 0;
};

class ScriptedConnection : public Connection {
 public:
  explicit ScriptedConnection(std::shared_ptr<Script> script) : script_(std::move(script)) {}

  void open() override {
    script_->throwPrepared("open");
    isOpen_ = true;
  }
  bool isOpen() const override { return isOpen_; }
  void close() override { isOpen_ = false; }
  void execute(const std::string& statement) override {
    requireOpen();
    script_->throwPrepared(statement);
  }
  std::unique_ptr<Recordset> openRecordset(const std::string& statement, CursorType,
                                           LockType) override {
    requireOpen();
    return std::make_unique<ScriptedRecordset>(script_, statement);
  }

 private:
  void requireOpen() const {
    constexpr std::int32_t connectionClosed = 3709;
    if (!isOpen_) throw Error(connectionClosed, "Test", "The connection is closed");
  }

  std::shared_ptr<Script> script_;
  bool isOpen_ = false;
};

}  // namespace pelmora::test
