// SPDX-License-Identifier: MIT
#include "apps/pelmora/description/man_page.h"

#include <algorithm>
#include <cctype>

namespace pelmora::cli {
namespace {

// Text of a page: backslashes, hyphens of options, and what begins a line like a request.
std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c == '\\') {
      result += "\\e";
    } else if (c == '-') {
      result += "\\-";
    } else if ((c == '.' || c == '\'') && (result.empty() || result.back() == '\n')) {
      result += std::string("\\&") + c;
    } else {
      result += c;
    }
  }
  return result;
}

std::string upperCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::toupper(c); });
  return text;
}

std::string header(const std::string& page, const std::string& summary, const std::string& version,
                   const std::string& date) {
  return ".TH " + upperCase(page) + " 1 \"" + date + "\" \"pelmora " + version +
         "\" \"User Commands\"\n.SH NAME\n" + escaped(page) + " \\- " + escaped(summary) + "\n";
}

// "Takes this. And that." as a summary: its first sentence without the full stop.
std::string summaryOf(const std::string& help) {
  std::string summary = help.substr(0, help.find(". "));
  if (summary.ends_with('.')) summary.pop_back();
  return summary;
}

std::string optionItem(const OptionDescription& option) {
  std::string names;
  for (const std::string& name : option.names)
    names += (names.empty() ? "" : ", ") + ("\\fB" + escaped(name) + "\\fR");
  if (!option.value.empty() && option.names.front().starts_with("-"))
    names += " \\fI" + escaped(option.value) + "\\fR";
  return ".TP\n" + names + "\n" + escaped(option.help) + (option.isRequired ? " (required)" : "") +
         "\n";
}

std::string section(const std::string& title, const std::vector<OptionDescription>& options) {
  if (options.empty()) return "";
  std::string text = ".SH " + title + "\n";
  for (const OptionDescription& option : options) text += optionItem(option);
  return text;
}

// "Exit codes: 0 done; 1 ..." as a list.
std::string exitStatus(const std::string& footer) {
  std::string flat = footer;
  std::ranges::replace(flat, '\n', ' ');
  const std::size_t colon = flat.find(": ");
  if (colon == std::string::npos) return "";
  if (flat.ends_with('.')) flat.pop_back();
  std::string text = ".SH EXIT STATUS\n";
  for (std::size_t at = colon + 2; at < flat.size();) {
    const std::size_t end = std::min(flat.find("; ", at), flat.size());
    const std::string item = flat.substr(at, end - at);
    const std::size_t blank = item.find(' ');
    text += ".TP\n\\fB" + item.substr(0, blank) + "\\fR\n" + escaped(item.substr(blank + 1)) + "\n";
    at = end + 2;
  }
  return text;
}

}  // namespace

std::string programPage(const ProgramDescription& program, const std::string& version,
                        const std::string& date) {
  std::string text = header(program.name, summaryOf(program.help), version, date);
  text += ".SH SYNOPSIS\n\\fB" + program.name +
          "\\fR \\fICOMMAND\\fR [\\fIOPTIONS\\fR]\n.SH DESCRIPTION\n" + escaped(program.help) +
          "\n.SH COMMANDS\n";
  for (const CommandDescription& command : program.commands) {
    text += ".TP\n\\fB" + escaped(command.name) + "\\fR\n" + escaped(command.help) + "\n";
  }
  text += section("OPTIONS", program.options) + exitStatus(program.footer) + ".SH SEE ALSO\n";
  for (const CommandDescription& command : program.commands) {
    const bool isLast = &command == &program.commands.back();
    text +=
        "\\fB" + program.name + "\\-" + escaped(command.name) + "\\fR(1)" + (isLast ? "\n" : ",\n");
  }
  return text;
}

std::string commandPage(const ProgramDescription& program, const CommandDescription& command,
                        const std::string& version, const std::string& date) {
  const std::string page = program.name + "-" + command.name;
  std::string text = header(page, summaryOf(command.help), version, date);
  text +=
      ".SH SYNOPSIS\n\\fB" + program.name + " " + escaped(command.name) + "\\fR [\\fIOPTIONS\\fR]";
  for (const OptionDescription& positional : command.positionals) {
    const std::string name = "\\fI" + escaped(positional.name()) + "\\fR";
    text += positional.isRequired ? " " + name : " [" + name + "]";
  }
  text += "\n.SH DESCRIPTION\n" + escaped(command.help) + ".\n";
  return text + section("ARGUMENTS", command.positionals) + section("OPTIONS", command.options) +
         exitStatus(program.footer) + ".SH SEE ALSO\n\\fB" + program.name + "\\fR(1)\n";
}

}  // namespace pelmora::cli
