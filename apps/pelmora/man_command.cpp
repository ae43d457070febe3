// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands.h"
#include "apps/pelmora/description/man_page.h"
#include "apps/pelmora/suggestion.h"
#include "apps/pelmora/trouble.h"
#include "base/version.h"

#include <CLI/App.hpp>

#include <algorithm>
#include <memory>

namespace pelmora::cli {
namespace {

std::string pageOf(const ProgramDescription& program, const std::string& name) {
  if (name.empty()) return programPage(program, version, releaseDate);
  const auto command = std::ranges::find(program.commands, name, &CommandDescription::name);
  if (command != program.commands.end())
    return commandPage(program, *command, version, releaseDate);
  std::vector<std::string> names;
  for (const CommandDescription& known : program.commands) names.push_back(known.name);
  throw Trouble(ExitCode::usage, "there is no command '" + name + "'", suggestion(name, names));
}

}  // namespace

void addManCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("man", "Write a man page");
  command.group("");  // the build writes the pages with it
  const auto name = std::make_shared<std::string>();
  command.add_option("COMMAND", *name, "Command of the page (default: the page of the program)");
  command.callback([&app, name] { printData(pageOf(describe(app), *name)); });
}

}  // namespace pelmora::cli
