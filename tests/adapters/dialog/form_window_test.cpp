// SPDX-License-Identifier: MIT
#include "adapters/dialog/form_window.h"

#include <pelmora/error.h>

#include <gtest/gtest.h>

#include <string>

namespace pelmora::dialog {
namespace {

frmMessage form(const std::string& text, const std::string& title, int style) {
  frmMessage made;
  made.Form_Load("calibrate");
  made.SetupForm(text, title, style);
  return made;
}

std::string captions(const WindowRequest& request) {
  std::string all;
  for (const WindowButton& button : request.buttons) all += button.caption;
  return all;
}

TEST(form_window, shows_title_text_and_size_of_the_form) {
  const WindowRequest request = windowOf(form("a\tb", "Sort", 0));
  EXPECT_EQ(request.title, "Sort");
  EXPECT_EQ(request.text, "a     b");
  EXPECT_EQ(request.width, 420);
  EXPECT_EQ(request.height, 152);
  EXPECT_FALSE(request.growsWithText);
  EXPECT_EQ(request.icon, WindowIcon::none);
}

TEST(form_window, shows_visible_buttons_from_left_to_right) {
  const WindowRequest request = windowOf(form("", "", 3));
  EXPECT_EQ(captions(request), "&Yes&No&Cancel");
  EXPECT_EQ(request.buttons[2].code, 2);
  EXPECT_EQ(request.buttons[0].area, (WindowArea{61, 110, 88, 28}));
  EXPECT_EQ(request.buttons[1].area, (WindowArea{166, 110, 88, 28}));
  EXPECT_EQ(request.buttons[2].area, (WindowArea{271, 110, 88, 28}));
}

TEST(form_window, edges_are_rounded_to_whole_pixels) {
  frmMessage wide;
  wide.Width = 400;  // 89.33 and 222.67
  wide.SetupForm("", "", 4);
  const WindowRequest request = windowOf(wide);
  EXPECT_EQ(request.buttons[0].area.left, 89);
  EXPECT_EQ(request.buttons[1].area.left, 223);
}

TEST(form_window, form_ignores_icon_and_default_button) {
  const WindowRequest request = windowOf(form("", "", 32 + 256 + 4));
  EXPECT_EQ(request.icon, WindowIcon::none);
  EXPECT_EQ(request.focusedButton, 0);
}

TEST(form_window, form_without_buttons_is_a_window_without_buttons) {
  EXPECT_TRUE(windowOf(form("", "", 6)).buttons.empty());
}

TEST(form_window, message_box_shows_icon_default_button_and_text_as_it_is) {
  const WindowRequest request = windowOf("a\tb", 48 + 512 + 2, "Range");
  EXPECT_EQ(request.title, "Range");
  EXPECT_EQ(request.text, "a\tb");
  EXPECT_EQ(captions(request), "&Abort&Retry&Ignore");
  EXPECT_EQ(request.icon, WindowIcon::exclamation);
  EXPECT_EQ(request.focusedButton, 2);
  EXPECT_TRUE(request.growsWithText);
}

TEST(form_window, text_of_a_message_box_makes_room_for_its_icon) {
  const WindowRequest plain = windowOf("text", 0, "");
  const WindowRequest critical = windowOf("text", 16, "");
  EXPECT_EQ(critical.icon, WindowIcon::critical);
  EXPECT_EQ(critical.textArea.left, plain.textArea.left + 48);
  EXPECT_EQ(critical.textArea.width, plain.textArea.width - 48);
}

TEST(form_window, message_box_without_a_title_bears_the_name_of_the_program) {
  EXPECT_EQ(windowOf("text", 0, "").title, "adapters_dialog_test");
}

TEST(form_window, default_button_that_is_not_there_is_the_first) {
  EXPECT_EQ(windowOf("text", 768 + 4, "").focusedButton, 0);
  EXPECT_EQ(windowOf("text", 256, "").focusedButton, 0);
}

TEST(form_window, message_box_with_an_unknown_button_set_is_refused) {
  EXPECT_THROW(static_cast<void>(windowOf("text", 6, "")), Error);
}

}  // namespace
}  // namespace pelmora::dialog
