// A whole file as text.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora::cli {

// Errors: Trouble badInput where there is no such file, it is a folder, cannot be read or is empty.
[[nodiscard]] std::string readInputFile(const std::string& path);

}  // namespace pelmora::cli
