// A prepared statement that is kept and run again; for rivals.
// SPDX-License-Identifier: MIT
#pragma once

#include "bench/plain_database.h"

#include <sqlite3.h>

#include <cstdint>
#include <string>
#include <type_traits>

namespace pelmora::bench {

class PlainStatement {
 public:
  PlainStatement(const PlainDatabase& database, const std::string& sql)
      : statement_(database.prepare(sql.c_str())) {}
  ~PlainStatement() { sqlite3_finalize(statement_); }
  PlainStatement(const PlainStatement&) = delete;
  PlainStatement& operator=(const PlainStatement&) = delete;

  // Starts it anew with these values. Texts must live until it is started again.
  template <class... Values>
  PlainStatement& with(const Values&... values) {
    sqlite3_reset(statement_);
    int parameter = 0;
    (bind(++parameter, values), ...);
    return *this;
  }
  bool hasRow() {
    const int code = sqlite3_step(statement_);
    require(code == SQLITE_ROW || code == SQLITE_DONE, sqlite3_errstr(code));
    return code == SQLITE_ROW;
  }
  void run() {
    require(!hasRow(), "a statement without rows");
    sqlite3_reset(statement_);
  }
  [[nodiscard]] std::int64_t whole(int column) const {
    return sqlite3_column_int64(statement_, column);
  }
  [[nodiscard]] double real(int column) const { return sqlite3_column_double(statement_, column); }
  [[nodiscard]] std::string text(int column) const {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    return text == nullptr ? std::string() : std::string(text);
  }

 private:
  template <class Value>
  void bind(int parameter, const Value& value) {
    if constexpr (std::is_integral_v<Value>) {
      sqlite3_bind_int64(statement_, parameter, value);
    } else if constexpr (std::is_floating_point_v<Value>) {
      sqlite3_bind_double(statement_, parameter, value);
    } else {
      sqlite3_bind_text(statement_, parameter, value.data(), static_cast<int>(value.size()),
                        SQLITE_STATIC);
    }
  }
  sqlite3_stmt* statement_;
};

}  // namespace pelmora::bench
