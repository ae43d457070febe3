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

// The plot of a series with its legend and caption.
[[nodiscard]] std::string htmlPicture(const SeriesReport& series, const PageOptions& options);

// On paper, the picture of the first series is not in its section: it belongs to the first page.
[[nodiscard]] std::string htmlSeries(const Report& report, const SeriesReport& series,
                                     const std::string& id, bool isFirst,
                                     const PageOptions& options);

}  // namespace pelmora::report
