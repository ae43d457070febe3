// Statements of the dialect, translated once for all that differ in plain literals alone.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/literal_parameters.h"
#include "adapters/sql_dialect/statement_shape.h"
#include "adapters/sql_dialect/syntax_tree.h"
#include "adapters/sql_engine/known_tables.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace pelmora::sql {

struct Translation {
  std::shared_ptr<const Statement> tree;
  std::string sql;
  std::vector<LiteralParameters::Parameter> parameters;
  std::int64_t schemaVersion = 0;  // of the tables that it was made for
  mutable std::string rowSelect;   // once it has been asked for
};

// How an engine writes statements of the dialect.
class StatementWriter {
 public:
  virtual ~StatementWriter() = default;
  // With `parameters`, which may be null, literals become parameters where that is exact.
  // Errors: Error for tables and columns that are not there, and for what cannot be written.
  [[nodiscard]] virtual std::string write(const Statement& statement, const Catalogue& tables,
                                          LiteralParameters* parameters) const = 0;
  // The columns of `select` for the row of its updatable table whose identity is parameter 1.
  [[nodiscard]] virtual std::string writeRow(const SelectStatement& select,
                                             const Catalogue& tables) const = 0;
};

// One statement of the dialect on its way to an engine.
struct DialectStatement {
  std::string_view text;
  std::optional<StatementShape> shape;
  std::shared_ptr<const Translation> known;
  // Of this statement, or of one that differs in literals that `known` has as parameters: those of
  // conditions and of what an INSERT ... SELECT stores.
  std::shared_ptr<const Statement> tree;
};

// Keeps the translations used last. They hold for the schema version that they were made for; a
// statement that finds another one is translated anew.
class StatementTranslations {
 public:
  // Both must outlive this object.
  StatementTranslations(const KnownTables& tables, const StatementWriter& writer)
      : tables_(tables), writer_(writer) {}

  // `text` must outlive the result. Errors: Error of the parser.
  [[nodiscard]] DialectStatement read(std::string_view text);
  // The same for a statement that must be a SELECT.
  [[nodiscard]] DialectStatement readSelect(std::string_view text);
  // Makes `statement.known` the translation for the schema as it is now.
  // Errors: Error of the writer, genericFailure if the database is locked.
  void translate(DialectStatement& statement);
  // Of a SELECT of one table's rows: its columns for the row whose identity is parameter 1.
  // Errors: Error of the writer, genericFailure if the database is locked.
  [[nodiscard]] std::string rowSelect(const Translation& translation) const;
  // Forgets everything: what a transaction has made of the tables was undone.
  void clear();

 private:
  struct Kept {
    StatementShape shape;
    std::shared_ptr<const Translation> translation;
    std::vector<std::size_t> fixedLiterals;  // indices of those that are no parameters
  };
  using List = std::list<Kept>;
  using Index = std::unordered_multimap<std::string_view, List::iterator>;
  static constexpr std::size_t most = 128;

  [[nodiscard]] Index::iterator find(const StatementShape& shape);
  void forget(Index::iterator known);
  [[nodiscard]] std::shared_ptr<const Translation> translated(const DialectStatement& statement,
                                                              std::int64_t version) const;
  void keep(const StatementShape& shape, std::shared_ptr<const Translation> translation);

  const KnownTables& tables_;
  const StatementWriter& writer_;
  List kept_;  // from the one used last on
  Index byKey_;
};

}  // namespace pelmora::sql
