// SPDX-License-Identifier: MIT
#include "calibration/copying/named_rows.h"

#include "base/text_case.h"
#include "base/text_flaw.h"
#include "calibration/copying/row_copier.h"
#include "calibration/row_checksum.h"
#include "calibration/stored_value.h"
#include "store/field_value.h"
#include "store/reading.h"

#include <map>
#include <span>
#include <utility>

namespace pelmora::calibration {
namespace {

struct NameLess {
  bool operator()(const std::string& a, const std::string& b) const {
    return compareTexts(a, b) < 0;
  }
};

struct NamedRow {
  std::int64_t id = 0;
  std::string name;
  std::vector<Value> values;  // of all columns but the id
  std::vector<Value> others;  // of these all but the name, which may differ in case
};

class NamedTable {
 public:
  NamedTable(const SchemaTable& table, const std::string& nameColumn)
      : table_(table),
        name_(*columnOf(table, nameColumn)),
        firstValue_(table.Columns.front().Type == OwnColumnType::key ? 1 : 0) {
    for (const OwnColumn& column : table.Columns) columns_.emplace_back(column.Name);
  }

  [[nodiscard]] std::vector<NamedRow> rowsOf(Connection& connection) const {
    std::vector<NamedRow> all;
    const auto rows = readRows(connection, "Select * from " + table_.Name);
    const auto fields = fieldsOf(*rows, table_);
    for (; !rows->atEnd(); rows->moveNext()) {
      NamedRow row;
      for (std::size_t i = 0; i < fields.size(); ++i) {
        Value value = fields[i] ? rows->value(*fields[i]) : Value();
        if (i == name_) row.name = toText(value);
        if (i >= firstValue_) {
          if (i != name_) row.others.push_back(value);
          row.values.push_back(std::move(value));
        } else if (const auto* id = std::get_if<std::int64_t>(&value)) {
          row.id = *id;
        }
      }
      all.push_back(std::move(row));
    }
    return all;
  }
  // The id of the new row; 0 for a table without ids.
  [[nodiscard]] std::int64_t add(Connection& connection, const NamedRow& row) const {
    const auto rows = readRows(connection, "Select * from " + table_.Name + " where False");
    rows->addRow(std::span(columns_).subspan(firstValue_), row.values);
    return firstValue_ == 0 ? 0 : std::get<std::int64_t>(rows->value(columns_.front()));
  }

 private:
  const SchemaTable& table_;
  std::size_t name_, firstValue_;
  std::vector<std::string_view> columns_;
};

using RowsByName = std::map<std::string, NamedRow, NameLess>;

RowsByName byName(std::vector<NamedRow> rows) {
  RowsByName known;
  for (NamedRow& row : rows) {
    std::string name = row.name;
    known.emplace(std::move(name), std::move(row));
  }
  return known;
}

}  // namespace

ProofTable copyNamedRows(Connection& from, Connection& to, const SchemaTable& table,
                         const std::string& nameColumn, const ChoosesRow& isChosen, NewIds& ids,
                         std::vector<ProofGap>& gaps) {
  const NamedTable named(table, nameColumn);
  std::vector<NamedRow> chosen = named.rowsOf(from);
  std::erase_if(chosen, [&](const NamedRow& row) { return !isChosen(row.id, row.name); });
  RowsByName known = byName(named.rowsOf(to));
  ids.renew(table.Name);
  for (const NamedRow& row : chosen) {
    const auto found = known.find(row.name);
    if (found == known.end()) {
      NamedRow added = row;
      added.id = named.add(to, row);
      ids.add(table.Name, row.id, added.id);
      known.emplace(added.name, added);
      continue;
    }
    ids.add(table.Name, row.id, found->second.id);
    if (found->second.others == row.others) continue;
    gaps.push_back({table.Name, "'" + shortened(row.name) + "'",
                    "the target has another row of that name, which stays"});
  }
  ProofTable proof;
  proof.name = table.Name;
  proof.expected = chosen.size();
  proof.read = chosen.size();
  known = byName(named.rowsOf(to));
  for (const NamedRow& row : chosen) {
    proof.checksumRead += rowChecksum(row.others);
    const auto found = known.find(row.name);
    if (found == known.end()) continue;
    ++proof.written;
    proof.checksumWritten += rowChecksum(found->second.others);
    for (const Value& value : found->second.values) proof.empty += isNull(value) ? 1 : 0;
  }
  return proof;
}

}  // namespace pelmora::calibration
