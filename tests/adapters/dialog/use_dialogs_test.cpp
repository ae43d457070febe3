// SPDX-License-Identifier: MIT
#include "tests/adapters/dialog/fake_helper.h"
#include "ui/show_message.h"

#include <pelmora/dialog.h>

#include <gtest/gtest.h>

#include <string>

namespace pelmora {
namespace {

class use_dialogs : public test::FakeHelperTest {
 protected:
  use_dialogs() {
    platform() = {};
    platform().messageBox = [this](const std::string& text, int style, const std::string& title) {
      box_ += text + "|" + std::to_string(style) + "|" + title + "\n";
      return 4;
    };
  }
  ~use_dialogs() override { platform() = {}; }

  void useHelper(const std::string& lines) {
    useDialogs(platform(), {.helperProgram = readingHelper(lines), .readyWithin = test::patience});
  }

  std::string box_;
};

TEST_F(use_dialogs, form_is_answered_by_the_window) {
  useHelper("echo ready; echo answer 7");
  std::int32_t style = 4;
  EXPECT_EQ(showMessageForm("text", style, "title"), 7);
  EXPECT_EQ(box_, "");
}

TEST_F(use_dialogs, form_that_is_closed_reads_as_cancel) {
  useHelper("echo ready; echo closed");
  std::int32_t style = 4;
  EXPECT_EQ(showMessageForm("text", style, "title"), 2);
}

TEST_F(use_dialogs, message_box_is_answered_by_the_window) {
  useHelper("echo ready; echo answer 5");
  EXPECT_EQ(platform().messageBox("text", 2, ""), 5);
  EXPECT_EQ(box_, "");
}

TEST_F(use_dialogs, message_box_that_is_closed_changes_nothing) {
  useHelper("echo ready; echo closed");
  EXPECT_EQ(platform().messageBox("text", 0, ""), 1);
  EXPECT_EQ(platform().messageBox("text", 1, ""), 2);
  EXPECT_EQ(platform().messageBox("text", 2, ""), 3);
  EXPECT_EQ(platform().messageBox("text", 3, ""), 2);
  EXPECT_EQ(platform().messageBox("text", 4, ""), 7);
  EXPECT_EQ(platform().messageBox("text", 5, ""), 2);
}

TEST_F(use_dialogs, lost_form_is_answered_by_the_message_box_of_before) {
  useHelper("exit 1");
  std::int32_t style = 37;
  EXPECT_EQ(showMessageForm("text", style, "title"), 4);
  EXPECT_EQ(box_, "text|37|\n");
}

TEST_F(use_dialogs, lost_form_is_asked_again_as_a_message_box_window) {
  useHelper("if [ -e " + file("once") + " ]; then echo ready; echo answer 4; else touch " +
            file("once") + "; echo ready; fi");
  std::int32_t style = 5;
  EXPECT_EQ(showMessageForm("text", style, "title"), 4);
  EXPECT_EQ(box_, "");
}

TEST_F(use_dialogs, lost_message_box_is_answered_by_the_one_of_before) {
  useHelper("echo ready; exit 1");
  EXPECT_EQ(platform().messageBox("text", 2, "title"), 4);
  EXPECT_EQ(box_, "text|2|title\n");
}

TEST_F(use_dialogs, without_a_message_box_of_before_the_answer_is_harmless) {
  platform() = {};
  useHelper("exit 1");
  EXPECT_EQ(platform().messageBox("text", 4, "title"), 7);
}

TEST_F(use_dialogs, unknown_button_set_goes_to_the_message_box_of_before) {
  useHelper("echo ready; echo answer 1");
  EXPECT_EQ(platform().messageBox("text", 6, ""), 4);
  EXPECT_EQ(box_, "text|6|\n");
}

TEST_F(use_dialogs, pump_is_the_one_that_the_platform_has_at_the_time) {
  // The helper answers when the host's messages have been pumped.
  useHelper("echo ready; while [ ! -e " + file("pumped") +
            " ]; do sleep 0.05; done; echo answer 1");
  int pumped = 0;
  platform().pumpMessages = [&] {
    ++pumped;
    std::ofstream{file("pumped")};
  };
  EXPECT_EQ(platform().messageBox("text", 0, ""), 1);
  EXPECT_GT(pumped, 0);
}

TEST_F(use_dialogs, display_that_does_not_answer_costs_the_wait_once) {
  useDialogs(platform(), {.helperProgram = helper("exec sleep 600"),
                          .readyWithin = std::chrono::milliseconds(1000)});
  const test::StopWatch watch;
  std::int32_t style = 2;
  EXPECT_EQ(showMessageForm("text", style, ""), 4);
  EXPECT_EQ(platform().messageBox("again", 2, ""), 4);
  EXPECT_GE(watch.seconds(), 1.0);
  EXPECT_EQ(box_, "text|2|\nagain|2|\n");
}

}  // namespace
}  // namespace pelmora
