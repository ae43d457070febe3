// What the views and triggers of a foreign database may do, and how a statement is stopped.
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>

struct sqlite3;

namespace pelmora::sqlite {

// Code that comes with a file (views, triggers) runs within statements of ours. It may compute, but
// neither recurse nor call what allocates or loads at will, and it must come to an end: each
// connection has a number of steps of the engine for it, which grows with the file and with each
// statement. Statements that run no such code are not counted.
class SchemaGuard {
 public:
  // stopRequested: that of Patience; may be empty.
  explicit SchemaGuard(std::function<bool()> stopRequested = {})
      : stopRequested_(std::move(stopRequested)) {}
  ~SchemaGuard();
  SchemaGuard(const SchemaGuard&) = delete;
  SchemaGuard& operator=(const SchemaGuard&) = delete;

  // Applies the engine's settings for files that nobody vouches for. This object must outlive the
  // connection, at one place.
  void protect(sqlite3* database);
  // As if the connection had just been opened.
  void startAnew(std::function<bool()> stopRequested);
  // Of a connection that is protected; null for others.
  [[nodiscard]] static SchemaGuard* of(sqlite3* database);

  // The view or trigger that was prepared last: "view or trigger 'meter'".
  [[nodiscard]] std::string lastSchemaCode() const;
  // Whether the last statement ended because its caller asked it to stop.
  [[nodiscard]] bool wasStopped() const { return wasStopped_; }

 private:
  static int authorize(void* self, int action, const char* first, const char* second,
                       const char* schema, const char* code) noexcept;
  static int progress(void* self) noexcept;
  bool mayGoOn();

  sqlite3* database_ = nullptr;
  std::int64_t steps_ = 0;  // that are left
  bool isFileCounted_ = false;
  // SQLite hands no statement to its callbacks: what is prepared or run is noted here.
  friend class StatementRun;
  bool* runsSchemaCode_ = nullptr;
  bool isNewRun_ = false, isReading_ = false, wasStopped_ = false;
  std::function<bool()> stopRequested_;
  std::array<char, 128> codeName_{};
};

// While it lives, a connection prepares or runs one statement.
class StatementRun {
 public:
  // guard: of the connection; may be null. runsSchemaCode: of the statement; becomes true where
  // preparing it finds a view or trigger. isNew: whether the statement starts, rather than going on
  // with its next row. isReading: whether it may be stopped on request; a commit that has begun
  // must run to its end, so that its outcome is known.
  StatementRun(SchemaGuard* guard, bool& runsSchemaCode, bool isNew, bool isReading) noexcept;
  ~StatementRun();
  StatementRun(const StatementRun&) = delete;
  StatementRun& operator=(const StatementRun&) = delete;

 private:
  SchemaGuard* guard_;
  bool* runsSchemaCodeBefore_ = nullptr;
  bool isNewBefore_ = false, isReadingBefore_ = false;
};

}  // namespace pelmora::sqlite
