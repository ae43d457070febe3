// SPDX-License-Identifier: MIT
#include "apps/pelmora/command_line.h"

#include "apps/pelmora/commands.h"
#include "apps/pelmora/help_formatter.h"
#include "apps/pelmora/trouble.h"
#include "apps/pelmora/version.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>

namespace pelmora::cli {
namespace {

int report(const Trouble& trouble) {
  std::fflush(stdout);
  std::fprintf(stderr, "%s\n", errorLine(trouble).c_str());
  return static_cast<int>(trouble.code());
}

// The command that was being read, for its --help.
std::string commandOf(const CLI::App& app) {
  for (const CLI::App* command : app.get_subcommands()) return "pelmora " + command->get_name();
  return "pelmora";
}

int runCommand(CLI::App& app, int argc, const char* const* argv) {
  try {
    app.parse(argc, argv);
    return static_cast<int>(ExitCode::ok);
  } catch (const CLI::Success& success) {
    return app.exit(success);  // --help and --version
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
    addInitCommand(app);
    addImportCommand(app);
    addImportCurveCommand(app);
    addRawCommand(app);
    addFitCommand(app);
    addShowCommand(app);
    addCalibrateCommand(app);
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
