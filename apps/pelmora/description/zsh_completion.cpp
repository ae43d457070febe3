// SPDX-License-Identifier: MIT
#include "apps/pelmora/description/shell_completion.h"

namespace pelmora::cli {
namespace {

// zsh calls it with options for compadd in front of its own argument.
constexpr const char* nameFunction = R"shell(_pelmora_names() {
  local file meter word previous=
  local -a names
  for word in "${(@Q)words[2,CURRENT-1]}"; do
    [[ -z $file && ( -f $word || $word == postgres(ql|)://* ) ]] && file=$word
    [[ $previous == --meter ]] && meter=$word
    previous=$word
  done
  [[ -n $file ]] || return 1
  names=("${(@f)$("${words[1]:-pelmora}" names "${@[-1]}" "$file" ${meter:+--meter} ${meter:+"$meter"} 2>/dev/null)}")
  compadd "${@[1,-2]}" -a names
}
)shell";

// Inside what _arguments is told of an option "[", "]", ":" and "\" have a meaning of their own.
std::string argumentText(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c == '[' || c == ']' || c == ':' || c == '\\') result += '\\';
    result += c;
  }
  return result;
}

std::string actionOf(const OptionDescription& option) {
  switch (option.kind) {
    case ValueKind::meter: return "_pelmora_names meters";
    case ValueKind::series: return "_pelmora_names series";
    case ValueKind::file: return "_files";
    case ValueKind::choice: {
      std::string words;
      for (const std::string& choice : option.choices) words += (words.empty() ? "" : " ") + choice;
      return "(" + words + ")";
    }
    default: return " ";
  }
}

std::string valueOf(const OptionDescription& option) {
  if (option.kind == ValueKind::none) return "";
  return ":" + argumentText(option.value) + ":" + actionOf(option);
}

std::string caseOf(const CommandDescription& command) {
  std::string text = "    " + command.name + ")\n      _arguments";
  for (const OptionDescription& option : command.options) {
    for (const std::string& name : option.names) {
      text += " \\\n        " +
              shellQuoted("*" + name + "[" + argumentText(option.help) + "]" + valueOf(option));
    }
  }
  for (const OptionDescription& positional : command.positionals) {
    const std::string action =
        positional.kind == ValueKind::choice ? actionOf(positional) : "_files";
    text += " \\\n        " + shellQuoted("*:" + argumentText(positional.name()) + ":" + action);
    break;
  }
  return text + "\n      ;;\n";
}

}  // namespace

std::string zshCompletion(const ProgramDescription& program) {
  std::string text = "#compdef " + program.name + "\n# zsh completion for " + program.name + "\n";
  text += nameFunction;
  text += "_pelmora() {\n  local -a commands\n  commands=(\n";
  for (const CommandDescription& command : program.commands) {
    text += "    " + shellQuoted(command.name + ":" + argumentText(command.help)) + "\n";
  }
  text +=
      "  )\n  if ((CURRENT == 2)); then\n    _describe -t commands command commands\n    return\n  "
      "fi\n"
      "  local command=${words[2]}\n  shift words\n  ((CURRENT--))\n  words[1]=" +
      program.name + "\n  case $command in\n";
  for (const CommandDescription& command : program.commands) text += caseOf(command);
  return text +
         "  esac\n}\nif [[ $funcstack[1] == _pelmora ]]; then _pelmora; else compdef _pelmora " +
         program.name + "; fi\n";
}

}  // namespace pelmora::cli
