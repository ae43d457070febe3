// Which buttons a style shows, and where.
// SPDX-License-Identifier: MIT
#include "ui/message_form.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace pelmora {
namespace {

// Captions of the visible buttons from left to right.
std::string shown(std::int32_t style) {
  frmMessage form;
  form.Form_Load("calibrate");
  form.SetupForm("text", "", style);
  std::vector<std::pair<float, std::string>> visible;
  for (const FormButton* button : form.buttons()) {
    if (button->Visible) visible.emplace_back(button->Left, button->Caption + 1);
  }
  std::sort(visible.begin(), visible.end());
  std::string captions;
  for (const auto& [left, caption] : visible) captions += (captions.empty() ? "" : " ") + caption;
  return captions;
}

TEST(message_form_layout, each_button_set_shows_its_buttons_in_order) {
  EXPECT_EQ(shown(0), "OK");
  EXPECT_EQ(shown(1), "OK Cancel");
  EXPECT_EQ(shown(2), "Abort Retry Ignore");
  EXPECT_EQ(shown(3), "Yes No Cancel");
  EXPECT_EQ(shown(4), "Yes No");
  EXPECT_EQ(shown(5), "Retry Cancel");
}

TEST(message_form_layout, unknown_sets_show_no_button) {
  for (const int style : {6, 7, 15, -1, -4096, 16 + 6, 32767}) EXPECT_EQ(shown(style), "") << style;
}

TEST(message_form_layout, each_single_flag_is_taken_off) {
  for (const int flag : {16, 32, 48, 64, 256, 512, 768, 4096}) {
    EXPECT_EQ(shown(flag), "OK") << flag;
    EXPECT_EQ(shown(flag + 3), "Yes No Cancel") << flag;
  }
}

TEST(message_form_layout, question_icon_with_yes_no) { EXPECT_EQ(shown(36), "Yes No"); }

TEST(message_form_layout, system_modal_with_abort_retry_ignore) {
  EXPECT_EQ(shown(4096 + 2), "Abort Retry Ignore");
}

TEST(message_form_layout, all_groups_together) {
  EXPECT_EQ(shown(4096 + 768 + 64 + 1), "OK Cancel");
  EXPECT_EQ(shown(4096 + 256 + 16 + 5), "Retry Cancel");
}

TEST(message_form_layout, sums_that_are_no_flag_fall_through_in_order) {
  EXPECT_EQ(shown(96 + 4), "Yes No");       // 64, then 32
  EXPECT_EQ(shown(112 + 4), "Yes No");      // 64, then 48
  EXPECT_EQ(shown(128 + 4), "Yes No");      // 64, then 48, then 16
  EXPECT_EQ(shown(1024), "OK");             // 768, then 256
  EXPECT_EQ(shown(1536 + 1), "OK Cancel");  // 768, 512, 256
}

TEST(message_form_layout, each_flag_is_taken_off_only_once) {
  // 64, 48, 32 and 16 make 160; 768, 512 and 256 make 1536: one more of either stays as a rest.
  EXPECT_EQ(shown(160 + 1), "OK Cancel");
  EXPECT_EQ(shown(160 + 16 + 1), "");
  EXPECT_EQ(shown(2 * 4096), "");
  EXPECT_EQ(shown(2048), "");
}

// Left edges for W = 420 and w = 88 by hand: 420/3 = 140, 420/4 = 105, 88/2 = 44.
TEST(message_form_layout, left_edges_of_the_designed_form) {
  frmMessage form;
  form.SetupForm("", "", 0);
  EXPECT_EQ(form.OKButton.Left, 166.0F);
  form.SetupForm("", "", 1);
  EXPECT_EQ(form.OKButton.Left, 96.0F);
  EXPECT_EQ(form.CancelButton.Left, 236.0F);
  form.SetupForm("", "", 2);
  EXPECT_EQ(form.AbortButton.Left, 61.0F);
  EXPECT_EQ(form.RetryButton.Left, 166.0F);
  EXPECT_EQ(form.IgnoreButton.Left, 271.0F);
  form.SetupForm("", "", 3);
  EXPECT_EQ(form.YesButton.Left, 61.0F);
  EXPECT_EQ(form.NoButton.Left, 166.0F);
  EXPECT_EQ(form.CancelButton.Left, 271.0F);
  form.SetupForm("", "", 4);
  EXPECT_EQ(form.YesButton.Left, 96.0F);
  EXPECT_EQ(form.NoButton.Left, 236.0F);
  form.SetupForm("", "", 5);
  EXPECT_EQ(form.RetryButton.Left, 96.0F);
  EXPECT_EQ(form.CancelButton.Left, 236.0F);
}

// The nearest singles of each step, found with exact fractions: in double precision, rounded once
// at the end, the second edge would be 222.6666717529296875.
TEST(message_form_layout, positions_are_computed_in_single_precision) {
  frmMessage form;
  form.Width = 400;
  form.SetupForm("", "", 4);
  EXPECT_EQ(form.YesButton.Left, 89.33332824707031F);
  EXPECT_EQ(form.NoButton.Left, 222.66668701171875F);

  form.Width = 1000;
  form.YesButton.Width = form.NoButton.Width = 71;
  form.SetupForm("", "", 4);
  EXPECT_EQ(form.YesButton.Left, 297.8333435058594F);
  EXPECT_EQ(form.NoButton.Left, 631.1666259765625F);
}

TEST(message_form_layout, each_button_is_centred_by_its_own_width) {
  frmMessage form;
  form.Width = 400;
  form.AbortButton.Width = 60;
  form.RetryButton.Width = 80;
  form.IgnoreButton.Width = 100;
  form.SetupForm("", "", 2);
  EXPECT_EQ(form.AbortButton.Left, 70.0F);
  EXPECT_EQ(form.RetryButton.Left, 160.0F);
  EXPECT_EQ(form.IgnoreButton.Left, 250.0F);
}

TEST(message_form_layout, tops_and_sizes_stay_as_designed) {
  const frmMessage designed;
  frmMessage form;
  form.SetupForm("text", "", 3);
  for (std::size_t i = 0; i < designed.buttons().size(); ++i) {
    EXPECT_EQ(form.buttons()[i]->Top, designed.buttons()[i]->Top);
    EXPECT_EQ(form.buttons()[i]->Width, designed.buttons()[i]->Width);
    EXPECT_EQ(form.buttons()[i]->Height, designed.buttons()[i]->Height);
  }
}

TEST(message_form_layout, buttons_of_every_set_fit_without_touching) {
  for (int style = 0; style <= 5; ++style) {
    frmMessage form;
    form.SetupForm("", "", style);
    std::vector<std::pair<float, float>> spans;
    for (const FormButton* button : form.buttons()) {
      if (button->Visible) spans.emplace_back(button->Left, button->Left + button->Width);
    }
    std::sort(spans.begin(), spans.end());
    EXPECT_GT(spans.front().first, 0.0F);
    EXPECT_LT(spans.back().second, form.Width);
    for (std::size_t i = 1; i < spans.size(); ++i) {
      EXPECT_GT(spans[i].first, spans[i - 1].second) << style;
    }
  }
}

}  // namespace
}  // namespace pelmora
