// Texts that budgets and flows are computed from, in our own tables.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pelmora {

struct StatementRow {
  std::string SourceFile, Content;
  std::string StoredAt, UserName;
};

// What a stand contributes to the uncertainty of a calibration; nothing if nothing is stored.
[[nodiscard]] std::optional<StatementRow> readStandUncertainty(Connection& curves,
                                                               std::int32_t MeterID);
// Replaces an earlier one; without a row, removes it. Creates the table if needed.
//
// Errors: Error 3251 if the database cannot have own tables.
void replaceStandUncertainty(Connection& curves, std::int32_t MeterID,
                             const std::optional<StatementRow>& row);

struct FluidRow {
  std::string Name, Content, StoredAt, UserName;
};

// Viscosity laws, by name.
[[nodiscard]] std::vector<FluidRow> readFluidLaws(Connection& curves);
// Replaces the law of that name, without regard to case; empty content removes it. Returns whether
// there was one. Creates the table if needed.
//
// Errors: as for replaceStandUncertainty().
bool replaceFluidLaw(Connection& curves, const FluidRow& row);

}  // namespace pelmora
