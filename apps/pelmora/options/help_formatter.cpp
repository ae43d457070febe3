// SPDX-License-Identifier: MIT
#include "apps/pelmora/options/help_formatter.h"

#include "apps/pelmora/output/text_table.h"

#include <sstream>

namespace pelmora::cli {
namespace {

constexpr std::size_t descriptionColumn = 30;  // where descriptions of options and commands begin

// A line of the base class: an indented one names something in front of its description.
std::string broken(const std::string& line) {
  if (displayWidth(line) <= terminalColumns) return line + "\n";
  const std::string blanks(descriptionColumn, ' ');
  const bool isIndented = line.starts_with("  ");
  if (!isIndented) return wrapped(line, 0);
  const std::string rest = wrapped(line.substr(descriptionColumn), descriptionColumn);
  return line.substr(0, descriptionColumn) + rest.substr(descriptionColumn);
}

}  // namespace

std::string HelpFormatter::make_help(const CLI::App* app, std::string name,
                                     CLI::AppFormatMode mode) const {
  std::istringstream lines(CLI::Formatter::make_help(app, std::move(name), mode));
  std::string text;
  for (std::string line; std::getline(lines, line);) text += broken(line);
  return text;
}

}  // namespace pelmora::cli
