// A whole file as text.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace pelmora::cli {

// A file that is read into memory as a whole: 32767 points of a raw part take 1.6 MB in full
// precision, and a file that holds sixty such parts is still split in a moment.
inline constexpr std::uintmax_t mostInputBytes = 100'000'000;

// What there is at `path` if it is not a regular file: "a folder", "a pipe", "a device", "a
// socket". Empty for a regular file and where there is nothing. Opens nothing.
[[nodiscard]] std::string otherKind(const std::string& path);

// Errors: Trouble badInput if there is no such file, it is not a regular file, cannot be read, is
// empty or larger than mostInputBytes.
[[nodiscard]] std::string readInputFile(const std::string& path);

}  // namespace pelmora::cli
