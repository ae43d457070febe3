// SPDX-License-Identifier: MIT
#include "adapters/sqlite/salvage/table_salvage.h"

#include "adapters/sqlite/sqlite_expression.h"
#include "base/text_case.h"
#include "adapters/sqlite/prepared_statement.h"
#include "adapters/sqlite/salvage/field_binding.h"
#include "adapters/sqlite/salvage/row_print.h"

#include <sqlite3.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace pelmora::sqlite::salvage {
namespace {

// The row's id, which is the last field of a key; nothing if it is none.
const std::int64_t* idOf(const Record& key, const StoredIndex& index) {
  if (key.size() != index.columns.size() + 1) return nullptr;
  return std::get_if<std::int64_t>(&key.back());
}

}  // namespace

TableSalvage::TableSalvage(const StoredTable& table, int number, const PageFile& file,
                           PageClaims& claims, const DatabaseHandle& output, DamageList& damage)
    : table_(table),
      entries_("temp.salvage_" + std::to_string(number)),
      claims_(claims),
      walk_(file, claims),
      output_(output),
      damage_(damage) {}

TableSalvage::~TableSalvage() = default;

UseDamage TableSalvage::damageOf(const std::string& what) {
  return [this, what](PageNumber page) {
    damage_.add("Page " + std::to_string(page) + " of " + what + " is damaged");
  };
}

// A column with the affinity TEXT never holds a number, because SQLite stores it as text. A row
// with a number there comes from another table.
//
// Source: https://www.sqlite.org/datatype3.html, sections 3 and 3.1.
void TableSalvage::findTextColumns() {
  PreparedStatement types(output_.get(),
                          "SELECT type LIKE '%CHAR%' OR type LIKE '%CLOB%' OR type LIKE '%TEXT%', "
                          "type LIKE '%INT%' FROM pragma_table_info(?1) ORDER BY cid");
  types.bind(1, std::string_view(table_.name));
  while (types.step()) {
    const bool isInteger = sqlite3_column_int(types.get(), 1) != 0;
    isText_.push_back(sqlite3_column_int(types.get(), 0) != 0 && !isInteger);
  }
  isText_.resize(table_.columns.size());
}

bool TableSalvage::hasShape(const Record& row) const {
  if (row.size() > table_.columns.size()) return false;
  for (std::size_t i = 0; i < row.size(); ++i) {
    const bool isNumber =
        std::holds_alternative<std::int64_t>(row[i]) || std::holds_alternative<double>(row[i]);
    if (isText_[i] && isNumber) return false;
  }
  const auto key = static_cast<std::size_t>(table_.key);
  return table_.key < 0 || (key < row.size() && std::holds_alternative<std::monostate>(row[key]));
}

Field TableSalvage::fieldOf(std::int64_t rowid, const Record& row, std::size_t column) const {
  if (table_.key >= 0 && column == static_cast<std::size_t>(table_.key)) return rowid;
  return column < row.size() ? row[column] : Field();
}

TableSalvage::Summary TableSalvage::summaryOfIndex(const StoredIndex& index) {
  Summary summary;
  bool isRight = true;
  const auto use = [&](std::int64_t, const Record& key) {
    const auto* id = idOf(key, index);
    if (id == nullptr) {
      isRight = false;
      return;
    }
    RowPrint print;
    for (const Field& field : key) print.add(field);
    summary.print += print.value();
    ++summary.rows;
    largestId_ = std::max(largestId_, *id);
  };
  summary.isWhole =
      walk_.read(index.root, TreeKind::index, use, damageOf("index " + index.name)) && isRight;
  return summary;
}

TableSalvage::Summary TableSalvage::summaryOfRows() {
  Summary summary;
  bool isRight = true;
  const auto use = [&](std::int64_t rowid, const Record& row) {
    if (!hasShape(row)) {
      isRight = false;
      return;
    }
    RowPrint print;
    if (index_ != nullptr) {
      for (const std::size_t column : index_->columns) print.add(fieldOf(rowid, row, column));
    }
    print.add(rowid);
    summary.print += print.value();
    ++summary.rows;
    largestId_ = std::max(largestId_, rowid);
  };
  summary.isWhole =
      walk_.read(table_.root, TreeKind::table, use, damageOf("table " + table_.name)) && isRight;
  return summary;
}

