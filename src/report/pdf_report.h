// A report as PDF/A-3b.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/html_report.h"

#include <stop_token>
#include <string>

namespace pelmora::report {

// Made from the printed form of the page by the program weasyprint. dccXml: attached as
// certificate.xml, unless it is empty.
//
// Errors: Unusable if weasyprint is not there or fails; Cancelled on a stop.
[[nodiscard]] std::string pdfReport(const Report& report, const PageOptions& options,
                                    const std::string& dccXml, const std::stop_token& stop = {});

}  // namespace pelmora::report
