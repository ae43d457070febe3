// SPDX-License-Identifier: MIT
#include "adapters/ado/ado_recordset.h"

#include "adapters/ado/ado_value.h"
#include "base/run_time_error.h"

#include <algorithm>

namespace pelmora::ado {
namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool equalNames(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, [](char x, char y) { return lower(x) == lower(y); });
}

}  // namespace

AdoRecordset::AdoRecordset(const LateBound& connection, const std::string& statement,
                           CursorType cursor, LockType lock)
    : recordset_(LateBound::create(L"ADODB.Recordset")) {
  recordset_.isPartOf(connection);
  recordset_.call(L"Open", {Variant(statement), Variant(connection.get()),
                            Variant(static_cast<LONG>(cursor)), Variant(static_cast<LONG>(lock))});
  isOpen_ = true;
  readFields();
}

AdoRecordset::~AdoRecordset() {
  try {
    close();
  } catch (...) {  // the rows are no longer wanted; a record set that will not close is dropped
  }
}

void AdoRecordset::readFields() {
  fields_.clear();
  LateBound fields = recordset_.objectProperty(L"Fields");
  const LONG count = fields.numberProperty(L"Count");
  for (LONG i = 0; i < count; ++i) {
    LateBound field = fields.objectProperty(L"Item", {Variant(i)});
    std::string name = field.textProperty(L"Name");
    fields_.push_back({std::move(name), std::move(field), {}});
  }
}

std::int32_t AdoRecordset::recordCount() const { return recordset_.numberProperty(L"RecordCount"); }

std::size_t AdoRecordset::fieldIndex(std::string_view name) const {
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    if (equalNames(fields_[i].name, name)) return i;
  }
  throw makeError(RunTimeError::noSuchField);
}

bool AdoRecordset::atEnd() const { return recordset_.numberProperty(L"EOF") != 0; }

void AdoRecordset::moveNext() { recordset_.call(L"MoveNext"); }

const Value& AdoRecordset::value(std::size_t field) const {
  if (field >= fields_.size()) throw makeError(RunTimeError::noSuchField);
  fields_[field].current = valueFrom(fields_[field].object.property(L"Value"));
  return fields_[field].current;
}

void AdoRecordset::addRow(std::span<const std::string_view> fields, std::span<const Value> values) {
  if (fields.size() != values.size() || fields.empty())
    throw makeError(RunTimeError::invalidArgument);
  recordset_.call(L"AddNew");
  for (std::size_t i = 0; i < fields.size(); ++i) {
    fields_[fieldIndex(fields[i])].object.setProperty(L"Value", variantFrom(values[i]));
  }
  recordset_.call(L"Update");
}

void AdoRecordset::updateBatch() { recordset_.call(L"UpdateBatch"); }

void AdoRecordset::requery() {
  recordset_.call(L"Requery");
  readFields();
}

void AdoRecordset::close() {
  if (!isOpen_) return;
  isOpen_ = false;
  recordset_.call(L"Close");
}

}  // namespace pelmora::ado
