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
// What to do about a path that does not name a regular file.
struct FileAdvice {
  const char* missing = "Check the folder and the name.";
  const char* folder = "Name the file inside it.";
  const char* other = "Name another file.";
};
// Errors: Error that names the path: 53 if nothing is there, 70 or 75 if it cannot be looked at, 75
//         for a folder and for what is not a regular file, such as a pipe.
void requireRegularFile(const std::string& utf8, const FileAdvice& advice = {});

// The bytes of a file as they are.
// Errors: Error 75 if it cannot be read, 70 if the process has it open as a database.
[[nodiscard]] std::string readWholeFile(const std::filesystem::path& path);

}  // namespace pelmora
