// Everything that a database holds, as one text.
// SPDX-License-Identifier: MIT
#pragma once

#include <sqlite3.h>

#include <stdexcept>
#include <string>
#include <string_view>

namespace pelmora::test {

class PlainReader {
 public:
  explicit PlainReader(const std::string& path) {
    if (sqlite3_open_v2(path.c_str(), &database_, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
      const std::string why = sqlite3_errmsg(database_);
      sqlite3_close(database_);
      throw std::runtime_error(why);
    }
  }
  ~PlainReader() { sqlite3_close(database_); }
  PlainReader(const PlainReader&) = delete;
  PlainReader& operator=(const PlainReader&) = delete;

  // The first column of every row, each followed by a line end.
  [[nodiscard]] std::string column(const std::string& sql) const {
    std::string text;
    sqlite3_stmt* statement = nullptr;
    int code = sqlite3_prepare_v2(database_, sql.c_str(), -1, &statement, nullptr);
    while (code == SQLITE_OK || code == SQLITE_ROW) {
      code = sqlite3_step(statement);
      if (code != SQLITE_ROW) break;
      const auto* value = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
      text += std::string(value == nullptr ? "" : value) + '\n';
    }
    sqlite3_finalize(statement);
    if (code != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(database_));
    return text;
  }

 private:
  sqlite3* database_ = nullptr;
};

// Every row of every table, numbers to the last bit, without the times at which rows were written;
// and what the engine's own check says of the file. What an interrupted change left is undone
// first, as any program that opens the file does.
inline std::string stateOf(const std::string& path) {
  try {
    const PlainReader reader(path);
    const std::string statements = reader.column(
        "SELECT 'SELECT ''' || t.name || '''' || group_concat('||''|''||quote(\"' || c.name || "
        "'\")', '') || ' FROM \"' || t.name || '\" ORDER BY rowid' FROM sqlite_master AS t, "
        "pragma_table_info(t.name) AS c WHERE t.type = 'table' AND c.name NOT LIKE '%At' AND "
        "c.name NOT LIKE 'Date%' GROUP BY t.name ORDER BY t.name");
    std::string state = "integrity: " + reader.column("PRAGMA integrity_check");
    for (std::size_t at = 0; at < statements.size();) {
      const std::size_t end = statements.find('\n', at);
      state += reader.column(statements.substr(at, end - at));
      at = end + 1;
    }
    return state;
  } catch (const std::runtime_error& error) {
    return std::string("unreadable: ") + error.what();
  }
}

}  // namespace pelmora::test
