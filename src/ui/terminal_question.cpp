// SPDX-License-Identifier: MIT
#include "ui/terminal_question.h"

#include "ui/message_box.h"

#include <cctype>
#include <string_view>
#include <vector>

namespace pelmora {

namespace {

struct Choice {
  std::string_view word;  // its first letter is the mnemonic
  int answer;
};

constexpr Choice ok{"OK", box_answer::ok}, cancel{"Cancel", box_answer::cancel},
    abort{"Abort", box_answer::abort}, retry{"Retry", box_answer::retry},
    ignore{"Ignore", box_answer::ignore}, yes{"Yes", box_answer::yes}, no{"No", box_answer::no};

std::vector<Choice> choicesOf(int style) {
  switch (style & box_style::buttonSetMask) {
    case box_style::okCancel: return {ok, cancel};
    case box_style::abortRetryIgnore: return {abort, retry, ignore};
    case box_style::yesNoCancel: return {yes, no, cancel};
    case box_style::yesNo: return {yes, no};
    case box_style::retryCancel: return {retry, cancel};
    default: return {};
  }
}

// A default-button flag beyond the set means the first button, as without a flag.
const Choice& defaultOf(int style, const std::vector<Choice>& choices) {
  const auto at =
      static_cast<std::size_t>((style & box_style::defaultButtonMask) / box_style::defaultButton2);
  return choices[at < choices.size() ? at : 0];
}

std::string lowerCase(std::string_view text) {
  std::string result;
  for (const char c : text) {
    result += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return result;
}

std::string trimmed(const std::string& line) {
  constexpr const char* blanks = " \t\r";
  const std::size_t begin = line.find_first_not_of(blanks);
  if (begin == std::string::npos) return {};
  return line.substr(begin, line.find_last_not_of(blanks) - begin + 1);
}

}  // namespace

std::string questionText(int style) {
  const std::vector<Choice> choices = choicesOf(style);
  if (choices.empty()) return {};
  std::string text;
  for (const Choice& choice : choices) {
    if (!text.empty()) text += ", ";
    text += "[" + std::string(choice.word.substr(0, 1)) + "]" + std::string(choice.word.substr(1));
  }
  return text + " (Enter: " + std::string(defaultOf(style, choices).word) + ")? ";
}

std::optional<int> answerOf(int style, const std::string& line) {
  const std::vector<Choice> choices = choicesOf(style);
  if (choices.empty()) return std::nullopt;
  const std::string given = lowerCase(trimmed(line));
  if (given.empty()) return defaultOf(style, choices).answer;
  for (const Choice& choice : choices) {
    const std::string word = lowerCase(choice.word);
    if (given == word || given == word.substr(0, 1)) return choice.answer;
  }
  return std::nullopt;
}

}  // namespace pelmora
