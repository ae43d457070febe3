// Addresses of databases on a server, as texts.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/export.h>

#include <string>
#include <string_view>

namespace pelmora {

// "postgresql://..." or "postgres://..."; everything else is a path.
[[nodiscard]] PELMORA_API bool isServerAddress(std::string_view location);

[[nodiscard]] PELMORA_API bool hasPassword(std::string_view location);

// The location for messages and records: an address without its password, a path as it is.
[[nodiscard]] PELMORA_API std::string shownLocation(std::string_view location);

// Short, for headings: the file's name without its folders, or the address without parameters and
// password.
[[nodiscard]] PELMORA_API std::string shortLocation(const std::string& location);

// The text without the password of the address, in whatever place and form.
[[nodiscard]] PELMORA_API std::string withoutPassword(std::string text, std::string_view location);

}  // namespace pelmora
