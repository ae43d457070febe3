// What was read of schemas, for the next connection to a file with the same one.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/catalogue.h"
#include "adapters/sql_engine/statement_translations.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pelmora::sqlite {

// What connections have learnt about the schema with this text. Any thread may call it.
class KnownSchema {
 public:
  // What a connection hands to the next one.
  struct Statements {
    sql::StatementTranslations::Known translations;
    std::set<std::string> designs;  // design statements that have nothing to do
  };

  explicit KnownSchema(std::string text) : text_(std::move(text)) {}
  [[nodiscard]] const std::string& text() const { return text_; }

  using Table = std::optional<sql::TableShape>;  // nothing: there is none with this name
  // name: as it was asked for.
  [[nodiscard]] std::optional<Table> find(std::string_view name) const;
  void keep(const std::string& name, const Table& table);

  // For one connection at a time. version: of the schema, as the file counts it.
  [[nodiscard]] Statements take(std::int64_t version);
  void give(std::int64_t version, Statements statements);

 private:
  const std::string text_;
  mutable std::mutex mutex_;
  std::map<std::string, Table, std::less<>> tables_;
  Statements statements_;
  std::int64_t version_ = -1;  // of the statements
};

// A connection that lasts for one operation would spend most of its time on asking the engine for
// the columns of the same few tables, and on translating the same few statements. What a table
// looks like follows from the text of its schema alone: it is kept by that text, whichever file has
// it, and no file stays open for it. Any thread may call it.
class SchemaMemory {
 public:
  // Keeps the schemas that were met last.
  [[nodiscard]] std::shared_ptr<KnownSchema> of(const std::string& text);

 private:
  static constexpr std::size_t most = 4;

  std::mutex mutex_;
  std::vector<std::shared_ptr<KnownSchema>> met_;  // from the last one on
};

}  // namespace pelmora::sqlite
