// Names and texts inside statements of the server's SQL.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace pelmora::postgres {

// Errors of both: Error 13 for a zero character, which would end the statement there.
[[nodiscard]] std::string quotedName(std::string_view name);
[[nodiscard]] std::string quotedText(std::string_view text);

}  // namespace pelmora::postgres
