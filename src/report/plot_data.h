// What the page's script draws, as JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <string>

namespace pelmora::report {

// An array with an object for each series: its points, values with nine significant digits, or
// packed into two bytes each if there are very many. The script reads the curve from the
// predicted table of the page. Merged points without values are the raw ones that are neither cut
// nor excluded. Safe inside a <script> element. `sectionId(i)` is the id of the series' section.
[[nodiscard]] std::string plotData(const Report& report);
[[nodiscard]] std::string sectionId(std::size_t series);

}  // namespace pelmora::report
