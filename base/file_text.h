// Reading text files.
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

namespace pelmora {

// The bytes of a file as they are. Errors: Error 75 where it cannot be read.
[[nodiscard]] std::string readWholeFile(const std::filesystem::path& path);

}  // namespace pelmora
