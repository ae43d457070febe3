// A report as a digital calibration certificate.
// SPDX-License-Identifier: MIT
#pragma once

#include "dcc/certificate.h"
#include "report/report_model.h"

#include <string>

namespace pelmora::report {

// Its numbers have the digits of the page. Quantities whose unit is not recorded are left out;
// without the units of Roshko and Strouhal numbers there are no results.
[[nodiscard]] dcc::Certificate certificateOf(const Report& report);

// Its XML. Errors: BadData that names what is missing and how to record it.
[[nodiscard]] std::string dccReport(const Report& report);

}  // namespace pelmora::report
