// Putting a file that was read out of the way.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pelmora::cli {

// The first name of FILE.sav, FILE.sav.1, FILE.sav.2 ... that nothing has.
[[nodiscard]] std::string freeSavedName(const std::string& file);

// Renames the file to such a name, never over another file, and returns the name.
//
// Errors: std::system_error; the file has its name then.
std::string renameToSaved(const std::string& file);

// Whether files can be made and renamed in the folder of the file.
[[nodiscard]] bool isFolderWritable(const std::string& file);

}  // namespace pelmora::cli
