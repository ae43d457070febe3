// A report as a web page.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/html_series.h"

#include <string>

namespace pelmora::report {

// One page that needs nothing from outside and can fetch nothing: its policy names its own script
// and style by their hashes. Plots are static pictures; where the program was built with the plot
// library and the reader's browser runs scripts, interactive ones take their place, except on
// paper.
[[nodiscard]] std::string htmlReport(const Report& report, const PageOptions& options = {});

}  // namespace pelmora::report
