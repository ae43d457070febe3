// File paths and reading text files.
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

namespace pelmora {

// Texts are UTF-8 on every system; a path made from a std::string directly is not.
[[nodiscard]] std::filesystem::path filePath(const std::string& utf8);
[[nodiscard]] std::string utf8Text(const std::filesystem::path& path);

// Whether the path names a file; a folder is none. What cannot be looked at does not exist.
[[nodiscard]] bool fileExists(const std::filesystem::path& path) noexcept;

// Whether a path in UTF-8 names a regular file. False where it cannot be looked at.
[[nodiscard]] bool isRegularFile(const std::string& utf8);
// Errors: Error 53, which names the path, if it does not name a regular file.
void requireRegularFile(const std::string& utf8);

// The bytes of a file as they are.
// Errors: Error 75 if it cannot be read, 70 if the process has it open as a database.
[[nodiscard]] std::string readWholeFile(const std::filesystem::path& path);

}  // namespace pelmora
