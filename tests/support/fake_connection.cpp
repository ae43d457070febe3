// SPDX-License-Identifier: MIT
#include "tests/support/fake_connection.h"

#include "base/number_text.h"
#include "base/run_time_error.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace pelmora::test {
namespace {

std::string valueText(const Value& value) {
  if (std::holds_alternative<std::monostate>(value)) return "null";
  if (const auto* number = std::get_if<std::int64_t>(&value)) return std::to_string(*number);
  if (const auto* number = std::get_if<double>(&value)) return numberText(*number);
  return std::get<std::string>(value);
}

bool sameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
  });
}

class FakeRecordset : public Recordset {
 public:
  FakeRecordset(FakeRows rows, FakeDatabase* database) : rows_(std::move(rows)), database_(database) {
    if (database_ != nullptr) ++database_->openRecordsets;
  }
  ~FakeRecordset() override {
    if (database_ != nullptr) --database_->openRecordsets;
  }

  std::int32_t recordCount() const override { return static_cast<std::int32_t>(rows_.rows.size()); }
  std::size_t fieldCount() const override { return rows_.fields.size(); }
  std::size_t fieldIndex(std::string_view name) const override {
    for (std::size_t i = 0; i < rows_.fields.size(); ++i) {
      if (sameName(rows_.fields[i], name)) return i;
    }
    throw makeError(RunTimeError::noSuchField);
  }
  bool atEnd() const override { return row_ >= rows_.rows.size(); }
  void moveNext() override {
    if (atEnd()) throw makeError(RunTimeError::endOfRows);
    ++row_;
  }
  const Value& value(std::size_t field) const override {
    if (atEnd()) throw makeError(RunTimeError::endOfRows);
    return rows_.rows[row_].at(field);
  }
  using Recordset::value;

  void addRow(std::span<const std::string_view> fields, std::span<const Value> values) override {
    if (database_ == nullptr) throw makeError(RunTimeError::noObject);
    std::string line = "add:";
    for (std::size_t i = 0; i < fields.size(); ++i) {
      line += " " + std::string(fields[i]) + "=" + valueText(values[i]);
    }
    database_->journal.push_back(line);
    database_->run("add");
  }
  void updateBatch() override {
    database_->journal.push_back("send");
    database_->run("send");
  }
  void requery() override { row_ = 0; }
  void close() override {}

 private:
  FakeRows rows_;
  FakeDatabase* database_;
  std::size_t row_ = 0;
};

class FakeConnection : public Connection {
 public:
  explicit FakeConnection(FakeDatabase& database) : database_(database) {}
  ~FakeConnection() override {
    if (open_) --database_.openConnections;
  }
  void open() override {
    database_.journal.push_back("open");
    database_.run("open");
    open_ = true;
    ++database_.openConnections;
  }
  bool isOpen() const override { return open_; }
  void close() override {
    database_.journal.push_back("close");
    open_ = false;
    --database_.openConnections;
  }
  void execute(const std::string& statement) override {
    database_.journal.push_back("execute: " + statement);
    database_.run(statement);
  }
  std::unique_ptr<Recordset> openRecordset(const std::string& statement, CursorType cursor,
                                           LockType lock) override {
    const char* kind = cursor == CursorType::forwardOnly   ? "read: "
                       : lock == LockType::batchOptimistic ? "batch: "
                                                           : "single: ";
    database_.journal.push_back(kind + statement);
    database_.run(statement);
    if (const auto found = database_.answers.find(statement); found != database_.answers.end()) {
      return std::make_unique<FakeRecordset>(found->second, &database_);
    }
    if (cursor == CursorType::forwardOnly) throw Error(-1, "fake", "not scripted: " + statement);
    return std::make_unique<FakeRecordset>(FakeRows{}, &database_);
  }

 private:
  FakeDatabase& database_;
  bool open_ = false;
};

}  // namespace

FakeRows pointRows(const PointArray& points) {
  FakeRows rows{{"roshko", "strouhal"}, {}};
  for (std::size_t i = 0; i < points.size(); ++i) rows.rows.push_back({points(i, 0), points(i, 1)});
  return rows;
}

std::unique_ptr<Recordset> recordsetOf(FakeRows rows) {
  return std::make_unique<FakeRecordset>(std::move(rows), nullptr);
}

ConnectionPtr FakeDatabase::connection() { return std::make_shared<FakeConnection>(*this); }

void FakeDatabase::run(const std::string& what) const {
  if (const auto hook = hooks.find(what); hook != hooks.end()) hook->second();
}

}  // namespace pelmora::test
