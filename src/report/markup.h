// Text inside HTML and XML.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace pelmora::report {

// The text with & < > " ' as entities, for content and quoted attributes. Control characters, which
// XML forbids, and bytes that are no UTF-8 become U+FFFD; line breaks and tabs stay.
[[nodiscard]] std::string escaped(std::string_view text);

// A coordinate in px with at most two decimals, as short as it can be.
[[nodiscard]] std::string coordinate(double value);

// A number in its shortest exact form; "NaN" where it is not finite.
[[nodiscard]] std::string exactNumber(double value);

}  // namespace pelmora::report
