// SPDX-License-Identifier: MIT
#include "apps/pelmora/input_file.h"

#include "apps/pelmora/trouble.h"

#include <pelmora/database.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace pelmora::cli {

std::string readInputFile(const std::string& path) {
  std::error_code ignored;
  if (!std::filesystem::exists(path, ignored)) {
    throw Trouble(ExitCode::badInput, "there is no file '" + path + "'",
                  "check the folder and the name");
  }
  if (std::filesystem::is_directory(path, ignored)) {
    throw Trouble(ExitCode::badInput, "'" + path + "' is a folder", "name a file in it");
  }
  if (isOpenAsDatabase(path)) {
    throw Trouble(ExitCode::badInput, "'" + path + "' is the database that this command works on",
                  "name another file");
  }
  std::ifstream file(path, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file.is_open() || file.bad()) {
    throw Trouble(ExitCode::badInput, "file '" + path + "' cannot be read",
                  "check its permissions");
  }
  if (text.empty()) {
    throw Trouble(ExitCode::badInput, "file '" + path + "' is empty",
                  "name a file that holds data");
  }
  return text;
}

}  // namespace pelmora::cli
