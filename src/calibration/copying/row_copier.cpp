// SPDX-License-Identifier: MIT
#include "calibration/copying/row_copier.h"

#include "calibration/row_checksum.h"
#include "calibration/stored_value.h"
#include "store/field_value.h"
#include "store/reading.h"

#include <array>

namespace pelmora::calibration {
namespace {

constexpr std::size_t copiedAtOnce = 1000;
constexpr std::int32_t noSuchField = 3265;

bool hasKey(const SchemaTable& table) { return table.Columns.front().Type == OwnColumnType::key; }

const std::int64_t* wholeIn(const Value& value) { return std::get_if<std::int64_t>(&value); }

}  // namespace

std::vector<std::optional<std::size_t>> fieldsOf(const Recordset& rows, const SchemaTable& table) {
  std::vector<std::optional<std::size_t>> fields;
  for (const OwnColumn& column : table.Columns) {
    try {
      fields.emplace_back(rows.fieldIndex(column.Name));
    } catch (const Error& error) {
      if (error.number() != noSuchField) throw;
      fields.emplace_back();
    }
  }
  return fields;
}

void RowCopier::leaveOut(std::uint64_t number, const std::string& place,
                         const std::string& reason) {
  gaps_.push_back(
      {table_->Name, "row " + std::to_string(number) + " of those read" + place, reason});
}

RowCopier::Row RowCopier::rowOf(const Recordset& rows, std::uint64_t number) {
  Row row(fields_.size());
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    if (!fields_[i]) continue;
    const Value& value = rows.value(*fields_[i]);
    if (isNull(value)) continue;
    if (auto stored = storedValue(value, table_->Columns[i].Type)) {
      row[i] = std::move(*stored);
    } else {
      leaveOut(number, ", column " + table_->Columns[i].Name,
               "'" + valueText(value) + "' cannot be stored there");
    }
  }
  return row;
}

// Given ids have to rise: rows of a table with ids are read in their order.
std::int64_t RowCopier::newId(const Row& row) {
  const auto last = lastIds_.find(table_->Name);
  if (last != lastIds_.end()) return ++last->second;
  // The database says which id it would give: none that a deleted row has had.
  const auto rows = readRows(to_, "Select * from " + table_->Name + " where False");
  rows->addRow(std::span(columns_).subspan(1), std::span(row).subspan(1));
  const std::int64_t id = std::get<std::int64_t>(rows->value(columns_.front()));
  to_.execute("Delete from " + table_->Name + " where [" + std::string(columns_.front()) +
              "]=" + std::to_string(id));
  lastIds_.emplace(table_->Name, id);
  return id;
}

bool RowCopier::takeOwnId(Row& row, std::uint64_t number) {
  if (!hasKey(*table_)) return true;
  const std::int64_t* id = wholeIn(row.front());
  if (id == nullptr || !keys_.insert(*id).second) {
    leaveOut(number, "",
             id == nullptr ? "it has no ID"
                           : "its ID " + std::to_string(*id) + " is that of an earlier row");
    return false;
  }
  if (!ids_.isRenewed(table_->Name)) return true;
  const std::int64_t old = *id;
  const std::int64_t renewed = newId(row);
  ids_.add(table_->Name, old, renewed);
  row.front() = renewed;
  return true;
}

// The one to the owner first.
std::vector<RowReference> RowCopier::references() const {
  std::vector<RowReference> all;
  if (owner_.Table != table_->Name) all.push_back(owner_);
  for (const RowReference& reference : table_->References) {
    if (reference.Column != owner_.Column) all.push_back(reference);
  }
  return all;
}

bool RowCopier::takeIds(Row& row, std::uint64_t number) {
  for (const RowReference& reference : references()) {
    const auto column = columnOf(*table_, reference.Column);
    if (!column || !ids_.isRenewed(reference.Table)) continue;
    const std::int64_t* old = wholeIn(row[*column]);
    if (old == nullptr) continue;
    const auto renewed = ids_.of(reference.Table, *old);
    if (renewed) {
      row[*column] = *renewed;
      continue;
    }
    const std::string none = "there is no row " + std::to_string(*old) + " in " + reference.Table;
    const bool isOwner = reference.Column == owner_.Column;
    leaveOut(number, isOwner ? "" : ", column " + reference.Column, none);
    if (isOwner) return false;
    row[*column] = Value();
  }
  return takeOwnId(row, number);
}

void RowCopier::write(const Row& row) {
  target_->addRow(columns_, row);
  if (++batch_ < copiedAtOnce) return;
  target_->updateBatch();
  batch_ = 0;
}

RowPortion RowCopier::inTarget(const RowPortion& portion, const std::string& ownerTable) const {
  if (portion.owners() == nullptr || !ids_.isRenewed(ownerTable)) return portion;
  std::vector<std::int64_t> owners;
  for (const std::int64_t old : *portion.owners()) {
    if (const auto renewed = ids_.of(ownerTable, old)) owners.push_back(*renewed);
  }
  return RowPortion::of(std::move(owners));
}

// A row counts with its place among those of its owner: the order of points matters. Whether the
// owners come in portions does not.
std::uint64_t RowCopier::checksumOf(Row& row, Places& places) const {
  const auto owner = columnOf(*table_, owner_.Column);
  std::int64_t& place = places[owner ? rowChecksum({&row[*owner], 1}) : 0];
  row.emplace_back(place++);
  const std::uint64_t checksum = rowChecksum(row);
  row.pop_back();
  return checksum;
}

void RowCopier::readBack(const std::string& where, ProofTable& proof) {
  const auto rows = readRows(to_, "Select * from " + table_->Name + where);
  const auto fields = fieldsOf(*rows, *table_);
  Row row(fields.size());
  for (Places places; !rows->atEnd(); rows->moveNext()) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
      row[i] = fields[i] ? rows->value(*fields[i]) : Value();
      if (isNull(row[i])) ++proof.empty;
    }
    proof.checksumWritten += checksumOf(row, places);
    ++proof.written;
  }
}

void RowCopier::copy(const SchemaTable& table, const std::string& owner,
                     const std::string& ownerTable, const RowPortion& portion, ProofTable& proof) {
  table_ = &table;
  owner_ = {owner, ownerTable};
  columns_.clear();
  for (const OwnColumn& column : table.Columns) columns_.emplace_back(column.Name);
  keys_.clear();
  {
    const auto rows = readRows(from_, "Select * from " + table.Name + portion.where(owner));
    fields_ = fieldsOf(*rows, table);
    target_ = openForBatch(to_, "Select * from " + table.Name + " where False");
    for (Places places; !rows->atEnd(); rows->moveNext()) {
      ++proof.read;
      Row row = rowOf(*rows, proof.read);
      if (!takeIds(row, proof.read)) continue;
      write(row);
      proof.checksumRead += checksumOf(row, places);
    }
  }
  target_->updateBatch();
  batch_ = 0;
  target_.reset();
  readBack(inTarget(portion, ownerTable).where(owner), proof);
}

}  // namespace pelmora::calibration
