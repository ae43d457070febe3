// What the renderers must know about the tables of a database.
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pelmora::sql {

// How an engine keeps what is stored in a column: as number, as text, or as it comes.
enum class ColumnKind { number, text, asStored };

struct ColumnShape {
  std::string name;
  ColumnKind kind = ColumnKind::asStored;
  // Of a column of numbers: it holds whole ones alone. False where an engine does not insist on it.
  bool isWhole = false;
};

struct TableShape {
  std::string name;  // as the database spells it
  std::vector<ColumnShape> columns;
  // The columns, which need not be among those above, that say in what order rows are read where a
  // statement does not sort them. Empty: the table has no order.
  std::vector<std::string> readingOrder = {};
  // The column that the database fills with numbers of its own, where an engine has to know it.
  std::string key = {};
};

class Catalogue {
 public:
  virtual ~Catalogue() = default;
  // The table of that name, without regard to case; `database` is the engine's name for one of the
  // databases that a statement reaches.
  [[nodiscard]] virtual std::optional<TableShape> findTable(std::string_view database,
                                                            std::string_view name) const = 0;
};

}  // namespace pelmora::sql
