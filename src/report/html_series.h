// The section of one series on the report page.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <string>

namespace pelmora::report {

[[nodiscard]] std::string htmlSeries(const SeriesReport& series, const std::string& id);

}  // namespace pelmora::report
