// SPDX-License-Identifier: MIT
#include "adapters/sqlite/statement_translations.h"

#include "adapters/sql_dialect/parser.h"
#include "adapters/sql_dialect/sqlite_renderer.h"
#include "adapters/sqlite/sqlite_catalogue.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace pelmora::sqlite {

namespace {

using Form = sql::LiteralParameters::Form;

// One look at the file for all tables of a statement.
class TablesAsTold : public sql::Catalogue {
 public:
  explicit TablesAsTold(const SqliteCatalogue& catalogue) : catalogue_(catalogue) {}
  [[nodiscard]] std::optional<sql::TableShape> findTable(std::string_view database,
                                                         std::string_view name) const override {
    return catalogue_.findAsTold(database, name);
  }

 private:
  const SqliteCatalogue& catalogue_;
};

std::vector<std::size_t> fixedLiterals(const sql::StatementShape& shape,
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

StatementTranslations::Index::iterator StatementTranslations::find(
    const sql::StatementShape& shape) {
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

void StatementTranslations::keep(const sql::StatementShape& shape,
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
  DialectStatement statement{text, sql::shapeOf(text), nullptr, nullptr};
  if (statement.shape) {
    if (const auto known = find(*statement.shape); known != byKey_.end()) {
      kept_.splice(kept_.begin(), kept_, known->second);
      statement.known = kept_.front().translation;
      statement.tree = statement.known->tree;
      return statement;
    }
  }
  statement.tree = std::make_shared<const sql::Statement>(sql::parseStatement(text));
  return statement;
}

std::shared_ptr<const Translation> StatementTranslations::translated(
    const DialectStatement& statement, std::int64_t version) const {
  std::optional<sql::LiteralParameters> parameters;
  if (statement.shape) parameters.emplace(*statement.shape);
  auto made = std::make_shared<Translation>();
  made->tree = statement.tree;
  made->sql = sql::renderForSqlite(*statement.tree, TablesAsTold(catalogue_), "main",
                                   parameters ? &*parameters : nullptr);
  if (parameters) made->parameters = parameters->all();
  made->schemaVersion = version;
  return made;
}

StatementPool::Use StatementTranslations::prepare(DialectStatement& statement) {
  const std::int64_t version = catalogue_.schemaVersion();
  if (statement.known && statement.known->schemaVersion != version) {
    statement.known = nullptr;
    statement.tree = std::make_shared<const sql::Statement>(sql::parseStatement(statement.text));
  }
  if (!statement.known) {
    statement.known = translated(statement, version);
    if (statement.shape) keep(*statement.shape, statement.known);
  }
  StatementPool::Use use = pool_.take(statement.known->sql);
  int number = 0;
  for (const auto& [literal, form] : statement.known->parameters) {
    const sql::PlainLiteral& value = statement.shape->literals[literal];
    ++number;
    if (form == Form::number) {
      use->bind(number, value.whole.value());
    } else {
      use->bind(number, std::string_view(value.text));
    }
  }
  return use;
}

std::string StatementTranslations::rowSelect(const Translation& translation) const {
  const auto& select = std::get<sql::SelectStatement>(*translation.tree);
  const TablesAsTold tables(catalogue_);
  if (translation.schemaVersion != catalogue_.schemaVersion())
    return sql::renderRowForSqlite(select, tables);
  if (translation.rowSelect.empty())
    translation.rowSelect = sql::renderRowForSqlite(select, tables);
  return translation.rowSelect;
}

void StatementTranslations::clear() {
  byKey_.clear();
  kept_.clear();
}

}  // namespace pelmora::sqlite
