// The file with the user's own defaults of options.
// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/CLI.hpp>

#include <iosfwd>
#include <string>
#include <vector>

namespace pelmora::cli {

// Lines NAME=VALUE below [COMMAND]; one that begins with # or ; is a comment. A value reaches its
// option byte for byte, without the blanks around it. A name alone switches a flag on; one that
// comes again adds a value.
class ConfigurationReader : public CLI::Config {
 public:
  // `path` names the file in errors.
  explicit ConfigurationReader(std::string path) : path_(std::move(path)) {}

  std::string to_config(const CLI::App* app, bool defaultAlso, bool writeDescription,
                        std::string prefix) const override;
  // Errors: Trouble usage for a line without a name or without a value.
  std::vector<CLI::ConfigItem> from_config(std::istream& input) const override;

 private:
  std::string path_;
};

}  // namespace pelmora::cli
