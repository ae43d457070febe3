// Files that commands write for other programs.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora::cli {

// Errors: Trouble usage where `path` can be no file to write: a folder, a device, or in a folder
// that is not
//         there, and where it is the curve database itself.
void requireOutputFile(const std::string& path, const std::string& database);

// Writes the whole file or leaves what was there (files/replace_file.h).
//
// Errors: Trouble unexpected; Interrupted.
void writeOutputFile(const std::string& path, const std::string& content);

}  // namespace pelmora::cli
