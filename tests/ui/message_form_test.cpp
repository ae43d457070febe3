// SPDX-License-Identifier: MIT
#include "ui/message_form.h"

#include <pelmora/error.h>

#include <gtest/gtest.h>

#include <string>

namespace pelmora {
namespace {

frmMessage loadedForm() {
  frmMessage form;
  form.Form_Load("calibrate");
  return form;
}

TEST(message_form, captions_are_the_fixed_ones) {
  const frmMessage form;
  EXPECT_STREQ(form.OKButton.Caption, "&OK");
  EXPECT_STREQ(form.CancelButton.Caption, "&Cancel");
  EXPECT_STREQ(form.AbortButton.Caption, "&Abort");
  EXPECT_STREQ(form.RetryButton.Caption, "&Retry");
  EXPECT_STREQ(form.IgnoreButton.Caption, "&Ignore");
  EXPECT_STREQ(form.YesButton.Caption, "&Yes");
  EXPECT_STREQ(form.NoButton.Caption, "&No");
}

TEST(message_form, all_buttons_are_hidden_by_design) {
  const frmMessage form;
  for (const FormButton* button : form.buttons()) EXPECT_FALSE(button->Visible);
}

TEST(message_form, loading_sets_title_and_response) {
  frmMessage form;
  form.Response = 6;
  form.Form_Load("calibrate");
  EXPECT_EQ(form.windowTitle(), "calibrate");
  EXPECT_EQ(form.Response, 2);
  EXPECT_TRUE(form.isLoaded());
}

TEST(message_form, caption_becomes_the_title) {
  frmMessage form = loadedForm();
  form.SetupForm("text", "Sort", 0);
  EXPECT_EQ(form.windowTitle(), "Sort");
}

TEST(message_form, empty_caption_keeps_the_executable_name) {
  frmMessage form = loadedForm();
  form.SetupForm("text", "", 0);
  EXPECT_EQ(form.windowTitle(), "calibrate");
}

TEST(message_form, set_up_keeps_what_it_was_given) {
  frmMessage form = loadedForm();
  form.SetupForm("a\tb", "Sort", 36);
  EXPECT_EQ(form.Message, "a\tb");
  EXPECT_EQ(form.Caption, "Sort");
  EXPECT_EQ(form.ButtonStyle, 36);
}

TEST(message_form, tab_is_shown_as_five_blanks) {
  frmMessage form = loadedForm();
  form.SetupForm("one\ttwo", "", 0);
  EXPECT_EQ(form.lblMessage.Text, "one     two");
}

TEST(message_form, every_tab_is_replaced_and_nothing_else) {
  frmMessage form = loadedForm();
  form.SetupForm("\ta\t\tb\r\nc\t", "", 0);
  EXPECT_EQ(form.lblMessage.Text, "     a          b\r\nc     ");
}

TEST(message_form, closing_without_a_button_reads_as_cancel) {
  frmMessage form = loadedForm();
  form.SetupForm("text", "", 4);
  form.close();
  EXPECT_EQ(form.Response, 2);
  EXPECT_FALSE(form.isLoaded());
}

struct Click {
  void (frmMessage::*handler)();
  std::int16_t response;
};

class click_of_a_button : public testing::TestWithParam<Click> {};

TEST_P(click_of_a_button, sets_its_code_and_unloads) {
  frmMessage form = loadedForm();
  (form.*GetParam().handler)();
  EXPECT_EQ(form.Response, GetParam().response);
  EXPECT_FALSE(form.isLoaded());
}

INSTANTIATE_TEST_SUITE_P(message_form, click_of_a_button,
                         testing::Values(Click{&frmMessage::OKButton_Click, 1},
                                         Click{&frmMessage::CancelButton_Click, 2},
                                         Click{&frmMessage::AbortButton_Click, 3},
                                         Click{&frmMessage::RetryButton_Click, 4},
                                         Click{&frmMessage::IgnoreButton_Click, 5},
                                         Click{&frmMessage::YesButton_Click, 6},
                                         Click{&frmMessage::NoButton_Click, 7}));

TEST(message_form, click_by_code_reaches_a_visible_button) {
  frmMessage form = loadedForm();
  form.SetupForm("text", "", 4);
  form.click(7);
  EXPECT_EQ(form.Response, 7);
  EXPECT_FALSE(form.isLoaded());
}

TEST(message_form, click_by_the_code_of_a_hidden_button_is_refused) {
  frmMessage form = loadedForm();
  form.SetupForm("text", "", 4);
  EXPECT_THROW(form.click(1), Error);
  EXPECT_THROW(form.click(0), Error);
  EXPECT_THROW(form.click(8), Error);
  EXPECT_EQ(form.Response, 2);
  EXPECT_TRUE(form.isLoaded());
}

TEST(message_form, style_beyond_16_bits_is_an_overflow) {
  frmMessage form = loadedForm();
  for (const std::int32_t style : {32768, -32769, 65540}) {
    try {
      form.SetupForm("text", "", style);
      ADD_FAILURE() << style;
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), 6);
    }
  }
  form.SetupForm("text", "", 32767);
  form.SetupForm("text", "", -32768);
  EXPECT_EQ(form.ButtonStyle, -32768);
}

}  // namespace
}  // namespace pelmora
