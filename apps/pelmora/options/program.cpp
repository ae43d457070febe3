// SPDX-License-Identifier: MIT
#include "apps/pelmora/options/program.h"

#include "apps/pelmora/exit_code.h"
#include "apps/pelmora/options/arguments.h"
#include "apps/pelmora/options/configuration.h"
#include "apps/pelmora/options/configuration_file.h"
#include "apps/pelmora/options/describe_parser.h"
#include "apps/pelmora/options/help_formatter.h"
#include "apps/pelmora/options/usage_trouble.h"
#include "apps/pelmora/output/standard_output.h"
#include "apps/pelmora/trouble.h"
#include "base/version.h"

#include <CLI/CLI.hpp>

namespace pelmora::cli {
namespace {

// Every command takes the option, so that scripts can give it to any.
void addNoInputEverywhere(CLI::App& parser) {
  for (CLI::App* command : parser.get_subcommands([](const CLI::App*) { return true; })) {
    if (command->get_option_no_throw("--no-input") == nullptr) {
      command->add_flag_callback(
          "--no-input", [] {}, "Never ask; this command asks nothing");
    }
  }
}

}  // namespace

Program::Program()
    : parser_(std::make_unique<CLI::App>(
          "Keeps, derives, fits and reports calibration curves of turbine flow meters.",
          "pelmora")) {
  parser_->require_subcommand(1);
  parser_->set_version_flag("--version", "pelmora " + std::string(version));
  parser_->footer(exitCodeHelp);
  parser_->formatter(std::make_shared<HelpFormatter>());
  parser_
      ->set_config("--config", configurationFile(),
                   "File with defaults of options (default: $PELMORA_CONFIG, else "
                   "~/.config/pelmora/config.ini)")
      ->option_text("FILE");
  parser_->allow_config_extras(false);
}

Program::~Program() = default;

Command Program::add(const std::string& name, const std::string& help) {
  return Command(*parser_->add_subcommand(name, help));
}

ProgramDescription Program::description() const { return describe(*parser_); }

void Program::run(int argc, const char* const* argv) {
  CLI::App& parser = *parser_;
  addNoInputEverywhere(parser);
  try {
    const std::string named = checkArguments(parser, argc, argv);
    const std::string configuration = named.empty() ? configurationFile() : named;
    requireConfigurationFile(configuration);
    parser.config_formatter(std::make_shared<ConfigurationReader>(configuration));
    parser.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    printData(parser.help());
  } catch (const CLI::CallForVersion& wanted) {
    printData(std::string(wanted.what()) + "\n");
  } catch (const CLI::FileError& error) {
    throw Trouble(ExitCode::usage,
                  "the configuration file cannot be read: " + std::string(error.what()),
                  "name another one with --config FILE");
  } catch (const CLI::ConfigError& error) {
    throw Trouble(
        ExitCode::usage,
        "configuration file '" + parser.get_config_ptr()->as<std::string>() + "': " + error.what(),
        "write lines NAME=VALUE below [COMMAND], with names as in 'pelmora COMMAND --help'");
  } catch (const CLI::ParseError& error) {
    throw usageTrouble(parser, error, argc, argv);
  }
}

}  // namespace pelmora::cli
