// The place of the file with the user's own defaults of options.
// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <string>

namespace pelmora::cli {

// $PELMORA_CONFIG, else pelmora/config.ini in the folder for configurations.
[[nodiscard]] std::string configurationFile();

// Errors: Trouble usage where there is something at `path` that is neither a regular file nor the
// null device, which stands for no defaults.
void requireConfigurationFile(const std::string& path);

// Whether a run with these arguments may read such a file, which may have defaults of any command.
[[nodiscard]] bool hasConfiguration(std::span<const char* const> arguments);

}  // namespace pelmora::cli
