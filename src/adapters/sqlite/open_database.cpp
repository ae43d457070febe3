// SPDX-License-Identifier: MIT
#include "adapters/sqlite/open_database.h"

#include "adapters/sqlite/sqlite_error.h"
#include "adapters/sqlite/sqlite_renderer.h"
#include "base/file_text.h"

#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace pelmora::sqlite {

namespace {

class SqliteWriter : public sql::StatementWriter {
 public:
  [[nodiscard]] std::string write(const sql::Statement& statement, const sql::Catalogue& tables,
                                  sql::LiteralParameters* parameters) const override {
    return renderForSqlite(statement, tables, "main", parameters);
  }
  [[nodiscard]] std::string writeRow(const sql::SelectStatement& select,
                                     const sql::Catalogue& tables) const override {
    return renderRowForSqlite(select, tables);
  }
};

const SqliteWriter writer;

// What the engine opened: without links.
std::string fileOf(const OpenDatabase& database) {
  return sqlite3_db_filename(database.handle.get(), "main");
}

}  // namespace

// The catalogue is the first to look at the file: a lock, damage or a refused right shows there.
OpenDatabase::OpenDatabase(const std::string& file, OpenMode mode, const Patience& patience,
                           bool mayRest)
    : handle(file, mode, patience),
      catalogue(handle.get(), mayRest),
      pool(handle.get()),
      translations(catalogue, writer) {
  registerDialect(handle.get(), fault);
}

std::unique_ptr<OpenDatabase> RestingDatabases::take(const std::string& file) {
  const std::scoped_lock lock(mutex_);
  const auto found =
      std::ranges::find(resting_, file, [](const auto& resting) { return fileOf(*resting); });
  if (found == resting_.end()) return nullptr;
  std::unique_ptr<OpenDatabase> database = std::move(*found);
  resting_.erase(found);
  return database;
}

std::unique_ptr<OpenDatabase> RestingDatabases::wake(const std::string& path,
                                                     const Patience& patience) {
  std::error_code failure;
  const std::filesystem::path file = std::filesystem::canonical(filePath(path), failure);
  if (failure || !std::filesystem::is_regular_file(file, failure)) return nullptr;
  std::unique_ptr<OpenDatabase> database = take(utf8Text(file));
  if (!database || !database->handle.wake(patience)) return nullptr;
  return database->catalogue.hasSameSchema() ? std::move(database) : nullptr;
}

void RestingDatabases::rest(std::unique_ptr<OpenDatabase> database) noexcept {
  std::unique_ptr<OpenDatabase> forgotten;  // destroyed without the lock
  try {
    if (!database->handle.rest()) return;
    const std::scoped_lock lock(mutex_);
    if (resting_.size() == most) {
      forgotten = std::move(resting_.front());
      resting_.erase(resting_.begin());
    }
    resting_.push_back(std::move(database));
  } catch (...) {  // no memory: it is closed
    return;
  }
}

}  // namespace pelmora::sqlite
