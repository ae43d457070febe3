// A fresh curve database file and a connection to it.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sqlite/sqlite_database.h"
#include "store/connection.h"
#include "tests/support/scratch_folder.h"

#include <pelmora/error.h>

#include <memory>
#include <string>

namespace pelmora::test {

struct CurveFile {
  CurveFile() : path(folder.file("curves.db")) {
    createSqliteCurveDatabase(path);
    connection = sqliteConnection(path);
    connection->open();
  }

  [[nodiscard]] std::unique_ptr<Recordset> select(const std::string& statement) const {
    return connection->openRecordset(statement, CursorType::forwardOnly, LockType::optimistic);
  }
  void execute(const std::string& statement) const { connection->execute(statement); }
  [[nodiscard]] std::int32_t count(const std::string& table) const {
    return select("Select * from " + table)->recordCount();
  }

  ScratchFolder folder;
  std::string path;
  ConnectionPtr connection;
};

struct Failure {
  std::int32_t number = 0;
  std::string description;
};

// The error that `action` throws; number 0 where it throws none.
template <typename Action>
Failure failureOf(Action&& action) {
  try {
    action();
  } catch (const Error& error) {
    return {error.number(), error.what()};
  }
  return {};
}

}  // namespace pelmora::test
