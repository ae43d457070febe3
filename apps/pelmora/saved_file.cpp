// SPDX-License-Identifier: MIT
#include "apps/pelmora/saved_file.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace pelmora::cli {
namespace {

namespace fs = std::filesystem;

std::string savedName(const std::string& file, int number) {
  return file + ".sav" + (number == 0 ? "" : "." + std::to_string(number));
}

// An empty file of a name that nothing had.
bool isReserved(const std::string& name) {
  std::FILE* file = std::fopen(name.c_str(), "wx");
  if (file == nullptr && errno == EEXIST) return false;
  if (file == nullptr) throw std::system_error(errno, std::generic_category());
  std::fclose(file);
  return true;
}

}  // namespace

std::string freeSavedName(const std::string& file) {
  int number = 0;
  while (fs::exists(fs::symlink_status(savedName(file, number)))) ++number;
  return savedName(file, number);
}

std::string renameToSaved(const std::string& file) {
  // The name is taken first, so that two programs never take the same one.
  std::string name = freeSavedName(file);
  while (!isReserved(name)) name = freeSavedName(file);
  std::error_code code;
  fs::rename(file, name, code);
  if (!code) return name;
  std::error_code ignored;
  fs::remove(name, ignored);
  throw std::system_error(code);
}

bool isFolderWritable(const std::string& file) {
  const fs::path folder = fs::path(file).parent_path();
  return ::access(folder.empty() ? "." : folder.c_str(), W_OK | X_OK) == 0;
}

}  // namespace pelmora::cli
