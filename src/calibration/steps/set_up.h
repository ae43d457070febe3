// Calibration set-ups: a meter on a stand with a fluid and an operator.
// SPDX-License-Identifier: MIT
#pragma once

#include "store/connection.h"
#include "store/name_text.h"

#include <cstdint>
#include <string>
#include <vector>

namespace pelmora::calibration::steps {

struct SetUp {
  std::int32_t MeterID;
  std::int16_t StandID, PositionID;
  NameText FluidName;
};

// Finds the set-up of a meter for a fluid, whatever its stand, position, operator and date. Adds
// it, and its fluid and operator rows, if there is none. Returns its id.
//
// OperatorName becomes "Unknown" if it is empty and a set-up is added.
[[nodiscard]] std::int32_t findOrAddSetUp(Connection& connection, const SetUp& setUp,
                                          NameText& OperatorName);

// New entries of a set-up. Empty texts and numbers below 0 leave an entry as it is.
struct SetUpEntries {
  NameText OperatorName;
  std::int16_t StandID = -1, PositionID = -1;
  std::string DateTaken = {};  // in the form of shortDateText()
};
void changeSetUp(Connection& connection, std::int32_t setUpID, const SetUpEntries& entries);

// The ids of a meter's set-ups, as texts, by stand.
[[nodiscard]] std::vector<std::string> setUpsOf(Connection& connection, std::int32_t MeterID);

// The jobs of a set-up, as texts, ascending. False where it has none; `jobs` stays as it is then.
bool jobsOf(Connection& connection, const std::string& calSetupId, std::vector<std::string>& jobs);

}  // namespace pelmora::calibration::steps
