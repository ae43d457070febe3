// SPDX-License-Identifier: MIT
#include "apps/pelmora/description/shell_completion.h"

namespace pelmora::cli {
namespace {

constexpr const char* nameFunction = R"shell(function __pelmora_names
    set -l file
    set -l meter
    set -l previous
    for word in (commandline -opc)[3..-1]
        test -z "$file"; and test -f "$word"; and set file $word
        test -z "$file"; and string match -qr '^postgres(ql)?://' -- "$word"; and set file $word
        test "$previous" = --meter; and set meter --meter $word
        set previous $word
    end
    test -n "$file"; and pelmora names $argv[1] $file $meter 2>/dev/null
end
)shell";

// Fish knows two escapes between single quotes.
std::string quoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') result += '\\';
    result += c;
  }
  return result + "'";
}

std::string valueOf(const OptionDescription& option) {
  switch (option.kind) {
    case ValueKind::none: return "";
    case ValueKind::meter: return " -x -a '(__pelmora_names meters)'";
    case ValueKind::series: return " -x -a '(__pelmora_names series)'";
    case ValueKind::file: return " -r -F";
    case ValueKind::choice: {
      std::string words;
      for (const std::string& choice : option.choices) words += (words.empty() ? "" : " ") + choice;
      return " -x -a " + quoted(words);
    }
    default: return " -x";
  }
}

std::string optionLine(const std::string& program, const std::string& condition,
                       const OptionDescription& option) {
  std::string line = "complete -c " + program + " -n " + quoted(condition);
  for (const std::string& name : option.names) {
    const bool isLong = name.starts_with("--");
    line += (isLong ? " -l " : " -s ") + name.substr(isLong ? 2 : 1);
  }
  return line + valueOf(option) + " -d " + quoted(option.help) + "\n";
}

}  // namespace

std::string fishCompletion(const ProgramDescription& program) {
  std::string text = "# fish completion for " + program.name + "\n";
  text += nameFunction;
  for (const CommandDescription& command : program.commands) {
    text += "complete -c " + program.name + " -f -n __fish_use_subcommand -a " + command.name +
            " -d " + quoted(command.help) + "\n";
  }
  for (const OptionDescription& option : program.options) {
    text += optionLine(program.name, "__fish_use_subcommand", option);
  }
  for (const CommandDescription& command : program.commands) {
    const std::string condition = "__fish_seen_subcommand_from " + command.name;
    for (const OptionDescription& option : command.options)
      text += optionLine(program.name, condition, option);
    for (const OptionDescription& positional : command.positionals) {
      if (positional.kind != ValueKind::choice) continue;
      text +=
          "complete -c " + program.name + " -n " + quoted(condition) + valueOf(positional) + "\n";
    }
  }
  return text;
}

}  // namespace pelmora::cli
