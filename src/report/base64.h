// Bytes as base64 text and back (RFC 4648).
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace pelmora::report {

// With padding, without line breaks.
[[nodiscard]] std::string base64Text(std::string_view bytes);
// Characters outside the alphabet, such as line breaks, are skipped.
[[nodiscard]] std::string bytesOfBase64(std::string_view text);

}  // namespace pelmora::report
