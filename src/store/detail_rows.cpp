// SPDX-License-Identifier: MIT
#include "store/detail_rows.h"

#include "base/number_text.h"
#include "store/curve_schema.h"
#include "store/field_value.h"
#include "store/name_text.h"
#include "store/own_rows.h"
#include "store/reading.h"

#include <vector>

namespace pelmora {
namespace {

DetailTexts readTexts(Connection& curves, const char* table, const std::string& where) {
  DetailTexts texts;
  if (!hasOwnTable(curves, table)) return texts;
  const auto rows = readRows(curves, "Select Name, Value from " + std::string(table) + where);
  for (; !rows->atEnd(); rows->moveNext()) {
    if (isNull(rows->value(0))) continue;
    texts[toText(rows->value(0))] = toText(rows->value(1));
  }
  return texts;
}

// where: a condition that one on the name can follow. owner: the values of the columns before Name.
void changeTexts(Connection& curves, const char* table, const std::string& where,
                 const std::vector<Value>& owner, const DetailTexts& changes) {
  createOwnTable(curves, table, "This database cannot keep the data of certificates.");
  for (const auto& [name, text] : changes) {
    curves.execute("Delete * from " + std::string(table) + where +
                   "Name=" + NameText::quoted(name).literal());
    std::vector<Value> values = owner;
    values.insert(values.end(), {Value(name), Value(text)});
    addOwnRow(curves, table, values);
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
