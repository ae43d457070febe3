// What a database that can be designed offers beside its statements.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/own_tables.h>

#include <span>
#include <string>
#include <string_view>

namespace pelmora {

// A connection that can make tables fills this role too. Contracts: <pelmora/own_tables.h>.
class PELMORA_API TableDesign {
 public:
  virtual ~TableDesign() = default;
  [[nodiscard]] virtual bool hasTable(std::string_view name) const = 0;
  virtual void createTable(const OwnTable& table) = 0;
  [[nodiscard]] virtual bool hasIndex(std::string_view table,
                                      std::span<const std::string> columns) const = 0;
  virtual void createIndex(const TableIndex& index) = 0;
  // Whether the database certainly has every table of a curve database; false where only a look at
  // each would tell.
  [[nodiscard]] virtual bool hasCurveTables() const { return false; }
  // Whether nobody can change the tables through this connection.
  [[nodiscard]] virtual bool isReadOnly() const = 0;
};

[[nodiscard]] PELMORA_API bool isReadOnly(const ConnectionPtr& curves);

}  // namespace pelmora
