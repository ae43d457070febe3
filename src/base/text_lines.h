// Texts with CR LF line ends.
// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>
#include <vector>

namespace pelmora {

inline constexpr std::string_view lineBreak = "\r\n";

// The parts between the separators; one part more than there are separators. Views into `text`.
[[nodiscard]] std::vector<std::string_view> split(std::string_view text,
                                                  std::string_view separator);

}  // namespace pelmora
