// SPDX-License-Identifier: MIT
#include "history/shared_connection.h"

#include "store/connection.h"

#include <pelmora/error.h>

#include <array>
#include <charconv>
#include <optional>
#include <utility>
#include <vector>

namespace pelmora::history {
namespace {

constexpr std::int32_t typeMismatch = 13;

class SharedConnection : public Connection {
 public:
  explicit SharedConnection(ConnectionPtr open) : open_(std::move(open)) {}
  void open() override {}
  [[nodiscard]] bool isOpen() const override { return open_->isOpen(); }
  void close() override {}
  void execute(const std::string& statement) override { open_->execute(statement); }
  [[nodiscard]] std::unique_ptr<Recordset> openRecordset(const std::string& statement,
                                                         CursorType cursor,
                                                         LockType lock) override {
    return open_->openRecordset(statement, cursor, lock);
  }

 private:
  ConnectionPtr open_;
};

// INSERT INTO table ( columns) IN 'file' SELECT ...
struct InsertElsewhere {
  std::string table, columnList, select;
  std::vector<std::string> columns;
};

std::string trimmed(const std::string& text) {
  const auto first = text.find_first_not_of(' ');
  return first == std::string::npos ? ""
                                    : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::optional<InsertElsewhere> insertInto(const std::string& file, const std::string& statement) {
  const std::string head = "INSERT INTO ", place = ") IN '" + file + "'";
  const std::size_t bracket = statement.find('('), end = statement.find(place);
  if (!statement.starts_with(head) || bracket == std::string::npos || end == std::string::npos ||
      end < bracket) {
    return std::nullopt;
  }
  InsertElsewhere insert;
  insert.table = trimmed(statement.substr(head.size(), bracket - head.size()));
  insert.columnList = statement.substr(bracket + 1, end - bracket - 1);
  insert.select = trimmed(statement.substr(end + place.size()));
  if (!insert.select.starts_with("SELECT ")) return std::nullopt;
  for (std::size_t at = 0; at < insert.columnList.size();) {
    const std::size_t comma = std::min(insert.columnList.find(',', at), insert.columnList.size());
    insert.columns.push_back(trimmed(insert.columnList.substr(at, comma - at)));
    at = comma + 1;
  }
  return insert;
}

std::string literal(const Value& value) {
  if (std::holds_alternative<std::monostate>(value)) return "NULL";
  std::array<char, 32> buffer{};
  const auto number = [&](auto n) {
    return std::string(buffer.data(),
                       std::to_chars(buffer.data(), buffer.data() + buffer.size(), n).ptr);
  };
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return number(*whole);
  if (const auto* real = std::get_if<double>(&value)) return number(*real);
  std::string quoted = "'";
  for (const char c : std::get<std::string>(value))
    quoted += c == '\'' ? std::string("''") : std::string(1, c);
  return quoted + "'";
}

class StandConnection : public Connection {
 public:
  StandConnection(ConnectionPtr stand, ConnectionPtr curves, std::string curvesPath)
      : stand_(std::move(stand)), curves_(std::move(curves)), curvesPath_(std::move(curvesPath)) {}
  void open() override { stand_->open(); }
  [[nodiscard]] bool isOpen() const override { return stand_->isOpen(); }
  void close() override { stand_->close(); }
  void execute(const std::string& statement) override {
    const auto insert = insertInto(curvesPath_, statement);
    if (!insert) return stand_->execute(statement);
    copy(*insert);
  }
  [[nodiscard]] std::unique_ptr<Recordset> openRecordset(const std::string& statement,
                                                         CursorType cursor,
                                                         LockType lock) override {
    return stand_->openRecordset(statement, cursor, lock);
  }

 private:
  void copy(const InsertElsewhere& insert) const {
    const auto from =
        stand_->openRecordset(insert.select, CursorType::forwardOnly, LockType::optimistic);
    const auto to = curves_->openRecordset(
        "SELECT " + insert.columnList + " FROM " + insert.table + " WHERE 1=0", CursorType::dynamic,
        LockType::batchOptimistic);
    const std::vector<std::string_view> fields(insert.columns.begin(), insert.columns.end());
    std::vector<Value> values(fields.size());
    for (; !from->atEnd(); from->moveNext()) {
      for (std::size_t i = 0; i < values.size(); ++i) values[i] = from->value(i);
      try {
        to->addRow(fields, values);
      } catch (const Error& error) {
        if (error.number() != typeMismatch) throw;
        // A text in a column of numbers: a record set refuses it, a statement stores it as it
        // stands.
        to->updateBatch();
        insertRow(insert, values);
      }
    }
    to->updateBatch();
  }

  void insertRow(const InsertElsewhere& insert, const std::vector<Value>& values) const {
    std::string list;
    for (const Value& value : values) list += (list.empty() ? "" : ", ") + literal(value);
    curves_->execute("INSERT INTO " + insert.table + " (" + insert.columnList + ") VALUES (" +
                     list + ")");
  }

  ConnectionPtr stand_, curves_;
  std::string curvesPath_;
};

}  // namespace

ConnectionPtr sharedConnection(const ConnectionPtr& open) {
  return std::make_shared<SharedConnection>(open);
}

ConnectionPtr standConnection(const ConnectionPtr& stand, const ConnectionPtr& curves,
                              const std::string& curvesPath) {
  return std::make_shared<StandConnection>(stand, curves, curvesPath);
}

}  // namespace pelmora::history
