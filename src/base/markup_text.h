// Text inside HTML and XML.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <string>
#include <string_view>

namespace pelmora {

// The text with & < > " ' as entities, for content and quoted attributes. Control characters, which
// XML forbids, and bytes that are no UTF-8 become U+FFFD; line breaks and tabs stay.
[[nodiscard]] PELMORA_API std::string escaped(std::string_view text);

}  // namespace pelmora
