// SPDX-License-Identifier: MIT
#include "adapters/sqlite/schema_guard.h"

#include "base/file_text.h"

#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <string_view>
#include <system_error>
#include <unordered_map>
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

// The guards of all open connections: SQLite keeps nothing of ours with a connection.
class Register {
 public:
  void add(sqlite3* database, SchemaGuard* guard) {
    const std::scoped_lock lock(mutex_);
    guards_[database] = guard;
  }
  void remove(sqlite3* database) {
    const std::scoped_lock lock(mutex_);
    guards_.erase(database);
  }
  SchemaGuard* find(sqlite3* database) {
    const std::scoped_lock lock(mutex_);
    const auto found = guards_.find(database);
    return found == guards_.end() ? nullptr : found->second;
  }

 private:
  std::mutex mutex_;
  std::unordered_map<sqlite3*, SchemaGuard*> guards_;
};

// Never destroyed: databases may be closed while the process ends.
Register& openGuards() {
  static auto* const all = new Register();
  return *all;
}

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

SchemaGuard::~SchemaGuard() {
  if (database_ != nullptr) openGuards().remove(database_);
}

SchemaGuard* SchemaGuard::of(sqlite3* database) { return openGuards().find(database); }

void SchemaGuard::protect(sqlite3* database) {
  openGuards().add(database, this);
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

void SchemaGuard::startAnew(std::function<bool()> stopRequested) {
  stopRequested_ = std::move(stopRequested);
  steps_ = firstSteps;
  isFileCounted_ = false;
}

int SchemaGuard::authorize(void* self, int action, const char* /*first*/, const char* second,
                           const char* /*schema*/, const char* code) noexcept {
  if (code == nullptr) return SQLITE_OK;
  auto& guard = *static_cast<SchemaGuard*>(self);
  // The first name is the one that a statement of ours has met; later ones may lie inside it.
  if (guard.runsSchemaCode_ != nullptr && !std::exchange(*guard.runsSchemaCode_, true)) {
    auto& name = guard.codeName_;
    const std::size_t length = std::min(std::string_view(code).size(), name.size() - 1);
    std::copy_n(code, length, name.begin());
    name[length] = '\0';
  }
  if (action == SQLITE_RECURSIVE || action == SQLITE_PRAGMA) return SQLITE_DENY;
  const bool isRefusedCall = action == SQLITE_FUNCTION && second != nullptr && isRefused(second);
  return isRefusedCall ? SQLITE_DENY : SQLITE_OK;
}

int SchemaGuard::progress(void* self) noexcept {
  auto& guard = *static_cast<SchemaGuard*>(self);
  if (guard.isReading_ && guard.stopRequested_ && guard.stopRequested_()) {
    guard.wasStopped_ = true;
    return 1;
  }
  if (guard.runsSchemaCode_ == nullptr || !*guard.runsSchemaCode_) return 0;
  try {
    return guard.mayGoOn() ? 0 : 1;
  } catch (...) {  // no memory to look at the file
    return 1;
  }
}

bool SchemaGuard::mayGoOn() {
  if (isNewRun_) steps_ = std::min(steps_ + stepsForStatement, std::max(steps_, firstSteps));
  isNewRun_ = false;
  steps_ -= stride;
  if (steps_ < 0 && !isFileCounted_) {
    isFileCounted_ = true;
    steps_ += stepsFor(database_, "main") + stepsFor(database_, "output");
  }
  return steps_ >= 0;
}

std::string SchemaGuard::lastSchemaCode() const {
  return "view or trigger '" + std::string(codeName_.data()) + "'";
}

StatementRun::StatementRun(SchemaGuard* guard, bool& flag, bool isNew, bool isReading) noexcept
    : guard_(guard) {
  if (guard_ == nullptr) return;
  guard_->wasStopped_ = false;
  runsSchemaCodeBefore_ = std::exchange(guard_->runsSchemaCode_, &flag);
  isNewBefore_ = std::exchange(guard_->isNewRun_, isNew);
  isReadingBefore_ = std::exchange(guard_->isReading_, isReading);
}

StatementRun::~StatementRun() {
  if (guard_ == nullptr) return;
  guard_->runsSchemaCode_ = runsSchemaCodeBefore_;
  guard_->isNewRun_ = isNewBefore_;
  guard_->isReading_ = isReadingBefore_;
}

}  // namespace pelmora::sqlite
