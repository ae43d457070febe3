// The tables of what is stated as uncertainty, and of what it consists of.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_tables.h"

#include <optional>
#include <string>
#include <vector>

namespace pelmora::report {

// The columns of a stated uncertainty, and its cells in the same order; empty without one.
[[nodiscard]] std::vector<std::string> uncertaintyColumns();
[[nodiscard]] std::vector<Value> uncertaintyCells(
    const std::optional<StatedUncertainty>& uncertainty);

[[nodiscard]] ReportTable uncertaintyTable(const Report& report);
[[nodiscard]] ReportTable budgetTable(const Report& report);

}  // namespace pelmora::report
