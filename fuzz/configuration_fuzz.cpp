// Any configuration file is read, or refused as a usage error.
// SPDX-License-Identifier: MIT
#include "apps/pelmora/options/configuration.h"
#include "apps/pelmora/trouble.h"
#include "fuzz/scratch_file.h"

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pelmora;
  std::istringstream input{std::string(fuzz::textOf(data, size))};
  try {
    for (const auto& item : cli::ConfigurationReader("config.ini").from_config(input)) {
      if (item.name.empty() || item.inputs.empty() || item.inputs.front().empty()) __builtin_trap();
    }
  } catch (const cli::Trouble& trouble) {
    if (trouble.code() != cli::ExitCode::usage) __builtin_trap();
  }
  return 0;
}
