// SPDX-License-Identifier: MIT
#include "apps/pelmora/options/command.h"

#include "apps/pelmora/options/alternatives.h"

#include <CLI/App.hpp>
#include <CLI/Validators.hpp>

#include <limits>
#include <utility>

namespace pelmora::cli {
namespace {

constexpr int mostValues = std::numeric_limits<std::int16_t>::max();

CLI::Option& described(CLI::Option& added, const OptionText& option) {
  if (!option.value.empty()) added.type_name(option.value);
  return *added.required(option.isRequired);
}

CLI::Option& addTextsTo(CLI::App& parser, const OptionText& option,
                        std::vector<std::string>& values) {
  const auto store = [&values](const CLI::results_t& given) {
    values = given;
    return true;
  };
  CLI::Option& added = *parser.add_option(option.names, store, option.help)
                            ->expected(1)
                            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  return described(added, option);
}

}  // namespace

void Command::addFlag(const std::string& names, bool& isGiven, const std::string& help) {
  parser_.add_flag(names, isGiven, help);
}

void Command::addFlag(const std::string& names, std::function<void()> given,
                      const std::string& help) {
  parser_.add_flag_callback(names, std::move(given), help);
}

void Command::addText(const OptionText& option, std::string& value) {
  described(*parser_.add_option(option.names, value, option.help), option);
}

void Command::addText(const OptionText& option, std::function<void(const std::string&)> take) {
  described(*parser_.add_option_function<std::string>(option.names, std::move(take), option.help),
            option);
}

void Command::addChoice(const OptionText& option, std::string& value) {
  parser_.add_option(option.names, value, option.help)
      ->check(CLI::IsMember(alternatives(option.value)))
      ->option_text(option.value)
      ->required(option.isRequired);
}

void Command::addChoice(const OptionText& option, std::function<void(const std::string&)> take) {
  parser_.add_option_function<std::string>(option.names, std::move(take), option.help)
      ->check(CLI::IsMember(alternatives(option.value)))
      ->option_text(option.value)
      ->required(option.isRequired);
}

void Command::addTexts(const OptionText& option, std::vector<std::string>& values) {
  addTextsTo(parser_, option, values);
}

void Command::addEachText(const OptionText& option, std::function<void(const std::string&)> take) {
  const auto takeAll = [take = std::move(take)](const CLI::results_t& given) {
    for (const std::string& text : given) take(text);
    return true;
  };
  described(*parser_.add_option(option.names, takeAll, option.help)
                 ->expected(1)
                 ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll),
            option);
}

void Command::addValues(const OptionText& option, std::vector<std::string>& values) {
  addTextsTo(parser_, option, values).expected(1, mostValues)->required();
}

void Command::setFooter(const std::string& text) { parser_.footer(text); }
void Command::hide() { parser_.group(""); }
void Command::onRun(std::function<void()> action) { parser_.callback(std::move(action)); }

}  // namespace pelmora::cli