// One that is whole, or else any.
void TableSalvage::chooseIndex() {
  for (const StoredIndex& index : table_.indexes) {
    const Summary summary = summaryOfIndex(index);
    if (index_ != nullptr && (indexed_.isWhole || !summary.isWhole)) continue;
    index_ = &index;
    indexed_ = summary;
  }
}

void TableSalvage::bringOver() {
  std::string columns = "rowid", values = "?1";
  for (std::size_t i = 0; i < table_.columns.size(); ++i) {
    if (static_cast<int>(i) == table_.key) continue;
    columns += ", " + quotedName(table_.columns[i]);
    values += ", ?" + std::to_string(i + 2);
  }
  insert_ = std::make_unique<PreparedStatement>(
      output_.get(), "INSERT OR IGNORE INTO main." + quotedName(table_.name) + " (" + columns +
                         ") VALUES (" + values + ")");
  findTextColumns();
  chooseIndex();
  rows_ = summaryOfRows();
  const bool isSure =
      rows_.isWhole &&
      (!indexed_.isWhole || (rows_.rows == indexed_.rows && rows_.print == indexed_.print));
  if (!isSure && index_ != nullptr) loadEntries();
  if (rows_.isWhole && indexed_.isWhole && !isSure) {
    damage_.add("Rows of table " + table_.name + " and its index " + index_->name + " differ");
    contradicts_ = true;
  }
  (void)walk_.read(
      table_.root, TreeKind::table,
      [this](std::int64_t rowid, const Record& row) { take(rowid, row); }, [](PageNumber) {});
}

void TableSalvage::loadEntries() {
  const std::size_t fields = index_->columns.size();
  const std::string names = numberedNames("c", fields);
  output_.run(("CREATE TABLE " + entries_ + " (r INTEGER PRIMARY KEY, " + names + ")").c_str());
  std::string values = "?1";
  for (std::size_t i = 0; i < fields; ++i) values += ", ?" + std::to_string(i + 2);
  PreparedStatement add(output_.get(),
                        "INSERT OR IGNORE INTO " + entries_ + " VALUES (" + values + ")");
  (void)walk_.read(
      index_->root, TreeKind::index,
      [&](std::int64_t, const Record& key) {
        const auto* id = idOf(key, *index_);
        if (id == nullptr) return;
        add.bind(1, *id);
        for (std::size_t i = 0; i < fields; ++i) bindField(add, static_cast<int>(i + 2), key[i]);
        add.step();
        add.reset();
      },
      [](PageNumber) {});
  entry_ = std::make_unique<PreparedStatement>(
      output_.get(), "SELECT " + names + " FROM " + entries_ + " WHERE r = ?1");
  forget_ = std::make_unique<PreparedStatement>(output_.get(),
                                                "DELETE FROM " + entries_ + " WHERE r = ?1");
  hasEntries_ = true;
}

std::optional<bool> TableSalvage::agrees(std::int64_t rowid, const Record& row) {
  entry_->bind(1, rowid);
  std::optional<bool> result;
  if (entry_->step()) {
    result = true;
    for (std::size_t i = 0; i < index_->columns.size(); ++i) {
      const Field indexed = fieldAt(*entry_, static_cast<int>(i));
      if (!areEqual(indexed, fieldOf(rowid, row, index_->columns[i]))) result = false;
    }
  }
  entry_->reset();
  return result;
}

bool TableSalvage::take(std::int64_t rowid, const Record& row) {
  if (!hasShape(row)) return false;
  if (hasEntries_) {
    const auto isKnown = agrees(rowid, row);
    if (isKnown ? !*isKnown : indexed_.isWhole) {
      contradicts_ = true;
      return false;
    }
  }
  if (!insert(rowid, row)) return false;
  if (hasEntries_) {
    forget_->bind(1, rowid);
    forget_->step();
    forget_->reset();
  }
  ++read_;
  return true;
}

bool TableSalvage::insert(std::int64_t rowid, const Record& row) {
  insert_->forgetValues();
  insert_->bind(1, rowid);
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (static_cast<int>(i) != table_.key) bindField(*insert_, static_cast<int>(i + 2), row[i]);
  }
  insert_->step();
  insert_->reset();
  return sqlite3_changes(output_.get()) == 1;
}

