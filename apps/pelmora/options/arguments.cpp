// SPDX-License-Identifier: MIT
#include "apps/pelmora/options/arguments.h"

#include "apps/pelmora/trouble.h"

#include <cctype>
#include <cstddef>
#include <optional>
#include <vector>

namespace pelmora::cli {
namespace {

// "--name=value", "--name", "-n" or "-nvalue".
struct OptionArgument {
  std::string name;
  std::optional<std::string> value;
};

bool isNameStart(char c) {
  return std::isalpha(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '?' || c == '@';
}

// Nothing for values: -5 is a number.
std::optional<OptionArgument> optionIn(const std::string& argument) {
  if (argument.size() > 2 && argument.starts_with("--") && isNameStart(argument[2])) {
    const std::size_t equals = argument.find('=');
    if (equals == std::string::npos) return OptionArgument{argument, std::nullopt};
    return OptionArgument{argument.substr(0, equals), argument.substr(equals + 1)};
  }
  if (argument.size() < 2 || argument[0] != '-' || !isNameStart(argument[1])) return std::nullopt;
  if (argument.size() == 2) return OptionArgument{argument, std::nullopt};
  return OptionArgument{argument.substr(0, 2), argument.substr(2)};
}

bool takesValue(const CLI::Option& option) {
  return option.get_expected_max() > 0 && option.get_type_size_max() > 0;
}

class ArgumentWalk {
 public:
  ArgumentWalk(CLI::App& app, int argc, const char* const* argv)
      : command_(&app), isCommandKnown_(false) {
    for (int i = 1; i < argc; ++i) arguments_.emplace_back(argv[i]);
  }

  std::string run() {
    for (at_ = 0; at_ < arguments_.size(); ++at_) take(arguments_[at_]);
    fitListOfValues();
    return configuration_;
  }

 private:
  void take(const std::string& argument) {
    if (!onlyValues_ && argument == "--") {
      onlyValues_ = true;
      return;
    }
    const auto option = onlyValues_ ? std::nullopt : optionIn(argument);
    if (option) return takeOption(*option);
    if (isCommandKnown_) {
      ++values_;
      return;
    }
    for (CLI::App* command : command_->get_subcommands([](const CLI::App*) { return true; })) {
      if (command->get_name() != argument) continue;
      command_ = command;
      isCommandKnown_ = true;
      return;
    }
  }

  void takeOption(const OptionArgument& given) {
    const CLI::Option* option = command_->get_option_no_throw(given.name);
    if (option == nullptr) return;  // the parser says so
    if (!takesValue(*option)) {
      if (given.value && given.value->empty()) throw needlessValue(given.name);
      return;
    }
    const std::string value = given.value ? *given.value : followingValue(given.name);
    if (given.value && value.empty()) throw emptyValue(given.name);
    if (given.name == "--config") configuration_ = value;
  }

  std::string followingValue(const std::string& option) {
    if (++at_ == arguments_.size()) return {};  // the parser says so
    const std::string& value = arguments_[at_];
    const auto other = optionIn(value);
    const bool isOption = other && command_->get_option_no_throw(other->name) != nullptr &&
                          (value.starts_with("--") || value == other->name);
    if (isOption) {
      throw Trouble(ExitCode::usage, option + ": a value is missing before '" + value + "'",
                    "give a value; write one that looks like an option as " + option + "=" + value);
    }
    if (value.empty()) throw emptyValue(option);
    return value;
  }

  static Trouble emptyValue(const std::string& option) {
    return {ExitCode::usage, option + ": the value is empty",
            "write it after the option, or leave the option out"};
  }
  static Trouble needlessValue(const std::string& option) {
    return {ExitCode::usage, option + "=: the option takes no value", "write " + option + " alone"};
  }

  void fitListOfValues() const {
    CLI::Option* list = nullptr;
    std::size_t others = 0;
    for (CLI::Option* option : command_->get_options()) {
      if (!option->get_positional()) continue;
      if (option->get_expected_max() > 1) {
        list = option;
      } else {
        ++others;
      }
    }
    if (list != nullptr && values_ > others) list->expected(static_cast<int>(values_ - others));
  }

  CLI::App* command_;
  bool isCommandKnown_, onlyValues_ = false;
  std::vector<std::string> arguments_;
  std::size_t at_ = 0, values_ = 0;
  std::string configuration_;
};

}  // namespace

std::string checkArguments(CLI::App& app, int argc, const char* const* argv) {
  return ArgumentWalk(app, argc, argv).run();
}

}  // namespace pelmora::cli
