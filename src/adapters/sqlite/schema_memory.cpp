// SPDX-License-Identifier: MIT
#include "adapters/sqlite/schema_memory.h"

#include <algorithm>

namespace pelmora::sqlite {

std::optional<KnownSchema::Table> KnownSchema::find(std::string_view name) const {
  const std::scoped_lock lock(mutex_);
  const auto found = tables_.find(name);
  if (found == tables_.end()) return std::nullopt;
  return std::optional<Table>(std::in_place, found->second);
}

void KnownSchema::keep(const std::string& name, const Table& table) {
  const std::scoped_lock lock(mutex_);
  tables_.emplace(name, table);
}

KnownSchema::Statements KnownSchema::take(std::int64_t version) {
  const std::scoped_lock lock(mutex_);
  if (std::exchange(version_, -1) != version) return {};
  return std::move(statements_);
}

void KnownSchema::give(std::int64_t version, Statements statements) {
  const std::scoped_lock lock(mutex_);
  statements_ = std::move(statements);
  version_ = version;
}

std::shared_ptr<KnownSchema> SchemaMemory::of(const std::string& text) {
  const std::scoped_lock lock(mutex_);
  const auto hasText = [&](const std::shared_ptr<KnownSchema>& known) {
    return known->text() == text;
  };
  auto found = std::ranges::find_if(met_, hasText);
  if (found == met_.end()) {
    if (met_.size() == most) met_.pop_back();
    found = met_.insert(met_.end(), std::make_shared<KnownSchema>(text));
  }
  std::rotate(met_.begin(), found, found + 1);
  return met_.front();
}

}  // namespace pelmora::sqlite
