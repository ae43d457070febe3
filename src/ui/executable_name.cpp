// SPDX-License-Identifier: MIT
#include "ui/executable_name.h"

#include <filesystem>
#include <string_view>
#include <system_error>

namespace pelmora {

std::string executableName() {
  std::error_code failure;
  const auto path = std::filesystem::read_symlink("/proc/self/exe", failure);
  if (failure) return {};
  std::string name = path.filename().string();
  // The kernel marks a program whose file was replaced while it runs.
  constexpr std::string_view mark = " (deleted)";
  if (name.ends_with(mark)) name.resize(name.size() - mark.size());
  return name;
}

}  // namespace pelmora
