// A command of the program, described by its options; the parser behind it stays in this room.
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace pelmora::cli {

struct OptionText {
  std::string names;  // "--meter" or "-o,--output"; of a positional its name in capitals
  std::string value;  // how the help calls the value: "FILE", "N"
  std::string help;
  bool isRequired = false;
};

// What is added must outlive the run of the command; commands keep their requests in a shared
// pointer that the action holds.
class Command {
 public:
  explicit Command(CLI::App& parser) : parser_(parser) {}

  void addFlag(const std::string& names, bool& isGiven, const std::string& help);
  void addFlag(const std::string& names, std::function<void()> given, const std::string& help);
  // The value byte for byte.
  void addText(const OptionText& option, std::string& value);
  // The value as `take` reads it, which may throw Trouble.
  void addText(const OptionText& option, std::function<void(const std::string&)> take);
  // One of several words. option.value: the words with | between them.
  void addChoice(const OptionText& option, std::string& value);
  void addChoice(const OptionText& option, std::function<void(const std::string&)> take);
  // May be repeated, each time with one value, also "[a,b]".
  void addTexts(const OptionText& option, std::vector<std::string>& values);
  // May be repeated; `take` gets each value.
  void addEachText(const OptionText& option, std::function<void(const std::string&)> take);
  // A positional of one value or more; last of its command.
  void addValues(const OptionText& option, std::vector<std::string>& values);

  void setFooter(const std::string& text);
  // Help and completions leave the command out: it is for scripts.
  void hide();
  void onRun(std::function<void()> action);

 private:
  CLI::App& parser_;
};

}  // namespace pelmora::cli
