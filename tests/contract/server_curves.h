// A fresh curve database on a server, and a connection to it.
// SPDX-License-Identifier: MIT
#pragma once

#if defined(PELMORA_TEST_POSTGRESQL)

#include "store/connection.h"

#include <memory>
#include <string>

namespace pelmora::test {

// One database serves all tests of a program: a new object finds it empty, with its keys counted
// from 1. There must not be two objects at the same time.
struct ServerCurves {
  ServerCurves();
  static std::string lack();

  [[nodiscard]] std::unique_ptr<Recordset> select(const std::string& statement) const {
    return connection->openRecordset(statement, CursorType::forwardOnly, LockType::optimistic);
  }
  void execute(const std::string& statement) const { connection->execute(statement); }
  [[nodiscard]] std::int32_t count(const std::string& table) const {
    return select("Select * from " + table)->recordCount();
  }
  [[nodiscard]] ConnectionPtr another() const;

  std::string path;
  ConnectionPtr connection;
};

}  // namespace pelmora::test

#endif
