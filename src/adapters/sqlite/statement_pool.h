// Prepared statements that are run again and again.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sqlite/prepared_statement.h"

#include <cstddef>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>

struct sqlite3;

namespace pelmora::sqlite {

// Keeps those used last, each to be used by one at a time: where a statement is in use, the same
// text is prepared a second time. SQLite itself prepares a kept statement anew where the schema has
// changed since.
class StatementPool {
  struct Kept {
    std::string sql;
    PreparedStatement statement;
  };
  using List = std::list<Kept>;

 public:
  // One use. At its end the statement is reset, which ends the reading or writing that it does, and
  // forgets its values.
  class Use {
   public:
    Use(Use&& other) noexcept : pool_(other.pool_) { kept_.swap(other.kept_); }
    Use& operator=(Use&&) = delete;
    ~Use();

    [[nodiscard]] PreparedStatement& operator*() { return kept_.front().statement; }
    [[nodiscard]] PreparedStatement* operator->() { return &kept_.front().statement; }

   private:
    friend class StatementPool;
    explicit Use(StatementPool& pool) : pool_(pool) {}

    StatementPool& pool_;
    List kept_;  // one
  };

  explicit StatementPool(sqlite3* database) : database_(database) {}

  // The pool must outlive the use. Errors: Error.
  [[nodiscard]] Use take(std::string_view sql);

 private:
  static constexpr std::size_t most = 64;

  void giveBack(List& kept);

  sqlite3* database_;
  List idle_;  // from the one used last on
  std::unordered_map<std::string_view, List::iterator> bySql_;
};

}  // namespace pelmora::sqlite
