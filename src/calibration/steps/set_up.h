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

// The set-up of a meter for a fluid, made with its fluid and operator rows where it is missing. An
// existing one is reused whatever its stand, position, operator and date. Returns its id.
//
// OperatorName becomes "Unknown" where it is empty and a set-up is made.
[[nodiscard]] std::int32_t findOrAddSetUp(Connection& connection, const SetUp& setUp,
                                          NameText& OperatorName);

// What a set-up is to say; empty texts and numbers below 0 leave what is there.
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
