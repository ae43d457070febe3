// SPDX-License-Identifier: MIT
#include "apps/pelmora/input/range_question.h"

#include <unistd.h>

#include <array>
#include <cctype>
#include <cstdio>
#include <string_view>
#include <utility>

namespace pelmora::cli {
namespace {

using calibration::RangePolicy;

constexpr const char* offeredAnswers = "[A]bort, [R]etry, [I]gnore (Enter: Abort)? ";

std::string lowerCaseWord(const std::string& line) {
  constexpr const char* blanks = " \t\r";
  const std::size_t begin = line.find_first_not_of(blanks);
  if (begin == std::string::npos) return {};
  std::string word = line.substr(begin, line.find_last_not_of(blanks) - begin + 1);
  for (char& c : word) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return word;
}

std::optional<RangePolicy> answerOf(const std::string& line) {
  constexpr std::array<std::pair<std::string_view, RangePolicy>, 3> answers{
      {{"abort", RangePolicy::refuse},
       {"retry", RangePolicy::wholeRange},
       {"ignore", RangePolicy::extrapolate}}};
  const std::string given = lowerCaseWord(line);
  if (given.empty()) return RangePolicy::refuse;
  for (const auto& [word, answer] : answers) {
    if (given == word || given == word.substr(0, 1)) return answer;
  }
  return std::nullopt;
}

void showText(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fflush(stderr);
}

}  // namespace

RangePolicy askAboutRange(const std::string& text, const LineReader& readLine) {
  showText(text + "\n" + offeredAnswers);
  while (const std::optional<std::string> line = readLine()) {
    if (const std::optional<RangePolicy> answer = answerOf(*line)) return *answer;
    showText(offeredAnswers);
  }
  showText("\n");
  return RangePolicy::refuse;
}

bool isAnyoneAtTerminal() { return isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1; }

}  // namespace pelmora::cli
