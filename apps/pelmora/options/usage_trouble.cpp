// SPDX-License-Identifier: MIT
#include "apps/pelmora/options/usage_trouble.h"

#include "base/suggestion.h"

#include <string>
#include <vector>

namespace pelmora::cli {
namespace {

// The command that was being read, as it is called.
std::string commandOf(const CLI::App& app) {
  for (const CLI::App* command : app.get_subcommands()) return "pelmora " + command->get_name();
  return "pelmora";
}

std::string seeHelp(const CLI::App& app) { return "see '" + commandOf(app) + " --help'"; }

std::vector<std::string> commandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(command->get_name());
  }
  return names;
}

std::vector<std::string> optionNames(const CLI::App& app) {
  std::vector<std::string> names;
  const auto add = [&names](const CLI::App& command) {
    for (const CLI::Option* option : command.get_options()) {
      for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    }
  };
  for (const CLI::App* command : app.get_subcommands()) add(*command);
  if (names.empty()) add(app);
  return names;
}

std::string remedyOf(const CLI::App& app, const std::string& name,
                     const std::vector<std::string>& known) {
  return nearest(name, known).empty() ? seeHelp(app) : suggestion(name, known);
}

// -1.5 is a number, though it may stand where none is expected.
bool isOption(const std::string& argument) {
  return argument.size() > 1 && argument[0] == '-' &&
         std::string("0123456789.").find(argument[1]) == std::string::npos;
}

// The first argument that nobody takes, options before values: a value after a mistyped option is
// none of the user's errors. CLI11 lists what is left of a command from its end.
std::string unexpectedArgument(const CLI::App& app) {
  std::string value;
  for (const std::string& argument : app.remaining(true)) {
    if (isOption(argument)) return argument.substr(0, argument.find('='));
    value = argument;
  }
  return value;
}

}  // namespace

Trouble usageTrouble(const CLI::App& app, const CLI::ParseError& error, int argc,
                     const char* const* argv) {
  const auto trouble = [](const std::string& what, const std::string& remedy) {
    return Trouble(ExitCode::usage, what, remedy);
  };
  const std::string name = unexpectedArgument(app);
  if (isOption(name)) {
    return trouble("'" + commandOf(app) + "' has no option '" + name + "'",
                   remedyOf(app, name, optionNames(app)));
  }
  if (app.get_subcommands().empty() && argc > 1 && argv[1][0] != '-') {
    return trouble("there is no command '" + std::string(argv[1]) + "'",
                   remedyOf(app, argv[1], commandNames(app)));
  }
  if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError)) {
    return trouble("'" + name + "' is one argument too many for '" + commandOf(app) + "'",
                   seeHelp(app));
  }
  return trouble(error.what(), seeHelp(app));
}

}  // namespace pelmora::cli
