// SPDX-License-Identifier: MIT
#include "adapters/sqlite/schema_memory.h"

#include <utility>

namespace pelmora::sqlite {

std::shared_ptr<const SchemaMemory::Tables> SchemaMemory::find(const std::string& schema) const {
  const std::scoped_lock lock(mutex_);
  return schema == schema_ ? tables_ : nullptr;
}

void SchemaMemory::keep(const std::string& schema, const std::string& name,
                        const sql::TableShape& table) {
  const std::scoped_lock lock(mutex_);
  // Others may be reading the tables as they were.
  auto tables = std::make_shared<Tables>();
  if (tables_ && schema == schema_) *tables = *tables_;
  tables->insert_or_assign(name, table);
  if (schema != schema_) version_ = -1;
  schema_ = schema;
  tables_ = std::move(tables);
}

sql::StatementTranslations::Known SchemaMemory::takeTranslations(const std::string& schema,
                                                                 std::int64_t version) {
  const std::scoped_lock lock(mutex_);
  if (schema != schema_ || version != version_) return {};
  version_ = -1;
  return std::move(translations_);
}

void SchemaMemory::giveTranslations(const std::string& schema, std::int64_t version,
                                    sql::StatementTranslations::Known translations) {
  const std::scoped_lock lock(mutex_);
  if (schema != schema_) return;
  translations_ = std::move(translations);
  version_ = version;
}

}  // namespace pelmora::sqlite
