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

void requireRegularFile(const std::string& utf8) {
  if (isRegularFile(utf8)) return;
  throw Error(static_cast<std::int32_t>(RunTimeError::fileNotFound), "Pelmora",
              "Could not find file '" + utf8 + "'. Check the folder and the name.");
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
