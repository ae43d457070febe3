// SPDX-License-Identifier: MIT
#include "apps/pelmora/options/configuration.h"

#include "apps/pelmora/trouble.h"
#include "base/trimmed_text.h"

#include <istream>
#include <utility>

namespace pelmora::cli {
namespace {

// Lines of Windows files end with a carriage return.
std::string unblanked(const std::string& text) { return std::string(trimmed(text, " \t\r")); }

}  // namespace

std::string ConfigurationReader::to_config(const CLI::App* /*app*/, bool /*defaultAlso*/,
                                           bool /*writeDescription*/,
                                           std::string /*prefix*/) const {
  return {};  // no command writes one
}

std::vector<CLI::ConfigItem> ConfigurationReader::from_config(std::istream& input) const {
  std::vector<CLI::ConfigItem> found;
  std::vector<std::string> command;
  std::size_t number = 0;
  for (std::string line; std::getline(input, line);) {
    ++number;
    if (number == 1 && line.starts_with("\xEF\xBB\xBF")) line.erase(0, 3);
    line = unblanked(line);
    if (line.empty() || line.front() == '#' || line.front() == ';') continue;
    if (line.front() == '[' && line.back() == ']') {
      command = {unblanked(line.substr(1, line.size() - 2))};
      continue;
    }
    const std::size_t equals = line.find('=');
    const bool isAlone = equals == std::string::npos;
    CLI::ConfigItem item;
    item.parents = command;
    item.name = unblanked(line.substr(0, equals));
    item.inputs = {isAlone ? "true" : unblanked(line.substr(equals + 1))};
    if (item.name.empty() || item.inputs.front().empty()) {
      throw Trouble(
          ExitCode::usage,
          "configuration file '" + path_ + "', line " + std::to_string(number) + ": " +
              (item.name.empty() ? "there is no name" : "'" + item.name + "' has no value"),
          "write NAME=VALUE, or leave the line out");
    }
    const bool isMore =
        !found.empty() && found.back().name == item.name && found.back().parents == item.parents;
    if (isMore) {
      found.back().inputs.push_back(item.inputs.front());
    } else {
      found.push_back(std::move(item));
    }
  }
  return found;
}

}  // namespace pelmora::cli
