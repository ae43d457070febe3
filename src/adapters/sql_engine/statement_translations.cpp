// SPDX-License-Identifier: MIT
#include "adapters/sql_engine/statement_translations.h"

#include "adapters/sql_dialect/dialect_error.h"
#include "adapters/sql_dialect/parser.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace pelmora::sql {

namespace {

// One look at the database for all tables of a statement.
class TablesAsKnown : public Catalogue {
 public:
  explicit TablesAsKnown(const KnownTables& tables) : tables_(tables) {}
  [[nodiscard]] std::optional<TableShape> findTable(std::string_view database,
                                                    std::string_view name) const override {
    return tables_.findAsKnown(database, name);
  }

 private:
  const KnownTables& tables_;
};

std::vector<std::size_t> fixedLiterals(const StatementShape& shape,
                                       const Translation& translation) {
  std::vector<std::size_t> fixed;
  for (std::size_t i = 0; i < shape.literals.size(); ++i) {
    const bool isParameter = std::ranges::any_of(
        translation.parameters, [&](const auto& parameter) { return parameter.literal == i; });
    if (!isParameter) fixed.push_back(i);
  }
  return fixed;
}

}  // namespace

StatementTranslations::Index::iterator StatementTranslations::find(const StatementShape& shape) {
  const auto [first, last] = byKey_.equal_range(shape.key);
  for (auto known = first; known != last; ++known) {
    const Kept& kept = *known->second;
    const bool isSame = std::ranges::all_of(kept.fixedLiterals, [&](std::size_t i) {
      return kept.shape.literals[i].text == shape.literals[i].text;
    });
    if (isSame) return known;
  }
  return byKey_.end();
}

void StatementTranslations::forget(Index::iterator known) {
  const List::iterator kept = known->second;
  byKey_.erase(known);
  kept_.erase(kept);
}

void StatementTranslations::keep(const StatementShape& shape,
                                 std::shared_ptr<const Translation> translation) {
  // Of an older schema.
  if (const auto known = find(shape); known != byKey_.end()) forget(known);
  if (kept_.size() == most) {
    const auto [first, last] = byKey_.equal_range(kept_.back().shape.key);
    forget(std::find_if(first, last,
                        [&](const auto& known) { return known.second == std::prev(kept_.end()); }));
  }
  auto fixed = fixedLiterals(shape, *translation);
  kept_.push_front({shape, std::move(translation), std::move(fixed)});
  byKey_.emplace(kept_.front().shape.key, kept_.begin());
}

DialectStatement StatementTranslations::read(std::string_view text) {
  DialectStatement statement{text, shapeOf(text), nullptr, nullptr};
  if (statement.shape) {
    if (const auto known = find(*statement.shape); known != byKey_.end()) {
      kept_.splice(kept_.begin(), kept_, known->second);
      statement.known = kept_.front().translation;
      statement.tree = statement.known->tree;
      return statement;
    }
  }
  statement.tree = std::make_shared<const Statement>(parseStatement(text));
  return statement;
}

std::shared_ptr<const Translation> StatementTranslations::translated(
    const DialectStatement& statement, std::int64_t version) const {
  std::optional<LiteralParameters> parameters;
  if (statement.shape) parameters.emplace(*statement.shape);
  auto made = std::make_shared<Translation>();
  made->tree = statement.tree;
  made->sql =
      writer_.write(*statement.tree, TablesAsKnown(tables_), parameters ? &*parameters : nullptr);
  if (parameters) made->parameters = parameters->all();
  made->schemaVersion = version;
  return made;
}

DialectStatement StatementTranslations::readSelect(std::string_view text) {
  DialectStatement statement = read(text);
  if (!std::holds_alternative<SelectStatement>(*statement.tree))
    throw statementError("Only a SELECT statement delivers rows.");
  return statement;
}

void StatementTranslations::translate(DialectStatement& statement) {
  const std::int64_t version = tables_.schemaVersion();
  if (statement.known && statement.known->schemaVersion != version) {
    statement.known = nullptr;
    statement.tree = std::make_shared<const Statement>(parseStatement(statement.text));
  }
  if (statement.known) return;
  statement.known = translated(statement, version);
  if (statement.shape) keep(*statement.shape, statement.known);
}

std::string StatementTranslations::rowSelect(const Translation& translation) const {
  const auto& select = std::get<SelectStatement>(*translation.tree);
  const TablesAsKnown tables(tables_);
  if (translation.schemaVersion != tables_.schemaVersion()) return writer_.writeRow(select, tables);
  if (translation.rowSelect.empty()) translation.rowSelect = writer_.writeRow(select, tables);
  return translation.rowSelect;
}

void StatementTranslations::clear() {
  byKey_.clear();
  kept_.clear();
}

}  // namespace pelmora::sql
