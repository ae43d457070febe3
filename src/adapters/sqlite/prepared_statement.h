// One prepared statement.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/types.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace pelmora::sqlite {

class SchemaGuard;

// Parameters are numbered from 1, columns from 0. Errors: Error.
class PreparedStatement {
 public:
  PreparedStatement(sqlite3* database, std::string_view sql);

  [[nodiscard]] sqlite3_stmt* get() const { return statement_.get(); }
  void bind(int parameter, std::int64_t value);
  void bind(int parameter, double value);
  // The text must live until the statement is reset or bound anew.
  void bind(int parameter, std::string_view text);
  void bindNull(int parameter);
  void bind(int parameter, const Value& value);
  // True: there is a row.
  bool step();
  // Makes the statement ready to run again; parameters keep their values.
  void reset();
  // All parameters become null.
  void forgetValues();

 private:
  void check(int code) const;

  struct Finalize {
    void operator()(sqlite3_stmt* statement) const noexcept;
  };
  sqlite3* database_;
  SchemaGuard* guard_;
  bool runsSchemaCode_ = false;
  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

// A column of the row that was stepped to, as text; an empty one for null.
[[nodiscard]] std::string textAt(const PreparedStatement& statement, int column);

}  // namespace pelmora::sqlite
