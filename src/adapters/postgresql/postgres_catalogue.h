// The tables of the open database.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_engine/known_tables.h"

#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::postgres {

struct ServerRows;

// All tables are read in one round trip, when one of them is first asked for. A table that is not
// among them is looked for once more: another user may have made it.
class PostgresCatalogue : public sql::KnownTables {
 public:
  using Run = std::function<ServerRows(const std::string& statement)>;

  // `run` reads rows. Its errors pass through.
  explicit PostgresCatalogue(Run run)
      : KnownTables("main", Version::ofThisConnection), run_(std::move(run)) {}

  // Read once, too: storing asks for the same indexes again and again.
  [[nodiscard]] bool hasIndexNamed(const std::string& name) const;

  // This connection has made or changed tables, or has undone that.
  void changed();

 private:
  // Looking at the server before each statement would double its round trips: the number counts the
  // changes of this connection alone. Tables never lose columns while they are in use.
  [[nodiscard]] std::int64_t readVersion() const override { return version_; }
  [[nodiscard]] std::optional<sql::TableShape> readTable(std::string_view database,
                                                         std::string_view name) const override;
  void readAll() const;

  Run run_;
  std::int64_t version_ = 1;
  mutable std::vector<sql::TableShape> tables_;
  mutable std::set<std::string> indexes_;
};

}  // namespace pelmora::postgres
