// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"

#include "apps/pelmora/commands.h"
#include "apps/pelmora/help_formatter.h"
#include "apps/pelmora/suggestion.h"
#include "apps/pelmora/terminal_colour.h"
#include "apps/pelmora/trouble.h"
#include "apps/pelmora/version.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

namespace pelmora::cli {
namespace {

int report(const Trouble& trouble) {
  std::fflush(stdout);
  const std::string line = errorLine(trouble);
  const std::size_t label = line.find(": ", line.find(": ") + 1) + 1;
  std::fprintf(stderr, "%s%s\n", coloured(stderr, Colour::red, line.substr(0, label)).c_str(),
               line.substr(label).c_str());
  return static_cast<int>(trouble.code());
}

// The command that was being read, for its --help.
std::string commandOf(const CLI::App& app) {
  for (const CLI::App* command : app.get_subcommands()) return "pelmora " + command->get_name();
  return "pelmora";
}

std::vector<std::string> commandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(command->get_name());
  }
  return names;
}

std::vector<std::string> optionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands()) {
    for (const CLI::Option* option : command->get_options()) {
      for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    }
  }
  return names;
}

// What the user may have meant by the first argument that nobody expects.
std::string remedyOf(const CLI::App& app, const std::string& unexpected) {
  const bool isOption = unexpected.starts_with("--");
  const std::string name = unexpected.substr(0, unexpected.find('='));
  const auto known = isOption ? optionNames(app) : commandNames(app);
  const bool isCommand = !isOption && app.get_subcommands().empty();
  if ((isOption || isCommand) && !nearest(name, known).empty()) return suggestion(name, known);
  return "see '" + commandOf(app) + " --help'";
}

std::string mistypedOption(const CLI::App& app) {
  for (const std::string& argument : app.remaining(true)) {
    if (argument.starts_with("--")) return argument;
  }
  return "";
}

// Every command takes the option, so that scripts can give it to any.
void addNoInputEverywhere(CLI::App& app) {
  for (CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    if (command->get_option_no_throw("--no-input") == nullptr) {
      command->add_flag_callback(
          "--no-input", [] {}, "Never ask; this command asks nothing");
    }
  }
}

// Where the user's own defaults of options stand: $PELMORA_CONFIG, else pelmora/config.ini in the
// folder for configurations.
std::string configurationFile() {
  const auto folder = [](const char* variable, const char* below) {
    const char* value = std::getenv(variable);
    return value == nullptr || *value == '\0' ? std::string() : value + std::string(below);
  };
  for (const std::string& file :
       {folder("PELMORA_CONFIG", ""), folder("XDG_CONFIG_HOME", "/pelmora/config.ini"),
        folder("HOME", "/.config/pelmora/config.ini")}) {
    if (!file.empty()) return file;
  }
  return {};
}

int runCommand(CLI::App& app, int argc, const char* const* argv) {
  try {
    app.parse(argc, argv);
    return static_cast<int>(ExitCode::ok);
  } catch (const CLI::Success& success) {
    return app.exit(success);  // --help and --version
  } catch (const CLI::FileError& error) {
    return report({ExitCode::usage,
                   "the configuration file cannot be read: " + std::string(error.what()),
                   "name another one with --config FILE"});
  } catch (const CLI::ConfigError& error) {
    return report(
        {ExitCode::usage,
         "configuration file '" + app.get_config_ptr()->as<std::string>() + "': " + error.what(),
         "write lines NAME=VALUE below [COMMAND], with names as in 'pelmora COMMAND --help'"});
  } catch (const CLI::ExtrasError& error) {
    return report({ExitCode::usage, error.what(), remedyOf(app, mistypedOption(app))});
  } catch (const CLI::RequiredError& error) {
    const bool isCommandMissing = app.get_subcommands().empty() && argc > 1 && argv[1][0] != '-';
    return report(
        {ExitCode::usage,
         isCommandMissing ? "there is no command '" + std::string(argv[1]) + "'" : error.what(),
         remedyOf(app, isCommandMissing ? argv[1] : "")});
  } catch (const CLI::ParseError& error) {
    return report({ExitCode::usage, error.what(), "see '" + commandOf(app) + " --help'"});
  }
}

}  // namespace

void printData(const std::string& text) {
  const bool isWritten = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (isWritten && std::fflush(stdout) == 0) return;
  throw Trouble(ExitCode::unexpected, "standard output cannot be written",
                "check the pipe or the disk's room");
}

int run(int argc, const char* const* argv) {
  try {
    CLI::App app("Keeps, derives, fits and reports calibration curves of turbine flow meters.",
                 "pelmora");
    app.require_subcommand(1);
    app.set_version_flag("--version", "pelmora " + std::string(version));
    app.footer(exitCodeHelp);
    app.formatter(std::make_shared<HelpFormatter>());
    app.set_config("--config", configurationFile(),
                   "File with defaults of options (default: $PELMORA_CONFIG, else "
                   "~/.config/pelmora/config.ini)")
        ->option_text("FILE");
    app.allow_config_extras(false);
    addInitCommand(app);
    addImportCommand(app);
    addImportCurveCommand(app);
    addRawCommand(app);
    addFitCommand(app);
    addRefitCommand(app);
    addEvaluateCommand(app);
    addCompareCommand(app);
    addExportCommand(app);
    addShowCommand(app);
    addCalibrateCommand(app);
    addReportCommand(app);
    addDeleteCommand(app);
    addDoctorCommand(app);
    addHistoryCommand(app);
    addRestoreCommand(app);
    addCompletionCommand(app);
    addManCommand(app);
    addNamesCommand(app);
    addNoInputEverywhere(app);
    return runCommand(app, argc, argv);
  } catch (const Trouble& trouble) {
    return report(trouble);
  } catch (const Error& error) {
    return report({ExitCode::unexpected, error.what(), ""});
  } catch (const std::exception& error) {
    return report({ExitCode::unexpected, error.what(), ""});
  }
}

}  // namespace pelmora::cli
