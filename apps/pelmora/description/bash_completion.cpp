// SPDX-License-Identifier: MIT
#include "apps/pelmora/description/shell_completion.h"

namespace pelmora::cli {
namespace {

// Behind the names that the database on the line holds. Quotes and backslashes are taken off what
// was typed so far: names with blanks are completed quoted. Bash divides an address at its colons
// and other signs, so that it is taken from the line.
constexpr const char* nameFunction = R"shell(_pelmora_names() {
  local file= meter= name typed i word
  local address=$'postgres(ql)?://[^[:space:]\'"]+'
  typed=${cur//[\\\'\"]/}
  for ((i = 2; i < COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]//[\\\'\"]/}
    [[ -z $file && -f $word ]] && file=$word
    [[ -z $file && $word == postgres* && $COMP_LINE =~ $address ]] && file=${BASH_REMATCH[0]//\\}
    [[ ${COMP_WORDS[i - 1]} == --meter ]] && meter=$word
  done
  [[ -n $file ]] || return
  while IFS= read -r name; do
    [[ $name == "$typed"* ]] && COMPREPLY+=("$(printf %q "$name")")
  done < <("${COMP_WORDS[0]}" names "$1" "$file" ${meter:+--meter "$meter"} 2>/dev/null)
}
)shell";

constexpr const char* opening = R"shell(_pelmora() {
  local cur=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command= options= i
  COMPREPLY=()
  for ((i = 1; i < COMP_CWORD; i++)); do
    [[ ${COMP_WORDS[i]} == -* ]] && continue
    command=${COMP_WORDS[i]}
    break
  done
)shell";

constexpr const char* closing = R"shell(  if [[ $cur == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
  else
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$cur")
  fi
}
complete -F _pelmora pelmora
)shell";

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

std::string reply(const std::vector<std::string>& words) {
  return "mapfile -t COMPREPLY < <(compgen -W " + shellQuoted(joined(words)) +
         " -- \"$cur\"); return";
}

std::string actionOf(const OptionDescription& option) {
  switch (option.kind) {
    case ValueKind::meter: return "_pelmora_names meters; return";
    case ValueKind::series: return "_pelmora_names series; return";
    case ValueKind::choice: return reply(option.choices);
    case ValueKind::file:
      return "compopt -o filenames 2>/dev/null; mapfile -t COMPREPLY < <(compgen -f -- \"$cur\"); "
             "return";
    default: return "return";
  }
}

std::string patternOf(const OptionDescription& option) {
  std::string pattern;
  for (const std::string& name : option.names) pattern += (pattern.empty() ? "" : " | ") + name;
  return pattern;
}

std::string caseOf(const CommandDescription& command) {
  std::vector<std::string> names;
  std::string values;
  for (const OptionDescription& option : command.options) {
    names.insert(names.end(), option.names.begin(), option.names.end());
    if (option.kind == ValueKind::none) continue;
    values += "        " + patternOf(option) + ") " + actionOf(option) + " ;;\n";
  }
  std::string text = "    " + command.name + ")\n";
  if (!values.empty()) text += "      case $previous in\n" + values + "      esac\n";
  for (const OptionDescription& positional : command.positionals) {
    if (positional.kind != ValueKind::choice) continue;
    text += "      [[ $cur == -* ]] || { " + reply(positional.choices) + "; }\n";
  }
  return text + "      options=" + shellQuoted(joined(names)) + "\n      ;;\n";
}

}  // namespace

std::string shellQuoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) result += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return result + "'";
}

std::string bashCompletion(const ProgramDescription& program) {
  std::vector<std::string> first;
  for (const CommandDescription& command : program.commands) first.push_back(command.name);
  for (const OptionDescription& option : program.options) first.push_back(option.name());
  std::string text = "# bash completion for " + program.name + "\n";
  text += nameFunction;
  text += opening;
  text += "  case $command in\n    '') " + reply(first) + " ;;\n";
  for (const CommandDescription& command : program.commands) text += caseOf(command);
  text += "    *) return ;;\n  esac\n";
  return text + closing;
}

}  // namespace pelmora::cli
