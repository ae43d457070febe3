// Reading text files.
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

namespace pelmora {

// Whether the path names a file; a folder is none. What cannot be looked at does not exist.
[[nodiscard]] bool fileExists(const std::filesystem::path& path) noexcept;

// The bytes of a file as they are. Errors: Error 75 where it cannot be read.
[[nodiscard]] std::string readWholeFile(const std::filesystem::path& path);

}  // namespace pelmora
