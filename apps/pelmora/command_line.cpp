// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"

#include "apps/pelmora/arguments.h"
#include "apps/pelmora/commands.h"
#include "apps/pelmora/configuration.h"
#include "apps/pelmora/help_formatter.h"
#include "apps/pelmora/interruption.h"
#include "apps/pelmora/last_words.h"
#include "apps/pelmora/standard_output.h"
#include "apps/pelmora/temporary_folder.h"
#include "apps/pelmora/terminal_colour.h"
#include "apps/pelmora/trouble.h"
#include "apps/pelmora/usage_trouble.h"
#include "base/version.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>

namespace pelmora::cli {
namespace {

int report(const Trouble& trouble) {
  const std::string line = errorLine(trouble);
  const std::size_t label = line.find(": ", line.find(": ") + 1) + 1;
  std::fprintf(stderr, "%s%s\n", coloured(stderr, Colour::red, line.substr(0, label)).c_str(),
               line.substr(label).c_str());
  return static_cast<int>(trouble.code());
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

int runCommand(CLI::App& app, int argc, const char* const* argv) {
  try {
    const std::string named = checkArguments(app, argc, argv);
    const std::string configuration = named.empty() ? configurationFile() : named;
    requireConfigurationFile(configuration);
    app.config_formatter(std::make_shared<ConfigurationReader>(configuration));
    app.parse(argc, argv);
    return static_cast<int>(ExitCode::ok);
  } catch (const CLI::CallForHelp&) {
    printData(app.help());
    return static_cast<int>(ExitCode::ok);
  } catch (const CLI::CallForVersion& wanted) {
    printData(std::string(wanted.what()) + "\n");
    return static_cast<int>(ExitCode::ok);
  } catch (const CLI::FileError& error) {
    return report({ExitCode::usage,
                   "the configuration file cannot be read: " + std::string(error.what()),
                   "name another one with --config FILE"});
  } catch (const CLI::ConfigError& error) {
    return report(
        {ExitCode::usage,
         "configuration file '" + app.get_config_ptr()->as<std::string>() + "': " + error.what(),
         "write lines NAME=VALUE below [COMMAND], with names as in 'pelmora COMMAND --help'"});
  } catch (const CLI::ParseError& error) {
    return report(usageTrouble(app, error, argc, argv));
  }
}

void addCommands(CLI::App& app) {
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
}

int parseAndRun(int argc, const char* const* argv) {
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
  addCommands(app);
  addNoInputEverywhere(app);
  return runCommand(app, argc, argv);
}

// A signal ends waits, too: what they meant by it is not what went wrong.
int runUnlessInterrupted(int argc, const char* const* argv) {
  try {
    return parseAndRun(argc, argv);
  } catch (const std::runtime_error&) {
    requireNotInterrupted();
    throw;
  }
}

int runWithTroubleTold(int argc, const char* const* argv) {
  try {
    return runUnlessInterrupted(argc, argv);
  } catch (const Interrupted& interruption) {
    (void)report({ExitCode::unexpected, std::string("interrupted: ") + storedWords().data(), ""});
    return exitCodeOf(interruption);
  } catch (const Trouble& trouble) {
    return report(trouble);
  } catch (const Error& error) {
    requireMemory(error);
    return report({ExitCode::unexpected, error.what(), ""});
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    return report({ExitCode::unexpected, error.what(), ""});
  }
}

}  // namespace

int run(int argc, const char* const* argv) noexcept {
  endOutOfMemoryInOrder();
  prepareStandardStreams();
  noteNothingStored();
  const InterruptionHandlers handlers;
  try {
    removeAbandonedFolders();
    return runWithTroubleTold(argc, argv);
  } catch (...) {
    return sayOutOfMemory();  // no other error is left: to tell of it took memory too
  }
}

}  // namespace pelmora::cli
