// SPDX-License-Identifier: MIT
#include "store/statement_rows.h"

#include "base/number_text.h"
#include "store/curve_schema.h"
#include "store/field_value.h"
#include "store/name_text.h"
#include "store/own_rows.h"
#include "store/reading.h"

#include <array>
#include <string_view>

namespace pelmora {
namespace {

constexpr const char* cannotKeep = "This database cannot keep uncertainties and fluids.";

std::string textAt(const Recordset& rows, std::string_view column) {
  return toText(rows.value(column));
}

}  // namespace

std::optional<StatementRow> readStandUncertainty(Connection& curves, std::int32_t MeterID) {
  if (!hasOwnTable(curves, standUncertaintyTable)) return std::nullopt;
  const auto rows = readRows(curves, "Select * from " + std::string(standUncertaintyTable) +
                                         " where MeterID=" + numberText(MeterID));
  if (rows->atEnd()) return std::nullopt;
  return StatementRow{textAt(*rows, "SourceFile"), textAt(*rows, "Content"),
                      textAt(*rows, "StoredAt"), textAt(*rows, "UserName")};
}

void replaceStandUncertainty(Connection& curves, std::int32_t MeterID,
                             const std::optional<StatementRow>& row) {
  if (row) createOwnTable(curves, standUncertaintyTable, cannotKeep);
  if (!hasOwnTable(curves, standUncertaintyTable)) return;
  curves.execute("Delete * from " + std::string(standUncertaintyTable) +
                 " where MeterID=" + numberText(MeterID));
  if (!row) return;
  addOwnRow(curves, standUncertaintyTable,
            std::array{Value(std::int64_t{MeterID}), Value(row->SourceFile), Value(row->Content),
                       Value(row->StoredAt), Value(row->UserName)});
}

std::vector<FluidRow> readFluidLaws(Connection& curves) {
  std::vector<FluidRow> list;
  if (!hasOwnTable(curves, fluidLawTable)) return list;
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
  if (isNew) createOwnTable(curves, fluidLawTable, cannotKeep);
  if (!hasOwnTable(curves, fluidLawTable)) return false;
  const std::string found =
      " from " + std::string(fluidLawTable) + " where Name=" + NameText::quoted(row.Name).literal();
  const bool wasThere = !readRows(curves, "Select Name" + found)->atEnd();
  curves.execute("Delete *" + found);
  if (isNew) {
    addOwnRow(
        curves, fluidLawTable,
        std::array{Value(row.Name), Value(row.Content), Value(row.StoredAt), Value(row.UserName)});
  }
  return wasThere;
}

}  // namespace pelmora
