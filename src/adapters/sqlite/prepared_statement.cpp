// SPDX-License-Identifier: MIT
#include "adapters/sqlite/prepared_statement.h"

#include "adapters/sqlite/schema_guard.h"
#include "adapters/sqlite/sqlite_error.h"

#include <sqlite3.h>

#include <limits>
#include <variant>

namespace pelmora::sqlite {

void PreparedStatement::Finalize::operator()(sqlite3_stmt* statement) const noexcept {
  sqlite3_finalize(statement);
}

PreparedStatement::PreparedStatement(sqlite3* database, std::string_view sql)
    : database_(database), guard_(SchemaGuard::of(database)) {
  if (sql.size() > std::numeric_limits<int>::max()) throw sqliteError(SQLITE_TOOBIG, nullptr);
  const StatementRun preparing(guard_, runsSchemaCode_, false, false);
  sqlite3_stmt* prepared = nullptr;
  check(sqlite3_prepare_v2(database, sql.data(), static_cast<int>(sql.size()), &prepared, nullptr));
  statement_.reset(prepared);
}

void PreparedStatement::check(int code) const {
  if (code != SQLITE_OK) throw sqliteError(code, database_);
}

void PreparedStatement::bind(int parameter, std::int64_t value) {
  check(sqlite3_bind_int64(get(), parameter, value));
}

void PreparedStatement::bind(int parameter, double value) {
  check(sqlite3_bind_double(get(), parameter, value));
}

void PreparedStatement::bind(int parameter, std::string_view text) {
  check(
      sqlite3_bind_text64(get(), parameter, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8));
}

void PreparedStatement::bindNull(int parameter) { check(sqlite3_bind_null(get(), parameter)); }

void PreparedStatement::bind(int parameter, const Value& value) {
  if (const auto* integer = std::get_if<std::int64_t>(&value)) {
    bind(parameter, *integer);
  } else if (const auto* real = std::get_if<double>(&value)) {
    bind(parameter, *real);
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    bind(parameter, std::string_view(*text));
  } else {
    bindNull(parameter);
  }
}

bool PreparedStatement::step() {
  const StatementRun running(guard_, runsSchemaCode_, sqlite3_stmt_busy(get()) == 0,
                             sqlite3_column_count(get()) > 0);
  const int code = sqlite3_step(get());
  if (code == SQLITE_ROW) return true;
  if (code == SQLITE_DONE) return false;
  throw sqliteError(code, database_);
}

void PreparedStatement::reset() { sqlite3_reset(get()); }

void PreparedStatement::forgetValues() { sqlite3_clear_bindings(get()); }

std::string textAt(const PreparedStatement& statement, int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), column));
  return text == nullptr ? std::string() : std::string(text);
}

}  // namespace pelmora::sqlite
