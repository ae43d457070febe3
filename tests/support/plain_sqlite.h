// SQLite without the component: what another program does to a database.
// SPDX-License-Identifier: MIT
#pragma once

#include <sqlite3.h>

#include <stdexcept>
#include <string>

namespace pelmora::test {

class PlainSqlite {
 public:
  explicit PlainSqlite(const std::string& path) {
    if (sqlite3_open(path.c_str(), &database_) != SQLITE_OK)
      throw std::runtime_error("cannot open " + path);
  }
  ~PlainSqlite() { sqlite3_close(database_); }
  PlainSqlite(const PlainSqlite&) = delete;
  PlainSqlite& operator=(const PlainSqlite&) = delete;

  void run(const std::string& statements) {
    char* message = nullptr;
    if (sqlite3_exec(database_, statements.c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
      const std::string text = message;
      sqlite3_free(message);
      throw std::runtime_error(text);
    }
  }
  [[nodiscard]] sqlite3* get() const { return database_; }

 private:
  sqlite3* database_ = nullptr;
};

}  // namespace pelmora::test
