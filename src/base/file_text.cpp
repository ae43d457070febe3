// SPDX-License-Identifier: MIT
#include "base/file_text.h"

#include "base/plain_reading.h"
#include "base/run_time_error.h"

#include <cstdint>
#include <fstream>
#include <iterator>
#include <system_error>

namespace pelmora {

std::filesystem::path filePath(const std::string& utf8) {
  return std::u8string(utf8.begin(), utf8.end());
}

std::string utf8Text(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

bool fileExists(const std::filesystem::path& path) noexcept {
  std::error_code failure;
  const auto status = std::filesystem::status(path, failure);
  return std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

bool isRegularFile(const std::string& utf8) {
  // The system would read a path only up to its first NUL.
  if (utf8.find('\0') != std::string::npos) return false;
  std::error_code ignored;
  return std::filesystem::is_regular_file(filePath(utf8), ignored);
}

void requireRegularFile(const std::string& utf8, const FileAdvice& advice) {
  if (isRegularFile(utf8)) return;
  const auto fail = [](RunTimeError number, const std::string& description) {
    throw Error(static_cast<std::int32_t>(number), "Pelmora", description);
  };
  std::error_code code;
  const bool isPath = !utf8.empty() && utf8.find('\0') == std::string::npos;
  const auto status = isPath ? std::filesystem::status(filePath(utf8), code)
                             : std::filesystem::file_status(std::filesystem::file_type::not_found);
  if (status.type() == std::filesystem::file_type::not_found)
    fail(RunTimeError::fileNotFound, "Could not find file '" + utf8 + "'. " + advice.missing);
  if (status.type() == std::filesystem::file_type::none) {
    const bool isRefused = code == std::errc::permission_denied;
    fail(isRefused ? RunTimeError::permissionDenied : RunTimeError::pathAccess,
         "Could not open file '" + utf8 + "': " + code.message() +
             ". Check the path and its permissions.");
  }
  if (std::filesystem::is_directory(status)) {
    fail(RunTimeError::pathAccess,
         "Could not open '" + utf8 + "': it is a folder. " + advice.folder);
  }
  if (!std::filesystem::is_regular_file(status)) {
    fail(RunTimeError::pathAccess,
         "Could not open '" + utf8 + "': it is not a regular file. " + advice.other);
  }
}

std::string readWholeFile(const std::filesystem::path& path) {
  const PlainReading reading(path);
  std::ifstream stream(path, std::ios::binary);
  if (!stream) throw makeError(RunTimeError::pathAccess);
  try {
    return {std::istreambuf_iterator<char>(stream), {}};
  } catch (const std::ios_base::failure&) {
    throw makeError(RunTimeError::pathAccess);
  }
}

}  // namespace pelmora
