// What certificates state besides measured numbers, as named texts in our own tables.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"

#include <cstdint>
#include <map>
#include <string>

namespace pelmora {

using DetailTexts = std::map<std::string, std::string>;

// Of a calibration (pelmora_detail). Empty if the table is missing.
[[nodiscard]] DetailTexts readDetails(Connection& curves, std::int32_t MeterID);
// Of the laboratory (pelmora_laboratory).
[[nodiscard]] DetailTexts readLaboratory(Connection& curves);

// Stores every text of `changes` in place of the one with its name. Creates the table if needed.
//
// Errors: Error 3251 if the database cannot have own tables.
void changeDetails(Connection& curves, std::int32_t MeterID, const DetailTexts& changes);
void changeLaboratory(Connection& curves, const DetailTexts& changes);

}  // namespace pelmora
