// SPDX-License-Identifier: MIT
#include "adapters/access/helper/table_definition.h"

#include "adapters/access/helper/usage_map.h"

#include <algorithm>
#include <cstdio>
#include <set>

namespace pelmora::access {
namespace {

constexpr std::size_t nextPageAt = 4;
constexpr std::size_t lengthAt = 8;
constexpr std::size_t definitionHead = 8;  // of every page
constexpr std::size_t mostColumnsAt = 41;
constexpr std::size_t mostColumnsEver = 255;
constexpr std::size_t rowHead = 2;

struct FreeTable {
  void operator()(MdbTableDef* table) const noexcept { mdb_free_tabledef(table); }
};

// The library would follow a damaged chain of pages forever. Errors: Damage.
void checkChain(const PageFile& file, std::uint32_t first) {
  std::set<std::uint32_t> seen;
  std::size_t bytes = 0;
  Page page = file.page(first, PageKind::table);
  const std::size_t length = u32(page, lengthAt);
  for (std::uint32_t number = first;;) {
    if (!seen.insert(number).second) throw Damage("its definition refers back to itself");
    bytes += pageSize - definitionHead;
    number = u32(page, nextPageAt);
    if (number == 0) break;
    page = file.page(number, PageKind::table);
  }
  if (length > bytes) throw Damage("its definition is cut off");
}

AccessColumn columnOf(const MdbColumn& given) {
  AccessColumn column;
  column.name = given.name;
  column.type = given.col_type;
  column.size = static_cast<std::uint16_t>(given.col_size);
  column.number = static_cast<std::size_t>(given.col_num);
  column.isFixed = given.is_fixed != 0;
  column.fixedAt = static_cast<std::size_t>(given.fixed_offset);
  column.variable = given.var_col_num;
  // The library's versions differ in which of the two is which; the scale is never the larger one.
  column.scale = static_cast<unsigned>(std::min(given.col_scale, given.col_prec));
  return column;
}

void checkColumns(const AccessTable& table, std::size_t variableColumns) {
  std::set<std::size_t> numbers;
  std::set<std::size_t> variables;
  std::vector<std::pair<std::size_t, std::size_t>> fixed;  // begin, end
  std::set<std::string> names;
  for (const AccessColumn& column : table.columns) {
    const auto wrong = [&](const std::string& what) {
      throw Damage("the definition of column '" + column.name + "' is damaged: " + what);
    };
    if (column.name.empty() || !names.insert(column.name).second) wrong("its name");
    if (column.number >= table.mostColumns || !numbers.insert(column.number).second)
      wrong("its number");
    const std::size_t size = sizeOfType(column.type);
    if (size != 0 && column.size != size) wrong("its size");
    if (column.type == MDB_BOOL) continue;  // lies in a bit
    if (column.isFixed) {
      if (column.size == 0 || rowHead + column.fixedAt + column.size > pageSize) wrong("its place");
      fixed.emplace_back(column.fixedAt, column.fixedAt + column.size);
    } else if (column.variable >= variableColumns || !variables.insert(column.variable).second) {
      wrong("its place");
    }
  }
  std::ranges::sort(fixed);
  for (std::size_t i = 1; i < fixed.size(); ++i) {
    if (fixed[i].first < fixed[i - 1].second) throw Damage("two of its columns lie in one place");
  }
}

}  // namespace

std::size_t sizeOfType(int type) {
  switch (type) {
    case MDB_BYTE: return 1;
    case MDB_INT: return 2;
    case MDB_LONGINT:
    case MDB_FLOAT: return 4;
    case MDB_MONEY:
    case MDB_DOUBLE:
    case MDB_DATETIME: return 8;
    case MDB_REPID: return 16;
    case MDB_NUMERIC: return 17;
    default: return 0;
  }
}

AccessTable readDefinition(const PageFile& file, const std::string& name, std::uint32_t page) {
  checkChain(file, page);
  AccessTable table;
  table.page = page;
  table.mostColumns = u16(file.page(page, PageKind::table), mostColumnsAt);

  MdbCatalogEntry entry{};
  entry.mdb = file.library();
  entry.object_type = MDB_TABLE;
  entry.table_pg = page;
  std::snprintf(entry.object_name, sizeof(entry.object_name), "%s", name.c_str());
  const std::unique_ptr<MdbTableDef, FreeTable> definition(mdb_read_table(&entry));
  if (!definition) throw Damage("its definition cannot be read");
  if (definition->num_cols == 0 || definition->num_cols > mostColumnsEver ||
      definition->num_cols > table.mostColumns || table.mostColumns > mostColumnsEver)
    throw Damage("its number of columns is damaged");
  table.rows = definition->num_rows;
  const Bytes map(definition->usage_map, definition->usage_map == nullptr ? 0 : definition->map_sz);
  table.dataPages = pagesInMap(file, map);

  (void)file.page(page, PageKind::table);  // the library goes on from the page that was read last
  const GPtrArray* columns = mdb_read_columns(definition.get());
  if (columns == nullptr || columns->len != definition->num_cols)
    throw Damage("its columns cannot be read");
  for (guint i = 0; i < columns->len; ++i)
    table.columns.push_back(columnOf(*static_cast<const MdbColumn*>(columns->pdata[i])));
  checkColumns(table, definition->num_var_cols);
  return table;
}

}  // namespace pelmora::access
