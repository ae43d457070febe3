// The section of one series on the report page.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <string>

namespace pelmora::report {

struct PageOptions {
  bool withStoredText = false;  // the text report that is stored with each curve
  // For a program that turns the page into a PDF: nothing to click, and pictures that depend on
  // nothing around them.
  bool isPaper = false;
};

[[nodiscard]] std::string htmlSeries(const Report& report, const SeriesReport& series,
                                     const std::string& id, const PageOptions& options);

}  // namespace pelmora::report
