// SPDX-License-Identifier: MIT
#include "store/detail_rows.h"

#include "base/number_text.h"
#include "store/curve_schema.h"
#include "store/field_value.h"
#include "store/name_text.h"
#include "store/reading.h"
#include "store/table_design.h"

#include <string_view>
#include <vector>

namespace pelmora {
namespace {

bool hasDetails(Connection& curves, const char* table) {
  const auto* design = dynamic_cast<const TableDesign*>(&curves);
  return design != nullptr && design->hasTable(table);
}

void createDetails(Connection& curves, const SchemaTable& table) {
  auto* design = dynamic_cast<TableDesign*>(&curves);
  constexpr std::int32_t notSupported = 3251;
  if (design == nullptr)
    throw Error(notSupported, "Pelmora", "This database cannot keep the data of certificates.");
  design->createTable(table.design());
  for (const TableIndex& index : table.designIndexes()) design->createIndex(index);
}

DetailTexts readTexts(Connection& curves, const char* table, const std::string& where) {
  DetailTexts texts;
  if (!hasDetails(curves, table)) return texts;
  const auto rows = readRows(curves, "Select Name, Value from " + std::string(table) + where);
  for (; !rows->atEnd(); rows->moveNext()) {
    if (isNull(rows->value(0))) continue;
    texts[toText(rows->value(0))] = isNull(rows->value(1)) ? "" : toText(rows->value(1));
  }
  return texts;
}

// `where` ends in a condition; `owner` is the value of the columns before Name.
void changeTexts(Connection& curves, const char* table, const std::string& where,
                 const std::vector<Value>& owner, const DetailTexts& changes) {
  const SchemaTable& schema = schemaTable(table);
  createDetails(curves, schema);
  std::vector<std::string_view> fields;
  for (const OwnColumn& column : schema.Columns) fields.emplace_back(column.Name);
  for (const auto& [name, text] : changes) {
    curves.execute("Delete * from " + std::string(table) + where +
                   "Name=" + NameText::quoted(name).literal());
    std::vector<Value> values = owner;
    values.insert(values.end(), {Value(name), Value(text)});
    // A record set rather than a statement: texts may hold anything.
    readRows(curves, "Select * from " + std::string(table) + " where 1=0")->addRow(fields, values);
  }
}

}  // namespace

DetailTexts readDetails(Connection& curves, std::int32_t MeterID) {
  return readTexts(curves, detailTable, " where MeterID=" + numberText(MeterID));
}

DetailTexts readLaboratory(Connection& curves) { return readTexts(curves, laboratoryTable, ""); }

void changeDetails(Connection& curves, std::int32_t MeterID, const DetailTexts& changes) {
  changeTexts(curves, detailTable, " where MeterID=" + numberText(MeterID) + " AND ",
              {Value(std::int64_t{MeterID})}, changes);
}

void changeLaboratory(Connection& curves, const DetailTexts& changes) {
  changeTexts(curves, laboratoryTable, " where ", {}, changes);
}

}  // namespace pelmora
