// SPDX-License-Identifier: MIT
#include "adapters/access/helper/catalogue.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace pelmora::access {
namespace {

constexpr std::uint32_t cataloguePage = 2;
constexpr std::int64_t tableObject = 1;
constexpr std::array<std::int64_t, 2> linkObjects{4, 6};
// Set for system tables and temporary tables.
constexpr std::int64_t systemFlags = 0x80000002;
constexpr std::int64_t typeBits = 0x7F;
constexpr std::int64_t pageBits = 0x00FFFFFF;

std::int64_t wholeIn(const Value& value) {
  const auto* whole = std::get_if<std::int64_t>(&value);
  if (whole == nullptr) throw Damage("a table is listed without its place");
  return *whole;
}

// A table that has such a flag but another name is a user's table whose entry is damaged.
bool isSystemName(std::string_view name) {
  return name.starts_with("MSys") || name.starts_with("~") || name.starts_with("f_");
}

bool isDefinition(const PageFile& file, std::uint32_t page) {
  try {
    (void)file.page(page, PageKind::table);
    return true;
  } catch (const Damage&) {
    return false;
  }
}

std::optional<CatalogueEntry> entryOf(const PageFile& file, const TableRow& row) {
  const std::int64_t type = wholeIn(row.values[2]) & typeBits;
  const std::int64_t id = wholeIn(row.values[0]);
  const auto page = static_cast<std::uint32_t>(id & pageBits);
  const bool isLink = std::ranges::find(linkObjects, type) != linkObjects.end();
  if (type != tableObject && !isLink) {
    // The ids of other objects are not page numbers.
    if (id > 0 && id == page && isDefinition(file, page))
      throw Damage("a table is listed as something else");
    return std::nullopt;
  }
  const auto* name = std::get_if<std::string>(&row.values[1]);
  if (name == nullptr || name->empty()) throw Damage("a table is listed without a name");
  if ((wholeIn(row.values[3]) & systemFlags) != 0 && isSystemName(*name)) return std::nullopt;
  return CatalogueEntry{*name, isLink ? 0 : page};
}

AccessTable catalogueTable(const PageFile& file) {
  try {
    return readDefinition(file, "MSysObjects", cataloguePage);
  } catch (const Damage& damage) {
    throw Unreadable(std::string("its list of tables is damaged: ") + damage.what());
  }
}

}  // namespace

std::vector<CatalogueEntry> readCatalogue(const PageFile& file,
                                          const std::function<void(const LeftOutNote&)>& leftOut) {
  const AccessTable table = catalogueTable(file);
  std::vector<AccessColumn> columns;
  for (const char* name : {"Id", "Name", "Type", "Flags"}) {
    const auto found = std::ranges::find(table.columns, name, &AccessColumn::name);
    if (found == table.columns.end())
      throw Unreadable("its list of tables is damaged: column " + std::string(name) +
                       " is missing");
    columns.push_back(*found);
  }
  std::vector<CatalogueEntry> entries;
  const auto report = [&](LeftOutNote note) {
    note.kind = LeftOutNote::Kind::damage;
    note.place = "the list of tables" + (note.place.empty() ? "" : ", " + note.place);
    leftOut(note);
  };
  const auto add = [&](const TableRow& row) {
    try {
      if (auto entry = entryOf(file, row)) entries.push_back(std::move(*entry));
    } catch (const Damage& damage) {
      report({LeftOutNote::Kind::damage, 0, "", damage.what()});
    }
  };
  LongValues longValues(file);
  (void)readRows(file, table, columns, longValues, {add, report});
  return entries;
}

}  // namespace pelmora::access
