// SPDX-License-Identifier: MIT
#include "apps/pelmora/input/range_question.h"

#include <array>
#include <cctype>
#include <cstdio>
#include <string_view>
#include <utility>

namespace pelmora::cli {
namespace {

constexpr const char* offeredAnswers = "[A]bort, [R]etry, [I]gnore (Enter: Abort)? ";

std::string lowerCaseWord(const std::string& line) {
  constexpr const char* blanks = " \t\r";
  const std::size_t begin = line.find_first_not_of(blanks);
  if (begin == std::string::npos) return {};
  std::string word = line.substr(begin, line.find_last_not_of(blanks) - begin + 1);
  for (char& c : word) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return word;
}

std::optional<RangeAnswer> answerOf(const std::string& line) {
  constexpr std::array<std::pair<std::string_view, RangeAnswer>, 3> answers{
      {{"abort", RangeAnswer::abort},
       {"retry", RangeAnswer::retry},
       {"ignore", RangeAnswer::ignore}}};
  const std::string given = lowerCaseWord(line);
  if (given.empty()) return RangeAnswer::abort;
  for (const auto& [word, answer] : answers) {
    if (given == word || given == word.substr(0, 1)) return answer;
  }
  return std::nullopt;
}

void write(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fflush(stderr);
}

}  // namespace

RangeAnswer askAboutRange(const std::string& text, const LineReader& readLine) {
  std::string shown = text;
  std::erase(shown, '\r');
  write(shown + "\n" + offeredAnswers);
  while (const std::optional<std::string> line = readLine()) {
    if (const std::optional<RangeAnswer> answer = answerOf(*line)) return *answer;
    write(offeredAnswers);
  }
  write("\n");
  return RangeAnswer::abort;
}

}  // namespace pelmora::cli
