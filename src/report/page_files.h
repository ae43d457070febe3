// The scripts and style of the report page, embedded when the program is built.
// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace pelmora::report {

[[nodiscard]] std::string_view pageStyle();

// All of the following are empty where the program was built without the plot library: the page
// then has static plots and no script.
[[nodiscard]] std::string_view plotLibraryStyle();
// The plot library uPlot and the page's own script, gzip as base64, and the SHA-256 of what it
// unpacks to.
[[nodiscard]] std::string_view packedScript();
[[nodiscard]] std::string_view packedScriptHash();
// Runs before anything is painted: tells the style whether the plots will be interactive, so that
// the static ones do not flash up.
[[nodiscard]] std::string_view startScript();
[[nodiscard]] std::string_view unpackScript();

}  // namespace pelmora::report
