// Statements of the dialect, translated once for all that differ in plain literals alone.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/literal_parameters.h"
#include "adapters/sql_dialect/statement_shape.h"
#include "adapters/sql_dialect/syntax_tree.h"
#include "adapters/sqlite/statement_pool.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace pelmora::sqlite {

class SqliteCatalogue;

struct Translation {
  std::shared_ptr<const sql::Statement> tree;
  std::string sql;
  std::vector<sql::LiteralParameters::Parameter> parameters;
  std::int64_t schemaVersion = 0;  // of the tables that it was made for
  mutable std::string rowSelect;   // once it has been asked for
};

// One statement of the dialect on its way to SQLite.
struct DialectStatement {
  std::string_view text;
  std::optional<sql::StatementShape> shape;
  std::shared_ptr<const Translation> known;
  // Of this statement, or of one that differs in literals that `known` has as parameters: those of
  // conditions and of what an INSERT ... SELECT stores.
  std::shared_ptr<const sql::Statement> tree;
};

// Keeps the translations used last. They hold for the schema version that they were made for; a
// statement that finds another one is translated anew.
class StatementTranslations {
 public:
  // Both must outlive this object.
  StatementTranslations(const SqliteCatalogue& catalogue, StatementPool& pool)
      : catalogue_(catalogue), pool_(pool) {}

  // `text` must outlive the result. Errors: Error of the parser.
  [[nodiscard]] DialectStatement read(std::string_view text);
  // Ready to run. `statement` must outlive the use. Errors: Error of the renderer; those of SQLite.
  [[nodiscard]] StatementPool::Use prepare(DialectStatement& statement);
  // Of a SELECT of one table's rows: its columns for the row whose identity is parameter 1.
  // Errors: Error of the renderer, genericFailure if the database is locked.
  [[nodiscard]] std::string rowSelect(const Translation& translation) const;
  // Forgets everything: what a transaction has made of the tables was undone.
  void clear();

 private:
  struct Kept {
    sql::StatementShape shape;
    std::shared_ptr<const Translation> translation;
    std::vector<std::size_t> fixedLiterals;  // indices of those that are no parameters
  };
  using List = std::list<Kept>;
  using Index = std::unordered_multimap<std::string_view, List::iterator>;
  static constexpr std::size_t most = 128;

  [[nodiscard]] Index::iterator find(const sql::StatementShape& shape);
  void forget(Index::iterator known);
  [[nodiscard]] std::shared_ptr<const Translation> translated(const DialectStatement& statement,
                                                              std::int64_t version) const;
  void keep(const sql::StatementShape& shape, std::shared_ptr<const Translation> translation);

  const SqliteCatalogue& catalogue_;
  StatementPool& pool_;
  List kept_;  // from the one used last on
  Index byKey_;
};

}  // namespace pelmora::sqlite
