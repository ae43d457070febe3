// The tables of a curve database and of a stand, for rendering without a database.
// SPDX-License-Identifier: MIT
#pragma once

#include "adapters/sql_dialect/catalogue.h"
#include "base/text_case.h"

#include <string>

namespace pelmora::test {

class FixedCatalogue : public sql::Catalogue {
 public:
  FixedCatalogue() {
    using enum sql::ColumnKind;
    tables_ = {
        {"meter",
         {{"ID", number},
          {"SerialNumber", text},
          {"SerialNumberAdjusted", text},
          {"ReCalID", number}}},
        {"series", {{"ID", number}, {"name", text}, {"meterid", number}}},
        {"raw1", {{"seriesID", number}, {"Roshko", number}, {"Strouhal", number}}},
        {"Fluids", {{"ID", number}, {"Name", text}}},
        {"CalSetup",
         {{"ID", number},
          {"MeterID", number},
          {"Stand", number},
          {"FluidID", number},
          {"DateTaken", text}}},
        {"CalDataPoint",
         {{"CalSetupID", number}, {"JobRecordID", asStored}, {"V1", number}, {"V2", number}}},
        {"DataPoint", {{"JobRecordID", text}, {"V1", number}, {"V2", number}}}};
  }

  [[nodiscard]] std::optional<sql::TableShape> findTable(std::string_view /*database*/,
                                                         std::string_view name) const override {
    for (const sql::TableShape& table : tables_) {
      if (equalNames(table.name, name)) return table;
    }
    return std::nullopt;
  }

 private:
  std::vector<sql::TableShape> tables_;
};

}  // namespace pelmora::test
