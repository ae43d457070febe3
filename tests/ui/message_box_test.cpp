// SPDX-License-Identifier: MIT
#include "ui/message_box.h"

#include <pelmora/platform.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace pelmora {
namespace {

class message_box : public testing::Test {
 protected:
  message_box() { platform() = {}; }
  ~message_box() override { platform() = {}; }
};

TEST_F(message_box, harmless_answer_changes_nothing_for_each_button_set) {
  EXPECT_EQ(harmlessAnswer(0), 1);  // OK
  EXPECT_EQ(harmlessAnswer(1), 2);  // OK, Cancel
  EXPECT_EQ(harmlessAnswer(2), 3);  // Abort, Retry, Ignore
  EXPECT_EQ(harmlessAnswer(3), 2);  // Yes, No, Cancel
  EXPECT_EQ(harmlessAnswer(4), 7);  // Yes, No
  EXPECT_EQ(harmlessAnswer(5), 2);  // Retry, Cancel
}

TEST_F(message_box, harmless_answer_ignores_icon_default_button_and_modality) {
  EXPECT_EQ(harmlessAnswer(16), 1);
  EXPECT_EQ(harmlessAnswer(32 + 4), 7);
  EXPECT_EQ(harmlessAnswer(48 + 256 + 2), 3);
  EXPECT_EQ(harmlessAnswer(4096 + 768 + 64 + 1), 2);
}

TEST_F(message_box, harmless_answer_to_an_unknown_set_is_cancel) {
  EXPECT_EQ(harmlessAnswer(6), 2);
  EXPECT_EQ(harmlessAnswer(-1), 2);
}

TEST_F(message_box, box_without_a_window_writes_title_and_text_to_standard_error) {
  testing::internal::CaptureStderr();
  const int answer = messageBoxOnStandardError("Error in RawData:SetRaw\r\nOverflow", 16, "Error");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: Error in RawData:SetRaw\nOverflow\n");
  EXPECT_EQ(answer, 1);
}

TEST_F(message_box, box_without_a_window_and_title_writes_the_text_alone) {
  testing::internal::CaptureStderr();
  const int answer = messageBoxOnStandardError("Min X : 1\t\tMin Raw : 2", 2, "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Min X : 1\t\tMin Raw : 2\n");
  EXPECT_EQ(answer, 3);
}

TEST_F(message_box, box_without_a_window_does_not_pass_control_characters_on) {
  testing::internal::CaptureStderr();
  messageBoxOnStandardError(std::string("a\x1b[2Jb\0c\rd\x7f", 11), 0, "t\x07");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "t?: a?[2Jb?c?d?\n");
}

TEST_F(message_box, standard_box_is_the_one_of_the_platform) {
  std::string seen;
  platform().messageBox = [&](const std::string& text, int style, const std::string& title) {
    seen = text + "|" + std::to_string(style) + "|" + title;
    return 4;
  };
  EXPECT_EQ(standardMessageBox("text", 66, "title"), 4);
  EXPECT_EQ(seen, "text|66|title");
}

TEST_F(message_box, missing_standard_box_answers_harmlessly) {
  EXPECT_EQ(standardMessageBox("text", 4, ""), 7);
}

TEST_F(message_box, throwing_standard_box_answers_harmlessly) {
  platform().messageBox = [](const std::string&, int, const std::string&) -> int {
    throw std::runtime_error("no display");
  };
  EXPECT_EQ(standardMessageBox("text", 2, ""), 3);
}

TEST_F(message_box, standard_box_may_replace_itself_while_open) {
  platform().messageBox = [captured = std::string(1000, 'x')](const std::string&, int,
                                                              const std::string&) {
    platform().messageBox = nullptr;
    return static_cast<int>(captured.size());
  };
  EXPECT_EQ(standardMessageBox("text", 0, ""), 1000);
}

}  // namespace
}  // namespace pelmora
