// What was read of a schema, for the next connection to a file with the same one.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/catalogue.h"
#include "adapters/sql_engine/statement_translations.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace pelmora::sqlite {

// A connection that lasts for one operation would spend most of its time on asking the engine for
// the columns of the same few tables, and on translating the same few statements. What a table
// looks like follows from the text of its schema alone: it is kept by that text, whichever file has
// it, and no file stays open for it. Any thread may call it.
class SchemaMemory {
 public:
  using Tables = std::map<std::string, sql::TableShape, std::less<>>;  // by the name as asked for

  // Null if this schema is not the one that was met last.
  [[nodiscard]] std::shared_ptr<const Tables> find(const std::string& schema) const;
  // Forgets every other schema.
  void keep(const std::string& schema, const std::string& name, const sql::TableShape& table);

  // For one connection at a time. version: of the schema, as the file counts it.
  [[nodiscard]] sql::StatementTranslations::Known takeTranslations(const std::string& schema,
                                                                   std::int64_t version);
  void giveTranslations(const std::string& schema, std::int64_t version,
                        sql::StatementTranslations::Known translations);

 private:
  mutable std::mutex mutex_;
  std::string schema_;
  std::shared_ptr<const Tables> tables_;
  sql::StatementTranslations::Known translations_;
  std::int64_t version_ = -1;  // of the translations
};

}  // namespace pelmora::sqlite