bool TableSalvage::isPageOfThis(PageNumber page) {
  if (rows_.isWhole || !hasEntries_ || !indexed_.isWhole || contradicts_) return false;
  bool isOfThis = true;
  const bool isRight = walk_.readLeaf(page, [&](std::int64_t rowid, const Record& row) {
    isOfThis = isOfThis && row.size() == table_.columns.size() && hasShape(row) &&
               agrees(rowid, row).value_or(false);
  });
  return isRight && isOfThis;
}

void TableSalvage::adopt(PageNumber page) {
  (void)walk_.readLeaf(page, [this](std::int64_t rowid, const Record& row) { take(rowid, row); });
  claims_.claim(page);
}

// Where the index holds every column.
void TableSalvage::takeFromIndex() {
  std::vector<int> fieldOfColumn;
  for (std::size_t column = 0; column < table_.columns.size(); ++column) {
    const auto at = std::find(index_->columns.begin(), index_->columns.end(), column);
    const bool isKey = static_cast<int>(column) == table_.key;
    if (!isKey && at == index_->columns.end()) return;
    fieldOfColumn.push_back(isKey ? -1 : static_cast<int>(at - index_->columns.begin()));
  }
  PreparedStatement entries(output_.get(), "SELECT " + numberedNames("c", index_->columns.size()) +
                                               ", r FROM " + entries_);
  Record row(table_.columns.size());
  while (entries.step()) {
    for (std::size_t column = 0; column < row.size(); ++column) {
      row[column] = fieldOfColumn[column] < 0 ? Field() : fieldAt(entries, fieldOfColumn[column]);
    }
    const std::int64_t rowid =
        sqlite3_column_int64(entries.get(), static_cast<int>(index_->columns.size()));
    if (insert(rowid, row)) ++fromIndex_;
  }
  read_ += fromIndex_;
  output_.run(("DELETE FROM " + entries_ + " WHERE r IN (SELECT rowid FROM main." +
               quotedName(table_.name) + ")")
                  .c_str());
}

void TableSalvage::noteLost(SalvagedTable& counts) {
  PreparedStatement count(output_.get(), "SELECT COUNT(*) FROM " + entries_);
  count.step();
  counts.KnownLost = static_cast<std::uint64_t>(sqlite3_column_int64(count.get(), 0));
  for (std::size_t i = 0; i < index_->columns.size(); ++i) {
    if (!equalNames(table_.columns[index_->columns[i]], "seriesID")) continue;
    const std::string series = "c" + std::to_string(i);
    PreparedStatement note(output_.get(), "INSERT INTO temp.salvage_lost SELECT ?1, " + series +
                                              ", COUNT(*) FROM " + entries_ + " GROUP BY " +
                                              series);
    note.bind(1, std::string_view(table_.name));
    note.step();
  }
}

std::vector<std::string> TableSalvage::lostNames() const {
  std::vector<std::string> names;
  if (!hasEntries_ || table_.key < 0) return names;
  constexpr const char* most = " LIMIT 20";
  PreparedStatement entries(
      output_.get(),
      "SELECT r, " + numberedNames("c", index_->columns.size()) + " FROM " + entries_ + most);
  while (entries.step()) {
    std::string name = table_.name + " " + std::to_string(sqlite3_column_int64(entries.get(), 0));
    for (std::size_t i = 0; i < index_->columns.size(); ++i) {
      const auto* text = reinterpret_cast<const char*>(
          sqlite3_column_text(entries.get(), static_cast<int>(i + 1)));
      name += (i == 0 ? ": " : ", ") + table_.columns[index_->columns[i]] + " '" +
              (text == nullptr ? "" : text) + "'";
    }
    names.push_back(std::move(name));
  }
  return names;
}

SalvagedTable TableSalvage::finish() {
  SalvagedTable counts{table_.name, 0, 0, std::nullopt, 0};
  if (hasEntries_) {
    if (!contradicts_) takeFromIndex();
    noteLost(counts);
  }
  counts.Read = read_;
  counts.FromIndex = fromIndex_;
  if (contradicts_) {
    // One of them may belong to another table: what is lost is not known.
  } else if (indexed_.isWhole) {
    counts.Lost = indexed_.rows - std::min(indexed_.rows, read_);
  } else if (rows_.isWhole) {
    counts.Lost = rows_.rows - std::min(rows_.rows, read_);
  }
  if (counts.Lost) counts.KnownLost = *counts.Lost;
  return counts;
}

}  // namespace pelmora::sqlite::salvage
