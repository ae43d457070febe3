// SPDX-License-Identifier: MIT
#include "store/statement_rows.h"

#include "base/number_text.h"
#include "store/curve_schema.h"
#include "store/field_value.h"
#include "store/name_text.h"
#include "store/reading.h"
#include "store/table_design.h"

#include <array>
#include <string_view>

namespace pelmora {
namespace {

bool hasStatements(Connection& curves, const char* table) {
  const auto* design = dynamic_cast<const TableDesign*>(&curves);
  return design != nullptr && design->hasTable(table);
}

void createStatements(Connection& curves, const char* name) {
  auto* design = dynamic_cast<TableDesign*>(&curves);
  constexpr std::int32_t cannotKeep = 3251;
  if (design == nullptr)
    throw Error(cannotKeep, "Pelmora", "This database cannot keep uncertainties and fluids.");
  const SchemaTable& table = schemaTable(name);
  design->createTable(table.design());
  for (const TableIndex& index : table.designIndexes()) design->createIndex(index);
}

std::string textAt(const Recordset& rows, std::string_view column) {
  const Value value = rows.value(column);
  return isNull(value) ? "" : toText(value);
}

void addStatement(Connection& curves, const char* table, std::span<const Value> values) {
  std::vector<std::string_view> fields;
  for (const OwnColumn& column : schemaTable(table).Columns) fields.emplace_back(column.Name);
  // A record set rather than a statement: texts may hold anything.
  readRows(curves, "Select * from " + std::string(table) + " where 1=0")->addRow(fields, values);
}

}  // namespace

std::optional<StatementRow> readStandUncertainty(Connection& curves, std::int32_t MeterID) {
  if (!hasStatements(curves, standUncertaintyTable)) return std::nullopt;
  const auto rows = readRows(curves, "Select * from " + std::string(standUncertaintyTable) +
                                         " where MeterID=" + numberText(MeterID));
  if (rows->atEnd()) return std::nullopt;
  return StatementRow{textAt(*rows, "SourceFile"), textAt(*rows, "Content"),
                      textAt(*rows, "StoredAt"), textAt(*rows, "UserName")};
}

void replaceStandUncertainty(Connection& curves, std::int32_t MeterID,
                             const std::optional<StatementRow>& row) {
  if (row) createStatements(curves, standUncertaintyTable);
  if (!hasStatements(curves, standUncertaintyTable)) return;
  curves.execute("Delete * from " + std::string(standUncertaintyTable) +
                 " where MeterID=" + numberText(MeterID));
  if (!row) return;
  addStatement(curves, standUncertaintyTable,
               std::array{Value(std::int64_t{MeterID}), Value(row->SourceFile), Value(row->Content),
                          Value(row->StoredAt), Value(row->UserName)});
}

std::vector<FluidRow> readFluidLaws(Connection& curves) {
  std::vector<FluidRow> list;
  if (!hasStatements(curves, fluidLawTable)) return list;
  const auto rows =
      readRows(curves, "Select * from " + std::string(fluidLawTable) + " ORDER BY Name ASC");
  for (; !rows->atEnd(); rows->moveNext()) {
    list.push_back({textAt(*rows, "Name"), textAt(*rows, "Content"), textAt(*rows, "StoredAt"),
                    textAt(*rows, "UserName")});
  }
  return list;
}

bool replaceFluidLaw(Connection& curves, const FluidRow& row) {
  const bool isNew = !row.Content.empty();
  if (isNew) createStatements(curves, fluidLawTable);
  if (!hasStatements(curves, fluidLawTable)) return false;
  const std::string found =
      " from " + std::string(fluidLawTable) + " where Name=" + NameText::quoted(row.Name).literal();
  const bool wasThere = !readRows(curves, "Select Name" + found)->atEnd();
  curves.execute("Delete *" + found);
  if (isNew) {
    addStatement(
        curves, fluidLawTable,
        std::array{Value(row.Name), Value(row.Content), Value(row.StoredAt), Value(row.UserName)});
  }
  return wasThere;
}

}  // namespace pelmora
