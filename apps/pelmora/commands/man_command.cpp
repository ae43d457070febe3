// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"
#include "apps/pelmora/commands/commands.h"
#include "apps/pelmora/description/man_page.h"
#include "base/suggestion.h"
#include "apps/pelmora/trouble.h"
#include "base/version.h"

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

void addManCommand(Program& program) {
  Command command = program.add("man", "Write a man page");
  command.hide();  // the build writes the pages with it
  const auto name = std::make_shared<std::string>();
  command.addText({"COMMAND", "", "Command of the page (default: the page of the program)"}, *name);
  command.onRun([&program, name] { printData(pageOf(program.description(), *name)); });
}

}  // namespace pelmora::cli
