// A curve database as plain prepared statements see it, with the settings that the component has;
// for rivals.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/types.h>

#include <sqlite3.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace pelmora::bench {

[[noreturn]] inline void stop(const std::string& why) {
  std::fprintf(stderr, "%s\n", why.c_str());
  std::exit(1);
}

inline void require(bool good, const char* what) {
  if (!good) stop(what);
}

// Changes count as stored as they do in the component: with the journal's removal on the disk.
class PlainDatabase {
 public:
  explicit PlainDatabase(const std::string& path) {
    check(sqlite3_open_v2(path.c_str(), &database_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX,
                          nullptr));
    run("PRAGMA cache_size = -4096; PRAGMA cache_spill = -65536; PRAGMA cell_size_check = ON; "
        "PRAGMA mmap_size = 0; PRAGMA synchronous = EXTRA");
  }
  ~PlainDatabase() { sqlite3_close(database_); }
  PlainDatabase(const PlainDatabase&) = delete;
  PlainDatabase& operator=(const PlainDatabase&) = delete;

  [[nodiscard]] sqlite3_stmt* prepare(const char* sql) const {
    sqlite3_stmt* statement = nullptr;
    check(sqlite3_prepare_v2(database_, sql, -1, &statement, nullptr));
    return statement;
  }
  void run(const char* sql) const {
    check(sqlite3_exec(database_, sql, nullptr, nullptr, nullptr));
  }
  [[nodiscard]] std::int64_t lastId() const { return sqlite3_last_insert_rowid(database_); }
  [[nodiscard]] std::int64_t seriesId() const {
    sqlite3_stmt* find = prepare(
        "SELECT series.ID FROM series JOIN meter ON series.meterid = meter.ID "
        "WHERE meter.SerialNumber = 'M1' AND series.name = 'S' ORDER BY ReCalID DESC LIMIT 1");
    require(sqlite3_step(find) == SQLITE_ROW, "the series");
    const std::int64_t id = sqlite3_column_int64(find, 0);
    sqlite3_finalize(find);
    return id;
  }
  // In a transaction. sql: INSERT of an id, a Roshko and a Strouhal number.
  void insertPoints(const char* sql, std::int64_t id, const PointArray& points) const {
    run("BEGIN IMMEDIATE");
    sqlite3_stmt* insert = prepare(sql);
    for (std::size_t i = 0; i < points.size(); ++i) {
      sqlite3_bind_int64(insert, 1, id);
      sqlite3_bind_double(insert, 2, points(i, 0));
      sqlite3_bind_double(insert, 3, points(i, 1));
      require(sqlite3_step(insert) == SQLITE_DONE, "insert");
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    run("COMMIT");
  }

 private:
  static void check(int code) { require(code == SQLITE_OK, sqlite3_errstr(code)); }
  sqlite3* database_ = nullptr;
};

}  // namespace pelmora::bench
