// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"

#include "apps/pelmora/commands.h"
#include "apps/pelmora/help_formatter.h"
#include "apps/pelmora/terminal_colour.h"
#include "apps/pelmora/trouble.h"
#include "apps/pelmora/usage_trouble.h"
#include "base/version.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

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
  } catch (const CLI::ParseError& error) {
    return report(usageTrouble(app, error, argc, argv));
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
