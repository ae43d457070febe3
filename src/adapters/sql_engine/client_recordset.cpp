// SPDX-License-Identifier: MIT
#include "adapters/sql_engine/client_recordset.h"

#include "adapters/sql_dialect/delivered_columns.h"
#include "adapters/sql_engine/engine_error.h"
#include "base/run_time_error.h"
#include "base/text_case.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>
#include <utility>

namespace pelmora::sql {

namespace {

bool isNumber(const std::string& text) {
  double value = 0;
  const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), value);
  return code == std::errc() && end == text.data() + text.size();
}

// SQLite would keep NaN as null and words in a column of numbers.
void requireStorable(const Value& value, const ColumnShape& column) {
  const auto fail = [&](RunTimeError number, const char* what) -> Error {
    return {static_cast<std::int32_t>(number), "Pelmora",
            what + (" in field '" + column.name + "'.")};
  };
  if (const auto* real = std::get_if<double>(&value)) {
    if (std::isnan(*real))
      throw fail(RunTimeError::typeMismatch, "Type mismatch: the value is not a number");
    if (std::isinf(*real)) throw fail(RunTimeError::overflow, "Overflow: an infinite value");
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    if (column.kind == ColumnKind::number && !isNumber(*text)) {
      throw fail(RunTimeError::typeMismatch, "Type mismatch: the text is not a number");
    }
  }
}

Error notUpdatableError() {
  return {notUpdatable, "Pelmora",
          "Current Recordset does not support updating. It must read the rows of one table as they "
          "are."};
}

}  // namespace

ClientRecordset::ClientRecordset(std::shared_ptr<RowSource> source, std::string statement,
                                 LockType lock)
    : source_(std::move(source)), statement_(std::move(statement)), lock_(lock) {
  load();
}

const SelectStatement& ClientRecordset::select() const {
  return std::get<SelectStatement>(*translation_->tree);
}

void ClientRecordset::load() {
  SelectedRows selected = source_->select(statement_);
  if (selected.rows.rows() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
    throw makeError(RunTimeError::overflow);
  }
  translation_ = std::move(selected.translation);
  fields_ = std::move(selected.fields);
  rows_ = std::move(selected.rows);
  row_ = 0;
  current_.assign(fields_.size(), Value());
}

void ClientRecordset::requireOpen() const {
  if (isOpen_) return;
  throw Error(recordsetClosed, "Pelmora", "Operation is not allowed when the object is closed.");
}

std::int32_t ClientRecordset::recordCount() const {
  requireOpen();
  return static_cast<std::int32_t>(rows_.rows());
}

std::size_t ClientRecordset::fieldIndex(std::string_view name) const {
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    if (equalNames(fields_[i], name)) return i;
  }
  throw makeError(RunTimeError::noSuchField);
}

void ClientRecordset::moveNext() {
  if (atEnd()) throw makeError(RunTimeError::endOfRows);
  ++row_;
}

const Value& ClientRecordset::value(std::size_t field) const {
  if (field >= fields_.size()) throw makeError(RunTimeError::noSuchField);
  if (atEnd()) throw makeError(RunTimeError::endOfRows);
  rows_.read(row_, field, current_[field]);
  return current_[field];
}

const TableShape& ClientRecordset::outputTable() {
  if (outputTable_) return *outputTable_;
  const TableName* table = updatableTable(select());
  if (table == nullptr) throw notUpdatableError();
  outputTable_ = source_->tableToChange(table->name);
  return *outputTable_;
}

RowBatch ClientRecordset::newBatch(std::span<const std::string_view> fields) {
  RowBatch batch{{fields.begin(), fields.end()}, {}, RowStore(fields.size())};
  for (const std::string_view field : fields) {
    const ColumnShape* column = findColumn(outputTable(), fields_[fieldIndex(field)]);
    if (column == nullptr) throw notUpdatableError();
    batch.columns.push_back(*column);
  }
  return batch;
}

void ClientRecordset::addRow(std::span<const std::string_view> fields,
                             std::span<const Value> values) {
  keep(fields, values);
  if (lock_ != LockType::optimistic) return;
  const RowBatch row = std::move(kept_.back());
  kept_.clear();
  storeAtOnce(row);
}

bool ClientRecordset::addNewRow(std::string_view field, std::span<const std::string_view> fields,
                                std::span<const Value> values) {
  const auto given =
      std::ranges::find_if(fields, [&](std::string_view name) { return equalNames(name, field); });
  if (given == fields.end() || lock_ != LockType::optimistic)
    throw makeError(RunTimeError::invalidArgument);
  keep(fields, values);
  const RowBatch row = std::move(kept_.back());
  kept_.clear();
  const RowInTheWay inTheWay{statement_, fieldIndex(field),
                             values[static_cast<std::size_t>(given - fields.begin())]};
  return storeAtOnce(row, &inTheWay);
}

void ClientRecordset::keep(std::span<const std::string_view> fields,
                           std::span<const Value> values) {
  requireOpen();
  if (fields.size() != values.size() || fields.empty())
    throw makeError(RunTimeError::invalidArgument);
  if (kept_.empty() || !std::ranges::equal(kept_.back().fields, fields))
    kept_.push_back(newBatch(fields));
  RowBatch& batch = kept_.back();
  for (std::size_t i = 0; i < values.size(); ++i) requireStorable(values[i], batch.columns[i]);
  batch.rows.appendRow(values);
}

bool ClientRecordset::storeAtOnce(const RowBatch& batch, const RowInTheWay* unless) {
  const auto stored = source_->storeAndRead(*outputTable_, batch, *translation_, unless);
  if (!stored) return false;
  for (std::size_t i = 0; i < fields_.size(); ++i) stored->read(0, i, current_[i]);
  rows_.appendRow(current_);
  row_ = rows_.rows() - 1;
  return true;
}

void ClientRecordset::updateBatch() {
  requireOpen();
  if (kept_.empty()) return;
  source_->store(*outputTable_, kept_);
  kept_.clear();
}

void ClientRecordset::requery() {
  requireOpen();
  if (std::ranges::any_of(kept_, [](const RowBatch& batch) { return batch.rows.rows() > 0; })) {
    throw Error(changesPending, "Pelmora",
                "Operation is not allowed in this context: added rows have not been stored yet.");
  }
  kept_.clear();
  load();
}

void ClientRecordset::close() {
  isOpen_ = false;
  rows_.clear();
  kept_.clear();
}

}  // namespace pelmora::sql
