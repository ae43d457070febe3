// SPDX-License-Identifier: MIT
#include "adapters/sqlite/dialect_functions.h"

#include "base/text_case.h"
#include "adapters/sql_dialect/text_pattern.h"
#include "adapters/sqlite/arithmetic_program.h"
#include "adapters/sqlite/sqlite_error.h"
#include "base/run_time_error.h"

#include <sqlite3.h>

#include <cstddef>
#include <span>
#include <string_view>

namespace pelmora::sqlite {

namespace {

// No exception may cross SQLite: it is kept for the caller of the statement.
template <typename Function>
void guarded(sqlite3_context* context, Function&& function) noexcept {
  auto& fault = *static_cast<StatementFault*>(sqlite3_user_data(context));
  try {
    function();
  } catch (const Error& error) {
    fault.emplace(error);
    sqlite3_result_error(context, error.what(), -1);
  } catch (...) {
    sqlite3_result_error_nomem(context);
  }
}

void arithmetic(sqlite3_context* context, int count, sqlite3_value** values) noexcept {
  guarded(context, [&] {
    if (count < 2) throw makeError(RunTimeError::invalidArgument);
    const std::span<sqlite3_value*> arguments(values, static_cast<std::size_t>(count));
    evaluateProgram(context, valueText(arguments[0]), arguments.subspan(1));
  });
}

void like(sqlite3_context* context, int /*count*/, sqlite3_value** values) noexcept {
  guarded(context, [&] {
    const bool isNull = sqlite3_value_type(values[0]) == SQLITE_NULL ||
                        sqlite3_value_type(values[1]) == SQLITE_NULL;
    if (isNull) return sqlite3_result_null(context);
    sqlite3_result_int(context,
                       sql::matchesPattern(valueText(values[0]), valueText(values[1])) ? 1 : 0);
  });
}

int compare(void* /*unused*/, int leftSize, const void* left, int rightSize,
            const void* right) noexcept {
  return compareTexts({static_cast<const char*>(left), static_cast<std::size_t>(leftSize)},
                      {static_cast<const char*>(right), static_cast<std::size_t>(rightSize)});
}

void check(int code, sqlite3* database) {
  if (code != SQLITE_OK) throw sqliteError(code, database);
}

}  // namespace

void registerDialect(sqlite3* database, StatementFault& fault) {
  constexpr int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY;
  check(sqlite3_create_function_v2(database, "dialect_arithmetic", -1, flags, &fault, arithmetic,
                                   nullptr, nullptr, nullptr),
        database);
  check(sqlite3_create_function_v2(database, "dialect_like", 2, flags, &fault, like, nullptr,
                                   nullptr, nullptr),
        database);
  check(
      sqlite3_create_collation_v2(database, "DIALECT_TEXT", SQLITE_UTF8, nullptr, compare, nullptr),
      database);
}

}  // namespace pelmora::sqlite
