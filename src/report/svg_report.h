// A report's plots as one picture.
// SPDX-License-Identifier: MIT
#pragma once

#include "report/report_model.h"

#include <string>

namespace pelmora::report {

// One SVG document on white with the series below one another, each under its name; without scripts
// and references to the outside.
[[nodiscard]] std::string svgReport(const Report& report);

// The style of plots: colours are custom properties that the document around defines.
[[nodiscard]] std::string plotStyle();
// Their values for a light and for a dark background.
[[nodiscard]] std::string lightColours();
[[nodiscard]] std::string darkColours();

}  // namespace pelmora::report
