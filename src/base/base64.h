// Bytes as base64 text and back (RFC 4648).
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <string>
#include <string_view>

namespace pelmora {

// With padding, without line breaks.
[[nodiscard]] PELMORA_API std::string base64Text(std::string_view bytes);
// Characters outside the alphabet, such as line breaks, are skipped.
[[nodiscard]] PELMORA_API std::string bytesOfBase64(std::string_view text);

}  // namespace pelmora
