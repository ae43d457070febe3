// A small database that rests between two connections, and rows of it by new ones.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sqlite/sqlite_session.h"
#include "tests/support/curve_file.h"
#include "tests/support/plain_sqlite.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <variant>

namespace pelmora::test {

class RestingDatabase : public testing::Test {
 protected:
  RestingDatabase() { make(path, "n INTEGER", "1"); }
  static void make(const std::string& file, const std::string& columns, const std::string& values) {
    PlainSqlite(file).run("CREATE TABLE own (" + columns + "); INSERT INTO own VALUES (" + values +
                          ")");
  }
  [[nodiscard]] ConnectionPtr opened() const {
    ConnectionPtr connection = sqliteConnection(path, {}, resting);
    connection->open();
    return connection;
  }
  // The values of the first row, by a connection of its own.
  [[nodiscard]] std::string row(const std::string& statement = "Select * from own") const {
    return rowBy(*opened(), statement);
  }
  [[nodiscard]] static std::string rowBy(Connection& connection,
                                         const std::string& statement = "Select * from own") {
    const auto rows =
        connection.openRecordset(statement, CursorType::forwardOnly, LockType::optimistic);
    std::string row;
    for (std::size_t i = 0; i < rows->fieldCount(); ++i) {
      const Value value = rows->value(i);
      const auto* text = std::get_if<std::string>(&value);
      row += (i == 0 ? "" : " ") +
             (text != nullptr ? *text : std::to_string(std::get<std::int64_t>(value)));
    }
    return row;
  }

  const ScratchFolder folder;
  const std::string path = folder.file("own.db");
  const std::shared_ptr<sqlite::RestingDatabases> resting = restingDatabases();
};

}  // namespace pelmora::test
