// SPDX-License-Identifier: MIT
#include "adapters/sqlite/schema_guard.h"

#include "base/file_text.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace pelmora::sqlite {

namespace {

// Steps between two looks at the account.
constexpr int stride = 1000;
// About a second's work.
constexpr std::int64_t firstSteps = 50'000'000;
// A page of 4 KiB holds about a hundred rows, and a trigger takes some dozens of steps for each.
constexpr std::int64_t stepsForPage = 20'000;
constexpr std::uintmax_t pageSize = 4096;
// An audit trigger on one insert of sixteen rows needs less.
constexpr std::int64_t stepsForStatement = 100'000;

// SQLite hands no statement to its callbacks: what is prepared or run is known by the thread.
thread_local bool* runsSchemaCode = nullptr;
thread_local bool isNewRun = false;
thread_local std::array<char, 128> codeName{};

// Beyond those that SQLite itself refuses to an untrusted schema.
bool isRefused(const char* function) {
  constexpr std::array refused{"load_extension", "fts3_tokenizer", "zeroblob", "randomblob",
                               "edit"};
  return std::ranges::any_of(
      refused, [&](const char* name) { return sqlite3_stricmp(name, function) == 0; });
}

std::int64_t stepsFor(sqlite3* database, const char* schema) {
  const char* name = sqlite3_db_filename(database, schema);
  if (name == nullptr || *name == '\0') return 0;
  std::error_code failure;
  const std::uintmax_t size = std::filesystem::file_size(filePath(name), failure);
  return failure ? 0 : static_cast<std::int64_t>(size / pageSize) * stepsForPage;
}

}  // namespace

void SchemaGuard::protect(sqlite3* database) {
  database_ = database;
  steps_ = firstSteps;
  const auto configure = [&](int option, int value) {
    sqlite3_db_config(database, option, value, nullptr);
  };
  configure(SQLITE_DBCONFIG_DEFENSIVE, 1);
  configure(SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0);
  configure(SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0);
  configure(SQLITE_DBCONFIG_ENABLE_FTS3_TOKENIZER, 0);
  // A name in double quotes is a name and never a text.
  configure(SQLITE_DBCONFIG_DQS_DML, 0);
  configure(SQLITE_DBCONFIG_DQS_DDL, 0);
  sqlite3_limit(database, SQLITE_LIMIT_LENGTH, 256 << 20);
  sqlite3_limit(database, SQLITE_LIMIT_SQL_LENGTH, 64 << 20);
  sqlite3_limit(database, SQLITE_LIMIT_ATTACHED, 1);
  sqlite3_limit(database, SQLITE_LIMIT_TRIGGER_DEPTH, 10);
  sqlite3_limit(database, SQLITE_LIMIT_COMPOUND_SELECT, 50);
  sqlite3_limit(database, SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 100);
  sqlite3_limit(database, SQLITE_LIMIT_WORKER_THREADS, 0);
  sqlite3_set_authorizer(database, authorize, this);
  sqlite3_progress_handler(database, stride, progress, this);
}

int SchemaGuard::authorize(void* /*self*/, int action, const char* /*first*/, const char* second,
                           const char* /*schema*/, const char* code) noexcept {
  if (code == nullptr) return SQLITE_OK;
  // The first name is the one that a statement of ours has met; later ones may lie inside it.
  if (runsSchemaCode != nullptr && !std::exchange(*runsSchemaCode, true)) {
    const std::size_t length = std::min(std::string_view(code).size(), codeName.size() - 1);
    std::copy_n(code, length, codeName.begin());
    codeName[length] = '\0';
  }
  if (action == SQLITE_RECURSIVE || action == SQLITE_PRAGMA) return SQLITE_DENY;
  const bool isRefusedCall = action == SQLITE_FUNCTION && second != nullptr && isRefused(second);
  return isRefusedCall ? SQLITE_DENY : SQLITE_OK;
}

int SchemaGuard::progress(void* self) noexcept {
  if (runsSchemaCode == nullptr || !*runsSchemaCode) return 0;
  try {
    return static_cast<SchemaGuard*>(self)->mayGoOn() ? 0 : 1;
  } catch (...) {  // no memory to look at the file
    return 1;
  }
}

bool SchemaGuard::mayGoOn() {
  if (isNewRun) steps_ = std::min(steps_ + stepsForStatement, std::max(steps_, firstSteps));
  isNewRun = false;
  steps_ -= stride;
  if (steps_ < 0 && !isFileCounted_) {
    isFileCounted_ = true;
    steps_ += stepsFor(database_, "main") + stepsFor(database_, "output");
  }
  return steps_ >= 0;
}

StatementRun::StatementRun(bool& flag, bool isNew) noexcept
    : runsSchemaCodeBefore_(runsSchemaCode), isNewBefore_(isNewRun) {
  runsSchemaCode = &flag;
  isNewRun = isNew;
}

StatementRun::~StatementRun() {
  runsSchemaCode = runsSchemaCodeBefore_;
  isNewRun = isNewBefore_;
}

std::string lastSchemaCode() { return "view or trigger '" + std::string(codeName.data()) + "'"; }

}  // namespace pelmora::sqlite
