// A curve database past the program, as another program sees and changes it: a file by SQLite's own
// interface, a database on a server by psql.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/curve_place.h"
#include "tests/support/file_bytes.h"
#include "tests/support/plain_sqlite.h"
#include "tests/support/postgres_server.h"

#include <nlohmann/json.hpp>
#include <sqlite3.h>

#include <charconv>
#include <cstdint>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::test {

// Statements are in the SQL that both engines know. Names with capital letters stand in double
// quotes, and rows are added with the names of their columns.
class PlainDatabase {
 public:
  explicit PlainDatabase(std::string location)
      : location_(std::move(location)), isOnServer_(location_.starts_with("postgresql://")) {}

  // Errors: std::runtime_error.
  void run(const std::string& statements) const {
    if (isOnServer_) {
      (void)PostgresServer::ask(location_, statements);
    } else {
      PlainSqlite file(location_);
      sqlite3_busy_timeout(file.get(), mostWait_ms);
      file.run(statements);
    }
  }
  // Changes tables, not only rows. The next test on a server gets a database of its own.
  void alter(const std::string& statements) const {
    isCurvePlaceAltered() = true;
    run(statements);
  }
  // Rows in their order, values joined by '|': numbers without an exponent, no value as "null". The
  // columns must differ in name; the server's own column with the order of rows is left out.
  [[nodiscard]] std::vector<std::string> rows(const std::string& query) const {
    return isOnServer_ ? rowsOfServer(query) : rowsOfFile(query);
  }
  [[nodiscard]] std::int64_t number(const std::string& query) const {
    return std::stoll(rows(query).at(0));
  }
  [[nodiscard]] std::int64_t count(const std::string& from) const {
    return number("SELECT count(*) FROM " + from);
  }
  // All that must stay if nothing is changed: the bytes of a file, every row on a server.
  [[nodiscard]] std::string contents() const {
    if (!isOnServer_) return bytesOf(location_);
    std::string text;
    for (const std::string& table :
         rows("SELECT quote_ident(tablename) AS name FROM pg_tables WHERE schemaname = 'public' "
              "ORDER BY tablename")) {
      for (const std::string& row :
           rows("SELECT t::text AS line FROM " + table + " AS t ORDER BY 1"))
        text += table + row + "\n";
    }
    return text;
  }
  // As both engines write it in a statement.
  [[nodiscard]] std::string infinity() const { return isOnServer_ ? "'Infinity'" : "9e999"; }

 private:
  static constexpr int mostWait_ms = 60000;

  static std::string textOf(double number) {
    char text[400];
    const auto end =
        std::to_chars(std::begin(text), std::end(text), number, std::chars_format::fixed);
    return {text, end.ptr};
  }
  [[nodiscard]] std::vector<std::string> rowsOfServer(const std::string& query) const {
    std::vector<std::string> found;
    const auto answer = nlohmann::ordered_json::parse(PostgresServer::ask(
        location_, "SELECT coalesce(json_agg(row_to_json(q)), '[]') FROM (" + query + ") AS q"));
    for (const auto& row : answer) {
      std::string line;
      for (const auto& [name, value] : row.items()) {
        if (name == "pelmora_row") continue;
        line += line.empty() ? "" : "|";
        if (value.is_null()) {
          line += "null";
        } else {
          line += value.is_number() ? textOf(value.get<double>()) : value.get<std::string>();
        }
      }
      found.push_back(line);
    }
    return found;
  }
  [[nodiscard]] std::vector<std::string> rowsOfFile(const std::string& query) const {
    PlainSqlite file(location_);
    sqlite3_busy_timeout(file.get(), mostWait_ms);
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(file.get(), query.c_str(), -1, &statement, nullptr) != SQLITE_OK)
      throw std::runtime_error(sqlite3_errmsg(file.get()));
    std::vector<std::string> found;
    int step = SQLITE_ROW;
    while ((step = sqlite3_step(statement)) == SQLITE_ROW) {
      std::string line;
      for (int i = 0; i < sqlite3_column_count(statement); ++i) {
        line += i == 0 ? "" : "|";
        const int type = sqlite3_column_type(statement, i);
        if (type == SQLITE_NULL) {
          line += "null";
        } else if (type == SQLITE_TEXT) {
          line += reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
        } else {
          line += textOf(sqlite3_column_double(statement, i));
        }
      }
      found.push_back(line);
    }
    sqlite3_finalize(statement);
    if (step != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(file.get()));
    return found;
  }

  std::string location_;
  bool isOnServer_;
};

}  // namespace pelmora::test
