// A report as PDF/A-3b.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/html_report.h"

#include <string>

namespace pelmora::report {

// Made from the printed form of the page by the program weasyprint. dccXml: attached as
// certificate.xml, unless it is empty.
//
// Errors: Unusable if weasyprint is not there or fails.
[[nodiscard]] std::string pdfReport(const Report& report, const PageOptions& options,
                                    const std::string& dccXml);

}  // namespace pelmora::report
