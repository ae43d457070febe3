// SPDX-License-Identifier: MIT
#include "apps/pelmora/options/describe_parser.h"

#include "apps/pelmora/options/alternatives.h"

#include <CLI/CLI.hpp>

namespace pelmora::cli {
namespace {

// The help's own names of values tell what they are.
ValueKind kindOf(const std::string& name, const std::string& value) {
  if (value.empty()) return ValueKind::none;
  if (value.find('|') != std::string::npos) return ValueKind::choice;
  if (value == "FILE" || value == "PATH" || value == "FOLDER") return ValueKind::file;
  if (name == "--meter") return ValueKind::meter;
  if (name == "--series") return ValueKind::series;
  return ValueKind::text;
}

OptionDescription optionOf(const CLI::Option& option) {
  OptionDescription result;
  for (const std::string& name : option.get_snames()) result.names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) result.names.push_back("--" + name);
  if (result.names.empty()) result.names.push_back(option.get_name(true));
  const bool takesValue = option.get_expected_max() > 0 && option.get_type_size_max() > 0;
  if (takesValue) {
    result.value =
        option.get_option_text().empty() ? option.get_type_name() : option.get_option_text();
  }
  result.help = option.get_description();
  result.kind = kindOf(result.name(), result.value);
  if (result.kind == ValueKind::choice) result.choices = alternatives(result.value);
  result.isRequired = option.get_required();
  return result;
}

CommandDescription describeCommand(const CLI::App& app) {
  CommandDescription result{app.get_name(), app.get_description(), {}, {}};
  for (const CLI::Option* option : app.get_options()) {
    if (option->get_group().empty()) continue;
    (option->get_positional() ? result.positionals : result.options).push_back(optionOf(*option));
  }
  return result;
}

}  // namespace

ProgramDescription describe(const CLI::App& app) {
  CommandDescription own = describeCommand(app);
  ProgramDescription result{own.name, own.help, app.get_footer(), std::move(own.options), {}};
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    if (!command->get_group().empty()) result.commands.push_back(describeCommand(*command));
  }
  return result;
}

}  // namespace pelmora::cli
