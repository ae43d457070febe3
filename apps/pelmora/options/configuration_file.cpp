// SPDX-License-Identifier: MIT
#include "apps/pelmora/options/configuration_file.h"

#include "apps/pelmora/input/input_file.h"
#include "apps/pelmora/trouble.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace pelmora::cli {

std::string configurationFile() {
  const auto folder = [](const char* variable, const char* below) {
    const char* value = std::getenv(variable);
    return value == nullptr || *value == '\0' ? std::string() : value + std::string(below);
  };
  for (const std::string& file :
       {folder("PELMORA_CONFIG", ""), folder("XDG_CONFIG_HOME", "/pelmora/config.ini"),
        folder("HOME", "/.config/pelmora/config.ini")}) {
    if (!file.empty()) return file;
  }
  return {};
}

void requireConfigurationFile(const std::string& path) {
  if (path == "/dev/null") return;
  const std::string kind = otherKind(path);
  if (kind.empty()) return;
  throw Trouble(ExitCode::usage,
                "the configuration file '" + path + "' cannot be read: it is " + kind,
                "name a file with --config FILE or PELMORA_CONFIG");
}

bool hasConfiguration(std::span<const char* const> arguments) {
  const std::string file = configurationFile();
  std::error_code ignored;
  return (!file.empty() && std::filesystem::exists(file, ignored)) ||
         std::ranges::any_of(
             arguments, [](std::string_view argument) { return argument.starts_with("--config"); });
}

}  // namespace pelmora::cli
