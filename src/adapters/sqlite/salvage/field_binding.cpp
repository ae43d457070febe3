// SPDX-License-Identifier: MIT
#include "adapters/sqlite/salvage/field_binding.h"

#include "adapters/sqlite/prepared_statement.h"
#include "adapters/sqlite/sqlite_error.h"

#include <sqlite3.h>

#include <string_view>

namespace pelmora::sqlite::salvage {

std::string numberedNames(const char* name, std::size_t count) {
  std::string names;
  for (std::size_t i = 0; i < count; ++i)
    names += (i == 0 ? "" : ", ") + std::string(name) + std::to_string(i);
  return names;
}

void bindField(PreparedStatement& statement, int parameter, const Field& field) {
  if (const auto* whole = std::get_if<std::int64_t>(&field)) {
    statement.bind(parameter, *whole);
  } else if (const auto* real = std::get_if<double>(&field)) {
    statement.bind(parameter, *real);
  } else if (const auto* text = std::get_if<std::string>(&field)) {
    statement.bind(parameter, std::string_view(*text));
  } else if (const auto* blob = std::get_if<Blob>(&field)) {
    const int code = sqlite3_bind_blob64(statement.get(), parameter, blob->bytes.data(),
                                         blob->bytes.size(), SQLITE_STATIC);
    if (code != SQLITE_OK) throw sqliteError(code, sqlite3_db_handle(statement.get()));
  } else {
    statement.bindNull(parameter);
  }
}

Field fieldAt(const PreparedStatement& statement, int column) {
  sqlite3_stmt* row = statement.get();
  const int type = sqlite3_column_type(row, column);
  if (type == SQLITE_INTEGER) return static_cast<std::int64_t>(sqlite3_column_int64(row, column));
  if (type == SQLITE_FLOAT) return sqlite3_column_double(row, column);
  if (type == SQLITE_NULL) return {};
  const auto* bytes = static_cast<const char*>(sqlite3_column_blob(row, column));
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(row, column));
  std::string text = bytes == nullptr ? std::string() : std::string(bytes, size);
  if (type == SQLITE_BLOB) return Blob{std::move(text)};
  return text;
}

}  // namespace pelmora::sqlite::salvage
