// SPDX-License-Identifier: MIT
#include "ui/message_box.h"
#include "ui/terminal_question.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>

namespace pelmora {
namespace {

constexpr int rangeQuestion = 2;  // Abort, Retry, Ignore

class Typed {
 public:
  explicit Typed(std::deque<std::string> lines) : lines_(std::move(lines)) {}

  LineReader reader() {
    return [this]() -> std::optional<std::string> {
      if (lines_.empty()) return std::nullopt;
      std::string line = lines_.front();
      lines_.pop_front();
      return line;
    };
  }
  [[nodiscard]] std::size_t left() const { return lines_.size(); }

 private:
  std::deque<std::string> lines_;
};

int answerTo(int style, Typed typed, std::string* written = nullptr) {
  testing::internal::CaptureStderr();
  const int answer = terminalMessageBox("Go on?", style, "", typed.reader());
  const std::string text = testing::internal::GetCapturedStderr();
  if (written != nullptr) *written = text;
  return answer;
}

TEST(terminal_question, names_the_buttons_of_the_style_and_what_enter_means) {
  EXPECT_EQ(questionText(1), "[O]K, [C]ancel (Enter: OK)? ");
  EXPECT_EQ(questionText(2), "[A]bort, [R]etry, [I]gnore (Enter: Abort)? ");
  EXPECT_EQ(questionText(3), "[Y]es, [N]o, [C]ancel (Enter: Yes)? ");
  EXPECT_EQ(questionText(4 + 32 + 256), "[Y]es, [N]o (Enter: No)? ");
  EXPECT_EQ(questionText(5), "[R]etry, [C]ancel (Enter: Retry)? ");
}

TEST(terminal_question, default_button_beyond_the_set_is_the_first) {
  EXPECT_EQ(questionText(4 + 512), "[Y]es, [N]o (Enter: Yes)? ");
  EXPECT_EQ(answerOf(2 + 512, ""), 5);
  EXPECT_EQ(answerOf(2 + 768, ""), 3);
}

TEST(terminal_question, takes_letters_and_words_in_any_case) {
  EXPECT_EQ(answerOf(rangeQuestion, "a"), 3);
  EXPECT_EQ(answerOf(rangeQuestion, " R\r"), 4);
  EXPECT_EQ(answerOf(rangeQuestion, "IGNORE"), 5);
  EXPECT_EQ(answerOf(1, "ok"), 1);
  EXPECT_EQ(answerOf(3, "No"), 7);
}

TEST(terminal_question, does_not_guess) {
  EXPECT_EQ(answerOf(rangeQuestion, "x"), std::nullopt);
  EXPECT_EQ(answerOf(rangeQuestion, "re"), std::nullopt);
  EXPECT_EQ(answerOf(rangeQuestion, "yes"), std::nullopt);
}

TEST(terminal_question, is_asked_behind_the_text) {
  std::string written;
  EXPECT_EQ(answerTo(rangeQuestion, Typed({"retry"}), &written), 4);
  EXPECT_EQ(written, "Go on?\n[A]bort, [R]etry, [I]gnore (Enter: Abort)? ");
}

TEST(terminal_question, is_asked_again_until_a_line_names_a_button) {
  std::string written;
  EXPECT_EQ(answerTo(4, Typed({"perhaps", "n"}), &written), 7);
  EXPECT_EQ(written, "Go on?\n[Y]es, [N]o (Enter: Yes)? [Y]es, [N]o (Enter: Yes)? ");
}

TEST(terminal_question, end_of_input_is_the_harmless_answer) {
  EXPECT_EQ(answerTo(rangeQuestion, Typed({})), 3);
  EXPECT_EQ(answerTo(4, Typed({"what"})), 7);
}

TEST(terminal_question, a_lone_button_is_not_asked_for) {
  Typed typed({"kept"});
  testing::internal::CaptureStderr();
  EXPECT_EQ(terminalMessageBox("Done", 64, "", typed.reader()), 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Done\n");
  EXPECT_EQ(typed.left(), 1U);
}

}  // namespace
}  // namespace pelmora
