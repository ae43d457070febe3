// SPDX-License-Identifier: MIT
#include "adapters/os/helper_program.h"

#include "adapters/os/library_folder.h"

#include <unistd.h>

#include <filesystem>

namespace pelmora::os {

std::string helperProgram(const std::string& name) {
  const std::filesystem::path folder = libraryFolder();
  if (!folder.is_absolute()) return {};
  for (const auto& place : {folder, folder / PELMORA_HELPER_FROM_LIBRARY}) {
    const auto program = place / name;
    if (access(program.c_str(), X_OK) == 0) return program.string();
  }
  return {};
}

}  // namespace pelmora::os
