// SPDX-License-Identifier: MIT
#include "apps/pelmora/input/range_question.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>

namespace pelmora::cli {
namespace {

using calibration::RangePolicy;

const std::string choice = "[A]bort, [R]etry, [I]gnore (Enter: Abort)? ";

// The answer to a question behind which these lines are typed, and what was written.
std::pair<RangePolicy, std::string> answerTo(std::deque<std::string> typed) {
  testing::internal::CaptureStderr();
  const RangePolicy answer =
      askAboutRange("From 1 to 2.\nGo on?", [&]() -> std::optional<std::string> {
        if (typed.empty()) return std::nullopt;
        std::string line = typed.front();
        typed.pop_front();
        return line;
      });
  return {answer, testing::internal::GetCapturedStderr()};
}

TEST(range_question, is_asked_behind_the_text) {
  const auto [answer, written] = answerTo({"retry"});
  EXPECT_EQ(answer, RangePolicy::wholeRange);
  EXPECT_EQ(written, "From 1 to 2.\nGo on?\n" + choice);
}

TEST(range_question, takes_letters_and_words_in_any_case) {
  EXPECT_EQ(answerTo({"a"}).first, RangePolicy::refuse);
  EXPECT_EQ(answerTo({" R\r"}).first, RangePolicy::wholeRange);
  EXPECT_EQ(answerTo({"IGNORE"}).first, RangePolicy::extrapolate);
}

TEST(range_question, is_asked_again_until_a_line_names_an_answer) {
  const auto [answer, written] = answerTo({"perhaps", "re", "yes", "i"});
  EXPECT_EQ(answer, RangePolicy::extrapolate);
  EXPECT_EQ(written, "From 1 to 2.\nGo on?\n" + choice + choice + choice + choice);
}

TEST(range_question, aborts_on_an_empty_line_and_at_the_end_of_input) {
  EXPECT_EQ(answerTo({""}).first, RangePolicy::refuse);
  EXPECT_EQ(answerTo({}).first, RangePolicy::refuse);
  EXPECT_EQ(answerTo({"what"}).first, RangePolicy::refuse);
}

}  // namespace
}  // namespace pelmora::cli
