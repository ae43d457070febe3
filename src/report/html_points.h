// The raw points of a series that its curve was not fitted to, in a page.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <string>

namespace pelmora::report {

// A list entry for each excluded point, with its reason, and for each row of neighbours that the
// merge has cut or that lie outside the range; empty if the curve was fitted to all of them.
[[nodiscard]] std::string htmlLeftOutPoints(const SeriesReport& series);

}  // namespace pelmora::report
