// Small questions about tables that every kind of copy asks.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"
#include "store/curve_schema.h"

#include <pelmora/calibration/observer.h>

#include <cstdint>
#include <string>

namespace pelmora::calibration {

// Given tables are always there; a database gets each of our own when it is first needed.
[[nodiscard]] bool hasSchemaTable(const ConnectionPtr& curves, const SchemaTable& table);
void makeOwnTable(const ConnectionPtr& curves, const SchemaTable& table);
[[nodiscard]] std::uint64_t countOf(Connection& curves, const std::string& table,
                                    const std::string& where = {});
// Errors: Cancelled.
void showStep(const Observer& observer, const std::string& table);

}  // namespace pelmora::calibration
