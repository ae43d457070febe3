// The command line as data: commands, options, and what their values are.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace pelmora::cli {

enum class ValueKind { none, text, file, meter, series, choice };

struct OptionDescription {
  std::vector<std::string> names;  // "-h", "--help"; of a positional its own name
  std::string value;  // as the help names it: "FILE", "abort|retry|ignore"; empty for a flag
  std::string help;
  ValueKind kind = ValueKind::none;
  std::vector<std::string> choices;  // of ValueKind::choice
  bool isRequired = false;

  // The name by which scripts should call it.
  [[nodiscard]] const std::string& name() const { return names.back(); }
};

struct CommandDescription {
  std::string name, help;
  std::vector<OptionDescription> options, positionals;
};

struct ProgramDescription {
  std::string name, help, footer;
  std::vector<OptionDescription> options;
  std::vector<CommandDescription> commands;
};

}  // namespace pelmora::cli
