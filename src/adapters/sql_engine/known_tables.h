// The tables of an open database, as they were last seen.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/catalogue.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace pelmora::sql {

// Keeps what it has read of the database until its schema changes, so that tables that another user
// has just made are seen. An engine says which version its schema has and how a table is read.
class KnownTables : public Catalogue {
 public:
  // Whose changes of the tables give the schema another version.
  enum class Version { ofAllUsers, ofThisConnection };

  // `main`: the engine's name for the database that is kept; others are read each time. A table
  // that is missing is looked for each time if another user may make it without a new version.
  KnownTables(std::string main, Version version)
      : main_(std::move(main)), keepsAbsence_(version == Version::ofAllUsers) {}

  // Errors: Error, genericFailure if the database is locked.
  [[nodiscard]] std::optional<TableShape> findTable(std::string_view database,
                                                    std::string_view name) const override;

  // Another one after each change of the tables by those whom it counts. A look at the database.
  // Errors: Error, genericFailure if the database is locked.
  [[nodiscard]] std::int64_t schemaVersion() const;
  // As findTable, of the version that was looked at last.
  [[nodiscard]] std::optional<TableShape> findAsKnown(std::string_view database,
                                                      std::string_view name) const;
  // Forgets what it has read. Needed where a transaction that may have changed tables was undone:
  // the number of its schema version may then be given to another schema.
  void forget() const;

 private:
  [[nodiscard]] virtual std::int64_t readVersion() const = 0;
  [[nodiscard]] virtual std::optional<TableShape> readTable(std::string_view database,
                                                            std::string_view name) const = 0;

  std::string main_;
  bool keepsAbsence_;
  mutable std::int64_t version_ = -1;
  // By the name as asked for; nothing for one that is missing.
  mutable std::map<std::string, std::optional<TableShape>, std::less<>> tables_;
};

}  // namespace pelmora::sql
