// What is recorded for a certificate, as the writers of a report need it.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <array>
#include <string>
#include <vector>

namespace pelmora::report {

// The details that state the conditions of the calibration.
inline constexpr std::array conditionDetails{"ambient-temperature", "ambient-humidity",
                                             "ambient-pressure", "line-pressure"};

// A detail of the calibration or the laboratory; empty if it is not recorded.
[[nodiscard]] std::string detailOf(const Report& report, const std::string& key);
// The lines of a detail that may be repeated: signatories, remarks.
[[nodiscard]] std::vector<std::string> detailLines(const Report& report, const std::string& key);
// "Roshko number, Hz/cSt"; the name alone if the unit is not recorded.
[[nodiscard]] std::string withUnit(const Report& report, const std::string& name,
                                   const std::string& unitKey);

}  // namespace pelmora::report
